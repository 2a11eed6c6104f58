/// \file
/// The 128-bit identifier by which formats, interfaces and classes are told apart.
#pragma once

#include <cstdint>

/// A 128-bit identifier, compared by its 16 bytes.
struct GUID {
    std::uint32_t Data1;
    std::uint16_t Data2;
    std::uint16_t Data3;
    std::uint8_t Data4[8];

    friend constexpr bool operator==(const GUID&, const GUID&) = default;
};

/// An interface identifier.
using IID = GUID;
/// A class identifier.
using CLSID = GUID;
