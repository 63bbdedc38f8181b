/// @file
/// The multibyte code page that keel's text functions follow.
///
/// Texts are 8-bit strings in a multibyte code page: single-byte characters
/// and double-byte characters whose first byte is a lead byte.  Code page 0 is
/// single-byte (no lead bytes); 932, 936, 949 and 950 are the double-byte code
/// pages (lead bytes 0x81-0x9F and 0xE0-0xFC for 932, 0x81-0xFE for the
/// others).  Until a code page is set, the one that matches the process
/// locale's character set is used (or the environment's, while the process
/// is still in the "C" locale); any other character set means 0.
///
/// The code page decides how strings, scanners and patterns step through
/// text and how wide text converts (under code page 0, into the locale's
/// character set).  Characters compare by value: a byte, or lead × 256 +
/// trail.  Case-insensitive comparison folds the ASCII letters only, and
/// digits are the ASCII digits.  A lead byte followed by the terminating NUL
/// counts as one byte.
///
/// The code page is process-wide and unguarded: set it at start-up, before
/// texts are used, and from one thread.
#ifndef SYS_CODEPAGE_H
#define SYS_CODEPAGE_H

#include "keel_config.h"

/// Makes `cp` the code page in force and returns the previous one.  A code
/// page that keel does not know is taken as 0.  Compiled SYS_StrPattern
/// programs are read under the code page in force when they run: recompile
/// patterns after a change.
KEEL_API int SYS_SetCodePage(int cp);

/// The code page in force: 0, 932, 936, 949 or 950.  The first call (or the
/// first text operation) settles it from the locale when none was set.
KEEL_API int SYS_GetCodePage();

#endif // SYS_CODEPAGE_H
