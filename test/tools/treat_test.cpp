/// \file
/// Colour treatment by the tool: tables from files, ramps out of nothing, video made legal and told of.
#include "test/tools/toolfolder.h"
#include <vfil/host/video.h>

#include <nlohmann/json.hpp>

namespace vfil::tool {

namespace {

using nlohmann::json;
using testing::HasSubstr;
using Pair = std::array<int, 4>; // Cb Y Cr Y

class TreatTool : public ToolFolder {
protected:
    TreatTool()
    {
        // Red, and two greys, one half clear.
        Make("three.png", PXFormat_RGBA32, 3, 1, [](long x, long, long c) {
            return x == 0 ? (c == 0 || c == 3 ? 255 : 0) : c == 3 ? 255 / x : 100 * x;
        });
        Make("grey.png", PXFormat_Mono8, 3, 1, [](long x, long, long) { return x; });
    }

    json Json(const std::string& arguments) const { return json::parse(RunWell(arguments + " --json")); }

    // All channels of the only row.
    std::string Pixels(const std::string& name) const
    {
        std::string text;
        for (int c = 0; c < 4; ++c)
            text += (c > 0 ? "; " : "") + Channel(name, c);
        return text;
    }

    /// A raw picture of one row.
    void SaveRow(const std::string& name, const std::vector<Pair>& pairs) const
    {
        std::string bytes;
        for (const Pair& pair : pairs)
            for (const int sample : pair)
                bytes += static_cast<char>(sample);
        Save(name, bytes);
    }

    static host::VideoSettings ClipOf(const GUID& format)
    {
        host::VideoSettings settings;
        settings.format = format;
        settings.width = 8;
        settings.height = 2;
        settings.codec = "ffv1";
        settings.matrix =
            vfILFindFormat(format)->model == PXColorModel_YCC709 ? host::Matrix::Bt709 : host::Matrix::Bt601;
        return settings;
    }

