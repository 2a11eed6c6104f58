/// \file
/// What the rest of host/video needs of FFmpeg's libraries beyond their headers: owners of their objects,
/// their messages, and the parts of their interface that differ between versions. Private to the host.
#pragma once

#include <vfil/host/video.h>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/pixdesc.h>
}

#include <memory>
#include <new>
#include <string>

namespace vfil::host {

struct FreeLibav {
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
    void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
    void operator()(AVDictionary* dictionary) const { av_dict_free(&dictionary); }
};
using FramePtr = std::unique_ptr<AVFrame, FreeLibav>;
using PacketPtr = std::unique_ptr<AVPacket, FreeLibav>;
using CodecPtr = std::unique_ptr<AVCodecContext, FreeLibav>;
using DictionaryPtr = std::unique_ptr<AVDictionary, FreeLibav>;

struct CloseInput {
    void operator()(AVFormatContext* context) const { avformat_close_input(&context); }
};
using InputPtr = std::unique_ptr<AVFormatContext, CloseInput>;

/// The pointer itself, or std::bad_alloc for a null one: the libraries return null when memory is short.
template <class T>
T* NotNull(T* pointer)
{
    if (pointer == nullptr) throw std::bad_alloc();
    return pointer;
}

/// Runs a step on a clip, and speaks of the clip when memory is short.
template <class Step>
auto WithMemory(const std::filesystem::path& path, Step step)
{
    try {
        return step();
    } catch (const std::bad_alloc&) {
        throw FileError(path, "not enough memory for the clip");
    }
}

FramePtr NewFrame();
PacketPtr NewPacket();
/// A frame with a buffer for pixels of \p format.
FramePtr NewFrame(AVPixelFormat format, long width, long height);

/// Keeps the libraries from writing to standard error, from now on; the first complaint of each thread since
/// then is kept. To be called before anything that may complain.
void SilenceLibav();
/// What the libraries said for \p error in this thread since SilenceLibav: their complaint when there is one,
/// else the general words. One line.
std::string LibavText(int error);

/// Opens a container. "-" is standard input, anything else a file, also when it looks like an address.
///
/// \throws FileError  There is no such file, or nothing that is known.
InputPtr OpenInput(const std::filesystem::path& path);

/// The field order that a decoded frame states: newer libraries have it in the frame's flags.
FieldOrder FieldOrderOf(const AVFrame& frame);
void SetFieldOrder(AVFrame& frame, FieldOrder order);

inline AVRational ToRational(const Ratio& ratio)
{
    return {static_cast<int>(ratio.numerator), static_cast<int>(ratio.denominator)};
}
inline Ratio ToRatio(const AVRational& rational)
{
    return {rational.num, rational.den == 0 ? 1 : rational.den};
}

} // namespace vfil::host
