/// \file
/// Reports on legality, as lines of comma-separated values and as records.
#include "tools/vfil/legalreport.h"
#include "engine/failure.h"
#include "tools/vfil/text.h"

#include <nlohmann/json.hpp>

#include <cstdio>
#include <iomanip>
#include <sstream>

namespace vfil::tool {

using engine::StepPlan;
using legality::Excursion;
using legality::kKinds;
using legality::Legality;
using legality::RightChroma;
using Json = nlohmann::ordered_json;

namespace {

struct KindName {
    const char* column; // of a file
    const char* member; // of a record
    const char* words;
};
constexpr std::array<KindName, kKinds> kNames = {{
    {"luma_low", "lumaLow", "luma too low"},
    {"luma_high", "lumaHigh", "luma too high"},
    {"chroma", "chroma", "chroma out of range"},
    {"rgb_over", "rgbOver", "RGB above 255"},
    {"rgb_under", "rgbUnder", "RGB below 0"},
}};

const KindName& NameOf(legality::Kind kind)
{
    return kNames[static_cast<std::size_t>(kind)];
}

struct Sides {
    Legality before;
    Legality after;
};

struct Judged final : engine::Probe::Sight {
    Sides sides;
};

double Share(std::uint64_t count, const Legality& legality)
{
    return legality.pixels == 0 ? 0 : static_cast<double>(count) / static_cast<double>(legality.pixels);
}

std::string Columns(const std::string& side)
{
    std::string text;
    const auto add = [&](const std::string& column) { text += "," + side + "_" + column; };
    const auto addCount = [&](const std::string& column) {
        add(column);
        add(column + "_share");
    };
    addCount("outside");
    for (const KindName& name : kNames)
        addCount(name.column);
    addCount("beyond_one_code");
    for (const char* column : {"worst_codes", "worst_kind", "worst_x", "worst_y"})
        add(column);
    return text;
}

std::string Cells(const Legality& legality)
{
    std::string text;
    const auto add = [&](std::uint64_t count) {
        text += "," + std::to_string(count) + "," + NumberText(Share(count, legality));
    };
    add(legality.outside);
    for (const std::uint64_t count : legality.kinds)
        add(count);
    add(legality.beyond);
    const Excursion& worst = legality.worst;
    if (legality.outside == 0) return text + ",0,,,";
    return text + "," + NumberText(worst.codes) + "," + NameOf(worst.kind).column + "," +
           std::to_string(worst.x) + "," + std::to_string(worst.y);
}

Json CountRecord(std::uint64_t count, const Legality& legality)
{
    return {{"pixels", count}, {"share", Share(count, legality)}};
}

Json LegalityRecord(const Legality& legality)
{
    Json record = {{"pixels", legality.pixels}, {"outside", CountRecord(legality.outside, legality)}};
    for (std::size_t i = 0; i < kKinds; ++i)
        record[kNames[i].member] = CountRecord(legality.kinds[i], legality);
    record["beyondOneCode"] = CountRecord(legality.beyond, legality);
    const Excursion& worst = legality.worst;
    record["worst"] = nullptr;
    if (legality.outside > 0) {
        record["worst"] = {
            {"codes", worst.codes}, {"kind", NameOf(worst.kind).member}, {"x", worst.x}, {"y", worst.y}};
    }
    return record;
}

std::string Fixed(double number, int digits)
{
    std::ostringstream text;
    text << std::fixed << std::setprecision(digits) << number;
    return text.str();
}

// "1.50 % of the pixels outside, 0.20 % by more than a code, at worst by 3.4: RGB above 255"
std::string Words(const Legality& legality)
{
    if (legality.outside == 0) return "all pixels legal";
    const auto percent = [&](std::uint64_t count) { return Fixed(100 * Share(count, legality), 2) + " %"; };
    return percent(legality.outside) + " of the pixels outside, " + percent(legality.beyond) +
           " by more than a code, at worst by " + Fixed(legality.worst.codes, 2) + ": " +
           NameOf(legality.worst.kind).words;
}

// The range of frames is that of the sources, whose rate may have been doubled or halved since.
long FirstFrame(const engine::JobPlan& plan, const StepPlan& step)
{
    const long first = plan.settings.firstFrame;
    const int doublings = plan.signals[*step.outputs.front().signal].doublings;
    return doublings < 0 ? first >> -doublings : first << doublings;
}

} // namespace

struct LegalReports::Report {
    Report(const StepPlan& step, long firstFrame, bool keepFrames)
        : right(step.step.meanChroma ? RightChroma::Mean : RightChroma::Own), nextFrame(firstFrame),
          keep(keepFrames), path(step.step.report)
    {
        const vfILFormatInfo& info = *vfILFindFormat(step.format);
        judged = info.subsampled;
        matrix = info.model == PXColorModel_YCC709 ? "709" : "601";
        if (path.empty()) return;
        file = std::make_unique<host::TemporaryFile>(path);
        Write("frame,matrix,right_chroma,pixels" + Columns("before") + Columns("after"));
    }

