/// \file
/// Sampling anywhere, by a kernel that knows of edges and one that does not: which places are whose.
#include "il/rows/transform/samplerows.h"

#include <algorithm>
#include <cstring>

namespace vfil {

namespace {

constexpr std::size_t kBytesOf[kSamplePixels] = {4, 8, 1, 2};

/// Where the pixels of a place are all within the bounds, and where some may be.
struct Reach {
    double low, high;
};

Reach InsideOf(SampleForm form, double first, double behind)
{
    switch (form) {
    case SampleForm::Nearest:
        return {first - 0.5 + kInsideMargin, behind - 0.5 - kInsideMargin};
    case SampleForm::Bilinear:
        return {first, behind - 1 - kInsideMargin};
    default:
        return {first + 1, behind - 2 - kInsideMargin};
    }
}

Reach NearOf(SampleForm form, double first, double behind)
{
    const int reach = form == SampleForm::Bicubic ? 2 : 1;
    return {first - reach, behind + reach - 1};
}

/// The kernels without a test for edges know offsets of 32 bits.
bool IsWithin4GiB(const SampleSource& source)
{
    return source.rowBytes <= std::int64_t{0xFFFFFFFF} / std::max(source.top, 1);
}

using Span = SampleSpan;

Span Common(const Span& a, const Span& b)
{
    const std::int64_t first = std::max(a.first, b.first);
    return {first, std::max(first, std::min(a.behind, b.behind))};
}

std::int64_t DivideUp(std::int64_t a, std::int64_t b)
{
    return a / b + (a % b > 0 ? 1 : 0);
}

/// The steps from u on, by du, of a line that are within a reach. Beyond 2 to the power of 22 are no places
/// of a line.
Span Within(std::int64_t u, std::int64_t du, const Reach& reach, std::int64_t count)
{
    constexpr double kUnits = static_cast<double>(std::int64_t{1} << kStepBits);
    constexpr double kMost = 1 << 22;
    const auto low = static_cast<std::int64_t>(std::clamp(reach.low, -kMost, kMost) * kUnits);
    const auto high = static_cast<std::int64_t>(std::clamp(reach.high, -kMost, kMost) * kUnits);
    if (low >= high) return {0, 0};
    if (du == 0) return u >= low && u < high ? Span{0, count} : Span{0, 0};
    const Span span = du > 0 ? Span{DivideUp(low - u, du), DivideUp(high - u, du)}
                             : Span{DivideUp(u - high + 1, -du), DivideUp(u - low + 1, -du)};
    return {std::clamp<std::int64_t>(span.first, 0, count), std::clamp<std::int64_t>(span.behind, 0, count)};
}

} // namespace

SampleRow FindSampleRow(bool useVectors, SampleForm form, SamplePixel pixel)
{
    return {SampleRowsAt(useVectors ? BestLevel() : Level::Plain), form, pixel};
}

SampleRow::SampleRow(const SampleRows& rows, SampleForm form, SamplePixel pixel)
    : m_form(form), m_pixelBytes(kBytesOf[static_cast<std::size_t>(pixel)]),
      m_sample(rows.sample[static_cast<std::size_t>(form)][static_cast<std::size_t>(pixel)]),
      m_inside(rows.inside[static_cast<std::size_t>(form)][static_cast<std::size_t>(pixel)]),
      m_steps(rows.steps[static_cast<std::size_t>(form)][static_cast<std::size_t>(pixel)]),
      m_countInside(rows.countInside)
{}

void SampleRow::operator()(const SampleSource& source, const double* u, const double* v, std::size_t count,
                           unsigned char* out) const
{
    if (m_inside == m_sample || !IsWithin4GiB(source)) {
        m_sample(source, u, v, count, out);
        return;
    }
    const Reach x = InsideOf(m_form, source.left, source.right);
    const Reach y = InsideOf(m_form, source.bottom, source.top);
    const SampleBounds bounds{x.low, x.high, y.low, y.high};
    constexpr std::size_t kEdge = 8;
    while (count > 0) {
        std::size_t done = m_countInside(bounds, u, v, count);
        if (done != 0) {
            m_inside(source, u, v, done, out);
        } else {
            done = std::min(kEdge, count);
            m_sample(source, u, v, done, out);
        }
        u += done;
        v += done;
        out += done * m_pixelBytes;
        count -= done;
    }
}

void SampleRow::operator()(const SampleSource& source, const SampleSteps& steps, std::size_t count,
                           unsigned char* out) const
{
    const auto within = [&](Reach (*reach)(SampleForm, double, double)) {
        const auto all = static_cast<std::int64_t>(count);
        return Common(Within(steps.u, steps.du, reach(m_form, source.left, source.right), all),
                      Within(steps.v, steps.dv, reach(m_form, source.bottom, source.top), all));
    };
    const Span near = within(NearOf);
    Span inside = Common(near, within(InsideOf));
    if (inside.first == inside.behind || !IsWithin4GiB(source)) inside = {near.behind, near.behind};
    FillDefault(source, {0, near.first}, out);
    SampleEdge(source, steps, {near.first, inside.first}, out);
    if (inside.first != inside.behind) {
        const SampleSteps first{steps.u + inside.first * steps.du, steps.v + inside.first * steps.dv,
                                steps.du, steps.dv};
        m_steps(source, first, static_cast<std::size_t>(inside.behind - inside.first),
                out + static_cast<std::size_t>(inside.first) * m_pixelBytes);
    }
    SampleEdge(source, steps, {inside.behind, near.behind}, out);
    FillDefault(source, {near.behind, static_cast<std::int64_t>(count)}, out);
}

void SampleRow::FillDefault(const SampleSource& source, const Span& span, unsigned char* out) const
{
    for (std::int64_t i = span.first; i < span.behind; ++i)
        std::memcpy(out + static_cast<std::size_t>(i) * m_pixelBytes, source.defaultPixel, m_pixelBytes);
}

/// Places whose pixels may lie outside.
void SampleRow::SampleEdge(const SampleSource& source, const SampleSteps& steps, const Span& span,
                           unsigned char* out) const
{
    for (std::int64_t i = span.first; i < span.behind; ++i) {
        const double u = StepAt(steps.u, steps.du, i);
        const double v = StepAt(steps.v, steps.dv, i);
        m_sample(source, &u, &v, 1, out + static_cast<std::size_t>(i) * m_pixelBytes);
    }
}

} // namespace vfil
