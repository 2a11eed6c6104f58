#include <vfil/error.h>

#include <gtest/gtest.h>

#include <set>
#include <string_view>

namespace {

TEST(Error, KindFollowsTheRangeOfTheCode)
{
    for (const unsigned long code :
         {0x0UL, 0x1UL, 0xFFFFUL, 0x10000UL, 0x1FFFFUL, 0x20000UL, 0x2FFFFUL, 0x30000UL, 0xFFFFFFFFUL}) {
        const vfILError error(code);
        EXPECT_EQ(error.IsNoError(), code == 0) << code;
        EXPECT_EQ(error.IsFatalError(), code >> 16 == 1) << code;
        EXPECT_EQ(error.IsWarning(), code >> 16 == 2) << code;
        EXPECT_EQ(static_cast<unsigned long>(error), code);
    }
    EXPECT_EQ(vfILError(static_cast<unsigned long>(-1L)) == vfILError(0xFFFFFFFF), 1) << "32 bits count";
}

TEST(Error, EveryCodeHasATextOfOneLineThatNamesTheClassOnce)
{
    const std::set<unsigned long> unused = {0x10022, 0x1002C, 0x1003B, 0x1004F, 0x10050, 0x10051,
                                            0x10052, 0x1005C, 0x1005F, 0x1006D, 0x20003};
    for (unsigned long code = 0; code < 0x30000; ++code) {
        const bool used = (code > 0x10000 && code <= 0x10073) || (code > 0x20000 && code <= 0x20004);
        const char* text = vfILErrorText(code);
        ASSERT_EQ(text != nullptr, used && !unused.contains(code)) << code;
        if (text == nullptr) continue;
        const std::string_view view(text);
        EXPECT_TRUE(view.starts_with("%s")) << view;
        EXPECT_EQ(view.find('%', 1), view.npos) << view;
        EXPECT_EQ(view.find('\n'), view.size() - 1) << view;
    }
    EXPECT_STREQ(vfILErrorText(0xFFFFFFFF), "%s ERROR: Failure\n");
    EXPECT_EQ(vfILErrorText(0xFFFFFFFE), nullptr);
}

} // namespace
