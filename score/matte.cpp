/// \file
/// Channels of pictures as coverage.
#include "score/matte.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace vfil::score {

using host::Picture;

namespace {

// Where one sample a pixel stands in a row.
struct Samples {
    const std::uint8_t* row;
    int bytes; // of a sample
    int pixel; // bytes from pixel to pixel
    int first; // byte at which the first sample begins

    // 0 .. 65535
    long At(long x) const
    {
        const std::uint8_t* at = row + x * pixel + first;
        if (bytes == 1) return *at * 257L;
        std::uint16_t word = 0;
        std::memcpy(&word, at, sizeof word);
        return word;
    }
};

// Black and white of studio range are the bytes 16 and 235, at any depth times 257.
std::uint16_t Stretched(long luma)
{
    constexpr long range = 219 * 257;
    const long above = std::clamp(luma - 16 * 257, 0L, range);
    return static_cast<std::uint16_t>((above * kSolid + range / 2) / range);
}

void ReadAlpha(const Picture& picture, long y, std::uint16_t* to)
{
    const vfILFormatInfo& info = picture.FormatInfo();
    const Samples alpha =
        info.alphaPlane ? Samples{picture.AlphaRow(y), 1, 1, 0}
                        : Samples{picture.Row(y), info.sampleBytes, info.pixelBytes, 3 * info.sampleBytes};
    for (long x = 0; x < picture.Width(); ++x)
        to[x] = static_cast<std::uint16_t>(alpha.At(x));
}

void ReadLuma(const Picture& picture, bool studio, long y, std::uint16_t* to)
{
    const vfILFormatInfo& info = picture.FormatInfo();
    const int bytes = info.sampleBytes;
    const int pixel = info.subsampled ? 2 : info.pixelBytes;
    const auto channel = [&](int index) { return Samples{picture.Row(y), bytes, pixel, index * bytes}; };
    const Samples first = channel(info.chromaFirst || info.alphaPlane ? 1 : 0);
    const Samples red = channel(info.blueFirst ? 2 : 0);
    const Samples green = channel(1);
    const Samples blue = channel(info.blueFirst ? 0 : 2);
    for (long x = 0; x < picture.Width(); ++x) {
        if (studio)
            to[x] = Stretched(first.At(x));
        else if (info.model == PXColorModel_MONO)
            to[x] = static_cast<std::uint16_t>(first.At(x));
        else
            to[x] = static_cast<std::uint16_t>(
                (2126 * red.At(x) + 7152 * green.At(x) + 722 * blue.At(x) + 5000) / 10000);
    }
}

} // namespace

bool HoldsMatte(const vfILGuid& format)
{
    const vfILFormatInfo* info = vfILFindFormat(format);
    return info && info->model != PXColorModel_HLS && info->model != PXColorModel_UNKNOWN;
}

Matte MatteOf(const Picture& picture, Channel channel, host::Range greyRange)
{
    if (!HoldsMatte(picture.Format())) throw std::invalid_argument("the format holds no matte");
    Matte matte{.width = picture.Width(), .height = picture.Height(), .coverage = {}};
    matte.coverage.assign(static_cast<std::size_t>(matte.width) * static_cast<std::size_t>(matte.height),
                          kSolid);
    const auto fill = [&](auto read) {
        std::uint16_t* to = matte.coverage.data();
        for (long y = matte.height; y-- > 0; to += matte.width)
            read(y, to);
    };
    const auto isSolid = [](std::uint16_t coverage) { return coverage == kSolid; };
    const vfILFormatInfo& info = picture.FormatInfo();
    if (channel != Channel::Luma && info.alpha)
        fill([&](long y, std::uint16_t* to) { ReadAlpha(picture, y, to); });
    matte.channel = channel;
    if (channel == Channel::Any) {
        const bool opaque = std::all_of(matte.coverage.begin(), matte.coverage.end(), isSolid);
        matte.channel = opaque ? Channel::Luma : Channel::Alpha;
    }
    if (matte.channel == Channel::Luma) {
        const bool studio = info.ycc || (info.model == PXColorModel_MONO && greyRange == host::Range::Studio);
        fill([&](long y, std::uint16_t* to) { ReadLuma(picture, studio, y, to); });
    }
    return matte;
}

} // namespace vfil::score
