/// \file
/// Mattes from files.
#include "score/mattereader.h"

namespace vfil::score {

MatteReader::MatteReader(const std::string& path, const MatteOptions& options)
    : m_path(path), m_channel(options.channel)
{
    vfILGuid format{};
    if (host::IsVideo(path)) {
        m_clip.emplace(path, options.overrides);
        const host::VideoInfo& info = m_clip->Info();
        format = info.format;
        if (m_channel == Channel::Any)
            m_channel = info.alpha.value == host::AlphaState::None ? Channel::Luma : Channel::Alpha;
    } else {
        m_picture = host::ReadPicture(path, options.raw);
        format = m_picture->Format();
    }
    if (!HoldsMatte(format)) throw host::FileError(path, "its format holds no matte; grey, RGB and YCC do");
    if (m_channel == Channel::Alpha && !vfILFindFormat(format)->alpha)
        throw host::FileError(path, "has no alpha that could be the matte");
}

std::optional<Matte> MatteReader::Next()
{
    const host::PicturePtr picture = m_clip ? m_clip->Read() : std::exchange(m_picture, {});
    if (!picture) return std::nullopt;
    ++m_count;
    return MatteOf(*picture, m_channel, m_clip ? m_clip->Info().range.value : host::Range::Full);
}

long MatteReader::CountAll()
{
    if (m_picture) return 1;
    while (m_clip && m_clip->Skip())
        ++m_count;
    return m_count;
}

} // namespace vfil::score