    const char* RightName() const { return right == RightChroma::Mean ? "mean" : "own"; }
    const char* MatrixName() const { return judged ? matrix : "rgb"; }

    void Write(const std::string& line) const
    {
        const std::string text = line + "\n";
        const bool written = std::fwrite(text.data(), 1, text.size(), file->Stream()) == text.size();
        if (!written) throw engine::RunError(path + ": cannot be written");
    }

    void Add(const Sides& sides)
    {
        if (file) {
            Write(std::to_string(nextFrame) + "," + MatrixName() + "," + RightName() + "," +
                  std::to_string(sides.before.pixels) + Cells(sides.before) + Cells(sides.after));
        }
        if (keep) {
            frames.push_back({{"frame", nextFrame},
                              {"before", LegalityRecord(sides.before)},
                              {"after", LegalityRecord(sides.after)}});
        }
        ++nextFrame;
        ++count;
        total.before += sides.before;
        total.after += sides.after;
    }

    RightChroma right;
    long nextFrame;
    bool keep;
    bool judged = false;
    const char* matrix = "";
    std::string path;
    std::unique_ptr<host::TemporaryFile> file;
    Sides total;
    long count = 0;
    Json frames = Json::array();
};

LegalReports::LegalReports(const engine::JobPlan& plan, bool keepAll)
{
    for (const StepPlan& step : plan.steps) {
        if (!step.step.entry->legality || (step.step.report.empty() && !keepAll)) continue;
        m_reports.emplace(&step, std::make_unique<Report>(step, FirstFrame(plan, step), keepAll));
    }
}

LegalReports::~LegalReports() = default;

std::unique_ptr<engine::Probe::Sight> LegalReports::Look(const StepPlan& step,
                                                         const std::vector<host::PicturePtr>& inputs,
                                                         const std::vector<host::PicturePtr>& results) const
{
    const auto found = m_reports.find(&step);
    if (found == m_reports.end()) return nullptr;
    const RightChroma right = found->second->right;
    auto judged = std::make_unique<Judged>();
    judged->sides = {legality::Judge(*inputs.front(), right), legality::Judge(*results.front(), right)};
    return judged;
}

void LegalReports::Take(const StepPlan& step, std::unique_ptr<Sight> sight)
{
    m_reports.at(&step)->Add(static_cast<const Judged&>(*sight).sides);
}

void LegalReports::Finish()
{
    try {
        for (const auto& [step, report] : m_reports)
            if (report->file) report->file->Commit();
    } catch (const host::FileError& error) {
        throw engine::RunError(error.what());
    }
}

Json LegalReports::Record(const StepPlan& step) const
{
    const auto found = m_reports.find(&step);
    if (found == m_reports.end()) return {};
    const Report& report = *found->second;
    return {
        {"matrix", report.MatrixName()},
        {"rightChroma", report.RightName()},
        {"total",
         {{"before", LegalityRecord(report.total.before)}, {"after", LegalityRecord(report.total.after)}}},
        {"frames", report.frames}};
}

std::vector<std::string> LegalReports::Lines() const
{
    std::vector<std::string> lines;
    for (const auto& [step, report] : m_reports) {
        if (report->path.empty()) continue;
        lines.push_back(report->path + ": " + std::to_string(report->count) +
                        (report->count == 1 ? " frame" : " frames") + ", by the " +
                        (report->right == RightChroma::Mean ? "mean chroma" : "pair's own chroma"));
        lines.push_back("  before: " + Words(report->total.before));
        lines.push_back("  after:  " + Words(report->total.after));
    }
    return lines;
}

} // namespace vfil::tool
