/// \file
/// The vector forms of the two-input kernels against the plain ones, and the plain ones where no operator's
/// test reaches: the 4:2:2 rows.
#include "il/rows/comprows.h"

#include "rowcheck.h"

#include <cmath>

namespace vfil {
namespace {

template <class Sample>
const LayerCases<Sample>* LayersOf(const CompRows& rows)
{
    if constexpr (sizeof(Sample) == 1)
        return rows.layer8;
    else
        return rows.layer16;
}

/// Parameters that between them use each of a general kernel's choices; the first is whole.
template <class Sample>
std::vector<LayerParams<Sample>> LayerParamSets()
{
    constexpr Sample full = static_cast<Sample>(~Sample{0});
    constexpr auto half = static_cast<Sample>(full / 2 + 1);
    return {{full, true, true, AlphaRule::Computed, 15, false},
            {half, true, true, AlphaRule::Computed, 15, false},
            {0, true, true, AlphaRule::Computed, 7, false},
            {half, true, true, AlphaRule::Full, 15, true},
            {full, true, true, AlphaRule::Zero, 9, true},
            {full, true, true, AlphaRule::Full, 2, true},
            {7, true, true, AlphaRule::Zero, 12, false},
            {full, true, true, AlphaRule::Full, 4, false}};
}

/// Calls check(kernel, plain, params, name) for each kernel of an operator at each level.
template <class Sample, class Check>
void ForEachLayerKernel(std::size_t op, Check check)
{
    const LayerRow<Sample> plain = LayersOf<Sample>(CompRowsAt(Level::Plain))[op].at[0][0][0][0];
    for (const Level level : VectorLevels()) {
        const auto& cases = LayersOf<Sample>(CompRowsAt(level))[op].at;
        for (int bits = 0; bits < 8; ++bits) {
            const bool front = (bits & 1) != 0, back = (bits & 2) != 0, streaming = (bits & 4) != 0;
            std::size_t set = 0;
            for (LayerParams<Sample> params : LayerParamSets<Sample>()) {
                params.frontPremultiplied = front;
                params.backPremultiplied = back;
                const bool whole = set == 0;
                check(cases[front][back][whole][streaming], plain, params,
                      LevelName(level) + " op " + std::to_string(op) + " case " + std::to_string(bits) +
                          " set " + std::to_string(set++));
            }
        }
    }
}

template <class Sample>
void CheckLayer(std::size_t op, const std::vector<Sample>& allBack, const std::vector<Sample>& allFront)
{
    ForEachLayerKernel<Sample>(op, [&](auto kernel, auto plain, const auto& params, const std::string& name) {
        const auto same = [&](std::size_t pixels, Offsets offsets, Target target) {
            const auto samples = static_cast<std::ptrdiff_t>(4 * pixels);
            const std::vector<Sample> back(allBack.begin(), allBack.begin() + samples);
            const std::vector<Sample> front(allFront.begin(), allFront.begin() + samples);
            const auto run = [&](LayerRow<Sample> row) {
                return [&params, pixels, row](const Sample* b, const Sample* f, Sample* out) {
                    row(b, f, out, pixels, params);
                };
            };
            return SameRuns(back, front, offsets, target, run(kernel), run(plain));
        };
        ForEachPlacement<Sample>([&](std::size_t pixels, Offsets offsets, Target target) {
            ASSERT_TRUE(same(pixels, offsets, target)) << name << ", pixels " << pixels << ", target "
                                                       << static_cast<int>(target) << ", at " << offsets.out;
        });
        ASSERT_TRUE(same(allBack.size() / 4, {}, Target::Apart)) << name << ", all";
    });
}

/// Every pair of bytes meets as colour and colour, alpha and colour, alpha and alpha.
TEST(CompRows, Layers8AreThePlainForms)
{
    std::mt19937 random(2);
    std::vector<std::uint8_t> back = EndRichSamples<std::uint8_t>(4 * 65536, random);
    std::vector<std::uint8_t> front = EndRichSamples<std::uint8_t>(4 * 65536, random);
    for (std::size_t i = 1000; i < 65536; ++i) {
        for (const std::size_t channel : {0u, 3u}) {
            back[4 * i + channel] = static_cast<std::uint8_t>(i);
            front[4 * i + channel] = static_cast<std::uint8_t>(i >> 8);
        }
        back[4 * i + 1] = front[4 * i];
        front[4 * i + 1] = back[4 * i];
    }
    for (std::size_t op = 0; op < kLayerOps; ++op)
        CheckLayer(op, back, front);
}

/// Products of 16 bits that fall just beside a tie, beside random ones.
TEST(CompRows, Over16IsThePlainForm)
{
    std::mt19937 random(3);
    std::vector<std::uint16_t> back = EndRichSamples<std::uint16_t>(4 * 30000, random);
    std::vector<std::uint16_t> front = EndRichSamples<std::uint16_t>(4 * 30000, random);
    std::size_t at = 4000;
    for (std::uint32_t a = 40003; at + 4 < back.size() && a < 41000; ++a) {
        for (std::uint32_t b = 0; b < 65536 && at + 4 < back.size(); ++b) {
            const std::uint32_t rest = a * b % 65535;
            if (rest < 32766 || rest > 32769) continue;
            front[at] = back[at] = static_cast<std::uint16_t>(b);
            front[at + 3] = static_cast<std::uint16_t>(at % 8 == 0 ? a : 65535 - a);
            back[at + 3] = static_cast<std::uint16_t>(a);
            at += 4;
        }
    }
    CheckLayer(static_cast<std::size_t>(LayerOp::Over), back, front);
}

TEST(CompRows, MaskedMixIsThePlainForm)
{
    std::mt19937 random(4);
    const MixRow<std::uint8_t> plain = CompRowsAt(Level::Plain).mix8[0];
    for (const Level level : VectorLevels()) {
        for (const bool streaming : {false, true}) {
            const MixRow<std::uint8_t> kernel = CompRowsAt(level).mix8[streaming];
            std::uint8_t amount = 255;
            const auto check = [&](std::size_t pixels, Offsets offsets, Target target) {
                const auto back = EndRichSamples<std::uint8_t>(4 * pixels, random);
                const auto front = EndRichSamples<std::uint8_t>(4 * pixels, random);
                const std::ptrdiff_t step = std::vector<std::ptrdiff_t>{1, 4, 3}[pixels % 3];
                // Ends with the last pixel's mask, as the mask of a picture's alpha does.
                PlacedRow<std::uint8_t> mask(
                    EndRichSamples<std::uint8_t>(
                        pixels == 0 ? 0 : (pixels - 1) * static_cast<std::size_t>(step) + 1, random),
                    offsets.front, false);
                const MixParams<std::uint8_t> params{amount, static_cast<AlphaRule>(pixels / 3 % 3)};
                const auto run = [&](MixRow<std::uint8_t> row) {
                    return [&, row](const std::uint8_t* b, const std::uint8_t* f, std::uint8_t* out) {
                        row(b, f, mask.Data(), step, out, pixels, params);
                    };
                };
                ASSERT_TRUE(SameRuns(back, front, offsets, target, run(kernel), run(plain)))
                    << LevelName(level) << ", pixels " << pixels << ", step " << step;
                amount = static_cast<std::uint8_t>(amount * 7 + 3);
            };
            ForEachPlacement<std::uint8_t>(check);
            for (std::size_t pixels = 3000; pixels < 3009; ++pixels)
                check(pixels, {}, Target::Apart);
        }
    }
}

/// A row's colour and alpha one after the other: three bytes a pixel.
auto YuvaRun(OverYuvaRow row, std::size_t pixels, const YuvaParams& params)
{
    return [=](const std::uint8_t* back, const std::uint8_t* front, std::uint8_t* out) {
        const std::size_t colour = 2 * pixels;
        row(back, back + colour, front, front + colour, out, out + colour, pixels, params);
    };
}

TEST(CompRows, OverYuvaIsThePlainForm)
{
    std::mt19937 random(5);
    const OverYuvaRow plain = CompRowsAt(Level::Plain).overYuva;
    for (const Level level : VectorLevels()) {
        const auto check = [&](std::size_t pixels, Offsets offsets, Target target) {
            const auto back = EndRichSamples<std::uint8_t>(3 * pixels, random);
            const auto front = EndRichSamples<std::uint8_t>(3 * pixels, random);
            for (unsigned bits = 0; bits < 16; ++bits) {
                const std::uint8_t strength = bits % 2 == 0 ? 255 : static_cast<std::uint8_t>(random());
                const YuvaParams params{strength,        (bits & 2) != 0,
                                        (bits & 4) != 0, static_cast<AlphaRule>(random() % 3),
                                        (bits & 8) != 0, random() % 2 == 0};
                ASSERT_TRUE(SameRuns(back, front, offsets, target,
                                     YuvaRun(CompRowsAt(level).overYuva, pixels, params),
                                     YuvaRun(plain, pixels, params)))
                    << LevelName(level) << ", pixels " << pixels << ", case " << bits;
            }
        };
        for (std::size_t pixels = 0; pixels < 2 * 64 + 4; ++pixels)
            check(pixels, {pixels % 64, 3 * pixels % 64, 5 * pixels % 64}, kTargets[pixels % 3]);
        check(20001, {}, Target::Apart);
    }
}

/// value times weight / 255, rounded half away from zero (which cannot be).
int Weighed(int value, int weight)
{
    return static_cast<int>(std::lround(value * weight / 255.0));
}

TEST(CompRows, OverYuvaFollowsItsDefinition)
{
    std::mt19937 random(6);
    for (int turn = 0; turn < 20000; ++turn) {
        const auto back = EndRichSamples<std::uint8_t>(9, random);
        const auto front = EndRichSamples<std::uint8_t>(9, random);
        const bool straightFront = turn % 2 == 0, straightBack = turn / 2 % 2 == 0;
        const auto strength = static_cast<std::uint8_t>(random());
        const YuvaParams params{strength, !straightFront, !straightBack, AlphaRule::Computed, true, false};
        std::vector<std::uint8_t> out(9);
        YuvaRun(CompRowsAt(Level::Plain).overYuva, 3, params)(back.data(), front.data(), out.data());
        // [u y0 v y1 u y2], then three alphas; each value's alpha:
        const std::size_t owner[] = {6, 6, 6, 7, 8, 8};
        for (std::size_t i = 0; i < 6; ++i) {
            const int zero = i % 2 == 0 ? 128 : 16, most = i % 2 == 0 ? 240 : 235;
            const int frontAlpha = front[owner[i]], backAlpha = back[owner[i]];
            const int p = straightFront ? Weighed(front[i] - zero, frontAlpha) : front[i] - zero;
            const int q = straightBack ? Weighed(back[i] - zero, backAlpha) : back[i] - zero;
            const int value = Weighed(p, strength) + Weighed(q, 255 - Weighed(frontAlpha, strength)) + zero;
            ASSERT_EQ(out[i], std::clamp(value, 16, most)) << "value " << i << ", turn " << turn;
        }
        for (std::size_t i = 6; i < 9; ++i) {
            const int u = Weighed(front[i], strength);
            ASSERT_EQ(out[i], std::min(255, u + Weighed(back[i], 255 - u))) << "alpha " << i;
        }
    }
}

/// A run's choice of kernel by its parameters, which no table entry alone shows.
template <class Sample>
void CheckChoice(std::mt19937& random)
{
    for (int turn = 0; turn < 5000; ++turn) {
        const auto op = static_cast<LayerOp>(random() % kLayerOps);
        LayerParams<Sample> params = LayerParamSets<Sample>()[turn % 4 == 0 ? 0 : random() % 8];
        params.frontPremultiplied = random() % 2 == 0;
        params.backPremultiplied = random() % 2 == 0;
        params.streaming = random() % 2 == 0;
        const auto back = EndRichSamples<Sample>(4 * 37, random);
        const auto front = EndRichSamples<Sample>(4 * 37, random);
        std::vector<Sample> fast(back.size()), plain(back.size());
        FindLayerRow<Sample>(true, op, params)(back.data(), front.data(), fast.data(), 37, params);
        FindLayerRow<Sample>(false, op, params)(back.data(), front.data(), plain.data(), 37, params);
        ASSERT_EQ(fast, plain) << "op " << static_cast<int>(op) << ", channels " << params.channels;
    }
}

TEST(CompRows, ParametersChooseTheKernel)
{
    std::mt19937 random(8);
    CheckChoice<std::uint8_t>(random);
    CheckChoice<std::uint16_t>(random);
}

/// Else the tests above would compare a form with itself.
TEST(CompRows, EachLevelHasItsOwn)
{
    for (const Level level : VectorLevels()) {
        const CompRows& rows = CompRowsAt(level);
        const CompRows& below = CompRowsAt(Below(level));
        for (int bits = 0; bits < 16; ++bits) {
            const int a = bits & 1, b = bits >> 1 & 1, c = bits >> 2 & 1, d = bits >> 3;
            for (std::size_t op = 0; op < kLayerOps; ++op)
                EXPECT_NE(rows.layer8[op].at[a][b][c][d], below.layer8[op].at[a][b][c][d])
                    << LevelName(level);
            EXPECT_NE(rows.layer16[0].at[a][b][c][d], below.layer16[0].at[a][b][c][d]) << LevelName(level);
        }
        EXPECT_NE(rows.mix8[0], below.mix8[0]);
        EXPECT_NE(rows.mix8[1], below.mix8[1]);
        EXPECT_NE(rows.overYuva, below.overYuva);
    }
}

} // namespace
} // namespace vfil
