// SYS_CodePage.h - the multibyte code page that keel's text functions follow.
//
// Texts are 8-bit strings in a multibyte code page: single-byte characters
// and double-byte characters whose first byte is a lead byte.  Code page 0 is
// single-byte (no lead bytes); 932, 936, 949 and 950 are the double-byte code
// pages.  Until a code page is set, the one that matches the process locale's
// character set is used.
#ifndef SYS_CODEPAGE_H
#define SYS_CODEPAGE_H

#include "keel_config.h"

// Makes `cp` the code page in force and returns the previous one.  A code page
// that keel does not know is taken as 0.
KEEL_API int SYS_SetCodePage(int cp);

// The code page in force.
KEEL_API int SYS_GetCodePage();

#endif // SYS_CODEPAGE_H
