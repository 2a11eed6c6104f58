/// \file
/// Keyers: what a key colour leaves of a picture. The frame of those with two inputs, and those that make the
/// alpha of RGBA pictures.
#pragma once

#include <vfil/frame.h>

/// What a crop leaves of a run: columns that are skipped at both sides, and the rows that stay, counted in
/// the order in which a run treats them, as half-open intervals from `start` to `end`. An interval of (-1,
/// -1) is empty. The second one serves formats that keep each field in a block of its own.
///
/// The numbers are as the box gives them. One that hangs over the picture makes skips below 0 and intervals
/// beyond their block, which are cut where they are used.
struct vfILKeyerCrop {
    long leftSkip = 0;
    long rightSkip = 0;
    long firstStart = 0;
    long firstEnd = 0;
    long secondStart = 0;
    long secondEnd = 0;
};

/// The frame of the keyers with two inputs: A is looked at, B gives the pixels that are written with the
/// matte (one picture may be both). Which input dominates is the host's to say, as with every operator of two
/// inputs; B is the natural choice, for it is what shows around the region.
///
/// A mask's samples and the mode's channels have no effect on a key; the mask's box bounds the keyed region,
/// as in every frame. Only the keyers of 4:2:2 video heed the crop.
class VFIL_API vfILKeyerBase : public vfILDyadicPixelProc {
public:
    vfILKeyerBase() = default;
    vfILKeyerBase(const vfILKeyerBase& other) = default;
    vfILKeyerBase& operator=(const vfILKeyerBase& other) = default;
    ~vfILKeyerBase() override;
    /// Adds 0x1000A (the crop box begins left of or below the picture, is wider than it, or begins above it;
    /// its height is not held against anything) and 0x10048 (a component of the key colour outside 0 .. 1).
    vfILStatus Verify() override;

    /// \param box The part of the picture that is keyed, in pixels of input A, rows counted from the lowest.
    /// Default all 0: no crop.
    void SetCropBox(const vfILBbox2l& box);
    const vfILBbox2l& GetCropBox() const;
    /// \param color The colour to remove, each component in 0 .. 1; default (0, 0, 0, 0).
    void SetKeyColor(const vfILColor& color);
    const vfILColor& GetKeyColor() const;

protected:
    /// Calls AdjustCrop, which may refuse, before the frame's own.
    vfILStatus AdjustJumps() override;
    /// Computes Crop() for the rows of the run, before the mode's field bits choose among them.
    virtual vfILStatus AdjustCrop();
    /// What the crop box leaves of this run; of use from AdjustJumps on.
    const vfILKeyerCrop& Crop() const { return m_crop; }

private:
    vfILBbox2l m_cropBox;
    vfILColor m_keyColor{0, 0, 0, 0};
    vfILKeyerCrop m_crop;
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};

/// A key by hue: the chroma plane's sector around the hue of the key colour becomes clear. In the frame of
/// that hue, X along it and Z across it, the key is (X - |Z| t - 0.4 lift) (8 gain + 1), limited to 0 .. 1,
/// with t = 1 / tan((1 + tolerance) / 2 degrees); the matte is the rest of it. RGBA of 8 bits.
///
/// With gain 0 the colour itself is not wholly keyed: even a pure one lies short of X = 1. A key colour
/// without chroma keys nothing.
class VFIL_API vfILChromaKeyer : public vfILKeyerBase {
public:
    /// Adds 0x1000D (an output that is not RGBA of 8 bits), 0x10023 (tolerance, lift or gain outside their
    /// ranges), 0x1006A (a model that is neither BT.601 nor BT.709).
    vfILStatus Verify() override;

    /// \param degrees The angle in which the sector opens is one more. 0 .. 360, of which 0 .. 178 widen it;
    /// 179 is all of the plane's half, and beyond the formula is used as it stands. Default 0.
    void SetAngleTolerance(double degrees);
    double GetAngleTolerance() const;
    /// \param lift How far the sector's tip lies from grey towards the key colour, so that pale colours stay;
    /// 0 .. 1, default 0.
    /// \param gain How steep the matte's edge is, 0 .. 1, default 0.
    void SetLiftAndGain(double lift, double gain);
    void GetLiftAndGain(double* lift, double* gain) const;
    /// Paints the chroma plane instead of a key: in colour where the matte is full, in the matte's grey
    /// elsewhere, with blue axes and the key colour marked in red. Cb grows to the right and Cr upwards, but
    /// the sector is drawn opposite to the key colour, and the marker has the axes exchanged. Default 0.
    void SetOutputChromaMap(int paintMap);
    int GetOutputChromaMap() const;
    /// The output's alpha is the smaller of the matte and B's alpha. Default 0: the matte.
    void SetKeepOrigAlphaFlag(int keep);
    int GetKeepOrigAlphaFlag() const;
    /// The weights of the chroma: PXColorModel_YCC (default) or PXColorModel_YCC709.
    void SetColorModel(PXColorModel model);
    PXColorModel GetColorModel() const;

protected:
    /// Fails with 0x1000D when A is not RGBA of 8 bits.
    vfILStatus DoEffect() override;

private:
    struct Sector;
    double ComputeTanAngleTolOver2() const;
    void RemapLiftAndGain(double chroma, double* lift, double* gain) const;
    static bool IsAlmostEqual(double a, double b);
    Sector MakeSector() const;
    void PlotKey(const Sector& sector, double x, double y, vfILColor& scratch, unsigned char* pixel) const;
    void PaintChromaMap() const;
    void ChromaKeyRGBA8();

