/// \file
/// Statistics of an array of doubles.

#include <vfil/numeric.h>

#include <cmath>
#include <limits>
#include <new>
#include <numeric>
#include <vector>

namespace {

constexpr double kNoResult = std::numeric_limits<double>::quiet_NaN();

} // namespace

vfILStatistics::vfILStatistics(double* data, long count)
{
    SetData(data, count);
}

void vfILStatistics::SetData(double* data, long count)
{
    m_data = data;
    m_count = static_cast<std::int32_t>(count);
}

double vfILStatistics::GetMean() const
{
    if (m_count < 1) return kNoResult;
    return std::accumulate(m_data, m_data + m_count, 0.0) / m_count;
}

double vfILStatistics::GetMedian() const
{
    if (m_count < 1) return kNoResult;
    std::vector<double> sorted;
    try {
        sorted.assign(m_data, m_data + m_count);
    } catch (const std::bad_alloc&) {
        return kNoResult;
    }
    vfILSortingEngine(sorted.data(), m_count, VFIL_SORT_QUICK).Sort();
    const auto middle = static_cast<std::size_t>((m_count - 1) / 2);
    return m_count % 2 != 0 ? sorted[middle] : (sorted[middle] + sorted[middle + 1]) * 0.5;
}

double vfILStatistics::GetVariance(const double* mean) const
{
    if (m_count < 1) return kNoResult;
    const double center = mean != nullptr ? *mean : GetMean();
    const double squares = std::accumulate(m_data, m_data + m_count, 0.0, [center](double sum, double x) {
        return sum + (x - center) * (x - center);
    });
    return 1.0 / (m_count - 1.0) * squares;
}

double vfILStatistics::GetStandardDeviation(const double* mean) const
{
    return std::sqrt(GetVariance(mean));
}

void vfILStatistics::GetChebyshevLimits(double probability, double* limits, const double* mean,
                                        const double* deviation) const
{
    const double center = mean != nullptr ? *mean : GetMean();
    const double reach = std::sqrt(1.0 / (1.0 - probability)) *
                         (deviation != nullptr ? *deviation : GetStandardDeviation(&center));
    limits[0] = center - reach;
    limits[1] = center + reach;
}

void vfILStatistics::SmoothData(const long* first, const long* last)
{
    const long low = first != nullptr ? *first : 0;
    const long high = last != nullptr ? *last : m_count - 1L;
    if (high - low < 2) return;
    double left = m_data[low];
    for (long i = low + 1; i < high; ++i) {
        const double own = m_data[i];
        m_data[i] = (left + own + m_data[i + 1]) * (1.0 / 3.0);
        left = own;
    }
}
