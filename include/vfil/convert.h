/// \file
/// Conversions: one picture in, the same picture in another pixel format out. The frame of all converters,
/// and RGB to YCC and back.
///
/// A converter treats the whole picture, all four channels and both fields: a region, a mask or a cut
/// processing mode is refused by Verify. Its input and output are two pictures.
#pragma once

#include <vfil/frame.h>
#include <vfil/numeric.h>

#include <array>
#include <cstdint>

/// What a converter knows of a run, from PrepareData to CleanData.
struct vfILConvertRun {
    vfILPictureView from;   ///< the input
    vfILPictureView to;     ///< the output
    vfILBbox2l inputBox;    ///< the region on the input
    vfILBbox2l outputBox;   ///< the region on the output
    vfILRowWalk input;      ///< memory rows of the region on the input, the lowest address first
    vfILRowWalk output;     ///< the same on the output
    long width = 0;         ///< of the region, in pixels
    long rows = 0;          ///< of the region
    bool streaming = false; ///< the result is large: it may go around the cache
};

/// The frame of the converters. Input and output are walked by rows of their own length.
class VFIL_API vfILMonadicConvertProc : public vfILMonadicImgProc {
public:
    vfILMonadicConvertProc();
    vfILMonadicConvertProc(const vfILMonadicConvertProc& other);
    vfILMonadicConvertProc& operator=(const vfILMonadicConvertProc& other);
    ~vfILMonadicConvertProc() override;
    /// Adds 0x10033 (input and output are the same picture), 0x20002 (not all channels are processed),
    /// 0x20001 (a mask is connected, or the region is not the whole input).
    vfILStatus Verify() override;

protected:
    vfILStatus PrepareData() override;
    vfILStatus ProcessData() override;
    vfILStatus CleanData() override;
    /// Converts the region.
    virtual vfILStatus DoEffect() = 0;

public:
    /// A colour as a pixel of the output, for filling. The result lies in the processor and holds until the
    /// next call.
    virtual void* GetConvertedColor(const vfILColor& color) = 0;

protected:
    const vfILConvertRun& Run() const { return m_run; }
    // The formats of a run's pictures; outside of a run the pictures are asked. All zero without one.
    vfILGuid InputFormat() const;
    vfILGuid OutputFormat() const;

    std::array<std::uint8_t, 4> m_color8{};   ///< where GetConvertedColor leaves 8-bit samples
    std::array<std::uint16_t, 4> m_color16{}; ///< and 16-bit ones

private:
    void Init();

    vfILConvertRun m_run;
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};

/// The RGB side of a class, and its name: how the sisters of one direction differ.
struct vfILRGBFormats;

/// The frame of the conversions from RGB to YCC.
///
/// 4:2:2 is computed in fixed point, by one of two arithmetics that differ by at most one code value: the
/// fast one (15 bits) of 32-bit pixels where the processor's fast arithmetic is on, else the exact one (16
/// bits). The weights are those of BT.601 or BT.709, as the output's format says; luma is 16 .. 235, chroma
/// 16 .. 240. An odd last column has no pair: its bytes are left as they are. Full-rate output
/// (PXFormat_YCCA32 and PXFormat_YCCA64) is BT.601 in double precision, as vfILColor computes it, and its
/// memory rows are in the input's order; the rows of 4:2:2 are top-down.
class VFIL_API vfILRGB2YCCProc : public vfILMonadicConvertProc {
protected:
    explicit vfILRGB2YCCProc(const vfILRGBFormats& formats);

public:
    vfILRGB2YCCProc(const vfILRGB2YCCProc& other);
    vfILRGB2YCCProc& operator=(const vfILRGB2YCCProc& other);
    ~vfILRGB2YCCProc() override;
    /// Adds 0x10034 (an input format that the class does not take) and 0x1000D (an output format that it does
    /// not make of that input: outputs with an alpha plane need a 32-bit input, PXFormat_YCCA64 needs
    /// PXFormat_RGBA64 and is all that is made of it).
    vfILStatus Verify() override;

protected:
    vfILStatus DoEffect() override;

public:
    /// Samples of PXFormat_YCCA64 are 16-bit words, others bytes; Y Cb Cr A.
    void* GetConvertedColor(const vfILColor& color) override;

