/// \file
/// Colour values, palettes of them, and the colour-space matrices of the library.
#pragma once

#include <vfil/export.h>
#include <vfil/pxformat.h>
#include <vfil/shared.h>

#include <array>
#include <vector>

/// A colour as a plain record, to pass it across a host's boundary.
struct tagVFILCOLORSTRUCT {
    double red;
    double green;
    double blue;
    double alpha;
    /// Ends in a zero; null stands for an empty name. A name made by the library is owned by the record's
    /// holder and is freed by ClearColorStruct; a holder who fills the record on his own allocates it by
    /// std::malloc.
    wchar_t* name;
};

/// Frees the name of \p record and makes it null. The numbers stay. A null pointer is ignored.
VFIL_API void ClearColorStruct(tagVFILCOLORSTRUCT* record) noexcept;

/// A colour: red, green, blue and alpha as doubles, 0 .. 1 by convention, and a name.
///
/// Components of all models are 0 .. 1. A hue is an angle divided by 360 degrees. YCC components are studio
/// range on that scale (luma 16/255 .. 235/255, chroma 16/255 .. 240/255); U, V, I and Q are shifted and
/// scaled to 0 .. 1. Nothing but Verify and the packed forms looks at the range.
///
/// In a getter a null pointer skips that component. In a setter it keeps the component that the colour has
/// now. Alpha is the same in all models.
///
/// No member throws. Copies share the name and never allocate.
class VFIL_API vfILColor {
public:
    /// (0, 0, 0, 1) without a name.
    vfILColor() noexcept = default;
    vfILColor(double red, double green, double blue, double alpha) noexcept;
    /// Takes a copy of the name; the record stays its holder's.
    vfILColor(const tagVFILCOLORSTRUCT& record) noexcept;
    vfILColor(const vfILColor& other) noexcept = default;
    ~vfILColor() = default;

    vfILColor& operator=(const vfILColor& other) noexcept = default;
    vfILColor& operator=(const tagVFILCOLORSTRUCT& record) noexcept;
    /// The four doubles and the name are equal.
    bool operator==(const vfILColor& other) const noexcept;
    bool operator==(const tagVFILCOLORSTRUCT& record) const noexcept;
    bool operator!=(const vfILColor& other) const noexcept { return !(*this == other); }
    bool operator!=(const tagVFILCOLORSTRUCT& record) const noexcept { return !(*this == record); }
    /// Allocates the name, also an empty one: release it with ClearColorStruct. Null when memory runs out.
    operator tagVFILCOLORSTRUCT() const noexcept;
    /// A new copy, owned by the caller. Null when memory runs out.
    vfILColor* Clone() const noexcept;

    double GetRed() const noexcept { return m_red; }
    void SetRed(double red) noexcept { m_red = red; }
    double GetGreen() const noexcept { return m_green; }
    void SetGreen(double green) noexcept { m_green = green; }
    double GetBlue() const noexcept { return m_blue; }
    void SetBlue(double blue) noexcept { m_blue = blue; }
    double GetAlpha() const noexcept { return m_alpha; }
    void SetAlpha(double alpha) noexcept { m_alpha = alpha; }
    void GetRGB(double* red, double* green, double* blue) const noexcept;
    /// Alpha stays.
    void SetRGB(double red, double green, double blue) noexcept;
    void GetRGBA(double* red, double* green, double* blue, double* alpha) const noexcept;
    void SetRGBA(double red, double green, double blue, double alpha) noexcept;
    /// Never null. Valid until this colour changes its name or ends.
    const wchar_t* GetName() const noexcept;
    /// Takes a copy; null gives the empty name.
    /// \return 1; 0 when memory runs out, the name is empty then.
    int SetName(const wchar_t* name) noexcept;

    /// 1 when all four doubles are in 0 .. 1, else 0.
    int Verify() const noexcept;

    /// The red value: no luminance is computed.
    void GetColorAsMono(double* mono) const noexcept;
    /// Sets red alone.
    void SetColorAsMono(const double* mono) noexcept;
    void GetColorAsRGBA(double* red, double* green, double* blue, double* alpha) const noexcept;
    void SetColorAsRGBA(const double* red, const double* green, const double* blue,
                        const double* alpha) noexcept;
    /// Hue and saturation of a grey are 0.
    void GetColorAsHLSA(double* hue, double* lightness, double* saturation, double* alpha) const noexcept;
    /// A hue of 1 is the hue 0; others outside 0 .. 1 lose their whole part.
    void SetColorAsHLSA(const double* hue, const double* lightness, const double* saturation,
                        const double* alpha) noexcept;
    /// Hue and saturation of a grey are 0.
    void GetColorAsHSVA(double* hue, double* saturation, double* value, double* alpha) const noexcept;
    /// A hue of 1 is the hue 0; others outside 0 .. 1 lose their whole part.
    void SetColorAsHSVA(const double* hue, const double* saturation, const double* value,
                        const double* alpha) noexcept;
    void GetColorAsCMYA(double* cyan, double* magenta, double* yellow, double* alpha) const noexcept;
    void SetColorAsCMYA(const double* cyan, const double* magenta, const double* yellow,
                        const double* alpha) noexcept;
    /// Cyan, magenta and yellow of black are NaN: 0 / 0 is not guarded.
    void GetColorAsCMYKA(double* cyan, double* magenta, double* yellow, double* black,
                         double* alpha) const noexcept;
    void SetColorAsCMYKA(const double* cyan, const double* magenta, const double* yellow, const double* black,
                         const double* alpha) noexcept;
    /// BT.601 weights.
    void GetColorAsYCCA(double* y, double* cb, double* cr, double* alpha) const noexcept;
    void SetColorAsYCCA(const double* y, const double* cb, const double* cr, const double* alpha) noexcept;
    /// BT.709 weights.
    void GetColorAsYCCA709(double* y, double* cb, double* cr, double* alpha) const noexcept;
    void SetColorAsYCCA709(const double* y, const double* cb, const double* cr, const double* alpha) noexcept;
    void GetColorAsYUVA(double* y, double* u, double* v, double* alpha) const noexcept;
    void SetColorAsYUVA(const double* y, const double* u, const double* v, const double* alpha) noexcept;
    void GetColorAsYIQA(double* y, double* i, double* q, double* alpha) const noexcept;
    void SetColorAsYIQA(const double* y, const double* i, const double* q, const double* alpha) noexcept;

