/// \file
/// Keyers by the tool: curves, colours, colours taken from pictures, one picture for two, and clips on their
/// own samples.
#include "test/tools/toolfolder.h"
#include <vfil/host/video.h>

#include <nlohmann/json.hpp>

#include <fstream>

namespace vfil::tool {

namespace {

class KeyerTool : public ToolFolder {
protected:
    KeyerTool()
    {
        // Luminances 0, 32 .. 224 from the left, darker by one in the upper row.
        Make("grey.png", PXFormat_RGBA32, 8, 2,
             [](long x, long y, long c) { return c == 3 ? 255 : 32 * x + 1 - y; });
        // Columns get redder to the right and rows greener upwards.
        Make("plate.png", PXFormat_RGBA32, 6, 4, [](long x, long y, long c) {
            return c == 0 ? 10 * x : c == 1 ? 200 + 10 * y : c == 2 ? 40 : 255;
        });
        std::ofstream(Path("points.txt")) << "# dark, then bright\n0:0 64:0\n\n128:255 # level from here\n";
        std::ofstream numbers(Path("numbers.txt"));
        for (int i = 0; i < 256; ++i)
            numbers << (i <= 64    ? 0
                        : i >= 128 ? 255
                                   : (255 * (i - 64) + 32) / 64)
                    << (i % 16 == 15 ? '\n' : ' ');
    }

    nlohmann::json Json(const std::string& arguments) const
    {
        return nlohmann::json::parse(RunWell(arguments + " --json"));
    }

