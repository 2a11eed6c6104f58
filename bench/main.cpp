/// \file
/// Runs all benchmarks interleaved in one run, since the speed of a machine drifts, and prints the median
/// times as a table: ns a pixel of processor time, and ratios to the best peer and to the best limit loop.
/// Processor time, since others at work on the machine stretch it least; nothing here waits or uses a second
/// thread.
#include "frames.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <random>

namespace bench {

namespace {

constexpr std::size_t kFrames = 6;

/// The formats of conversions beside RGBA.
constexpr GUID kConverted[] = {PXFormat_YUV422_601, PXFormat_YUV422_709, PXFormat_YCC422_601,
                               PXFormat_RGB24,      PXFormat_BGRA32,     PXFormat_YCCA32,
                               PXFormat_YCCA64,     PXFormat_HLSA32,     PXFormat_YCCA422_601};

double Median(std::vector<double> times)
{
    const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
    std::nth_element(times.begin(), middle, times.end());
    return *middle;
}

bool IsConversion(const std::string& operation)
{
    return operation.find(" to ") != std::string::npos || operation.starts_with("split") ||
           operation.starts_with("join");
}

/// A name and its time; the name is empty where nobody has a time.
struct Result {
    std::string who;
    double time = 0;
};

class Table : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context&) override { return true; }

    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Iteration) continue;
            const std::string& name = run.run_name.function_name;
            const std::size_t slash = name.find('/');
            m_times[name.substr(0, slash)][name.substr(slash + 1)].push_back(run.GetAdjustedCPUTime() /
                                                                             kPixels);
        }
    }

    void Finalize() override
    {
        std::printf("%-29s %6s  %-10s %6s %6s  %6s %6s\n", "ns a pixel", "vfil", "best peer", "", "ratio",
                    "limit", "ratio");
        for (const auto& [operation, times] : m_times) {
            if (times.count(kOurs) != 0) PrintOperation(operation);
        }
        PrintAll();
    }

private:
    /// Everybody's time, best first.
    void PrintAll() const
    {
        std::printf("\nEverybody's times:\n");
        for (const auto& [operation, times] : m_times) {
            std::vector<std::pair<double, std::string>> sorted;
            for (const auto& [who, samples] : times)
                sorted.emplace_back(Median(samples), who);
            std::sort(sorted.begin(), sorted.end());
            std::printf("%s:", operation.c_str());
            for (const auto& [time, who] : sorted)
                std::printf("  %.3f %s;", time, who.c_str());
            std::printf("\n");
        }
    }

    Result Best(const std::string& operation) const
    {
        Result best;
        const auto found = m_times.find(operation);
        if (found == m_times.end()) return best;
        for (const auto& [who, times] : found->second) {
            if (who == kOurs || who == kOurRows || who == kOurRowsCached) continue;
            const double time = Median(times);
            if (best.who.empty() || time < best.time) best = {who, time};
        }
        return best;
    }

    void PrintOperation(const std::string& operation) const
    {
        const auto& times = m_times.at(operation);
        const double ours = Median(times.at(kOurs));
        std::printf("%-29s %6.3f  ", operation.c_str(), ours);
        const Result peer = Best(operation);
        if (peer.who.empty())
            std::printf("%-10s %6s %6s  ", "-", "", "");
        else
            std::printf("%-10s %6.3f %6.2f  ", peer.who.c_str(), peer.time, ours / peer.time);
        const Result limit = Best(LimitOf(operation));
        if (!limit.who.empty()) std::printf("%6.3f %6.2f", limit.time, ours / limit.time);
        std::printf("\n");
    }

    static const char* LimitOf(const std::string& operation)
    {
        if (operation == "invert" || operation == "copy" || operation == kSwap) return kLimitOne;
        if (IsConversion(operation)) return ""; // bytes in and out differ from those of the loops
        if (operation.ends_with("16 bits")) return kLimitTwo16;
        return operation.ends_with(kInPlace) ? kLimitInPlace : kLimitTwo;
    }

    std::map<std::string, std::map<std::string, std::vector<double>>> m_times;
};

} // namespace

vfil::host::Picture& Frame::Find(const std::vector<PicturePtr>& pictures, const GUID& format)
{
    return **std::find_if(pictures.begin(), pictures.end(),
                          [&](const PicturePtr& picture) { return picture->Format() == format; });
}

Frames& Frames::Get()
{
    static Frames frames;
    return frames;
}

Frames::Frames()
{
    std::mt19937 random(1);
    const auto picture = [&](const GUID& format) {
        PicturePtr made = vfil::host::Picture::Create(format, kWidth, kHeight);
        std::generate_n(reinterpret_cast<std::uint32_t*>(made->Pixels()), made->Bytes() / 4,
                        std::ref(random));
        return made;
    };
    for (std::size_t i = 0; i < kFrames; ++i) {
        Frame frame{picture(PXFormat_RGBA32),
                    picture(PXFormat_RGBA32),
                    picture(PXFormat_RGBA32),
                    picture(PXFormat_Mono8),
                    picture(PXFormat_RGBA64),
                    picture(PXFormat_RGBA64),
                    picture(PXFormat_RGBA64),
                    {},
                    {}};
        frame.inputs = {frame.back, frame.back16};
        frame.outputs = {frame.out, frame.out16};
        for (const GUID& format : kConverted) {
            frame.inputs.push_back(picture(format));
            frame.outputs.push_back(picture(format));
        }
        m_frames.push_back(frame);
    }
}

const Frame& Frames::Next()
{
    m_next = (m_next + 1) % m_frames.size();
    return m_frames[m_next];
}

void Add(const std::string& operation, const std::string& who, std::function<void(const Frame&)> run)
{
    benchmark::RegisterBenchmark((operation + "/" + who).c_str(),
                                 [run](benchmark::State& state) {
                                     for (auto turn : state) {
                                         static_cast<void>(turn);
                                         run(Frames::Get().Next());
                                     }
                                 })

        ->MinTime(0.02)
        ->Repetitions(11);
}

} // namespace bench

int main(int argc, char** argv)
{
    char interleave[] = "--benchmark_enable_random_interleaving=true";
    std::vector<char*> arguments(argv, argv + argc);
    arguments.insert(arguments.begin() + 1, interleave);
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());

    bench::AddProcessors();
    bench::AddConversions();
    bench::AddRows();
    bench::AddLimits();
#if defined(VFIL_PEER_PIXMAN)
    bench::AddPixman();
#endif
#if defined(VFIL_PEER_YUV)
    bench::AddYuv();
    bench::AddYuvConversions();
#endif
#if defined(VFIL_PEER_OPENCV)
    bench::AddOpenCv();
    bench::AddOpenCvConversions();
#endif
#if defined(VFIL_PEER_SWSCALE)
    bench::AddSwscale();
#endif
#if defined(VFIL_PEER_ZIMG)
    bench::AddZimg();
#endif
    bench::Frames::Get();
    bench::Table table;
    benchmark::RunSpecifiedBenchmarks(&table);
    return 0;
}
