/// \file
/// The legalizer's kernels: the vector forms against the plain ones, and what the rules promise of any pair,
/// judged by the matrices in doubles.
#include "il/loops/treat/legalsetup.h"
#include "il/rows/treat/legalrows.h"

#include "keyer/keyrowcheck.h"

#include <cmath>

namespace vfil {
namespace {

using Byte = std::uint8_t;
using Bytes = std::vector<Byte>;

constexpr LegalRule kCorrections[] = {LegalRule::Clip, LegalRule::Gain, LegalRule::Saturation,
                                      LegalRule::LumaSaturation};
constexpr PXColorModel kStandards[] = {PXColorModel_YCC, PXColorModel_YCC709};

LegalParams AnyParams(std::mt19937& random)
{
    const double factors[] = {50, 0, 100, std::uniform_real_distribution<double>(0, 100)(random)};
    return LegalParamsOf(kStandards[random() % 2], factors[random() % 4]);
}

TEST(LegalRows, VectorFormsArePlainForms)
{
    for (int rule = 0; rule < kLegalRules; ++rule)
        for (const bool strict : {false, true})
            for (const bool chromaFirst : {false, true})
                CheckKeyRows(
                    "legal", Level::Avx2,
                    [=](Level level) -> auto& { return LegalRowsAt(level).rows[rule][strict][chromaFirst]; },
                    AnyParams);
}

/// How far the farthest channel of a pixel is out of 0 .. 255.
double Outside(PXColorModel standard, int y, int cb, int cr)
{
    const bool is601 = standard == PXColorModel_YCC;
    const double red = is601 ? 0.299 : 0.2126;
    const double blue = is601 ? 0.114 : 0.0722;
    const double luma = (y - 16) * 255.0 / 219;
    const double r = luma + 2 * (1 - red) * (cr - 128) * 255 / 224;
    const double b = luma + 2 * (1 - blue) * (cb - 128) * 255 / 224;
    const double g = (luma - red * r - blue * b) / (1 - red - blue);
    return std::max({0.0, r - 255, g - 255, b - 255, -r, -g, -b});
}

/// Of a pair of Y0, Cb, Y1, Cr the farther pixel.
double Outside(PXColorModel standard, const Byte* pair)
{
    return std::max(Outside(standard, pair[0], pair[1], pair[3]),
                    Outside(standard, pair[2], pair[1], pair[3]));
}

/// The published matrix of 601 has five decimals, which come to so much at the ends.
constexpr double kDecimals = 0.002;

Bytes Treated(const Bytes& pairs, PXColorModel standard, LegalRule rule, bool strict)
{
    Bytes out(pairs.size());
    FindLegalRow({rule, strict, false, true, false})(pairs.data(), out.data(), pairs.size() / 4,
                                                     LegalParamsOf(standard, 50));
    return out;
}

int LargestChange(const Byte* before, const Byte* after)
{
    int largest = 0;
    for (int i = 0; i < 4; ++i)
        largest = std::max(largest, std::abs(before[i] - after[i]));
    return largest;
}

/// Calls check(standard, rule, strict, pair before, pair after) for every correction of the pairs.
template <class Check>
void ForEachTreated(const Bytes& pairs, Check check)
{
    for (const PXColorModel standard : kStandards)
        for (const LegalRule rule : kCorrections)
            for (const bool strict : {false, true}) {
                const Bytes out = Treated(pairs, standard, rule, strict);
                for (std::size_t i = 0; i < pairs.size(); i += 4) {
                    check(standard, rule, strict, &pairs[i], &out[i]);
                    ASSERT_FALSE(testing::Test::HasFailure())
                        << "standard " << standard << ", rule " << static_cast<int>(rule) << ", strict "
                        << strict << ", pair " << +pairs[i] << ' ' << +pairs[i + 1] << ' ' << +pairs[i + 2]
                        << ' ' << +pairs[i + 3];
                }
            }
}

// Every luma, and every seventh chroma; as two pairs each, so that the first has a next one of its chroma.
TEST(LegalRows, FlatPicturesStayWhereLegalAndComeWithinTwoCodes)
{
    Bytes pairs;
    for (int y = 0; y < 256; ++y)
        for (int cb = y % 7; cb < 256; cb += 7)
            for (int cr = y / 7 % 7; cr < 256; cr += 7) // every pair of chroma in turn
                for (int twice = 0; twice < 2; ++twice)
                    for (const int sample : {y, cb, y, cr})
                        pairs.push_back(static_cast<Byte>(sample));
    bool first = false;
    ForEachTreated(pairs,
                   [&](PXColorModel standard, LegalRule rule, bool strict, const Byte* in, const Byte* out) {
                       first = !first;
                       if (!first) return;
                       if (Outside(standard, in) == 0) {
                           ASSERT_EQ(LargestChange(in, out), 0);
                       }
                       const double most = strict ? 1 : (rule == LegalRule::Saturation ? 1.06 : 1.64);
                       ASSERT_LE(Outside(standard, out), most + kDecimals);
                       ASSERT_EQ(out[0], out[2]);
                   });
}

/// Any pairs, half of them of two near lumas.
Bytes AnyPairs(std::size_t count)
{
    std::mt19937 random(9);
    Bytes pairs(4 * count);
    for (Byte& sample : pairs)
        sample = static_cast<Byte>(random());
    for (std::size_t i = 0; i < pairs.size(); i += 8)
        pairs[i + 2] = static_cast<Byte>(std::clamp(pairs[i] + static_cast<int>(random() % 9) - 4, 0, 255));
    return pairs;
}

TEST(LegalRows, StrictPairsAreWithinACodeByTheirOwnSamples)
{
    ForEachTreated(AnyPairs(100000), [](PXColorModel standard, LegalRule rule, bool strict, const Byte* in,
                                        const Byte* out) {
        if (!strict) return;
        const double before = Outside(standard, in);
        ASSERT_LE(Outside(standard, out), 1 + kDecimals);
        for (const int i : {0, 2})
            ASSERT_TRUE(out[i] >= 16 && out[i] <= 235 && out[i + 1] >= 16 && out[i + 1] <= 240);
        if (in[0] == in[2]) {
            ASSERT_EQ(out[0], out[2]); // no stripes
        }
        if (before == 0) {
            ASSERT_EQ(LargestChange(in, out), 0);
        }
        // Saturation may need more: in the dark, luma allows little chroma.
        if ((rule == LegalRule::Clip || rule == LegalRule::Gain) && before < 16) {
            ASSERT_LE(LargestChange(in, out), 1 + 2.25 * before);
        }
    });
}

double Hue(const Byte* pair)
{
    return std::atan2(pair[3] - 128, pair[1] - 128) * 180 / std::acos(-1);
}

TEST(LegalRows, SaturationKeepsHueAndLuma)
{
    ForEachTreated(AnyPairs(100000), [](PXColorModel, LegalRule rule, bool, const Byte* in, const Byte* out) {
        if (rule != LegalRule::Saturation) return;
        for (const int i : {0, 2})
            ASSERT_EQ(out[i], std::clamp<int>(in[i], 16, 235));
        const bool inRange =
            std::clamp<int>(in[1], 16, 240) == in[1] && std::clamp<int>(in[3], 16, 240) == in[3];
        if (!inRange || std::hypot(out[1] - 128, out[3] - 128) < 60) return;
        ASSERT_LE(std::abs(std::remainder(Hue(in) - Hue(out), 360)), 0.7);
    });
}

} // namespace
} // namespace vfil
