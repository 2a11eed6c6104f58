/// \file
/// The pixel formats: their identifiers, and what can be asked of one.
///
/// Rows of a format that is not top-down run bottom-up in memory: y = 0 is the first memory row and y grows
/// upward. YCC values are studio range (luma 16 .. 235, chroma 16 .. 240 around 128). No format says whether
/// colour is premultiplied by alpha: the picture's state 2 does (IPXImage::GetImageState).
#pragma once

#include <vfil/export.h>
#include <vfil/guid.h>

#include <cstddef>

/// Colour models, one bit each.
enum PXColorModel : int {
    PXColorModel_UNKNOWN = 0,
    PXColorModel_RGB = 1,
    PXColorModel_MONO = 2,
    PXColorModel_HLS = 4,
    PXColorModel_HSV = 8,
    PXColorModel_CMY = 0x10,
    PXColorModel_CMYK = 0x20,
    PXColorModel_YCC = 0x40, ///< YCbCr with BT.601 weights
    PXColorModel_YUV = 0x80,
    PXColorModel_YIQ = 0x100,
    PXColorModel_YCC709 = 0x200, ///< YCbCr with BT.709 weights
};

/// The channel of a mask picture that is read as the mask. The first four are also the bits of the processing
/// mode.
enum PXImageChannel : int {
    PXImageChannel_RED = 1,
    PXImageChannel_GREEN = 2,
    PXImageChannel_BLUE = 4,
    PXImageChannel_ALPHA = 8,
    PXImageChannel_MONO = 0x10,
};

/// R G B A bytes, rows bottom-up.
VFIL_LOCAL inline constexpr vfILGuid PXFormat_RGBA32{
    0x0CB9135C, 0x5A29, 0x11CE, {0xBA, 0xBC, 0x00, 0xAA, 0x00, 0x62, 0x92, 0x84}};
/// R G B A 16-bit words, rows bottom-up.
VFIL_LOCAL inline constexpr vfILGuid PXFormat_RGBA64{
    0x0CB9135E, 0x5A29, 0x11CE, {0xBA, 0xBC, 0x00, 0xAA, 0x00, 0x62, 0x92, 0x84}};
/// One byte a pixel, rows bottom-up.
VFIL_LOCAL inline constexpr vfILGuid PXFormat_Mono8{
    0x0CB9135D, 0x5A29, 0x11CE, {0xBA, 0xBC, 0x00, 0xAA, 0x00, 0x62, 0x92, 0x84}};
/// One 16-bit word a pixel, rows bottom-up.
VFIL_LOCAL inline constexpr vfILGuid PXFormat_Mono16{
    0x0CB91360, 0x5A29, 0x11CE, {0xBA, 0xBC, 0x00, 0xAA, 0x00, 0x62, 0x92, 0x84}};
/// B G R A bytes; its fourth byte does not count as alpha.
VFIL_LOCAL inline constexpr vfILGuid PXFormat_BGRA32{
    0xE8077D07, 0x478C, 0x11D4, {0x9C, 0x07, 0x00, 0x90, 0x27, 0x50, 0x55, 0xDE}};
/// B G R bytes.
VFIL_LOCAL inline constexpr vfILGuid PXFormat_BGR24{
    0x29C1AE01, 0x52B3, 0x11D4, {0x96, 0x3E, 0x00, 0x90, 0x27, 0x50, 0x55, 0xDE}};
/// R G B bytes.
VFIL_LOCAL inline constexpr vfILGuid PXFormat_RGB24{
    0x05D2ABB1, 0x747C, 0x11D0, {0x90, 0xF7, 0x00, 0xA0, 0x24, 0x29, 0xB9, 0xE8}};
/// Device-independent rows of 24 bits.
VFIL_LOCAL inline constexpr vfILGuid PXFormat_Dib24{
    0x05D2ABB2, 0x747C, 0x11D0, {0x90, 0xF7, 0x00, 0xA0, 0x24, 0x29, 0xB9, 0xE8}};
/// Device-independent rows of 32 bits.
VFIL_LOCAL inline constexpr vfILGuid PXFormat_Dib32{
    0x0654EA71, 0xE3EA, 0x11CF, {0x88, 0x5E, 0x00, 0xAA, 0x00, 0x6D, 0x38, 0xF7}};
/// Y Cb Cr A bytes, BT.601, rows top-down.
VFIL_LOCAL inline constexpr vfILGuid PXFormat_YCCA32{
    0x599171A0, 0x8B9F, 0x11CE, {0x8B, 0x97, 0x00, 0xAA, 0x00, 0x62, 0x94, 0x55}};
