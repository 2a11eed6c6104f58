/// \file
/// Conversions of depth, to HLS and back, of byte orders, and the luma of a picture as its alpha.
#pragma once

#include <vfil/convert.h>

/// A class's name and the pairs of formats that it takes: how the classes of this header differ in Verify.
struct vfILConvertPairs;

/// The frame of the conversions between single pairs of formats.
class VFIL_API vfILPairConvertProc : public vfILMonadicConvertProc {
protected:
    explicit vfILPairConvertProc(const vfILConvertPairs& pairs);

public:
    vfILPairConvertProc(const vfILPairConvertProc& other);
    vfILPairConvertProc& operator=(const vfILPairConvertProc& other);
    ~vfILPairConvertProc() override;
    /// Adds 0x10034 (an input format that the class does not take) and 0x1000D (an output format that it does
    /// not make of that input).
    vfILStatus Verify() override;
    /// Samples of the output's width, in its model and byte order; red alone for a mono format.
    void* GetConvertedColor(const vfILColor& color) override;

protected:
    /// The format checks of Verify alone: a run makes them too.
    vfILStatus VerifyFormats();
    /// Runs kernel(input row, output row, count) over the rows, which come out in order or turned over.
    template <class In, class Out>
    vfILStatus ConvertRows(void (*kernel)(const In*, Out*, std::size_t), long count, bool turnOver = false);

private:
    const wchar_t* GetClassNameW() const;

    const vfILConvertPairs& m_pairs;
};

/// 16-bit samples to 8 bits: the high byte, without rounding. RGBA and mono.
class VFIL_API vfIL16to8 : public vfILPairConvertProc {
public:
    vfIL16to8();

protected:
    vfILStatus DoEffect() override;

private:
    vfILStatus ConvertRGBA();
    vfILStatus ConvertMONO();
};

/// 8-bit samples to 16 bits: the byte twice, so that full stays full. RGBA and mono. vfIL16to8 undoes it.
class VFIL_API vfIL8to16 : public vfILPairConvertProc {
public:
    vfIL8to16();

protected:
    vfILStatus DoEffect() override;

private:
    vfILStatus ConvertRGBA();
    vfILStatus ConvertMONO();
};

/// RGBA to HLSA of the same depth, as vfILColor's packed forms have it: hue, lightness and saturation on the
/// scale of a sample. Alpha is copied.
class VFIL_API vfILRGBA2HLSA : public vfILPairConvertProc {
public:
    vfILRGBA2HLSA();

protected:
    vfILStatus DoEffect() override;

private:
    vfILStatus Convert8();
    vfILStatus Convert16();
};

/// The way back from vfILRGBA2HLSA.
class VFIL_API vfILHLSA2RGBA : public vfILPairConvertProc {
public:
    vfILHLSA2RGBA();

protected:
    vfILStatus DoEffect() override;

private:
    vfILStatus Convert8();
    vfILStatus Convert16();
};

/// PXFormat_RGB24 to PXFormat_RGBA32 with full alpha, and PXFormat_RGBA32 to PXFormat_RGB24, which drops it.
class VFIL_API vfILRGB2RGBA : public vfILPairConvertProc {
public:
    vfILRGB2RGBA();

protected:
    vfILStatus DoEffect() override;
};

/// PXFormat_RGBA32 to PXFormat_BGRA32 and back. The rows come out in the opposite order: the first memory row
/// of the input is the last of the output.
class VFIL_API vfILRGBA2BGRA : public vfILPairConvertProc {
public:
    vfILRGBA2BGRA();

protected:
    vfILStatus DoEffect() override;

private:
    vfILStatus Convert8_RGBA2BGRA();
};

/// The luma of a pixel, (29 R + 57 G + 11 B) / 97 truncated, in its alpha; colour is copied. RGBA, 8 and 16
/// bits. Alpha is written whatever channels are selected. A mask mixes luma and the input's alpha. Input and
/// output may be one picture.
class VFIL_API vfILRGBA2Alpha : public vfILMonadicPixelProc {
public:
    vfILRGBA2Alpha() = default;
    vfILRGBA2Alpha(const vfILRGBA2Alpha& other) = default;
    vfILRGBA2Alpha& operator=(const vfILRGBA2Alpha& other) = default;
    ~vfILRGBA2Alpha() override;
    /// Adds 0x20001 (the region is not the whole input) and 0x10034 (a format that is not RGBA).
    vfILStatus Verify() override;

protected:
    vfILStatus DoEffect() override;

public:
    /// As in vfILPairConvertProc.
    virtual void* GetConvertedColor(const vfILColor& color);

private:
    vfILStatus Convert8();
    vfILStatus Convert16();

    std::array<std::uint8_t, 4> m_color8{};
    std::array<std::uint16_t, 4> m_color16{};
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};
