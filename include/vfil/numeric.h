/// \file
/// Numbers beside the pictures: a random source of four distributions, statistics of an array, and sorting.
///
/// None of these classes reports errors, and no member throws. An object has no lock: each thread keeps its
/// own.
#pragma once

#include <vfil/export.h>
#include <vfil/shared.h>

#include <cstdint>

/// A source of random numbers that gives the same sequence for the same seed on every machine: the
/// minimal-standard generator (multiplier 16807, modulus 2^31 - 1) behind a Bays-Durham shuffle of 32
/// entries.
///
/// A new object draws uniformly from 0 .. 1 with the sequence of SetFixedSeed(1). A copy shares the shuffle
/// table with its source for good: what one draws changes the numbers of the other, so use one of the two at
/// a time and seed it first. When memory for the table is short at construction, the numbers come unshuffled.
class VFIL_API vfILRandomNumber {
public:
    vfILRandomNumber();
    vfILRandomNumber(const vfILRandomNumber& other);
    vfILRandomNumber& operator=(const vfILRandomNumber& other);
    virtual ~vfILRandomNumber();

    /// Starts the sequence of a seed anew at the next draw. A waiting second Gaussian value stays.
    ///
    /// \param seed 1 .. 2147483647; 0 counts as 1. A negative seed starts a new object as 1 does, and makes a
    ///             used one go on from that state without a restart. Only the low 32 bits count.
    void SetFixedSeed(long seed);
    /// The seed is the time in seconds.
    void SetRandomSeed();

    // Each chooses the distribution of the following draws, and keeps its parameters.

    /// From \p low to \p high, which is not reached. All other distributions draw through this one: their
    /// laws hold only while the range is 0 .. 1, the default.
    void SetUniform(float low, float high);
    /// Default 0 and 1.
    void SetGaussian(float mean, float sigma);
    /// -ln(u / lambda): lambda shifts the result by ln(lambda), it does not scale it. Default 1.
    void SetExponential(float lambda);
    /// (-ln(u) / a) to the power of 1 / b. Default 1 and 2.
    void SetWeibull(float a, float b);

    /// One draw of the chosen distribution.
    float GetNumber();

private:
    enum class Distribution : std::int32_t { Uniform, Gaussian, Exponential, Weibull };

    void Restart();
    void Advance();
    float Uniform();
    float Gaussian();
    float Exponential();
    float Weibull();

    std::int32_t m_seed = -1; ///< the state; zero or below asks for a restart
    vfILSharedBytes m_table;  ///< 32 states
    Distribution m_distribution = Distribution::Uniform;
    float m_mean = 0.0F;
    float m_sigma = 1.0F;
    float m_low = 0.0F;
    float m_high = 1.0F;
    float m_lambda = 1.0F;
    float m_weibullA = 1.0F;
    float m_weibullB = 2.0F;
    std::int32_t m_lastOutput = 0; ///< what the shuffle gave last; zero asks for a restart
    bool m_hasSpare = false;       ///< a second Gaussian value waits
    float m_spare = 0.0F;          ///< before sigma and mean
};

/// Statistics of an array of doubles that the caller owns. Without elements every result is NaN.
class VFIL_API vfILStatistics {
public:
    vfILStatistics() = default;
    vfILStatistics(double* data, long count);
    /// \param count Elements; kept in 32 bits.
    void SetData(double* data, long count);

    double GetMean() const;
    /// The middle value, or the mean of the two middle ones. The array keeps its order. NaN when memory for a
    /// copy is short.
    double GetMedian() const;
    /// The sample variance, with count - 1; NaN for one element.
    ///
    /// \param mean Null computes it.
    double GetVariance(const double* mean = nullptr) const;
    /// The root of the variance.
    double GetStandardDeviation(const double* mean = nullptr) const;
    /// The bounds between which at least that share of any distribution lies: the mean and, on both sides,
    /// sqrt(1 / (1 - probability)) deviations.
    ///
    /// \param probability 0 .. below 1; 1 gives infinite bounds.
    /// \param limits      Receives the lower and the upper bound.
    /// \param mean        Null computes it, and so for \p deviation.
    void GetChebyshevLimits(double probability, double* limits, const double* mean = nullptr,
                            const double* deviation = nullptr) const;
    /// Makes each element but the ends of a range the mean of itself and its neighbours as they were.
    ///
    /// \param first First index of the range; null for 0.
    /// \param last  Last index of the range; null for the array's last. Both must lie in the array.
    void SmoothData(const long* first = nullptr, const long* last = nullptr);

private:
    double* m_data = nullptr;
    std::int32_t m_count = 0;
};

enum vfILSortingAlgorithm : int {
    VFIL_SORT_QUICK = 0, ///< not stable
};

/// Sorts an array of doubles that the caller owns, in place.
class VFIL_API vfILSortingEngine {
public:
    vfILSortingEngine() = default;
    vfILSortingEngine(double* data, long count, vfILSortingAlgorithm algorithm);
    /// \param count Elements; kept in 32 bits.
    void SetData(double* data, long count, vfILSortingAlgorithm algorithm);
    /// \param algorithm Any other value than those of the type makes Sort do nothing.
    void SetAlgorithm(vfILSortingAlgorithm algorithm);
    /// Sorts a range ascending.
    ///
    /// \param first First index; null for 0.
    /// \param last  Last index; null for the array's last. Both must lie in the array.
    void Sort(const long* first = nullptr, const long* last = nullptr);

private:
    double* m_data = nullptr;
    std::int32_t m_count = 0;
    vfILSortingAlgorithm m_algorithm = VFIL_SORT_QUICK;
};
