/// \file
/// The three tools beside the pictures: the random source, statistics, and sorting.

#include <vfil/numeric.h>

#include <bit>
#include <cmath>
#include <ctime>
#include <limits>
#include <new>
#include <numeric>
#include <utility>
#include <vector>

namespace {

// Schrage's method: kModulus = kMultiplier * kQuotient + kRemainder keeps every product within 31 bits.
constexpr std::int32_t kMultiplier = 16807;
constexpr std::int32_t kModulus = 2147483647;
constexpr std::int32_t kQuotient = 127773;
constexpr std::int32_t kRemainder = 2836;
constexpr std::size_t kTableEntries = 32;
/// The state of 31 bits in steps of 32 entries.
constexpr std::int32_t kTableDivisor = 1 << 26;
/// Steps that are thrown away before the table is filled.
constexpr int kWarmUp = 8;
constexpr float kScale = 0x1p-31F;
/// 0.99999988: a draw does not round up to 1.
constexpr auto kLargest = std::bit_cast<float>(0x3F7FFFFE);

/// -value in 32 bits; the least number is its own negative.
std::int32_t Negate(std::int64_t value)
{
    return static_cast<std::int32_t>(0U - static_cast<std::uint32_t>(value));
}

} // namespace

vfILRandomNumber::vfILRandomNumber() : m_table(kTableEntries * sizeof(std::int32_t))
{}

vfILRandomNumber::vfILRandomNumber(const vfILRandomNumber& other) = default;
vfILRandomNumber& vfILRandomNumber::operator=(const vfILRandomNumber& other) = default;
vfILRandomNumber::~vfILRandomNumber() = default;

void vfILRandomNumber::SetFixedSeed(long seed)
{
    m_seed = Negate(seed);
}

void vfILRandomNumber::SetRandomSeed()
{
    m_seed = Negate(std::int64_t{std::time(nullptr)} & 0x7FFFFFFF);
}

void vfILRandomNumber::SetUniform(float low, float high)
{
    m_distribution = Distribution::Uniform;
    m_low = low;
    m_high = high;
}

void vfILRandomNumber::SetGaussian(float mean, float sigma)
{
    m_distribution = Distribution::Gaussian;
    m_mean = mean;
    m_sigma = sigma;
}

void vfILRandomNumber::SetExponential(float lambda)
{
    m_distribution = Distribution::Exponential;
    m_lambda = lambda;
}

void vfILRandomNumber::SetWeibull(float a, float b)
{
    m_distribution = Distribution::Weibull;
    m_weibullA = a;
    m_weibullB = b;
}

float vfILRandomNumber::GetNumber()
{
    switch (m_distribution) {
    case Distribution::Uniform:
        return Uniform();
    case Distribution::Gaussian:
        return Gaussian();
    case Distribution::Exponential:
        return Exponential();
    case Distribution::Weibull:
        break;
    }
    return Weibull();
}

void vfILRandomNumber::Advance()
{
    const std::int32_t k = m_seed / kQuotient;
    m_seed = kMultiplier * (m_seed - k * kQuotient) - kRemainder * k;
    if (m_seed < 0) m_seed += kModulus;
}

void vfILRandomNumber::Restart()
{
    m_seed = m_seed < 0 ? Negate(m_seed) : 1;
    for (int i = 0; i < kWarmUp; ++i)
        Advance();
    auto* const table = static_cast<std::int32_t*>(m_table.Get());
    if (table == nullptr) return;
    for (std::size_t i = kTableEntries; i-- > 0;) {
        Advance();
        table[i] = m_seed;
    }
    m_lastOutput = table[0];
}

float vfILRandomNumber::Uniform()
{
    if (m_seed <= 0 || m_lastOutput == 0) Restart();
    Advance();
    if (auto* const table = static_cast<std::int32_t*>(m_table.Get())) {
        std::int32_t& entry = table[m_lastOutput / kTableDivisor];
        m_lastOutput = entry;
        entry = m_seed;
    } else {
        m_lastOutput = m_seed;
    }
    const float t = std::fmin(static_cast<float>(m_lastOutput) * kScale, kLargest);
    return m_low + (m_high - m_low) * t;
}

