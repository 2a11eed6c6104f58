/// \file
/// How a file appears under its name only when it is complete.

#include "host/temporaryfile.h"

#include <vfil/host/picturefile.h>

#include <atomic>
#include <cerrno>
#include <system_error>

#include <unistd.h>

namespace vfil::host {

namespace fs = std::filesystem;

namespace {

/// Follows a link to the file that is to be replaced, so that the link stays.
fs::path ReplacedFile(const fs::path& path)
{
    std::error_code error;
    fs::path real = fs::canonical(path, error);
    return error ? path : real;
}

} // namespace

std::string SystemText(int error)
{
    return std::generic_category().message(error);
}

void ThrowNotWritten(const fs::path& path, const char* complaint)
{
    throw FileError(path, "cannot be written: " + (errno != 0 ? SystemText(errno) : std::string(complaint)));
}

void CheckReplaceable(const fs::path& path)
{
    std::error_code error;
    const fs::path folder = path.has_parent_path() ? path.parent_path() : fs::path(".");
    if (!fs::is_directory(folder, error))
        throw FileError(path, "the folder " + folder.string() + " does not exist");
    const fs::file_status status = fs::status(path, error);
    if (fs::exists(status) && !fs::is_regular_file(status)) {
        throw FileError(path, "is no regular file and is not replaced; choose another name");
    }
    if (fs::exists(status) && access(path.c_str(), W_OK) != 0) {
        throw FileError(path, "is write-protected; choose another name or allow writing");
    }
}

TemporaryFile::TemporaryFile(const fs::path& path) : m_path(path), m_target(ReplacedFile(path))
{
    static std::atomic<unsigned> counter{0};
    constexpr int kTries = 1000;
    for (int i = 0; i < kTries && m_file == nullptr; ++i) {
        m_name = m_target;
        m_name.replace_filename(".vfil-" + std::to_string(getpid()) + "-" + std::to_string(counter++) +
                                ".tmp");
        m_file.reset(std::fopen(m_name.c_str(), "w+bx"));
        if (m_file == nullptr && errno != EEXIST) break;
    }
    if (m_file == nullptr) throw FileError(m_path, "cannot be written: " + SystemText(errno));
    errno = 0;
}

TemporaryFile::~TemporaryFile()
{
    if (m_committed) return;
    m_file.reset();
    std::error_code ignored;
    fs::remove(m_name, ignored);
}

void TemporaryFile::Commit()
{
    errno = 0;
    if (std::fclose(m_file.release()) != 0) ThrowNotWritten(m_path, "short write");
    std::error_code error;
    const fs::file_status old = fs::status(m_target, error);
    if (fs::exists(old)) fs::permissions(m_name, old.permissions(), error);
    fs::rename(m_name, m_target, error);
    if (error) throw FileError(m_path, "cannot be written: " + error.message());
    m_committed = true;
}

} // namespace vfil::host
