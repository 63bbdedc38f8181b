// SYS_CodePageState.h - what inline text operations need to know of the code
// page in force (internal: included by keel's public headers, not meant for
// hosts; use SYS_CodePage.h).
#ifndef SYS_CODEPAGESTATE_H
#define SYS_CODEPAGESTATE_H

#include "../keel_config.h"

// Non-zero once the code page in force is known to be single-byte.  Inline
// text operations test it to take the C library's byte paths without a call
// into keel; it stays 0 until the code page is first looked at, so the first
// call takes the library's path, which settles it.
extern KEEL_API int SYS_SingleByteCodePage;

// The sign of a C library comparison result: -1, 0 or 1.
inline int SYS_Sign(int r) { return (r > 0) - (r < 0); }

#endif // SYS_CODEPAGESTATE_H