float vfILRandomNumber::Gaussian()
{
    if (m_hasSpare) {
        m_hasSpare = false;
        return m_sigma * m_spare + m_mean;
    }
    // Polar method: a point inside the unit circle gives two independent values.
    double v1 = 0;
    double v2 = 0;
    double r = 0;
    do {
        v1 = 2.0 * Uniform() - 1.0;
        v2 = 2.0 * Uniform() - 1.0;
        r = v1 * v1 + v2 * v2;
    } while (r >= 1.0 || r == 0.0);
    const double f = std::sqrt(-2.0 * std::log(r) / r);
    m_spare = static_cast<float>(v1 * f);
    m_hasSpare = true;
    return static_cast<float>(v2 * m_sigma * f + m_mean);
}

float vfILRandomNumber::Exponential()
{
    return static_cast<float>(-std::log(double{Uniform()} / m_lambda));
}

float vfILRandomNumber::Weibull()
{
    return static_cast<float>(std::pow(-1.0 / m_weibullA * std::log(double{Uniform()}), 1.0 / m_weibullB));
}

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

namespace {

struct Range {
    long low, high;
};

unsigned long LengthOf(Range range)
{
    return static_cast<unsigned long>(range.high - range.low) + 1;
}

/// Brings what belongs left of the range's middle value to the left. Gives the two parts, which share no
/// index. Both scans end inside the range whatever the comparisons say, also with NaN: the first at the
/// pivot, the later ones at what was swapped before.
std::pair<Range, Range> Partition(double* data, Range range)
{
    const double pivot = data[range.low + (range.high - range.low) / 2];
    long i = range.low;
    long j = range.high;
    do {
        while (data[i] < pivot)
            ++i;
        while (pivot < data[j])
            --j;
        if (i <= j) std::swap(data[i++], data[j--]);
    } while (i <= j);
    return {{range.low, j}, {i, range.high}};
}

/// Lets the value at the root of a heap of \p count values sink to its place.
void Sink(double* heap, long root, long count)
{
    const double value = heap[root];
    for (long child = 2 * root + 1; child < count; child = 2 * root + 1) {
        if (child + 1 < count && heap[child] < heap[child + 1]) ++child;
        if (!(value < heap[child])) break;
        heap[root] = heap[child];
        root = child;
    }
    heap[root] = value;
}

void HeapSort(double* data, long count)
{
    for (long root = count / 2; root-- > 0;)
        Sink(data, root, count);
    for (long last = count - 1; last > 0; --last) {
        std::swap(data[0], data[last]);
        Sink(data, 0, last);
    }
}

/// Recurses into the smaller part, so that it goes no deeper than the logarithm of the length: the parts
/// don't touch, their order is the same to the result. Some orders ("organ pipes") part off one value at a
/// time, which would take the square of the length: what was parted \p patience times goes to the heap.
void QuickSort(double* data, Range range, int patience)
{
    while (range.low < range.high) {
        if (patience-- == 0) return HeapSort(data + range.low, range.high - range.low + 1);
        auto [smaller, larger] = Partition(data, range);
        if (smaller.high - smaller.low > larger.high - larger.low) std::swap(smaller, larger);
        QuickSort(data, smaller, patience);
        range = larger;
    }
}

} // namespace

vfILSortingEngine::vfILSortingEngine(double* data, long count, vfILSortingAlgorithm algorithm)
{
    SetData(data, count, algorithm);
}

void vfILSortingEngine::SetData(double* data, long count, vfILSortingAlgorithm algorithm)
{
    m_data = data;
    m_count = static_cast<std::int32_t>(count);
    m_algorithm = algorithm;
}

void vfILSortingEngine::SetAlgorithm(vfILSortingAlgorithm algorithm)
{
    m_algorithm = algorithm;
}

void vfILSortingEngine::Sort(const long* first, const long* last)
{
    if (m_algorithm != VFIL_SORT_QUICK) return;
    const Range range{first != nullptr ? *first : 0, last != nullptr ? *last : m_count - 1L};
    // Orders by chance are parted about three times the logarithm at the deepest.
    if (range.low < range.high)
        QuickSort(m_data, range, 4 * static_cast<int>(std::bit_width(LengthOf(range))));
}
