/// \file
/// What the row kernels between RGB and 4:2:2 YCC take, the coefficients, and the table of pointers. Types
/// and constants only, as in compparams.h.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vfil {

enum class YccWeights { Bt601, Bt709 };

/// How the bytes of both sides lie.
struct YccLayout {
    YccWeights weights;
    bool blueFirst;   ///< pixels are B G R, else R G B
    bool chromaFirst; ///< pairs are Cb Y0 Cr Y1, else Y0 Cb Y1 Cr
};

/// How many fraction bits the coefficients have, and how much a pixel. The two results differ by design.
enum class YccArithmetic { Exact, Fast };

/// Coefficients of R, G, B for one sample of YCC.
struct EncodeWeights {
    std::int32_t red, green, blue;
};

struct EncodeTable {
    EncodeWeights y, cb, cr;
};

/// [arithmetic][weights]; the studio-range matrices of BT.601 and BT.709 with 16 and with 15 bits of
/// fraction.
constexpr EncodeTable kEncode[2][2] = {
    {{{16829, 33039, 6416}, {-9714, -19070, 28784}, {28784, -24104, -4681}},
     {{11966, 40254, 4064}, {-6596, -22189, 28784}, {28784, -26145, -2639}}},
    {{{8414, 16519, 3208}, {-4857, -9535, 14392}, {14392, -12052, -2340}},
     {{5983, 20127, 2032}, {-3298, -11094, 14392}, {14392, -13073, -1320}}},
};

/// Coefficients of Y, Cb, Cr for one sample of RGB, the constant that takes the offsets out and rounds, and
/// the bits of fraction.
struct DecodeWeights {
    std::int32_t y, cb, cr, constant;
    int shift;
};

struct DecodeTable {
    DecodeWeights red, green, blue;
};

/// [arithmetic][weights]. The constants of the exact sets fold offsets of full precision, not 16 and 128
/// times the rounded coefficients; those of the fast sets are multiples of 256, which 16-bit lanes can hold
/// divided.
constexpr DecodeTable kDecode[2][2] = {
    {{{76309, 0, 104597, -14576620, 16},
      {76309, -25675, -53279, 8917902, 16},
      {76309, 132201, 0, -18109946, 16}},
     {{76309, 0, 117489, -16226779, 16},
      {76309, -13975, -34925, 5071050, 16},
      {76309, 138438, 0, -18908287, 16}}},
    {{{19077, 0, 26149, -14235 * 256, 14},
      {19077, -6419, -13320, 8709 * 256, 14},
      {9539, 16525, 0, -8843 * 256, 13}},
     {{19077, 0, 29372, -15846 * 256, 14},
      {19077, -3494, -8731, 4952 * 256, 14},
      {9539, 17305, 0, -9233 * 256, 13}}},
};

/// RGB to 4:2:2. Writes 4 bytes for each two pixels; an odd last pixel is not looked at.
using EncodeRow = void (*)(const std::uint8_t* rgb, std::uint8_t* ycc, std::size_t pixels,
                           const YccLayout& layout);
/// 4:2:2 to RGB. An odd last pixel is not written.
///
/// \param alpha  One byte a pixel for the fourth byte of 4-byte pixels; null for full alpha. Not looked at
/// for 3-byte pixels.
using DecodeRow = void (*)(const std::uint8_t* ycc, const std::uint8_t* alpha, std::uint8_t* rgb,
                           std::size_t pixels, const YccLayout& layout, std::ptrdiff_t nextRow);

/// The kernels of one level.
struct YccRows {
    EncodeRow encode[2][2][2][2]; ///< [arithmetic][pixel bytes - 3][filtered][streaming]
    DecodeRow decode[2][2][2][2];
};

} // namespace vfil
