/// \file
/// The parameters that the frame of two inputs gives: where B lies, and which of the two dominates.
#pragma once

#include <catalogue/entry.h>

namespace vfil::catalogue {

inline constexpr double kDominantA = 0;
inline constexpr double kDominantB = 1;

Parameter InputOffset(const char* summary);

/// \param fallback  kDominantA, or kDominantB for a class that is DominatedByB.
/// \param a, b      What the inputs are.
Parameter DominantInput(double fallback, const char* summary, const char* a, const char* b);

} // namespace vfil::catalogue
