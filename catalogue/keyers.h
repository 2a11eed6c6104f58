/// \file
/// What the entries of the keyers share.
#pragma once

#include <catalogue/entry.h>

namespace vfil::catalogue {

/// A pure green screen: a guess, but one that shows something.
inline Value Green()
{
    return {0, 1, 0, 1};
}

/// How wide a sector of hues opens, in degrees, unless a user says so.
inline constexpr double kSectorTolerance = 120;

/// Sets up a keyer by hue, for a green screen: what keeps people who pick one by name from getting their
/// picture back as it was.
template <auto setTolerance, auto setLiftAndGain, class Keyer>
void ExpectSectorKey(Keyer& keyer)
{
    keyer.SetKeyColor({0, 1, 0, 1}); // Green()
    (keyer.*setTolerance)(kSectorTolerance);
    (keyer.*setLiftAndGain)(0, 1);
}

/// The colour to remove, of vfILKeyerBase.
Parameter KeyColor(const Value& fallback);

/// The part that is keyed, of those that heed it.
Parameter CropBox();

} // namespace vfil::catalogue
