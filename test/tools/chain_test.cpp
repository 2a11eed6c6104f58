/// \file
/// Chain files: what they make is what single commands make, and what is wrong in them is said with its line.
#include "test/tools/toolfolder.h"

#include <gmock/gmock.h>

#include <fstream>

namespace vfil::tool {

namespace {

using testing::HasSubstr;

class ChainTest : public ToolFolder {
protected:
    ChainTest()
    {
        fs::create_directory_symlink(VFIL_SOURCE_DIR "/media", Path("media"));
        fs::create_directory_symlink(VFIL_SOURCE_DIR "/examples", Path("examples"));
        fs::create_directory(Path("out"));
        const auto ramp = [](long x, long y, long) { return 10 * (y + 1) + x; };
        Make("grey.png", PXFormat_Mono8, 4, 3, ramp);
        Make("matte.png", PXFormat_RGBA32, 2, 1,
             [](long x, long, long c) { return (c == 0) == (x == 1) ? 255 : 0; });
    }

    void Save(const std::string& name, const std::string& text) const { std::ofstream(Path(name)) << text; }

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

TEST_F(ChainTest, NamesRolesMasksAndOrderOfSteps)
{
    struct {
        const char* text;
        const char* rows; // of out.png, from the top
    } const cases[] = {
        // A step may stand before what it needs; its name is the operator's unless it says another.
        {R"([inputs]
grey = "grey.png"
[[step]]
operator = "invert"
inputs = "half"
[[step]]
name = "half"
operator = "copy"
inputs = ["grey"]
roi = [1, 0, 2, 2]
[outputs]
invert = "out.png")",
         "234 233, 244 243"},
        // A mask by a file and its channel, or by a result; sizes and offsets as arrays.
        {R"([inputs]
grey = "grey.png"
[[step]]
name = "masked"
operator = "invert"
inputs = "grey"
mask = "matte.png:red"
mask-offset = [1, 1]
[[step]]
name = "again"
operator = "invert"
inputs = { picture = "grey" }
mask = "masked"
fields = "even"
[outputs]
one = { file = "out.png", result = "masked" }
two = { file = "two.png", result = "again" })",
         "30 31 32 33, 20 21 233 23, 10 11 12 13"},
        {R"(inputs = { a = { file = "in.raw", in-format = "mono8", in-size = [2, 2] } }
[[step]]
name = "b"
operator = "8to16"
inputs = "a"
to = "mono16"
[outputs]
b = "out.png")",
         "24929 25186, 25443 25700"},
    };
    Save("in.raw", "cdab");
    for (const auto& c : cases) {
        Save("chain.toml", c.text);
        RunWell("run chain.toml");
        EXPECT_EQ(Channel("out.png", 0), c.rows) << c.text;
    }
    EXPECT_EQ(Channel("grey.png", 0), "30 31 32 33, 20 21 22 23, 10 11 12 13");
    // The command line has the last word on files.
    RunWell("run chain.toml --input a=grey.png -o b=other.png");
    EXPECT_EQ(Channel("other.png", 0), "7710 7967 8224 8481, 5140 5397 5654 5911, 2570 2827 3084 3341");
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

TEST_F(ChainTest, RefusesWrongChainsWithTheLine)
{
    // A chain that is right, in which each case replaces one line by another.
    const std::vector<std::string> right = {
        "[inputs]",                                 // 1
        "a = 'grey.png'",                           // 2
        "b = { file = 'matte.png' }",               // 3
        "[[step]]",                                 // 4
        "name = 'over1'",                           // 5
        "operator = 'over'",                        // 6
        "inputs = ['colour', 'b']",                 // 7
        "extra-transparency = 0.5",                 // 8
        "[[step]]",                                 // 9
        "name = 'colour'",                          // 10
        "operator = 'grayscale'",                   // 11
        "inputs = 'b'",                             // 12
        "mask = 'a'",                               // 13
        "[outputs]",                                // 14
        "o = { file = 'o.png', result = 'over1' }", // 15
    };
    Save("empty.toml", "");
    struct {
        std::size_t line; // that is replaced; 0 for none
        std::string text;
        std::string arguments;
        std::vector<std::string> says;
    } const cases[] = {
        {1, "[input]", "", {"chain.toml:1: ", "'input'", "did you mean 'inputs'?"}},
        {2, "a = 'grey.png", "", {"chain.toml:2: "}},
        {2, "a = 7", "", {"chain.toml:2: ", "a string, not a number"}},
        {2, "a = ''", "", {"chain.toml:2: input 'a' has no file", "--input a=FILE"}},
        {2, "a = { file = 'grey.png', matrx = 601 }", "", {"chain.toml:2: ", "'matrx'", "'matrix'"}},
        {2, "a = { file = 'grey.png', matrix = 602 }", "", {"chain.toml:2: matrix '602'", "601, 709"}},
        {2, "a = 'gone.png'", "", {"chain.toml:2: ", "gone.png"}},
        {2, "a = 'grey.png'\nb = 'grey.png'", "", {"chain.toml:4: "}},
        {2, "a = 'grey.png'\nc = 'grey.png'", "", {"chain.toml:3: ", "uses 'c'"}},
        {4, "[step]", "", {"chain.toml:9: "}},
        {5, "name = 'b'", "", {"chain.toml:4: the name 'b' is given twice"}},
        {6, "", "", {"chain.toml:4: ", "no operator"}},
        {6, "operator = 'ovr'", "", {"chain.toml:6: unknown operator 'ovr'; did you mean 'over'?"}},
        {7, "", "", {"chain.toml:4: over has no inputs"}},
        {7, "inputs = 'b'", "", {"chain.toml:4: over needs its input front"}},
        {7, "inputs = ['b', 'b', 'b']", "", {"chain.toml:4: ", "2, not 3"}},
        {7, "inputs = { back = 'b', frnt = 'b' }", "", {"chain.toml:7: ", "'frnt'", "'front'"}},
        {7, "inputs = ['color', 'b']", "", {"chain.toml:4: ", "'color'", "did you mean 'colour'?"}},
        {7, "inputs = ['b', 'b']", "", {"chain.toml:9: ", "uses 'colour'"}},
        {8, "extra-transparancy = 0.5", "", {"chain.toml:8: ", "'extra-transparency'"}},
        {8, "extra-transparency = 'much'", "", {"chain.toml:8: extra-transparency 'much' is not a number"}},
        {8, "extra-transparency = 1.5", "", {"chain.toml:8: ", "0 .. 1"}},
        {8, "extra-transparency = 12:00:00", "", {"chain.toml:8: ", "not a date or time"}},
        {8, "roi = [[1, 2], [3, 4]]", "", {"chain.toml:8: roi takes X,Y,W,H"}},
        {8, "roi = [9, 9, 1, 1]", "", {"chain.toml:4: roi 9,9,1,1 lies outside"}},
        {12, "inputs = 'over1'", "", {"chain.toml:", "circle"}},
        {13, "mask = 'c'", "", {"chain.toml:9: ", "'c'"}},
        {13, "mask = 'c.png'", "", {"chain.toml:9: ", "c.png"}},
        {15, "o = { file = 'o.png', result = 'over' }", "", {"chain.toml:15: ", "did you mean 'over1'?"}},
        {15, "o = { file = 'o.gif', result = 'over1' }", "", {"chain.toml:15: ", "o.gif"}},
        {15, "", "", {"no outputs"}},
        {0, "", "--input c=grey.png", {"--input c: ", "no such input"}},
        {0, "", "--input grey.png", {"--input 'grey.png' is not NAME=FILE"}},
        {0, "", "--output o=x.png --output o=y.png", {"--output gives o two files"}},
        {0, "", "--frames 1:2", {"--frames needs a clip"}},
        {0, "", "gone.toml", {"gone.toml: cannot be read"}},
        {0, "", "empty.toml", {"empty.toml:1: there are no outputs"}},
    };
    for (const auto& c : cases) {
        std::string text;
        for (std::size_t i = 1; i <= right.size(); ++i)
            text += (i == c.line ? c.text : right[i - 1]) + "\n";
        Save("chain.toml", text);
        const auto before = Files();
        const bool other = c.arguments.ends_with(".toml");
        const ProcessResult result = Run("run " + (other ? "" : std::string("chain.toml ")) + c.arguments);
        SCOPED_TRACE(c.text + " " + c.arguments);
        EXPECT_EQ(result.status, 2);
        EXPECT_THAT(result.err, testing::MatchesRegex("vfil run: [^\n]*\n"));
        for (const std::string& says : c.says)
            EXPECT_THAT(result.err, HasSubstr(says));
        EXPECT_TRUE(Files() == before);
    }
}

} // namespace

} // namespace vfil::tool
