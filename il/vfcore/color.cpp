/// \file
/// The colour value: its record, its models and its packed forms. The formulas of the models are in
/// colmodels.cpp.

#include <vfil/color.h>

#include "il/loops/convert/colmodels.h"
#include "il/rows/pixarith.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <new>

using vfil::Arith;
using vfil::ColorModel;
using vfil::FindColorModel;
using vfil::RoundToSample;
using vfil::Triple;

namespace {

void Store(double* to, double value)
{
    if (to != nullptr) *to = value;
}

double Load(const double* from, double current)
{
    return from != nullptr ? *from : current;
}

Triple RgbOf(const vfILColor& color)
{
    return {color.GetRed(), color.GetGreen(), color.GetBlue()};
}

void SetRgbOf(vfILColor& color, const Triple& rgb)
{
    color.SetRGB(rgb[0], rgb[1], rgb[2]);
}

void GetAs(const vfILColor& color, PXColorModel model, double* a, double* b, double* c, double* alpha)
{
    const Triple components = FindColorModel(model)->fromRgb(RgbOf(color));
    Store(a, components[0]);
    Store(b, components[1]);
    Store(c, components[2]);
    Store(alpha, color.GetAlpha());
}

void SetAs(vfILColor& color, PXColorModel id, const double* a, const double* b, const double* c,
           const double* alpha)
{
    const ColorModel& model = *FindColorModel(id);
    // With nothing to set, the way to the model and back would only lose accuracy.
    if (a != nullptr || b != nullptr || c != nullptr) {
        const bool complete = a != nullptr && b != nullptr && c != nullptr;
        const Triple now = complete ? Triple{} : model.fromRgb(RgbOf(color));
        SetRgbOf(color, model.toRgb({Load(a, now[0]), Load(b, now[1]), Load(c, now[2])}));
    }
    color.SetAlpha(Load(alpha, color.GetAlpha()));
}

struct Cmyk {
    double c, m, y, k;
};

Cmyk CmykOf(const vfILColor& color)
{
    const Triple rgb = RgbOf(color);
    const double largest = std::max({rgb[0], rgb[1], rgb[2]});
    return {1 - rgb[0] / largest, 1 - rgb[1] / largest, 1 - rgb[2] / largest, 1 - largest};
}

template <class Sample>
Sample ToSample(double value)
{
    return RoundToSample<Sample>(value * Arith<Sample>::kFull);
}

template <class Sample>
double FromSample(Sample sample)
{
    return sample * (1.0 / Arith<Sample>::kFull);
}

template <class Sample>
int GetMonoSample(const vfILColor& color, Sample* sample, PXColorModel model)
{
    if (sample == nullptr) return 0;
    *sample = model == PXColorModel_MONO ? ToSample<Sample>(color.GetRed()) : Sample{0};
    return model == PXColorModel_MONO;
}

template <class Sample>
int SetMonoSample(vfILColor& color, const Sample* sample, PXColorModel model)
{
    if (sample == nullptr || model != PXColorModel_MONO) return 0;
    color.SetRed(FromSample(*sample));
    return 1;
}

/// The first \p count samples of the three components and alpha.
template <class Sample>
int GetSamples(const vfILColor& color, Sample* samples, int count, PXColorModel id)
{
    if (samples == nullptr) return 0;
    std::fill_n(samples, count, Sample{0});
    const ColorModel* model = FindColorModel(id);
    if (model == nullptr) return 0;
    std::ranges::transform(model->fromRgb(RgbOf(color)), samples, ToSample<Sample>);
    if (count == 4) samples[3] = ToSample<Sample>(color.GetAlpha());
    return 1;
}

template <class Sample>
int SetSamples(vfILColor& color, const Sample* samples, int count, PXColorModel id)
{
    const ColorModel* model = FindColorModel(id);
    if (samples == nullptr || model == nullptr) return 0;
    SetRgbOf(color, model->toRgb({FromSample(samples[0]), FromSample(samples[1]), FromSample(samples[2])}));
    if (count == 4) color.SetAlpha(FromSample(samples[3]));
    return 1;
}

} // namespace

void ClearColorStruct(tagVFILCOLORSTRUCT* record) noexcept
{
    if (record == nullptr) return;
    std::free(record->name);
    record->name = nullptr;
}

vfILColor::vfILColor(double red, double green, double blue, double alpha) noexcept
    : m_red(red), m_green(green), m_blue(blue), m_alpha(alpha)
{}

vfILColor::vfILColor(const tagVFILCOLORSTRUCT& record) noexcept
    : vfILColor(record.red, record.green, record.blue, record.alpha)
{
    SetName(record.name);
}

