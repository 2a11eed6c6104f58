/// \file
/// The plain forms of the box blur's kernels, and the table of their levels.
#include "il/rows/blur/boxrows.h"

namespace vfil {

namespace {

template <class Sum>
void PlainMove(const std::uint8_t* gained, const std::uint8_t* lost, Sum* columns, std::size_t samples)
{
    for (std::size_t i = 0; i < samples; ++i)
        columns[i] += Sum{gained[i]} - Sum{lost[i]};
}

template <std::size_t channels, class Sum>
void PlainBox(const Sum* columns, std::size_t width, const Sum* beyond, std::uint32_t scale,
              std::uint8_t* out, std::size_t pixels)
{
    const std::size_t reach = (width - 1) * channels;
    for (std::size_t c = 0; c < channels; ++c) {
        Sum sum = beyond[c];
        for (std::size_t i = c; i < reach; i += channels)
            sum += columns[i];
        for (std::size_t i = c; i < pixels * channels; i += channels) {
            sum += columns[i + reach];
            out[i] = static_cast<std::uint8_t>((std::uint64_t{sum} * scale + 0x80000000U) >> 32);
            sum -= columns[i];
        }
    }
}

const LevelTables<BoxRows>& Tables()
{
    static const LevelTables<BoxRows> tables(
        {.move = PlainMove<std::uint32_t>, .pixels = PlainBox<4>, .mono = PlainBox<1>}, VFIL_FILLS);
    return tables;
}

} // namespace

const BoxRows& BoxRowsAt(Level level)
{
    return Tables().At(level);
}

template <>
MoveColumns<std::uint32_t> FindMoveColumns(bool useVectors)
{
    return BoxRowsAt(useVectors ? BestLevel() : Level::Plain).move;
}

template <>
MoveColumns<std::uint64_t> FindMoveColumns(bool)
{
    return PlainMove<std::uint64_t>;
}

template <>
BoxRow<std::uint32_t> FindBoxRow(bool useVectors, int channels)
{
    const BoxRows& rows = BoxRowsAt(useVectors ? BestLevel() : Level::Plain);
    return channels == 4 ? rows.pixels : rows.mono;
}

template <>
BoxRow<std::uint64_t> FindBoxRow(bool, int channels)
{
    return channels == 4 ? PlainBox<4, std::uint64_t> : PlainBox<1, std::uint64_t>;
}

} // namespace vfil
