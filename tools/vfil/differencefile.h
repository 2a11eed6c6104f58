/// \file
/// The picture or clip of differences that vfil score writes.
#pragma once

#include "engine/execute.h"
#include <vfil/host/video.h>

#include <optional>
#include <string>
#include <vector>

namespace vfil::tool {

/// Writes grey pictures as one picture or as the frames of a clip. Nothing stands under the name before
/// Finish.
class DifferenceFile {
public:
    /// Refuses a name that nothing can be written to, and that of a file that is read.
    ///
    /// \throws RequestError, host::FileError
    static void Check(const std::string& path, const std::vector<std::string>& inputs);

    /// \param like  The clip whose rate and shape of pixels a clip gets; null for pictures.
    /// \throws RequestError  A picture would be made of a clip, or a clip of pictures.
    DifferenceFile(const std::string& path, const host::VideoReader* like);

    /// Takes the next Mono8 picture.
    ///
    /// \throws RequestError, RunError, host::FileError
    void Write(const host::PicturePtr& picture);
    /// Completes the file.
    ///
    /// \throws RunError
    void Finish();

private:
    void Open(const host::Picture& first);

    std::string m_path;
    const host::VideoReader* m_like;
    std::optional<host::VideoWriter> m_clip;
    std::optional<engine::Converter> m_converter;
    host::PicturePtr m_picture;
};

} // namespace vfil::tool
