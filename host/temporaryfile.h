/// \file
/// How a file appears under its name only when it is complete. Private to the host.
#pragma once

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

namespace vfil::host {

/// The system's words for an errno value.
std::string SystemText(int error);

/// Throws the FileError of a write that failed. Names the system's reason, when errno holds one, rather than
/// the library's.
[[noreturn]] void ThrowNotWritten(const std::filesystem::path& path, const char* complaint);

/// Throws a FileError for a name that no file can get: its folder is missing, or it belongs to something that
/// is write-protected or no regular file.
void CheckReplaceable(const std::filesystem::path& path);

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using FilePtr = std::unique_ptr<std::FILE, CloseFile>;

/// A new file beside a target, open for reading and writing. It goes with this object unless it was
/// committed.
class TemporaryFile {
public:
    /// \throws FileError  The file cannot be made.
    explicit TemporaryFile(const std::filesystem::path& path);
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    std::FILE* Stream() const { return m_file.get(); }

    /// Closes the file and gives it the target's name, and the rights of a file that it replaces.
    ///
    /// \throws FileError  The last bytes cannot be written, or the name cannot be taken.
    void Commit();

private:
    std::filesystem::path m_path;
    std::filesystem::path m_target;
    std::filesystem::path m_name;
    FilePtr m_file;
    bool m_committed = false;
};

} // namespace vfil::host
