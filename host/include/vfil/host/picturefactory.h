/// \file
/// The class factory of host pictures.
#pragma once

#include <vfil/host/export.h>

namespace vfil::host {

/// Makes host pictures what the library gets when it asks for a new one (CLSID_PXImage). Call it once before
/// the first run of a processor; further calls, from any thread, do nothing.
///
/// \throws std::bad_alloc  Memory is short.
VFIL_HOST_API void RegisterPictureClass();

} // namespace vfil::host
