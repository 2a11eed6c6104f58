/// \file
/// A folder of its own for a test, with small pictures.
#pragma once

#include <vfil/host/picturefile.h>

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <string>

#include <unistd.h>

namespace vfil {

namespace fs = std::filesystem;

/// A test with a folder that goes with it.
class TestFolder : public testing::Test {
protected:
    TestFolder() { fs::create_directory(m_folder); }
    ~TestFolder() override { fs::remove_all(m_folder); }

    const fs::path& Folder() const { return m_folder; }
    fs::path Path(const std::string& name) const { return m_folder / name; }

    std::string Bytes(const std::string& name) const
    {
        std::ifstream file(Path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    void Save(const std::string& name, const std::string& text) const { std::ofstream(Path(name)) << text; }

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

private:
    const fs::path m_folder = fs::temp_directory_path() / ("vfil-test-" + std::to_string(getpid()));
};

} // namespace vfil
