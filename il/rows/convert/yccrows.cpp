/// \file
/// The plain forms of the kernels between RGB and 4:2:2, and the table of their levels.
#include "il/rows/convert/yccrows.h"

#include <algorithm>

namespace vfil {

namespace {

constexpr int kLumaOffset = 16;
constexpr int kChromaOffset = 128;

struct Rgb {
    std::int32_t red, green, blue;

    friend Rgb operator+(Rgb a, Rgb b) { return {a.red + b.red, a.green + b.green, a.blue + b.blue}; }
};

struct Pair {
    std::int32_t y0, y1, cb, cr;
};

Rgb LoadRgb(const std::uint8_t* pixel, bool blueFirst)
{
    return {pixel[blueFirst ? 2 : 0], pixel[1], pixel[blueFirst ? 0 : 2]};
}

std::int32_t Weigh(Rgb pixel, const EncodeWeights& weights)
{
    return weights.red * pixel.red + weights.green * pixel.green + weights.blue * pixel.blue;
}

void StorePair(Pair pair, std::uint8_t* ycc, bool chromaFirst)
{
    const int luma = chromaFirst ? 1 : 0;
    ycc[luma] = static_cast<std::uint8_t>(pair.y0 + kLumaOffset);
    ycc[luma + 2] = static_cast<std::uint8_t>(pair.y1 + kLumaOffset);
    ycc[1 - luma] = static_cast<std::uint8_t>(pair.cb + kChromaOffset);
    ycc[3 - luma] = static_cast<std::uint8_t>(pair.cr + kChromaOffset);
}

/// The sum of `pixels` pixels' samples, as their mean rounded to nearest.
template <YccArithmetic arithmetic, int pixels>
std::int32_t Round(std::int32_t sum)
{
    constexpr int shift = (arithmetic == YccArithmetic::Exact ? 16 : 15) + (pixels - 1);
    return (sum + (1 << (shift - 1))) >> shift;
}

template <YccArithmetic arithmetic, int pixelBytes, bool averaging>
void PlainEncode(const std::uint8_t* rgb, std::uint8_t* ycc, std::size_t pixels, const YccLayout& layout)
{
    constexpr int chromaPixels = averaging ? 2 : 1;
    const EncodeTable& table = kEncode[static_cast<int>(arithmetic)][static_cast<int>(layout.weights)];
    for (std::size_t left = pixels / 2; left != 0; --left, rgb += 2 * pixelBytes, ycc += 4) {
        const Rgb first = LoadRgb(rgb, layout.blueFirst);
        const Rgb second = LoadRgb(rgb + pixelBytes, layout.blueFirst);
        const Rgb chroma = averaging ? first + second : first;
        StorePair({Round<arithmetic, 1>(Weigh(first, table.y)), Round<arithmetic, 1>(Weigh(second, table.y)),
                   Round<arithmetic, chromaPixels>(Weigh(chroma, table.cb)),
                   Round<arithmetic, chromaPixels>(Weigh(chroma, table.cr))},
                  ycc, layout.chromaFirst);
    }
}

struct Ycc {
    std::int32_t y, cb, cr;
};

std::uint8_t Decode(Ycc pixel, const DecodeWeights& weights)
{
    const std::int32_t sum =
        weights.y * pixel.y + weights.cb * pixel.cb + weights.cr * pixel.cr + weights.constant;
    return static_cast<std::uint8_t>(std::clamp(sum >> weights.shift, 0, 255));
}

template <int pixelBytes>
void StoreRgb(Ycc pixel, const DecodeTable& table, bool blueFirst, std::uint8_t* rgb)
{
    rgb[blueFirst ? 2 : 0] = Decode(pixel, table.red);
    rgb[1] = Decode(pixel, table.green);
    rgb[blueFirst ? 0 : 2] = Decode(pixel, table.blue);
}

template <YccArithmetic arithmetic, int pixelBytes, bool interpolating>
void PlainDecode(const std::uint8_t* ycc, const std::uint8_t* alpha, std::uint8_t* rgb, std::size_t pixels,
                 const YccLayout& layout, std::ptrdiff_t /*nextRow*/)
{
    const DecodeTable& table = kDecode[static_cast<int>(arithmetic)][static_cast<int>(layout.weights)];
    const int luma = layout.chromaFirst ? 1 : 0;
    for (std::size_t left = pixels / 2; left != 0; --left, ycc += 4) {
        Ycc pixel{ycc[luma], ycc[1 - luma], ycc[3 - luma]};
        StoreRgb<pixelBytes>(pixel, table, layout.blueFirst, rgb);
        pixel.y = ycc[luma + 2];
        // The last pair has no next one.
        if (interpolating && left > 1) {
            pixel.cb = (pixel.cb + ycc[5 - luma] + 1) >> 1;
            pixel.cr = (pixel.cr + ycc[7 - luma] + 1) >> 1;
        }
        StoreRgb<pixelBytes>(pixel, table, layout.blueFirst, rgb + pixelBytes);
        if constexpr (pixelBytes == 4) {
            rgb[3] = alpha == nullptr ? 255 : *alpha++;
            rgb[7] = alpha == nullptr ? 255 : *alpha++;
        }
        rgb += 2 * pixelBytes;
    }
}

template <YccArithmetic arithmetic, int pixelBytes, bool filtered>
void PlainCase(YccRows& rows)
{
    for (int streaming = 0; streaming < 2; ++streaming) {
        rows.encode[static_cast<int>(arithmetic)][pixelBytes - 3][filtered][streaming] =
            PlainEncode<arithmetic, pixelBytes, filtered>;
        rows.decode[static_cast<int>(arithmetic)][pixelBytes - 3][filtered][streaming] =
            PlainDecode<arithmetic, pixelBytes, filtered>;
    }
}

template <YccArithmetic arithmetic>
void PlainArithmetic(YccRows& rows)
{
    PlainCase<arithmetic, 3, false>(rows);
    PlainCase<arithmetic, 3, true>(rows);
    PlainCase<arithmetic, 4, false>(rows);
    PlainCase<arithmetic, 4, true>(rows);
}

const LevelTables<YccRows>& Tables()
{
    static const LevelTables<YccRows> tables(
        [] {
            YccRows rows;
            PlainArithmetic<YccArithmetic::Exact>(rows);
            PlainArithmetic<YccArithmetic::Fast>(rows);
            return rows;
        }(),
        VFIL_FILLS);
    return tables;
}

template <class Row>
Row Find(const Row (&rows)[2][2][2][2], const YccCase& which)
{
    return rows[static_cast<int>(which.arithmetic)][which.pixelBytes - 3][which.filtered][which.streaming];
}

const YccRows& RowsFor(const YccCase& which)
{
    return YccRowsAt(which.useVectors ? BestLevel() : Level::Plain);
}

/// The next sample: the whole part of its sum and the residue, which keeps the fraction.
std::int32_t Carry(std::int32_t sum, int shift, std::uint32_t& residue)
{
    const std::uint32_t fraction = residue & ((1U << shift) - 1);
    residue = static_cast<std::uint32_t>(sum) + fraction;
    return static_cast<std::int32_t>(residue) >> shift;
}

} // namespace

const YccRows& YccRowsAt(Level level)
{
    return Tables().At(level);
}

EncodeRow FindEncodeRow(const YccCase& which)
{
    return Find(RowsFor(which).encode, which);
}

DecodeRow FindDecodeRow(const YccCase& which)
{
    return Find(RowsFor(which).decode, which);
}

void EncodeDithered(const std::uint8_t* rgb, std::uint8_t* ycc, std::size_t pixels, int pixelBytes,
                    bool filtered, const YccLayout& layout, DitherResidue residue)
{
    const EncodeTable& table =
        kEncode[static_cast<int>(YccArithmetic::Exact)][static_cast<int>(layout.weights)];
    const int chromaShift = filtered ? 17 : 16;
    for (std::size_t left = pixels / 2; left != 0; --left, rgb += 2 * pixelBytes, ycc += 4) {
        const Rgb first = LoadRgb(rgb, layout.blueFirst);
        const Rgb second = LoadRgb(rgb + pixelBytes, layout.blueFirst);
        const Rgb chroma = filtered ? first + second : first;
        Pair pair{};
        pair.y0 = Carry(Weigh(first, table.y), 16, residue.y);
        pair.y1 = Carry(Weigh(second, table.y), 16, residue.y);
        pair.cb = Carry(Weigh(chroma, table.cb), chromaShift, residue.cb);
        pair.cr = Carry(Weigh(chroma, table.cr), chromaShift, residue.cr);
        StorePair(pair, ycc, layout.chromaFirst);
    }
}

} // namespace vfil
