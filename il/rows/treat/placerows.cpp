/// \file
/// The plain forms of the kernels of places along a vector and around a point, and the table of their levels.
#include "il/rows/treat/placerows.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace vfil {

namespace {

std::int32_t IndexAt(const LinearPlaces& places, std::size_t pixel)
{
    const double distance = places.start + static_cast<double>(pixel) * places.step;
    double index = std::nearbyint(distance * places.inverse);
    if (distance < index * places.length) index -= 1;
    return static_cast<std::int32_t>(std::clamp(index, 0.0, places.last));
}

std::int32_t IndexAt(const RadialPlaces& places, std::size_t pixel)
{
    const double x = places.x + static_cast<double>(pixel);
    return static_cast<std::int32_t>(std::min(std::sqrt(x * x + places.square), places.last));
}

template <class Entry, class Places>
void PlainPlaces(const Places& places, const void* table, void* out, std::size_t pixels)
{
    for (std::size_t i = 0; i < pixels; ++i)
        static_cast<Entry*>(out)[i] = static_cast<const Entry*>(table)[IndexAt(places, i)];
}

template <class Entry, std::size_t size>
void SetPlaces(PlaceRows& rows)
{
    for (const bool streaming : {false, true}) {
        rows.linear[size][streaming] = PlainPlaces<Entry, LinearPlaces>;
        rows.radial[size][streaming] = PlainPlaces<Entry, RadialPlaces>;
    }
}

PlaceRows PlainRows()
{
    PlaceRows rows{};
    SetPlaces<std::uint8_t, 0>(rows);
    SetPlaces<std::uint16_t, 1>(rows);
    SetPlaces<std::uint32_t, 2>(rows);
    SetPlaces<std::uint64_t, 3>(rows);
    return rows;
}

const PlaceRows& Rows(bool useVectors)
{
    return PlaceRowsAt(useVectors ? BestLevel() : Level::Plain);
}

} // namespace

const PlaceRows& PlaceRowsAt(Level level)
{
    static const LevelTables<PlaceRows> tables(PlainRows(), VFIL_FILLS);
    return tables.At(level);
}

PlaceRow<LinearPlaces> FindLinearRow(bool useVectors, bool streaming, std::size_t entryBytes)
{
    return Rows(useVectors).linear[std::countr_zero(entryBytes)][streaming];
}

PlaceRow<RadialPlaces> FindRadialRow(bool useVectors, bool streaming, std::size_t entryBytes)
{
    return Rows(useVectors).radial[std::countr_zero(entryBytes)][streaming];
}

std::int32_t IndexOf(const LinearPlaces& places)
{
    return IndexAt(places, 0);
}

std::int32_t IndexOf(const RadialPlaces& places)
{
    return IndexAt(places, 0);
}

} // namespace vfil