vfILColor& vfILColor::operator=(const tagVFILCOLORSTRUCT& record) noexcept
{
    return *this = vfILColor(record);
}

bool vfILColor::operator==(const vfILColor& other) const noexcept
{
    return m_red == other.m_red && m_green == other.m_green && m_blue == other.m_blue &&
           m_alpha == other.m_alpha && std::wcscmp(GetName(), other.GetName()) == 0;
}

bool vfILColor::operator==(const tagVFILCOLORSTRUCT& record) const noexcept
{
    return m_red == record.red && m_green == record.green && m_blue == record.blue &&
           m_alpha == record.alpha && std::wcscmp(GetName(), record.name != nullptr ? record.name : L"") == 0;
}

vfILColor::operator tagVFILCOLORSTRUCT() const noexcept
{
    const std::size_t length = std::wcslen(GetName()) + 1;
    auto* name = static_cast<wchar_t*>(std::malloc(length * sizeof(wchar_t)));
    if (name != nullptr) std::copy_n(GetName(), length, name);
    return {m_red, m_green, m_blue, m_alpha, name};
}

vfILColor* vfILColor::Clone() const noexcept
{
    return new (std::nothrow) vfILColor(*this);
}

void vfILColor::GetRGB(double* red, double* green, double* blue) const noexcept
{
    GetColorAsRGBA(red, green, blue, nullptr);
}

void vfILColor::SetRGB(double red, double green, double blue) noexcept
{
    m_red = red;
    m_green = green;
    m_blue = blue;
}

void vfILColor::GetRGBA(double* red, double* green, double* blue, double* alpha) const noexcept
{
    GetColorAsRGBA(red, green, blue, alpha);
}

void vfILColor::SetRGBA(double red, double green, double blue, double alpha) noexcept
{
    SetRGB(red, green, blue);
    m_alpha = alpha;
}

const wchar_t* vfILColor::GetName() const noexcept
{
    return m_name.Get() != nullptr ? static_cast<const wchar_t*>(m_name.Get()) : L"";
}

int vfILColor::SetName(const wchar_t* name) noexcept
{
    const std::size_t length = name != nullptr ? std::wcslen(name) : 0;
    // The new name is whole before the old one goes, since it may be a part of it.
    const vfILSharedBytes copy =
        length > 0 ? vfILSharedBytes((length + 1) * sizeof(wchar_t)) : vfILSharedBytes();
    if (copy.Get() != nullptr) std::memcpy(copy.Get(), name, length * sizeof(wchar_t));
    m_name = copy;
    return length == 0 || copy.Get() != nullptr ? 1 : 0;
}

int vfILColor::Verify() const noexcept
{
    const double values[] = {m_red, m_green, m_blue, m_alpha};
    return std::ranges::all_of(values, [](double v) { return v >= 0 && v <= 1; });
}

void vfILColor::GetColorAsMono(double* mono) const noexcept
{
    Store(mono, m_red);
}

void vfILColor::SetColorAsMono(const double* mono) noexcept
{
    m_red = Load(mono, m_red);
}

void vfILColor::GetColorAsRGBA(double* red, double* green, double* blue, double* alpha) const noexcept
{
    GetAs(*this, PXColorModel_RGB, red, green, blue, alpha);
}

void vfILColor::SetColorAsRGBA(const double* red, const double* green, const double* blue,
                               const double* alpha) noexcept
{
    SetAs(*this, PXColorModel_RGB, red, green, blue, alpha);
}

void vfILColor::GetColorAsHLSA(double* hue, double* lightness, double* saturation,
                               double* alpha) const noexcept
{
    GetAs(*this, PXColorModel_HLS, hue, lightness, saturation, alpha);
}

void vfILColor::SetColorAsHLSA(const double* hue, const double* lightness, const double* saturation,
                               const double* alpha) noexcept
{
    SetAs(*this, PXColorModel_HLS, hue, lightness, saturation, alpha);
}

void vfILColor::GetColorAsHSVA(double* hue, double* saturation, double* value, double* alpha) const noexcept
{
    GetAs(*this, PXColorModel_HSV, hue, saturation, value, alpha);
}

void vfILColor::SetColorAsHSVA(const double* hue, const double* saturation, const double* value,
                               const double* alpha) noexcept
{
    SetAs(*this, PXColorModel_HSV, hue, saturation, value, alpha);
}

