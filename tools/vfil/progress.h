/// \file
/// How far a run on clips is.
#pragma once

#include "tools/vfil/request.h"

#include <chrono>
#include <optional>

namespace vfil::tool {

/// Shows the progress on standard error: a bar on a terminal, or a JSON record a line. For one thread at a
/// time.
class Progress {
public:
    /// \param frames How many there will be; absent when nobody knows.
    Progress(const ReportSettings& settings, std::optional<long> frames);
    /// Wipes the bar.
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// One more frame is done.
    void Tick();
    /// Shows the last state.
    void Finish();

private:
    using Clock = std::chrono::steady_clock;

    double FramesPerSecond() const;
    void Show();
    void ShowBar(std::optional<double> secondsLeft);
    void ShowRecord(std::optional<double> secondsLeft);

    ProgressStyle m_style;
    std::optional<long> m_frames;
    long m_done = 0;
    bool m_barShown = false;
    Clock::time_point m_start = Clock::now();
    Clock::time_point m_shown = m_start;
};

} // namespace vfil::tool
