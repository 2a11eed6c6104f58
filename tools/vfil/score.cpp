/// \file
/// vfil score.
#include "score/score.h"
#include "engine/interrupt.h"
#include "engine/jobparts.h"
#include "engine/values.h"
#include "score/mattereader.h"
#include "tools/vfil/commands.h"
#include "tools/vfil/differencefile.h"
#include "tools/vfil/interrupt.h"
#include "tools/vfil/report.h"
#include "tools/vfil/text.h"

#include <nlohmann/json.hpp>

#include <iomanip>
#include <iostream>
#include <sstream>

namespace vfil::tool {

using score::Channel;
using score::MatteReader;
using score::Score;
using Json = nlohmann::ordered_json;

namespace {

// Two files compared.
struct Comparison {
    std::vector<Score> frames;
    Score total;
    score::Matte matte; // the last of each, for size and channel
    score::Matte truth;
};

std::string FramesText(long count)
{
    return std::to_string(count) + (count == 1 ? " frame" : " frames");
}

score::MatteOptions MatteOptionsOf(const std::string& path, const engine::Values& options)
{
    score::MatteOptions made;
    made.channel = engine::OneOf<Channel>(options, engine::Named("channel"),
                                          {{"alpha", Channel::Alpha}, {"luma", Channel::Luma}})
                       .value_or(Channel::Any);
    if (engine::IsRaw(path)) made.raw = engine::RawOptions(options);
    made.overrides = engine::Overrides(options);
    return made;
}

// Differences are written as they come.
Comparison CompareFiles(MatteReader& mattes, MatteReader& truths, DifferenceFile* differences)
{
    Comparison comparison;
    while (true) {
        engine::StopIfInterrupted(InterruptFlag());
        std::optional<score::Matte> matte = mattes.Next();
        std::optional<score::Matte> truth = truths.Next();
        if (!matte && !truth) break;
        if (!matte || !truth) {
            throw RequestError(mattes.Path() + " has " + FramesText(mattes.CountAll()) + ", and " +
                               truths.Path() + " has " + FramesText(truths.CountAll()));
        }
        if (matte->width != truth->width || matte->height != truth->height) {
            throw RequestError(mattes.Path() + " is " + SizeText(matte->width, matte->height) + ", and " +
                               truths.Path() + " is " + SizeText(truth->width, truth->height));
        }
        comparison.frames.push_back(score::Compare(*matte, *truth));
        comparison.total += comparison.frames.back();
        if (differences) differences->Write(score::Differences(*matte, *truth));
        comparison.matte = std::move(*matte);
        comparison.truth = std::move(*truth);
    }
    if (comparison.frames.empty()) throw RequestError(mattes.Path() + " has no frame");
    return comparison;
}

Json NumberOrNull(const std::optional<double>& number)
{
    return number ? Json(*number) : Json();
}

Json ScoreRecord(const Score& score)
{
    return {{"meanSquaredError", NumberOrNull(score.MeanSquaredError())},
            {"sumOfAbsoluteDifferences", score.SumOfAbsoluteDifferences()},
            {"edgeError", NumberOrNull(score.EdgeError())},
            {"screenLeft", NumberOrNull(score.ScreenLeftShare())},
            {"solidLost", NumberOrNull(score.SolidLostShare())},
            {"pixels", score.pixels},
            {"edgePixels", score.edgePixels},
            {"screenPixels", score.screenPixels},
            {"solidPixels", score.solidPixels}};
}

const char* ChannelName(const score::Matte& matte)
{
    return matte.channel == Channel::Alpha ? "alpha" : "luma";
}

Json ComparisonRecord(const MatteReader& mattes, const MatteReader& truths, const Comparison& comparison)
{
    Json record = {{"matte", {{"file", mattes.Path()}, {"channel", ChannelName(comparison.matte)}}},
                   {"truth", {{"file", truths.Path()}, {"channel", ChannelName(comparison.truth)}}},
                   {"width", comparison.matte.width},
                   {"height", comparison.matte.height},
                   {"total", ScoreRecord(comparison.total)}};
    for (const Score& frame : comparison.frames)
        record["frames"].push_back(ScoreRecord(frame));
    return record;
}

std::string Fixed(const std::optional<double>& number, int digits, const char* unit = "")
{
    if (!number) return "-";
    std::ostringstream text;
    text << std::fixed << std::setprecision(digits) << *number << unit;
    return text.str();
}

std::string Percent(std::optional<double> share)
{
    if (share) *share *= 100;
    return Fixed(share, 2, " %");
}

std::vector<std::string> Figures(const Score& score)
{
    return {Fixed(score.MeanSquaredError(), 2), Fixed(score.SumOfAbsoluteDifferences(), 1),
            Fixed(score.EdgeError(), 2), Percent(score.ScreenLeftShare()), Percent(score.SolidLostShare())};
}

void PrintTotal(const Score& total)
{
    const char* terms[] = {"mean squared error", "sum of absolute differences", "mean error on the edge",
                           "screen left", "solid lost"};
    const std::string notes[] = {"of 255 x 255", "pixels of full coverage",
                                 "of 255, on the " + std::to_string(total.edgePixels) +
                                     " pixels of truth between 5 and 95 %",
                                 "of " + std::to_string(total.screenPixels) + " screen pixels lie above 2 %",
                                 "of " + std::to_string(total.solidPixels) + " solid pixels lie below 98 %"};
    const std::vector<std::string> figures = Figures(total);
    for (std::size_t i = 0; i < figures.size(); ++i) {
        std::cout << "  " << std::left << std::setw(28) << terms[i] << std::right << std::setw(12)
                  << figures[i] << "  " << notes[i] << '\n';
    }
}

void PrintFrames(const std::vector<Score>& frames)
{
    const auto printRow = [](const std::string& head, const std::vector<std::string>& cells) {
        std::cout << std::setw(9) << head;
        for (const std::string& cell : cells)
            std::cout << std::setw(13) << cell;
        std::cout << '\n';
    };
    printRow("frame", {"mean squared", "absolute", "edge", "screen left", "solid lost"});
    for (std::size_t i = 0; i < frames.size(); ++i)
        printRow(std::to_string(i), Figures(frames[i]));
}

void Print(const MatteReader& mattes, const MatteReader& truths, const Comparison& comparison)
{
    const score::Matte& matte = comparison.matte;
    std::cout << mattes.Path() << " (" << ChannelName(matte) << ") against " << truths.Path() << " ("
              << ChannelName(comparison.truth) << "), " << SizeText(matte.width, matte.height);
    const auto count = static_cast<long>(comparison.frames.size());
    const bool clip = mattes.Clip() || truths.Clip();
    std::cout << (clip ? ", " + FramesText(count) : "") << '\n';
    PrintTotal(comparison.total);
    if (clip) PrintFrames(comparison.frames);
}

} // namespace

void RunScore(const Arguments& arguments)
{
    if (arguments.words.size() != 2) throw RequestError("takes two files, a matte and the true one");
    const std::string& first = arguments.words[0];
    const std::string& second = arguments.words[1];
    const auto path = arguments.options.Get("diff");
    if (path) DifferenceFile::Check(*path, arguments.words);
    MatteReader mattes(first, MatteOptionsOf(first, arguments.options));
    MatteReader truths(second, MatteOptionsOf(second, arguments.options));
    std::optional<DifferenceFile> differences;
    if (path) differences.emplace(*path, mattes.Clip() ? mattes.Clip() : truths.Clip());
    const Comparison comparison = CompareFiles(mattes, truths, differences ? &*differences : nullptr);
    if (differences) differences->Finish();
    if (arguments.Flag("json"))
        PrintRecord(ComparisonRecord(mattes, truths, comparison), std::cout);
    else
        Print(mattes, truths, comparison);
}

} // namespace vfil::tool
