/// \file
/// The tool's reading of numbers and its guesses at misspelt words.
#include "tools/vfil/text.h"

#include <gtest/gtest.h>

namespace {

using namespace vfil::tool;

TEST(Text, NumbersAreTheWholeText)
{
    using Longs = std::vector<long>;
    EXPECT_EQ(ParseIntegers("12,-3", ',', 2), Longs({12, -3}));
    EXPECT_EQ(ParseIntegers("720x576", 'x', 2), Longs({720, 576}));
    for (const char* wrong :
         {"", "1", "1,", ",1", "1,2,", "1,2,3", "1;2", "1,2 ", " 1,2", "1.0,2", "2147483648,0"}) {
        EXPECT_FALSE(ParseIntegers(wrong, ',', 2)) << wrong;
    }
    EXPECT_EQ(ParseNumber("-2.5e1"), -25.0);
    for (const char* wrong : {"", "x", "1x", "nan", "inf", "1e999", "0,5"})
        EXPECT_FALSE(ParseNumber(wrong)) << wrong;
    EXPECT_EQ(ParseNumbers("0,0.5,1,1", ',', 4), (std::vector<double>{0, 0.5, 1, 1}));
}

TEST(Text, DistanceCountsEdits)
{
    const struct {
        const char* a;
        const char* b;
        std::size_t distance;
    } cases[] = {{"over", "over", 0}, {"ovr", "over", 1},  {"voer", "over", 1}, {"", "abc", 3},
                 {"in", "out", 3},    {"mutl", "mult", 1}, {"add", "dad", 1},   {"kitten", "sitting", 3}};
    for (const auto& c : cases) {
        EXPECT_EQ(EditDistance(c.a, c.b), c.distance) << c.a << " " << c.b;
        EXPECT_EQ(EditDistance(c.b, c.a), c.distance) << c.b << " " << c.a;
    }
}

TEST(Text, GuessesOnlyWhatIsNear)
{
    const std::vector<std::string> words = {"over", "out", "grayscale"};
    EXPECT_EQ(DidYouMean("ovr", words), "; did you mean 'over'?");
    EXPECT_EQ(DidYouMean("greyscal", words), "; did you mean 'grayscale'?");
    EXPECT_EQ(DidYouMean("blur", words), "");
}

} // namespace
