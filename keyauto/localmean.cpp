/// \file
/// Summed areas.
#include "keyauto/localmean.h"

#include <algorithm>

namespace vfil::keyauto {

LocalMean::LocalMean(const Grid<Light>& plate, const Mask& chosen)
    : m_width(plate.Width()), m_height(plate.Height()),
      m_sums(static_cast<std::size_t>((plate.Width() + 1) * (plate.Height() + 1)), Sums{})
{
    const auto stride = static_cast<std::size_t>(m_width + 1);
    for (long y = 0; y < m_height; ++y) {
        Sums row{};
        for (long x = 0; x < m_width; ++x) {
            if (chosen.At(x, y) != 0) {
                const Light& c = plate.At(x, y);
                row[0] += static_cast<double>(c.r);
                row[1] += static_cast<double>(c.g);
                row[2] += static_cast<double>(c.b);
                row[3] += 1;
            }
            const std::size_t at = static_cast<std::size_t>(y + 1) * stride + static_cast<std::size_t>(x + 1);
            for (std::size_t i = 0; i < row.size(); ++i)
                m_sums[at][i] = m_sums[at - stride][i] + row[i];
        }
    }
}

LocalMean::Sums LocalMean::Total(long x, long y, long reach) const
{
    const long left = std::clamp(x - reach, 0L, m_width);
    const long right = std::clamp(x + reach + 1, 0L, m_width);
    const long top = std::clamp(y - reach, 0L, m_height);
    const long bottom = std::clamp(y + reach + 1, 0L, m_height);
    const auto sums = [&](long column, long row) -> const Sums& {
        return m_sums[static_cast<std::size_t>(row * (m_width + 1) + column)];
    };
    Sums total{};
    for (std::size_t i = 0; i < total.size(); ++i)
        total[i] = sums(right, bottom)[i] - sums(left, bottom)[i] - sums(right, top)[i] + sums(left, top)[i];
    return total;
}

Light LocalMean::Mean(long x, long y, long reach) const
{
    constexpr double kLeastCells = 3.5;
    const long whole = std::max(m_width, m_height);
    Sums total = Total(x, y, reach);
    while (total[3] < kLeastCells && reach < whole) {
        reach += reach / 2 + 1;
        total = Total(x, y, reach);
    }
    if (total[3] < 0.5) return {};
    return {static_cast<float>(total[0] / total[3]), static_cast<float>(total[1] / total[3]),
            static_cast<float>(total[2] / total[3])};
}

float LocalMean::Share(long x, long y, long reach) const
{
    const auto side = static_cast<double>(2 * reach + 1);
    return static_cast<float>(Total(x, y, reach)[3] / (side * side));
}

Grid<Light> Smooth(const Grid<Light>& plate, long reach)
{
    const LocalMean mean(plate, Mask(plate.Width(), plate.Height(), 1));
    Grid<Light> smooth(plate.Width(), plate.Height());
    for (long y = 0; y < plate.Height(); ++y) {
        for (long x = 0; x < plate.Width(); ++x)
            smooth.At(x, y) = mean.Mean(x, y, reach);
    }
    return smooth;
}

} // namespace vfil::keyauto
