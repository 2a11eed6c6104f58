/// \file
/// Differences as files.
#include "tools/vfil/differencefile.h"
#include "tools/vfil/text.h"

namespace vfil::tool {

namespace {

// A file that cannot be written is no fault of the request.
template <class Work>
void Writing(Work work)
{
    try {
        work();
    } catch (const host::FileError& error) {
        throw engine::RunError(error.what());
    }
}

host::Matrix MatrixOf(const GUID& format, host::Matrix fallback)
{
    if (IsFormatYCC(format) == 0) return fallback;
    return IsFormat709(format) != 0 ? host::Matrix::Bt709 : host::Matrix::Bt601;
}

} // namespace

void DifferenceFile::Check(const std::string& path, const std::vector<std::string>& inputs)
{
    if (path == "-") throw RequestError("--diff takes the name of a file; standard output has the figures");
    if (!host::IsVideo(path)) host::CheckWritable(path);
    for (const std::string& input : inputs) {
        if (host::SamePath(path, input))
            throw RequestError(path + " is read and cannot be written at the same time");
    }
}

DifferenceFile::DifferenceFile(const std::string& path, const host::VideoReader* like)
    : m_path(path), m_like(like)
{
    if (host::IsVideo(path) == (like != nullptr)) return;
    if (like) throw RequestError(path + " is one picture, and the mattes are a clip; write a clip");
    throw RequestError(path + " would be a clip, and the mattes are pictures; write a picture, such as .png");
}

void DifferenceFile::Open(const host::Picture& first)
{
    const host::VideoInfo& info = m_like->Info();
    host::VideoSettings settings;
    settings.format = first.Format();
    settings.width = first.Width();
    settings.height = first.Height();
    settings.rate = info.rate;
    settings.aspect = info.aspect;
    settings.matrix = info.matrix.value;
    settings.fieldOrder = info.fieldOrder.value;
    settings.likeInput = m_like;
    std::optional<engine::Conversion> conversion;
    for (const vfILGuid& format : host::FormatsOfVideo(m_path, settings)) {
        conversion = engine::FindConversion(first.Format(), format);
        if (!conversion) continue;
        settings.format = format;
        break;
    }
    settings.matrix = MatrixOf(settings.format, settings.matrix);
    m_clip.emplace(m_path, settings); // says what is wrong where no format was found
    if (!conversion) throw RequestError(m_path + " cannot hold grey");
    m_converter.emplace(*conversion, engine::RunSettings());
}

void DifferenceFile::Write(const host::PicturePtr& picture)
{
    m_picture = picture;
    if (!m_like) return;
    if (!m_clip) Open(*picture);
    const host::PicturePtr converted = m_converter->Convert(picture);
    Writing([&] { m_clip->Write(*converted); });
}

void DifferenceFile::Finish()
{
    Writing([&] {
        if (m_clip)
            m_clip->Finish();
        else
            host::WritePicture(m_path, *m_picture);
    });
}

} // namespace vfil::tool
