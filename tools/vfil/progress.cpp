/// \file
/// The progress bar and the progress records.
#include "tools/vfil/progress.h"

#include <nlohmann/json.hpp>

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iostream>
#include <string>

namespace vfil::tool {

namespace {

constexpr auto kInterval = std::chrono::milliseconds(200);
constexpr long kBarColumns = 30;

ProgressStyle StyleOf(const ReportSettings& settings)
{
    if (settings.quiet) return ProgressStyle::None;
    if (settings.progress != ProgressStyle::Auto || isatty(STDERR_FILENO) != 0) return settings.progress;
    return ProgressStyle::None;
}

} // namespace

Progress::Progress(const ReportSettings& settings, std::optional<long> frames)
    : m_style(StyleOf(settings)), m_frames(frames)
{}

Progress::~Progress()
{
    if (m_barShown) std::cerr << "\r\033[K" << std::flush;
}

double Progress::FramesPerSecond() const
{
    const double seconds = std::chrono::duration<double>(Clock::now() - m_start).count();
    return seconds > 0 ? static_cast<double>(m_done) / seconds : 0;
}

void Progress::Tick()
{
    ++m_done;
    const auto now = Clock::now();
    if (m_style == ProgressStyle::None || now - m_shown < kInterval) return;
    m_shown = now;
    Show();
}

void Progress::Finish()
{
    if (m_style == ProgressStyle::Json) Show();
}

void Progress::Show()
{
    std::optional<double> left;
    const double rate = FramesPerSecond();
    if (m_frames && rate > 0) left = std::max(0.0, static_cast<double>(*m_frames - m_done) / rate);
    if (m_style == ProgressStyle::Json)
        ShowRecord(left);
    else
        ShowBar(left);
}

void Progress::ShowBar(std::optional<double> secondsLeft)
{
    std::string line = "\r\033[K";
    if (m_frames && *m_frames > 0) {
        const long filled = std::min(kBarColumns, kBarColumns * m_done / *m_frames);
        line += "[" + std::string(static_cast<std::size_t>(filled), '#') +
                std::string(static_cast<std::size_t>(kBarColumns - filled), '.') + "] ";
    }
    line += std::to_string(m_done) + (m_frames ? "/" + std::to_string(*m_frames) : "") + " frames";
    char text[64];
    std::snprintf(text, sizeof text, ", %.1f frames/s", FramesPerSecond());
    line += text;
    if (secondsLeft) line += ", " + std::to_string(std::lround(*secondsLeft)) + " s left";
    std::cerr << line << std::flush;
    m_barShown = true;
}

void Progress::ShowRecord(std::optional<double> secondsLeft)
{
    nlohmann::ordered_json record = {{"frames", m_done}};
    if (m_frames) record["of"] = *m_frames;
    record["framesPerSecond"] = FramesPerSecond();
    if (secondsLeft) record["secondsLeft"] = *secondsLeft;
    std::cerr << record.dump() << '\n';
}

} // namespace vfil::tool
