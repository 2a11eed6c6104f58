/// \file
/// The random source.

#include <vfil/numeric.h>

#include <bit>
#include <cmath>
#include <ctime>
#include <new>

namespace {

// Schrage's method: kModulus = kMultiplier * kQuotient + kRemainder keeps every product within 31 bits.
constexpr std::int32_t kMultiplier = 16807;
constexpr std::int32_t kModulus = 2147483647;
constexpr std::int32_t kQuotient = 127773;
constexpr std::int32_t kRemainder = 2836;
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

vfILRandomNumber::vfILRandomNumber()
{
    try {
        m_table = std::make_shared<Table>();
    } catch (const std::bad_alloc&) {
        m_table.reset();
    }
}

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
    if (!m_table) return;
    for (auto entry = m_table->rbegin(); entry != m_table->rend(); ++entry) {
        Advance();
        *entry = m_seed;
    }
    m_lastOutput = m_table->front();
}

float vfILRandomNumber::Uniform()
{
    if (m_seed <= 0 || m_lastOutput == 0) Restart();
    Advance();
    if (m_table) {
        std::int32_t& entry = (*m_table)[static_cast<std::size_t>(m_lastOutput / kTableDivisor)];
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