    int GetDoFiltering() const { return DoFiltering; }
    /// \param filtering Non-zero (the default, 1) takes the mean of a pair's two pixels for its chroma, 0 the
    /// left pixel. 4:2:2 only.
    void SetDoFiltering(int filtering) { DoFiltering = filtering; }
    int GetDoDithering() const { return DoDithering; }
    /// \param dithering Non-zero carries the rounding error of a sample to the next in its row, which starts
    /// from a random value: the same on every run. Default 0. 4:2:2 only; takes the exact arithmetic.
    void SetDoDithering(int dithering) { DoDithering = dithering; }

private:
    /// The format checks of Verify alone: a run makes them too.
    vfILStatus VerifyFormats();
    void Convert8_RGBA2YCCA(int hasAlpha);
    void Convert16_RGBA2YCCA();
    void Convert8_RGBA2YCC422(int hasAlpha, PXColorModel model, int alternate);

    const wchar_t* GetClassNameW() const;

    const vfILRGBFormats& m_formats;
    std::int32_t DoFiltering = 1;
    std::int32_t DoDithering = 0;
    vfILRandomNumber m_dither; ///< a copy keeps one of its own: a shared table would tie two threads' runs
};

/// PXFormat_RGBA32 and PXFormat_RGB24 to all YCC formats of 8 bits, PXFormat_RGBA64 to PXFormat_YCCA64.
class VFIL_API vfILRGBA2YCCA : public vfILRGB2YCCProc {
public:
    vfILRGBA2YCCA();
};

/// PXFormat_BGRA32 and PXFormat_BGR24 to all YCC formats of 8 bits. The fourth byte of PXFormat_BGRA32 is
/// taken for alpha.
class VFIL_API vfILBGRA2YCCA : public vfILRGB2YCCProc {
public:
    vfILBGRA2YCCA();
};

/// PXFormat_Dib32 and PXFormat_Dib24 to all YCC formats of 8 bits.
class VFIL_API vfILDIB2YCCA : public vfILRGB2YCCProc {
public:
    vfILDIB2YCCA();
};

/// The frame of the conversions from YCC to RGB.
///
/// As in vfILRGB2YCCProc 4:2:2 has two fixed-point arithmetics, the fast one for 32-bit outputs; results are
/// limited to 0 .. 255. Without an alpha plane alpha is full. An odd last column is left as it is. Full-rate
/// input is BT.601 in double precision, memory rows in order.
class VFIL_API vfILYCC2RGBProc : public vfILMonadicConvertProc {
protected:
    explicit vfILYCC2RGBProc(const vfILRGBFormats& formats);

public:
    vfILYCC2RGBProc(const vfILYCC2RGBProc& other);
    vfILYCC2RGBProc& operator=(const vfILYCC2RGBProc& other);
    ~vfILYCC2RGBProc() override;
    /// Adds 0x10034 (the input is not YCC) and 0x1000D (an output format that the class does not make of that
    /// input: inputs with an alpha plane go to 32-bit pixels alone, PXFormat_YCCA64 goes to PXFormat_RGBA64).
    vfILStatus Verify() override;

protected:
    vfILStatus DoEffect() override;

public:
    int GetDoFiltering() const { return DoFiltering; }
    /// \param filtering Non-zero takes the mean of this and the next pair's chroma for the right pixel of a
    /// pair; 0 (the default) this pair's. 4:2:2 only.
    void SetDoFiltering(int filtering) { DoFiltering = filtering; }

private:
    /// The format checks of Verify alone: a run makes them too.
    vfILStatus VerifyFormats();
    void Convert8_YCCA2RGBA(int hasAlpha);
    void Convert16_YCCA2RGBA();
    void Convert8_YCC4222RGBA(int hasAlpha, PXColorModel model, int alternate);

    const wchar_t* GetClassNameW() const;

    const vfILRGBFormats& m_formats;
    std::int32_t DoFiltering = 0;
};

/// All YCC formats to PXFormat_RGBA32, those without an alpha plane to PXFormat_RGB24 too, and
/// PXFormat_YCCA64 to PXFormat_RGBA64.
class VFIL_API vfILYCCA2RGBA : public vfILYCC2RGBProc {
public:
    vfILYCCA2RGBA();
    /// Bytes for PXFormat_RGBA32 (R G B A) and PXFormat_RGB24 (R G B), else 16-bit words R G B A.
    void* GetConvertedColor(const vfILColor& color) override;
};

/// The YCC formats of 8 bits to PXFormat_BGRA32, those without an alpha plane to PXFormat_BGR24 too.
class VFIL_API vfILYCCA2BGRA : public vfILYCC2RGBProc {
public:
    vfILYCCA2BGRA();
    /// Bytes B G R A for PXFormat_BGRA32, B G R for PXFormat_BGR24, else 16-bit words B G R A.
    void* GetConvertedColor(const vfILColor& color) override;
};
