/// \file
/// What all geometric transforms share apart from the mapping, and the two-pass resampler's face.

#include "il/loops/transform/panzoomrun.h"
#include "il/rows/pixarith.h"

#include <vfil/processor.h>
#include <vfil/transform.h>

#include <algorithm>

using namespace vfil;

namespace {

constexpr unsigned long kWhole = 16384;

/// Sums of a few of these fit 64 bits.
constexpr std::int64_t kFar = std::int64_t{1} << 60;

std::int64_t Signed(unsigned long value)
{
    return static_cast<std::int64_t>(std::min<unsigned long>(value, kFar));
}

std::int64_t Signed(long value)
{
    return std::clamp<std::int64_t>(value, -kFar, kFar);
}

double SmoothStep(std::int64_t from, unsigned long softness)
{
    const double t = static_cast<double>(from) / (static_cast<double>(softness) + 1);
    return t * t * (3 - 2 * t);
}

/// An index moved on; far beyond all rows it wraps.
long Next(long index, long stride)
{
    return static_cast<long>(static_cast<unsigned long>(index) + static_cast<unsigned long>(stride));
}

/// A run of samples of which some lie outside.
struct Samples {
    const unsigned short* in;
    long low, high;

    unsigned long operator[](long index) const { return index < low || index > high ? 0 : in[index]; }
};

unsigned short Rounded(unsigned long sum)
{
    return static_cast<unsigned short>((sum + kWhole / 2) >> 14);
}

void Shrink(const Samples& in, long count, unsigned short* out, unsigned long step, long index,
            unsigned long fraction, long stride)
{
    unsigned long sum = 0;
    unsigned long left = kWhole;
    for (long written = 0; written < count;) {
        const unsigned long share = std::min(fraction, left);
        sum += share * in[index];
        left -= share;
        if (left == 0) { // what remains of the pixel is the next output's
            out[written++] = Rounded(sum);
            sum = 0;
            left = kWhole;
            fraction -= share;
        } else {
            index = Next(index, stride);
            fraction = step;
        }
    }
}

bool IsWithin(const unsigned short* pair, unsigned short low, unsigned short high)
{
    return pair[0] >= low && pair[0] <= high && pair[1] >= low && pair[1] <= high;
}

} // namespace

vfILTransformBase::~vfILTransformBase() = default;

vfILStatus vfILTransformBase::OnVerify(long width, long height, long& code)
{
    const auto refuse = [&code](long reason) {
        code = reason;
        return VFIL_FAILURE;
    };
    const auto exceed = [](unsigned long a, unsigned long b, std::int64_t size) {
        return Signed(a) + Signed(b) > size;
    };
    if (!(m_opacity >= 0 && m_opacity <= 1)) return refuse(0x1006E);
    if (m_borderSoftness.left > m_borderSize.left || m_borderSoftness.right > m_borderSize.right ||
        m_borderSoftness.top > m_borderSize.top || m_borderSoftness.bottom > m_borderSize.bottom)
        return refuse(0x10070);
    if (exceed(m_cropping.left, m_cropping.right, width) || exceed(m_cropping.top, m_cropping.bottom, height))
        return refuse(0x10069);
    const std::int64_t w = width - Signed(m_cropping.left) - Signed(m_cropping.right);
    const std::int64_t h = height - Signed(m_cropping.top) - Signed(m_cropping.bottom);
    if (exceed(m_borderSize.left, m_borderSize.right, w) || exceed(m_borderSize.top, m_borderSize.bottom, h))
        return refuse(0x10070);
    if (exceed(m_opacityFalloff.left, m_opacityFalloff.right, w) ||
        exceed(m_opacityFalloff.top, m_opacityFalloff.bottom, h))
        return refuse(0x1006F);
    return VFIL_SUCCESS;
}

double vfILTransformBase::ComputeFalloff(long p, unsigned long a, unsigned long b, long inLow,
                                         unsigned long softLow, long inHigh, unsigned long softHigh)
{
    const std::int64_t at = Signed(p);
    const std::int64_t lowEnd = Signed(a) + Signed(inLow);
    const std::int64_t highEnd = Signed(b) - Signed(inHigh);
    if (at < lowEnd) return at < lowEnd - Signed(softLow) ? 1 : SmoothStep(lowEnd - at, softLow);
    if (at <= highEnd) return 0;
    return at <= highEnd + Signed(softHigh) ? SmoothStep(at - highEnd, softHigh) : 1;
}