/// Y Cb Cr A 16-bit words, BT.601, rows top-down.
VFIL_LOCAL inline constexpr vfILGuid PXFormat_YCCA64{
    0x599171A1, 0x8B9F, 0x11CE, {0x8B, 0x97, 0x00, 0xAA, 0x00, 0x62, 0x94, 0x55}};
/// Y0 Cb Y1 Cr bytes, BT.601, rows top-down.
VFIL_LOCAL inline constexpr vfILGuid PXFormat_YCC422_601{
    0x408FA7C1, 0xE26D, 0x11D0, {0x8F, 0x9B, 0x00, 0xA0, 0x24, 0x19, 0x03, 0x44}};
/// Y0 Cb Y1 Cr bytes, BT.601, rows top-down, split fields, even rows first.
VFIL_LOCAL inline constexpr vfILGuid PXFormat_YCC422_601_SplitEven{
    0x6C48CE31, 0xE1C6, 0x11D0, {0x8F, 0x9A, 0x00, 0xA0, 0x24, 0x19, 0x03, 0x44}};
/// Y0 Cb Y1 Cr bytes, BT.601, rows top-down, split fields, odd rows first.
VFIL_LOCAL inline constexpr vfILGuid PXFormat_YCC422_601_SplitOdd{
    0x0CFB5961, 0xE91B, 0x11D0, {0x8F, 0x9D, 0x00, 0xA0, 0x24, 0x19, 0x03, 0x44}};
/// Y0 Cb Y1 Cr bytes, BT.709, rows top-down.
VFIL_LOCAL inline constexpr vfILGuid PXFormat_YCC422_709{
    0x5A3169B5, 0x8BF5, 0x11D3, {0x8B, 0x11, 0x08, 0x00, 0x36, 0x04, 0x34, 0x75}};
/// Y0 Cb Y1 Cr bytes, BT.709, rows top-down, split fields, even rows first.
VFIL_LOCAL inline constexpr vfILGuid PXFormat_YCC422_709_SplitEven{
    0x5A3169B6, 0x8BF5, 0x11D3, {0x8B, 0x11, 0x08, 0x00, 0x36, 0x04, 0x34, 0x75}};
/// Y0 Cb Y1 Cr bytes, BT.709, rows top-down, split fields, odd rows first.
VFIL_LOCAL inline constexpr vfILGuid PXFormat_YCC422_709_SplitOdd{
    0x5A3169B7, 0x8BF5, 0x11D3, {0x8B, 0x11, 0x08, 0x00, 0x36, 0x04, 0x34, 0x75}};
/// Cb Y0 Cr Y1 bytes, BT.601, rows top-down.
VFIL_LOCAL inline constexpr vfILGuid PXFormat_YUV422_601{
    0xDE438CF2, 0xE948, 0x11D3, {0x90, 0x1A, 0x00, 0xA0, 0x24, 0x19, 0x03, 0x44}};
/// Cb Y0 Cr Y1 bytes, BT.601, rows top-down, split fields, even rows first.
VFIL_LOCAL inline constexpr vfILGuid PXFormat_YUV422_601_SplitEven{
    0xDE438CF3, 0xE948, 0x11D3, {0x90, 0x1A, 0x00, 0xA0, 0x24, 0x19, 0x03, 0x44}};
/// Cb Y0 Cr Y1 bytes, BT.601, rows top-down, split fields, odd rows first.
VFIL_LOCAL inline constexpr vfILGuid PXFormat_YUV422_601_SplitOdd{
    0xDE438CF4, 0xE948, 0x11D3, {0x90, 0x1A, 0x00, 0xA0, 0x24, 0x19, 0x03, 0x44}};
/// Cb Y0 Cr Y1 bytes, BT.709, rows top-down.
VFIL_LOCAL inline constexpr vfILGuid PXFormat_YUV422_709{
    0xDE438CF5, 0xE948, 0x11D3, {0x90, 0x1A, 0x00, 0xA0, 0x24, 0x19, 0x03, 0x44}};
/// Cb Y0 Cr Y1 bytes, BT.709, rows top-down, split fields, even rows first.
VFIL_LOCAL inline constexpr vfILGuid PXFormat_YUV422_709_SplitEven{
    0xDE438CF6, 0xE948, 0x11D3, {0x90, 0x1A, 0x00, 0xA0, 0x24, 0x19, 0x03, 0x44}};
/// Cb Y0 Cr Y1 bytes, BT.709, rows top-down, split fields, odd rows first.
VFIL_LOCAL inline constexpr vfILGuid PXFormat_YUV422_709_SplitOdd{
    0xDE438CF7, 0xE948, 0x11D3, {0x90, 0x1A, 0x00, 0xA0, 0x24, 0x19, 0x03, 0x44}};
