/// \file
/// Keyers of 4:2:2 video: a foreground over a background in one pass, on the samples as they are.
#pragma once

#include <vfil/keyer.h>

struct vfILYUVKeySettings;

// A matte of 255 shows input A, the foreground; 0 shows input B, the background. It is made for a macropixel,
// two pixels that share chroma, and may be written as a picture: its 0 .. 255 as luma 16 .. 235, chroma 128.
// What the crop box leaves out shows B, or black in a picture of the matte.

/// Keys by a sector of hues around the key colour.
///
/// The chroma plane is turned so that the key colour lies on its X axis, which leaves Z beside it. The key of
/// a macropixel is (X - |Z| t - lift') gain', limited to 0 .. 1, with t = 1 / tan((tolerance + 1) / 2
/// degrees), lift' = 0.4 lift and gain' = 8 gain + 1; the matte is its complement, of which the map's window
/// becomes the whole range. All of it is integers, with 8 bits of fraction. At a gain of 0 no colour is keyed
/// wholly. A key colour without chroma keys a hue nobody chose: give it one.
///
/// A crop may begin and end amid a macropixel: its other pixel shows B, and its chroma is a mix of both by
/// half. With spill correction such a macropixel at the left edge takes corrected luma for its Cb.
class VFIL_API vfILChromaKeyerYUV : public vfILKeyerBase {
public:
    vfILChromaKeyerYUV() = default;
    vfILChromaKeyerYUV(const vfILChromaKeyerYUV& other) = default;
    vfILChromaKeyerYUV& operator=(const vfILChromaKeyerYUV& other) = default;
    ~vfILChromaKeyerYUV() override;
    /// Adds 0x1000D (no 4:2:2 format without alpha), 0x10023 (a tolerance, lift, gain or matte map outside
    /// its range) and 0x10048 (a component of the replace colour outside 0 .. 1). What the spill correction
    /// alone needs is looked at when that is on.
    vfILStatus Verify() override;

    /// \param degrees What of the circle is keyed, less one degree; 0 .. 360, default 0. From 179 on the
    /// sector is more than a half plane.
    void SetKeyAngleTolerance(double degrees);
    double GetKeyAngleTolerance() const;
    /// \param lift How far the sector's apex is moved towards the key colour, 0 .. 1, default 0.
    /// \param gain How steep the matte's edge is, 0 .. 1, default 0.
    void SetKeyLiftAndGain(double lift, double gain);
    void GetKeyLiftAndGain(double* lift, double* gain) const;
    /// Per cents of the matte that become 0 and 255. 0 .. 100, the high one above the low one; default 0 and
    /// 100.
    void SetKeyMatteMap(double low, double high);
    void GetKeyMatteMap(double* low, double* high) const;
    /// The same for the sector in which the foreground has a spill of the key colour.
    void SetSpillAngleTolerance(double degrees);
    double GetSpillAngleTolerance() const;
    void SetSpillLiftAndGain(double lift, double gain);
    void GetSpillLiftAndGain(double* lift, double* gain) const;
    void SetSpillMatteMap(double low, double high);
    void GetSpillMatteMap(double* low, double* high) const;
    /// The luma of what is all spill becomes gain * Y + offset, limited to 0 .. 1. Any numbers; default 1 and
    /// 0.
    void SetSpillLumaGainAndOffset(double gain, double offset);
    void GetSpillLumaGainAndOffset(double* gain, double* offset) const;
    /// \param color Its chroma takes the place of the spill's. Default (0, 0, 0, 1), without chroma.
    void SetSpillReplaceColor(const vfILColor& color);
    const vfILColor& GetSpillReplaceColor() const;
    /// \param apply Non-zero corrects the spill. Default 0. A picture of the matte has none.
    void SetApplySpill(int apply);
    int GetApplySpill() const;
    /// \param output Non-zero writes the matte instead of the composite. Default 0.
    void SetOutputMatte(int output);
    int GetOutputMatte() const;

protected:
    /// Fails with 0x1000D when input A is no 4:2:2 picture.
    vfILStatus DoEffect() override;

private:
    /// What one sector is made of.
    struct Sector {
        double tolerance = 0;
        double lift = 0;
        double gain = 0;
        double matteLow = 0;
        double matteHigh = 100;
    };
    vfILStatus VerifySpill();
    vfILStatus ChromaKeyYCC422(int is709, int isAlternate);

