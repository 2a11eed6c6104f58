/// \file
/// What the tool makes of right requests: pixels, reports, help, completion.
#include "catalogue/catalogue.h"
#include "tools/process.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <set>

namespace vfil::test {

namespace {

using testing::HasSubstr;
using Rows = std::vector<std::vector<int>>;

class Tool : public ToolTest {
protected:
    Tool()
    {
        // The sample of grey.png at (x, y) reads y + 1, x.
        Make("grey.png", PXFormat_Mono8, 4, 3,
             [](long x, long y, int) { return static_cast<int>(10 * (y + 1) + x); });
        Make("back.png", PXFormat_RGBA32, 4, 3,
             [](long x, long y, int c) { return c == 3 ? 255 : static_cast<int>(10 * (y + 1) + x); });
        Make("front.png", PXFormat_RGBA32, 2, 2, [](long, long, int c) { return c == 3 ? 255 : 200; });
        Make("soft.png", PXFormat_RGBA32, 4, 3, [](long, long, int c) { return c == 3 ? 128 : 200; });
        Make("mask.png", PXFormat_Mono8, 2, 1, [](long x, long, int) { return x == 0 ? 255 : 0; });
        Make("matte.png", PXFormat_RGBA32, 2, 1,
             [](long x, long, int c) { return (c == 3) == (x == 1) ? 255 : 0; });
    }

