/// \file
/// Fields through the tool as a process: what clips say and hold afterwards, what is measured, and what is
/// said to requests that make no sense.
#include "test/support/fieldscene.h"
#include "test/tools/toolfolder.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace vfil::tool {

namespace {

using host::FieldOrder;
using testing::HasSubstr;
using Json = nlohmann::json;

constexpr FieldScene kPan{.right = 3, .down = 0.5};

class FieldTest : public ToolFolder {
protected:
    FieldTest()
    {
        fs::create_directory_symlink(VFIL_SOURCE_DIR "/media", Path("media"));
        WriteScene(Path("top.mkv"), kPan, 320, 96, 12, FieldOrder::TopFirst, FieldOrder::TopFirst);
    }

    Json InfoOf(const std::string& name) const { return Json::parse(RunWell("info --json " + name)).at(0); }

    /// "2 x 50/1 progressive, audio mp2 48000 Hz stereo"
    std::string Said(const std::string& name) const
    {
        const Json info = InfoOf(name);
        std::string text = info["rate"].dump() + " " + info["fieldOrder"]["value"].get<std::string>();
        for (const Json& stream : info["otherStreams"])
            text += ", " + stream.get<std::string>().substr(0, 9);
        return text;
    }
};

TEST_F(FieldTest, ClipsSayWhatTheyHaveBecome)
{
    const struct {
        const char* arguments;
        const char* said;
    } cases[] = {
        {"deinterlace top.mkv", "[50,1] progressive"},
        {"deinterlace top.mkv --same-rate", "[25,1] progressive"},
        {"deinterlace media/dog-352x288i25-tff-422.mpg", "[30,1] progressive, audio mp2"},
        {"field-swap top.mkv", "[25,1] bottom"},
        {"field-merge top.mkv", "[25,1] progressive"},
        {"interlace media/dog-480x270p30.mp4", "[45000,2999] top, audio aac"},
        {"interlace media/dog-480x270p30.mp4 --field-order bottom", "[45000,2999] bottom, audio aac"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Run(std::string(c.arguments) + " -o out.nut --codec ffv1 --quiet").status, 0)
            << c.arguments;
        EXPECT_EQ(Said("out.nut"), c.said) << c.arguments;
    }
    RunWell("deinterlace top.mkv -o even.mkv --odd odd.mkv");
    RunWell("interlace even.mkv odd.mkv --field-order top -o woven.mkv");
    EXPECT_EQ(Said("woven.mkv"), "[25,1] top");
    RunWell("copy top.mkv -o copied.mkv");
    EXPECT_TRUE(Bytes("woven.mkv") == Bytes("copied.mkv"));
}

// A frame before the range is looked at, and sound begins with the range all the same.
TEST_F(FieldTest, SoundKeepsItsTimeInARange)
{
    const auto soundOf = [&](const std::string& type) {
        RunWell("deinterlace media/dog-352x288i25-tff-422.mpg -o out.mkv --frames 4:8 --type " + type);
        return Shell("ffprobe -v error -select_streams a -show_entries packet=pts_time,size -of csv=p=0 "
                     "out.mkv")
            .out;
    };
    const std::string sound = soundOf("adaptive");
    EXPECT_THAT(sound, HasSubstr("."));
    EXPECT_EQ(sound, soundOf("interpolate"));
}

TEST_F(FieldTest, PicturesAreSplitAndWoven)
{
    RunWell("deinterlace media/cat-fur-rgb8.png -o even.png --odd odd.png");
    RunWell("interlace even.png odd.png -o woven.png");
    RunWell("copy media/cat-fur-rgb8.png -o copied.png --channels rgba");
    const auto pixels = [&](const char* name) { return Channel(name, 0) + Channel(name, 2); };
    EXPECT_TRUE(pixels("woven.png") == pixels("copied.png"));
    EXPECT_FALSE(pixels("even.png") == pixels("copied.png"));
    // Compared with itself a picture is still, and woven.
    RunWell("deinterlace media/cat-fur-rgb8.png media/cat-fur-rgb8.png -o still.png");
    EXPECT_TRUE(pixels("still.png") == pixels("copied.png"));
}

TEST_F(FieldTest, MeasuresWhatAClipClaims)
{
    const struct {
        FieldOrder order, said;
        const char* measured;
        const char* claimed;
        int check;
    } cases[] = {
        {FieldOrder::TopFirst, FieldOrder::TopFirst, "top", "top", 0},
        {FieldOrder::BottomFirst, FieldOrder::TopFirst, "bottom", "top", 1},
        {FieldOrder::Progressive, FieldOrder::BottomFirst, "progressive", "bottom", 1},
        {FieldOrder::TopFirst, FieldOrder::Progressive, "top", "progressive", 1},
    };
    for (const auto& c : cases) {
        WriteScene(Path("clip.mkv"), kPan, 320, 96, 12, c.order, c.said);
        const Json record = Json::parse(RunWell("fields clip.mkv --json"));
        EXPECT_EQ(record["measured"], c.measured);
        EXPECT_EQ(record["claimed"], c.claimed);
        EXPECT_EQ(record["differ"], c.check == 1);
        EXPECT_EQ(record["figures"]["pairs"], 11);
        EXPECT_EQ(Run("fields clip.mkv --check").status, c.check);
    }
    EXPECT_EQ(Run(std::string("fields top.mkv --check --field-order bottom")).status, 1);
    // Nothing moves in a frame alone.
    const ProcessResult still = Run("fields top.mkv --check --field-order bottom --frames 1");
    EXPECT_EQ(still.status, 0);
    EXPECT_THAT(still.out, HasSubstr("cannot tell"));
    EXPECT_THAT(RunWell("fields top.mkv --frames 3:9"), HasSubstr("pairs         5: 0 progressive, 5 top"));
}

TEST_F(FieldTest, WarnsAndRuns)
{
    const struct {
        const char* arguments;
        std::vector<std::string> texts;
    } cases[] = {
        {"blur top.mkv -o out.mkv --radius 2",
         {"top.mkv is interlaced, and blur mixes", "'vfil help deinterlace'", "--fields both",
          "--field-order progressive"}},
        {"deinterlace media/dog-480x270p30.mp4 -o out.mp4", {"says that it is progressive", "--field-order"}},
        {"interlace top.mkv -o out.mkv", {"top.mkv is interlaced itself"}},
    };
    for (const auto& c : cases) {
        const ProcessResult result = Run(c.arguments);
        EXPECT_EQ(result.status, 0) << c.arguments;
        EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
        for (const std::string& text : c.texts)
            EXPECT_THAT(result.err, HasSubstr(text));
    }
    RunWell("blur top.mkv -o out.mkv --radius 2 --fields both");
    RunWell("blur top.mkv -o out.mkv --radius 2 --field-order progressive");
    // In a chain the remedy is an entry.
    Save("chain.toml", "[inputs]\nin = \"top.mkv\"\n[[step]]\nname = \"out\"\noperator = \"sobel\"\ninputs = "
                       "\"in\"\n[outputs]\nout = \"out.mkv\"\n");
    EXPECT_THAT(Run("run chain.toml").err, HasSubstr("or say with fields both"));
}

TEST_F(FieldTest, WrongRequestsAreALine)
{
    WriteScene(Path("odd.mkv"), kPan, 64, 48, 5, FieldOrder::Progressive, FieldOrder::Progressive);
    Make("small.png", PXFormat_RGBA32, 6, 4, [](long, long, long) { return 9; });
    const std::string cat = "media/cat-fur-rgb8.png ";
    const std::string split = "deinterlace top.mkv -o out.mkv ";
    ExpectRefusals(
        {
            {split + "--min-threshold 0.5 --max-threshold 0.2", {"(0x10046); see --min-threshold, --max"}},
            {split + "--min-threshold 0.2", {"(0x10046)"}},
            {split + "--min-threshold nan", {"--min-threshold 'nan' is not a number"}},
            {split + "--max-threshold nan", {"--max-threshold 'nan' is not a number"}},
            {split + "--max-threshold 1.1", {"--max-threshold 1.1 is out of range"}},
            {split + "--type fast", {"'fast' is not one of duplicate, interpolate, adaptive"}},
            {split + "--same-rate --odd odd-out.mkv", {"--same-rate is of one clip"}},
            {split + "--roi 0,0,10,10", {"works on whole pictures"}},
            {"deinterlace top.mkv odd.mkv odd.mkv -o out.mkv", {"must have the same size (0x1003D)"}},
            {"deinterlace " + cat + "small.png small.png -o out.png", {"must have the same size (0x1003D)"}},
            {"deinterlace " + cat + "-o out.png --type adaptive", {"compares a picture with others"}},
            {"deinterlace " + cat + "-o out.png --same-rate", {"is a picture, without a rate"}},
            {"deinterlace top.mkv -o out.png --frames 2:3", {"has two frames for each", "--same-rate"}},
            {"interlace odd.mkv -o out.mkv", {"odd.mkv has 5 frames, and 2 become one", "--frames", "0:4"}},
            {"interlace odd.mkv -o out.mkv --frames 1:4", {"3 frames in the range", "1:3"}},
            {"interlace odd.mkv -o out.png --frames 1:2", {"choose two frames, such as --frames 10:12"}},
            {"interlace " + cat + "-o out.png", {"takes two pictures, or one clip of twice the rate"}},
            {"interlace " + cat + "small.png -o out.png", {"(0x1003D)"}},
            {"interlace top.mkv -o out.mkv --field-order progressive", {"one of top, bottom"}},
            {"field-swap top.mkv -o out.mkv --mask small.png", {"takes no --mask"}},
            {"fields", {"takes one clip"}},
            {"fields small.png", {"is a picture"}},
            {"fields top.mkv --frames 0", {"--frames '0'"}},
            {"fields top.mkv --frames 40:50", {"top.mkv has 12 frames"}},
            {"fields gone.mkv", {"gone.mkv: no such file"}},
        },
        "(vfil: [^\n]*\n)*vfil [a-z-]*: [^\n]*\n");
}

} // namespace

} // namespace vfil::tool
