/// \file
/// Where a written clip goes.

#include "host/video/outputfile.h"

#include <cerrno>

#include <unistd.h>

namespace vfil::host {

namespace fs = std::filesystem;

namespace {

constexpr int kBufferBytes = 1 << 16;

#if LIBAVFORMAT_VERSION_MAJOR >= 61
using WrittenBytes = const std::uint8_t*;
#else
using WrittenBytes = std::uint8_t*;
#endif

/// All bytes to standard output. False with errno when it takes no more.
bool WriteToStandardOutput(const std::uint8_t* bytes, int count)
{
    while (count > 0) {
        const auto written = write(STDOUT_FILENO, bytes, static_cast<std::size_t>(count));
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return false;
        bytes += written;
        count -= static_cast<int>(written);
    }
    return true;
}

} // namespace

void OutputFile::FreeIo::operator()(AVIOContext* io) const
{
    av_freep(&io->buffer);
    avio_context_free(&io);
}

OutputFile::OutputFile(const fs::path& path, const AVOutputFormat& container) : m_path(path)
{
    if (path != "-") {
        CheckReplaceable(path);
        m_file.emplace(path);
    }
    AVFormatContext* context = nullptr;
    if (avformat_alloc_output_context2(&context, &container, nullptr, nullptr) < 0) throw std::bad_alloc();
    m_context.reset(context);

    const auto writeBytes = [](void* self, WrittenBytes bytes, int count) {
        return static_cast<OutputFile*>(self)->Write(bytes, count);
    };
    const auto seek = [](void* self, std::int64_t offset, int whence) {
        return static_cast<const OutputFile*>(self)->Seek(offset, whence);
    };
    auto* buffer = static_cast<unsigned char*>(NotNull(av_malloc(kBufferBytes)));
    using SeekFunction = std::int64_t (*)(void*, std::int64_t, int);
    const SeekFunction seekable = m_file ? SeekFunction{seek} : nullptr;
    m_io.reset(NotNull(avio_alloc_context(buffer, kBufferBytes, 1, this, nullptr, writeBytes, seekable)));
    context->pb = m_io.get();
    context->flags |= AVFMT_FLAG_CUSTOM_IO;
}

int OutputFile::Write(const std::uint8_t* bytes, int count)
{
    errno = 0;
    const auto size = static_cast<std::size_t>(count);
    const bool done =
        m_file ? std::fwrite(bytes, 1, size, m_file->Stream()) == size : WriteToStandardOutput(bytes, count);
    if (done) return count;
    if (m_error == 0) m_error = errno != 0 ? errno : EIO;
    return AVERROR(m_error);
}

std::int64_t OutputFile::Seek(std::int64_t offset, int whence) const
{
    if ((whence & AVSEEK_SIZE) != 0) return AVERROR(ENOSYS);
    if (fseeko(m_file->Stream(), offset, whence & ~AVSEEK_FORCE) != 0) return AVERROR(errno);
    return ftello(m_file->Stream());
}

void OutputFile::Check(int result) const
{
    if (m_error == EPIPE) throw PipeClosed();
    if (m_error != 0) throw FileError(m_path, "cannot be written: " + SystemText(m_error));
    const int failure = result < 0 ? result : m_io->error;
    if (failure < 0) throw FileError(m_path, "cannot be written: " + LibavText(failure));
}

void OutputFile::Commit()
{
    avio_flush(m_io.get());
    Check(0);
    if (m_file) m_file->Commit();
}

} // namespace vfil::host