void vfILColor::GetColorAsCMYA(double* cyan, double* magenta, double* yellow, double* alpha) const noexcept
{
    GetAs(*this, PXColorModel_CMY, cyan, magenta, yellow, alpha);
}

void vfILColor::SetColorAsCMYA(const double* cyan, const double* magenta, const double* yellow,
                               const double* alpha) noexcept
{
    SetAs(*this, PXColorModel_CMY, cyan, magenta, yellow, alpha);
}

void vfILColor::GetColorAsCMYKA(double* cyan, double* magenta, double* yellow, double* black,
                                double* alpha) const noexcept
{
    const Cmyk cmyk = CmykOf(*this);
    Store(cyan, cmyk.c);
    Store(magenta, cmyk.m);
    Store(yellow, cmyk.y);
    Store(black, cmyk.k);
    Store(alpha, m_alpha);
}

void vfILColor::SetColorAsCMYKA(const double* cyan, const double* magenta, const double* yellow,
                                const double* black, const double* alpha) noexcept
{
    if (cyan != nullptr || magenta != nullptr || yellow != nullptr || black != nullptr) {
        const Cmyk now = CmykOf(*this);
        const double light = 1 - Load(black, now.k);
        SetRGB((1 - Load(cyan, now.c)) * light, (1 - Load(magenta, now.m)) * light,
               (1 - Load(yellow, now.y)) * light);
    }
    m_alpha = Load(alpha, m_alpha);
}

void vfILColor::GetColorAsYCCA(double* y, double* cb, double* cr, double* alpha) const noexcept
{
    GetAs(*this, PXColorModel_YCC, y, cb, cr, alpha);
}

void vfILColor::SetColorAsYCCA(const double* y, const double* cb, const double* cr,
                               const double* alpha) noexcept
{
    SetAs(*this, PXColorModel_YCC, y, cb, cr, alpha);
}

void vfILColor::GetColorAsYCCA709(double* y, double* cb, double* cr, double* alpha) const noexcept
{
    GetAs(*this, PXColorModel_YCC709, y, cb, cr, alpha);
}

void vfILColor::SetColorAsYCCA709(const double* y, const double* cb, const double* cr,
                                  const double* alpha) noexcept
{
    SetAs(*this, PXColorModel_YCC709, y, cb, cr, alpha);
}

void vfILColor::GetColorAsYUVA(double* y, double* u, double* v, double* alpha) const noexcept
{
    GetAs(*this, PXColorModel_YUV, y, u, v, alpha);
}

void vfILColor::SetColorAsYUVA(const double* y, const double* u, const double* v,
                               const double* alpha) noexcept
{
    SetAs(*this, PXColorModel_YUV, y, u, v, alpha);
}

void vfILColor::GetColorAsYIQA(double* y, double* i, double* q, double* alpha) const noexcept
{
    GetAs(*this, PXColorModel_YIQ, y, i, q, alpha);
}

void vfILColor::SetColorAsYIQA(const double* y, const double* i, const double* q,
                               const double* alpha) noexcept
{
    SetAs(*this, PXColorModel_YIQ, y, i, q, alpha);
}

int vfILColor::GetColorAs8(unsigned char* sample, PXColorModel model) const noexcept
{
    return GetMonoSample(*this, sample, model);
}

int vfILColor::SetColorAs8(const unsigned char* sample, PXColorModel model) noexcept
{
    return SetMonoSample(*this, sample, model);
}

int vfILColor::GetColorAs16(unsigned short* sample, PXColorModel model) const noexcept
{
    return GetMonoSample(*this, sample, model);
}

int vfILColor::SetColorAs16(const unsigned short* sample, PXColorModel model) noexcept
{
    return SetMonoSample(*this, sample, model);
}

int vfILColor::GetColorAs24(unsigned char* samples, PXColorModel model) const noexcept
{
    return GetSamples(*this, samples, 3, model);
}

int vfILColor::SetColorAs24(const unsigned char* samples, PXColorModel model) noexcept
{
    return SetSamples(*this, samples, 3, model);
}

int vfILColor::GetColorAs32(unsigned char* samples, PXColorModel model) const noexcept
{
    return GetSamples(*this, samples, 4, model);
}

int vfILColor::SetColorAs32(const unsigned char* samples, PXColorModel model) noexcept
{
    return SetSamples(*this, samples, 4, model);
}

int vfILColor::GetColorAs64(unsigned short* samples, PXColorModel model) const noexcept
{
    return GetSamples(*this, samples, 4, model);
}

int vfILColor::SetColorAs64(const unsigned short* samples, PXColorModel model) noexcept
{
    return SetSamples(*this, samples, 4, model);
}
