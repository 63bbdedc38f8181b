/// @file
/// SYS_Exception, the library's general exception: one descriptive text.
///
/// Thrown by value where a value cannot be converted: SCC_Variant's
/// conversions throw it with the resource texts 45060-45063 ("Invalid
/// integer", "Value should be unsigned integer.", "Invalid floating point
/// format.", "Value out of range.").  The catcher shows GetText().  Unrelated
/// to the assertion manager's exceptions (SSM.h).  It is not derived from
/// std::exception: catch it by its own type.  It costs one string.
#ifndef SYS_EXCEPTION_H
#define SYS_EXCEPTION_H

#include "SYS_String.h"

/// An exception that carries one text for the user.
class KEEL_API SYS_Exception {
public:
    /// Text is `fmt` formatted printf-style with the arguments; a formatting
    /// error, or a null `fmt`, leaves it empty.  The text is always a
    /// format: a '%%' in a resource text passed here is interpreted, so pass
    /// a text with a '%%' as the argument of "%s".
    SYS_Exception(const char* fmt, ...);
    /// Text is left empty: the number and the arguments are ignored on
    /// purpose.  Throwers wanting a resource text fetch it (TR) and format it.
    SYS_Exception(int number, ...);
    /// Copies the text.
    SYS_Exception(const SYS_Exception& other);
    /// Copies the text; returns `*this`.
    SYS_Exception& operator=(const SYS_Exception& other);
    /// Frees the text.
    ~SYS_Exception();

    /// A copy of Text.
    SYS_StringBase GetText() const { return Text; }

    /// The description, owned by the exception.
    SYS_StringBase Text;
};

#endif // SYS_EXCEPTION_H
