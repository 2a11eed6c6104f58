/// \file
/// What the rest of host/video needs of FFmpeg's libraries beyond their headers.

#include "host/video/libav.h"

#include "host/temporaryfile.h"

extern "C" {
#include <libavutil/log.h>
}

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string_view>

namespace vfil::host {

namespace {

namespace fs = std::filesystem;

/// The first complaint of this thread, which names the cause of those that follow. Plain data: the libraries'
/// own threads get one too.
thread_local std::array<char, 200> complaint{};

void KeepComplaint(void*, int level, const char* format, va_list arguments)
{
    if (level > AV_LOG_ERROR || complaint[0] != '\0') return;
    std::vsnprintf(complaint.data(), complaint.size(), format, arguments);
}

FileError NoClip(const fs::path& path, int error)
{
    if (error == AVERROR_INVALIDDATA || error == AVERROR_EOF)
        return {path, "not a clip, or a damaged one: " + LibavText(error)};
    return {path, "cannot be read: " + LibavText(error)};
}

} // namespace

FramePtr NewFrame()
{
    return FramePtr(NotNull(av_frame_alloc()));
}

PacketPtr NewPacket()
{
    return PacketPtr(NotNull(av_packet_alloc()));
}

FramePtr NewFrame(AVPixelFormat format, long width, long height)
{
    FramePtr frame = NewFrame();
    frame->format = format;
    frame->width = static_cast<int>(width);
    frame->height = static_cast<int>(height);
    if (av_frame_get_buffer(frame.get(), 0) < 0) throw std::bad_alloc();
    const AVPixFmtDescriptor* descriptor = av_pix_fmt_desc_get(format);
    // Bytes that belong to no sample stay what they are here.
    if (av_get_padded_bits_per_pixel(descriptor) != av_get_bits_per_pixel(descriptor))
        std::memset(frame->buf[0]->data, 0, frame->buf[0]->size);
    return frame;
}

void SilenceLibav()
{
    static const bool done = [] {
        av_log_set_callback(KeepComplaint);
        return true;
    }();
    static_cast<void>(done);
    complaint[0] = '\0';
}

std::string LibavText(int error)
{
    std::string text = complaint.data();
    text = text.substr(0, text.find('\n'));
    if (text.empty()) {
        std::array<char, AV_ERROR_MAX_STRING_SIZE> words{};
        av_strerror(error, words.data(), words.size());
        text = words.data();
    }
    return text;
}

InputPtr OpenInput(const fs::path& path)
{
    SilenceLibav();
    const bool isStream = path == "-";
    std::error_code error;
    if (!isStream && !fs::exists(path, error)) throw FileError(path, "no such file");
    if (!isStream && fs::is_directory(path, error)) throw FileError(path, "is a folder; name a clip in it");
    const std::string url = isStream ? "pipe:0" : "file:" + path.string();
    AVFormatContext* opened = nullptr;
    const int result = avformat_open_input(&opened, url.c_str(), nullptr, nullptr);
    if (result < 0) throw NoClip(path, result);
    InputPtr input(opened);
    // Text files pass for moving pictures of a terminal.
    if (std::string_view(input->iformat->name) == "tty") throw NoClip(path, AVERROR_INVALIDDATA);
    return input;
}

FieldOrder FieldOrderOf(const AVFrame& frame)
{
#if LIBAVUTIL_VERSION_INT >= AV_VERSION_INT(58, 7, 100)
    const bool interlaced = (frame.flags & AV_FRAME_FLAG_INTERLACED) != 0;
    const bool topFirst = (frame.flags & AV_FRAME_FLAG_TOP_FIELD_FIRST) != 0;
#else
    const bool interlaced = frame.interlaced_frame != 0;
    const bool topFirst = frame.top_field_first != 0;
#endif
    if (!interlaced) return FieldOrder::Progressive;
    return topFirst ? FieldOrder::TopFirst : FieldOrder::BottomFirst;
}

void SetFieldOrder(AVFrame& frame, FieldOrder order)
{
#if LIBAVUTIL_VERSION_INT >= AV_VERSION_INT(58, 7, 100)
    frame.flags &= ~(AV_FRAME_FLAG_INTERLACED | AV_FRAME_FLAG_TOP_FIELD_FIRST);
    if (order != FieldOrder::Progressive) frame.flags |= AV_FRAME_FLAG_INTERLACED;
    if (order == FieldOrder::TopFirst) frame.flags |= AV_FRAME_FLAG_TOP_FIELD_FIRST;
#else
    frame.interlaced_frame = order != FieldOrder::Progressive;
    frame.top_field_first = order == FieldOrder::TopFirst;
#endif
}

} // namespace vfil::host
