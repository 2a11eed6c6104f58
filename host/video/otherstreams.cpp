/// \file
/// Audio and what else lies beside the video of an input, copied to an output.

#include "host/video/otherstreams.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace vfil::host {

bool Holds(const AVOutputFormat& container, AVCodecID codec)
{
    const int known = avformat_query_codec(&container, codec, FF_COMPLIANCE_NORMAL);
    if (known >= 0) return known == 1;
    if (codec == container.video_codec || codec == container.audio_codec) return true;
    constexpr std::array kOfMpeg{AV_CODEC_ID_MPEG1VIDEO, AV_CODEC_ID_MPEG2VIDEO, AV_CODEC_ID_H264,
                                 AV_CODEC_ID_MP2,        AV_CODEC_ID_MP3,        AV_CODEC_ID_AC3};
    const std::string_view name = container.name;
    const bool isMpeg =
        name == "mpeg" || name == "vob" || name == "dvd" || name == "svcd" || name == "mpegts";
    return isMpeg && std::ranges::find(kOfMpeg, codec) != kOfMpeg.end();
}

OtherStreams::OtherStreams(const ClipInput& input, const OutputFile& output,
                           std::vector<std::string>& remarks)
    : m_source(input), m_output(output)
{
    const std::vector<std::string>& streams = input.Info().otherStreams;
    if (streams.empty()) return;
    if (input.Path() == "-") {
        for (const std::string& stream : streams) {
            remarks.push_back(stream + " is dropped: standard input cannot be read twice");
        }
        return;
    }
    m_input = OpenInput(input.Path());
    const int found = avformat_find_stream_info(m_input.get(), nullptr);
    if (found < 0) throw FileError(input.Path(), "damaged or cut short: " + LibavText(found));
    AddStreams(remarks);
    if (m_targets.empty()) m_input.reset();
}

void OtherStreams::AddStreams(std::vector<std::string>& remarks)
{
    std::size_t other = 0;
    for (unsigned i = 0; i < m_input->nb_streams; ++i) {
        AVStream* stream = m_input->streams[i];
        const int index = stream->index;
        stream->discard = AVDISCARD_ALL;
        if (index == m_source.StreamIndex()) continue;
        // A stream may turn up that the first look did not meet.
        const std::vector<std::string>& names = m_source.Info().otherStreams;
        const std::string name = other < names.size() ? names[other++] : "a stream";
        const AVMediaType type = stream->codecpar->codec_type;
        const bool copied = (type == AVMEDIA_TYPE_AUDIO || type == AVMEDIA_TYPE_SUBTITLE) &&
                            Holds(*m_output.Context().oformat, stream->codecpar->codec_id);
        if (!copied) {
            remarks.push_back(name + " is dropped: a file of kind " + m_output.Context().oformat->name +
                              " does not take it");
            continue;
        }
        AVStream* target = NotNull(avformat_new_stream(&m_output.Context(), nullptr));
        if (avcodec_parameters_copy(target->codecpar, stream->codecpar) < 0) throw std::bad_alloc();
        target->codecpar->codec_tag = 0;
        target->time_base = stream->time_base;
        target->disposition = stream->disposition;
        av_dict_copy(&target->metadata, stream->metadata, 0);
        stream->discard = AVDISCARD_DEFAULT;
        m_targets[index] = target;
    }
}

/// The next packet of a stream that is copied. False behind the last.
bool OtherStreams::ReadPacket()
{
    while (!m_pending) {
        if (av_read_frame(m_input.get(), m_packet.get()) < 0) return false;
        m_pending = m_targets.contains(m_packet->stream_index) && SecondsOfPacket() >= 0;
        if (!m_pending) av_packet_unref(m_packet.get());
    }
    return true;
}

double OtherStreams::SecondsOfPacket() const
{
    const std::int64_t time = m_packet->pts != AV_NOPTS_VALUE ? m_packet->pts : m_packet->dts;
    if (time == AV_NOPTS_VALUE) return 0;
    const AVRational unit = m_input->streams[m_packet->stream_index]->time_base;
    return static_cast<double>(time) * av_q2d(unit) - m_source.FirstReadTime();
}

void OtherStreams::CopyUntil(double seconds)
{
    if (!m_input) return;
    while (ReadPacket() && SecondsOfPacket() < seconds) {
        WritePacket();
    }
}

void OtherStreams::WritePacket()
{
    const AVRational unit = m_input->streams[m_packet->stream_index]->time_base;
    const AVStream& target = *m_targets.at(m_packet->stream_index);
    const auto start = static_cast<std::int64_t>(m_source.FirstReadTime() / av_q2d(unit));
    if (m_packet->pts != AV_NOPTS_VALUE) m_packet->pts -= start;
    if (m_packet->dts != AV_NOPTS_VALUE) m_packet->dts -= start;
    av_packet_rescale_ts(m_packet.get(), unit, target.time_base);
    m_packet->stream_index = target.index;
    m_packet->pos = -1;
    m_pending = false;
    m_output.Check(av_interleaved_write_frame(&m_output.Context(), m_packet.get()));
}

} // namespace vfil::host