    /// Neutral frames, of which frame i has one pair too bright in column 2 i.
    void MakeClip(const std::string& name, int frames) const
    {
        const host::VideoSettings settings = ClipOf(PXFormat_YUV422_709);
        host::VideoWriter writer(Path(name).string(), settings);
        for (int i = 0; i < frames; ++i) {
            const host::PicturePtr frame = host::Picture::Create(settings.format, 8, 2);
            std::memset(frame->Pixels(), 128, frame->Bytes());
            std::uint8_t* pair = frame->Row(1) + 4 * (i % 4);
            pair[1] = static_cast<std::uint8_t>(240 + i);
            writer.Write(*frame);
        }
        writer.Finish();
    }
};

TEST_F(TreatTool, LumaWeighsAsInTheClipAndInPicturesAsIn709)
{
    const std::string grey = "color-correction three.png -o out.png --saturation 0";
    EXPECT_EQ(Json(grey)["parameters"]["color-model"], "709");
    EXPECT_EQ(Channel("out.png", 1), "53 99 199");
    EXPECT_EQ(Channel("out.png", 3), "255 255 127");
    RunWell(grey + " --color-model 601");
    EXPECT_EQ(Channel("out.png", 1), "76 100 200");
    for (const GUID& format : {PXFormat_YUV422_601, PXFormat_YUV422_709}) {
        host::VideoWriter writer(Path("clip.mkv").string(), ClipOf(format));
        const host::PicturePtr frame = host::Picture::Create(format, 8, 2);
        std::memset(frame->Pixels(), 90, frame->Bytes());
        writer.Write(*frame);
        writer.Finish();
        const std::string command = "color-correction clip.mkv -o out.mkv --codec ffv1 --saturation 0";
        const bool is709 = format == PXFormat_YUV422_709;
        const json own = Json(command);
        EXPECT_EQ(own["format"], is709 ? "yuv422-709" : "yuv422-601");
        EXPECT_EQ(own["conversions"].size(), 0u);
        RunWell("convert out.mkv --frames 0:1 -o out.raw");
        EXPECT_EQ(Bytes("out.raw").substr(0, 4), "\x80Z\x80Z");
        const json rgb = Json(command + " --roi 0,0,4,2");
        EXPECT_EQ(rgb["format"], "rgba32");
        EXPECT_EQ(rgb["parameters"]["color-model"], is709 ? "709" : "601");
    }
}

TEST_F(TreatTool, TablesComeFromFiles)
{
    std::string one = "# falls\n\n";
    std::string three, four, plus;
    for (int i = 0; i < 256; ++i) {
        const std::string down = std::to_string(255 - i);
        one += down + "\n";
        three += down + "," + down + ", " + down + "\r\n";
        four += down + " " + down + "\t" + down + " 7 # alpha\n";
        plus += "10 0 0 " + std::to_string(-i) + "\n";
    }
    Save("one.txt", one);
    Save("three.txt", three);
    Save("four.txt", four);
    Save("plus.txt", plus);
    Save("fall.cube", "TITLE \"falls\"\nLUT_1D_SIZE 2\n1 1 1\n0 0 0\n");
    Save("half.CUBE", "LUT_1D_SIZE 3\nDOMAIN_MIN -1 0 0\nDOMAIN_MAX 1 1 2\n0 1 0\n0 0.5 1\n1 0 0\n");
    const struct {
        const char* options;
        const char* pixels;
    } cases[] = {
        {"--rgba-lut one.txt", "0 155 55; 255 155 55; 255 155 55; 255 255 127"},
        {"--rgba-lut three.txt", "0 155 55; 255 155 55; 255 155 55; 255 255 127"},
        {"--rgba-lut four.txt --channels rgba", "0 155 55; 255 155 55; 255 155 55; 7 7 7"},
        {"--rgba-lut fall.cube --channels rgba", "0 155 55; 255 155 55; 255 155 55; 255 255 127"},
        // Red rises from the middle, green falls, and blue reaches its top with the range.
        {"--rgba-lut half.CUBE", "255 100 200; 255 155 55; 0 100 200; 255 255 127"},
        {"--lut plus.txt --color-model 601 --channels rgba", "255 110 210; 9 110 210; 9 110 210; 179 155 0"},
    };
    for (const auto& c : cases) {
        RunWell(std::string("color-correction three.png -o out.png ") + c.options);
        EXPECT_EQ(Pixels("out.png"), c.pixels) << c.options;
    }
    Save("chain.toml", R"(
inputs = { picture = "three.png" }
outputs = { result = "out.png" }
[[step]]
name = "result"
operator = "color-correction"
inputs = "picture"
rgba-lut = "fall.cube"
)");
    RunWell("run chain.toml");
    EXPECT_EQ(Pixels("out.png"), cases[0].pixels);
    EXPECT_EQ(Json("color-correction three.png -o out.png --rgba-lut one.txt")["parameters"]["rgba-lut"],
              "one.txt");
}

TEST_F(TreatTool, WrongTablesAreRefusedWithTheirLine)
{
    const std::string rows = "0 0 0 0\n";
    const std::pair<std::string, std::string> files[] = {
        {"few.txt", rows + rows},
        {"empty.txt", ""},
        {"text.txt", "# no\n" + rows + "0 x 0 0\n"},
        {"nan.txt", "0 nan 0 0\n"},
        {"range.txt", "0 -32769 0 0\n"},
        {"byte.txt", "256\n"},
        {"two.txt", "1 2\n"},
        {"mixed.txt", "1 2 3\n1\n"},
        {"few.cube", "LUT_1D_SIZE 4\n0 0 0\n"},
        {"more.cube", "LUT_1D_SIZE 2\n0 0 0\n0 0 0\n0 0 0\n"},
        {"nan.cube", "LUT_1D_SIZE 2\nnan 0 0\n"},
        {"range.cube", "LUT_1D_SIZE 2\n0 0 1.5\n"},
        {"size.cube", "LUT_1D_SIZE 1\n"},
        {"none.cube", "# nothing\n"},
        {"order.cube", "0 0 0\n"},
        {"domain.cube", "LUT_1D_SIZE 2\nDOMAIN_MAX 0 1 1\n0 0 0\n1 1 1\n"},
        {"solid.cube", "LUT_3D_SIZE 2\n"},
        {"word.cube", "LUT_1D_SIZE 2\nLUTS\n"},
    };
    for (const auto& [name, text] : files)
        Save(name, text);
    std::string many;
    for (int i = 0; i < 257; ++i)
        many += rows;
    Save("many.txt", many);
    const std::string run = "color-correction three.png -o out.png ";
    ExpectRefusals({{run + "--lut few.txt", {"--lut few.txt:2: the table ends after 2 rows; it needs 256"}},
                    {run + "--lut empty.txt", {"empty.txt:1: the table ends after 0 rows"}},
                    {run + "--lut text.txt", {"text.txt:3: 'x' is not a whole number of -32768 .. 32767"}},
                    {run + "--lut nan.txt", {"nan.txt:1: 'nan' is not"}},
                    {run + "--lut range.txt", {"range.txt:1: -32769 is out of range"}},
                    {run + "--lut many.txt", {"many.txt:257: there are more than 256 rows"}},
                    {run + "--lut byte.txt", {"byte.txt:1: a row of 1 number; it takes 4"}},
                    {run + "--lut none.cube", {"none.cube", "256 rows of 4 numbers"}},
                    {run + "--lut gone.txt", {"gone.txt"}},
                    {run + "--rgba-lut byte.txt", {"byte.txt:1: 256 is out of range: numbers are 0 .. 255"}},
                    {run + "--rgba-lut two.txt", {"two.txt:1: a row of 2 numbers; it takes 1, 3 or 4"}},
                    {run + "--rgba-lut mixed.txt", {"mixed.txt:2: a row of 1 number; the first one has 3"}},
                    {run + "--rgba-lut few.cube", {"few.cube:2: the table ends after 1 row; it needs 4"}},
                    {run + "--rgba-lut more.cube", {"more.cube:4: there are more than 2 rows"}},
                    {run + "--rgba-lut nan.cube", {"nan.cube:2: 'nan' is not a number"}},
                    {run + "--rgba-lut range.cube", {"range.cube:2: a number is out of range"}},
                    {run + "--rgba-lut size.cube", {"size.cube:1: LUT_1D_SIZE is one of 2 .. 65536"}},
                    {run + "--rgba-lut none.cube", {"none.cube:1: there is no LUT_1D_SIZE"}},
                    {run + "--rgba-lut order.cube", {"order.cube:1: '0' stands before LUT_1D_SIZE"}},
                    {run + "--rgba-lut domain.cube", {"domain.cube:4: DOMAIN_MIN is not below DOMAIN_MAX"}},
                    {run + "--rgba-lut solid.cube", {"solid.cube:1: it is a 3D table"}},
                    {run + "--rgba-lut word.cube", {"word.cube:2: there have to be three numbers"}},
                    {run + "--rgba-lut /dev/zero", {"too large"}},
                    {run + "--hue nan", {"--hue 'nan' is not a number"}},
                    {run + "--gain 1e300", {"--gain 1e300 is out of range"}},
                    {run + "--color-model 708", {"601, 709"}}},
                   "vfil [a-z-]+: [^\n]*\n");
}

TEST_F(TreatTool, PaintsRampsOfNothing)
{
    const std::string stops = "--stops '99:#ff0000 0:0,0,1' ";
    const struct {
        std::string options;
        int channel;
        const char* samples;
    } cases[] = {
        {"--size 5x1 --vector 0,0,4,0 " + stops, 0, "0 128 255 255 255"},
        {"--size 5x1 --vector 0,0,4,0 " + stops, 2, "255 128 0 0 0"},
        {"--size 5x1 --vector 0,0,4,0 --invert " + stops, 0, "255 128 0 0 0"},
        {"--size 5x1 --vector 0,0,4,0 --format mono16 " + stops, 0, "0 32768 65535 65535 65535"},
        {"--size 1x3 --vector 0,0,0,2 " + stops, 0, "255, 255, 0"},
        {"--size 3x1 --stops 7:0.5,1,0,0.25", 3, "64 64 64"},
        {"--size 5x3 --type radial --vector 2,1,2,0 --stops '0:1,1,1 50:0,0,0'", 0,
         "0 0 0 0 0, 0 0 255 0 0, 0 0 0 0 0"},
        {"--size 2x2 --type square --color-ll '#010000' --color-lr '#020000' --color-ur '#030000' --color-ul "
         "'#040000'",
         0, "4 3, 1 2"},
        // By itself from edge to edge.
        {"--size 101x1 --stops '0:0,0,0 99:1,1,1' --format mono8", 0, "0 3 5 "},
    };
    for (const auto& c : cases) {
        RunWell("color-grade -o out.png " + c.options);
        EXPECT_THAT(Channel("out.png", c.channel), testing::StartsWith(c.samples)) << c.options;
    }
    Save("chain.toml", R"(
inputs = { front = "three.png" }
outputs = { result = "out.png" }
[[step]]
name = "ramp"
operator = "color-grade"
size = [3, 1]
stops = ["0:#00ff00", "99:0,1,0"]
[[step]]
name = "result"
operator = "over"
inputs = { back = "ramp", front = "front" }
)");
    RunWell("run chain.toml");
    EXPECT_EQ(Channel("out.png", 1), "0 100 228") << "200 half over 255";
}

TEST_F(TreatTool, RefusesRampsThatMakeNoSense)
{
    const std::string run = "color-grade --size 4x4 -o out.png ";
    const std::string stops = "--stops 0:#000000 ";
    ExpectRefusals(
        {{"color-grade -o out.png " + stops, {"needs --size WxH"}},
         {run, {"--stops: needs at least one colour"}},
         {run + "--type radial", {"--stops: needs at least one colour"}},
         {run + "--stops ''", {"there is no stop"}},
         {run + "--stops 120:#fff", {"'120:#fff' is out of range", "0 .. 99"}},
         {run + "--stops=-1:0,0,0", {"'-1:0,0,0' is out of range"}},
         {run + "--stops x:#000", {"'x:#000' is no stop WEIGHT:COLOUR"}},
         {run + "--stops 50", {"'50' is no stop WEIGHT:COLOUR"}},
         {run + "--stops 50:red", {"'50:red' has no colour"}},
         {run + "--stops 50:0,0,2", {"'50:0,0,2' is out of range"}},
         {run + "--stops 50:nan,0,0", {"'50:nan,0,0' has no colour"}},
         {run + "--stops '5:0,0,0 5:1,1,1'", {"another stop at 5"}},
         {run + stops + "--vector 0,0,0,0", {"(0x1003F); see --vector"}},
         {run + stops + "--type radial --vector 0,0,1,1", {"(0x1003F); see --vector"}},
         {run + stops + "--vector 0,0,nan,1", {"--vector '0,0,nan,1'"}},
         {run + stops + "--ratio 0", {"--ratio 0 is out of range"}},
         {run + stops + "--ratio nan", {"--ratio 'nan'"}},
         {run + stops + "--type cone", {"linear, radial, square"}},
         {run + stops + "--invert=2", {"yes or no"}},
         {run + stops + "--color-ll 0,0,nan", {"--color-ll '0,0,nan'"}},
         {run + stops + "--format yuv422-709", {"rgba32, rgba64, mono8, mono16"}},
         {run + stops + "--roi 0,0,2,2", {"unknown option '--roi'"}},
         {run + stops + "--mask grey.png", {"unknown option '--mask'"}},
         {run + stops + "three.png", {"reads no picture", "'three.png'"}},
         {"color-grade --size 0x4 -o out.png " + stops, {"--size '0x4'"}},
         {"color-grade --size 65000x65000 -o out.png " + stops, {"too large; see --size"}},
         {"color-grade --size 4x4 -o out.mp4 " + stops, {"out.mp4 would be a clip", "one picture"}},
         {"color-grade --size 4x4 -o out.jpg --format rgba64 " + stops, {"16 bits"}}},
        "vfil [a-z-]+: [^\n]*\n");
}

TEST_F(TreatTool, TellsHowLegalPicturesAreBeforeAndAfter)
{
    // Too dark, neutral, chroma above its range, too much blue for its luma.
    SaveRow("in.raw", {{128, 10, 128, 16}, {128, 235, 128, 100}, {241, 60, 128, 60}, {200, 230, 128, 90}});
    const std::string run = "legalize in.raw --in-format yuv422-601 --in-size 8x1 ";
    const json record = Json(run + "-o out.raw --report out.csv")["legality"];
    EXPECT_EQ(record["matrix"], "601");
    EXPECT_EQ(record["rightChroma"], "own");
    ASSERT_EQ(record["frames"].size(), 1u);
    const json& before = record["frames"][0]["before"];
    EXPECT_EQ(before, record["total"]["before"]);
    EXPECT_EQ(before["pixels"], 8);
    EXPECT_EQ(before["outside"]["pixels"], 4);
    EXPECT_EQ(before["outside"]["share"], 0.5);
    EXPECT_EQ(before["lumaLow"]["pixels"], 1);
    EXPECT_EQ(before["lumaHigh"]["pixels"], 0);
    EXPECT_EQ(before["chroma"]["pixels"], 2);
    EXPECT_EQ(before["rgbUnder"]["pixels"], 1);
    EXPECT_EQ(before["rgbOver"]["pixels"], 3);
    EXPECT_EQ(before["beyondOneCode"]["pixels"], 4);
    EXPECT_EQ(before["worst"]["kind"], "rgbOver");
    EXPECT_NEAR(before["worst"]["codes"], 255 * (214 / 219.0 + 1.772 * 72 / 224 - 1), 1e-9);
    EXPECT_EQ(before["worst"]["x"], 6);
    EXPECT_EQ(before["worst"]["y"], 0);
    EXPECT_EQ(record["total"]["after"]["beyondOneCode"]["pixels"], 0);
    const std::string csv = Bytes("out.csv");
    EXPECT_THAT(csv, HasSubstr("frame,matrix,right_chroma,pixels,before_outside,before_outside_share,"));
    EXPECT_THAT(csv, HasSubstr("\n0,601,own,8,4,0.5,1,0.125,0,0,2,0.25,3,0.375,1,0.125,4,0.5,"));
    EXPECT_THAT(csv, HasSubstr(",rgb_over,6,0,"));
    EXPECT_EQ(std::count(csv.begin(), csv.end(), '\n'), 2);
    // A report alone; the right pixels by the mean: of the third pair 241 and 200 are 221.
    fs::remove(Path("out.raw"));
    const std::string said = RunWell(run + "--report other.csv --report-chroma mean");
    EXPECT_THAT(said, HasSubstr("other.csv: 1 frame, by the mean chroma\n  before: 37.50 % of the pixels"));
    EXPECT_THAT(Bytes("other.csv"), HasSubstr("\n0,601,mean,8,3,0.375,1,0.125,0,0,1,0.125,2,"));
    EXPECT_FALSE(fs::exists(Path("out.raw")));
}

TEST_F(TreatTool, LegalizesStrictlyUnlessToldOtherwise)
{
    // The right pixel is legal by the mean chroma alone.
    SaveRow("in.raw", {{200, 60, 128, 230}, {90, 230, 128, 230}});
    const std::string run =
        "legalize in.raw --in-format yuv422-709 --in-size 4x1 -o out.raw --mode adjust-gain ";
    EXPECT_EQ(Json(run)["legality"]["total"]["after"]["beyondOneCode"]["pixels"], 0);
    EXPECT_GT(Json(run + "--no-strict-pairs")["legality"]["total"]["after"]["beyondOneCode"]["pixels"], 0);
    const std::string loose = Bytes("out.raw");
    RunWell(run + "--strict-pairs=no");
    EXPECT_EQ(Bytes("out.raw"), loose);
    // The class leaves a lone pixel.
    SaveRow("odd.raw", {{128, 250, 128, 250}});
    Save("odd.raw", Bytes("odd.raw") + "\x77\x66");
    RunWell("legalize odd.raw --in-format yuv422-709 --in-size 3x1 -o out.raw");
    EXPECT_EQ(Bytes("out.raw"), "\x80\xEB\x80\xEB\x77\x66");
    // RGB is legal, and said to be.
    const ProcessResult rgb = Run("legalize three.png -o out.png");
    EXPECT_EQ(rgb.status, 0);
    EXPECT_THAT(rgb.err, testing::MatchesRegex("vfil: three.png is rgba32[^\n]*legal[^\n]*\n"));
    EXPECT_EQ(Pixels("out.png"), Pixels("three.png"));
}

TEST_F(TreatTool, ReportsOnClipsFrameByFrameInOrder)
{
    MakeClip("clip.mkv", 12);
    const json record = Json("legalize clip.mkv -o out.mkv --report out.csv --threads 3 --frames 1:");
    const json& frames = record["legality"]["frames"];
    ASSERT_EQ(frames.size(), 11u);
    for (int i = 1; i < 12; ++i) {
        const json& frame = frames[static_cast<std::size_t>(i - 1)];
        EXPECT_EQ(frame["frame"], i);
        EXPECT_EQ(frame["before"]["lumaHigh"]["pixels"], 1);
        EXPECT_NEAR(frame["before"]["worst"]["codes"], (5 + i) * 255 / 219.0, 1e-9);
        EXPECT_EQ(frame["before"]["worst"]["x"], 2 * (i % 4));
        EXPECT_EQ(frame["before"]["worst"]["y"], 1);
        EXPECT_EQ(frame["after"]["outside"]["pixels"], 0);
        EXPECT_THAT(Bytes("out.csv"), HasSubstr("\n" + std::to_string(i) + ",709,own,16,1,0.0625,"));
    }
    EXPECT_EQ(record["legality"]["total"]["before"]["worst"], frames.back()["before"]["worst"]);
    EXPECT_EQ(Json("legalize out.mkv --report again.csv")["legality"]["total"]["before"]["outside"]["pixels"],
              0);
    // In a chain behind what works in RGB, on the samples that the clip gets.
    Save("chain.toml", R"(
inputs = { clip = "clip.mkv" }
outputs = { result = "chain.mkv" }
[[step]]
name = "part"
operator = "invert"
inputs = "clip"
[[step]]
name = "result"
operator = "legalize"
inputs = "part"
report = "chain.csv"
)");
    RunWell("run chain.toml");
    EXPECT_THAT(Bytes("chain.csv"), HasSubstr("\n11,709,own,16,"));
}

// 10 bits of BT.601 are full-rate YCC elsewhere, from which only RGB leads to 4:2:2: there all is legal.
TEST_F(TreatTool, DeepClipsAreJudgedAsTheirSamples)
{
    ASSERT_EQ(Shell("ffmpeg -v error -f lavfi -i \"color=black:s=16x8,format=yuv422p10le,"
                    "geq=lum=800:cb=800:cr=512\" -frames:v 1 -colorspace smpte170m -c:v ffv1 deep.mkv")
                  .status,
              0);
    const ProcessResult result = Run("legalize deep.mkv -o out.mkv --json --mode adjust-saturation");
    EXPECT_THAT(result.err, testing::MatchesRegex("vfil: deep.mkv: [^\n]*rounded to 8 bits\n"));
    const json record = json::parse(result.out);
    EXPECT_EQ(record["format"], "yuv422-601");
    EXPECT_EQ(record["conversions"].size(), 0u);
    const json& before = record["legality"]["total"]["before"];
    EXPECT_EQ(before["rgbOver"]["share"], 1);
    EXPECT_NEAR(before["worst"]["codes"], 255 * (184 / 219.0 + 1.772 * 72 / 224 - 1), 1e-9);
    EXPECT_EQ(record["legality"]["total"]["after"]["beyondOneCode"]["pixels"], 0);
}

TEST_F(TreatTool, RefusesWhatCannotBeMadeLegalOrToldOf)
{
    MakeClip("clip.mkv", 1);
    {
        host::VideoSettings settings = ClipOf(PXFormat_YCCA422_709);
        settings.alpha = host::AlphaState::Straight;
        host::VideoWriter writer(Path("alpha.mkv").string(), settings);
        writer.Write(*host::Picture::Create(settings.format, 8, 2));
        writer.Finish();
    }
    Make("soft.png", PXFormat_Mono8, 8, 2, [](long, long, long) { return 0; });
    const std::string run = "legalize clip.mkv -o out.mkv ";
    ExpectRefusals({{"legalize clip.mkv", {"needs -o FILE"}},
                    {run + "--mode 6", {"--mode '6'", "adjust-luminance-saturation"}},
                    {run + "--luminance-adjust-factor 101", {"--luminance-adjust-factor 101", "0 .. 100"}},
                    {run + "--luminance-adjust-factor nan", {"--luminance-adjust-factor 'nan'"}},
                    {run + "--report gone/out.csv", {"gone"}},
                    {run + "--report ''", {"--report ''", "name of a file"}},
                    {run + "--report -", {"--report -", "standard output"}},
                    {run + "--report clip.mkv", {"--report clip.mkv is read"}},
                    {run + "--report out.mkv", {"out.mkv is written twice"}},
                    {run + "--report .", {".: is no regular file"}},
                    {run + "--report-chroma all", {"own, mean"}},
                    {run + "--roi 0,0,4,2", {"whole pictures"}},
                    {run + "--mask soft.png", {"takes no --mask"}},
                    {run + "--no-strict-pair", {"did you mean '--no-strict-pairs'?"}},
                    {"legalize alpha.mkv -o out.mkv", {"alpha.mkv is ycca422-709", "split-key"}},
                    {"legalize soft.png -o out.png", {"soft.png is mono8", "--format rgba32"}},
                    {"legalize clip.mkv -o out.png --report out.csv", {"out.png is one picture"}}},
                   "vfil [a-z-]+: [^\n]*\n");
}

} // namespace

} // namespace vfil::tool
