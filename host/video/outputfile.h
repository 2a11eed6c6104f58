/// \file
/// Where a written clip goes: a file that gets its name when it is complete, or standard output. Private to
/// the host.
#pragma once

#include "host/temporaryfile.h"
#include "host/video/libav.h"

#include <optional>

namespace vfil::host {

/// A container that is being written.
class OutputFile {
public:
    /// \throws FileError  No file can be made there.
    OutputFile(const std::filesystem::path& path, const AVOutputFormat& container);
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    AVFormatContext& Context() const { return *m_context; }

    /// Throws what a failed call on the container means: the disk is full, the pipe is closed, or what the
    /// library says. Nothing for a result of 0 or more when everything so far was written.
    void Check(int result) const;
    /// Writes what is held back, and gives the file its name.
    void Commit();

private:
    struct FreeContext {
        void operator()(AVFormatContext* context) const { avformat_free_context(context); }
    };
    struct FreeIo {
        void operator()(AVIOContext* io) const;
    };

    std::filesystem::path m_path;
    std::optional<TemporaryFile> m_file; ///< none for standard output
    int m_error = 0;                     ///< errno of the first write that failed
    std::unique_ptr<AVIOContext, FreeIo> m_io;
    std::unique_ptr<AVFormatContext, FreeContext> m_context;

    int Write(const std::uint8_t* bytes, int count);
    std::int64_t Seek(std::int64_t offset, int whence) const;
};

} // namespace vfil::host
