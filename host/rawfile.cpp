/// \file
/// Raw files: the bytes of a pixel array.

#include "host/filecodec.h"

#include <system_error>

namespace vfil::host {

namespace {

PictureInfo InspectRaw(const OpenFile& file, const ReadOptions& options)
{
    const vfILFormatInfo* format = options.format ? vfILFindFormat(*options.format) : nullptr;
    if (format == nullptr || (options.width == 0 && options.height == 0)) {
        throw FileError(file.path,
                        "raw pixels need a format and a size (--in-format rgba32 --in-size 720x576)");
    }
    if (options.width < 0 || options.height < 0) throw FileError(file.path, "a size is not negative");
    const auto width = static_cast<std::uint64_t>(options.width);
    const auto height = static_cast<std::uint64_t>(options.height);
    CheckSize(file.path, width, height, format->id);

    const std::uint64_t needed = width * height * static_cast<std::uint64_t>(format->pixelBytes);
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(file.path, error);
    if (error) throw FileError(file.path, "cannot be read: " + error.message());
    if (size != needed) {
        throw FileError(file.path, "holds " + std::to_string(size) + " bytes, but " + format->name + " of " +
                                       std::to_string(width) + "x" + std::to_string(height) + " has " +
                                       std::to_string(needed));
    }
    PictureInfo info{.fileType = "raw", .width = options.width, .height = options.height};
    info.depth = 8 * format->sampleBytes;
    info.channels = format->channels;
    info.alpha = format->alpha ? AlphaState::Straight : AlphaState::None;
    info.format = format->id;
    return info;
}

PicturePtr ReadRaw(const OpenFile& file, const ReadOptions& options)
{
    const PictureInfo info = InspectRaw(file, options);
    PicturePtr picture = Picture::Create(info.format, info.width, info.height);
    if (std::fread(picture->Pixels(), 1, picture->Bytes(), file.stream) != picture->Bytes()) {
        throw FileError(file.path, "cannot be read to its end");
    }
    return picture;
}

void CheckRaw(const std::filesystem::path&, const Picture&)
{}

void WriteRaw(const OpenFile& file, const Picture& picture, const WriteOptions&)
{
    if (std::fwrite(picture.Pixels(), 1, picture.Bytes(), file.stream) != picture.Bytes()) {
        ThrowNotWritten(file.path, "short write");
    }
}

} // namespace

const FileCodec kRawCodec{"raw", {".raw"}, nullptr, InspectRaw, ReadRaw, CheckRaw, WriteRaw};

} // namespace vfil::host
