/// \file
/// How the public names are linked. Every public header includes it.
///
/// VFIL_API marks what the library exports. VFIL_LOCAL marks what belongs to the module that includes it: the
/// constants of the headers are a program's or a plug-in's own. (A shared one would keep a plug-in in memory
/// after dlclose.)
#pragma once

#if defined(_WIN32)
#if defined(VFIL_BUILDING)
#define VFIL_API __declspec(dllexport)
#else
#define VFIL_API __declspec(dllimport)
#endif
#define VFIL_LOCAL
#else
#define VFIL_API __attribute__((visibility("default")))
#define VFIL_LOCAL __attribute__((visibility("hidden")))
#endif
