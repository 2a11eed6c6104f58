/// \file
/// The vector forms of the kernels that melt fields, for the level VFIL_LEVEL.
#include "il/rows/field/mergeparams.h"
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

/// A part of a row, with zeros behind it.
inline U8 LoadPart(const std::uint8_t* row, Part part)
{
    if (part.bytes == kBytes) return Load(row + part.at);
    std::uint8_t bytes[kBytes] = {};
    std::memcpy(bytes, row + part.at, part.bytes);
    return Load(bytes);
}

template <bool streaming, class Sample>
void Merge(const Sample* below, const Sample* middle, const Sample* above, Sample* out, std::size_t samples)
{
    const auto* third = reinterpret_cast<const std::uint8_t*>(above);
    MapRow<streaming, sizeof(Sample)>(below, middle, out, samples * sizeof(Sample),
                                      [third](U8 lower, U8 own, Part part) {
                                          const U8 outer = Mean(lower, LoadPart(third, part), Sample{});
                                          return Mean(own, outer, Sample{});
                                      });
}

template <bool streaming>
void FillStreaming(MergeRows& rows)
{
    rows.merge8[streaming] = Merge<streaming, std::uint8_t>;
    rows.merge16[streaming] = Merge<streaming, std::uint16_t>;
}

} // namespace

namespace VFIL_LEVEL {

void Fill(MergeRows& rows)
{
    FillStreaming<false>(rows);
    FillStreaming<true>(rows);
}

} // namespace VFIL_LEVEL
} // namespace vfil