    void MakeSoft(const std::string& name, const GUID& format, unsigned seed) const
    {
        Make(name, format, 37, 9, [state = seed](long, long, int) mutable {
            state = state * 1664525u + 1013904223u;
            return static_cast<int>(state >> 16);
        });
    }
};

struct PixelCase {
    const char* arguments;
    int channel;
    Rows rows; ///< from the top
};

TEST_F(Tool, MakesThePixelsAskedFor)
{
    const PixelCase cases[] = {
        {"copy grey.png", 0, {{30, 31, 32, 33}, {20, 21, 22, 23}, {10, 11, 12, 13}}},
        {"copy grey.png --roi 1,0,2,2", 0, {{21, 22}, {11, 12}}},
        {"copy grey.png --roi 3,2,2,2", 0, {{0, 0}, {33, 0}}},
        {"copy grey.png --roi 1,1,2,1 --output-offset 1,1 --default-color 0.2,0,0,1",
         0,
         {{51, 21, 22}, {51, 51, 51}}},
        {"copy grey.png --output-size 3x2", 0, {{20, 21, 22}, {10, 11, 12}}},
        {"copy grey.png --output-size 5x3 --output-offset 2,1",
         0,
         {{0, 0, 20, 21, 22}, {0, 0, 10, 11, 12}, {0, 0, 0, 0, 0}}},
        {"copy grey.png --roi 0,0,2,1 --format mono16", 0, {{2570, 2827}}},
        {"copy grey.png --roi 0,0,2,1 --format rgba32", 3, {{255, 255}}},
        {"invert grey.png --fields odd", 0, {{30, 31, 32, 33}, {235, 234, 233, 232}, {10, 11, 12, 13}}},
        {"invert grey.png --fields even --roi 0,0,2,3", 0, {{225, 224}, {20, 21}, {245, 244}}},
        {"invert grey.png --mask mask.png --mask-offset 1,1",
         0,
         {{30, 31, 32, 33}, {20, 234, 22, 23}, {10, 11, 12, 13}}},
        {"invert grey.png --mask matte.png", 0, {{30, 31, 32, 33}, {20, 21, 22, 23}, {10, 244, 12, 13}}},
        {"invert grey.png --mask matte.png:red --mask-offset 2,0",
         0,
         {{30, 31, 32, 33}, {20, 21, 22, 23}, {10, 11, 243, 13}}},
        {"invert grey.png --format mono16 --roi 0,0,2,1 --mask mask.png", 0, {{65535 - 2570, 2827}}},
        {"invert back.png --channels g --roi 0,0,1,1", 0, {{10}}},
        {"invert back.png --channels g --roi 0,0,1,1", 1, {{245}}},
        {"invert back.png --roi 0,0,1,1", 3, {{255}}},
        {"over back.png front.png --input-offset 1,1",
         0,
         {{30, 200, 200, 33}, {20, 200, 200, 23}, {10, 11, 12, 13}}},
        {"over back.png front.png --input-offset -1,-1",
         0,
         {{30, 31, 32, 33}, {20, 21, 22, 23}, {200, 11, 12, 13}}},
        {"over back.png front.png --input-offset 1,1 --dominant-input b", 0, {{0, 200}, {0, 0}}},
        {"over back.png front.png --roi 0,0,2,1 --channels g", 0, {{10, 11}}},
        {"over back.png front.png --roi 0,0,2,1 --channels g", 1, {{200, 200}}},
        // 128 / 255 of 200 and 127 / 255 of 10.
        {"over back.png front.png --roi 0,0,1,1 --extra-transparency 0.5", 0, {{105}}},
        {"over back.png front.png --roi 0,0,1,1 --alpha-mode zero", 3, {{0}}},
        {"over back.png front.png --roi 0,0,3,1 --mask mask.png --mask-offset 1,0", 0, {{10, 200, 12}}},
        // Straight colour of 200 under an alpha of 128 becomes 100, and 199 when the file's colour is
        // straight again.
        {"over soft.png front.png --roi 1,0,2,1", 0, {{200, 199}}},
        {"over soft.png front.png --roi 1,0,2,1", 3, {{255, 128}}},
        {"over soft.png front.png --roi 3,0,1,1 --output-offset 1,0 --default-color 0.8,0,0,0.5",
         0,
         {{203, 199}}},
        {"atop soft.png front.png --roi 1,0,2,1", 0, {{199, 199}}},
        {"atop soft.png front.png --roi 1,0,2,1", 3, {{128, 128}}},
        {"composite back.png front.png --roi 0,0,3,1 --mask mask.png", 0, {{200, 11, 12}}},
        {"lighter back.png front.png --format rgba64 --roi 1,0,2,1", 0, {{200 * 257, 12 * 257}}},
        {"diff back.png back.png --roi 0,0,1,1 --alpha-mode full", 0, {{0}}},
    };
    for (const PixelCase& c : cases) {
        RunWell(std::string(c.arguments) + " -o out.png");
        EXPECT_EQ(Channel("out.png", c.channel), c.rows) << c.arguments;
    }
}

TEST_F(Tool, PlainArithmeticGivesTheSameBytes)
{
    for (const GUID& format : {PXFormat_RGBA32, PXFormat_RGBA64}) {
        MakeSoft("a.png", format, 1);
        MakeSoft("b.png", format, 2);
        MakeSoft("m.png", PXFormat_Mono8, 3);
        for (const catalogue::Entry& entry : catalogue::Entries()) {
            std::string line =
                entry.name + (entry.inputs.size() == 2 ? " a.png b.png --input-offset 3,1" : " a.png");
            if (entry.mask == catalogue::MaskUse::Required) line += " --mask m.png";
            RunWell(line + " --quiet -o fast.png");
            RunWell(line + " --quiet -o plain.png --plain");
            EXPECT_EQ(Bytes("fast.png"), Bytes("plain.png")) << line;
            EXPECT_NE(Bytes("fast.png"), "") << line;
        }
    }
}

TEST_F(Tool, CarriesPremultiplication)
{
    MakeSoft("a.png", PXFormat_RGBA32, 1);
    MakeSoft("b.png", PXFormat_RGBA32, 2);
    EXPECT_THAT(RunWell("over a.png b.png -o over.tif").out, HasSubstr("premultiplied alpha"));
    EXPECT_THAT(RunWell("invert over.tif -o invert.tif").out, HasSubstr("premultiplied alpha"));
    EXPECT_THAT(RunWell("invert a.png -o invert.tif").out, HasSubstr("straight alpha"));
    // A front that is premultiplied already is not multiplied again, unless one insists.
    RunWell("over back.png over.tif -o known.png");
    RunWell("over back.png over.tif -o told.png --img-b-premultiplied");
    RunWell("over back.png over.tif -o straight.png --img-b-premultiplied=no");
    EXPECT_EQ(Bytes("known.png"), Bytes("told.png"));
    EXPECT_NE(Bytes("known.png"), Bytes("straight.png"));
}

TEST_F(Tool, RawPicturesPassBothWays)
{
    const std::string pixels(5 * 4 * 3, '\x40');
    WriteBytes("in.raw", pixels);
    RunWell("copy in.raw -o out.raw --in-format ycca422-601 --in-size 5x4");
    EXPECT_EQ(Bytes("out.raw"), pixels);
    EXPECT_THAT(RunWell("info in.raw --in-format ycca422-601 --in-size 5x4").out,
                HasSubstr("5x4, ycca422-601"));
    // A class refuses what only it can know.
    const ProcessResult result =
        Run("copy in.raw -o no.raw --in-format ycca422-601 --in-size 5x4 --roi 0,0,2,2 --output-size 5x4");
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err,
              "vfil copy: vfILCopyImg ERROR Verify: Image format does not support ROI (0x10060); see --roi, "
              "--output-offset and --output-size\n");
}

TEST_F(Tool, Reports)
{
    EXPECT_EQ(RunWell("over back.png front.png -o out.png").out,
              "out.png: PNG 4x3, rgba32, 8 bits, 4 channels, straight alpha\n");
    EXPECT_EQ(RunWell("over back.png front.png -o out.png --quiet").out, "");
    const auto record = nlohmann::json::parse(
        RunWell("over back.png front.png -o out.png --json --extra-transparency 0.5 --roi 1,0,2,3").out);
    EXPECT_EQ(record["operator"], "over");
    EXPECT_EQ(record["output"]["width"], 2);
    EXPECT_EQ(record["inputs"][1]["file"], "front.png");
    EXPECT_EQ(record["parameters"]["extra-transparency"], 0.5);
    EXPECT_EQ(record["roi"], nlohmann::json({1, 0, 2, 3}));
    EXPECT_GE(record["milliseconds"]["run"], 0.0);
    const auto info = nlohmann::json::parse(RunWell("info --json grey.png front.png").out);
    EXPECT_EQ(info[0]["format"], "mono8");
    EXPECT_EQ(info[1]["alpha"], "straight");
}

TEST_F(Tool, ListsAndExplainsAllOperators)
{
    const auto all = nlohmann::json::parse(RunWell("list --json").out);
    const std::string list = RunWell("list").out;
    const std::string man = RunWell("man").out;
    ASSERT_EQ(all.size(), catalogue::Entries().size());
    for (std::size_t i = 0; i < all.size(); ++i) {
        const catalogue::Entry& entry = catalogue::Entries()[i];
        EXPECT_EQ(all[i]["name"], entry.name);
        EXPECT_EQ(all[i]["parameters"].size(), entry.parameters.size());
        EXPECT_THAT(list, HasSubstr("\n  " + entry.name + " "));
        EXPECT_THAT(man, HasSubstr("\n.SS " + entry.name + "\n"));
        const std::string help = RunWell("help " + entry.name).out;
        EXPECT_EQ(help, RunWell(entry.name + " --help").out);
        for (const catalogue::Parameter& parameter : entry.parameters) {
            EXPECT_THAT(help, HasSubstr("--" + parameter.name));
        }
    }
    EXPECT_THAT(RunWell("help over").out, HasSubstr("default 1)"));
    EXPECT_THAT(RunWell("--help").out, HasSubstr("Usage: vfil"));
    EXPECT_THAT(RunWell("--version").out, testing::MatchesRegex("vfil [0-9.]+\n"));
}

TEST_F(Tool, CompletesInBash)
{
    const struct {
        const char* words;
        const char* last;
        const char* completions;
    } cases[] = {
        {"vfil ove", "1", "over"},
        {"vfil over --extra", "2", "--extra-transparency"},
        {"vfil over --alpha-mode com", "3", "computed"},
        {"vfil help gray", "2", "grayscale"},
        {"vfil invert gre", "2", "grey.png"},
    };
    for (const auto& c : cases) {
        const ProcessResult result = Shell(
            "'" VFIL_TOOL "' completion bash > script; bash -c '. ./script; COMP_WORDS=(" +
            std::string(c.words) + "); COMP_CWORD=" + c.last + "; _vfil; echo ${COMPREPLY[@]}'; rm script");
        EXPECT_EQ(result.out, std::string(c.completions) + "\n") << c.words;
        EXPECT_EQ(result.err, "");
    }
}

} // namespace

} // namespace vfil::test
