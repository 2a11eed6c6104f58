/// \file
/// The 128-bit identifier by which formats, interfaces and classes are told apart.
#pragma once

#include <cstdint>

/// A 128-bit identifier, compared by its 16 bytes.
struct vfILGuid {
    std::uint32_t Data1;
    std::uint16_t Data2;
    std::uint16_t Data3;
    std::uint8_t Data4[8];

    friend constexpr bool operator==(const vfILGuid& a, const vfILGuid& b)
    {
        bool equal = a.Data1 == b.Data1 && a.Data2 == b.Data2 && a.Data3 == b.Data3;
        for (int i = 0; i < 8; ++i)
            equal = equal && a.Data4[i] == b.Data4[i];
        return equal;
    }
    friend constexpr bool operator!=(const vfILGuid& a, const vfILGuid& b) { return !(a == b); }
};

static_assert(sizeof(vfILGuid) == 16, "identifiers cross boundaries as 16 bytes");

// The names of the object model. A host that has such names of its own, as the kits of video cards do,
// defines VFIL_NO_COM_NAMES for all of its sources that include these headers, and uses the names that begin
// with vfIL. These are the same types either way. The host's GUID has the same 16 bytes when its first three
// numbers are in the machine's byte order: std::memcpy converts.
#if !defined(VFIL_NO_COM_NAMES)

using GUID = vfILGuid;
/// An interface identifier.
using IID = vfILGuid;
/// A class identifier.
using CLSID = vfILGuid;

#endif
