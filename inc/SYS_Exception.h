// SYS_Exception.h - the library's general exception: one descriptive text.
//
// Thrown by value where a value cannot be converted; the catcher shows
// GetText().  Unrelated to the assertion manager's exceptions (SSM.h).
#ifndef SYS_EXCEPTION_H
#define SYS_EXCEPTION_H

#include "SYS_String.h"

class KEEL_API SYS_Exception {
public:
    // Text is `fmt` formatted printf-style with the arguments; a formatting
    // error leaves it empty.  The text is always a format: a '%' in a
    // resource text passed here is interpreted.
    SYS_Exception(const char* fmt, ...);
    // Text is left empty: the number and the arguments are ignored on
    // purpose.  Throwers wanting a resource text fetch it (TR) and format it.
    SYS_Exception(int number, ...);
    SYS_Exception(const SYS_Exception& other);
    SYS_Exception& operator=(const SYS_Exception& other);
    ~SYS_Exception();

    SYS_StringBase GetText() const { return Text; }

    SYS_StringBase Text;
};

#endif // SYS_EXCEPTION_H
