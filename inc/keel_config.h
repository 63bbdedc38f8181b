/// @file
/// Build configuration shared by every public header.
///
/// Defines KEEL_API, the export macro.  Every public header includes it; a
/// host has nothing to set.
#ifndef KEEL_CONFIG_H
#define KEEL_CONFIG_H

#if defined(_WIN32)
#if defined(KEEL_BUILDING)
#define KEEL_API __declspec(dllexport)
#else
#define KEEL_API __declspec(dllimport)
#endif
#else
/// Marks the classes and functions that libkeel exports.  The library is
/// built with hidden visibility, so anything without it stays internal; on
/// Windows it exports while the library is built (KEEL_BUILDING defined) and
/// imports in the host.
#define KEEL_API __attribute__((visibility("default")))
#endif

#endif // KEEL_CONFIG_H
