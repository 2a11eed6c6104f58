/// \file
/// Finds the screen.
#include "keyauto/screen.h"
#include "keyauto/localmean.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace vfil::keyauto {

namespace {

constexpr int kBins = 64;
constexpr float kLeastLight = 0.004F;    // below, hues are noise
constexpr float kLeastSaturation = 0.4F; // excess by key channel
constexpr float kLeastShare = 0.01F;     // of the plate
constexpr float kLeastBorder = 0.04F;    // of the border, unless ...
constexpr float kMostReach = 0.085F;     // hues that scatter farther are no cloth, but leaves
constexpr float kInnerShare = 0.15F;     // ... the screen is as large as this
constexpr float kBorderWeight = 4;       // screens reach the border, subjects rather don't

using Histogram = std::vector<float>;

bool MayBeScreen(const Light& c, bool blue)
{
    Screen screen;
    screen.blue = blue;
    return c.Sum() > kLeastLight && screen.Excess(c) > kLeastSaturation * screen.Key(c);
}

std::size_t BinAt(int row, int column)
{
    return static_cast<std::size_t>(row) * kBins + static_cast<std::size_t>(column);
}

std::size_t BinOf(float red, float blue)
{
    const auto place = [](float share) { return std::clamp(static_cast<int>(share * kBins), 0, kBins - 1); };
    return BinAt(place(red), place(blue));
}

Histogram CountHues(const Grid<Light>& plate, bool blue)
{
    Histogram bins(kBins * kBins, 0.0F);
    const long border = std::max(1L, std::min(plate.Width(), plate.Height()) / 25);
    for (long y = 0; y < plate.Height(); ++y) {
        for (long x = 0; x < plate.Width(); ++x) {
            const Light& c = plate.At(x, y);
            if (!MayBeScreen(c, blue)) continue;
            const bool outer =
                x < border || y < border || x >= plate.Width() - border || y >= plate.Height() - border;
            const Hue hue = HueOf(c);
            bins[BinOf(hue.red, hue.blue)] += outer ? kBorderWeight : 1.0F;
        }
    }
    return bins;
}

// The sum over a bin and its neighbours, itself twice: of bins with the same neighbours the fullest is most.
float Around(const Histogram& bins, int row, int column)
{
    float sum = bins[BinAt(row, column)];
    for (int y = std::max(0, row - 1); y <= std::min(kBins - 1, row + 1); ++y) {
        for (int x = std::max(0, column - 1); x <= std::min(kBins - 1, column + 1); ++x)
            sum += bins[BinAt(y, x)];
    }
    return sum;
}

struct Peak {
    Hue hue;
    float weight = 0;
};

Peak FindPeak(const Histogram& bins)
{
    Peak peak;
    for (int row = 0; row < kBins; ++row) {
        for (int column = 0; column < kBins; ++column) {
            const float weight = Around(bins, row, column);
            if (weight <= peak.weight) continue;
            const float half = 0.5F;
            peak = {{(static_cast<float>(row) + half) / kBins, (static_cast<float>(column) + half) / kBins},
                    weight};
        }
    }
    return peak;
}

float Distance(const Hue& a, const Hue& b)
{
    return std::hypot(a.red - b.red, a.blue - b.blue);
}

float Median(std::vector<float>& values)
{
    if (values.empty()) return 0;
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

// How far hues lie from the middle until they are as rare as a twentieth of those in the middle. Mixtures of
// screen and subject, which lie around in all directions, count for little so.
float FindReach(const Grid<Light>& plate, const Screen& screen)
{
    constexpr float kStep = 0.004F;
    constexpr std::size_t kRings = 26;
    constexpr std::size_t kLeastRing = 4;
    constexpr double kRare = 0.05;
    std::array<double, kRings> density{};
    for (std::size_t i = 0; i < plate.Size(); ++i) {
        if (!MayBeScreen(plate[i], screen.blue)) continue;
        const auto ring = static_cast<std::size_t>(Distance(HueOf(plate[i]), screen.hue) / kStep);
        if (ring < kRings) density.at(ring) += 1 / static_cast<double>(2 * ring + 1);
    }
    const double most = *std::max_element(density.begin(), density.end());
    std::size_t ring = kLeastRing;
    while (ring < kRings && density.at(ring) > kRare * most)
        ++ring;
    return kStep * static_cast<float>(ring);
}

// One step towards the middle of the cluster: the medians of what lies around.
void Centre(const Grid<Light>& plate, float radius, Screen& screen)
{
    std::array<std::vector<float>, 2> values;
    for (std::size_t i = 0; i < plate.Size(); ++i) {
        if (!MayBeScreen(plate[i], screen.blue)) continue;
        const Hue hue = HueOf(plate[i]);
        if (Distance(hue, screen.hue) > radius) continue;
        values[0].push_back(hue.red);
        values[1].push_back(hue.blue);
    }
    screen.hue = {Median(values[0]), Median(values[1])};
}

void MarkCells(const Grid<Light>& plate, Screen& screen)
{
    screen.mask = Mask(plate.Width(), plate.Height());
    std::array<std::vector<float>, 3> channels;
    for (std::size_t i = 0; i < plate.Size(); ++i) {
        const Light& c = plate[i];
        if (!MayBeScreen(c, screen.blue) || Distance(HueOf(c), screen.hue) > screen.reach) continue;
        screen.mask[i] = 1;
        channels[0].push_back(c.r);
        channels[1].push_back(c.g);
        channels[2].push_back(c.b);
    }
    screen.share = static_cast<float>(channels[0].size()) / static_cast<float>(plate.Size());
    screen.colour = {Median(channels[0]), Median(channels[1]), Median(channels[2])};
}

// The share of the cells at the picture's border that are the screen's.
float BorderShare(const Mask& mask)
{
    long cells = 0;
    long chosen = 0;
    for (long y = 0; y < mask.Height(); ++y) {
        const bool whole = y < 2 || y >= mask.Height() - 2;
        for (long x = 0; x < mask.Width(); ++x) {
            if (!whole && x >= 2 && x < mask.Width() - 2) continue;
            ++cells;
            chosen += mask.At(x, y);
        }
    }
    return static_cast<float>(chosen) / static_cast<float>(std::max(cells, 1L));
}

} // namespace

std::optional<Screen> FindScreen(const Grid<Light>& plate)
{
    const Grid<Light> smooth = Smooth(plate, 1);
    const Peak green = FindPeak(CountHues(smooth, false));
    const Peak blue = FindPeak(CountHues(smooth, true));
    Screen screen;
    screen.blue = blue.weight > green.weight;
    screen.hue = screen.blue ? blue.hue : green.hue;
    constexpr float kRadius = 0.03F;
    constexpr int kSteps = 4;
    for (int i = 0; i < kSteps; ++i)
        Centre(smooth, kRadius, screen);
    screen.reach = FindReach(smooth, screen);
    MarkCells(smooth, screen);
    const float border = BorderShare(screen.mask);
    if (screen.reach > kMostReach) return std::nullopt;
    if (screen.share < kLeastShare || (border < kLeastBorder && screen.share < kInnerShare))
        return std::nullopt;
    return screen;
}

} // namespace vfil::keyauto