void vfILTransformBase::GetInputPixelAndFraction(long base, unsigned long step, unsigned long fraction,
                                                 long stride, long position, long& index,
                                                 unsigned long& remainder)
{
    if (fraction == 0) {
        index = base;
        remainder = 0;
        return;
    }
    const unsigned long passed = fraction - step + static_cast<unsigned long>(position) * kWhole;
    index = static_cast<long>(static_cast<unsigned long>(base) +
                              passed / fraction * static_cast<unsigned long>(stride));
    remainder = fraction - passed % fraction;
}

void vfILTransformBase::ResampleOneRowUSHORT(int magnify, long low, long high, unsigned short* in, long count,
                                             unsigned short* out, unsigned long step, long start,
                                             unsigned long fraction, long stride)
{
    const Samples samples{in, low, high};
    if (magnify == 0) {
        if (step != 0)
            Shrink(samples, count, out, step, start, fraction, stride);
        else
            std::fill_n(out, std::max(count, 0L), static_cast<unsigned short>(0));
        return;
    }
    for (long i = 0, index = start; i < count; ++i) {
        out[i] = Rounded(samples[index] * fraction + samples[Next(index, stride)] * (kWhole - fraction));
        if (fraction < step) {
            fraction += kWhole;
            index = Next(index, stride);
        }
        fraction -= step;
    }
}

void vfILTransformBase::PerformOverOnRowRGBA8(int premultiplied, unsigned char* front, unsigned char* back,
                                              long count)
{
    using Arith8 = Arith<std::uint8_t>;
    for (long i = 0; i < count; ++i, front += 4, back += 4) {
        const auto open = static_cast<std::uint8_t>(255 - back[3]);
        for (int c = 0; c < 3; ++c) {
            const std::uint8_t colour = premultiplied != 0 ? front[c] : Arith8::Mult(front[c], front[3]);
            back[c] = Arith8::Add(back[c], Arith8::Mult(open, colour));
        }
        back[3] = Arith8::Add(back[3], Arith8::Mult(open, front[3]));
    }
}

int vfILTransformBase::FindFullyInsideSpan(long begin, long end, unsigned short* rows, unsigned short* rows2,
                                           unsigned short low, unsigned short high, long& first,
                                           unsigned long& last)
{
    const auto isInside = [=](long pair) {
        return IsWithin(rows + 2 * pair, low, high) &&
               (rows2 == nullptr || IsWithin(rows2 + 2 * pair, low, high));
    };
    first = begin;
    while (first <= end && !isInside(first))
        ++first;
    last = static_cast<unsigned long>(end);
    if (first > end) {
        first = end + 1;
        return 0;
    }
    long after = first + 1;
    while (after <= end && isInside(after))
        ++after;
    last = static_cast<unsigned long>(after - 1);
    return 1;
}

int vfILTransformBase::AllocFailed(void* memory, vfILStatus& status)
{
    if (memory != nullptr) return 0;
    if (auto* const processor = dynamic_cast<vfILProcessor*>(this))
        processor->SetLastError(vfILError(0x10001));
    status = VFIL_FAILURE;
    return 1;
}

vfILStatus vfILTransformBase::TransformImageWithAntialiasedOrBilinearPanzoom(
    int simd, double sx, double tx, double sy, double ty, IPXImage* a, void* pixelsA, int premultipliedA,
    IPXImage* b, void* pixelsB, const vfILBbox2l& boxB, const vfILVector2l& offsetB,
    const vfILColor& defaultColor, IPXImage* output, const vfILBbox2l& effectBox,
    const vfILVector2l& outputOffset, int mode, int premultipliedOutput)
{
    PanZoomRun run;
    run.x = {sx, tx};
    run.y = {sy, ty};
    run.a = {ImageView(a), static_cast<unsigned char*>(pixelsA)};
    run.b = {ImageView(b), static_cast<unsigned char*>(pixelsB)};
    run.boxB = boxB;
    run.offsetB = offsetB;
    run.defaultColour = defaultColor;
    run.output = ImageView(output);
    run.effectBox = effectBox;
    run.outputOffset = outputOffset;
    run.mode = static_cast<unsigned long>(mode);
    run.useVectors = simd != 0;
    run.aPremultiplied = premultipliedA != 0;
    run.bPremultiplied = m_imgBPremultiplied != 0;
    run.processor = dynamic_cast<const vfILProcessor*>(this);
    const auto line = [](unsigned long low, unsigned long high) { return BandWidths{low, high}; };
    run.crop[0] = line(m_cropping.left, m_cropping.right);
    run.crop[1] = line(m_cropping.top, m_cropping.bottom);
    run.border[0] = line(m_borderSize.left, m_borderSize.right);
    run.border[1] = line(m_borderSize.top, m_borderSize.bottom);
    run.softness[0] = line(m_borderSoftness.left, m_borderSoftness.right);
    run.softness[1] = line(m_borderSoftness.top, m_borderSoftness.bottom);
    run.falloff[0] = line(m_opacityFalloff.left, m_opacityFalloff.right);
    run.falloff[1] = line(m_opacityFalloff.top, m_opacityFalloff.bottom);
    run.borderColour = m_borderColor;
    run.opacity = m_opacity;
    run.bandStrength = ComputeFalloff;
    run.multiplies = !run.aPremultiplied && (premultipliedOutput != 0 || run.ShowsThrough());
    m_outputImgPremultiplied = run.aPremultiplied || run.multiplies ? 1 : 0;
    vfILStatus status = VFIL_SUCCESS;
    if (!RunPanZoom(run)) AllocFailed(nullptr, status);
    return status;
}

