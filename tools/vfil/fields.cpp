/// \file
/// vfil fields.
#include "engine/interrupt.h"
#include "engine/jobparts.h"
#include "engine/values.h"
#include "fieldscan/fieldscan.h"
#include "tools/vfil/commands.h"
#include "tools/vfil/interrupt.h"
#include "tools/vfil/report.h"
#include "tools/vfil/request.h"
#include "tools/vfil/status.h"
#include "tools/vfil/text.h"

#include <nlohmann/json.hpp>

#include <iomanip>
#include <iostream>
#include <sstream>

namespace vfil::tool {

using fieldscan::Finding;
using fieldscan::Order;
using Json = nlohmann::ordered_json;

namespace {

constexpr const char* kUsualFrames = "600";

// Frames of a clip, what they tell, and what the clip says.
struct Measurement {
    std::string path;
    host::VideoInfo info;
    long first = 0;
    long frames = 0;
    Finding finding;

    std::string Measured() const { return Word(finding.order); }
    std::string Claimed() const { return FieldOrderName(info.fieldOrder.value); }
    bool Differ() const { return finding.order != Order::Unknown && Measured() != Claimed(); }
};

// A count of frames is a range, too.
engine::RunSettings RangeOf(Arguments arguments)
{
    const std::string text = arguments.options.Get("frames").value_or(kUsualFrames);
    if (text.find(':') != std::string::npos) return MakeSettings(arguments);
    const auto count = ParseIntegers(text, ',', 1);
    if (!count || count->front() < 1)
        engine::RefuseValue(engine::OfRun("frames"), text, "a count of at least 1, or a range A:B of frames");
    arguments.options.given["frames"] = {":" + text};
    return MakeSettings(arguments);
}

Measurement Measure(const std::string& path, const Arguments& arguments)
{
    const engine::RunSettings range = RangeOf(arguments);
    if (!host::IsVideo(path)) throw RequestError(path + " is a picture; fields are measured of a clip");
    host::VideoReader reader(path, engine::Overrides(arguments.options));
    fieldscan::FieldScan scan;
    for (long i = 0; i < range.firstFrame; ++i) {
        engine::StopIfInterrupted(InterruptFlag());
        if (!reader.Skip())
            throw RequestError(path + " has " + std::to_string(i) + " frames, none of which is in --frames");
    }
    for (long i = range.firstFrame; !range.endFrame || i < *range.endFrame; ++i) {
        engine::StopIfInterrupted(InterruptFlag());
        const host::PicturePtr frame = reader.Read();
        if (!frame) break;
        scan.Add(*frame);
    }
    return {path, reader.Info(), range.firstFrame, scan.Frames(), scan.Result()};
}

Json ClaimOrNull(const std::optional<host::FieldOrder>& claim)
{
    return claim ? Json(FieldOrderName(*claim)) : Json();
}

Json CombsRecord(const Finding& finding)
{
    if (finding.order == Order::Unknown) return {};
    const fieldscan::Combs& combs = finding.combs;
    return {{"own", combs.own}, {"nextTop", combs.nextTop}, {"nextBottom", combs.nextBottom}};
}

Json RecordOf(const Measurement& made)
{
    const Finding& finding = made.finding;
    Json stretches = Json::array();
    for (const fieldscan::Stretch& stretch : finding.stretches) {
        stretches.push_back({{"first", made.first + stretch.first},
                             {"end", made.first + stretch.end},
                             {"measured", Word(stretch.order)}});
    }
    return {{"file", made.path},
            {"measured", made.Measured()},
            {"claimed", made.Claimed()},
            {"claimedBy", OriginName(made.info.fieldOrder.origin)},
            {"stream", ClaimOrNull(made.info.streamFieldOrder)},
            {"frame", ClaimOrNull(made.info.frameFieldOrder)},
            {"differ", made.Differ()},
            {"figures",
             {{"frames", made.frames},
              {"pairs", finding.pairs},
              {"progressive", finding.progressive},
              {"top", finding.top},
              {"bottom", finding.bottom},
              {"undecided", finding.undecided},
              {"cuts", finding.cuts},
              {"faint", finding.faint},
              {"combs", CombsRecord(finding)}}},
            {"stretches", stretches}};
}

std::string OrderText(const std::string& word)
{
    if (word == "top" || word == "bottom") return "interlaced, " + word + " field first";
    if (word == "unknown") return "cannot tell: nothing moves that would";
    return word == "mixed" ? "mixed: not the same everywhere" : word;
}

std::string ClaimText(const std::optional<host::FieldOrder>& claim)
{
    return claim ? FieldOrderName(*claim) : "nothing";
}

std::string PairsText(const Finding& finding)
{
    std::ostringstream text;
    text << finding.pairs << ": " << finding.progressive << " progressive, " << finding.top << " top, "
         << finding.bottom << " bottom, " << finding.undecided << " between, " << finding.cuts << " at cuts";
    if (finding.faint) text << "; taken together";
    return text.str();
}

std::string CombsText(const fieldscan::Combs& combs)
{
    std::ostringstream text;
    text << std::fixed << std::setprecision(2) << combs.own << " levels; with the next top field "
         << combs.nextTop << ", with the next bottom field " << combs.nextBottom;
    return text.str();
}

void Print(const Measurement& made)
{
    const Finding& finding = made.finding;
    const auto row = [](const char* term, const std::string& text) {
        std::cout << "  " << std::left << std::setw(14) << term << text << '\n';
    };
    std::cout << made.path << ": " << (made.Differ() ? "not what it says\n" : "clip\n");
    row("measured", OrderText(made.Measured()));
    row("claimed", OrderText(made.Claimed()) + " (" + OriginName(made.info.fieldOrder.origin) + ")");
    row("stream says", ClaimText(made.info.streamFieldOrder));
    row("frame says", ClaimText(made.info.frameFieldOrder));
    row("frames", std::to_string(made.frames));
    row("pairs", PairsText(finding));
    if (finding.order != Order::Unknown) row("combs", CombsText(finding.combs));
    if (finding.stretches.size() < 2) return;
    for (const fieldscan::Stretch& stretch : finding.stretches) {
        row("stretch", std::to_string(made.first + stretch.first) + ":" +
                           std::to_string(made.first + stretch.end) + " " + Word(stretch.order));
    }
}

} // namespace

int RunFields(const Arguments& arguments)
{
    if (arguments.words.size() != 1) throw RequestError("takes one clip");
    const Measurement made = Measure(arguments.words.front(), arguments);
    if (arguments.Flag("json"))
        PrintRecord(RecordOf(made), std::cout);
    else
        Print(made);
    return arguments.Flag("check") && made.Differ() ? kRunFailed : kDone;
}

} // namespace vfil::tool
