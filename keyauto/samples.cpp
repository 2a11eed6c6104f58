/// \file
/// Samples and what they say of a matte.
#include "keyauto/samples.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace vfil::keyauto {

namespace {

// The numbers of a linear congruential generator: the same row on every machine.
class Chance {
public:
    std::uint32_t Below(std::uint32_t bound)
    {
        m_state = m_state * 6364136223846793005U + 1442695040888963407U;
        return static_cast<std::uint32_t>((m_state >> 33) % bound);
    }

private:
    std::uint64_t m_state = 1;
};

bool IsBetween(const Regions& regions, std::size_t cell)
{
    return regions.clear[cell] == 0 && regions.solid[cell] == 0;
}

// One of the pixels of a cell.
const std::uint8_t* PixelOf(const Plate& plate, long x, long y, Chance& chance)
{
    const auto side = static_cast<std::uint32_t>(plate.side);
    const long column = x * plate.side + static_cast<long>(chance.Below(side));
    const long row = y * plate.side + static_cast<long>(chance.Below(side));
    return plate.picture->Row(row) + 4 * column;
}

} // namespace

Samples TakeSamples(const Plate& plate, const Regions& regions, const Reference& reference)
{
    constexpr std::size_t kBetween = 14000;
    constexpr std::size_t kSure = 9000;
    std::size_t between = 0;
    for (std::size_t i = 0; i < plate.light.Size(); ++i)
        between += IsBetween(regions, i) ? 1 : 0;
    const auto stepBetween = static_cast<std::uint32_t>(between / kBetween + 1);
    const auto stepSure = static_cast<std::uint32_t>((plate.light.Size() - between) / kSure + 1);
    Samples samples;
    std::vector<std::uint8_t> pixels;
    Chance chance;
    float total = 0;
    for (long y = 0; y < plate.light.Height(); ++y) {
        for (long x = 0; x < plate.light.Width(); ++x) {
            const std::size_t cell = plate.light.Index(x, y);
            const std::uint32_t step = IsBetween(regions, cell) ? stepBetween : stepSure;
            if (chance.Below(step) != 0) continue;
            const std::uint8_t* pixel = PixelOf(plate, x, y, chance);
            pixels.insert(pixels.end(), pixel, pixel + 4);
            samples.alpha.push_back(reference.alpha[cell]);
            samples.weight.push_back(reference.weight[cell] * static_cast<float>(step));
            total += samples.weight.back();
        }
    }
    for (float& weight : samples.weight)
        weight /= total;
    samples.picture = host::Picture::Create(PXFormat_RGBA32, static_cast<long>(samples.alpha.size()), 1);
    std::memcpy(samples.picture->Pixels(), pixels.data(), pixels.size());
    return samples;
}

double Distance(const Samples& samples, const host::Picture& keyed)
{
    constexpr float kClear = 0.05F;
    constexpr float kSolid = 0.95F;
    constexpr float kSeen = 5;       // what shows of a screen that should be clear
    constexpr double kResidue = 500; // squares, when all of it does: specks are seen before they weigh much
    constexpr double kEdgePart = 15; // makes edges that are off by 15 count as much as they do in the mean
    double squares = 0;
    double edges = 0;
    double edgeWeight = 1e-9;
    double residue = 0;
    const std::uint8_t* pixel = keyed.Pixels();
    for (std::size_t i = 0; i < samples.alpha.size(); ++i) {
        const float alpha = samples.alpha[i];
        const float off = std::abs(static_cast<float>(pixel[4 * i + 3]) - 255 * alpha);
        const auto weight = static_cast<double>(samples.weight[i]);
        squares += weight * static_cast<double>(off * off);
        if (alpha > kClear && alpha < kSolid) {
            edges += weight * static_cast<double>(off);
            edgeWeight += weight;
        } else if (off > kSeen) {
            residue += weight;
        }
    }
    edges /= edgeWeight;
    return squares + edges * edges / kEdgePart + kResidue * residue;
}

} // namespace vfil::keyauto
