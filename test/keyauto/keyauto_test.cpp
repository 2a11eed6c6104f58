/// \file
/// Keys that are found for drawn plates, against their mattes.
#include "keyauto/findkey.h"
#include "score/score.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>

namespace vfil::keyauto {

namespace {

constexpr long kWidth = 240;
constexpr long kHeight = 160;

struct Rgb {
    double r, g, b;
};

// A plate to draw: light falls off to the right, and a ball and a bar are before the screen.
struct Drawing {
    const char* name;
    Rgb screen; ///< of bytes
    double falloff;
    double noise; ///< standard deviation, in bytes
    double soft;  ///< pixels of an edge
    Rgb ball, bar;
    double mostError, mostEdge;
};

struct Drawn {
    host::PicturePtr plate;
    score::Matte truth;
};

double Coverage(long x, long y, double soft)
{
    const double ball = 45 - std::hypot(static_cast<double>(x) - 90, static_cast<double>(y) - 85);
    const double bar = std::min(25 - std::abs(static_cast<double>(x) - 190), 110 - static_cast<double>(y));
    return std::clamp(std::max(ball, bar) / soft + 0.5, 0.0, 1.0);
}

// Light adds up, bytes don't.
double Mixed(double front, double back, double alpha, double light)
{
    constexpr double kGamma = 2.2;
    return 255 * std::pow(alpha * std::pow(front / 255, kGamma) +
                              (1 - alpha) * light * std::pow(back / 255, kGamma),
                          1 / kGamma);
}

Drawn Draw(const Drawing& drawing)
{
    Drawn drawn{host::Picture::Create(PXFormat_RGBA32, kWidth, kHeight), {kWidth, kHeight, {}, {}}};
    std::mt19937 random(7);
    std::normal_distribution<double> noise(0, std::max(drawing.noise, 1e-6));
    for (long y = kHeight - 1; y >= 0; --y) {
        for (long x = 0; x < kWidth; ++x) {
            const double alpha = Coverage(x, y, drawing.soft);
            const double light = 1 - drawing.falloff * static_cast<double>(x) / kWidth;
            const Rgb& front = x < 140 ? drawing.ball : drawing.bar;
            const double channels[] = {Mixed(front.r, drawing.screen.r, alpha, light),
                                       Mixed(front.g, drawing.screen.g, alpha, light),
                                       Mixed(front.b, drawing.screen.b, alpha, light), 255};
            for (int c = 0; c < 4; ++c)
                drawn.plate->Row(y)[4 * x + c] = static_cast<std::uint8_t>(
                    std::clamp(std::round(channels[c] + (c < 3 ? noise(random) : 0)), 0.0, 255.0));
            drawn.truth.coverage.push_back(static_cast<std::uint16_t>(std::lround(65535 * alpha)));
        }
    }
    return drawn;
}

TEST(KeyAuto, FindsKeysOfGreenAndBlueScreensInUnevenLightAndNoise)
{
    const Drawing drawings[] = {
        {"even green", {50, 160, 70}, 0, 0, 3, {200, 60, 50}, {230, 220, 210}, 20, 22},
        {"noisy green, falling light", {60, 150, 70}, 0.4, 3, 3, {210, 150, 120}, {40, 40, 60}, 40, 32},
        {"soft green", {50, 160, 70}, 0.2, 2, 24, {200, 60, 50}, {230, 220, 210}, 120, 28},
        {"blue", {45, 85, 190}, 0.3, 2, 3, {210, 160, 60}, {120, 60, 40}, 30, 30},
        {"dark green", {15, 55, 25}, 0.3, 1, 3, {200, 60, 50}, {230, 220, 210}, 40, 32},
    };
    for (const Drawing& drawing : drawings) {
        SCOPED_TRACE(drawing.name);
        const Drawn drawn = Draw(drawing);
        const Finding finding = FindKey(drawn.plate);
        EXPECT_EQ(finding.blue, drawing.screen.b > drawing.screen.g);
        ASSERT_EQ(finding.keys.size(), Keyers().size());
        Trial trial(finding.keys[0].keyer, drawn.plate);
        const score::Score score = score::Compare(
            score::MatteOf(*trial.Run(finding.keys[0].settings), score::Channel::Alpha), drawn.truth);
        EXPECT_LT(*score.MeanSquaredError(), drawing.mostError);
        EXPECT_LT(*score.EdgeError(), drawing.mostEdge);
        // Each keyer's search is its own, and the same each time.
        const Key& last = finding.keys.back();
        const Finding again = FindKey(drawn.plate, last.keyer);
        ASSERT_EQ(again.keys.size(), 1U);
        EXPECT_EQ(again.keys[0].settings, last.settings);
        EXPECT_EQ(last.settings.size(), last.keyer == "linear-keyer" ? 3U : 4U);
        EXPECT_NE(catalogue::Find(last.keyer), nullptr);
    }
}

TEST(KeyAuto, RefusesPlatesWithNothingToKey)
{
    const auto refusal = [](const host::PicturePtr& picture) -> std::string {
        try {
            FindKey(picture);
        } catch (const NothingToKey& nothing) {
            return nothing.what();
        }
        return "none";
    };
    const Drawing grey{"", {120, 120, 120}, 0.3, 3, 3, {200, 60, 50}, {230, 220, 210}, 0, 0};
    EXPECT_EQ(refusal(Draw(grey).plate).find("no screen found: "), 0U);
    const Rgb green{50, 160, 70};
    for (const double noise : {0.0, 2.0, 5.0}) {
        const Drawing screenAlone{"", green, 0, noise, 3, green, green, 0, 0};
        EXPECT_EQ(refusal(Draw(screenAlone).plate).find("no subject found: "), 0U) << noise;
    }
    // Leaves: green of all hues and shades.
    const host::PicturePtr leaves = host::Picture::Create(PXFormat_RGBA32, kWidth, kHeight);
    std::mt19937 random(3);
    for (std::size_t i = 0; i < leaves->Bytes(); i += 4) {
        const std::uint8_t pixel[] = {static_cast<std::uint8_t>(random() % 110), 120,
                                      static_cast<std::uint8_t>(random() % 110), 255};
        for (std::size_t x = i; x == i || x % (4 * 10) != 0; x += 4)
            if (x + 4 <= leaves->Bytes()) std::memcpy(leaves->Pixels() + x, pixel, 4);
    }
    EXPECT_EQ(refusal(leaves).find("no screen found: "), 0U);
    for (const long side : {1L, 2L, 15L, 16L, 40L})
        EXPECT_NE(refusal(host::Picture::Create(PXFormat_RGBA32, side, side)), "none") << side;
}

} // namespace

} // namespace vfil::keyauto
