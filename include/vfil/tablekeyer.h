/// \file
/// Keys of one picture by tables of the host's, and what corrects the colour beside a key.
#pragma once

#include <vfil/keyer.h>

/// The frame of the keys by tables: what is done with the alpha that a class finds. Colour is copied.
///
/// The mode's channels have no effect: alpha is written. A mask's samples other than 0 have the full effect,
/// where they are 0 a pixel is copied.
class VFIL_API vfILTableKeyer : public vfILMonadicPixelProc {
public:
    // Tables are 256 bytes, not owned, and read at Execute. Default null.

    /// \param lut Alpha by alpha: the last step. Null leaves alpha as it is.
    void SetMatteMapLUT(void* const lut);
    void* GetMatteMapLUT() const;
    /// \param keep Not 0: alpha is never above the input's. Default 0.
    void KeepOriginalAlpha(int keep);
    int IsKeepOriginalAlpha() const;

    // These do nothing, and GetConversionFactors leaves its arguments alone.

    void SetConversionFactors(double first, double second, double third);
    void GetConversionFactors(double* first, double* second, double* third) const;
    void InvertKey(int invert);

protected:
    /// Fails with 0x1000D for a format that is not 8-bit RGBA, and 0x10018 without the tables of a class.
    vfILStatus CheckTables(const GUID& format, bool hasTables, const wchar_t* className);
    vfILStatus Process8();
    /// Runs over all rows.
    ///
    /// \param matteMap   Null for none.
    /// \param mask       Pixels are copied where the mask has 0.
    /// \param keepAlpha  Alpha is never above the input's.
    virtual vfILStatus Key8(const void* matteMap, bool mask, bool keepAlpha) = 0;

private:
    vfILStatus ProcessMatteMapMaskKeepAlpha8();
    vfILStatus ProcessMatteMapMaskNoKeepAlpha8();
    vfILStatus ProcessMatteMapNoMaskKeepAlpha8();
    vfILStatus ProcessMatteMapNoMaskNoKeepAlpha8();
    vfILStatus ProcessNoMatteMapMaskKeepAlpha8();
    vfILStatus ProcessNoMatteMapMaskNoKeepAlpha8();
    vfILStatus ProcessNoMatteMapNoMaskKeepAlpha8();
    vfILStatus ProcessNoMatteMapNoMaskNoKeepAlpha8();

    void* m_matteMap = nullptr;
    int m_keepOriginalAlpha = 0;
};

/// Alpha by a pixel's hue, lightness and saturation, each of 0 .. 255, through tables of 256 bytes. Colour is
/// copied. 8-bit RGBA.
///
/// Lightness is (largest + smallest + 1) / 2 of red, green and blue; saturation is their distance by its
/// largest at that lightness. Hues begin at red: 0 .. 43, green 42 .. 128, blue 127 .. 213, and red again; a
/// grey has hue and saturation 0. Alpha is what the table of hues has, but 255 where one of the three tables
/// has 255; the matte map, if there is one, is applied last. The result is told to be neither keyed nor
/// premultiplied.
class VFIL_API vfILChromaKeyImg : public vfILTableKeyer {
public:
    /// Adds 0x1000D (a format that is not 8-bit RGBA), 0x10018 (no table of hues, lightnesses or
    /// saturations).
    vfILStatus Verify() override;

    /// \param lut Alpha by hue.
    void SetHueMapLUT(void* const lut);
    void* GetHueMapLUT() const;
    /// \param lut 255 for the lightnesses that are never keyed.
    void SetLightnessMapLUT(void* const lut);
    void* GetLightnessMapLUT() const;
    /// \param lut 255 for the saturations that are never keyed.
    void SetSaturationMapLUT(void* const lut);
    void* GetSaturationMapLUT() const;

    // What these steered is vfILFGSurpress's now. They do nothing.

