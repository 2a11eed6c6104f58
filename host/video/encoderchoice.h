/// \file
/// Which container, codec and pixel format a clip is written in. Private to the host.
#pragma once

#include "host/video/pixelkind.h"

namespace vfil::host {

/// How a clip is written.
struct EncoderChoice {
    const AVOutputFormat* container = nullptr;
    const AVCodec* codec = nullptr;
    PixelKind kind;
};

/// The choice for what the settings ask.
///
/// \throws FileError  No such container or codec, or one that cannot hold the frames; with the remedy.
EncoderChoice ChooseEncoder(const std::filesystem::path& path, const VideoSettings& settings);

} // namespace vfil::host
