/// \file
/// Affine maps.

#include "il/loops/frame/saturate.h"
#include "il/loops/transform/pyramid.h"
#include "il/loops/transform/sampling.h"

#include <vfil/affine.h>

#include <algorithm>
#include <cmath>
#include <limits>

using namespace vfil;

const wchar_t* const vfILAffineTransform::m_ClassName = L"vfILAffineTransform";

vfILAffineTransform::vfILAffineTransform()
{
    SetCoefficientCount(6);
    KeepsLines();
}

vfILAffineTransform::~vfILAffineTransform() = default;

const wchar_t* vfILAffineTransform::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILAffineTransform::Verify()
{
    return VerifyTransform(VFIL_INTERP_SUM_NEAREST, GetClassNameW());
}

namespace {

/// A map x' = m[0] x + m[1] y + m[2], y' = m[3] x + m[4] y + m[5], by the rules of the coefficients'
/// precision.
void Map(const float (&m)[6], float& x, float& y)
{
    const double px = x;
    const double py = y;
    x = SaturateToFloat(m[0] * px + m[1] * py + m[2]);
    y = SaturateToFloat(m[3] * px + m[4] * py + m[5]);
}

/// Whole numbers of the steps' unit that are less than 2 to the power of 22 pixels. A sum of them, with that
/// of the factors' bits, has no bit that a double lacks.
class WholeSteps {
public:
    /// False when \p v is no such number.
    bool Take(double v, std::int64_t& whole)
    {
        const double scaled = std::ldexp(v, kStepBits);
        if (!(std::abs(scaled) < 0x1p62) || scaled != std::floor(scaled)) return false;
        whole = static_cast<std::int64_t>(scaled);
        m_bits |= static_cast<std::uint64_t>(whole);
        return true;
    }
    /// Whether all numbers up to a size, that are sums of multiples of those taken, are doubles.
    bool AreDoubles(double size) const
    {
        if (m_bits == 0) return true;
        const double unit = static_cast<double>(m_bits & (~m_bits + 1));
        return std::ldexp(size, kStepBits) < unit * 0x1p53;
    }

private:
    std::uint64_t m_bits = 0;
};

/// The input coordinates of a line, by steps.
class Steps {
public:
    Steps(const float (&inverse)[6], const vfILVector2f& start)
        : m_du(inverse[0]), m_dv(inverse[3]),
          m_u(inverse[0] * double{start[0]} + inverse[1] * double{start[1]} + inverse[2]),
          m_v(inverse[3] * double{start[0]} + inverse[4] * double{start[1]} + inverse[5])
    {}
    /// The same in fixed point, where the sums have no rounding and so any order of them is the same: true of
    /// nearly all maps of pictures, whose factors are floats.
    bool ToFixed(const float (&inverse)[6], const vfILVector2f& start, long width, SampleSteps& steps) const
    {
        return ToFixed(inverse, start, width, m_u, m_du, steps.u, steps.du) &&
               ToFixed(inverse + 3, start, width, m_v, m_dv, steps.v, steps.dv);
    }
    /// The next ones.
    void Take(long count, double* u, double* v)
    {
        for (long i = 0; i < count; ++i) {
            u[i] = m_u;
            v[i] = m_v;
            m_u += m_du;
            m_v += m_dv;
        }
    }

private:
    static bool ToFixed(const float* factors, const vfILVector2f& start, long width, double u, double du,
                        std::int64_t& fixedU, std::int64_t& fixedDu)
    {
        constexpr double kMost = 0x1p22;
        const double terms[] = {factors[0] * double{start[0]}, factors[1] * double{start[1]}, factors[2]};
        WholeSteps whole;
        std::int64_t unused = 0;
        double size = 0;
        for (const double term : terms) {
            if (!whole.Take(term, unused)) return false;
            size += std::abs(term);
        }
        const double last = u + static_cast<double>(width) * du;
        size = std::max({size, std::abs(u), std::abs(last)});
        return whole.Take(du, fixedDu) && whole.Take(u, fixedU) && whole.AreDoubles(size) &&
               std::max(size, 16 * std::abs(du)) < kMost;
    }

