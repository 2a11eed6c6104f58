/// \file
/// Clips, written frame by frame.

#include "host/filecodec.h"
#include "host/video/encoderchoice.h"
#include "host/video/otherstreams.h"

extern "C" {
#include <libavutil/opt.h>
}

#include <algorithm>
#include <string_view>

namespace vfil::host {

namespace fs = std::filesystem;

namespace {

/// The colour of what is written, in the libraries' codes.
struct Colour {
    AVColorSpace matrix = AVCOL_SPC_UNSPECIFIED;
    AVColorPrimaries primaries = AVCOL_PRI_UNSPECIFIED;
    AVColorTransferCharacteristic transfer = AVCOL_TRC_UNSPECIFIED;
    AVColorRange range = AVCOL_RANGE_UNSPECIFIED;
};

/// 576 lines, and 288, have the primaries of their own that BT.601 gives to systems of 625 lines.
AVColorPrimaries CustomaryPrimaries(Matrix matrix, long height)
{
    if (matrix == Matrix::Bt709) return AVCOL_PRI_BT709;
    return height == 576 || height == 288 ? AVCOL_PRI_BT470BG : AVCOL_PRI_SMPTE170M;
}

Matrix MatrixOfFrames(const VideoSettings& settings)
{
    const vfILFormatInfo& format = *vfILFindFormat(settings.format);
    if (!format.ycc) return settings.matrix;
    return format.model == PXColorModel_YCC ? Matrix::Bt601 : Matrix::Bt709;
}

Colour ColourOf(const VideoSettings& settings, const PixelKind& kind, const ClipInput* like)
{
    const Matrix matrix = MatrixOfFrames(settings);
    if (kind.model == Model::Rgb) return {AVCOL_SPC_RGB, {}, {}, AVCOL_RANGE_JPEG};
    Colour colour{ToLibav(matrix), CustomaryPrimaries(matrix, settings.height),
                  matrix == Matrix::Bt601 ? AVCOL_TRC_SMPTE170M : AVCOL_TRC_BT709,
                  ToLibav(kind.fullRange ? Range::Full : settings.range)};
    // The same matrix goes by several names, and with several primaries.
    if (like != nullptr && MatrixOf(like->Parameters().color_space) == matrix) {
        const AVCodecParameters& parameters = like->Parameters();
        colour.matrix = parameters.color_space;
        if (parameters.color_primaries != AVCOL_PRI_UNSPECIFIED)
            colour.primaries = parameters.color_primaries;
        if (parameters.color_trc != AVCOL_TRC_UNSPECIFIED) colour.transfer = parameters.color_trc;
    }
    return colour;
}

/// What of a clip's description its container and codec have a place for.
struct Carried {
    bool matrix;
    bool range;
    bool fields;
    bool tags;
};

Carried CarriedBy(const AVOutputFormat& container, AVCodecID codec)
{
    const auto is = [name = std::string_view(container.name)](auto... names) {
        return ((name == names) || ...);
    };
    const auto codecIs = [codec](auto... ids) { return ((codec == ids) || ...); };
    const bool stated = codecIs(AV_CODEC_ID_H264, AV_CODEC_ID_HEVC, AV_CODEC_ID_VP9, AV_CODEC_ID_AV1);
    const bool tags = is("nut");
    return {tags || stated || codecIs(AV_CODEC_ID_MPEG2VIDEO, AV_CODEC_ID_PRORES) ||
                is("mov", "mp4", "matroska", "webm"),
            tags || stated || codecIs(AV_CODEC_ID_MJPEG) || is("mp4", "matroska", "webm", "yuv4mpegpipe"),
            tags || CodecKnowsFields(codec) || is("mov", "matroska", "yuv4mpegpipe"), tags};
}

/// Rate control of codecs that lose something, unless the user says otherwise: as good as makes no difference
/// to the next step of a production.
void SetQuality(AVCodecContext& encoder, const VideoSettings& settings)
{
    constexpr std::array<std::string_view, 5> kRateOptions{"b", "crf", "qp", "global_quality", "qmax"};
    for (const auto& [name, value] : settings.codecOptions) {
        if (std::ranges::find(kRateOptions, name) != kRateOptions.end()) return;
    }
    const AVCodecID codec = encoder.codec_id;
    if (codec == AV_CODEC_ID_MPEG1VIDEO || codec == AV_CODEC_ID_MPEG2VIDEO || codec == AV_CODEC_ID_MPEG4 ||
        codec == AV_CODEC_ID_MJPEG) {
        encoder.flags |= AV_CODEC_FLAG_QSCALE;
        encoder.global_quality = 2 * FF_QP2LAMBDA;
    }
    if (std::string_view(encoder.codec->name).starts_with("libx264"))
        av_opt_set(encoder.priv_data, "crf", "16", 0);
}

/// The name of a codec for users.
std::string CodecName(const AVCodec& codec)
{
    return codec.id == AV_CODEC_ID_WRAPPED_AVFRAME ? "rawvideo" : codec.name;
}

bool CodesFieldsApart(AVCodecID codec)
{
    constexpr std::array kCodecs{AV_CODEC_ID_MPEG2VIDEO, AV_CODEC_ID_MPEG4, AV_CODEC_ID_H264,
                                 AV_CODEC_ID_PRORES, AV_CODEC_ID_DNXHD};
    return std::ranges::find(kCodecs, codec) != kCodecs.end();
}

CopyTerms TermsOf(const VideoSettings& settings, const PixelKind& kind)
{
    return {settings.width, settings.height, kind.fullRange ? Range::Full : settings.range,
            settings.fieldOrder, AVCHROMA_LOC_LEFT};
}

void CheckSettings(const fs::path& path, const VideoSettings& settings)
{
    const vfILFormatInfo* format = vfILFindFormat(settings.format);
    if (format == nullptr) throw FileError(path, "frames of an unknown format");
    if (settings.width <= 0 || settings.height <= 0 || settings.rate.numerator <= 0 ||
        settings.rate.denominator <= 0)
        throw FileError(path, "a clip needs frames of some size at some rate");
    CheckSize(path, static_cast<std::uint64_t>(settings.width), static_cast<std::uint64_t>(settings.height),
              settings.format);
    if (format->subsampled && settings.width % 2 != 0) {
        throw FileError(path, "a width of " + std::to_string(settings.width) +
                                  " is odd, 4:2:2 needs an even one; choose a region of an even width");
    }
}

} // namespace

class VideoWriter::Impl {
public:
    Impl(fs::path path, const VideoSettings& settings);

