/// \file
/// Filters by the tool: edges, tables of numbers, and what becomes of alpha.
#include "test/tools/toolfolder.h"

#include <fstream>

namespace vfil::tool {

namespace {

class FilterTool : public ToolFolder {
protected:
    FilterTool()
    {
        // The digits of a sample at (x, y) are y + 1 and x.
        const auto ramp = [](long x, long y, long c) { return c == 3 ? 255 : 10 * (y + 1) + x; };
        Make("grey.png", PXFormat_Mono8, 5, 3, ramp);
        Make("opaque.png", PXFormat_RGBA32, 5, 3, ramp);
        // White in a clear black.
        Make("spot.png", PXFormat_RGBA32, 5, 1, [](long x, long, long) { return x == 2 ? 255 : 0; });
        std::ofstream(Path("kernel.txt")) << "# the pixel above\n0 1 0\n0 0 0 # none\n\n0 0 0\n";
        std::ofstream(Path("even.txt")) << "1 2\n3 4\n";
    }
};

TEST_F(FilterTool, MakesThePixelsAskedFor)
{
    const std::string right = " --kernel '0 0 0 0 0 0 0 0 0 0 0 0 1'";
    const std::string left = " --kernel '1 0 0 0 0 0 0 0 0 0 0 0 0'";
    const struct {
        std::string arguments;
        int channel;
        const char* rows; // from the top
    } cases[] = {
        {"convolve grey.png --kernel-file kernel.txt", 0, "30 31 32 33 34, 30 31 32 33 34, 20 21 22 23 24"},
        {"convolve grey.png --kernel '0 0 0; 0 0 1; 0 0 0' --edge-mode color --edge-color 1,1,1,1", 0,
         "31 32 33 34 255, 21 22 23 24 255, 11 12 13 14 255"},
        // Six pixels aside, in a picture of five.
        {"convolve grey.png --roi 0,0,5,1 --edge-mode wrap" + right, 0, "11 12 13 14 10"},
        {"convolve grey.png --roi 0,0,5,1 --edge-mode wrap" + left, 0, "14 10 11 12 13"},
        {"convolve grey.png --roi 0,0,5,1 --edge-mode mirror" + right, 0, "13 12 11 10 10"},
        {"convolve grey.png --roi 0,0,5,1 --edge-mode mirror" + left, 0, "14 14 13 12 11"},
        {"convolve grey.png --roi 0,0,5,1 --edge-mode clamp" + right, 0, "14 14 14 14 14"},
        {"convolve grey.png --roi 0,0,5,1 --edge-mode color" + left, 0, "0 0 0 0 0"},
        {"convolve grey.png --roi 1,1,1,1 --kernel '1 2 1; 2 4 2; 1 2 1'", 0, "21"},
        {"convolve grey.png --roi 1,1,1,1 --kernel '1 0 0; 0 1 0; 0 0 0' --divisor 1 --offset -7.4", 0, "44"},
        {"dilate grey.png --roi 1,1,1,1 --element '0 0 0; 0 1 0; 1 0 0'", 0, "21"},
        {"erode grey.png --roi 1,1,1,1 --radius 0,1", 0, "11"},
        // A window meets no more of the picture than there is.
        {"dilate grey.png --roi 1,1,1,1 --radius 1073741824", 0, "34"},
        {"gradient grey.png --roi 1,1,1,1 --direction south,east", 0, "6"},
        {"emboss grey.png --roi 1,1,1,1 --direction north", 0, "60"},
        {"median-rank grey.png --roi 2,1,1,1", 0, "22"},
        // The rounding of weights takes nothing from a picture without a clear pixel.
        {"blur opaque.png --radius 5", 3, "255 255 255 255 255, 255 255 255 255 255, 255 255 255 255 255"},
        // Clear black does not darken the white.
        {"blur spot.png --type box --radius 1,0", 0, "0 255 255 255 0"},
        {"blur spot.png --type box --radius 1,0", 3, "0 85 85 85 0"},
        {"blur spot.png --type box --radius 1,0 --channels rgb", 0, "0 85 85 85 0"},
    };
    for (const auto& c : cases) {
        RunWell(c.arguments + " -o out.png");
        EXPECT_EQ(Channel("out.png", c.channel), c.rows) << c.arguments;
    }
}

TEST_F(FilterTool, TablesAndPairsOfChainsAreArraysToo)
{
    std::ofstream(Path("chain.toml")) << R"(
inputs = { picture = "grey.png" }
outputs = { result = "chain.png" }
[[step]]
name = "blurred"
operator = "blur"
inputs = "picture"
type = "gauss"
radius = [1, 2.5]
[[step]]
name = "result"
operator = "convolve"
inputs = "blurred"
kernel = [[1, 0.5, 1], [0, 4, 0], [-1, -1, -1]]
)";
    RunWell("run chain.toml");
    RunWell("blur grey.png -o blurred.png --type gauss --radius 1,2.5");
    RunWell("convolve blurred.png -o single.png --kernel '1 .5 1; 0 4 0; -1 -1 -1'");
    EXPECT_EQ(Channel("chain.png", 0), Channel("single.png", 0));
}

TEST_F(FilterTool, RefusesWhatMakesNoSense)
{
    ExpectRefusals(
        {{"blur grey.png -o out.png --radius=-1", {"--radius -1 is out of range"}},
         {"blur grey.png -o out.png --radius nan", {"a number or two"}},
         {"blur grey.png -o out.png --radius 1073741824", {"(0x10001); see --radius"}},
         {"blur grey.png -o out.png --type box --format mono16", {"(0x1000D); see --format"}},
         {"convolve grey.png -o out.png", {"needs --kernel or --kernel-file"}},
         {"convolve grey.png -o out.png --kernel '1 2 1; 2 4'", {"--kernel: row '2 4' has 2 numbers"}},
         {"convolve grey.png -o out.png --kernel '1 x 1'", {"--kernel: 'x' is not a number"}},
         {"convolve grey.png -o out.png --kernel ''", {"--kernel: there is no number"}},
         {"convolve grey.png -o out.png --kernel-file even.txt", {"even.txt: 2x2 numbers", "odd count"}},
         {"convolve grey.png -o out.png --kernel 1 --kernel-file kernel.txt", {"not both"}},
         {"open grey.png -o out.png --element '0 0 0'", {"--element: all numbers are 0"}},
         {"open grey.png -o out.png --element '0 2 0'", {"--element: 2 is out of range"}},
         {"emboss grey.png -o out.png --direction nroth", {"did you mean 'north'?"}},
         {"emboss grey.png -o out.png --direction ''", {"one or more of east"}},
         {"blur grey.png -o out.png --mask grey.png --mask-offset 9,0", {"does not touch the region"}}},
        "vfil [a-z]+: [^\n]*\n");
}

} // namespace

} // namespace vfil::tool
