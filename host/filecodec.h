/// \file
/// What every kind of picture file offers to picturefile.cpp, and what the kinds have in common. Private to
/// the host.
#pragma once

#include "host/temporaryfile.h"
#include <vfil/host/picturefile.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <string_view>

namespace vfil::host {

/// An open file, and the name by which messages speak of it.
struct OpenFile {
    std::FILE* stream;
    const std::filesystem::path& path;
};

/// One kind of picture file. Streams are at their first byte when they are handed over.
struct FileCodec {
    const char* name;
    /// Endings of names, lower case with the dot.
    std::array<std::string_view, 2> endings;
    /// Whether a file begins like one of this kind; null for raw files, which begin like anything.
    bool (*recognizes)(std::string_view head);
    PictureInfo (*inspect)(const OpenFile& file, const ReadOptions& options);
    PicturePtr (*read)(const OpenFile& file, const ReadOptions& options);
    /// Throws a FileError for a picture that this kind of file cannot hold.
    void (*check)(const std::filesystem::path& path, const Picture& picture);
    void (*write)(const OpenFile& file, const Picture& picture, const WriteOptions& options);
};

extern const FileCodec kPngCodec;
extern const FileCodec kJpegCodec;
extern const FileCodec kTiffCodec;
extern const FileCodec kRawCodec;

/// What a file library said last before it gave up. Plain data, so that a long jump may pass over it.
struct Complaint {
    char text[200] = "";

    void Set(const char* message) { std::snprintf(text, sizeof text, "%s", message); }
};

/// Whether a file's first bytes start with a signature.
inline bool BeginsWith(std::string_view head, std::string_view signature)
{
    return head.substr(0, signature.size()) == signature;
}

/// Throws for a size of 0 or beyond what files may have.
void CheckSize(const std::filesystem::path& path, std::uint64_t width, std::uint64_t height,
               const GUID& format);

/// Throws for a picture whose format is not one of the four that picture files hold.
void CheckFileFormat(const std::filesystem::path& path, const Picture& picture);

/// The functions of a kind that reads with an object of its own.
template <class Reader>
PictureInfo InspectWith(const OpenFile& file, const ReadOptions&)
{
    return Reader(file).ReadHeader();
}

template <class Reader>
PicturePtr ReadWith(const OpenFile& file, const ReadOptions&)
{
    Reader reader(file);
    return reader.ReadPixels(reader.ReadHeader());
}

[[noreturn]] void ThrowDamaged(const OpenFile& file, const char* kind, const Complaint& complaint);

} // namespace vfil::host
