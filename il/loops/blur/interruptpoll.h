/// \file
/// Asking for the interruption in loops that do much before they write a row.
#pragma once

#include <vfil/processor.h>

#include <cstddef>

namespace vfil {

/// Asks the processor whenever enough was done since it was asked: a millisecond or so of work.
class InterruptPoll {
public:
    /// Steps of a filter on one sample between two questions.
    static constexpr std::size_t kSteps = std::size_t{1} << 19;

    explicit InterruptPoll(const vfILProcessor& processor) : m_processor(processor) {}
    /// \param steps  What was done since the last call.
    bool MustStop(std::size_t steps)
    {
        m_steps += steps;
        if (m_steps < kSteps) return false;
        m_steps = 0;
        return m_processor.MustInterrupt() != 0;
    }

private:
    const vfILProcessor& m_processor;
    std::size_t m_steps = 0;
};

} // namespace vfil
