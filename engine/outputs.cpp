/// \file
/// Writing of pictures and clips.
#include "engine/outputs.h"
#include "engine/failure.h"

namespace vfil::engine {

namespace {

// A file that cannot be written is no fault of the request.
template <class Work>
void Writing(Work work)
{
    try {
        work();
    } catch (const host::FileError& error) {
        throw RunError(error.what());
    }
}

} // namespace

void Outputs::Open(std::size_t sink, const host::Picture& first)
{
    host::VideoSettings settings = m_plan.sinks[sink].settings;
    if (settings.alpha != host::AlphaState::None && first.Premultiplied())
        settings.alpha = host::AlphaState::Premultiplied;
    File& file = m_files[sink];
    try {
        file.clip.emplace(m_plan.sinks[sink].sink.path, settings);
    } catch (const host::FileError& error) {
        // Most of these are about the request; a disk that has no room for the header is not.
        const std::string text = error.what();
        if (text.find("cannot be written") != std::string::npos) throw RunError(text);
        throw;
    }
    for (const std::string& remark : file.clip->Remarks())
        m_events.OnRemark(m_plan.sinks[sink].sink.path + ": " + remark);
}

void Outputs::Write(std::size_t sink, const host::PicturePtr& picture)
{
    File& file = m_files[sink];
    ++file.frames;
    if (!m_plan.sinks[sink].clip) {
        file.picture = picture;
        return;
    }
    if (!file.clip) Open(sink, *picture);
    Writing([&] { file.clip->Write(*picture); });
}

void Outputs::FinishClips()
{
    for (File& file : m_files) {
        if (file.clip) Writing([&] { file.clip->Finish(); });
    }
}

void Outputs::Finish()
{
    for (std::size_t i = 0; i < m_files.size(); ++i) {
        if (m_files[i].picture)
            Writing([&] { host::WritePicture(m_plan.sinks[i].sink.path, *m_files[i].picture); });
    }
    FinishClips();
}

std::vector<WrittenFile> Outputs::Written() const
{
    std::vector<WrittenFile> written;
    for (std::size_t i = 0; i < m_files.size(); ++i) {
        const File& file = m_files[i];
        WrittenFile& made = written.emplace_back();
        made.frames = file.frames;
        if (file.clip) made.codec = file.clip->Description();
        if (file.picture)
            made.picture = {file.picture->Format(), file.picture->Width(), file.picture->Height()};
    }
    return written;
}

} // namespace vfil::engine
