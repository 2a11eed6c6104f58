/// \file
/// The vector forms of the kernels that fill missing rows, for the level VFIL_LEVEL.
#include "il/rows/field/deinterlaceparams.h"
#include "il/rows/vec.h"

namespace vfil {
namespace {

inline U8 Mean(U8 a, U8 b, std::uint8_t)
{
    return Average(a, b);
}

inline U8 Mean(U8 a, U8 b, std::uint16_t)
{
    return {Average(U16{a.bits}, U16{b.bits}).bits};
}

template <bool streaming, class Sample>
void Interpolate_Intrinsics(const Sample* a, const Sample* b, Sample* out, std::size_t samples)
{
    MapRow<streaming, sizeof(Sample)>(a, b, out, samples * sizeof(Sample),
                                      [](U8 one, U8 other, Part) { return Mean(one, other, Sample{}); });
}

template <bool streaming>
void FillStreaming(DeinterlaceRows& rows)
{
    rows.mean8[streaming] = Interpolate_Intrinsics<streaming, std::uint8_t>;
    rows.mean16[streaming] = Interpolate_Intrinsics<streaming, std::uint16_t>;
}

} // namespace

namespace VFIL_LEVEL {

void Fill(DeinterlaceRows& rows)
{
    FillStreaming<false>(rows);
    FillStreaming<true>(rows);
}

} // namespace VFIL_LEVEL
} // namespace vfil
