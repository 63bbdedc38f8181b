// SYS_ResourceTable.h - the library's string table, looked up by number
// (internal).
#ifndef SYS_RESOURCETABLE_H
#define SYS_RESOURCETABLE_H

// Copies the text numbered `id` into `buffer` (at most size - 1 bytes, then
// a NUL) and returns the number of bytes copied; returns 0 with an empty
// buffer when the table has no such number.
int SYS_LoadResourceString(int id, char* buffer, int size);

#endif // SYS_RESOURCETABLE_H