void vfILTransformBase::SetCropping(unsigned long left, unsigned long right, unsigned long top,
                                    unsigned long bottom)
{
    m_cropping = {left, right, top, bottom};
}

void vfILTransformBase::GetCropping(unsigned long& left, unsigned long& right, unsigned long& top,
                                    unsigned long& bottom) const
{
    m_cropping.CopyTo(left, right, top, bottom);
}

void vfILTransformBase::SetBorderSize(unsigned long left, unsigned long right, unsigned long top,
                                      unsigned long bottom)
{
    m_borderSize = {left, right, top, bottom};
}

void vfILTransformBase::GetBorderSize(unsigned long& left, unsigned long& right, unsigned long& top,
                                      unsigned long& bottom) const
{
    m_borderSize.CopyTo(left, right, top, bottom);
}

void vfILTransformBase::SetBorderSoftness(unsigned long left, unsigned long right, unsigned long top,
                                          unsigned long bottom)
{
    m_borderSoftness = {left, right, top, bottom};
}

void vfILTransformBase::GetBorderSoftness(unsigned long& left, unsigned long& right, unsigned long& top,
                                          unsigned long& bottom) const
{
    m_borderSoftness.CopyTo(left, right, top, bottom);
}

void vfILTransformBase::SetOpacityFalloff(unsigned long left, unsigned long right, unsigned long top,
                                          unsigned long bottom)
{
    m_opacityFalloff = {left, right, top, bottom};
}

void vfILTransformBase::GetOpacityFalloff(unsigned long& left, unsigned long& right, unsigned long& top,
                                          unsigned long& bottom) const
{
    m_opacityFalloff.CopyTo(left, right, top, bottom);
}

void vfILTransformBase::SetBorderColor(const vfILColor& color)
{
    m_borderColor = color;
}

const vfILColor& vfILTransformBase::GetBorderColor() const
{
    return m_borderColor;
}

void vfILTransformBase::SetOpacity(double opacity)
{
    m_opacity = opacity;
}

double vfILTransformBase::GetOpacity() const
{
    return m_opacity;
}

void vfILTransformBase::SetImgAPremultiplied(int premultiplied)
{
    m_imgAPremultiplied = premultiplied;
}

int vfILTransformBase::GetImgAPremultiplied() const
{
    return m_imgAPremultiplied;
}

void vfILTransformBase::SetInputImgPremultiplied(int premultiplied)
{
    m_imgAPremultiplied = premultiplied;
}

int vfILTransformBase::GetInputImgPremultiplied() const
{
    return m_imgAPremultiplied;
}

void vfILTransformBase::SetImgBPremultiplied(int premultiplied)
{
    m_imgBPremultiplied = premultiplied;
}

int vfILTransformBase::GetImgBPremultiplied() const
{
    return m_imgBPremultiplied;
}

void vfILTransformBase::SetCreatePremultipliedOutput(int premultiplied)
{
    m_createPremultipliedOutput = premultiplied;
}

int vfILTransformBase::GetCreatePremultipliedOutput() const
{
    return m_createPremultipliedOutput;
}

int vfILTransformBase::GetOutputImgPremultiplied() const
{
    return m_outputImgPremultiplied;
}

void vfILTransformBase::SetOutputImgPremultiplied(int premultiplied)
{
    m_outputImgPremultiplied = premultiplied;
}
