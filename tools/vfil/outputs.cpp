/// \file
/// Writing of pictures and clips.
#include "tools/vfil/outputs.h"
#include "tools/vfil/failure.h"
#include "tools/vfil/report.h"
#include "tools/vfil/request.h"

#include <iostream>

namespace vfil::tool {

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
    if (m_plan.settings.quiet) return;
    for (const std::string& remark : file.clip->Remarks())
        std::cerr << "vfil: " << m_plan.sinks[sink].sink.path << ": " << remark << '\n';
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

host::PictureInfo Outputs::InspectWritten(std::size_t sink) const
{
    const host::Picture& picture = *m_files[sink].picture;
    host::ReadOptions options;
    const std::string& path = m_plan.sinks[sink].sink.path;
    if (IsRaw(path)) options = {picture.Format(), picture.Width(), picture.Height()};
    return host::InspectPicture(path, options);
}

std::string Outputs::Description(std::size_t sink) const
{
    const SinkPlan& plan = m_plan.sinks[sink];
    const File& file = m_files[sink];
    if (plan.clip) {
        return file.clip->Description() + " " + SizeText(plan.settings.width, plan.settings.height) + ", " +
               std::to_string(file.frames) + (file.frames == 1 ? " frame" : " frames");
    }
    return Describe(InspectWritten(sink));
}

} // namespace vfil::tool