    int m_outputMatte = 0;
    Sector m_key;
    int m_applySpill = 0;
    vfILColor m_spillReplaceColor{0, 0, 0, 1};
    double m_spillLumaGain = 1;
    double m_spillLumaOffset = 0;
    Sector m_spill;
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};

/// Keys by the difference of the key colour's channel from the others, and corrects spill.
///
/// In 8-bit units the key is K = 255 + C2 Q + C0 (C1 P - min(L, limit)). L is the key channel, blue or green
/// by the larger of the two in the key colour, and limit its value there; P is red and Q blue in the green
/// mode, P green and Q red in the blue mode. K from low to high clip becomes a matte of 0 to 255.
///
/// There are three forms of it:
///
/// - 4:2:2 as a composite: each pixel's channels are made, and spill is corrected. A tie of green and blue
///   keys green.
/// - 4:2:2 as a picture of the matte, and composites while m_simdAvailable is 0: the equation is folded to
///   linear forms of the samples; a tie keys blue, no spill is corrected, and a mix stays below its inputs by
///   up to 1.
/// - RGBA32: as the equation has it, opaque, without crop; a tie keys blue. The spill's luma term is added in
///   half-keyed pixels, and multiplies the luma of whole foreground.
///
/// In 4:2:2 an odd last column inside the crop's rows stays as it was. No form of it polls the interrupt. C0
/// = C1 = C2 = 0 shows A alone.
class VFIL_API vfILYUVKeyer : public vfILKeyerBase {
public:
    vfILYUVKeyer() = default;
    vfILYUVKeyer(const vfILYUVKeyer& other) = default;
    vfILYUVKeyer& operator=(const vfILYUVKeyer& other) = default;
    ~vfILYUVKeyer() override;
    /// Adds 0x1000D (neither RGBA32 nor 4:2:2 without alpha) and 0x1006A (a colour model that is not the
    /// format's: 0 or its own for 4:2:2, BT.601 or BT.709 for RGBA). Coefficients and clip levels may be any
    /// numbers.
    vfILStatus Verify() override;

    /// Any numbers, default 0.
    void SetCoefficients(double c0, double c1, double c2);
    void GetCoefficients(double* c0, double* c1, double* c2) const;
    /// The levels of the key that are wholly background and wholly foreground, 1 for 255. Any numbers;
    /// default 0 and 1, which the first form above stores here when high is not above low.
    void SetClipValues(double low, double high);
    void GetClipValues(double* low, double* high) const;
    /// \param output Non-zero writes the matte instead of the composite. Default 0.
    void SetOutputMatteFlag(int output);
    int GetOutputMatteFlag() const;
    /// \param apply Non-zero corrects the spill. Default 1.
    void SetApplySpillCorrectionFlag(int apply);
    int GetApplySpillCorrectionFlag() const;
    /// \param color Its chroma takes the place of the spill's; default (0, 0, 0, 0), without chroma.
    void SetSpillColor(const vfILColor& color);
    const vfILColor& GetSpillColor() const;
    /// A pixel has spill as far as its key channel is above the larger of the others less the threshold, and
    /// is all spill from `softness` on. Both 1 for 255, rounded to 255ths where they are used; default 0 and
    /// 20 / 255.
    void SetSpillThresholdAndSoftness(double threshold, double softness);
    void GetSpillThresholdAndSoftness(double* threshold, double* softness) const;
    /// The luma of what is all spill: factor * Y + term in 4:2:2; RGBA has the term alone.
    ///
    /// \param factor Default 1.
    /// \param term   1 for 255, rounded to 255ths where it is used; default 0.
    void SetSpillLuminanceOffsetAndGain(double factor, double term);
    void GetSpillLuminanceOffsetAndGain(double* factor, double* term) const;
    /// \param model BT.601 (the default), BT.709, or 0 for that of a 4:2:2 format. A run over 4:2:2 stores
    /// the format's here.
    void SetColorModel(PXColorModel model);
    PXColorModel GetColorModel() const;

protected:
    /// Fails with 0x1000D when input A is neither 4:2:2 nor RGBA32.
    vfILStatus DoEffect() override;

private:
    vfILStatus YCC422Key8_MMX(int is709, int isAlternate);
    vfILStatus YCC422Key8_NoMMX(int is709, int isAlternate);
    vfILStatus RGBKey8();
    vfILYUVKeySettings Settings() const;

