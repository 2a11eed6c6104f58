/// \file
/// What the tests of the keyers share: how pictures are connected, and parameters by chance.
#pragma once

#include "support/processors.h"

#include <vfil/keyer.h>

#include <cmath>

namespace vfil::test {

template <class Keyer>
void ConnectKeyer(Keyer& keyer, IPXImage& a, IPXImage& b, IPXImage& out)
{
    Connect(keyer, &a, &b, &out);
    keyer.SetDominantInput(&b);
}

inline double Real(std::mt19937& random, double low, double high)
{
    return std::uniform_real_distribution<double>(low, high)(random);
}

inline double Choose(std::mt19937& random, std::initializer_list<double> from)
{
    return *(from.begin() + random() % from.size());
}

/// Of whole bytes; now and then a green, or one with as much blue as green.
inline vfILColor AnyColor(std::mt19937& random)
{
    const auto component = [&] { return static_cast<double>(RandomIn(random, 0, 255)) / 255; };
    const double green = component();
    const double blue = random() % 4 == 0 ? green : component();
    return random() % 4 == 0 ? vfILColor(0, 1, 0, 1) : vfILColor(component(), green, blue, 1);
}

} // namespace vfil::test