    double m_du, m_dv;
    double m_u, m_v;
};

} // namespace

vfILStatus vfILAffineTransform::SetUpCoefficients()
{
    const float* const c = GetCoefficients();
    std::copy(c, c + 6, m_forward);
    const double a = c[0], b = c[1], x = c[2], d = c[3], e = c[4], y = c[5];
    const double inverse = 1 / (a * e - b * d);
    const double back[6] = {e * inverse,  -b * inverse, (b * y - e * x) * inverse,
                            -d * inverse, a * inverse,  (d * x - a * y) * inverse};
    // False for what follows a determinant of 0 or NaN.
    const auto fits = [](double v) { return std::abs(v) <= double{std::numeric_limits<float>::max()}; };
    if (!std::all_of(std::begin(back), std::end(back), fits)) return VFIL_FAILURE;
    std::transform(std::begin(back), std::end(back), m_inverse,
                   [](double v) { return static_cast<float>(v); });
    return VFIL_SUCCESS;
}

void vfILAffineTransform::TransformPointXY(float& x, float& y)
{
    Map(m_forward, x, y);
}

void vfILAffineTransform::InvertTransformPointXY(float& x, float& y)
{
    Map(m_inverse, x, y);
}

/// By the form of the interpolation type.
void vfILAffineTransform::SampleByForm(const vfILVector2f& start, long width, unsigned char* output)
{
    const SampleRow sample = FindSampleRow(m_simdAvailable != 0, SampleFormOf(GetInterpolationType()),
                                           SamplePixelOf(Run().output));
    const SampleSource source = SourceOf(Run());
    Steps steps(m_inverse, start);
    SampleSteps fixed{};
    if (steps.ToFixed(m_inverse, start, width, fixed)) {
        sample(source, fixed, static_cast<std::size_t>(width), output);
        return;
    }
    double u[kSampleBlock];
    double v[kSampleBlock];
    for (long at = 0; at < width; at += kSampleBlock) {
        const long count = std::min(kSampleBlock, width - at);
        steps.Take(count, u, v);
        sample(source, u, v, static_cast<std::size_t>(count), output + at * Run().output.pixelBytes);
    }
}

void vfILAffineTransform::TransformLineWithNearestNeighborInterpolation(const vfILVector2f& start, long width,
                                                                        unsigned char* output)
{
    SampleByForm(start, width, output);
}

void vfILAffineTransform::TransformLineWithBilinearInterpolation(const vfILVector2f& start, long width,
                                                                 unsigned char* output)
{
    SampleByForm(start, width, output);
}

void vfILAffineTransform::TransformLineWithBicubicInterpolation(const vfILVector2f& start, long width,
                                                                unsigned char* output)
{
    SampleByForm(start, width, output);
}

/// All footprints have one size, and so the line one choice of levels.
void vfILAffineTransform::TransformLineWithBilinearPrefilteredInterpolation(const vfILVector2f& start,
                                                                            long width, unsigned char* output)
{
    const auto square = [](double v) { return v * v; };
    const double a = m_inverse[0], b = m_inverse[1], d = m_inverse[3], e = m_inverse[4];
    const double size = FootprintSize(square(a + b) + square(d + e), square(a - b) + square(d - e));
    const LevelChoice choice = ChooseLevel(size, Levels().GetCount());
    Steps steps(m_inverse, start);
    double u[kSampleBlock];
    double v[kSampleBlock];
    for (long at = 0; at < width; at += kSampleBlock) {
        const long count = std::min(kSampleBlock, width - at);
        steps.Take(count, u, v);
        SampleLevels(Levels(), Run(), m_simdAvailable != 0, choice, u, v, count,
                     output + at * Run().output.pixelBytes);
    }
}
