#include "support/formats.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <utility>

using namespace vfil::test;

namespace {

GUID Parse(const char* text)
{
    unsigned a = 0, b = 0, c = 0, d = 0;
    unsigned long long e = 0;
    EXPECT_EQ(std::sscanf(text, "%8x-%4x-%4x-%4x-%12llx", &a, &b, &c, &d, &e), 5);
    GUID id{a, static_cast<std::uint16_t>(b), static_cast<std::uint16_t>(c), {}};
    for (int i = 0; i < 8; ++i)
        id.Data4[i] = static_cast<std::uint8_t>(((std::uint64_t{d} << 48) | e) >> (56 - 8 * i));
    return id;
}

/// The answers of the predicates, and those of the record if there is one, in the notation of FormatCase.
std::pair<std::string, std::string> Flags(const GUID& id)
{
    const vfILFormatInfo* found = vfILFindFormat(id);
    const vfILFormatInfo info = found != nullptr ? *found : vfILFormatInfo{};
    struct Question {
        char flag;
        int (*predicate)(const GUID&);
        bool ofRecord;
    };
    const Question questions[] = {
        {'A', IsFormatWithAlpha, info.alpha},
        {'T', IsFormatTopDown, info.topDown},
        {'6', IsFormat601, info.model == PXColorModel_YCC},
        {'7', IsFormat709, info.model == PXColorModel_YCC709},
        {'Y', IsFormatYCC, info.ycc},
        {'P', IsFormatYCCA, info.alphaPlane},
        {'C', IsFormatAlternateYUV, info.chromaFirst},
        {'S', IsFormatSplitField, info.splitField},
        {'E', IsFormatSplitFieldEven, info.evenFieldFirst},
    };
    std::pair<std::string, std::string> flags;
    for (const Question& question : questions) {
        if (question.predicate(id)) flags.first += question.flag;
        if (question.ofRecord) flags.second += question.flag;
    }
    return flags;
}

TEST(PxFormat, EveryFormatIsWhatItsNameSays)
{
    for (std::size_t i = 0; i < kFormats.size(); ++i) {
        const FormatCase& format = kFormats[i];
        SCOPED_TRACE(format.name);
        EXPECT_EQ(format.id, Parse(format.text));
        EXPECT_EQ(Flags(format.id), std::pair(std::string(format.flags), std::string(format.flags)));
        EXPECT_EQ(GetColorModelFromFormat(format.id), format.model);
        const vfILFormatInfo* info = vfILFindFormat(format.id);
        ASSERT_NE(info, nullptr);
        EXPECT_STREQ(info->name, format.name);
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
        EXPECT_EQ(Flags(Parse(text)).first, "");
        EXPECT_EQ(vfILFindFormat(Parse(text)), nullptr);
    }
}

} // namespace
