/// \file
/// Where the time of a run goes.
#pragma once

#include <array>
#include <chrono>
#include <cstddef>

namespace vfil::engine {

/// The phases of a run, in their order.
enum class Phase { Read, Convert, Prepare, Run, Write };

inline constexpr std::array<const char*, 5> kPhaseNames{"read", "convert", "prepare", "run", "write"};

/// Adds up milliseconds a phase. For one thread at a time.
class Stopwatch {
public:
    /// The time since the last call belongs to no phase.
    void Start() { m_start = Clock::now(); }
    /// The time since the last call was spent on \p phase.
    void Lap(Phase phase)
    {
        const auto now = Clock::now();
        m_milliseconds[static_cast<std::size_t>(phase)] +=
            std::chrono::duration<double, std::milli>(now - m_start).count();
        m_start = now;
    }
    void Add(const Stopwatch& other)
    {
        for (std::size_t i = 0; i < m_milliseconds.size(); ++i)
            m_milliseconds[i] += other.m_milliseconds[i];
    }
    const std::array<double, kPhaseNames.size()>& Milliseconds() const { return m_milliseconds; }

private:
    using Clock = std::chrono::steady_clock;

    Clock::time_point m_start = Clock::now();
    std::array<double, kPhaseNames.size()> m_milliseconds{};
};

} // namespace vfil::engine
