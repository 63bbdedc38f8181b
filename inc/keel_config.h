// keel_config.h - build configuration shared by every public header.
//
// KEEL_API marks the classes and functions that libkeel.so exports.  The
// library is built with hidden visibility, so anything without it stays
// internal.
#ifndef KEEL_CONFIG_H
#define KEEL_CONFIG_H

#if defined(_WIN32)
#if defined(KEEL_BUILDING)
#define KEEL_API __declspec(dllexport)
#else
#define KEEL_API __declspec(dllimport)
#endif
#else
#define KEEL_API __attribute__((visibility("default")))
#endif

#endif // KEEL_CONFIG_H