    const fs::path& Path() const { return m_path; }
    const std::string& Description() const { return m_description; }
    const std::vector<std::string>& Remarks() const { return m_remarks; }
    void Write(const Picture& picture);
    void Finish();

private:
    void OpenEncoder();
    void SetColour();
    void AddStream();
    void WriteHeader();
    void AddTags();
    void Note();
    void NoteUncarried();
    void Encode(const AVFrame* frame);
    double Seconds() const;

    fs::path m_path;
    VideoSettings m_settings;
    const ClipInput* m_like;
    EncoderChoice m_choice;
    Colour m_colour;
    OutputFile m_output;
    CodecPtr m_encoder;
    AVStream* m_stream = nullptr;
    PictureToFrame m_copy;
    std::optional<OtherStreams> m_others;
    PacketPtr m_packet = NewPacket();
    std::int64_t m_frames = 0;
    std::string m_description;
    std::vector<std::string> m_remarks;
};

VideoWriter::Impl::Impl(fs::path path, const VideoSettings& settings)
    : m_path(std::move(path)), m_settings(settings),
      m_like(settings.likeInput == nullptr ? nullptr : &settings.likeInput->Input()),
      m_choice((CheckSettings(m_path, settings), ChooseEncoder(m_path, settings))),
      m_colour(ColourOf(settings, m_choice.kind, m_like)), m_output(m_path, *m_choice.container),
      m_copy(*vfILFindFormat(settings.format), m_choice.kind, TermsOf(settings, m_choice.kind))
{
    m_description = CodecName(*m_choice.codec) + " " + av_get_pix_fmt_name(m_choice.kind.format);
    Note();
    OpenEncoder();
    AddStream();
    if (m_like != nullptr) m_others.emplace(*m_like, m_output, m_remarks);
    WriteHeader();
}

/// Says what of the frames the pixel format doesn't hold, unless the input didn't have it either.
void VideoWriter::Impl::Note()
{
    const PixelKind& kind = m_choice.kind;
    const PixelKind frames = *KindOf(*vfILFindFormat(m_settings.format));
    const auto had = [&](int PixelKind::*member) {
        return m_like == nullptr ? frames.*member : m_like->Kind().*member;
    };
    if (kind.depth < std::min(frames.depth, had(&PixelKind::depth)))
        m_remarks.push_back(m_description + " holds " + std::to_string(kind.depth) + " bits of " +
                            std::to_string(frames.depth));
    if (kind.chromaShiftX > std::max(frames.chromaShiftX, had(&PixelKind::chromaShiftX)) ||
        kind.chromaShiftY > std::max(frames.chromaShiftY, had(&PixelKind::chromaShiftY)))
        m_remarks.push_back(m_description + " holds less chroma: " + Describe(kind));
    NoteUncarried();
}

/// Says what a reader will have to be told, because the file doesn't.
void VideoWriter::Impl::NoteUncarried()
{
    const Carried carried = CarriedBy(*m_choice.container, m_choice.codec->id);
    const auto note = [&](const std::string& what, const std::string& option) {
        m_remarks.push_back(std::string("a file of kind ") + m_choice.container->name + " with " +
                            CodecName(*m_choice.codec) + " does not say " + what + "; read it with --" +
                            option);
    };
    const bool isYcc = m_choice.kind.model == Model::Ycc;
    const Matrix matrix = MatrixOfFrames(m_settings);
    if (isYcc && !carried.matrix && matrix != CustomaryMatrix(m_settings.width, m_settings.height))
        note("that its colour matrix is that of BT.601 or 709", std::string("matrix ") + Word(matrix));
    if (isYcc && !carried.range && m_colour.range == AVCOL_RANGE_JPEG)
        note("that its range is full", "range full");
    if (!carried.fields && m_settings.fieldOrder != FieldOrder::Progressive)
        note("that it is interlaced", std::string("field-order ") + Word(m_settings.fieldOrder));
    if (!carried.tags && m_choice.kind.alpha && m_settings.alpha == AlphaState::Premultiplied)
        note("that colour is multiplied by alpha", "premultiplied yes");
}

void VideoWriter::Impl::SetColour()
{
    m_encoder->colorspace = m_colour.matrix;
    m_encoder->color_primaries = m_colour.primaries;
    m_encoder->color_trc = m_colour.transfer;
    m_encoder->color_range = m_colour.range;
    if (m_choice.kind.model == Model::Ycc && m_choice.kind.Subsampled())
        m_encoder->chroma_sample_location = AVCHROMA_LOC_LEFT;
}

void VideoWriter::Impl::OpenEncoder()
{
    m_encoder.reset(NotNull(avcodec_alloc_context3(m_choice.codec)));
    AVCodecContext& encoder = *m_encoder;
    encoder.width = static_cast<int>(m_settings.width);
    encoder.height = static_cast<int>(m_settings.height);
    encoder.pix_fmt = m_choice.kind.format;
    encoder.framerate = ToRational(m_settings.rate);
    encoder.time_base = av_inv_q(encoder.framerate);
    encoder.sample_aspect_ratio = ToRational(m_settings.aspect);
    encoder.field_order = ToLibav(m_settings.fieldOrder);
    encoder.thread_count = 0;
    // Earlier versions do not say which field is first.
    if (encoder.codec_id == AV_CODEC_ID_FFV1 && m_settings.fieldOrder != FieldOrder::Progressive)
        encoder.level = 3;
    SetColour();
    if (m_settings.fieldOrder != FieldOrder::Progressive && CodesFieldsApart(encoder.codec_id))
        encoder.flags |= AV_CODEC_FLAG_INTERLACED_DCT | AV_CODEC_FLAG_INTERLACED_ME;
    if ((m_choice.container->flags & AVFMT_GLOBALHEADER) != 0) encoder.flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    SetQuality(encoder, m_settings);

    AVDictionary* options = nullptr;
    for (const auto& [name, value] : m_settings.codecOptions) {
        av_dict_set(&options, name.c_str(), value.c_str(), 0);
    }
    SilenceLibav();
    const int opened = avcodec_open2(&encoder, m_choice.codec, &options);
    const DictionaryPtr unknown(options);
    if (opened < 0)
        throw FileError(m_path, std::string(m_choice.codec->name) + " does not start: " + LibavText(opened));
    if (const AVDictionaryEntry* entry = av_dict_get(unknown.get(), "", nullptr, AV_DICT_IGNORE_SUFFIX))
        throw FileError(m_path, std::string(m_choice.codec->name) + " has no option '" + entry->key + "'");
}

void VideoWriter::Impl::AddStream()
{
    m_stream = NotNull(avformat_new_stream(&m_output.Context(), nullptr));
    if (avcodec_parameters_from_context(m_stream->codecpar, m_encoder.get()) < 0) throw std::bad_alloc();
    m_stream->time_base = m_encoder->time_base;
    m_stream->avg_frame_rate = m_encoder->framerate;
    m_stream->sample_aspect_ratio = m_encoder->sample_aspect_ratio;
}

/// What NUT has no field for travels as text, so that a pipe of two runs equals one.
void VideoWriter::Impl::AddTags()
{
    AVDictionary** tags = &m_output.Context().metadata;
    if (m_choice.kind.model == Model::Ycc) {
        av_dict_set(tags, kMatrixTag, Word(MatrixOfFrames(m_settings)), 0);
        av_dict_set(tags, kRangeTag, Word(m_colour.range == AVCOL_RANGE_JPEG ? Range::Full : Range::Studio),
                    0);
    }
    av_dict_set(tags, kFieldsTag, Word(m_settings.fieldOrder), 0);
    if (m_choice.kind.alpha)
        av_dict_set(tags, kPremultipliedTag, m_settings.alpha == AlphaState::Premultiplied ? "yes" : "no", 0);
}

void VideoWriter::Impl::WriteHeader()
{
    AVFormatContext& context = m_output.Context();
    // The same frames give the same bytes: no dates, no random identifiers.
    context.flags |= AVFMT_FLAG_BITEXACT;
    // Y4M of more than 8 bits is customary, but in no standard.
    context.strict_std_compliance = FF_COMPLIANCE_UNOFFICIAL;
    if (CarriedBy(*m_choice.container, m_choice.codec->id).tags) AddTags();
    SilenceLibav();
    m_output.Check(avformat_write_header(&context, nullptr));
}

double VideoWriter::Impl::Seconds() const
{
    return static_cast<double>(m_frames) * av_q2d(m_encoder->time_base);
}

void VideoWriter::Impl::Write(const Picture& picture)
{
    if (picture.Format() != m_settings.format || picture.Width() != m_settings.width ||
        picture.Height() != m_settings.height) {
        throw FileError(m_path, "frame " + std::to_string(m_frames + 1) +
                                    " is of another size or format than the clip");
    }
    AVFrame& frame = m_copy(picture);
    frame.pts = m_frames;
    frame.colorspace = m_colour.matrix;
    frame.color_primaries = m_colour.primaries;
    frame.color_trc = m_colour.transfer;
    frame.color_range = m_colour.range;
    frame.chroma_location = m_encoder->chroma_sample_location;
    frame.sample_aspect_ratio = m_encoder->sample_aspect_ratio;
    frame.quality = m_encoder->global_quality;
    SetFieldOrder(frame, m_settings.fieldOrder);
    SilenceLibav();
    if (m_others) m_others->CopyUntil(Seconds());
    Encode(&frame);
    ++m_frames;
}

/// Sends a frame, or null for the end, and writes the packets that are ready.
void VideoWriter::Impl::Encode(const AVFrame* frame)
{
    const auto check = [this](int result) {
        if (result < 0) throw FileError(m_path, "the codec failed: " + LibavText(result));
    };
    check(avcodec_send_frame(m_encoder.get(), frame));
    while (true) {
        const int received = avcodec_receive_packet(m_encoder.get(), m_packet.get());
        if (received == AVERROR(EAGAIN) || received == AVERROR_EOF) return;
        check(received);
        if (m_packet->duration == 0) m_packet->duration = 1;
        av_packet_rescale_ts(m_packet.get(), m_encoder->time_base, m_stream->time_base);
        m_packet->stream_index = m_stream->index;
        m_output.Check(av_interleaved_write_frame(&m_output.Context(), m_packet.get()));
    }
}

void VideoWriter::Impl::Finish()
{
    SilenceLibav();
    if (m_others) m_others->CopyUntil(Seconds());
    Encode(nullptr);
    m_output.Check(av_write_trailer(&m_output.Context()));
    m_output.Commit();
}

VideoWriter::VideoWriter(const fs::path& path, const VideoSettings& settings)
    : m_impl(WithMemory(path, [&] { return std::make_unique<Impl>(path, settings); }))
{}

VideoWriter::VideoWriter(VideoWriter&&) noexcept = default;
VideoWriter& VideoWriter::operator=(VideoWriter&&) noexcept = default;
VideoWriter::~VideoWriter() = default;

const std::string& VideoWriter::Description() const
{
    return m_impl->Description();
}

const std::vector<std::string>& VideoWriter::Remarks() const
{
    return m_impl->Remarks();
}

void VideoWriter::Write(const Picture& frame)
{
    WithMemory(m_impl->Path(), [&] { m_impl->Write(frame); });
}

void VideoWriter::Finish()
{
    WithMemory(m_impl->Path(), [this] { m_impl->Finish(); });
}

} // namespace vfil::host
