/// \file
/// The export mark of the embedded host's public names.
#pragma once

#if defined(_WIN32)
#if defined(VFIL_HOST_BUILDING)
#define VFIL_HOST_API __declspec(dllexport)
#else
#define VFIL_HOST_API __declspec(dllimport)
#endif
#else
#define VFIL_HOST_API __attribute__((visibility("default")))
#endif