    // Packed forms: a component is a sample of 0 .. 255 or 0 .. 65535, rounded half away from zero.
    // Components outside 0 .. 1 are clamped, NaN gives 0. 8 and 16 are one sample of the model MONO; 24 is
    // three bytes, 32 four bytes and 64 four words of the models RGB, HLS, HSV, CMY, YCC, YCC709, YUV and
    // YIQ, in the order of GetColorAs..., alpha last. They return 1; for another model, or a null pointer,
    // they return 0: a getter has written zeros then, and a setter has changed nothing.

    int GetColorAs8(unsigned char* sample, PXColorModel model) const noexcept;
    int SetColorAs8(const unsigned char* sample, PXColorModel model) noexcept;
    int GetColorAs16(unsigned short* sample, PXColorModel model) const noexcept;
    int SetColorAs16(const unsigned short* sample, PXColorModel model) noexcept;
    int GetColorAs24(unsigned char* samples, PXColorModel model) const noexcept;
    /// Alpha stays.
    int SetColorAs24(const unsigned char* samples, PXColorModel model) noexcept;
    int GetColorAs32(unsigned char* samples, PXColorModel model) const noexcept;
    int SetColorAs32(const unsigned char* samples, PXColorModel model) noexcept;
    int GetColorAs64(unsigned short* samples, PXColorModel model) const noexcept;
    int SetColorAs64(const unsigned short* samples, PXColorModel model) noexcept;

private:
    double m_red = 0;
    double m_green = 0;
    double m_blue = 0;
    double m_alpha = 1;
    vfILSharedBytes m_name; // none stands for the empty name
};

/// A growing array of colours, counted from 0.
///
/// No member throws: where memory runs out the palette stays as it was and the member returns 0.
class VFIL_API vfILPalette {
public:
    vfILPalette() noexcept = default;
    /// Empty when memory runs out.
    vfILPalette(const vfILPalette& other) noexcept;
    ~vfILPalette() = default;
    vfILPalette& operator=(const vfILPalette& other) noexcept;

    /// As a fresh palette: empty, and holding no memory.
    void Init() noexcept;
    long GetSize() const noexcept;
    /// Adds default colours, or drops entries from the end; 0 frees the memory too.
    /// \return 1; 0 for a negative size, which changes nothing.
    int SetSize(long size) noexcept;
    /// Replaces an entry; an index beyond the end first grows the palette to it with default colours.
    /// \return 1; 0 for a negative index.
    int SetAt(long index, const vfILColor& color) noexcept;
    /// A copy of the entry; (1, 0, 0, 0) when there is none.
    vfILColor GetAt(long index) const noexcept;
    /// Removes an entry and closes the gap.
    /// \return 1; 0 when there is no such entry.
    int DelAt(long index) noexcept;
    void RemoveAll() noexcept;
    /// A new copy, owned by the caller. Null when memory runs out.
    vfILPalette* Clone() const noexcept;
    /// Takes the entries of \p other. \return 1; 0 when memory runs out.
    int Copy(const vfILPalette& other) noexcept;

private:
    std::vector<vfILColor> m_colors;
};

/// A colour-space matrix. Entries 0 .. 2 are the coefficients of the first input for the three outputs, 4 ..
/// 6 those of the second, 8 .. 10 of the third, 12 .. 14 the constants that are added; 3, 7 and 11 are 0 and
/// 15 is 1, so that data() loads as a 4 by 4 transform.
using vfILColorMatrix = std::array<double, 16>;

// "YCCA" alone is full range with chroma around 0; "YCCAOffset" is studio range on a scale of 0 .. 1: luma
// 16/255 and a span of 219/255, chroma around 128/255 and a span of 224/255.

extern VFIL_API const vfILColorMatrix s_dfArrayRGBAtoYCCA;
extern VFIL_API const vfILColorMatrix s_dfArrayRGBAtoYCCAOffset;
extern VFIL_API const vfILColorMatrix s_dfArrayRGBAtoYCCA709;
extern VFIL_API const vfILColorMatrix s_dfArrayRGBAtoYCCA709Offset;
extern VFIL_API const vfILColorMatrix s_dfArrayYCCAtoRGBA;
extern VFIL_API const vfILColorMatrix s_dfArrayYCCAOffsettoRGBA;
extern VFIL_API const vfILColorMatrix s_dfArrayYCCA709toRGBA;
extern VFIL_API const vfILColorMatrix s_dfArrayYCCA709OffsettoRGBA;
extern VFIL_API const vfILColorMatrix s_dfArrayYCCA601toYCCA709;
extern VFIL_API const vfILColorMatrix s_dfArrayYCCA709toYCCA601;
extern VFIL_API const vfILColorMatrix s_dfArrayYCCA601OffsettoYCCA709Offset;
extern VFIL_API const vfILColorMatrix s_dfArrayYCCA709OffsettoYCCA601Offset;
