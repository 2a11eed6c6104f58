/// \file
/// Distances in two sweeps.
#include "keyauto/nearest.h"

#include <cmath>

namespace vfil::keyauto {

namespace {

// Takes over what a neighbour knows when that is nearer.
void Ask(Nearest& nearest, long x, long y, long dx, long dy)
{
    if (!nearest.cell.Contains(x + dx, y + dy)) return;
    const Nearest::Cell& offer = nearest.cell.At(x + dx, y + dy);
    if (offer.x < 0) return;
    const float distance = std::hypot(static_cast<float>(offer.x - x), static_cast<float>(offer.y - y));
    if (distance >= nearest.distance.At(x, y)) return;
    nearest.distance.At(x, y) = distance;
    nearest.cell.At(x, y) = offer;
}

// One sweep over the rows in the direction of `dy`, each row in both directions.
void Sweep(Nearest& nearest, long dy)
{
    const long width = nearest.cell.Width();
    const long height = nearest.cell.Height();
    for (long i = 0; i < height; ++i) {
        const long y = dy > 0 ? i : height - 1 - i;
        for (long x = 0; x < width; ++x) {
            Ask(nearest, x, y, -1, 0);
            for (long dx = -1; dx <= 1; ++dx)
                Ask(nearest, x, y, dx, -dy);
        }
        for (long x = width - 1; x >= 0; --x)
            Ask(nearest, x, y, 1, 0);
    }
}

} // namespace

Nearest FindNearest(const Mask& chosen)
{
    constexpr float kNever = 1e9F;
    Nearest nearest{Grid<Nearest::Cell>(chosen.Width(), chosen.Height()),
                    Grid<float>(chosen.Width(), chosen.Height(), kNever)};
    for (long y = 0; y < chosen.Height(); ++y) {
        for (long x = 0; x < chosen.Width(); ++x) {
            if (chosen.At(x, y) == 0) continue;
            nearest.cell.At(x, y) = {x, y};
            nearest.distance.At(x, y) = 0;
        }
    }
    Sweep(nearest, 1);
    Sweep(nearest, -1);
    return nearest;
}

} // namespace vfil::keyauto
