/// \file
/// The screen of a plate: which colour it has and where it surely is.
#pragma once

#include "keyauto/grid.h"

#include <optional>

namespace vfil::keyauto {

/// Shares of red and blue in the light of a colour, which are the same in light and in shade.
struct Hue {
    float red = 0;
    float blue = 0;
};

inline Hue HueOf(const Light& c)
{
    const float sum = c.Sum() + 1e-6F;
    return {c.r / sum, c.b / sum};
}

/// A screen: green or blue cloth or paint behind a subject, lit as well as it went.
struct Screen {
    bool blue = false;
    Light colour;    ///< the usual one: the median
    Hue hue;         ///< its hue ...
    float reach = 0; ///< ... and how far hues of the screen are from it at most
    float share = 0; ///< of the plate
    Mask mask;       ///< the cells whose hue is the screen's

    /// The channel that the screen sends most of.
    float Key(const Light& c) const { return blue ? c.b : c.g; }
    /// How much more there is of it than of the stronger of the others.
    float Excess(const Light& c) const
    {
        const float other = blue ? c.g : c.b;
        return Key(c) - (other > c.r ? other : c.r);
    }
};

/// The screen of a plate, from the histogram of its hues, or nothing.
std::optional<Screen> FindScreen(const Grid<Light>& plate);

} // namespace vfil::keyauto
