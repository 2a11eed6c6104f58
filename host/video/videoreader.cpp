/// \file
/// The face of clips that are read.

#include "host/video/clipinput.h"

#include "host/filecodec.h"

namespace vfil::host {

namespace fs = std::filesystem;

VideoReader::VideoReader(const fs::path& path, const VideoOverrides& overrides)
    : m_input(WithMemory(path, [&] { return std::make_unique<ClipInput>(path, overrides); }))
{}

VideoReader::VideoReader(VideoReader&&) noexcept = default;
VideoReader& VideoReader::operator=(VideoReader&&) noexcept = default;
VideoReader::~VideoReader() = default;

const VideoInfo& VideoReader::Info() const
{
    return m_input->Info();
}

PicturePtr VideoReader::Read()
{
    return WithMemory(m_input->Path(), [this] { return m_input->Read(); });
}

PicturePtr VideoReader::ReadBefore()
{
    return WithMemory(m_input->Path(), [this] { return m_input->ReadBefore(); });
}

bool VideoReader::Skip()
{
    return WithMemory(m_input->Path(), [this] { return m_input->Skip(); });
}

bool IsVideo(const fs::path& path)
{
    return path == "-" || !IsPictureFile(path);
}

} // namespace vfil::host