/// Cb Y0 Cr Y1 bytes and an alpha plane behind them, BT.601, rows top-down.
VFIL_LOCAL inline constexpr vfILGuid PXFormat_YCCA422_601{
    0xC299BB08, 0xF46D, 0x11D3, {0xA2, 0x96, 0x08, 0x00, 0x36, 0x04, 0x43, 0xCA}};
/// Cb Y0 Cr Y1 bytes and an alpha plane behind them, BT.709, rows top-down.
VFIL_LOCAL inline constexpr vfILGuid PXFormat_YCCA422_709{
    0xC299BB07, 0xF46D, 0x11D3, {0xA2, 0x96, 0x08, 0x00, 0x36, 0x04, 0x43, 0xCA}};
/// H L S A bytes.
VFIL_LOCAL inline constexpr vfILGuid PXFormat_HLSA32{
    0x599171A2, 0x8B9F, 0x11CE, {0x8B, 0x97, 0x00, 0xAA, 0x00, 0x62, 0x94, 0x55}};
/// H L S A 16-bit words.
VFIL_LOCAL inline constexpr vfILGuid PXFormat_HLSA64{
    0x599171A3, 0x8B9F, 0x11CE, {0x8B, 0x97, 0x00, 0xAA, 0x00, 0x62, 0x94, 0x55}};

/// What a format identifier stands for. The record of a format never changes and lives as long as the
/// library.
struct vfILFormatInfo {
    vfILGuid id;
    const char* name;    ///< the identifier's name without its prefix: "RGBA32", "YCC422_601"
    PXColorModel model;  ///< UNKNOWN for PXFormat_Dib24
    int channels;        ///< 4, 3 or 1; 4:2:2 counts 3, with an alpha plane 4
    int sampleBytes;     ///< bytes of one channel value: 1 or 2
    int pixelBytes;      ///< bytes of a pixel in the pixel array; 4:2:2 has 2, and 3 with an alpha plane
    bool alpha;          ///< IsFormatWithAlpha
    bool topDown;        ///< IsFormatTopDown
    bool ycc;            ///< IsFormatYCC
    bool subsampled;     ///< 4:2:2
    bool alphaPlane;     ///< IsFormatYCCA: 2 w h bytes of 4:2:2, then w h bytes of alpha
    bool blueFirst;      ///< stores blue before red
    bool chromaFirst;    ///< IsFormatAlternateYUV
    bool splitField;     ///< IsFormatSplitField
    bool evenFieldFirst; ///< IsFormatSplitFieldEven

    /// The memory row of image row \p y, 0 <= y < height, of a picture: image rows count upward from the
    /// bottom, memory rows follow the format.
    long MemoryRow(long height, long y) const
    {
        const long row = topDown ? height - 1 - y : y;
        if (!splitField) return row;
        const long odd = y & 1;
        return (row >> 1) + (evenFieldFirst ? ((height + 1) >> 1) * odd : (height >> 1) * (1 - odd));
    }
};

/// The record of a format, or null for an identifier that is none of the 27 formats.
VFIL_API const vfILFormatInfo* vfILFindFormat(const vfILGuid& format);
/// The record of format \p index, 0 .. 26 in the order of this header; null beyond.
VFIL_API const vfILFormatInfo* vfILFormatAt(std::size_t index);

/// The model of a format: RGB, MONO, HLS, YCC or YCC709. UNKNOWN for an identifier that is no format, and for
/// PXFormat_Dib24.
VFIL_API PXColorModel GetColorModelFromFormat(const vfILGuid& format);

// Each of the following answers 1 or 0; 0 for an identifier that is no format.

/// YCC with BT.601 weights.
VFIL_API int IsFormat601(const vfILGuid& format);
/// YCC with BT.709 weights.
VFIL_API int IsFormat709(const vfILGuid& format);
/// Stores chroma before luma (Cb Y0 Cr Y1). A byte order, never another set of coefficients.
VFIL_API int IsFormatAlternateYUV(const vfILGuid& format);
/// Stores the rows of one field, then those of the other.
VFIL_API int IsFormatSplitField(const vfILGuid& format);
/// A split-field format whose even rows come first.
VFIL_API int IsFormatSplitFieldEven(const vfILGuid& format);
/// The first memory row is the top one.
VFIL_API int IsFormatTopDown(const vfILGuid& format);
/// Has an alpha channel or plane. PXFormat_BGRA32 does not count.
VFIL_API int IsFormatWithAlpha(const vfILGuid& format);
/// Any YCC format, of either weights, sampled 4:2:2 or in full.
VFIL_API int IsFormatYCC(const vfILGuid& format);
/// 4:2:2 with an alpha plane: PXFormat_YCCA422_601 and PXFormat_YCCA422_709.
VFIL_API int IsFormatYCCA(const vfILGuid& format);
