/// \file
/// Geometry by the tool: where pixels go as one sees them, sizes of outputs, alpha, files of vectors, and
/// what is refused.
#include "test/tools/toolfolder.h"

#include <bit>
#include <cstdint>
#include <limits>

namespace vfil::tool {

namespace {

class TransformTool : public ToolFolder {
protected:
    TransformTool()
    {
        // The digits of a sample at (x, y) are y + 1 and x.
        const auto ramp = [](long x, long y, long c) { return c == 3 ? 255 : 10 * (y + 1) + x; };
        Make("grey.png", PXFormat_Mono8, 5, 3, ramp);
        Make("opaque.jpg", PXFormat_RGBA32, 21, 21, ramp);
        // White in a clear black.
        Make("spot.png", PXFormat_RGBA32, 5, 1, [](long x, long, long) { return x == 2 ? 255 : 0; });
        Make("one.png", PXFormat_Mono8, 1, 1, [](long, long, long) { return 7; });
        Save("up.flo", Flow(5, 3, 0, -1));
        Save("right.flo", Flow(5, 3, 1, 0));
    }

    static std::string Number(std::uint32_t number)
    {
        std::string bytes;
        for (int i = 0; i < 4; ++i)
            bytes += static_cast<char>(number >> 8 * i & 255);
        return bytes;
    }

