/// \file
/// Mattes from files.
#pragma once

#include "score/matte.h"
#include <vfil/host/video.h>

#include <optional>
#include <string>

namespace vfil::score {

/// How the file of a matte is read.
struct MatteOptions {
    /// Any takes a clip by whether it has alpha at all, so that a frame in which all is solid is none of
    /// luma.
    Channel channel = Channel::Any;
    host::ReadOptions raw = {};          ///< of a .raw picture
    host::VideoOverrides overrides = {}; ///< of a clip
};

/// Reads the mattes of a picture or clip in order. A picture has one frame. For one thread at a time.
class MatteReader {
public:
    /// \throws host::FileError  The file cannot be read, or holds no matte.
    explicit MatteReader(const std::string& path, const MatteOptions& options = {});

    /// The next matte; none behind the last.
    /// \throws host::FileError
    std::optional<Matte> Next();
    /// Mattes that Next gave, and all that are left.
    /// \throws host::FileError
    long CountAll();

    const std::string& Path() const { return m_path; }
    /// The clip; null for a picture.
    const host::VideoReader* Clip() const { return m_clip ? &*m_clip : nullptr; }

private:
    std::string m_path;
    Channel m_channel;
    std::optional<host::VideoReader> m_clip;
    host::PicturePtr m_picture; ///< until Next has given it
    long m_count = 0;
};

} // namespace vfil::score
