/// \file
/// Picture files: PNG, JPEG, TIFF and raw pixels, read and written.
///
/// Files are read as Mono8 or Mono16 when they are gray without alpha, else as RGBA32 or RGBA64 with full
/// alpha where the file has none. The number of bits is the file's: 16 stays 16, fewer than 8 become 8. Alpha
/// and colour are kept as the file has them; colour that the file says is multiplied by alpha (TIFF) sets the
/// picture's state 2. Colour profiles and gamma are not applied. A raw file holds the bytes of the pixel
/// array and nothing else.
#pragma once

#include <vfil/host/export.h>
#include <vfil/host/picture.h>

#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>

namespace vfil::host {

/// A picture file that cannot be read or written. what() is one line: the file's name, and what would be
/// right.
class VFIL_HOST_API FileError : public std::runtime_error {
public:
    FileError(const std::filesystem::path& path, const std::string& text)
        : std::runtime_error(path.string() + ": " + text)
    {}
};

/// How a picture file is read.
struct ReadOptions {
    /// The format of the result; for raw files, that of the file, and needed. From the other files, one of
    /// RGBA32, RGBA64, Mono8 and Mono16: a byte becomes a word by v * 257, a word becomes its high byte, gray
    /// becomes opaque RGBA; RGBA never becomes gray.
    std::optional<vfILGuid> format;
    /// Size of a raw picture in pixels. Other files say their own size.
    long width = 0;
    long height = 0;
};

/// How a picture file is written.
struct WriteOptions {
    int jpegQuality = 92;   ///< 1 .. 100
    int pngCompression = 6; ///< 0 (none) .. 9 (smallest)
};

enum class AlphaState { None, Straight, Premultiplied };

/// What a picture file says about itself.
struct PictureInfo {
    const char* fileType = ""; ///< "PNG", "JPEG", "TIFF" or "raw"
    long width = 0;            ///< in pixels
    long height = 0;
    int depth = 0;    ///< bits of a sample in the file; 8 for a palette
    int channels = 0; ///< channels of a pixel in the file, alpha included; a palette counts as colour
    AlphaState alpha = AlphaState::None;
    vfILGuid format{}; ///< what ReadPicture makes of it when no format is asked for
};

/// Pictures of files have at most this many pixels a side ...
inline constexpr long kMaxFileSide = 65535;
/// ... and at most this many bytes in memory. More is refused before any memory is taken.
inline constexpr std::uint64_t kMaxFileBytes = std::uint64_t{1} << 31;

/// Reads a picture. The kind of file is known by its first bytes; a name that ends in ".raw" means raw
/// pixels.
///
/// \throws FileError  The file is missing, unreadable, truncated, damaged, too large or of no known kind, or
/// holds what
///                    cannot be turned into the wanted format.
VFIL_HOST_API PicturePtr ReadPicture(const std::filesystem::path& path, const ReadOptions& options = {});

/// Reads no more than a file's header.
///
/// \param options Format and size of a raw file.
/// \throws FileError as ReadPicture does. A file that is damaged behind its header may pass.
VFIL_HOST_API PictureInfo InspectPicture(const std::filesystem::path& path, const ReadOptions& options = {});

/// Writes a picture, in the kind of file that the name's ending says: .png, .jpg, .jpeg, .tif, .tiff or .raw.
///
/// RGBA32, RGBA64, Mono8 and Mono16 go to all kinds, other formats to raw alone. A PNG file holds straight
/// colour, so premultiplied colour is divided by alpha (0 where alpha is 0); TIFF keeps it and says so. JPEG
/// takes 8 bits and full alpha only. The file appears under its name when it is complete: until then, and
/// after a failure, a file that had that name is untouched, and nothing else is left behind.
///
/// \throws FileError  The picture does not go into that kind of file, or the file cannot be written in full.
VFIL_HOST_API void WritePicture(const std::filesystem::path& path, const Picture& picture,
                                const WriteOptions& options = {});

/// Refuses, as WritePicture would, a name whose ending is of no known kind or whose folder does not exist. To
/// be called before long work.
VFIL_HOST_API void CheckWritable(const std::filesystem::path& path);

/// Whether a path names a picture file: by its ending, and an existing file by its first bytes too.
VFIL_HOST_API bool IsPictureFile(const std::filesystem::path& path);

/// Whether both names lead to the same existing file.
VFIL_HOST_API bool SamePath(const std::filesystem::path& a, const std::filesystem::path& b);

} // namespace vfil::host
