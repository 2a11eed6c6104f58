/// \file
/// Chain files: what they make is what single commands make.
#include "test/tools/toolfolder.h"

#include <gmock/gmock.h>

namespace vfil::tool {

namespace {

class ChainTest : public ToolFolder {
protected:
    ChainTest()
    {
        fs::create_directory_symlink(VFIL_SOURCE_DIR "/media", Path("media"));
        fs::create_directory_symlink(VFIL_SOURCE_DIR "/examples", Path("examples"));
        fs::create_directory(Path("out"));
        const auto ramp = [](long x, long y, long) { return 10 * (y + 1) + x; };
        Make("grey.png", PXFormat_Mono8, 4, 3, ramp);
    }

    /// An example whose output `name` is written without loss, so that it can be compared.
    void Lossless(const std::string& example, const std::string& name) const
    {
        Shell("sed 's|^" + name + " = .*|" + name +
              " = { file = \"chain.nut\", codec = \"png\", to = \"rgba32\" }|' " + "examples/chains/" +
              example + " >lossless.toml");
    }

    void ExpectSame(const std::string& a, const std::string& b) const
    {
        EXPECT_TRUE(Bytes(a) == Bytes(b)) << a << " " << b;
        EXPECT_GT(Bytes(a).size(), 1000U) << a;
    }
};

TEST_F(ChainTest, CupOverAStillIsTheCommandsOneByOne)
{
    RunWell("run examples/chains/cup-over-clip.toml --input back=media/cat-fur-rgb8.png --output "
            "result=chain.png");
    RunWell("grayscale media/cat-fur-rgb8.png -o grey.png");
    RunWell("composite grey.png media/greenscreen-cup-plate.png --mask media/greenscreen-cup-matte.png "
            "--alpha 0.9 -o table.png");
    RunWell(
        "over table.png media/tulips-softalpha-rgba8.png --input-offset 220,-260 --extra-transparency 0.75 "
        "-o single.png");
    ExpectSame("chain.png", "single.png");
}

TEST_F(ChainTest, CupOverAClipIsTheCommandsOneByOne)
{
    const std::string lossless = " --codec png --to rgba32 --frames 0:4 --quiet";
    Lossless("cup-over-clip.toml", "result");
    RunWell("run lossless.toml --frames 0:4 --quiet");
    RunWell("grayscale media/dog-480x270p30.mp4 -o grey.nut" + lossless);
    RunWell("composite grey.nut media/greenscreen-cup-plate.png --mask media/greenscreen-cup-matte.png "
            "--alpha 0.9 -o table.nut" +
            lossless);
    RunWell(
        "over table.nut media/tulips-softalpha-rgba8.png --input-offset 220,-260 --extra-transparency 0.75 "
        "-o single.nut" +
        lossless);
    RunWell("convert chain.nut --frames 3:4 -o chain.png");
    RunWell("convert single.nut --frames 3:4 -o single.png");
    ExpectSame("chain.png", "single.png");
    ExpectSame("chain.nut", "single.nut");
}

TEST_F(ChainTest, FillAndKeyOfAStillAreTheCommandsOneByOne)
{
    RunWell("run examples/chains/fill-and-key.toml");
    const std::string raw = " --in-size 500x500 --in-format ";
    RunWell("rgba2ycca media/tulips-softalpha-rgba8.png -o video.raw --to ycca422-709");
    RunWell("split-key video.raw -o fill.raw --key key.raw --to yuv422-709" + raw + "ycca422-709");
    RunWell("convert fill.raw -o fill.png --to rgba32" + raw + "yuv422-709");
    RunWell("convert key.raw -o key.png --to rgba32" + raw + "yuv422-709");
    RunWell("join-key fill.raw key.raw -o joined.png --to rgba32" + raw + "yuv422-709");
    for (const std::string name : {"fill.png", "key.png", "joined.png"})
        ExpectSame("out/" + name, name);
    const host::PicturePtr before = host::ReadPicture(Path("media/tulips-softalpha-rgba8.png"));
    const host::PicturePtr after = host::ReadPicture(Path("joined.png"));
    for (std::size_t i = 3; i < before->Bytes(); i += 4)
        ASSERT_LE(std::abs(before->Pixels()[i] - after->Pixels()[i]), 1) << i;
}

TEST_F(ChainTest, FillAndKeyOfAClipAreTheCommandsOneByOne)
{
    const std::string rgb = " --to rgba32 --codec png --quiet";
    const std::string ycc = " --codec ffv1 --quiet";
    RunWell("rgba2alpha media/dog-480x270p30.mp4 --frames 0:3 -o matte.nut" + rgb);
    Lossless("fill-and-key.toml", "joined");
    RunWell(
        "run lossless.toml --quiet --input picture=matte.nut --output fill=fill.nut --output key=key.nut");
    RunWell("rgba2ycca matte.nut -o video.nut --to ycca422-709" + ycc);
    RunWell("split-key video.nut -o fill1.nut --key key1.nut --to yuv422-709" + ycc);
    RunWell("join-key fill1.nut key1.nut -o joined.nut" + rgb);
    ExpectSame("chain.nut", "joined.nut");
}

// The converter by itself turns the picture over; a conversion does not.
TEST_F(ChainTest, ConversionsPutThePictureUpright)
{
    Make("two.png", PXFormat_RGBA32, 1, 2, [](long, long y, long c) { return 'a' + 4 * y + c; });
    RunWell("convert two.png -o upright.raw --to bgra32");
    EXPECT_EQ(Bytes("upright.raw"), "cbadgfeh");
    Save("chain.toml", R"(inputs = { two = "two.png" }
[[step]]
operator = "rgba2bgra"
inputs = "two"
to = "bgra32"
[outputs]
rgba2bgra = { file = "over.raw", to = "bgra32" })");
    RunWell("run chain.toml");
    EXPECT_EQ(Bytes("over.raw"), "gfehcbad");
}

// The command line has the last word on files. What is set in the file is said in the file's words, what is
// set beside it in those of the command line.
TEST_F(ChainTest, WordsOfTheFileAndOfTheCommandLine)
{
    Save("chain.toml", R"(inputs = { a = "gone.png" }
[[step]]
operator = "invert"
inputs = "a"
roi = [0, 0, 2, 1]
[outputs]
invert = "out.png")");
    RunWell("run chain.toml --input a=grey.png -o invert=other.png");
    EXPECT_EQ(Channel("other.png", 0), "245 244");
    Save("wide.toml", R"(inputs = { a = "grey.png" }
[[step]]
operator = "invert"
inputs = "a"
roi = [9, 9, 1, 1]
[outputs]
invert = "out.png")");
    ExpectRefusals({{"run chain.toml", {"vfil run: chain.toml:1: gone.png"}},
                    {"run wide.toml", {"vfil run: wide.toml:2: roi 9,9,1,1 lies outside"}},
                    {"run chain.toml --input c=grey.png", {"vfil run: --input c: ", "no such input"}},
                    {"run chain.toml --input grey.png", {"--input 'grey.png' is not NAME=FILE"}},
                    {"run chain.toml --output o=x.png --output o=y.png", {"--output gives o two files"}},
                    {"run chain.toml --input a=grey.png --frames 1:2", {"--frames needs a clip"}}},
                   "vfil run: [^\n]*\n");
}

} // namespace

} // namespace vfil::tool
