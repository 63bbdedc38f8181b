// SYS_Resource.cpp - TR: resource texts by number, literals passed through.
#include "SYS_Resource.h"

#include "sys/internal/SYS_ResourceTable.h"

SYS_StringBase TR(int id) {
    char buffer[1024];
    int n = SYS_LoadResourceString(id, buffer, sizeof buffer);
    return SYS_StringBase(buffer, n);
}

SYS_StringBase TR(const char* text) { return SYS_StringBase(text); }
