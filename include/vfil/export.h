/// \file
/// The export mark of the library's public names. Every public header includes it.
#pragma once

#if defined(_WIN32)
#if defined(VFIL_BUILDING)
#define VFIL_API __declspec(dllexport)
#else
#define VFIL_API __declspec(dllimport)
#endif
#else
#define VFIL_API __attribute__((visibility("default")))
#endif
