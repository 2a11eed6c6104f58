/// \file
/// vfil score: what it says of pictures and clips, and what it refuses.
#include "test/tools/toolfolder.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace vfil::tool {

namespace {

using nlohmann::json;
using testing::HasSubstr;

// Screen, edge and solid pixels by columns; the matte is wrong in one pixel of each.
class ScoreTool : public ToolFolder {
protected:
    ScoreTool()
    {
        const auto truth = [](long x, long) { return x == 0 ? 0 : x == 1 ? 100 : 255; };
        const auto matte = [=](long x, long y) {
            const long wrong[] = {6, 140, 204};
            return y == 1 && x < 3 ? wrong[x] : truth(x, y);
        };
        Make("truth.png", PXFormat_Mono8, 4, 2, [=](long x, long y, long) { return truth(x, y); });
        Make("matte.png", PXFormat_Mono8, 4, 2, [=](long x, long y, long) { return matte(x, y); });
        Make("alpha.png", PXFormat_RGBA32, 4, 2,
             [=](long x, long y, long c) { return c == 3 ? matte(x, y) : 50 * x; });
        Make("small.png", PXFormat_Mono8, 2, 2, [](long, long, long) { return 0; });
        Make("wide.png", PXFormat_Mono8, 64, 48, [](long x, long, long) { return x < 32 ? 0 : 255; });
        RunWell("copy wide.png -o wide16.tif --format mono16 --quiet");
    }
};

TEST_F(ScoreTool, TellsTheFiguresOfPictures)
{
    for (const std::string matte : {"matte.png", "alpha.png"}) {
        const json record = json::parse(RunWell("score " + matte + " truth.png --json --diff diff.png"));
        EXPECT_EQ(record["matte"]["channel"], matte == "alpha.png" ? "alpha" : "luma");
        const json& total = record["total"];
        EXPECT_NEAR(total["meanSquaredError"], (36 + 1600 + 51 * 51) / 8.0, 1e-9);
        EXPECT_NEAR(total["sumOfAbsoluteDifferences"], (6 + 40 + 51) / 255.0, 1e-9);
        EXPECT_NEAR(total["edgeError"], 20, 1e-9);
        EXPECT_NEAR(total["screenLeft"], 0.5, 1e-9);
        EXPECT_NEAR(total["solidLost"], 0.25, 1e-9);
        EXPECT_EQ(record["frames"], json::array({total}));
        const host::PicturePtr shown = host::ReadPicture(Path("diff.png"));
        EXPECT_EQ(std::string(shown->Row(1), shown->Row(1) + 4), "\x83\x94\x66\x80");
        EXPECT_EQ(std::string(shown->Row(0), shown->Row(0) + 4), "\x80\x80\x80\x80");
    }
    const std::string text = RunWell("score matte.png truth.png");
    for (const char* part : {"529.62", "0.4", "20.00", "50.00 %", "25.00 %"})
        EXPECT_THAT(text, HasSubstr(part));
    const json luma = json::parse(RunWell("score small.png small.png --json"));
    EXPECT_TRUE(luma["total"]["edgeError"].is_null() && luma["total"]["solidLost"].is_null());
    EXPECT_THAT(RunWell("score wide.png wide16.tif"), HasSubstr(" 0.00  of 255 x 255"));
}

TEST_F(ScoreTool, ComparesClipsFrameByFrame)
{
    const auto encode = [&](const std::string& name, const std::string& filter, const std::string& codec) {
        const ProcessResult made = Shell("ffmpeg -v error -f lavfi -i 'color=black:s=64x48:r=10,format=gray" +
                                         filter + "' -frames:v 4 " + codec + " " + name);
        return made.status == 0;
    };
    ASSERT_TRUE(encode("black.mkv", ",geq=lum=0", "-c:v ffv1"));
    // Grey grows by 51 a frame; once as grey, once as luma of studio range.
    ASSERT_TRUE(encode("grow.mkv", ",geq=lum=51*N", "-c:v ffv1"));
    ASSERT_TRUE(encode("studio.mkv", ",geq=lum=51*N,scale=out_range=tv,format=yuv422p", "-c:v ffv1"));
    ASSERT_TRUE(encode("short.mkv", ",geq=lum=0,trim=end_frame=3", "-c:v ffv1"));
    for (const std::string clip : {"grow.mkv", "studio.mkv"}) {
        const json record = json::parse(RunWell("score " + clip + " black.mkv --json --diff diff.mkv"));
        ASSERT_EQ(record["frames"].size(), 4u);
        for (int i = 0; i < 4; ++i)
            EXPECT_NEAR(record["frames"][i]["meanSquaredError"], 2601 * i * i, 120 * i) << clip;
        EXPECT_NEAR(record["total"]["meanSquaredError"], 2601 * 14 / 4.0, 200);
        EXPECT_EQ(record["total"]["screenLeft"], 0.75);
        EXPECT_EQ(json::parse(RunWell("score diff.mkv diff.mkv --json"))["frames"].size(), 4u);
    }
    EXPECT_THAT(RunWell("score grow.mkv black.mkv"), HasSubstr("2601.00"));
    ASSERT_TRUE(encode("offset.mkv", "", "-c:v ffv1")); // grey of 16
    EXPECT_THAT(RunWell("score offset.mkv black.mkv"), HasSubstr("256.00"));
    EXPECT_THAT(RunWell("score offset.mkv black.mkv --range studio"), HasSubstr(" 0.00  of 255 x 255"));
    ExpectRefusals({{"score short.mkv black.mkv --diff new.mkv", {"3 frames", "4 frames"}},
                    {"score black.mkv short.mkv", {"3 frames", "4 frames"}},
                    {"score wide.png black.mkv", {"wide.png has 1 frame,", "4 frames"}},
                    {"score black.mkv black.mkv --diff new.png", {"write a clip"}},
                    {"score black.mkv black.mkv --diff none/new.mkv", {"none does not exist"}}},
                   "vfil score: [^\n]*\n");
}

TEST_F(ScoreTool, RefusesInOneLineAndLeavesNothing)
{
    ExpectRefusals({{"score matte.png", {"takes two files"}},
                    {"score matte.png none.png", {"none.png: no such file"}},
                    {"score matte.png small.png --diff new.png", {"matte.png is 4x2, and small.png is 2x2"}},
                    {"score matte.png truth.png --diff truth.png", {"truth.png is read"}},
                    {"score matte.png truth.png --diff new.mkv", {"write a picture"}},
                    {"score matte.png truth.png --diff none/new.png", {"none does not exist"}},
                    {"score matte.png truth.png --diff new.xyz", {"new.xyz"}},
                    {"score matte.png truth.png --diff -", {"--diff takes the name of a file"}},
                    {"score matte.png truth.png --channel alpha", {"has no alpha"}},
                    {"score matte.png truth.png --channel red", {"alpha, luma"}}},
                   "vfil score: [^\n]*\n");
}

} // namespace

} // namespace vfil::tool
