// SYS_Exception.cpp - the general exception.
#include "SYS_Exception.h"

#include <cstdarg>

SYS_Exception::SYS_Exception(const char* fmt, ...) {
    if (!fmt) return;
    va_list args;
    va_start(args, fmt);
    Text.FormatV(fmt, args);
    va_end(args);
}

SYS_Exception::SYS_Exception(int, ...) {}

SYS_Exception::SYS_Exception(const SYS_Exception& other) : Text(other.Text) {}

SYS_Exception& SYS_Exception::operator=(const SYS_Exception& other) {
    Text = other.Text;
    return *this;
}

SYS_Exception::~SYS_Exception() {}
