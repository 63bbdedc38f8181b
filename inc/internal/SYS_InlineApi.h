// SYS_InlineApi.h - members that are inline for speed and still exported
// (internal: included by keel's public headers, not meant for hosts).
//
// A member function that hosts call in tight loops may move into its
// header so that the host's compiler inlines it.  Hosts built against an
// earlier library still call it out of line, so the library keeps exporting
// a copy: mark the member KEEL_INLINE_API and take its address once in the
// library's source (KEEL_KEEP_INLINE).  The build hides inline members by
// default; the mark overrides that for this one.
#ifndef SYS_INLINEAPI_H
#define SYS_INLINEAPI_H

#if defined(__GNUC__) && !defined(_WIN32)
#define KEEL_INLINE_API __attribute__((visibility("default")))
// Emits the library's copy of an inline member: `type` is its pointer type
// (which picks one overload), `name` any word unique in the source file.
#define KEEL_KEEP_INLINE(name, type, member)                                                       \
    [[gnu::used]] static const auto keel_keep_##name = static_cast<type>(member)
#else
// An exported class exports its inline members on this platform.
#define KEEL_INLINE_API
#define KEEL_KEEP_INLINE(name, type, member) static_assert(true, "")
#endif

#endif // SYS_INLINEAPI_H
