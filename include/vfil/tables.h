/// \file
/// The products and quotients of normalised 8-bit channel values, as tables.
#pragma once

#include <vfil/export.h>

#include <array>

/// 256 rows of 256 bytes.
using vfILByteTable = std::array<std::array<unsigned char, 256>, 256>;

/// [a][b]: a * b / 255, rounded to nearest. Symmetric.
extern VFIL_API const vfILByteTable ilNormMult;
/// [a][b]: 255 - ilNormMult[255 - a][255 - b], the complement product. Row 0 is the identity.
extern VFIL_API const vfILByteTable ilInvNormMult;
/// [a][b]: a * 255 / b, rounded to nearest and at most 255; 0 when b is 0.
extern VFIL_API const vfILByteTable ilNormDiv;
/// [a][b]: a * 255 / (6 * b), rounded to nearest and at most 255; 0 when b is 0.
extern VFIL_API const vfILByteTable ilHueTable;
