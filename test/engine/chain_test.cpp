/// \file
/// Chain files: names, roles and order of steps, and what is wrong in them, with its line.
#include "engine/chain.h"
#include "engine/failure.h"
#include "engine/runjob.h"
#include "test/engine/silence.h"
#include "test/support/testfolder.h"

#include <gmock/gmock.h>

namespace vfil::engine {

namespace {

using testing::HasSubstr;

class ChainFileTest : public TestFolder {
protected:
    ChainFileTest()
    {
        fs::current_path(Folder());
        Make("grey.png", PXFormat_Mono8, 4, 3, [](long x, long y, long) { return 10 * (y + 1) + x; });
        Make("matte.png", PXFormat_RGBA32, 2, 1,
             [](long x, long, long c) { return (c == 0) == (x == 1) ? 255 : 0; });
    }
    ~ChainFileTest() override { fs::current_path(fs::temp_directory_path()); }

    void RunChain(const ChainFiles& inputs = {}, const ChainFiles& outputs = {}) const
    {
        Silence silence;
        RunJob(CheckChain("chain.toml", inputs, outputs, {}), silence);
    }

    void ExpectRefused(const std::vector<std::string>& says) const
    {
        const auto before = Files();
        try {
            CheckChain("chain.toml", {}, {}, {});
            ADD_FAILURE() << "is taken";
        } catch (const RequestError& error) {
            for (const std::string& text : says)
                EXPECT_THAT(error.what(), HasSubstr(text));
        }
        EXPECT_TRUE(Files() == before);
    }
};

TEST_F(ChainFileTest, NamesRolesMasksAndOrderOfSteps)
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
        {R"([inputs]
grey = "grey.png"
[[step]]
name = "split"
operator = "deinterlace"
inputs = "grey"
type = "duplicate"
[[step]]
operator = "interlace"
inputs = { even = "split.odd", odd = "split" }
[outputs]
interlace = "out.png")",
         "20 21 22 23, 10 11 12 13, 20 21 22 23"},
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
        RunChain();
        EXPECT_EQ(Channel("out.png", 0), c.rows) << c.text;
    }
    EXPECT_EQ(Channel("grey.png", 0), "30 31 32 33, 20 21 22 23, 10 11 12 13");
    // Who calls has the last word on files.
    RunChain({{"a", "grey.png"}}, {{"b", "other.png"}});
    EXPECT_EQ(Channel("other.png", 0), "7710 7967 8224 8481, 5140 5397 5654 5911, 2570 2827 3084 3341");
}

TEST_F(ChainFileTest, RefusesWrongChainsWithTheLine)
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
    struct {
        std::size_t line; // that is replaced; 0 for none
        std::string text;
        std::vector<std::string> says;
    } const cases[] = {
        {1, "[input]", {"chain.toml:1: ", "'input'", "did you mean 'inputs'?"}},
        {2, "a = 'grey.png", {"chain.toml:2: "}},
        {2, "a = 7", {"chain.toml:2: ", "a string, not a number"}},
        {2, "a = ''", {"chain.toml:2: input 'a' has no file", "input a=FILE"}},
        {2, "a = { file = 'grey.png', matrx = 601 }", {"chain.toml:2: ", "'matrx'", "'matrix'"}},
        {2, "a = { file = 'grey.png', matrix = 602 }", {"chain.toml:2: matrix '602'", "601, 709"}},
        {2, "a = 'gone.png'", {"chain.toml:2: ", "gone.png"}},
        {2, "a = 'grey.png'\nb = 'grey.png'", {"chain.toml:4: "}},
        {2, "a = 'grey.png'\nc = 'grey.png'", {"chain.toml:3: ", "uses 'c'"}},
        {4, "[step]", {"chain.toml:9: "}},
        {5, "name = 'b'", {"chain.toml:4: the name 'b' is given twice"}},
        {6, "", {"chain.toml:4: ", "no operator"}},
        {6, "operator = 'ovr'", {"chain.toml:6: unknown operator 'ovr'; did you mean 'over'?"}},
        {7, "", {"chain.toml:4: over has no inputs"}},
        {7, "inputs = 'b'", {"chain.toml:4: over needs its input front"}},
        {7, "inputs = ['b', 'b', 'b']", {"chain.toml:4: ", "2, not 3"}},
        {7, "inputs = { back = 'b', frnt = 'b' }", {"chain.toml:7: ", "'frnt'", "'front'"}},
        {7, "inputs = ['color', 'b']", {"chain.toml:4: ", "'color'", "did you mean 'colour'?"}},
        {7, "inputs = ['b', 'b']", {"chain.toml:9: ", "uses 'colour'"}},
        {8, "extra-transparancy = 0.5", {"chain.toml:8: ", "'extra-transparency'"}},
        {8, "extra-transparency = 'much'", {"chain.toml:8: extra-transparency 'much' is not a number"}},
        {8, "extra-transparency = 1.5", {"chain.toml:8: ", "0 .. 1"}},
        {8, "extra-transparency = 12:00:00", {"chain.toml:8: ", "not a date or time"}},
        {8, "roi = [[1, 2], [3, 4]]", {"chain.toml:8: roi takes X,Y,W,H"}},
        {8, "roi = [9, 9, 1, 1]", {"chain.toml:4: roi 9,9,1,1 lies outside"}},
        {12, "inputs = 'over1'", {"chain.toml:", "circle"}},
        {13, "mask = 'c'", {"chain.toml:9: ", "'c'"}},
        {13, "mask = 'c.png'", {"chain.toml:9: ", "c.png"}},
        {15, "o = { file = 'o.png', result = 'over' }", {"chain.toml:15: ", "did you mean 'over1'?"}},
        {15, "o = { file = 'o.gif', result = 'over1' }", {"chain.toml:15: ", "o.gif"}},
        {15, "", {"no outputs"}},
    };
    for (const auto& c : cases) {
        std::string text;
        for (std::size_t i = 1; i <= right.size(); ++i)
            text += (i == c.line ? c.text : right[i - 1]) + "\n";
        SCOPED_TRACE(c.text);
        Save("chain.toml", text);
        ExpectRefused(c.says);
    }
    SCOPED_TRACE("other files");
    Save("chain.toml", "");
    ExpectRefused({"chain.toml:1: there are no outputs"});
    fs::remove(Path("chain.toml"));
    ExpectRefused({"chain.toml: cannot be read"});
}

} // namespace

} // namespace vfil::engine
