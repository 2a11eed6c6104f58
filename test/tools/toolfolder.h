/// \file
/// A folder in which tests run the tool as a process.
#pragma once

#include <vfil/host/picturefile.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>

namespace vfil::tool {

namespace fs = std::filesystem;

struct ProcessResult {
    int status = 0;
    std::string out;
    std::string err;
};

/// A run that is refused, and what its message says.
struct Refusal {
    std::string arguments;
    std::vector<std::string> texts;
    int status = 2;
};

/// A test with a folder of its own.
class ToolFolder : public testing::Test {
protected:
    ToolFolder() { fs::create_directory(m_folder); }

    ~ToolFolder() override
    {
        fs::remove_all(m_folder);
        fs::remove_all(m_folder.string() + ".io");
    }

    fs::path Path(const std::string& name) const { return m_folder / name; }

    std::string Bytes(const std::string& name) const
    {
        std::ifstream file(Path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    /// All files in the folder with their bytes.
    std::map<std::string, std::string> Files() const
    {
        std::map<std::string, std::string> files;
        for (const auto& entry : fs::recursive_directory_iterator(m_folder))
            files[entry.path().string()] = entry.is_directory() ? "" : Bytes(entry.path());
        return files;
    }

    /// Writes a picture whose byte \p c of the pixel at (x, y) is value(x, y, c); y up.
    void Make(const std::string& name, const GUID& format, long width, long height,
              const std::function<long(long x, long y, long c)>& value) const
    {
        const host::PicturePtr picture = host::Picture::Create(format, width, height);
        const long pixelBytes = picture->PixelBytes();
        for (long y = 0; y < height; ++y) {
            for (long i = 0; i < width * pixelBytes; ++i) {
                picture->Row(y)[i] = static_cast<std::uint8_t>(value(i / pixelBytes, y, i % pixelBytes));
            }
        }
        host::WritePicture(Path(name), *picture);
    }

    /// One channel of a picture file: samples with blanks between them in rows with commas, from the top.
    std::string Channel(const std::string& name, int channel) const
    {
        const host::PicturePtr picture = host::ReadPicture(Path(name));
        const vfILFormatInfo& info = picture->FormatInfo();
        std::string text;
        for (long y = picture->Height() - 1; y >= 0; --y) {
            for (long x = 0; x < picture->Width(); ++x) {
                const std::uint8_t* sample =
                    picture->Row(y) + x * info.pixelBytes + channel * info.sampleBytes;
                std::uint16_t word = *sample;
                if (info.sampleBytes == 2) std::memcpy(&word, sample, 2);
                text += std::to_string(word) + (x + 1 < picture->Width() ? " " : y > 0 ? ", " : "");
            }
        }
        return text;
    }

    /// Runs a line of a shell in the folder. What it says goes to a folder beside the test's, which holds
    /// nothing but what the tool left.
    ProcessResult Shell(const std::string& line) const
    {
        const fs::path io = m_folder.string() + ".io";
        fs::create_directory(io);
        const std::string command = "cd '" + m_folder.string() + "' && { " + line + "\n} </dev/null >'" +
                                    (io / "out").string() + "' 2>'" + (io / "err").string() + "'";
        const int status = std::system(command.c_str());
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, Bytes(io / "out"), Bytes(io / "err")};
    }

    /// Runs the tool with \p arguments, which a shell takes apart.
    ProcessResult Run(const std::string& arguments) const { return Shell("'" VFIL_TOOL "' " + arguments); }

    /// What a run says that goes well.
    std::string RunWell(const std::string& arguments) const
    {
        const ProcessResult result = Run(arguments);
        EXPECT_EQ(result.status, 0) << arguments;
        EXPECT_EQ(result.err, "") << arguments;
        return result.out;
    }

    /// Each run ends with its status and texts, prints nothing else, and leaves the folder as it was.
    void ExpectRefusals(const std::vector<Refusal>& refusals, const std::string& messages) const
    {
        const auto before = Files();
        for (const Refusal& refusal : refusals) {
            SCOPED_TRACE(refusal.arguments);
            const ProcessResult result = Run(refusal.arguments);
            EXPECT_EQ(result.status, refusal.status);
            EXPECT_EQ(result.out, "");
            EXPECT_THAT(result.err, testing::MatchesRegex(messages));
            for (const std::string& text : refusal.texts)
                EXPECT_THAT(result.err, testing::HasSubstr(text));
            EXPECT_TRUE(Files() == before);
        }
    }

private:
    const fs::path m_folder = fs::temp_directory_path() / ("vfil-test-" + std::to_string(getpid()));
};

} // namespace vfil::tool