    PXColorModel m_colorModel = PXColorModel_YCC;
    double m_c0 = 0;
    double m_c1 = 0;
    double m_c2 = 0;
    double m_clipLow = 0;
    double m_clipHigh = 1;
    int m_outputMatte = 0;
    double m_spillLumaFactor = 1;
    vfILColor m_spillColor{0, 0, 0, 0};
    double m_spillLumaTerm = 0;
    double m_spillThreshold = 0;
    double m_spillSoftness = 20.0 / 255;
    int m_applySpill = 1;
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};

/// Keys by luma, with a soft edge: what is dark in A shows B.
///
/// Luma is gain * Y + brightness, limited to 16 .. 235 (or left as it is with the defaults of both), mirrored
/// when reversed. From the clip level to the gain level it becomes a matte of 0 to 255. The matte of the
/// first pixel of a macropixel serves the chroma of both. A mix stays below its inputs by up to 1.
///
/// An odd last column inside the crop's rows stays as it was.
class VFIL_API vfIL2InputLumaKeyer : public vfILKeyerBase {
public:
    vfIL2InputLumaKeyer() = default;
    vfIL2InputLumaKeyer(const vfIL2InputLumaKeyer& other) = default;
    vfIL2InputLumaKeyer& operator=(const vfIL2InputLumaKeyer& other) = default;
    ~vfIL2InputLumaKeyer() override;
    /// Adds 0x1000D (no 4:2:2 format without alpha) and 0x20002 (a number outside its range, or a gain level
    /// below the clip level).
    vfILStatus Verify() override;

    /// \param level Of luma, 0 for 16 and 1 for 235; what is there or below shows B. 0 .. 1, default 0.
    void SetLumaClip(double level);
    double GetLumaClip() const;
    /// \param level What is there or above shows A. From the clip level to 1, default 1.
    void SetLumaGain(double level);
    double GetLumaGain() const;
    /// \param brightness What is added to luma, 1 for 219. -1 .. 1, default 0.
    void SetBrightness(double brightness);
    double GetBrightness() const;
    /// \param gain The factor of luma, before that. 0 .. 2; the default 0 makes all luma 16, which shows B.
    void SetGain(double gain);
    double GetGain() const;
    /// \param output Non-zero writes the matte instead of the composite. Default 0.
    void SetOutputMatteFlag(int output);
    int GetOutputMatteFlag() const;
    /// \param reverse Non-zero takes 251 - Y for luma: what is light shows B. Default 0.
    void SetReverseFlag(int reverse);
    int GetReverseFlag() const;

protected:
    /// Fails with 0x1000D when input A is no 4:2:2 picture.
    vfILStatus DoEffect() override;

private:
    vfILStatus LumaKeyYCC422_8(int isAlternate);

    double m_lumaClip = 0;
    double m_lumaGain = 1;
    double m_brightness = 0;
    double m_gain = 0;
    int m_outputMatte = 0;
    int m_reverse = 0;
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};