    double m_angleTolerance = 0;
    double m_lift = 0;
    double m_gain = 0;
    PXColorModel m_colorModel = PXColorModel_YCC;
    bool m_outputChromaMap = false;
    bool m_keepOrigAlpha = false;
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};

/// A key by the difference of the screen's channel K to the others P and Q, all 0 .. 1: the matte is
/// 1 - C0 (min(K, key) - C1 P) + C2 Q, limited to 0 .. 1. K is blue when the key colour has as much of it as
/// of green, P is green and Q red then; else K is green, P red and Q blue. RGBA of 8 bits.
class VFIL_API vfILBlueGreenKeyer : public vfILKeyerBase {
public:
    /// Adds 0x10034 (an input A that is not RGBA of 8 bits). The coefficients may be any.
    vfILStatus Verify() override;

    /// How strong the screen's channel keys; default 0, which keys nothing.
    void SetC0(double c0);
    double GetC0() const;
    /// How much of P saves a pixel from the key; default 0.
    void SetC1(double c1);
    double GetC1() const;
    /// How much of Q saves a pixel from the key; default 0.
    void SetC2(double c2);
    double GetC2() const;
    /// The output's alpha is the smaller of the matte and B's alpha. Default 0: the matte.
    void SetKeepOrigAlphaFlag(int keep);
    int GetKeepOrigAlphaFlag() const;

protected:
    /// Fails with 0x10034 when A is not RGBA of 8 bits.
    vfILStatus DoEffect() override;

private:
    struct Weights;
    Weights GreenScreenKey() const;
    Weights BlueScreenKey() const;
    vfILStatus Process8();

    double m_c0 = 0;
    double m_c1 = 0;
    double m_c2 = 0;
    bool m_keepOrigAlpha = false;
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};

/// A key by how far the screen's channel rises above the others: opaque up to t = max(the other channel, red)
/// - threshold, clear from t + softness on, and in proportion between. The screen's channel is blue when the
/// key colour has more of it than of red and of green, the other one is green then; else it is green, and the
/// other blue. B's alpha is replaced. RGBA of 8 bits.
///
/// Both ends of the ramp are limited to the full value, which makes it short near white: beside a red of 254
/// a green of 255 is clear.
class VFIL_API vfILLinearKeyer : public vfILKeyerBase {
public:
    /// Adds 0x1000D (an output that is not RGBA of 8 bits), 0x20002 (not all channels are selected, or a
    /// threshold or softness outside its range).
    vfILStatus Verify() override;

    /// \param threshold What is taken off the other channels, of the full value; -1 .. 1, default 0. Below 0
    /// pixels must be greener, or bluer, to be keyed.
    void SetThreshold(double threshold);
    double GetThreshold() const;
    /// \param softness The width of the matte's edge, of the full value; 0 .. 1. Default 0, a hard edge.
    void SetSoftness(double softness);
    double GetSoftness() const;

protected:
    /// Fails with 0x1000D when the output is not RGBA of 8 bits.
    vfILStatus DoEffect() override;

private:
    vfILStatus Key8();

    double m_softness = 0;
    double m_threshold = 0;
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};

/// A key by brightness: B's pixels with the alpha gain Y + brightness, limited, where Y is the full-range
/// luma of A's. RGBA of 8 bits. Which input dominates is the host's to say, as in vfILKeyerBase; of a
/// mask only the box counts.
class VFIL_API vfILLumaKeyer : public vfILDyadicPixelProc {
public:
    /// Adds 0x1000D (an output that is not RGBA of 8 bits), 0x20002 (not all of red, green and blue are
    /// selected, or brightness or gain outside its range), 0x1006A (a model that is neither BT.601 nor
    /// BT.709).
    vfILStatus Verify() override;

    /// \param brightness What is added, of the full value; -1 .. 1, default 0.
    void SetBrightness(double brightness);
    double GetBrightness() const;
    /// \param gain 0 .. 2. Default 0, which leaves the brightness alone: a host sets 1 for the luma as it is.
    void SetGain(double gain);
    double GetGain() const;
    /// The output's alpha is the smaller of the matte and B's alpha. Default 0: the matte.
    void SetKeepOrigAlphaFlag(int keep);
    int GetKeepOrigAlphaFlag() const;
    /// Takes the complement of the matte. Default 0.
    void SetReverseFlag(int reverse);
    int GetReverseFlag() const;
    /// The weights of the luma: PXColorModel_YCC (default) or PXColorModel_YCC709.
    void SetColorModel(PXColorModel model);
    PXColorModel GetColorModel() const;

protected:
    /// Fails with 0x1000D when the output is not RGBA of 8 bits.
    vfILStatus DoEffect() override;

private:
    vfILStatus LumaKeyRGBA8();

    PXColorModel m_colorModel = PXColorModel_YCC;
    double m_brightness = 0;
    double m_gain = 0;
    bool m_keepOrigAlpha = false;
    bool m_reverse = false;
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};
