/// \file
/// Colour treatment of one picture: correction by a matrix and tables, and broadcast legality.
#pragma once

#include <vfil/frame.h>
#include <vfil/transfo4.h>

// The colour-space matrices without offsets, of vfILColor, as the steps of a transform.

extern VFIL_API const HmTransfo4 s_HmTransfoRGB2YCC;    ///< s_dfArrayRGBAtoYCCA
extern VFIL_API const HmTransfo4 s_HmTransfoYCC2RGB;    ///< s_dfArrayYCCAtoRGBA
extern VFIL_API const HmTransfo4 s_HmTransfoRGB2YCC709; ///< s_dfArrayRGBAtoYCCA709
extern VFIL_API const HmTransfo4 s_HmTransfoYCC7092RGB; ///< s_dfArrayYCCA709toRGBA

/// Hue, saturation, gain and offset in one matrix, and tables behind it. RGBA of 8 and 16 bits, and 8-bit
/// 4:2:2 pictures in their own format, with the alpha plane.
///
/// A pixel meets: the way to luma and chroma, the turn of chroma by Hue, Saturation on chroma, Gain on all
/// three, Offset on luma alone, and the way back. Selected alpha becomes alpha * gain + offset. Between the
/// ways there and back luma and chroma have full range, and chroma is centred on 0. The defaults change
/// nothing.
///
/// Elements of the matrix are rounded to 256ths, and so is nothing else: sums lose their fraction. In 4:2:2
/// the left luma of a pair stands for the pair where chroma asks for one, and a last pixel without Cr is
/// taken with 128. There the 128 of studio range is -0.5 on the full one: a saturation of 200 makes a neutral
/// 128 a 127.
class VFIL_API vfILColorCorrectionImg : public vfILMonadicPixelProc {
public:
    vfILColorCorrectionImg() = default;
    vfILColorCorrectionImg(const vfILColorCorrectionImg& other) = default;
    vfILColorCorrectionImg& operator=(const vfILColorCorrectionImg& other) = default;
    ~vfILColorCorrectionImg() override;
    /// Adds 0x1000D (a format that is none of RGBA32, RGBA64, 4:2:2 and 4:2:2 with alpha), 0x1006A (a colour
    /// model other than 64 and 512 with RGBA). Numbers are not checked: what a picture cannot show is
    /// limited, and NaN counts as 0 in an element of the matrix.
    vfILStatus Verify() override;

    double GetHue() const;
    /// \param hue Degrees by which chroma turns, from Cb towards Cr. Default 0.
    void SetHue(double hue);
    double GetSaturation() const;
    /// \param saturation Per cent; 0 is grey, below 0 swaps chroma around its centre. Default 100.
    void SetSaturation(double saturation);
    double GetGain() const;
    /// \param gain Per cent of luma and chroma, and of alpha where it is selected. Default 100.
    void SetGain(double gain);
    double GetOffset() const;
    /// \param offset Per cent of full scale, added to luma, and to alpha where it is selected. Default 0.
    void SetOffset(double offset);
    /// \param lut 256 entries of four signed 16-bit numbers: what is added to luma, Cb, Cr and alpha where
    ///            corrected luma, limited to a byte, is the index (its upper byte at 16 bits, where the
    ///            numbers count 257 fold). An alpha plane takes none of it. The way back, which then comes
    ///            after it, starts from values without fraction: even a table of zeros may cost 5 codes. Read
    ///            by each run; not owned; must outlive the run. Null, the default, for none.
    void SetLut(void* lut);
    void* GetLut() const;
    /// \param lut Four tables of 256 bytes, of red, green, blue and alpha, which the result goes through (its
    ///            upper byte at 16 bits, where the table's byte fills both). A 4:2:2 picture becomes RGB for
    ///            it, and 4:2:2 again by 256ths of the studio-range matrix, whose rows for chroma sum to -1
    ///            in BT.709: white has a Cb of 127. Read by each run; not owned; must outlive the run. Null,
    ///            the default, for none.
    void SetRGBALut(void* lut);
    void* GetRGBALut() const;
    PXColorModel GetColorModel() const;
    /// \param model PXColorModel_YCC (64, the default) for BT.601, any other for BT.709; 0 takes it from a
    ///              4:2:2 format. It is stronger than the format: a BT.709 picture is treated by BT.601
    ///              unless 0 or 512 is set.
    void SetColorModel(PXColorModel model);

protected:
    vfILStatus PrepareData() override;
    vfILStatus DoEffect() override;

private:
    void StartFrom(const HmTransfo4& tail);
    void Adjust(double gain, double offset);

