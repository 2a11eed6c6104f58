#include "support/formats.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <utility>

using namespace vfil::test;

namespace {

GUID Parse(const char* text)
{
    unsigned d1 = 0, d2 = 0, d3 = 0, b[8] = {};
    EXPECT_EQ(std::sscanf(text, "%8x-%4x-%4x-%2x%2x-%2x%2x%2x%2x%2x%2x", &d1, &d2, &d3, b, b + 1, b + 2,
                          b + 3, b + 4, b + 5, b + 6, b + 7),
              11);
    GUID id{d1, static_cast<std::uint16_t>(d2), static_cast<std::uint16_t>(d3), {}};
    for (int i = 0; i < 8; ++i)
        id.Data4[i] = static_cast<std::uint8_t>(b[i]);
    return id;
}

/// The predicates' answers in the notation of FormatCase.
std::string Flags(const GUID& id)
{
    using Predicate = int (*)(const GUID&);
    static constexpr std::pair<char, Predicate> kPredicates[] = {
        {'A', IsFormatWithAlpha},    {'T', IsFormatTopDown},    {'6', IsFormat601},
        {'7', IsFormat709},          {'Y', IsFormatYCC},        {'P', IsFormatYCCA},
        {'C', IsFormatAlternateYUV}, {'S', IsFormatSplitField}, {'E', IsFormatSplitFieldEven},
    };
    std::string flags;
    for (const auto& [flag, predicate] : kPredicates)
        if (predicate(id)) flags += flag;
    return flags;
}

/// The record's answers in the same notation.
std::string Flags(const vfILFormatInfo& info)
{
    const std::pair<char, bool> answers[] = {
        {'A', info.alpha},
        {'T', info.topDown},
        {'6', info.model == PXColorModel_YCC},
        {'7', info.model == PXColorModel_YCC709},
        {'Y', info.ycc},
        {'P', info.alphaPlane},
        {'C', info.chromaFirst},
        {'S', info.splitField},
        {'E', info.evenFieldFirst},
    };
    std::string flags;
    for (const auto& [flag, answer] : answers)
        if (answer) flags += flag;
    return flags;
}

TEST(PxFormat, EveryFormatIsWhatItsNameSays)
{
    for (std::size_t i = 0; i < kFormats.size(); ++i) {
        const FormatCase& format = kFormats[i];
        SCOPED_TRACE(format.name);
        EXPECT_EQ(format.id, Parse(format.text));
        EXPECT_EQ(Flags(format.id), format.flags);
        EXPECT_EQ(GetColorModelFromFormat(format.id), format.model);
        const vfILFormatInfo* info = vfILFindFormat(format.id);
        ASSERT_NE(info, nullptr);
        EXPECT_STREQ(info->name, format.name);
        EXPECT_EQ(info->model, format.model);
        EXPECT_EQ(Flags(*info), format.flags);
        EXPECT_EQ(info->channels, format.channels);
        EXPECT_EQ(info->sampleBytes, format.sampleBytes);
        EXPECT_EQ(info->pixelBytes, format.pixelBytes);
        EXPECT_EQ(info->subsampled, format.IsSubsampled());
        EXPECT_EQ(vfILFormatAt(i), info);
    }
    EXPECT_EQ(vfILFormatAt(kFormats.size()), nullptr);
}

TEST(PxFormat, OtherIdentifiersHaveAtMostAModel)
{
    const std::pair<const char*, int> others[] = {
        {"0CB91364-5A29-11CE-BABC-00AA00629284", 1}, {"0CB91366-5A29-11CE-BABC-00AA00629284", 1},
        {"2CCF7DB3-7C2F-11CF-B4C2-00AA006294A2", 1}, {"0CB9136A-5A29-11CE-BABC-00AA00629284", 2},
        {"0CB91367-5A29-11CE-BABC-00AA00629284", 2}, {"0CB91362-5A29-11CE-BABC-00AA00629284", 0},
        {"00000000-0000-0000-0000-000000000000", 0}, {"0CB9135C-5A29-11CE-BABC-00AA00629285", 0},
    };
    for (const auto& [text, model] : others) {
        SCOPED_TRACE(text);
        EXPECT_EQ(GetColorModelFromFormat(Parse(text)), model);
        EXPECT_EQ(Flags(Parse(text)), "");
        EXPECT_EQ(vfILFindFormat(Parse(text)), nullptr);
    }
}

} // namespace
