/// \file
/// Each cell between as a mixture of the screen behind it and of a colour of the subject near by.
#include "keyauto/reference.h"
#include "keyauto/localmean.h"
#include "keyauto/nearest.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace vfil::keyauto {

namespace {

struct Guess {
    float alpha = 1;
    float cost = 1e9F;
};

class Estimator {
public:
    Estimator(const Grid<Light>& plate, const Screen& screen, const Regions& regions)
        : m_plate(plate), m_screen(screen), m_regions(regions), m_fronts(plate, regions.solid),
          m_solid(FindNearest(regions.solid))
    {}

    Guess At(long x, long y) const
    {
        std::array<Guess, kDirections + 2> guesses;
        guesses[0] = Try(x, y, m_solid.cell.At(x, y));
        for (int i = 0; i < kDirections; ++i)
            guesses.at(static_cast<std::size_t>(i) + 1) = Try(x, y, Look(x, y, i));
        guesses.back() = TryGrey(x, y);
        std::sort(guesses.begin(), guesses.end(),
                  [](const Guess& a, const Guess& b) { return a.cost < b.cost; });
        constexpr std::size_t kBest = 3;
        constexpr float kTie = 0.05F;
        Guess mean{0, guesses[0].cost};
        std::size_t count = 0;
        while (count < kBest && guesses.at(count).cost < mean.cost + kTie)
            mean.alpha += guesses.at(count++).alpha;
        mean.alpha /= static_cast<float>(count);
        return mean;
    }

    float SolidDistance(std::size_t i) const { return m_solid.distance[i]; }

private:
    static constexpr int kDirections = 16;
    static constexpr long kLook = 60; // cells

    // The first solid cell in a direction.
    Nearest::Cell Look(long x, long y, int direction) const
    {
        const double angle = 2 * 3.14159265358979 * direction / kDirections;
        const double dx = std::cos(angle);
        const double dy = std::sin(angle);
        for (long step = 1; step <= kLook; ++step) {
            const long atX = x + std::lround(dx * static_cast<double>(step));
            const long atY = y + std::lround(dy * static_cast<double>(step));
            if (!m_plate.Contains(atX, atY)) break;
            if (m_regions.solid.At(atX, atY) != 0) return {atX, atY};
        }
        return {};
    }

    // The cell as a mixture with the colour around a solid one: dear when the mixture misses its colour, or
    // when the solid cell is far.
    Guess Try(long x, long y, const Nearest::Cell& solid) const
    {
        if (solid.x < 0) return {};
        const Light front = m_fronts.Mean(solid.x, solid.y, 1);
        const Light& behind = m_regions.behind.At(x, y);
        const Light& c = m_plate.At(x, y);
        const Light way = front - behind;
        const float alpha = std::clamp(Dot(c - behind, way) / std::max(Dot(way, way), 1e-6F), 0.0F, 1.0F);
        const Light miss = c - (behind + way * alpha);
        const float scale = Dot(behind, behind) + Dot(front, front);
        const float off = std::hypot(static_cast<float>(solid.x - x), static_cast<float>(solid.y - y));
        const float distance = off / (1 + m_solid.distance.At(x, y));
        constexpr float kOff = 0.001F;
        constexpr float kFar = 0.01F;
        constexpr float kDense = 0.02F;
        return {alpha, std::sqrt(Dot(miss, miss) / std::max(scale, 1e-6F)) + kFar * distance + kOff * off +
                           kDense * alpha};
    }

    // The cell as a mixture with some grey: what fits thin things far from any solid cell best.
    Guess TryGrey(long x, long y) const
    {
        constexpr float kCost = 0.12F;
        const Light& behind = m_regions.behind.At(x, y);
        const float screen = m_screen.Excess(m_plate.At(x, y)) / std::max(m_screen.Excess(behind), 1e-4F);
        return {1 - std::clamp(screen, 0.0F, 1.0F), kCost};
    }

    const Grid<Light>& m_plate;
    const Screen& m_screen;
    const Regions& m_regions;
    LocalMean m_fronts;
    Nearest m_solid;
};

} // namespace

Reference EstimateMatte(const Grid<Light>& plate, const Screen& screen, const Regions& regions)
{
    const Estimator estimator(plate, screen, regions);
    Reference reference{Grid<float>(plate.Width(), plate.Height()),
                        Grid<float>(plate.Width(), plate.Height(), 1)};
    for (long y = 0; y < plate.Height(); ++y) {
        for (long x = 0; x < plate.Width(); ++x) {
            const std::size_t i = plate.Index(x, y);
            if (regions.clear[i] != 0) continue;
            if (regions.solid[i] != 0) {
                reference.alpha[i] = 1;
                continue;
            }
            const Guess guess = estimator.At(x, y);
            reference.alpha[i] = guess.alpha;
            reference.weight[i] = std::exp(-guess.cost * 2);
        }
    }
    return reference;
}

} // namespace vfil::keyauto
