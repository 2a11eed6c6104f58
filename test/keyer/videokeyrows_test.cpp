/// \file
/// The vector forms of the kernels of the 4:2:2 keyers, and of the RGBA composite, against the plain ones.
#include "il/loops/keyer/yuvkeysetup.h"
#include "il/rows/keyer/keybytes.h"
#include "il/rows/keyer/rgbcompositerows.h"
#include "il/rows/keyer/videokeyrows.h"

#include "keyer/keyercheck.h"
#include "keyer/keyrowcheck.h"

#include <cmath>

namespace vfil {
namespace {

using test::Real;

using Byte = std::uint8_t;

KeySector AnySector(std::mt19937& random)
{
    return {random() % 2 ? Any(random, -32767, 32767) : Any(random, 0, 2000), Any(random, 0, 102),
            Any(random, 256, random() % 4 ? 2304 : 65535), Any(random, 0, random() % 2 ? 40 : 255),
            Any(random, 256, random() % 2 ? 2000 : 200000)};
}

SpillLuma AnyLuma(std::mt19937& random)
{
    return {Any(random, 0, random() % 2 ? 600 : 32000), Any(random, -40000, 300)};
}

ChromaKeyParams AnyParams(std::mt19937& random, ChromaKeyParams)
{
    const double turn = Real(random, 0, 6.3);
    return {Any(random, 0, 1) ? 256 : static_cast<std::int32_t>(256 * std::cos(turn)),
            static_cast<std::int32_t>(256 * std::sin(turn)),
            AnySector(random),
            AnySector(random),
            AnyLuma(random),
            static_cast<Byte>(random()),
            static_cast<Byte>(random())};
}

YccForm AnyForm(std::mt19937& random, long most)
{
    return {Any(random, -most, most), Any(random, -most, most), Any(random, -most, most),
            Any(random, -most, most)};
}

/// Of the key equation, or of any numbers that the lanes hold.
template <class Params>
Params FromSettings(std::mt19937& random, Params (*make)(const vfILYUVKeySettings&))
{
    const vfILColor key(Real(random, 0, 1), Real(random, 0, 1), Real(random, 0, 1), 1);
    const double low = random() % 2 ? 0 : Real(random, 0, 0.5);
    return make({Real(random, -1, 4), Real(random, 0, 2), Real(random, -1, 1), low,
                 random() % 2 ? 1 : low + Real(random, 0.01, 0.5), key, key, Real(random, 0, 3),
                 Real(random, -1, 1), Real(random, -0.5, 0.5), Real(random, -0.1, 1.2),
                 random() % 2 ? PXColorModel_YCC : PXColorModel_YCC709});
}

ChannelKeyParams AnyParams(std::mt19937& random, ChannelKeyParams)
{
    ChannelKeyParams params = FromSettings(random, ChannelKeyOf);
    if (random() % 4 == 0) {
        params.rest = AnyForm(random, 32767);
        params.factor = Any(random, -32768, 32767);
        params.limit = Any(random, -32768, 32767);
    }
    return params;
}

FoldedKeyParams AnyParams(std::mt19937& random, FoldedKeyParams)
{
    return FromSettings(random, FoldedKeyOf);
}

RgbCompositeParams AnyParams(std::mt19937& random, RgbCompositeParams)
{
    RgbCompositeParams params = FromSettings(random, RgbCompositeOf);
    if (random() % 4 == 0) params.difference.weights = {Any(random, -9e6, 9e6), Any(random, -9, 9), 0};
    if (random() % 4 == 0) params.gain = Any(random, INT32_MIN, INT32_MAX);
    if (random() % 4 == 0) params.spill.threshold = Any(random, -999, 999);
    if (random() % 4 == 0) SetSoftness(params.spill, Any(random, -3, 3));
    if (random() % 4 == 0) params.spill.lumaTerm = Any(random, -999, 999);
    return params;
}

bool FitsLanes(const RgbCompositeParams& params)
{
    return FitsVectors(params.difference);
}

VideoLumaKeyParams AnyParams(std::mt19937& random, VideoLumaKeyParams)
{
    const std::int32_t low = Any(random, 16, 234);
    const std::int32_t high = Any(random, low + 1, 235);
    const std::int32_t gain = 16711680 / (high - low);
    constexpr std::int64_t kMost = INT32_MAX; // where no luma lies between the ends
    const bool plain = random() % 2;
    return {plain ? 65536 : Any(random, 0, 200000),
            plain ? 0 : Any(random, -250, 250),
            plain ? 0 : 16,
            plain ? 255 : 235,
            random() % 2 == 0,
            {low, high, gain, static_cast<std::int32_t>(std::min(std::int64_t{low} * gain, kMost))}};
}

template <class Params>
Params Fitting(std::mt19937& random)
{
    for (;;)
        if (const Params params = AnyParams(random, Params()); FitsLanes(params)) return params;
}

TEST(VideoKeyRows, VectorFormsArePlainForms)
{
    const auto at = [](Level level) -> const VideoKeyRows& { return VideoKeyRowsAt(level); };
    for (const bool order : {false, true}) {
        for (int i = 0; i < kKeyResults; ++i)
            CheckKeyRows(
                "chroma", Level::Sse2, [=](Level level) -> auto& { return at(level).chroma[i][order]; },
                Fitting<ChromaKeyParams>);
        for (const bool which : {false, true}) {
            CheckKeyRows(
                "channel", Level::Sse2, [=](Level level) -> auto& { return at(level).channel[which][order]; },
                Fitting<ChannelKeyParams>);
            CheckKeyRows(
                "luma", Level::Sse2, [=](Level level) -> auto& { return at(level).luma[which][order]; },
                Fitting<VideoLumaKeyParams>);
        }
        CheckKeyRows(
            "folded", Level::Avx2, [=](Level level) -> auto& { return at(level).folded[true][order]; },
            Fitting<FoldedKeyParams>);
    }
}

TEST(RgbCompositeRows, VectorFormsArePlainForms)
{
    for (int i = 0; i < kKeyResults; ++i)
        CheckKeyRows(
            "rgb", Level::Avx2, [=](Level level) -> auto& { return RgbCompositeRowsAt(level).rows[i]; },
            Fitting<RgbCompositeParams>);
}

// All chroma, and all luma pairs, decide by two bytes.
TEST(VideoKeyRows, ParametersThatVerifyTakesFitAndAreRightForAllSamples)
{
    std::vector<Byte> all(4 * 65536);
    for (std::size_t i = 0; i < 65536; ++i) {
        all[4 * i] = all[4 * i + 1] = static_cast<Byte>(i);
        all[4 * i + 2] = all[4 * i + 3] = static_cast<Byte>(i >> 8);
    }
    std::mt19937 random(5);
    const std::vector<Byte> back = AnyPixels(random, 65536);
    const auto check = [&](const auto& params, KeyResult result) {
        ASSERT_TRUE(FitsLanes(params));
        for (const bool chromaFirst : {false, true}) {
            std::vector<Byte> fast(all.size()), plain(all.size());
            FindVideoKeyRow({result, chromaFirst, true, true}, params)(all.data(), back.data(), fast.data(),
                                                                       65536, params);
            FindVideoKeyRow({result, chromaFirst, false, true}, params)(all.data(), back.data(), plain.data(),
                                                                        65536, params);
            ASSERT_TRUE(fast == plain);
        }
    };
    for (const std::int32_t slope : {29335, 14667, 95, 0, -95, -14667})
        for (const KeySector& sector : {KeySector{slope, 0, 256, 0, 256},
                                        {slope, 102, 2304, 128, 512},
                                        {slope, 40, 1280, 252, INT32_MAX}})
            for (const KeyResult result : {KeyResult::Composite, KeyResult::SpillCorrected, KeyResult::Matte})
                check(ChromaKeyParams{-181, 181, sector, sector, {256, 0}, 128, 128}, result);
    for (std::int32_t low = 16; low < 235; low += 3)
        for (std::int32_t high = low + 1; high <= 235; high += 7) {
            const double d = 1.0 / (high - low);
            const auto round = [](double v) { return static_cast<std::int32_t>(std::lround(v)); };
            const MatteWindow window{low, high, round(16711680 * d), round(16711680.0 * low * d)};
            check(VideoLumaKeyParams{65536, 0, 0, 255, low % 2 == 0, window}, KeyResult::Composite);
        }
}

} // namespace
} // namespace vfil
