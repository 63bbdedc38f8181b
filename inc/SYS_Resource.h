// SYS_Resource.h - texts of the library's resource string table.
//
// TR(number) returns the text stored under that number (at most 1,023 bytes),
// or an empty string when there is none; TR(text) passes a literal through,
// so callers can take a text from either source the same way.
#ifndef SYS_RESOURCE_H
#define SYS_RESOURCE_H

#include "SYS_String.h"

KEEL_API SYS_StringBase TR(int id);
KEEL_API SYS_StringBase TR(const char* text);

#endif // SYS_RESOURCE_H
