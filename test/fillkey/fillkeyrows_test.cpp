/// \file
/// The vector forms of the fill and key kernels against the plain ones.
#include "il/rows/fillkey/fillkeyrows.h"

#include "support/rowcheck.h"

namespace vfil {
namespace {

TEST(FillKeyRows, VectorFormsAreThePlainForms)
{
    using Byte = std::uint8_t;
    const auto check = [](const char* name, Shape shape, FillKeyRow(FillKeyRows::*member)[2][2]) {
        for (const bool chromaFirst : {false, true})
            CheckShapedRow<Byte, Byte>(
                name, shape, Level::Sse2, [=](Level level) -> auto& {
                    return (FillKeyRowsAt(level).*member)[chromaFirst];
                });
    };
    check("colour", {2, 2, false}, &FillKeyRows::colour);
    check("alpha to key", {1, 2}, &FillKeyRows::alphaToKey);
    check("key to alpha", {2, 1}, &FillKeyRows::keyToAlpha);
}

} // namespace
} // namespace vfil
