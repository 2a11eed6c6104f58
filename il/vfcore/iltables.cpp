/// \file
/// The tables of products and quotients, computed by the compiler.

#include <vfil/tables.h>

#include "il/rows/pixarith.h"

namespace {

template <class Rule>
constexpr vfILByteTable MakeTable(Rule rule)
{
    vfILByteTable table{};
    for (int a = 0; a < 256; ++a) {
        for (int b = 0; b < 256; ++b) {
            table[static_cast<unsigned>(a)][static_cast<unsigned>(b)] =
                rule(static_cast<std::uint8_t>(a), static_cast<std::uint8_t>(b));
        }
    }
    return table;
}

} // namespace

constinit const vfILByteTable ilNormMult = MakeTable(vfil::Arith<std::uint8_t>::Mult);
constinit const vfILByteTable ilInvNormMult = MakeTable(vfil::InvNormMult8);
constinit const vfILByteTable ilNormDiv = MakeTable(vfil::NormDiv8);
constinit const vfILByteTable ilHueTable = MakeTable(vfil::HueDiv8);
