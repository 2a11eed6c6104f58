/// \file
/// Clips, opened and decoded frame by frame.

#include "host/video/clipinput.h"

#include "host/filecodec.h"

extern "C" {
#include <libavutil/parseutils.h>
}

#include <algorithm>
#include <cmath>
#include <map>

namespace vfil::host {

namespace fs = std::filesystem;

namespace {

std::string CodecName(const AVCodecParameters& parameters)
{
    const AVCodecDescriptor* descriptor = avcodec_descriptor_get(parameters.codec_id);
    if (descriptor != nullptr) return descriptor->name;
    std::array<char, AV_FOURCC_MAX_STRING_SIZE> tag{};
    return av_fourcc_make_string(tag.data(), parameters.codec_tag);
}

std::string DescribeStream(const AVStream& stream)
{
    const AVCodecParameters& parameters = *stream.codecpar;
    const char* type = av_get_media_type_string(parameters.codec_type);
    std::string text = std::string(type == nullptr ? "unknown" : type) + " " + CodecName(parameters);
    if (parameters.codec_type != AVMEDIA_TYPE_AUDIO) return text;
    std::array<char, 64> layout{};
    av_channel_layout_describe(&parameters.ch_layout, layout.data(), layout.size());
    return text + " " + std::to_string(parameters.sample_rate) + " Hz " + layout.data();
}

/// The picture format for a kind of stream, and a remark where it holds less than the stream.
///
/// \param subsampled Full-rate YCC is none of the choices.
const vfILFormatInfo& FormatFor(const PixelKind& kind, Matrix matrix, bool subsampled,
                                std::vector<std::string>& remarks)
{
    const auto info = [](const GUID& format) -> const vfILFormatInfo& { return *vfILFindFormat(format); };
    if (kind.model == Model::Gray && !kind.alpha) return info(kind.Deep() ? PXFormat_Mono16 : PXFormat_Mono8);
    if (kind.model != Model::Ycc) return info(kind.Deep() ? PXFormat_RGBA64 : PXFormat_RGBA32);
    const bool is601 = matrix == Matrix::Bt601;
    const bool fullRate = is601 && !subsampled;
    if (fullRate && kind.Deep()) return info(PXFormat_YCCA64);
    if (fullRate && !kind.Subsampled()) return info(PXFormat_YCCA32);
    const vfILFormatInfo* format = &info(is601 ? PXFormat_YUV422_601 : PXFormat_YUV422_709);
    if (kind.alpha) format = &info(is601 ? PXFormat_YCCA422_601 : PXFormat_YCCA422_709);
    if (kind.format == AV_PIX_FMT_YUYV422) format = &info(is601 ? PXFormat_YCC422_601 : PXFormat_YCC422_709);
    const bool halved = kind.chromaShiftX == 0;
    if (kind.Deep() || halved) {
        remarks.push_back(Describe(kind) + " becomes " + format->name + ":" +
                          (kind.Deep() ? " each sample is rounded to 8 bits" : "") +
                          (kind.Deep() && halved ? "," : "") + (halved ? " chroma is halved across" : ""));
    }
    return *format;
}

AVChromaLocation SitingOf(const AVFrame& frame, const PixelKind& kind)
{
    if (frame.chroma_location != AVCHROMA_LOC_UNSPECIFIED) return frame.chroma_location;
    return kind.fullRange ? AVCHROMA_LOC_CENTER : AVCHROMA_LOC_LEFT;
}

/// What the containers say, before the codecs were looked at: that overwrites it.
std::map<int, Statement> StatementsOf(const AVFormatContext& input)
{
    std::map<int, Statement> statements;
    for (unsigned i = 0; i < input.nb_streams; ++i) {
        statements[static_cast<int>(i)] = StatementOf(*input.streams[i]->codecpar);
    }
    return statements;
}

/// The first statement, and the second where that is silent.
Statement Merge(Statement first, const Statement& second)
{
    if (first.matrix == AVCOL_SPC_UNSPECIFIED) first.matrix = second.matrix;
    if (first.range == AVCOL_RANGE_UNSPECIFIED) first.range = second.range;
    if (first.fields == AV_FIELD_UNKNOWN) first.fields = second.fields;
    return first;
}

} // namespace

ClipInput::ClipInput(const fs::path& path, const VideoOverrides& overrides)
    : m_path(path), m_input(OpenInput(path))
{
    std::map<int, Statement> headers = StatementsOf(*m_input);
    OpenStream();
    Statement header = Merge(headers[m_stream->index], StatementOf(*m_stream->codecpar));
    AddTags(m_input->metadata, header);
    Describe();
    m_peeked = Decode();
    if (!m_peeked) ThrowDamaged("there is no frame in it");
    Settle(header, overrides);
}

void ClipInput::OpenStream()
{
    const int found = avformat_find_stream_info(m_input.get(), nullptr);
    if (found < 0) throw FileError(m_path, "damaged or cut short: " + LibavText(found));
    const int index = av_find_best_stream(m_input.get(), AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    if (index < 0 || (m_input->streams[index]->disposition & AV_DISPOSITION_ATTACHED_PIC) != 0)
        throw FileError(m_path, "holds no video");
    m_stream = m_input->streams[index];
    const AVCodec* codec = avcodec_find_decoder(m_stream->codecpar->codec_id);
    if (codec == nullptr) {
        throw FileError(m_path, "its codec '" + CodecName(*m_stream->codecpar) + "' is not known here");
    }
    for (unsigned i = 0; i < m_input->nb_streams; ++i) {
        AVStream* other = m_input->streams[i];
        if (other == m_stream) continue;
        m_info.otherStreams.push_back(DescribeStream(*other));
        other->discard = AVDISCARD_ALL;
    }
    OpenDecoder(*codec);
}

void ClipInput::OpenDecoder(const AVCodec& codec)
{
    m_decoder.reset(NotNull(avcodec_alloc_context3(&codec)));
    const int copied = avcodec_parameters_to_context(m_decoder.get(), m_stream->codecpar);
    m_decoder->pkt_timebase = m_stream->time_base;
    m_decoder->thread_count = 0;
    // Damage is to be said, not painted over.
    m_decoder->err_recognition = AV_EF_EXPLODE | AV_EF_CRCCHECK;
    const int opened = copied < 0 ? copied : avcodec_open2(m_decoder.get(), &codec, nullptr);
    if (opened < 0)
        throw FileError(m_path,
                        std::string("its codec ") + codec.name + " does not start: " + LibavText(opened));
}

void ClipInput::Describe()
{
    m_info.container = m_input->iformat->name;
    m_info.codec = CodecName(*m_stream->codecpar);
    if (m_stream->nb_frames > 0) m_info.frames = static_cast<long>(m_stream->nb_frames);
}

void ClipInput::Settle(const Statement& header, const VideoOverrides& overrides)
{
    const AVFrame& frame = *m_peeked;
    const auto format = static_cast<AVPixelFormat>(frame.format);
    const char* name = av_get_pix_fmt_name(format);
    m_info.pixelFormat = name == nullptr ? "unknown" : name;
    const std::optional<PixelKind> kind = KindOf(format);
    if (!kind) throw FileError(m_path, "its pixel format " + m_info.pixelFormat + " cannot be read");
    m_kind = *kind;
    m_info.width = frame.width;
    m_info.height = frame.height;
    m_info.depth = m_kind.palette ? 8 : m_kind.depth;
    m_info.rate = ToRatio(av_guess_frame_rate(m_input.get(), m_stream, m_peeked.get()));
    m_info.aspect = ToRatio(av_guess_sample_aspect_ratio(m_input.get(), m_stream, m_peeked.get()));
    host::Settle(header, StatementOf(frame, *m_decoder), m_kind, overrides, m_info);

    const vfILFormatInfo& picture =
        FormatFor(m_kind, m_info.matrix.value, overrides.subsampled, m_info.remarks);
    m_info.format = picture.id;
    CheckSize(m_path, static_cast<std::uint64_t>(frame.width), static_cast<std::uint64_t>(frame.height),
              picture.id);
    if (picture.subsampled && frame.width % 2 != 0) {
        throw FileError(m_path, "a width of " + std::to_string(frame.width) +
                                    " is odd, 4:2:2 needs an even one; scale or crop the clip by one column");
    }
    try {
        m_copy.emplace(m_kind, picture,
                       CopyTerms{frame.width, frame.height, m_info.range.value, m_info.fieldOrder.value,
                                 SitingOf(frame, m_kind)});
    } catch (const std::invalid_argument& error) {
        throw FileError(m_path, "its pixel format " + m_info.pixelFormat + ": " + error.what());
    }
}

void ClipInput::ThrowDamaged(const std::string& text) const
{
    throw FileError(m_path, "is cut short or damaged after frame " + std::to_string(m_decoded) + ": " + text);
}

double ClipInput::SecondsOf(const AVFrame& frame) const
{
    const double unit = av_q2d(m_stream->time_base);
    if (frame.best_effort_timestamp != AV_NOPTS_VALUE)
        return static_cast<double>(frame.best_effort_timestamp) * unit;
    return m_info.rate.numerator == 0 ? 0 : static_cast<double>(m_decoded) / av_q2d(ToRational(m_info.rate));
}

/// Sends the next packet of the clip, or its end.
void ClipInput::FeedDecoder()
{
    SilenceLibav();
    const int read = av_read_frame(m_input.get(), m_packet.get());
    if (read == AVERROR_EOF) {
        avcodec_send_packet(m_decoder.get(), nullptr);
        return;
    }
    if (read < 0) ThrowDamaged(LibavText(read));
    const bool ours = m_packet->stream_index == m_stream->index;
    // What precedes the first key frame is rightly broken in a recording that begins anywhere.
    m_sawKey = m_sawKey || (ours && (m_packet->flags & AV_PKT_FLAG_KEY) != 0);
    if (ours && m_sawKey && (m_packet->flags & AV_PKT_FLAG_CORRUPT) != 0) ThrowDamaged("its data end early");
    if (ours) m_packetEnd = m_packet->pos + m_packet->size;
    const int sent = ours ? avcodec_send_packet(m_decoder.get(), m_packet.get()) : 0;
    av_packet_unref(m_packet.get());
    if (sent < 0) ThrowDamaged(LibavText(sent));
}

FramePtr ClipInput::Decode()
{
    FramePtr frame = NewFrame();
    while (true) {
        SilenceLibav();
        const int received = avcodec_receive_frame(m_decoder.get(), frame.get());
        if (received == AVERROR(EAGAIN)) {
            FeedDecoder();
            continue;
        }
        if (received == AVERROR_EOF) {
            CheckComplete();
            return nullptr;
        }
        if (received < 0) ThrowDamaged(LibavText(received));
        if (frame->decode_error_flags != 0 || (frame->flags & AV_FRAME_FLAG_CORRUPT) != 0)
            ThrowDamaged("the frame behind it cannot be decoded");
        m_lastTime = SecondsOf(*frame);
        if (m_decoded == 0) m_firstTime = m_lastTime;
        ++m_decoded;
        return frame;
    }
}

/// How long the clip is by its header, in seconds; 0 when that says nothing.
double ClipInput::StatedSeconds() const
{
    if (m_input->duration_estimation_method != AVFMT_DURATION_FROM_STREAM) return 0;
    if (m_stream->duration != AV_NOPTS_VALUE)
        return static_cast<double>(m_stream->duration) * av_q2d(m_stream->time_base);
    if (m_info.otherStreams.empty() && m_input->duration != AV_NOPTS_VALUE)
        return static_cast<double>(m_input->duration) / AV_TIME_BASE;
    // Matroska files say it for each stream in a tag.
    const AVDictionaryEntry* tag = av_dict_get(m_stream->metadata, "DURATION", nullptr, 0);
    std::int64_t microseconds = 0;
    if (tag == nullptr || av_parse_time(&microseconds, tag->value, 1) < 0) return 0;
    return static_cast<double>(microseconds) / AV_TIME_BASE;
}

/// Throws when the container says that there should have been clearly more. The two may differ a little: a
/// container may hide some of the frames that it counts, and round times.
void ClipInput::CheckComplete()
{
    if (m_info.container == "yuv4mpegpipe" && avio_tell(m_input->pb) > m_packetEnd)
        ThrowDamaged("its data end within a frame");
    if (m_info.rate.numerator == 0) return;
    const double timed = StatedSeconds() * av_q2d(ToRational(m_info.rate));
    const double counted = m_info.frames ? static_cast<double>(*m_info.frames) : timed;
    const double stated = timed > 0 ? std::min(timed, counted) : counted;
    const double shown = (m_lastTime - m_firstTime) * av_q2d(ToRational(m_info.rate)) + 1;
    if (stated - std::max(static_cast<double>(m_decoded), shown) > std::max(1.5, stated / 50))
        ThrowDamaged("its header promises " + std::to_string(std::lround(stated)) + " frames");
}

void ClipInput::CheckUnchanged(const AVFrame& frame) const
{
    if (frame.width != m_info.width || frame.height != m_info.height) {
        throw FileError(m_path, "changes its size at frame " + std::to_string(m_decoded) + " from " +
                                    std::to_string(m_info.width) + "x" + std::to_string(m_info.height) +
                                    " to " + std::to_string(frame.width) + "x" +
                                    std::to_string(frame.height) + "; frames of one size are needed");
    }
    if (frame.format != m_kind.format)
        throw FileError(m_path, "changes its pixel format at frame " + std::to_string(m_decoded));
}

FramePtr ClipInput::NextFrame()
{
    FramePtr frame = m_peeked ? std::move(m_peeked) : Decode();
    if (frame) CheckUnchanged(*frame);
    return frame;
}

PicturePtr ClipInput::PictureOf(const AVFrame& frame)
{
    PicturePtr picture = (*m_copy)(frame);
    picture->SetPremultiplied(m_info.alpha.value == AlphaState::Premultiplied);
    return picture;
}

PicturePtr ClipInput::Read()
{
    const FramePtr frame = NextFrame();
    if (!frame) return {};
    if (!m_anyRead) m_firstReadTime = SecondsOf(*frame);
    m_anyRead = true;
    return PictureOf(*frame);
}

PicturePtr ClipInput::ReadBefore()
{
    const FramePtr frame = NextFrame();
    return frame ? PictureOf(*frame) : PicturePtr();
}

bool ClipInput::Skip()
{
    return NextFrame() != nullptr;
}

} // namespace vfil::host
