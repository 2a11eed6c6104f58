/// \file
/// The ways between formats: joined up, and no lossier than they need to be.
#include "catalogue/names.h"
#include "engine/conversion.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>

namespace vfil::engine {

namespace {

std::string Way(const GUID& from, const GUID& to)
{
    const auto conversion = FindConversion(from, to);
    if (!conversion) return "none";
    std::string text;
    for (const ConversionHop& hop : *conversion)
        text += (text.empty() ? "" : " ") + catalogue::FormatName(hop.to);
    return text;
}

TEST(Conversion, TakesTheShortestWayThatLosesLeast)
{
    EXPECT_EQ(Way(PXFormat_RGBA32, PXFormat_RGBA32), "");
    EXPECT_EQ(Way(PXFormat_RGBA32, PXFormat_YUV422_709), "yuv422-709");
    EXPECT_EQ(Way(PXFormat_YCC422_601, PXFormat_YUV422_601), "rgba32 yuv422-601");
    EXPECT_EQ(Way(PXFormat_RGB24, PXFormat_YUV422_601), "yuv422-601");
    EXPECT_EQ(Way(PXFormat_RGBA64, PXFormat_YCC422_709), "rgba32 ycc422-709");
    EXPECT_EQ(Way(PXFormat_HLSA64, PXFormat_YCCA64), "rgba64 ycca64") << "keeps its bits";
    EXPECT_EQ(Way(PXFormat_YCCA422_709, PXFormat_BGRA32), "bgra32") << "not through fill and key";
    EXPECT_EQ(Way(PXFormat_BGR24, PXFormat_RGB24), "ycca32 rgb24") << "full chroma where it must be YCC";
    EXPECT_EQ(Way(PXFormat_RGBA32, PXFormat_Mono8), "none");
    EXPECT_EQ(Way(PXFormat_RGBA32, PXFormat_Dib24), "none");
}

// Whether three steps lead from one format to the other over formats that are good enough.
bool Reaches(const GUID& from, const GUID& to, int steps,
             const std::function<bool(const vfILFormatInfo&)>& isGood)
{
    if (from == to) return true;
    if (steps == 0) return false;
    for (std::size_t i = 0; const vfILFormatInfo* info = vfILFormatAt(i); ++i) {
        const auto takes = [&](const catalogue::Entry& entry) {
            return IsConverter(entry) && Takes(entry, from, info->id);
        };
        const auto& entries = catalogue::Entries();
        if (info->id != from && isGood(*info) && std::any_of(entries.begin(), entries.end(), takes) &&
            Reaches(info->id, to, steps - 1, isGood))
            return true;
    }
    return false;
}

TEST(Conversion, PassesThroughFewerBitsOnlyWhereNothingElseLeads)
{
    for (std::size_t i = 0; const vfILFormatInfo* from = vfILFormatAt(i); ++i) {
        for (std::size_t k = 0; const vfILFormatInfo* to = vfILFormatAt(k); ++k) {
            const auto way = FindConversion(from->id, to->id);
            const auto isGood = [&](const vfILFormatInfo& info) {
                return info.sampleBytes >= std::min(from->sampleBytes, to->sampleBytes) &&
                       (info.alpha || !from->alpha || !to->alpha);
            };
            if (!way || !Reaches(from->id, to->id, 3, isGood)) continue;
            for (const ConversionHop& hop : *way)
                EXPECT_TRUE(isGood(*vfILFindFormat(hop.to))) << from->name << " to " << to->name;
        }
    }
}

} // namespace

} // namespace vfil::engine
