/// \file
/// The plain forms of the kernels that melt fields, and the table of their levels.
#include "il/rows/field/mergerows.h"

namespace vfil {

namespace {

template <class Sample>
void PlainMerge(const Sample* below, const Sample* middle, const Sample* above, Sample* out,
                std::size_t samples)
{
    for (std::size_t i = 0; i < samples; ++i) {
        const int outer = (below[i] + above[i] + 1) >> 1;
        out[i] = static_cast<Sample>((middle[i] + outer + 1) >> 1);
    }
}

const MergeRows& Rows(bool useVectors)
{
    return MergeRowsAt(useVectors ? BestLevel() : Level::Plain);
}

} // namespace

const MergeRows& MergeRowsAt(Level level)
{
    static const LevelTables<MergeRows> tables(
        {
            .merge8 = {PlainMerge<std::uint8_t>, PlainMerge<std::uint8_t>},
            .merge16 = {PlainMerge<std::uint16_t>, PlainMerge<std::uint16_t>},
        },
        VFIL_FILLS);
    return tables.At(level);
}

template <>
MergeRow<std::uint8_t> FindMergeRow(bool useVectors, bool streaming)
{
    return Rows(useVectors).merge8[streaming];
}

template <>
MergeRow<std::uint16_t> FindMergeRow(bool useVectors, bool streaming)
{
    return Rows(useVectors).merge16[streaming];
}

} // namespace vfil