    /// A clip of 4:2:2, a frame a colour: bytes Cb, Y, Cr, Y.
    void MakeClip(const std::string& name, const std::vector<std::array<std::uint8_t, 4>>& colours) const
    {
        host::VideoSettings settings;
        settings.format = PXFormat_YUV422_709;
        settings.width = 8;
        settings.height = 4;
        settings.codec = "ffv1";
        host::VideoWriter writer(Path(name).string(), settings);
        for (const auto& colour : colours) {
            const host::PicturePtr frame = host::Picture::Create(settings.format, 8, 4);
            for (std::size_t i = 0; i < frame->Bytes(); ++i)
                frame->Pixels()[i] = colour[i % 4];
            writer.Write(*frame);
        }
        writer.Finish();
    }
};

TEST_F(KeyerTool, CurvesAreNumbersOrPointsInWordsFilesAndChains)
{
    const std::string key = "lum-key grey.png -o out.png --luminance-map-lut";
    std::string numbers = Bytes("numbers.txt");
    std::replace(numbers.begin(), numbers.end(), '\n', ' ');
    for (const std::string& curve : {std::string("='60:0 64:0 128:255'"), std::string("-file points.txt"),
                                     std::string("-file numbers.txt"), "='" + numbers + "'"}) {
        RunWell(key + curve);
        EXPECT_EQ(Channel("out.png", 3), "0 0 0 128 255 255 255 255, 0 0 4 131 255 255 255 255") << curve;
    }
    std::replace(numbers.begin(), numbers.end(), ' ', ',');
    for (const std::string& curve :
         {std::string("\"0:0 64:0 128:255\""), std::string("[\"64:0\", \"128:255\"]"), "[" + numbers + "]"}) {
        std::ofstream(Path("chain.toml"))
            << "inputs = { picture = \"grey.png\" }\noutputs = { result = \"chain.png\" }\n"
               "[[step]]\nname = \"result\"\noperator = \"lum-key\"\n"
               "inputs = \"picture\"\nluminance-map-lut = "
            << curve << "\n";
        RunWell("run chain.toml");
        EXPECT_EQ(Channel("chain.png", 3), Channel("out.png", 3)) << curve;
    }
}

TEST_F(KeyerTool, ColoursAreNumbersOrBytesOrTakenFromThePicture)
{
    using Colour = std::vector<double>;
    const auto colourOf = [&](const std::string& options) {
        const Colour colour =
            Json("blue-green-keyer plate.png -o out.png " + options)["parameters"]["key-color"];
        return colour;
    };
    EXPECT_EQ(colourOf("--key-color 0.5,0.25,0"), (Colour{0.5, 0.25, 0, 1}));
    EXPECT_EQ(colourOf("--key-color 0.5,0.25,0,0.5"), (Colour{0.5, 0.25, 0, 0.5}));
    EXPECT_EQ(colourOf("--key-color '#ff3300'"), (Colour{1, 0.2, 0, 1}));
    const struct {
        const char* place;
        double red, green; // in bytes
    } cases[] = {
        {"0,0", 0, 200},
        {"5,3", 50, 230},
        // Four neighbours and the middle; a disc of more, cut by two edges: columns 0, 1 and 2 of 3, 2 and 1
        // rows.
        {"2,1,1", 20, 210},
        {"0,0,2", 10 * (1 + 1 + 2) / 6.0, 200 + 10 * (1 + 1 + 2) / 6.0},
    };
    for (const auto& c : cases) {
        const Colour colour = colourOf(std::string("--key-color-at ") + c.place);
        EXPECT_NEAR(colour[0], c.red / 255, 1e-6) << c.place;
        EXPECT_NEAR(colour[1], c.green / 255, 1e-6) << c.place;
        EXPECT_NEAR(colour[2], 40.0 / 255, 1e-6);
        EXPECT_EQ(colour[3], 1);
        const std::string taken = Bytes("out.png");
        RunWell("blue-green-keyer plate.png plate.png -o out.png --key-color " + std::to_string(colour[0]) +
                "," + std::to_string(colour[1]) + "," + std::to_string(colour[2]));
        EXPECT_EQ(Bytes("out.png"), taken) << c.place;
    }
    const ProcessResult told = Run("chroma-keyer plate.png --key-color-at 5,3 -o out.png --verbose");
    EXPECT_THAT(told.err, testing::HasSubstr("chroma-keyer: --key-color 0.196078,0.901961,0.156863,1"));
}

// The place is in what the step works on, behind other steps, and the second input is the first again.
TEST_F(KeyerTool, ChainsTakeColoursFromResults)
{
    std::ofstream(Path("chain.toml")) << R"(
inputs = { plate = "plate.png" }
outputs = { keyed = "chain.png" }
[[step]]
name = "inverted"
operator = "invert"
inputs = "plate"
[[step]]
name = "keyed"
operator = "chroma-keyer"
inputs = "inverted"
key-color-at = [2, 1, 1]
)";
    RunWell("run chain.toml");
    RunWell("invert plate.png -o inverted.png");
    RunWell("chroma-keyer inverted.png -o single.png --key-color-at 2,1,1");
    EXPECT_EQ(Bytes("chain.png"), Bytes("single.png"));
}

TEST_F(KeyerTool, ClipsAreKeyedOnTheirOwnSamples)
{
    // A green screen, then a red frame.
    MakeClip("clip.mkv", {{74, 150, 60, 150}, {90, 80, 220, 80}, {74, 150, 60, 150}});
    Make("back.png", PXFormat_RGBA32, 8, 4, [](long, long, long c) { return c == 3 ? 255 : 128; });
    for (const char* keyer : {"chroma-keyer-yuv", "yuv-keyer"}) {
        const auto record =
            Json(std::string(keyer) +
                 " clip.mkv back.png -o out.mkv --codec ffv1 --threads 2 --key-color-at 3,2,1");
        EXPECT_EQ(record["format"], "yuv422-709");
        ASSERT_EQ(record["conversions"].size(), 1U) << record["conversions"];
        EXPECT_EQ(record["conversions"][0]["of"], "back.png");
        EXPECT_EQ(record["frames"], 3);
        // The colour is the first frame's, so that the screen is gone from it and the second frame stays.
        RunWell("convert out.mkv --frames 0:1 -o first.raw");
        RunWell("convert out.mkv --frames 1:2 -o second.raw");
        RunWell("convert out.mkv --frames 2:3 -o third.raw");
        EXPECT_EQ(Bytes("first.raw").substr(0, 4), "\x80\x7E\x80\x7E") << keyer;
        EXPECT_EQ(Bytes("third.raw"), Bytes("first.raw"));
        EXPECT_EQ(Bytes("second.raw").substr(2, 1), "\xDC") << keyer;
    }
    // What it is told of a part, and of a range that begins later.
    const auto later =
        Json("chroma-keyer-yuv clip.mkv --frames 1: -o out.mkv --output-matte --key-color-at 0,0");
    EXPECT_GT(later["parameters"]["key-color"][0], 0.6);
    EXPECT_EQ(later["conversions"].size(), 0U);
    EXPECT_EQ(later["frames"], 2);
}

TEST_F(KeyerTool, RefusesWhatMakesNoSense)
{
    MakeClip("clip.mkv", {{74, 150, 60, 150}});
    Save("few.txt", "1 2 # 3\n");
    const std::string lum = "lum-key grey.png -o out.png --luminance-map-lut ";
    const std::string key = "chroma-keyer plate.png -o out.png ";
    const std::string video = "chroma-keyer-yuv clip.mkv -o out.mkv ";
    ExpectRefusals(
        {{"lum-key grey.png -o out.png", {"needs --luminance-map-lut or --luminance-map-lut-file"}},
         {lum + "''", {"there is no number"}},
         {lum + "'1 2 3'", {"there are 3 numbers, not 256"}},
         {lum + "'1 x'", {"'x' is not a whole number"}},
         {lum + "'0:0 9:256'", {"256 is out of range: numbers are 0 .. 255"}},
         {lum + "'0:0 9:0.5'", {"'0.5' is not a whole number"}},
         {lum + "'0:0 9:nan'", {"'nan' is not a whole number"}},
         {lum + "'0:0 256:1'", {"'256:1' is not a point X:Y, whose X is one of 0 .. 255"}},
         {lum + "'9:0 9:1'", {"'9:1' stands behind a point at 9: X has to ascend"}},
         {lum + "'9:0 10'", {"'10' is not a point X:Y"}},
         {"lum-key grey.png -o out.png --luminance-map-lut-file few.txt", {"few.txt: there are 2 numbers"}},
         {key + "--key-color 0,1", {"'0,1' is not a colour: R,G,B or"}},
         {key + "--key-color '#00ff0'", {"'#00ff0' is not a colour"}},
         {key + "--key-color '#00fg00'", {"'#00fg00' is not a colour"}},
         {key + "--key-color 0,1.5,0", {"--key-color 0,1.5,0 is out of range"}},
         {key + "--key-color nan,0,0", {"is not a colour"}},
         {key + "--key-color-at 6,0", {"--key-color-at 6,0 lies outside plate.png, which is 6x4"}},
         {key + "--key-color-at 0,-1", {"--key-color-at 0,-1 lies outside"}},
         {key + "--key-color-at 1,1,-1", {"a radius of at least 0"}},
         {key + "--key-color-at 1", {"two whole numbers X,Y"}},
         {key + "--key-color-at 1,1 --key-color 0,1,0", {"--key-color or --key-color-at, not both"}},
         {key + "plate.png plate.png", {"takes 2 pictures (PLATE [PICTURE]), not 3"}},
         {video + "--crop-box=-1,0,4,4", {"Crop box", "(0x1000A); see --crop-box"}},
         {video + "--crop-box 0,0,9,4", {"(0x1000A); see --crop-box"}},
         {video + "--crop-box 0,0,4", {"four whole numbers X,Y,W,H"}},
         {video + "--crop-box 0,0,4,-4", {"width and height are at least 0"}},
         {video + "--key-matte-low 50 --key-matte-high 50",
          {"(0x10023); see --key-matte-low, --key-matte-high"}},
         {video + "--mask grey.png", {"takes no --mask"}},
         {"2input-luma-keyer clip.mkv -o out.mkv --luma-clip 0.6 --luma-gain 0.5", {"(0x20002)"}}},
        "vfil [0-9a-z-]+: [^\n]*\n");
}

} // namespace

} // namespace vfil::tool
