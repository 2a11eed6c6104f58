/// \file
/// The plain forms of the kernels of rank filters and morphology, and the table of their levels.
#include "il/rows/rank/rankrows.h"

#include "il/rows/pixarith.h"
#include "il/rows/rank/findmedian.h"

#include <algorithm>
#include <cstring>

namespace vfil {

namespace {

template <class Sample, bool largest>
void PlainExtreme(const Sample* const* rows, std::size_t count, Sample* out, std::size_t samples)
{
    for (std::size_t i = 0; i < samples; ++i) {
        Sample extreme = rows[0][i];
        for (std::size_t row = 1; row < count; ++row)
            extreme = largest ? std::max(extreme, rows[row][i]) : std::min(extreme, rows[row][i]);
        out[i] = extreme;
    }
}

template <class Sample, bool largest>
void PlainWindows(const Sample* const* rows, std::size_t height, Sample* const* outs, std::size_t samples)
{
    for (std::size_t window = 0; window < kWindowsAtOnce; ++window)
        PlainExtreme<Sample, largest>(rows + window, height, outs[window], samples);
}

void PlainPick(const KeyedPixels* rows, std::size_t count, std::uint32_t* keys, std::uint8_t* pixels,
               std::size_t words)
{
    for (std::size_t i = 0; i < words; ++i) {
        std::size_t best = 0;
        for (std::size_t row = 1; row < count; ++row)
            if (rows[row].keys[i] > rows[best].keys[i]) best = row;
        keys[i] = rows[best].keys[i];
        std::memcpy(pixels + 4 * i, rows[best].pixels + 4 * i, 4);
    }
}

template <class Sample>
void PlainKeys(const Sample* pixels, Sample* keys, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i)
        keys[i] = static_cast<Sample>(
            Arith<Sample>::Brightness(pixels[4 * i], pixels[4 * i + 1], pixels[4 * i + 2]));
}

template <class Sample>
void PlainMiddle(const Sample* const* keys, std::size_t count, Sample* chosen, std::size_t pixels)
{
    RankedPlace<Sample> list[kMostMiddleRows];
    for (std::size_t i = 0; i < pixels; ++i) {
        for (std::size_t row = 0; row < count; ++row)
            list[row] = {keys[row][i], row};
        chosen[i] = static_cast<Sample>(FindMedian(list, count));
    }
}

template <class Sample>
constexpr RankCases<Sample> kPlain{
    .extreme = {{PlainExtreme<Sample, false>, PlainExtreme<Sample, false>},
                {PlainExtreme<Sample, true>, PlainExtreme<Sample, true>}},
    .windows = {PlainWindows<Sample, false>, PlainWindows<Sample, true>},
    .key = PlainKeys<Sample>,
    .middle = PlainMiddle<Sample>,
};

const RankRows& Rows(bool useVectors)
{
    return RankRowsAt(useVectors ? BestLevel() : Level::Plain);
}

} // namespace

const RankRows& RankRowsAt(Level level)
{
    static const LevelTables<RankRows> tables(
        {.cases8 = kPlain<std::uint8_t>, .cases16 = kPlain<std::uint16_t>, .pick = PlainPick}, VFIL_FILLS);
    return tables.At(level);
}

template <>
const RankCases<std::uint8_t>& FindRankCases(bool useVectors)
{
    return Rows(useVectors).cases8;
}

template <>
const RankCases<std::uint16_t>& FindRankCases(bool useVectors)
{
    return Rows(useVectors).cases16;
}

PickRow FindPickRow(bool useVectors)
{
    return Rows(useVectors).pick;
}

} // namespace vfil
