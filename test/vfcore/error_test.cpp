#include <vfil/error.h>

#include <gtest/gtest.h>

#include <set>
#include <string_view>

namespace {

TEST(Error, KindFollowsTheRangeOfTheCode)
{
    struct Case {
        unsigned long code;
        int none, fatal, warning;
    };
    const Case cases[] = {
        {0, 1, 0, 0},       {1, 0, 0, 0},       {0xFFFF, 0, 0, 0},  {0x10000, 0, 1, 0},    {0x1FFFF, 0, 1, 0},
        {0x20000, 0, 0, 1}, {0x2FFFF, 0, 0, 1}, {0x30000, 0, 0, 0}, {0xFFFFFFFF, 0, 0, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.code);
        const vfILError error(c.code);
        EXPECT_EQ(error.IsNoError(), c.none);
        EXPECT_EQ(error.IsFatalError(), c.fatal);
        EXPECT_EQ(error.IsWarning(), c.warning);
        EXPECT_EQ(static_cast<unsigned long>(error), c.code);
    }
}

TEST(Error, CodesCompareIn32Bits)
{
    const vfILError generic(0xFFFFFFFF);
    EXPECT_EQ(vfILError(static_cast<unsigned long>(-1L)) == generic, 1);
    EXPECT_EQ(vfILError(0x10001) == generic, 0);
    EXPECT_STREQ(vfILErrorText(static_cast<unsigned long>(-1L)), vfILErrorText(0xFFFFFFFF));
}

void ExpectText(unsigned long code, std::string_view word)
{
    const char* text = vfILErrorText(code);
    ASSERT_NE(text, nullptr) << code;
    const std::string_view view(text);
    EXPECT_TRUE(view.starts_with("%s")) << view;
    EXPECT_EQ(view.find('%', 1), view.npos) << view;
    EXPECT_EQ(view.find('\n'), view.size() - 1) << view;
    EXPECT_NE(view.find(word), view.npos) << view;
}

TEST(Error, EveryCodeHasATextOfOneLineThatNamesTheClassOnce)
{
    const std::set<unsigned long> unused = {0x10022, 0x1002C, 0x1003B, 0x1004F, 0x10050, 0x10051,
                                            0x10052, 0x1005C, 0x1005F, 0x1006D, 0x20003};
    for (unsigned long code = 0; code < 0x30000; ++code) {
        const bool fatal = code >= 0x10001 && code <= 0x10073;
        const bool warning = code >= 0x20001 && code <= 0x20004;
        if ((fatal || warning) && !unused.contains(code)) {
            ExpectText(code, warning ? "WARNING" : code == 0x10069 ? "crop" : "ERROR");
        } else {
            EXPECT_EQ(vfILErrorText(code), nullptr) << code;
        }
    }
    ExpectText(0xFFFFFFFF, "ERROR");
    ExpectText(0x10029, "Bias value");
    ExpectText(0x1002A, "Edge sensitivity");
    ExpectText(0x1005D, "morphological mode");
    ExpectText(0x1005E, "don't care pixels");
    EXPECT_EQ(vfILErrorText(0xFFFFFFFE), nullptr);
}

} // namespace
