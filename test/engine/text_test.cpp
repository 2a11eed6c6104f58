/// \file
/// Numbers in texts, and guesses at words.
#include "engine/text.h"

#include <gtest/gtest.h>

namespace vfil::engine {

namespace {

TEST(Text, NumbersAreTheWholeText)
{
    EXPECT_EQ(ParseIntegers("12,-3", ',', 2), (std::vector<long>{12, -3}));
    for (const char* wrong : {"", "1", "1,", ",1", "1,2,3", "1;2", "1,2 ", " 1,2", "1.0,2", "2147483648,0"}) {
        EXPECT_FALSE(ParseIntegers(wrong, ',', 2)) << wrong;
    }
    EXPECT_EQ(ParseNumber("-2.5e1"), -25.0);
    for (const char* wrong : {"", "x", "1x", "nan", "inf", "1e999", "0,5"})
        EXPECT_FALSE(ParseNumber(wrong)) << wrong;
}

TEST(Text, GuessesCountEditsAndOfferWhatIsNear)
{
    EXPECT_EQ(EditDistance("kitten", "sitting"), 3U);
    EXPECT_EQ(EditDistance("voer", "over"), 1U);
    const std::vector<std::string> words = {"over", "out", "grayscale"};
    EXPECT_EQ(DidYouMean("greyscal", words), "; did you mean 'grayscale'?");
    EXPECT_EQ(DidYouMean("blur", words), "");
}

} // namespace

} // namespace vfil::engine
