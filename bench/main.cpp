/// \file
/// Runs all benchmarks interleaved in one run, since the speed of a machine drifts, and prints the median
/// times as a table: ns a pixel of processor time, microseconds where the name says so, and ratios to the
/// best peer and to the best limit loop. It is the time of the whole process: others at work on the machine
/// stretch that least, nothing here waits, and the peer that hands its work to a thread (libvips) waits for
/// it.
#include "deinterlace.h"
#include "filters.h"

#include <vfil/host/picturefactory.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>

namespace bench {

namespace {

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

/// Who filters, where in and out are no simple stream: the limits of memory say little.
bool IsFilter(const std::string& operation)
{
    return std::any_of(kLayouts.begin(), kLayouts.end(),
                       [&](const Layout& layout) { return operation.ends_with(layout.name); });
}

/// What the nanoseconds of a benchmark are divided by.
double UnitOf(const std::string& operation)
{
    return operation.ends_with(kMicroseconds) ? 1000 : kPixels;
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
            const std::string operation = name.substr(0, slash);
            m_times[operation][name.substr(slash + 1)].push_back(run.GetAdjustedCPUTime() /
                                                                 UnitOf(operation));
        }
    }

    void Finalize() override
    {
        std::printf("%-36s %6s  %-17s %6s %6s  %6s %6s\n", "ns a pixel", "vfil", "best peer", "", "ratio",
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
        std::printf("%-36s %6.3f  ", operation.c_str(), ours);
        const Result peer = Best(operation);
        if (peer.who.empty())
            std::printf("%-17s %6s %6s  ", "-", "", "");
        else
            std::printf("%-17s %6.3f %6.2f  ", peer.who.c_str(), peer.time, ours / peer.time);
        const Result limit = Best(LimitOf(operation));
        if (!limit.who.empty()) std::printf("%6.3f %6.2f", limit.time, ours / limit.time);
        std::printf("\n");
    }

    static std::string LimitOf(const std::string& operation)
    {
        if (operation.starts_with(kDeinterlace))
            return kLimitSplit + operation.substr(operation.find(", ") + 2);
        const bool isOfOne = operation.starts_with(kFieldSwap) || operation.starts_with(kFieldMerge);
        if (isOfOne || operation.starts_with(kWeave)) {
            if (operation.ends_with(kFields422)) return isOfOne ? kLimitOneVideo : kLimitInTurnVideo;
            if (operation.ends_with(kFieldsRgba16)) return isOfOne ? kLimitOne16 : kLimitInTurn16;
            return isOfOne ? kLimitOne : kLimitInTurn;
        }
        if (operation == "invert" || operation == "copy" || operation == kSwap) return kLimitOne;
        if (IsFilter(operation) || operation.ends_with(kMicroseconds)) return "";
        if (operation.starts_with(kCorrect422) || operation.starts_with(kLegalize)) return kLimitOneVideo;
        if (operation.starts_with(kCorrect16)) return kLimitOne16;
        if (operation.starts_with(kCorrect)) return kLimitOne;
        if (IsConversion(operation)) return ""; // bytes in and out differ from those of the loops
        if (operation.ends_with("16 bits")) return kLimitTwo16;
        return operation.ends_with(kInPlace) ? kLimitInPlace : kLimitTwo;
    }

    std::map<std::string, std::map<std::string, std::vector<double>>> m_times;
};

std::vector<void (*)()>& Sources()
{
    static std::vector<void (*)()> sources;
    return sources;
}

} // namespace

Source::Source(void (*add)())
{
    Sources().push_back(add);
}

void Source::AddAll()
{
    for (void (*const add)() : Sources())
        add();
}

void Add(const std::string& operation, const std::string& who, std::function<void(const Frame&)> run)
{
    benchmark::RegisterBenchmark((operation + "/" + who).c_str(), [run](benchmark::State& state) {
        for (auto turn : state) {
            static_cast<void>(turn);
            run(Frames::Get().Next());
        }
    })->MeasureProcessCPUTime();
}

} // namespace bench

int main(int argc, char** argv)
{
    // The caller's arguments come later and win.
    char defaults[][48] = {"--benchmark_enable_random_interleaving=true", "--benchmark_repetitions=11",
                           "--benchmark_min_time=0.02"};
    std::vector<char*> arguments(argv, argv + argc);
    arguments.insert(arguments.begin() + 1, std::begin(defaults), std::end(defaults));
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());

    vfil::host::RegisterPictureClass();
    bench::Source::AddAll();
    bench::Frames::Get();
    bench::Table table;
    benchmark::RunSpecifiedBenchmarks(&table);
    return 0;
}
