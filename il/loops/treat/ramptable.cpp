/// \file
/// The colours of a ramp.

#include "il/loops/treat/ramptable.h"

#include <algorithm>

namespace vfil {

namespace {

/// 0 for NaN.
double Limited(double component)
{
    return component > 0 ? std::min(component, 1.0) : 0.0;
}

template <class Sample, std::size_t channels>
void Fill2Colors(const RampColour& first, const RampColour& last, std::size_t pixels, RampStores stores,
                 Sample* out)
{
    FindRampRow<Sample>(stores.useVectors, stores.streaming)(SpanOf(first, last, pixels, channels), out);
}

template <class Sample, std::size_t channels>
void FillMultiColors(const RampStop* stops, std::size_t count, std::size_t pixels, RampStores stores,
                     Sample* out)
{
    const auto place = [&](const RampStop& stop) {
        return pixels * static_cast<std::size_t>(stop.weight) / 100;
    };
    const auto fill = [&](const RampStop& a, const RampStop& b, std::size_t from, std::size_t to) {
        Fill2Colors<Sample, channels>(a.colour, b.colour, to - from, stores, out + from * channels);
    };
    const RampStop& last = stops[count - 1];
    fill(stops[0], stops[0], 0, place(stops[0]));
    for (std::size_t i = 1; i < count; ++i)
        fill(stops[i - 1], stops[i], place(stops[i - 1]), place(stops[i]));
    fill(last, last, place(last), pixels);
}

} // namespace

RampColour::RampColour(const vfILColor& color)
    : channels{Limited(color.GetRed()), Limited(color.GetGreen()), Limited(color.GetBlue()),
               Limited(color.GetAlpha())}
{}

RampSpan SpanOf(const RampColour& first, const RampColour& last, std::size_t pixels, std::size_t channels)
{
    RampSpan span{};
    for (std::size_t c = 0; c < channels; ++c) {
        span.first[c] = first.channels[c];
        span.difference[c] = last.channels[c] - first.channels[c];
    }
    span.inverse = pixels > 1 ? 1.0 / static_cast<double>(pixels - 1) : 0.0;
    span.pixels = pixels;
    span.channels = channels;
    return span;
}

RampColour Between(const RampColour& first, const RampColour& last, long place, long places)
{
    const double inverse = places > 0 ? 1.0 / static_cast<double>(places) : 0.0;
    RampColour between;
    for (std::size_t c = 0; c < 4; ++c) {
        const double difference = last.channels[c] - first.channels[c];
        between.channels[c] = static_cast<double>(place) * difference * inverse + first.channels[c];
    }
    return between;
}

template <class Sample>
void Fill2ColorsRGBA(const RampColour& first, const RampColour& last, std::size_t pixels, RampStores stores,
                     Sample* out)
{
    Fill2Colors<Sample, 4>(first, last, pixels, stores, out);
}

template <class Sample>
void Fill2ColorsMONO(const RampColour& first, const RampColour& last, std::size_t pixels, RampStores stores,
                     Sample* out)
{
    Fill2Colors<Sample, 1>(first, last, pixels, stores, out);
}

template <class Sample>
void FillMultiColorsRGBA(const RampStop* stops, std::size_t count, std::size_t pixels, RampStores stores,
                         Sample* out)
{
    FillMultiColors<Sample, 4>(stops, count, pixels, stores, out);
}

template <class Sample>
void FillMultiColorsMONO(const RampStop* stops, std::size_t count, std::size_t pixels, RampStores stores,
                         Sample* out)
{
    FillMultiColors<Sample, 1>(stops, count, pixels, stores, out);
}

template void Fill2ColorsRGBA(const RampColour&, const RampColour&, std::size_t, RampStores, std::uint8_t*);
template void Fill2ColorsRGBA(const RampColour&, const RampColour&, std::size_t, RampStores, std::uint16_t*);
template void Fill2ColorsMONO(const RampColour&, const RampColour&, std::size_t, RampStores, std::uint8_t*);
template void Fill2ColorsMONO(const RampColour&, const RampColour&, std::size_t, RampStores, std::uint16_t*);
template void FillMultiColorsRGBA(const RampStop*, std::size_t, std::size_t, RampStores, std::uint8_t*);
template void FillMultiColorsRGBA(const RampStop*, std::size_t, std::size_t, RampStores, std::uint16_t*);
template void FillMultiColorsMONO(const RampStop*, std::size_t, std::size_t, RampStores, std::uint8_t*);
template void FillMultiColorsMONO(const RampStop*, std::size_t, std::size_t, RampStores, std::uint16_t*);

} // namespace vfil