    // The same vector everywhere, with y down.
    static std::string Flow(std::uint32_t width, std::uint32_t height, float x, float y)
    {
        std::string text = "PIEH" + Number(width) + Number(height);
        for (std::uint32_t i = 0; i < width * height; ++i)
            text += Number(std::bit_cast<std::uint32_t>(x)) + Number(std::bit_cast<std::uint32_t>(y));
        return text;
    }
};

TEST_F(TransformTool, MovesPixelsAsOneSeesThem)
{
    const std::string all = "30 31 32 33 34, 20 21 22 23 24, 10 11 12 13 14";
    const struct {
        std::string arguments;
        std::string rows; // from the top
    } cases[] = {
        {"affine grey.png", all},
        {"affine grey.png --rotate 90 --size fit", "34 24 14, 33 23 13, 32 22 12, 31 21 11, 30 20 10"},
        {"affine grey.png --rotate -90 --size 3x5", "10 20 30, 11 21 31, 12 22 32, 13 23 33, 14 24 34"},
        {"affine grey.png --translate 2,1", "0 0 20 21 22, 0 0 10 11 12, 0 0 0 0 0"},
        {"affine grey.png --translate 2,1 --size fit", all},
        {"affine grey.png --scale -1,1", "34 33 32 31 30, 24 23 22 21 20, 14 13 12 11 10"},
        {"affine grey.png --scale 2 --about 0,0 --interpolation nearest --size 4x1", "20 21 21 22"},
        {"affine grey.png --shear 1 --interpolation bilinear",
         "0 30 31 32 33, 20 21 22 23 24, 11 12 13 14 0"},
        {"affine grey.png --matrix 1,0,1,0,1,0 --size 3x2 --default-color 1,1,1,1", "255 20 21, 255 10 11"},
        {"affine grey.png --size 7x1", "0 20 21 22 23 24 0"},
        {"affine grey.png --size 2x2", "21 22, 11 12"},
        {"affine grey.png --cropping 1,1,0,1", "0 31 32 33 0, 0 21 22 23 0, 0 0 0 0 0"},
        {"affine grey.png --rotate 45 --translate 99,0", "0 0 0 0 0, 0 0 0 0 0, 0 0 0 0 0"},
        {"affine grey.png --translate 1,0 --fields odd", "30 31 32 33 34, 0 20 21 22 23, 10 11 12 13 14"},
        {"affine grey.png --translate 1,0 --field-order top --fields both --size 2x1", "20 21"},
        {"affine one.png --scale 1e9", "7"},
        {"pan-zoom grey.png --fit 1x1", "22"},
        {"pan-zoom grey.png --fit 7x3", "0 30 31 32 33 34 0, 0 20 21 22 23 24 0, 0 10 11 12 13 14 0"},
        {"pan-zoom grey.png --fit 7x3 --size fit", all},
        {"pan-zoom one.png --fit 4x2", "0 7 7 0, 0 7 7 0"},
        {"pan-zoom grey.png --fill 10x6 --interpolation bilinear --size 3x2 --translate 1,0",
         "0 13 13, 0 10 10"},
        {"pan-zoom grey.png --fill 5x1", "20 21 22 23 24"},
        {"pan-zoom grey.png --border-size 1,0,1,0", "0 0 0 0 0, 0 21 22 23 24, 0 11 12 13 14"},
        {"quad grey.png --corners 0,0,4,0,4,2,0,2 --interpolation bicubic", all},
        {"quad grey.png --corners 4,0,0,0,0,2,4,2 --interpolation nearest --size 2x2", "24 23, 14 13"},
        {"perspective grey.png --corners 0,0,4,0,4,2,0,2", all},
        {"perspective grey.png --corners 1,0,5,0,5,2,1,2 --size fit", all},
        {"perspective grey.png --corners 4,0,0,0,0,2,4,2 --interpolation nearest --size 2x2", "24 23, 14 13"},
        {"perspective grey.png --matrix -3,0,0,0,-3,-3,0,0,-3", "20 21 22 23 24, 10 11 12 13 14, 0 0 0 0 0"},
        {"perspective grey.png --matrix 1,0,0,0,1,0,0,0,1 --clip-mode negative --size 2x1", "0 0"},
        {"card grey.png --local-trans 1,0 --stab-trans 1,-1", "0 0 0 0 0, 0 0 30 31 32, 0 0 20 21 22"},
        {"vector-warp grey.png --vectors up.flo", "20 21 22 23 24, 10 11 12 13 14, 0 0 0 0 0"},
        {"vector-warp grey.png --vectors right.flo --fast-approximation --default-color 1,1,1,1",
         "255 30 31 32 33, 255 20 21 22 23, 255 10 11 12 13"},
        {"vector-warp grey.png --vectors right.flo --warp-factor 0,-1",
         "31 32 33 34 0, 21 22 23 24 0, 11 12 13 14 0"},
    };
    for (const auto& c : cases) {
        RunWell(c.arguments + " -o out.png");
        EXPECT_EQ(Channel("out.png", 0), c.rows) << c.arguments;
    }
}

TEST_F(TransformTool, AlphaNeitherFringesNorAppears)
{
    const std::string half = "affine spot.png --translate 0.5,0 --interpolation bilinear -o out.png";
    RunWell(half);
    EXPECT_EQ(Channel("out.png", 0), "0 0 255 255 0");
    EXPECT_EQ(Channel("out.png", 3), "0 0 128 128 0");
    RunWell(half + " --input-img-premultiplied=no");
    EXPECT_EQ(Channel("out.png", 0), "0 0 128 128 0") << "as it is";
    // The sums of areas lose a code here and there; the edges mix with what is opaque.
    RunWell("affine opaque.jpg --rotate 33 --interpolation area --default-color 0,0,0 -o out.png");
    EXPECT_EQ(Channel("out.png", 3).find_first_not_of("25, "), std::string::npos);
    // Opacity makes an opaque picture clear.
    RunWell("pan-zoom opaque.jpg --opacity 0.5 --default-color 0,0,0,0 --size 1x1 -o out.png");
    EXPECT_EQ(Channel("out.png", 3), "128");
}

TEST_F(TransformTool, ChainsHoldArraysAndSizes)
{
    Save("chain.toml", R"(
inputs = { picture = "grey.png" }
outputs = { result = "chain.png" }
[[step]]
name = "large"
operator = "affine"
inputs = "picture"
matrix = [2, 0, 0, 0, 2, 0]
interpolation = "nearest"
size = [9, 5]
[[step]]
name = "result"
operator = "vector-warp"
inputs = "large"
vectors = "wide.flo"
)");
    Save("wide.flo", Flow(9, 5, 0, 0));
    RunWell("run chain.toml");
    RunWell("affine grey.png --matrix 2,0,0,0,2,0 --interpolation nearest --size 9x5 -o single.png");
    EXPECT_EQ(Channel("chain.png", 0), Channel("single.png", 0));
    const std::string record = RunWell("affine grey.png --rotate 90 --size fit -o out.png --json");
    EXPECT_THAT(record, testing::HasSubstr("\"rotate\": 90.0"));
    EXPECT_THAT(record, testing::HasSubstr("\"width\": 3"));
}

TEST_F(TransformTool, RefusesWhatCannotBePlaced)
{
    const std::string nan = Flow(5, 3, std::numeric_limits<float>::quiet_NaN(), 0);
    Save("nan.flo", nan);
    Save("huge.flo", Flow(5, 3, 0, 1.7e9F));
    Save("other.flo", Flow(3, 5, 0, 0));
    Save("short.flo", nan.substr(0, nan.size() - 1));
    Save("long.flo", nan + "x");
    Save("head.flo", nan.substr(0, 7));
    Save("empty.flo", "PIEH" + Number(0) + Number(3));
    Save("magic.flo", "HEIP" + nan.substr(4));
    const std::string affine = "affine grey.png -o out.png ";
    const std::string zoom = "pan-zoom grey.png -o out.png ";
    const std::string space = "perspective grey.png -o out.png ";
    const std::string warp = "vector-warp grey.png -o out.png ";
    ExpectRefusals({{affine + "--scale 0", {"(0x10010)", "see --matrix"}},
                    {affine + "--matrix 1,2,0,2,4,0", {"(0x10010)"}},
                    {affine + "--matrix 1,0,nan,0,1,0", {"is not 6 numbers"}},
                    {affine + "--matrix 1,0,0,0,1", {"is not 6 numbers"}},
                    {affine + "--scale 1,2,3", {"is not 1 or 2 numbers"}},
                    {affine + "--scale 2e9", {"--scale 2e9 is out of range"}},
                    {affine + "--matrix 1,0,0,0,1,0 --rotate 5", {"takes --matrix or --rotate, not both"}},
                    {affine + "--cropping 2.5", {"whole numbers"}},
                    {affine + "--cropping 3", {"(0x10069); see --cropping"}},
                    {affine + "--interpolation two-pass", {"--interpolation 'two-pass' is not one of auto"}},
                    {affine + "--mask grey.png", {"takes no --mask"}},
                    {affine + "--channels rgb", {"leaves out"}},
                    {affine + "--roi 0,0,1,1", {"takes no --roi", "see --size"}},
                    {affine + "--size 0x5", {"width and height are at least 1"}},
                    {affine + "--size 65535x65535", {"too large; see --size"}},
                    {affine + "--size big", {"same or fit"}},
                    {affine + "--scale 1e9 --size fit", {"--size fit asks for"}},
                    {affine + "--fields odd --size 4x4", {"takes --size same"}},
                    {zoom + "--fit 5x5 --fill 5x5", {"takes --fit or --fill, not both"}},
                    {zoom + "--border-size 1 --interpolation area", {"--border-size", "two-pass alone"}},
                    {zoom + "--border-size 1 --border-softness 2", {"(0x10070); see --border-softness"}},
                    {zoom + "--border-size 3", {"(0x10070)"}},
                    {zoom + "--opacity-falloff 3", {"(0x1006F); see --opacity-falloff"}},
                    {zoom + "--opacity nan", {"--opacity 'nan' is not"}},
                    {"quad grey.png -o out.png", {"needs --corners"}},
                    {"quad grey.png -o out.png --corners 0,0,1,1,1,0,0,1", {"--corners", "they cross"}},
                    {space, {"needs --corners or --matrix"}},
                    {space + "--corners 0,0,0,0,1,1,0,1", {"coincide"}},
                    {space + "--matrix 0,0,0,0,0,0,0,0,0", {"(0x10010)"}},
                    {space + "--matrix 1,0,0,0,1,0,0,-1,1 --size fit", {"before the camera"}},
                    {"perspective one.png -o out.png --corners 0,0,1,0,1,1,0,1", {"one pixel wide"}},
                    {"card grey.png -o out.png --camera-pos-z 0", {"(0x10010); see --camera-pos-z"}},
                    {warp, {"needs --vectors"}},
                    {warp + "--vectors none.flo", {"none.flo: cannot be read"}},
                    {warp + "--vectors nan.flo", {"no vector for the pixel in column 0 of row 0"}},
                    {warp + "--vectors huge.flo", {"no vector"}},
                    {warp + "--vectors other.flo", {"other.flo is for pictures of 3x5, and grey.png is 5x3"}},
                    {warp + "--vectors short.flo", {"holds 131 bytes", "have 132"}},
                    {warp + "--vectors long.flo", {"holds 133 bytes"}},
                    {warp + "--vectors head.flo", {"too short"}},
                    {warp + "--vectors empty.flo", {"0x3, which is none"}},
                    {warp + "--vectors magic.flo", {"PIEH"}},
                    {warp + "--vectors up.flo --warp-factor 1,2,3", {"1 or 2 numbers"}},
                    {warp + "--vectors up.flo --format mono16", {"takes rgba32, mono8"}}},
                   "vfil [a-z-]+: [^\n]*\n");
}

} // namespace

} // namespace vfil::tool
