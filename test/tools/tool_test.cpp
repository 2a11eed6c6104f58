/// \file
/// The tool as a process: what it makes of right requests, what it says to wrong ones, and what it leaves
/// behind.
#include "catalogue/catalogue.h"
#include "test/tools/toolfolder.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <fstream>

namespace vfil::tool {

namespace {

using testing::HasSubstr;

/// Small pictures to work on.
class Tool : public ToolFolder {
protected:
    Tool()
    {
        // The digits of a sample at (x, y) are y + 1 and x.
        const auto ramp = [](long x, long y, long c) { return c == 3 ? 255 : 10 * (y + 1) + x; };
        Make("grey.png", PXFormat_Mono8, 4, 3, ramp);
        Make("back.png", PXFormat_RGBA32, 4, 3, ramp);
        Make("deep.png", PXFormat_RGBA64, 4, 3, ramp);
        Make("front.png", PXFormat_RGBA32, 2, 2, [](long, long, long c) { return c == 3 ? 255 : 200; });
        Make("soft.png", PXFormat_RGBA32, 4, 3, [](long, long, long c) { return c == 3 ? 128 : 200; });
        Make("mask.png", PXFormat_Mono8, 2, 1, [](long x, long, long) { return x == 0 ? 255 : 0; });
        Make("matte.png", PXFormat_RGBA32, 2, 1,
             [](long x, long, long c) { return (c == 3) == (x == 1) ? 255 : 0; });
        std::ofstream(Path("cut.png")) << Bytes("back.png").substr(0, 60);
        std::ofstream(Path("in.raw")) << "twelve bytes";
        fs::create_directory(Path("folder.png"));
    }
};

TEST_F(Tool, MakesThePixelsAskedFor)
{
    const struct {
        const char* arguments;
        int channel;
        const char* rows; // from the top
    } cases[] = {
        {"copy grey.png --roi 1,0,2,2", 0, "21 22, 11 12"},
        {"copy grey.png --roi 3,2,2,2", 0, "0 0, 33 0"},
        {"copy grey.png --roi 1,1,2,1 --output-offset 1,1 --default-color 0.2,0,0,1", 0,
         "51 21 22, 51 51 51"},
        {"copy grey.png --output-size 3x2", 0, "20 21 22, 10 11 12"},
        {"copy grey.png --output-size 5x3 --output-offset 2,1", 0, "0 0 20 21 22, 0 0 10 11 12, 0 0 0 0 0"},
        {"copy grey.png --roi 0,0,2,1 --format mono16", 0, "2570 2827"},
        {"copy grey.png --roi 0,0,2,1 --format rgba32", 3, "255 255"},
        {"invert grey.png --fields odd", 0, "30 31 32 33, 235 234 233 232, 10 11 12 13"},
        {"invert grey.png --fields even --roi 0,0,2,3", 0, "225 224, 20 21, 245 244"},
        {"invert grey.png --mask mask.png --mask-offset 1,1", 0, "30 31 32 33, 20 234 22 23, 10 11 12 13"},
        {"invert grey.png --mask matte.png", 0, "30 31 32 33, 20 21 22 23, 10 244 12 13"},
        {"invert grey.png --mask matte.png:red --mask-offset 2,0", 0,
         "30 31 32 33, 20 21 22 23, 10 11 243 13"},
        {"invert grey.png --format mono16 --roi 0,0,2,1 --mask mask.png", 0, "62965 2827"},
        {"invert back.png --channels g --roi 0,0,1,1", 1, "245"},
        {"invert back.png --roi 0,0,1,1", 3, "255"},
        {"over back.png front.png --input-offset 1,1", 0, "30 200 200 33, 20 200 200 23, 10 11 12 13"},
        {"over back.png front.png --input-offset -1,-1", 0, "30 31 32 33, 20 21 22 23, 200 11 12 13"},
        {"over back.png front.png --input-offset 1,1 --dominant-input b", 0, "0 200, 0 0"},
        {"over back.png front.png --roi 0,0,2,1 --channels g", 0, "10 11"},
        {"over back.png front.png --roi 0,0,2,1 --channels g", 1, "200 200"},
        // 128 / 255 of 200 and 127 / 255 of 10.
        {"over back.png front.png --roi 0,0,1,1 --extra-transparency 0.5", 0, "105"},
        {"over back.png front.png --roi 0,0,3,1 --mask mask.png --mask-offset 1,0", 0, "10 200 12"},
        // Straight colour of 200 under an alpha of 128 becomes 100, and 199 when the file's colour is
        // straight again.
        {"over soft.png front.png --roi 1,0,2,1", 0, "200 199"},
        {"over soft.png front.png --roi 1,0,2,1", 3, "255 128"},
        {"over soft.png front.png --roi 3,0,1,1 --output-offset 1,0 --default-color 0.8,0,0,0.5", 0,
         "203 199"},
        {"atop soft.png front.png --roi 1,0,2,1", 3, "128 128"},
        {"composite back.png front.png --roi 0,0,3,1 --mask mask.png", 0, "200 11 12"},
        {"lighter back.png front.png --format rgba64 --roi 1,0,2,1", 0, "51400 3084"},
        // 32768 / 65535 of 51400 and 32767 / 65535 of 2570; by the other arithmetic the front all but
        // vanishes.
        {"over back.png front.png --format rgba64 --roi 0,0,1,1 --extra-transparency 0.5", 0, "26985"},
        {"over back.png front.png --format rgba64 --roi 0,0,2,1", 0, "51400 51400"},
        {"over back.png front.png --format rgba64 --roi 0,0,2,1 --legacy-16", 3, "1 1"},
        {"over back.png front.png --fields odd --input-offset 1,1", 0,
         "30 31 32 33, 20 200 200 23, 10 11 12 13"},
        {"over front.png back.png --fields even --input-offset 0,1 --dominant-input b", 0,
         "20 21 22 23, 10 11 12 13, 0 0 0 0"},
    };
    for (const auto& c : cases) {
        RunWell(std::string(c.arguments) + " -o out.png");
        EXPECT_EQ(Channel("out.png", c.channel), c.rows) << c.arguments;
    }
    RunWell("copy in.raw -o out.raw --in-format ycca422-601 --in-size 2x2");
    EXPECT_EQ(Bytes("out.raw"), "twelve bytes");
}

TEST_F(Tool, CarriesPremultiplication)
{
    EXPECT_THAT(RunWell("over soft.png soft.png -o over.tif"), HasSubstr("premultiplied alpha"));
    EXPECT_THAT(RunWell("invert over.tif -o invert.tif"), HasSubstr("premultiplied alpha"));
    EXPECT_THAT(RunWell("invert soft.png -o invert.tif"), HasSubstr("straight alpha"));
    // A front that is premultiplied already is not multiplied again, unless one insists.
    RunWell("over back.png over.tif -o known.png");
    RunWell("over back.png over.tif -o told.png --img-b-premultiplied");
    RunWell("over back.png over.tif -o straight.png --img-b-premultiplied=no");
    EXPECT_EQ(Bytes("known.png"), Bytes("told.png"));
    EXPECT_NE(Bytes("known.png"), Bytes("straight.png"));
}

TEST_F(Tool, Reports)
{
    EXPECT_EQ(RunWell("over back.png front.png -o out.png"),
              "out.png: PNG 4x3, rgba32, 8 bits, 4 channels, straight alpha\n");
    EXPECT_EQ(RunWell("over back.png front.png -o out.png --quiet"), "");
    const auto record = nlohmann::json::parse(
        RunWell("over back.png front.png -o out.png --json --img-a-premultiplied --roi 1,0,2,3"));
    EXPECT_EQ(record["output"]["width"], 2);
    EXPECT_EQ(record["inputs"][1]["file"], "front.png");
    EXPECT_EQ(record["parameters"]["img-a-premultiplied"], true);
    EXPECT_EQ(record["roi"], nlohmann::json({1, 0, 2, 3}));
    EXPECT_GE(record["milliseconds"]["run"], 0.0);
    const ProcessResult info = Run("info --json grey.png gone.png front.png");
    EXPECT_EQ(info.status, 2);
    EXPECT_THAT(info.err, HasSubstr("gone.png"));
    EXPECT_EQ(nlohmann::json::parse(info.out)[1]["alpha"], "straight");
}

TEST_F(Tool, ListsAndExplainsAllOperators)
{
    const auto all = nlohmann::json::parse(RunWell("list --json"));
    const std::string list = RunWell("list");
    const std::string man = RunWell("man");
    ASSERT_EQ(all.size(), catalogue::Entries().size());
    for (std::size_t i = 0; i < all.size(); ++i) {
        const catalogue::Entry& entry = catalogue::Entries()[i];
        EXPECT_EQ(all[i]["name"], entry.name);
        EXPECT_THAT(list, HasSubstr("\n  " + entry.name + " "));
        EXPECT_THAT(man, HasSubstr("\n.SS " + entry.name + "\n"));
        const std::string help = RunWell("help " + entry.name);
        EXPECT_EQ(help, RunWell(entry.name + " --help"));
        for (const catalogue::Parameter& parameter : entry.parameters) {
            EXPECT_THAT(help, HasSubstr("--" + parameter.name));
        }
    }
    EXPECT_THAT(RunWell("--help"), HasSubstr("Usage: vfil"));
    EXPECT_THAT(RunWell("--version"), testing::MatchesRegex("vfil [0-9.]+\n"));
}

TEST_F(Tool, CompletesInBash)
{
    const std::pair<std::string, std::string> cases[] = {
        {"vfil ove", "over"},
        {"vfil over --extra", "--extra-transparency"},
        {"vfil over --alpha-mode com", "computed"},
        {"vfil help gray", "grayscale"},
        {"vfil invert gre", "grey.png"},
    };
    RunWell("completion bash >script");
    for (const auto& [words, completion] : cases) {
        const std::string line =
            ". ./script; COMP_WORDS=(" + words + "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1))";
        EXPECT_EQ(Shell("bash -c '" + line + "; _vfil; echo ${COMPREPLY[@]}'").out, completion + "\n");
    }
}

TEST_F(Tool, RefusesWrongRequestsAndLeavesNothing)
{
    const std::vector<Refusal> refusals = {
        {"", {"vfil help"}},
        {"ovr back.png soft.png -o out.png", {"'ovr'", "did you mean 'over'?"}},
        {"over back.png soft.png -o out.png --extra-transparancy 1",
         {"vfil over: ", "did you mean '--extra-transparency'?"}},
        {"over back.png -o out.png", {"2 pictures (BACK FRONT)", "not 1"}},
        {"over back.png soft.png", {"-o FILE"}},
        {"over back.png '' -o out.png", {"is empty"}},
        {"invert back.png -o out.png --mask :red", {"--mask ':red'", "is empty"}},
        {"over back.png soft.png -o", {"--output needs a value"}},
        {"over back.png soft.png -o out.png -o x.png", {"--output is given 2 times"}},
        {"over back.png soft.png -o out.png --extra-transparency 1.5", {"1.5", "0 .. 1"}},
        {"over back.png soft.png -o out.png --alpha-mode ful", {"zero, full, computed", "'full'"}},
        {"over back.png soft.png -o out.png --roi 1,2,3", {"--roi '1,2,3'", "X,Y,W,H"}},
        {"over back.png soft.png -o out.png --roi 4,0,2,2", {"--roi", "outside back.png", "4x3"}},
        {"over back.png soft.png -o out.png --output-size 3x3 --output-offset 3,0", {"does not fit", "3x3"}},
        {"over back.png soft.png -o out.png --output-offset -1,0", {"--output-offset"}},
        {"over back.png soft.png -o out.png --output-size 60000x60000", {"too large"}},
        {"over back.png soft.png -o out.png --fields 0", {"odd, even or both"}},
        {"lum back.png soft.png -o out.png --channels ra", {"--channels ra", "rgb or rgba"}},
        {"over back.png soft.png -o out.png --default-color 0,0,0,2", {"--default-color", "0 .. 1"}},
        {"over back.png soft.png -o out.png --format rgb", {"--format 'rgb'", "rgba32"}},
        {"composite back.png soft.png -o out.png", {"--mask FILE"}},
        {"invert back.png -o out.png --mask grey.png:red", {"grey.png", "mono"}},
        {"invert back.png -o out.png --mask soft.png:alhpa", {"'alhpa'", "did you mean 'alpha'?"}},
        {"invert back.png -o out.png --mask soft.png --mask-offset 4,0", {"soft.png", "--mask-offset"}},
        {"over back.png gone.png -o out.png", {"vfil over: ", "gone.png"}},
        {"over cut.png soft.png -o out.png", {"cut.png"}},
        {"copy in.raw -o out.raw", {"in.raw", "--in-format", "--in-size"}},
        // What only the class can know.
        {"copy in.raw -o out.raw --in-format ycca422-601 --in-size 2x2 --roi 0,0,2,1 --output-size 2x2",
         {"vfILCopyImg", "does not support ROI (0x10060)", "--roi"}},
        {"over back.png grey.png -o out.png",
         {"back.png is rgba32 and grey.png is mono8", "--format rgba32"}},
        {"over back.png deep.png -o out.png", {"deep.png is rgba64", "--format rgba64"}},
        {"over grey.png grey.png -o out.png", {"grey.png is mono8", "--format rgba32"}},
        {"invert back.png -o out.png --format mono8", {"back.png is rgba32", "--format mono8"}},
        {"copy deep.png -o out.jpg", {"out.jpg", "16 bits", "--format rgba32"}},
        {"over back.png soft.png -o back.png", {"back.png", "-o"}},
        {"over back.png soft.png -o ./folder.png/../soft.png", {"soft.png", "-o"}},
        {"invert back.png --mask grey.png -o grey.png", {"grey.png", "-o"}},
        {"over back.png soft.png -o out.gif", {"out.gif", ".png"}},
        {"over back.png soft.png -o gone/out.png", {"gone"}},
        {"over back.png soft.png -o folder.png", {"folder.png is a folder"}},
        {"over back.png soft.png -o out.png --json --quiet", {"--json and --quiet"}},
        {"info", {"picture files"}},
        {"list all", {"'all'"}},
        // Clear pixels do not go into a JPEG file: this is known after the run alone.
        {"copy soft.png -o out.jpg", {"out.jpg"}, 1},
    };
    ExpectRefusals(refusals, "vfil[^\n]*\n");
}

// The signal is sent until it is heard: it is ignored up to the moment when the tool listens.
TEST_F(Tool, InterruptLeavesNoOutput)
{
    Make("big.png", PXFormat_RGBA32, 2000, 2000, [](long x, long y, long c) { return (x ^ y) + c; });
    const auto before = Files();
    const ProcessResult result = Shell("trap '' INT; '" VFIL_TOOL "' lum big.png big.png -o out.png & "
                                       "while kill -INT $! 2>/dev/null; do sleep 0.02; done; wait $!");
    EXPECT_EQ(result.status, 130);
    EXPECT_EQ(result.err, "vfil lum: interrupted\n");
    EXPECT_TRUE(Files() == before);
}

} // namespace

} // namespace vfil::tool