    void SetKeyType(long type);
    void SetFgSurValue(double value);
    void SetForegoundSurpress(int surpress);

protected:
    /// Fails with 0x1000D for a format that is not 8-bit RGBA, and 0x10018 without the three tables.
    vfILStatus DoEffect() override;
    vfILStatus Key8(const void* matteMap, bool mask, bool keepAlpha) override;

private:
    bool HasTables() const;
    /// There is no key of 16 bits.
    vfILStatus Process16();
    static unsigned short ChromaKey16(unsigned short value);

    void* m_hueMap = nullptr;
    void* m_lightnessMap = nullptr;
    void* m_saturationMap = nullptr;
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};

/// Alpha by a pixel's luminance, (largest + smallest) / 2 of red, green and blue, truncated, through a table
/// of 256 bytes. Colour is copied. 8-bit RGBA.
class VFIL_API vfILLumKeyImg : public vfILTableKeyer {
public:
    /// Adds 0x1000D (a format that is not 8-bit RGBA), 0x10018 (no table of luminances).
    vfILStatus Verify() override;

    /// \param lut Alpha by luminance.
    void SetLuminanceMapLUT(void* const lut);
    void* GetLuminanceMapLUT() const;

protected:
    /// Fails with 0x1000D for a format that is not 8-bit RGBA, and 0x10018 without a table of luminances.
    vfILStatus DoEffect() override;
    vfILStatus Key8(const void* matteMap, bool mask, bool keepAlpha) override;

private:
    void* m_luminanceMap = nullptr;
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};

/// Takes the spill of a screen from the foreground: green becomes the smaller of green and red, or blue the
/// smaller of blue and green. 8-bit RGBA; a run of 16-bit RGBA succeeds and writes nothing.
///
/// The mode's channels have no effect. A mask's samples other than 0 have the full effect.
class VFIL_API vfILFGSurpress : public vfILMonadicPixelProc {
public:
    /// \param type The channel that is limited, by its bit: 2 green, 4 blue; nothing for other values.
    /// Default 2.
    void SetKeyType(long type);
    long GetKeyType() const;
    /// \param value 0 .. 1, held as a byte. Default 0. No result depends on it.
    void SetFgSurValue(double value);
    double GetFgSurValue() const;

    // These do nothing, and GetConversionFactors leaves its arguments alone.

    void SetConversionFactors(double first, double second, double third);
    void GetConversionFactors(double* first, double* second, double* third) const;

protected:
    /// Fails with 0x1000D for a format that is not RGBA.
    vfILStatus DoEffect() override;

private:
    vfILStatus Process8();

    long m_keyType = VFIL_MODE_GREEN;
    unsigned char m_fgSurValue = 0;
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};

/// Gives a picture the chroma of the key colour where its alpha is clear, with a luma of its own times gain
/// plus offset there: input A by its alpha, the rest by the key colour. The result's alpha is input B's.
/// 8-bit RGBA. A mask's samples and the mode's channels have no effect; the mask's box bounds the region.
class VFIL_API vfILChromaReplace : public vfILKeyerBase {
public:
    /// Adds 0x1000D (a format that is not 8-bit RGBA), 0x10011 (luma offset outside -1 .. 1 and gain outside
    /// 0 .. 2; one of them alone may be), 0x1006A (another colour model).
    vfILStatus Verify() override;

    /// \param offset Added to the luma of clear pixels, in units of its full value, -1 .. 1. Default 0.
    /// \param gain   Times that luma, 0 .. 2. Default 1.
    void SetLuma(double offset, double gain);
    void GetLuma(double* offset, double* gain) const;
    /// \param model PXColorModel_YCC (BT.601, the default) or PXColorModel_YCC709.
    void SetColorModel(PXColorModel model);
    PXColorModel GetColorModel() const;

protected:
    /// Fails with 0x1000D for a format that is not 8-bit RGBA.
    vfILStatus DoEffect() override;

private:
    PXColorModel m_colorModel = PXColorModel_YCC;
    double m_lumaOffset = 0.0;
    double m_lumaGain = 1.0;
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};
