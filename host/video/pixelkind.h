/// \file
/// What a pixel format of FFmpeg is made of, in the words of this host. Private to the host.
#pragma once

#include "host/video/libav.h"

#include <optional>

namespace vfil::host {

enum class Model { Rgb, Gray, Ycc };

/// The properties of a pixel format that decide which picture it becomes.
struct PixelKind {
    AVPixelFormat format = AV_PIX_FMT_NONE;
    const AVPixFmtDescriptor* descriptor = nullptr;
    Model model = Model::Rgb;
    int depth = 8; ///< bits of a sample, 1 .. 16; the most of its components
    bool alpha = false;
    int chromaShiftX = 0; ///< log2 of luma samples to a chroma sample
    int chromaShiftY = 0;
    bool fullRange = false; ///< a "yuvj" format, whose name says that its range is full
    bool palette = false;

    bool Deep() const { return depth > 8; }
    bool Subsampled() const { return chromaShiftX != 0 || chromaShiftY != 0; }
};

/// Nothing for formats that cannot be read: floating point, sensor mosaics, frames in a graphics card.
std::optional<PixelKind> KindOf(AVPixelFormat format);
/// The same of a picture's format; PixelKind::format is the pixel format with the same samples.
std::optional<PixelKind> KindOf(const vfILFormatInfo& format);

/// A format with separate planes of 8 or 16 bits and the given sampling, as a step to another.
AVPixelFormat PlanarYcc(bool deep, bool alpha, int chromaShiftX);

/// The format without a range in its name.
AVPixelFormat WithoutRange(AVPixelFormat format);

/// "8-bit YCC 4:2:0"
std::string Describe(const PixelKind& kind);

} // namespace vfil::host
