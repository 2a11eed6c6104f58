/// \file
/// Picture files: which kind a file is.

#include <vfil/host/picturefile.h>

#include "host/filecodec.h"
#include "host/pixelrows.h"
#include "host/temporaryfile.h"

#include <cctype>
#include <cerrno>
#include <new>
#include <system_error>

namespace vfil::host {

namespace {

namespace fs = std::filesystem;

constexpr std::array<const FileCodec*, 4> kCodecs{&kPngCodec, &kJpegCodec, &kTiffCodec, &kRawCodec};

/// The kind that a name's ending stands for, or null.
const FileCodec* CodecOfName(const fs::path& path)
{
    std::string ending = path.extension().string();
    for (char& c : ending) {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    for (const FileCodec* codec : kCodecs) {
        for (const std::string_view known : codec->endings) {
            if (!known.empty() && known == ending) return codec;
        }
    }
    return nullptr;
}

/// The kind that a file's first bytes stand for, or null.
const FileCodec* CodecOfHead(std::string_view head)
{
    for (const FileCodec* codec : kCodecs) {
        if (codec->recognizes != nullptr && codec->recognizes(head)) return codec;
    }
    return nullptr;
}

FilePtr OpenForReading(const fs::path& path)
{
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (status.type() == fs::file_type::not_found) throw FileError(path, "no such file");
    if (status.type() == fs::file_type::directory)
        throw FileError(path, "is a folder; name a picture file in it");
    if (error) throw FileError(path, "cannot be read: " + error.message());
    if (status.type() != fs::file_type::regular)
        throw FileError(path, "is no regular file; name a picture file");
    FilePtr file(std::fopen(path.c_str(), "rb"));
    if (file == nullptr) throw FileError(path, "cannot be read: " + SystemText(errno));
    return file;
}

/// The kind of a file that is to be read: raw by its name, all others by their first bytes.
const FileCodec& CodecOfFile(const fs::path& path, std::FILE* file)
{
    if (CodecOfName(path) == &kRawCodec) return kRawCodec;
    char bytes[8];
    errno = 0;
    const std::string_view head(bytes, std::fread(bytes, 1, sizeof bytes, file));
    if (std::ferror(file) != 0) throw FileError(path, "cannot be read: " + SystemText(errno));
    if (head.empty()) throw FileError(path, "not a picture: the file is empty");
    std::rewind(file);
    if (const FileCodec* codec = CodecOfHead(head)) return *codec;
    throw FileError(
        path, "not a picture: its first bytes are of no known kind (PNG, JPEG, TIFF); a file of raw pixels "
              "is named .raw and needs --in-format and --in-size");
}

/// Opens a file, finds its kind and runs one of the kind's functions on it.
template <class Step>
auto WithFile(const fs::path& path, Step step)
{
    const FilePtr file = OpenForReading(path);
    const FileCodec& codec = CodecOfFile(path, file.get());
    try {
        return step(codec, OpenFile{file.get(), path});
    } catch (const std::bad_alloc&) {
        throw FileError(path, "not enough memory for the picture");
    }
}

PicturePtr ConvertTo(const fs::path& path, const PicturePtr& picture, const GUID& format)
{
    if (picture->Format() == format) return picture;
    if (!CanConvert(picture->Format(), format)) {
        const vfILFormatInfo* wanted = vfILFindFormat(format);
        throw FileError(path,
                        std::string("is ") + picture->FormatInfo().name + " and cannot be read as " +
                            (wanted == nullptr ? "an unknown format" : wanted->name) +
                            "; Mono8, Mono16, RGBA32 and RGBA64 change in depth, and from mono to RGBA");
    }
    CheckSize(path, static_cast<std::uint64_t>(picture->Width()),
              static_cast<std::uint64_t>(picture->Height()), format);
    return ConvertPicture(picture, format);
}

} // namespace

void CheckSize(const fs::path& path, std::uint64_t width, std::uint64_t height, const GUID& format)
{
    const std::string size = std::to_string(width) + "x" + std::to_string(height);
    if (width == 0 || height == 0) throw FileError(path, "a picture of " + size + " has no pixels");
    const auto most = static_cast<std::uint64_t>(kMaxFileSide);
    const auto pixelBytes = static_cast<std::uint64_t>(vfILFindFormat(format)->pixelBytes);
    // Within the first limit the product is below 2^35.
    if (width > most || height > most || width * height * pixelBytes > kMaxFileBytes) {
        throw FileError(path, "a picture of " + size + " is too large; up to " + std::to_string(most) +
                                  " pixels a side and 2 GiB in memory are read");
    }
}

void CheckFileFormat(const fs::path& path, const Picture& picture)
{
    if (IsFileFormat(picture.Format())) return;
    throw FileError(path, std::string("a picture in ") + picture.FormatInfo().name +
                              " goes to .raw files only; convert it to RGBA32, RGBA64, Mono8 or Mono16");
}

void ThrowDamaged(const OpenFile& file, const char* kind, const Complaint& complaint)
{
    std::string text = std::string("damaged or truncated ") + kind + " file";
    if (complaint.text[0] != '\0') text += std::string(" (") + complaint.text + ")";
    throw FileError(file.path, text);
}

PicturePtr ReadPicture(const fs::path& path, const ReadOptions& options)
{
    return WithFile(path, [&](const FileCodec& codec, const OpenFile& file) {
        const PicturePtr picture = codec.read(file, options);
        return options.format ? ConvertTo(path, picture, *options.format) : picture;
    });
}

PictureInfo InspectPicture(const fs::path& path, const ReadOptions& options)
{
    return WithFile(
        path, [&](const FileCodec& codec, const OpenFile& file) { return codec.inspect(file, options); });
}

void CheckWritable(const fs::path& path)
{
    if (CodecOfName(path) == nullptr) {
        throw FileError(path,
                        "no known kind of picture file; name it .png, .jpg, .jpeg, .tif, .tiff or .raw");
    }
    CheckReplaceable(path);
}

void WritePicture(const fs::path& path, const Picture& picture, const WriteOptions& options)
{
    CheckWritable(path);
    const FileCodec& codec = *CodecOfName(path);
    if (picture.Bytes() == 0) throw FileError(path, "the picture has no pixels to write");
    codec.check(path, picture);
    try {
        TemporaryFile file(path);
        codec.write({file.Stream(), path}, picture, options);
        file.Commit();
    } catch (const std::bad_alloc&) {
        throw FileError(path, "not enough memory to write the picture");
    }
}

bool IsPictureFile(const fs::path& path)
{
    if (CodecOfName(path) != nullptr) return true;
    std::error_code error;
    if (!fs::is_regular_file(path, error)) return false;
    const FilePtr file(std::fopen(path.c_str(), "rb"));
    char bytes[8];
    return file != nullptr && CodecOfHead({bytes, std::fread(bytes, 1, sizeof bytes, file.get())}) != nullptr;
}

bool SamePath(const fs::path& a, const fs::path& b)
{
    std::error_code error;
    return fs::equivalent(a, b, error) && !error;
}

} // namespace vfil::host