    double m_hue = 0;
    double m_saturation = 100;
    double m_gain = 100;
    double m_offset = 0;
    void* m_lut = nullptr;
    void* m_rgbaLut = nullptr;
    PXColorModel m_colorModel = PXColorModel_YCC;
    HmTransfo4 m_transfo;    ///< of a run
    HmTransfo4 m_transfoLut; ///< of a run: what follows the increments
    bool m_is601 = true;     ///< of a run
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};

/// What is done to pixels that broadcast does not allow.
enum vfILLegalizeMode : int {
    VFIL_LEGALIZE_CLIP = 1,                        ///< each channel of RGB is limited
    VFIL_LEGALIZE_ADJUST_GAIN = 2,                 ///< negative channels are 0, and the pixel is dimmed
    VFIL_LEGALIZE_ADJUST_SATURATION = 3,           ///< chroma shrinks; luma and hue stay
    VFIL_LEGALIZE_ADJUST_LUMINANCE_SATURATION = 4, ///< luma moves part of the way, and chroma shrinks
    /// Half bright luma without colour; with red where a channel is above its range, with blue where one is
    /// below, the more the farther; green where luma or chroma is out of its own range.
    VFIL_LEGALIZE_SHOW_ILLEGAL = 5,
};

/// Makes 4:2:2 video legal: luma in 16 .. 235, chroma in 16 .. 240, and the RGB that they stand for in 0 ..
/// 255. RGBA of 8 and 16 bits is legal by itself: it is copied, whatever the mask and the mode's channels
/// are, or shown grey and half bright in the mode that shows.
///
/// Two pixels share chroma, which is that of the left one. The right one is judged by the mean with the
/// chroma of the next two where a mode works on RGB, and by the stored chroma where it works on saturation.
/// What the right one is made of does not reach the stored chroma in the former: where chroma varies, most
/// right pixels stay illegal by their own samples. SetStrictPairs mends that. Legal pixels beside legal ones
/// stay as they are in modes 1 to 4. An odd last column is not touched.
class VFIL_API vfILLegalizeImg : public vfILMonadicPixelProc {
public:
    vfILLegalizeImg() = default;
    vfILLegalizeImg(const vfILLegalizeImg& other) = default;
    vfILLegalizeImg& operator=(const vfILLegalizeImg& other) = default;
    ~vfILLegalizeImg() override;
    /// Adds 0x1000D (a format that is none of RGBA32, RGBA64 and 4:2:2 without alpha), 0x10063 (an unknown
    /// mode), 0x10064 (a factor outside 0 .. 100, or NaN).
    vfILStatus Verify() override;

    vfILLegalizeMode GetMode() const;
    /// Default VFIL_LEGALIZE_CLIP.
    void SetMode(vfILLegalizeMode mode);
    double GetLuminanceAdjustFactor() const;
    /// \param factor How far luma moves towards the legal range in VFIL_LEGALIZE_ADJUST_LUMINANCE_SATURATION,
    ///               0 .. 100 per cent. Default 50.
    void SetLuminanceAdjustFactor(double factor);
    int GetStrictPairs() const;
    /// \param strict Non-zero has modes 1 to 4 judge both pixels of a pair by the chroma that they share,
    ///               store what is legal with both, and see to what rounding leaves: by its own samples no
    ///               pixel of the output is outside of RGB by more than one code of 0 .. 255. 0, the default,
    ///               does as told above, and leaves up to 2 codes even in flat pictures.
    void SetStrictPairs(int strict);

protected:
    vfILStatus ProcessData() override;
    vfILStatus DoEffect() override;

private:
    bool IsKnownMode() const;
    vfILStatus ProcessRGBA();
    vfILStatus ShowRGBA();
    vfILStatus ProcessYCC422(PXColorModel model, int alternate);

    vfILLegalizeMode m_mode = VFIL_LEGALIZE_CLIP;
    double m_luminanceAdjustFactor = 50;
    int m_strictPairs = 0;
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};
