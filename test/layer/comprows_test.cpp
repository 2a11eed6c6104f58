/// \file
/// The vector forms of the two-input kernels against the plain ones, which the operators' models check.
#include "il/rows/layer/comprows.h"

#include "support/rowcheck.h"

namespace vfil {
namespace {

/// The kernels of one width and arithmetic, by operator.
template <class Sample>
using Choose = const LayerCases<Sample>* (*)(const CompRows& rows);

/// Parameters that between them use each of a general kernel's choices; the first is whole.
template <class Sample>
std::vector<LayerParams<Sample>> LayerParamSets()
{
    constexpr Sample full = static_cast<Sample>(~Sample{0}), half = full / 2 + 1;
    return {{full, true, true, AlphaRule::Computed, 15, false},
            {half, true, true, AlphaRule::Computed, 15, false},
            {half, true, true, AlphaRule::Full, 15, true},
            {full, true, true, AlphaRule::Zero, 9, true},
            {full, true, true, AlphaRule::Full, 2, true},
            {7, true, true, AlphaRule::Zero, 12, false},
            {0, true, true, AlphaRule::Full, 4, false}};
}

/// Compares one kernel with the plain form: in every placement, then on all of the pixels.
template <class Sample>
void CheckLayer(LayerRow<Sample> kernel, LayerRow<Sample> plain, const LayerParams<Sample>& params,
                const std::vector<Sample>& allBack, const std::vector<Sample>& allFront)
{
    const auto check = [&](std::size_t pixels, const Placement& place) {
        const auto samples = static_cast<std::ptrdiff_t>(4 * pixels);
        const std::vector<Sample> back(allBack.begin(), allBack.begin() + samples);
        const std::vector<Sample> front(allFront.begin(), allFront.begin() + samples);
        const auto run = [&](LayerRow<Sample> row) {
            return [&params, pixels, row](const Sample* b, const Sample* f, Sample* out) {
                row(b, f, out, pixels, params);
            };
        };
        ASSERT_TRUE(SameRuns(back, front, place, run(kernel), run(plain)))
            << "pixels " << pixels << ", target " << static_cast<int>(place.target) << ", at " << place.out;
    };
    ForEachPlacement<Sample>(check);
    check(allBack.size() / 4, {});
}

/// Every kernel of an operator at each level.
template <class Sample>
void CheckOperator(Choose<Sample> choose, std::size_t op, const std::vector<Sample>& back,
                   const std::vector<Sample>& front)
{
    const LayerRow<Sample> plain = choose(CompRowsAt(Level::Plain))[op].at[0][0][0][0];
    for (const Level level : VectorLevels()) {
        const LayerCases<Sample>& cases = choose(CompRowsAt(level))[op];
        ASSERT_NE(cases.at[0][0][0][0], choose(CompRowsAt(Below(level)))[op].at[0][0][0][0]);
        for (int bits = 0; bits < 8; ++bits) {
            bool whole = true;
            for (LayerParams<Sample> params : LayerParamSets<Sample>()) {
                SCOPED_TRACE(testing::Message() << "level " << static_cast<int>(level) << " op " << op);
                params.frontPremultiplied = (bits & 1) != 0;
                params.backPremultiplied = (bits & 2) != 0;
                CheckLayer(cases.at[bits & 1][bits >> 1 & 1][whole][bits >> 2], plain, params, back, front);
                whole = false;
            }
        }
    }
}

template <class Sample>
void CheckLayers(Choose<Sample> choose, const std::vector<Sample>& back, const std::vector<Sample>& front)
{
    for (std::size_t op = 0; op < kLayerOps; ++op)
        CheckOperator(choose, op, back, front);
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
    CheckLayers<std::uint8_t>(
        [](const CompRows& rows) -> const LayerCases<std::uint8_t>* { return rows.layer8; }, back, front);
}

/// Products of 16 bits that fall just beside a tie, beside random ones.
TEST(CompRows, Layers16AreThePlainForms)
{
    std::mt19937 random(3);
    std::vector<std::uint16_t> back = EndRichSamples<std::uint16_t>(4 * 6000, random);
    std::vector<std::uint16_t> front = EndRichSamples<std::uint16_t>(4 * 6000, random);
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
    CheckLayers<std::uint16_t>(
        [](const CompRows& rows) -> const LayerCases<std::uint16_t>* { return rows.layer16[false]; }, back,
        front);
    CheckLayers<std::uint16_t>(
        [](const CompRows& rows) -> const LayerCases<std::uint16_t>* { return rows.layer16[true]; }, back,
        front);
}

/// The mask ends with the last pixel's sample, as that of a picture's alpha does.
TEST(CompRows, MaskedMixIsThePlainForm)
{
    std::mt19937 random(4);
    const auto check = [&](MixRow<std::uint8_t> kernel, std::size_t pixels, const Placement& place) {
        const auto back = EndRichSamples<std::uint8_t>(4 * pixels, random);
        const auto front = EndRichSamples<std::uint8_t>(4 * pixels, random);
        const std::size_t step = std::vector<std::size_t>{1, 4, 3}[pixels % 3];
        const std::size_t maskSamples = pixels == 0 ? 0 : (pixels - 1) * step + 1;
        PlacedRow<std::uint8_t> mask(EndRichSamples<std::uint8_t>(maskSamples, random), place.front, false);
        const auto amount = pixels % 2 == 0 ? std::uint8_t{255} : static_cast<std::uint8_t>(random());
        const MixParams<std::uint8_t> params{amount, static_cast<AlphaRule>(pixels / 3 % 3)};
        const auto run = [&](MixRow<std::uint8_t> row) {
            return [&, row](const std::uint8_t* b, const std::uint8_t* f, std::uint8_t* out) {
                row(b, f, mask.Data(), static_cast<std::ptrdiff_t>(step), out, pixels, params);
            };
        };
        ASSERT_TRUE(SameRuns(back, front, place, run(kernel), run(CompRowsAt(Level::Plain).mix8[0])))
            << "pixels " << pixels << ", step " << step;
    };
    for (const Level level : VectorLevels()) {
        EXPECT_NE(CompRowsAt(level).mix8[0], CompRowsAt(Below(level)).mix8[0]) << "compared with itself";
        for (const MixRow<std::uint8_t> kernel : CompRowsAt(level).mix8) {
            ForEachPlacement<std::uint8_t>(
                [&](std::size_t pixels, const Placement& place) { check(kernel, pixels, place); });
            for (std::size_t pixels = 3000; pixels < 3018; ++pixels)
                check(kernel, pixels, {});
        }
    }
}

/// Colour and alpha of a row lie one after the other: three bytes a pixel.
TEST(CompRows, OverYuvaIsThePlainForm)
{
    std::mt19937 random(5);
    const auto check = [&](OverYuvaRow kernel, std::size_t pixels, const Placement& place) {
        const auto back = EndRichSamples<std::uint8_t>(3 * pixels, random);
        const auto front = EndRichSamples<std::uint8_t>(3 * pixels, random);
        for (unsigned bits = 0; bits < 16; ++bits) {
            const std::uint8_t strength = bits % 2 == 0 ? 255 : static_cast<std::uint8_t>(random());
            const YuvaParams params{strength,        (bits & 2) != 0,
                                    (bits & 4) != 0, static_cast<AlphaRule>(random() % 3),
                                    (bits & 8) != 0, random() % 2 == 0};
            const auto run = [&](OverYuvaRow row) {
                return [&, row](const std::uint8_t* b, const std::uint8_t* f, std::uint8_t* out) {
                    row(b, b + 2 * pixels, f, f + 2 * pixels, out, out + 2 * pixels, pixels, params);
                };
            };
            ASSERT_TRUE(SameRuns(back, front, place, run(kernel), run(CompRowsAt(Level::Plain).overYuva)))
                << "pixels " << pixels << ", case " << bits;
        }
    };
    for (const Level level : VectorLevels()) {
        const OverYuvaRow kernel = CompRowsAt(level).overYuva;
        for (std::size_t pixels = 0; pixels < 2 * 64 + 4; ++pixels)
            check(kernel, pixels,
                  {pixels % 64, 3 * pixels % 64, 5 * pixels % 64, static_cast<Target>(pixels % 3)});
        check(kernel, 20001, {});
        EXPECT_NE(kernel, CompRowsAt(Below(level)).overYuva) << "compared with itself";
    }
}

} // namespace
} // namespace vfil
