// SYS_Locale.h - the process locale's character set and wide-text conversion
// (internal).
#ifndef SYS_LOCALE_H
#define SYS_LOCALE_H

#include <cstddef>
#include <string>

// The character set name of the process locale (LC_CTYPE).  When the process
// still runs in the "C" locale, the environment's locale is asked instead.
std::string SYS_LocaleCharset();

// The code page that a character set name stands for: 932 for Shift_JIS and
// CP932, 936 for GBK, GB2312 and GB18030, 949 for EUC-KR and CP949, 950 for
// BIG5, 0 for anything else.
int SYS_CodePageOfCharset(const std::string& charset);

// Converts `n` UTF-16 units into the code page in force (UTF-8 when that is
// code page 0 under a UTF-8 locale, the locale's own set under another).  A
// character the target cannot hold, or a lone surrogate, becomes '?'.
std::string SYS_WideToMultiByte(const unsigned short* w, size_t n);

#endif // SYS_LOCALE_H
