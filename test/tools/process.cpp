/// \file
/// The tool as a process.
#include "tools/process.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>

namespace vfil::test {

namespace {

std::string ReadAll(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

std::string TemporaryFolder()
{
    std::string name = (std::filesystem::temp_directory_path() / "vfil-test-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
    return name;
}

} // namespace

ToolTest::ToolTest() : m_folder(TemporaryFolder())
{}

ToolTest::~ToolTest()
{
    std::error_code ignored;
    std::filesystem::remove_all(m_folder, ignored);
    std::filesystem::remove_all(m_folder.string() + ".io", ignored);
}

ProcessResult ToolTest::Run(const std::string& arguments) const
{
    return Shell("'" VFIL_TOOL "' " + arguments);
}

// What the process says goes to a folder beside the test's, which holds nothing but what the tool left.
ProcessResult ToolTest::Shell(const std::string& line) const
{
    const std::filesystem::path io = m_folder.string() + ".io";
    std::filesystem::create_directories(io);
    const std::string command = "cd '" + m_folder.string() + "' && { " + line + "\n} </dev/null >'" +
                                (io / "out").string() + "' 2>'" + (io / "err").string() + "'";
    const int status = std::system(command.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, ReadAll(io / "out"), ReadAll(io / "err")};
}

ProcessResult ToolTest::RunWell(const std::string& arguments) const
{
    const ProcessResult result = Run(arguments);
    EXPECT_EQ(result.status, 0) << arguments;
    EXPECT_EQ(result.err, "") << arguments;
    return result;
}

std::string ToolTest::Bytes(const std::string& name) const
{
    return ReadAll(Path(name));
}

void ToolTest::WriteBytes(const std::string& name, const std::string& bytes) const
{
    std::ofstream(Path(name), std::ios::binary) << bytes;
}

std::vector<std::string> ToolTest::Files() const
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(m_folder)) {
        names.push_back(std::filesystem::relative(entry.path(), m_folder).string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

void ToolTest::Make(const std::string& name, const GUID& format, long width, long height,
                    const std::function<int(long x, long y, int channel)>& value) const
{
    const host::PicturePtr picture = host::Picture::Create(format, width, height);
    const vfILFormatInfo& info = picture->FormatInfo();
    for (long y = 0; y < height; ++y) {
        std::uint8_t* sample = picture->Row(y);
        for (long x = 0; x < width; ++x) {
            for (int c = 0; c < info.channels; ++c, sample += info.sampleBytes) {
                const auto word = static_cast<std::uint16_t>(value(x, y, c));
                if (info.sampleBytes == 2)
                    std::memcpy(sample, &word, 2);
                else
                    *sample = static_cast<std::uint8_t>(word);
            }
        }
    }
    host::WritePicture(Path(name), *picture);
}

std::vector<std::vector<int>> ToolTest::Channel(const std::string& name, int channel) const
{
    const host::PicturePtr picture = host::ReadPicture(Path(name));
    const vfILFormatInfo& info = picture->FormatInfo();
    std::vector<std::vector<int>> rows;
    for (long y = picture->Height() - 1; y >= 0; --y) {
        std::vector<int>& row = rows.emplace_back();
        for (long x = 0; x < picture->Width(); ++x) {
            const std::uint8_t* sample = picture->Row(y) + x * info.pixelBytes + channel * info.sampleBytes;
            std::uint16_t word = *sample;
            if (info.sampleBytes == 2) std::memcpy(&word, sample, 2);
            row.push_back(word);
        }
    }
    return rows;
}

} // namespace vfil::test
