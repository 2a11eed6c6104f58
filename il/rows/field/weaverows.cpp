/// \file
/// The plain forms of the kernels that make rows of rows, and the table of their levels.
#include "il/rows/field/weaverows.h"

#include <cstring>

namespace vfil {

namespace {

void PlainWeave(const unsigned char* in, const unsigned char*, unsigned char* out, std::size_t bytes)
{
    if (bytes != 0) std::memcpy(out, in, bytes);
}

template <class Sample>
void PlainMerge(const Sample* below, const Sample* middle, const Sample* above, Sample* out,
                std::size_t samples)
{
    for (std::size_t i = 0; i < samples; ++i) {
        const int outer = (below[i] + above[i] + 1) >> 1;
        out[i] = static_cast<Sample>((middle[i] + outer + 1) >> 1);
    }
}

const WeaveRows& Rows(bool useVectors)
{
    return WeaveRowsAt(useVectors ? BestLevel() : Level::Plain);
}

} // namespace

const WeaveRows& WeaveRowsAt(Level level)
{
    static const LevelTables<WeaveRows> tables(
        {
            .weave = {PlainWeave, PlainWeave},
            .merge8 = {PlainMerge<std::uint8_t>, PlainMerge<std::uint8_t>},
            .merge16 = {PlainMerge<std::uint16_t>, PlainMerge<std::uint16_t>},
        },
        VFIL_FILLS);
    return tables.At(level);
}

WeaveRow FindWeaveRow(bool useVectors, bool streaming)
{
    return Rows(useVectors).weave[streaming];
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
