/// \file
/// Frames of a stream to pictures, and back.

#include "host/video/framecopy.h"

#include "host/pixelrows.h"

#include <algorithm>
#include <cstring>

namespace vfil::host {

namespace {

Role RoleOf(Model model, int component)
{
    if (model != Model::Ycc || component == 3) return Role::Full;
    return component == 0 ? Role::Luma : Role::Chroma;
}

/// Samples of a component in a row of a picture.
long SamplesOf(const vfILFormatInfo& format, long width, int component)
{
    return format.subsampled && (component == 1 || component == 2) ? width / 2 : width;
}

int ComponentsOf(const vfILFormatInfo& format)
{
    if (format.subsampled) return format.alphaPlane ? 4 : 3;
    return format.channels;
}

/// A component of row \p row, counted from the top, of a picture or a const picture.
template <class Byte, class AnyPicture>
SampleLine<Byte> PictureLine(AnyPicture& picture, int component, long row)
{
    const vfILFormatInfo& format = picture.FormatInfo();
    const long y = picture.Height() - 1 - row;
    SampleLine<Byte> line;
    if (format.alphaPlane && component == 3) {
        line.first = picture.AlphaRow(y);
        return line;
    }
    constexpr std::array<int, 3> kPlace{0, 1, 3}; // of Y Cb Cr in Y0 Cb Y1 Cr
    line.wide = format.sampleBytes == 2;
    line.bits = format.sampleBytes * 8;
    const int place = format.subsampled
                          ? kPlace[static_cast<std::size_t>(component)] ^ int { format.chromaFirst }
                          : component * format.sampleBytes;
    line.first = picture.Row(y) + place;
    if (format.subsampled) {
        line.stepBytes = component == 0 ? 2 : 4;
    } else {
        line.stepBytes = format.pixelBytes;
    }
    return line;
}

SourceLine ToSource(const TargetLine& line)
{
    return {line.first, line.stepBytes, line.bits, line.shift, line.wide, line.swapped};
}

bool IsPlanar422(AVPixelFormat format)
{
    return format == AV_PIX_FMT_YUV422P || format == AV_PIX_FMT_YUVJ422P || format == AV_PIX_FMT_YUVA422P;
}

PlanarRow PlanarRowOf(const AVFrame& frame, int row)
{
    const auto at = [&](int plane) {
        return frame.data[plane] + std::ptrdiff_t{row} * frame.linesize[plane];
    };
    return {at(0), at(1), at(2)};
}

/// Whether rows of a frame are those of a picture, byte for byte.
bool IsSameRow(const PixelKind& kind, const vfILFormatInfo& format, const std::vector<SampleMap>& maps)
{
    constexpr std::array kPacked{AV_PIX_FMT_UYVY422, AV_PIX_FMT_YUYV422, AV_PIX_FMT_RGBA,
                                 AV_PIX_FMT_RGBA64,  AV_PIX_FMT_GRAY8,   AV_PIX_FMT_GRAY16};
    return std::ranges::find(kPacked, kind.format) != kPacked.end() &&
           KindOf(format)->format == kind.format && std::ranges::all_of(maps, &SampleMap::Identity);
}

std::uint8_t* PackedRow(const AVFrame& frame, int row)
{
    return frame.data[0] + std::ptrdiff_t{row} * frame.linesize[0];
}

bool SamplingDiffers(const PixelKind& kind, const vfILFormatInfo& format)
{
    const int shift = format.subsampled ? 1 : 0;
    return kind.model == Model::Ycc && (kind.chromaShiftX != shift || kind.chromaShiftY != 0);
}

/// The kind between the stream's and the picture's when chroma is resampled: the picture's sampling, planar.
PixelKind Between(const PixelKind& stream, const vfILFormatInfo& picture)
{
    return *KindOf(PlanarYcc(stream.Deep(), stream.alpha, picture.subsampled ? 1 : 0));
}

/// How component \p component of the stream's kind is coded, in a frame of the kind that is copied.
Coding CodingOf(const PixelKind& stream, const PixelKind& copied, int component, Range range)
{
    const Coding coding = StreamCoding(RoleOf(stream.model, component),
                                       stream.palette ? 8 : stream.descriptor->comp[component].depth, range);
    return copied.format != stream.format && stream.Deep() ? InHighBits(coding) : coding;
}

/// How a picture's component is coded.
Coding CodingOf(const vfILFormatInfo& format, int component)
{
    const Role role = RoleOf(format.ycc ? Model::Ycc : Model::Rgb, component);
    if (role == Role::Full) return StreamCoding(role, format.sampleBytes * 8, Range::Full);
    return PictureCoding(role, format.sampleBytes);
}

/// The component of a frame for one of a picture: gray serves all three colours. -1 for alpha that the
/// frame doesn't have.
int SourceOf(const PixelKind& kind, int component)
{
    if (component == 3 && !kind.alpha) return -1;
    if (kind.model != Model::Gray) return component;
    return component == 3 ? 1 : 0;
}

/// White has the code 0 in this one format.
Coding Reversed(const PixelKind& kind, const Coding& coding)
{
    return kind.format == AV_PIX_FMT_MONOWHITE ? Coding{coding.bits, coding.scale, -coding.scale} : coding;
}

} // namespace

bool IsWritable(const PixelKind& kind)
{
    constexpr std::uint64_t kPacked = AV_PIX_FMT_FLAG_BITSTREAM | AV_PIX_FMT_FLAG_PAL;
    const AVPixFmtDescriptor& descriptor = *kind.descriptor;
    if ((descriptor.flags & kPacked) != 0 || kind.depth < 8) return false;
    // The samples of a group of pixels that shares chroma fill the group's bytes in each plane, but for the
    // spare byte of RGB in four.
    std::array<int, 4> used{};
    std::array<int, 4> there{};
    for (int c = 0; c < descriptor.nb_components; ++c) {
        const AVComponentDescriptor& part = descriptor.comp[c];
        const auto plane = static_cast<std::size_t>(part.plane);
        const int samples = c == 1 || c == 2 ? 1 : 1 << kind.chromaShiftX;
        used[plane] += (part.shift + part.depth > 8 ? 2 : 1) * samples;
        there[plane] = part.step * samples;
    }
    const bool spare = kind.model == Model::Rgb && kind.depth == 8 && used[0] == 3 && there[0] == 4;
    return used == there || spare;
}

FrameToPicture::FrameToPicture(const PixelKind& from, const vfILFormatInfo& to, const CopyTerms& terms)
    : m_kind(from), m_format(&to), m_terms(terms)
{
    if (SamplingDiffers(from, to)) {
        m_kind = Between(from, to);
        m_resampler.emplace(from, m_kind, terms.width, terms.height, terms.fields, terms.siting);
        m_resampled = NewFrame(m_kind.format, terms.width, terms.height);
    }
    for (int c = 0; c < ComponentsOf(to); ++c) {
        const int source = SourceOf(from, c);
        const Coding picture = CodingOf(to, c);
        m_maps.emplace_back(
            source < 0 ? picture : Reversed(from, CodingOf(from, m_kind, source, terms.range)), picture);
    }
    m_sameRows = IsSameRow(m_kind, to, m_maps);
}

PicturePtr FrameToPicture::operator()(const AVFrame& frame)
{
    PicturePtr picture = Picture::Create(m_format->id, m_terms.width, m_terms.height);
    if (m_resampler) m_resampler->Run(frame, *m_resampled);
    CopyFrame(m_resampler ? *m_resampled : frame, *picture);
    return picture;
}

void FrameToPicture::CopyFrame(const AVFrame& frame, Picture& picture)
{
    for (int row = 0; row < m_terms.height; ++row) {
        if (m_sameRows) {
            std::memcpy(FileRow(picture, row), PackedRow(frame, row), picture.RowBytes());
        } else if (m_kind.palette) {
            CopyPaletteRow(frame, row, picture);
        } else {
            CopyRow(frame, row, picture);
        }
    }
}

void FrameToPicture::CopyRow(const AVFrame& frame, int row, Picture& picture)
{
    int first = 0;
    if (m_format->subsampled && IsPlanar422(m_kind.format)) {
        PackRow(PlanarRowOf(frame, row), FileRow(picture, row), m_terms.width / 2, m_format->chromaFirst,
                m_maps[0], m_maps[1]);
        first = 3;
    }
    for (int c = first; c < ComponentsOf(*m_format); ++c) {
        const auto target = PictureLine<std::uint8_t>(picture, c, row);
        const long count = SamplesOf(*m_format, m_terms.width, c);
        const int source = SourceOf(m_kind, c);
        if (source < 0) {
            FillLine(target, count, (1U << target.bits) - 1);
        } else if ((m_kind.descriptor->flags & AV_PIX_FMT_FLAG_BITSTREAM) != 0) {
            m_bits.resize(static_cast<std::size_t>(count));
            std::array<const std::uint8_t*, 4> planes{};
            std::copy_n(std::begin(frame.data), planes.size(), planes.begin());
            av_read_image_line(m_bits.data(), planes.data(), frame.linesize, m_kind.descriptor, 0, row,
                               source, static_cast<int>(count), 0);
            const int bits = m_kind.descriptor->comp[source].depth;
            CopyLine({reinterpret_cast<const std::uint8_t*>(m_bits.data()), 2, bits, 0, true, false}, target,
                     count, m_maps[static_cast<std::size_t>(c)]);
        } else {
            CopyLine(ToSource(LineOf(frame, m_kind, source, row)), target, count,
                     m_maps[static_cast<std::size_t>(c)]);
        }
    }
}

/// Palettes hold words of alpha, red, green and blue from the highest byte down.
void FrameToPicture::CopyPaletteRow(const AVFrame& frame, int row, Picture& picture) const
{
    const std::uint8_t* from = PackedRow(frame, row);
    std::uint8_t* to = FileRow(picture, row);
    for (long x = 0; x < m_terms.width; ++x) {
        std::uint32_t colour = 0;
        std::memcpy(&colour, frame.data[1] + std::ptrdiff_t{4} * from[x], sizeof colour);
        for (const int shift : {16, 8, 0, 24}) {
            *to++ = static_cast<std::uint8_t>(colour >> shift);
        }
    }
}

PictureToFrame::PictureToFrame(const vfILFormatInfo& from, const PixelKind& to, const CopyTerms& terms)
    : m_kind(to), m_format(&from), m_terms(terms), m_target(to.format)
{
    if (SamplingDiffers(to, from)) {
        m_kind = Between(to, from);
        m_resampler.emplace(m_kind, to, terms.width, terms.height, terms.fields, terms.siting);
        m_unsampled = NewFrame(m_kind.format, terms.width, terms.height);
    }
    const int components = std::min(ComponentsOf(from), int{to.descriptor->nb_components});
    for (int c = 0; c < components; ++c) {
        m_maps.emplace_back(CodingOf(from, c), CodingOf(to, m_kind, c, terms.range));
    }
    m_sameRows = IsSameRow(m_kind, from, m_maps);
}

AVFrame& PictureToFrame::operator()(const Picture& picture)
{
    // Encoders keep references to frames that they still need.
    if (!m_frame || av_frame_is_writable(m_frame.get()) == 0)
        m_frame = NewFrame(m_target, m_terms.width, m_terms.height);
    CopyPicture(picture, m_resampler ? *m_unsampled : *m_frame);
    if (m_resampler) m_resampler->Run(*m_unsampled, *m_frame);
    return *m_frame;
}

void PictureToFrame::CopyPicture(const Picture& picture, AVFrame& frame) const
{
    for (int row = 0; row < m_terms.height; ++row) {
        if (m_sameRows) {
            std::memcpy(PackedRow(frame, row), FileRow(picture, row), picture.RowBytes());
        } else {
            CopyRow(picture, frame, row);
        }
    }
}

void PictureToFrame::CopyRow(const Picture& picture, AVFrame& frame, int row) const
{
    int first = 0;
    if (m_format->subsampled && IsPlanar422(m_kind.format)) {
        UnpackRow(FileRow(picture, row), PlanarRowOf(frame, row), m_terms.width / 2, m_format->chromaFirst,
                  m_maps[0], m_maps[1]);
        first = 3;
    }
    for (int c = first; c < m_kind.descriptor->nb_components; ++c) {
        const TargetLine target = LineOf(frame, m_kind, c, row);
        const long count = SamplesOf(*m_format, m_terms.width, c);
        if (c < ComponentsOf(*m_format)) {
            CopyLine(PictureLine<const std::uint8_t>(picture, c, row), target, count,
                     m_maps[static_cast<std::size_t>(c)]);
        } else {
            FillLine(target, count, (1U << target.bits) - 1);
        }
    }
}

} // namespace vfil::host
