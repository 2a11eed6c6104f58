/// \file
/// The pictures themselves: noise for the operators that do the same work on any bytes, and a photograph for
/// the filters, some of which do not.
#include "frames.h"

#include <vfil/convert.h>
#include <vfil/host/picturefile.h>

#include <algorithm>
#include <random>

namespace bench {

namespace {

using vfil::host::Picture;

constexpr std::size_t kFrames = 6;

/// The formats of conversions beside RGBA.
constexpr GUID kConverted[] = {PXFormat_YUV422_601, PXFormat_YUV422_709, PXFormat_YCC422_601,
                               PXFormat_RGB24,      PXFormat_BGRA32,     PXFormat_YCCA32,
                               PXFormat_YCCA64,     PXFormat_HLSA32,     PXFormat_YCCA422_601};

/// Where pixel i of a row of mirrored copies comes from.
std::size_t Mirrored(std::size_t i, std::size_t count)
{
    const std::size_t place = i % (2 * count);
    return place < count ? place : 2 * count - 1 - place;
}

/// A bundled picture, set side by side in mirrored copies up to the size of the frames.
PicturePtr Tiled(const std::string& name, const GUID& format)
{
    const PicturePtr file = vfil::host::ReadPicture(VFIL_MEDIA "/" + name, {format});
    PicturePtr photo = Picture::Create(format, kWidth, kHeight);
    const auto pixelBytes = static_cast<std::size_t>(file->PixelBytes());
    const auto width = static_cast<std::size_t>(file->Width());
    const auto height = static_cast<std::size_t>(file->Height());
    std::uint8_t* out = photo->Pixels();
    for (std::size_t y = 0; y < kHeight; ++y) {
        const std::uint8_t* row = file->Pixels() + Mirrored(y, height) * file->RowBytes();
        for (std::size_t x = 0; x < kWidth; ++x, out += pixelBytes)
            std::copy_n(row + Mirrored(x, width) * pixelBytes, pixelBytes, out);
    }
    return photo;
}

/// The first planes of G, B, R and A, one below the other.
PicturePtr Planes(const Picture& rgba, std::size_t count)
{
    constexpr std::size_t kChannels[] = {1, 2, 0, 3};
    PicturePtr planes = Picture::Create(PXFormat_Mono8, kWidth, static_cast<long>(kHeight * count));
    for (std::size_t i = 0; i < kPixels * count; ++i)
        planes->Pixels()[i] = rgba.Pixels()[i % kPixels * 4 + kChannels[i / kPixels]];
    return planes;
}

PicturePtr InVideo(Picture& rgba)
{
    PicturePtr video = Picture::Create(PXFormat_YCC422_601, kWidth, kHeight);
    vfILRGBA2YCCA converter;
    converter.SetInputImg(&rgba);
    converter.SetOutputImg(video.Get());
    Execute(converter);
    return video;
}

/// White, yellow, cyan, green, magenta, red, blue and black.
PicturePtr Bars()
{
    PicturePtr bars = Picture::Create(PXFormat_RGBA32, kWidth, kHeight);
    for (std::size_t i = 0; i < 4 * kPixels; ++i) {
        constexpr std::size_t kBits[] = {1, 2, 0, 0}; // the bit of a bar's number that takes the channel out
        const std::size_t bar = i / 4 % kWidth * 8 / kWidth;
        bars->Pixels()[i] = i % 4 == 3 || (bar >> kBits[i % 4] & 1) == 0 ? 255 : 0;
    }
    return InVideo(*bars);
}

PicturePtr Copy(const Picture& picture)
{
    PicturePtr copy = Picture::Create(picture.Format(), picture.Width(), picture.Height());
    std::copy_n(picture.Pixels(), picture.Bytes(), copy->Pixels());
    return copy;
}

} // namespace

Picture& Frame::Find(const std::vector<PicturePtr>& pictures, const GUID& format)
{
    return **std::find_if(pictures.begin(), pictures.end(),
                          [&](const PicturePtr& picture) { return picture->Format() == format; });
}

Frames& Frames::Get()
{
    static Frames frames;
    return frames;
}

Frames::Frames()
{
    std::mt19937 random(1);
    const auto picture = [&](const GUID& format) {
        PicturePtr made = Picture::Create(format, kWidth, kHeight);
        std::generate_n(reinterpret_cast<std::uint32_t*>(made->Pixels()), made->Bytes() / 4,
                        std::ref(random));
        return made;
    };
    const PicturePtr photo = Tiled("cat-fur-rgb8.png", PXFormat_RGBA32);
    const PicturePtr photo16 = Tiled("cat-fur-rgb8.png", PXFormat_RGBA64);
    const PicturePtr plate = Tiled("greenscreen-cup-plate.png", PXFormat_RGBA32);
    const PicturePtr videoPlate = InVideo(*plate);
    const PicturePtr videoBars = Bars();
    const PicturePtr gray = Planes(*photo, 1);
    const PicturePtr planes = Planes(*photo, 4);
    for (std::size_t i = 0; i < kFrames; ++i) {
        Frame frame{picture(PXFormat_RGBA32),
                    picture(PXFormat_RGBA32),
                    picture(PXFormat_RGBA32),
                    picture(PXFormat_Mono8),
                    picture(PXFormat_RGBA64),
                    picture(PXFormat_RGBA64),
                    picture(PXFormat_RGBA64),
                    {},
                    {},
                    {Copy(*photo), Copy(*photo16), Copy(*gray)},
                    Copy(*planes),
                    Copy(*plate),
                    Copy(*videoPlate),
                    Copy(*videoBars)};
        frame.inputs = {frame.back, frame.back16};
        frame.outputs = {frame.out, frame.out16, picture(PXFormat_Mono8)};
        for (const GUID& format : kConverted) {
            frame.inputs.push_back(picture(format));
            frame.outputs.push_back(picture(format));
        }
        m_frames.push_back(frame);
    }
}

const Frame& Frames::Next()
{
    m_next = (m_next + 1) % m_frames.size();
    return m_frames[m_next];
}

} // namespace bench
