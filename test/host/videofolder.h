/// \file
/// What the tests of clips share: a folder of their own, clips made by FFmpeg's own program, frames.
#pragma once

#include <vfil/host/video.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include <unistd.h>

namespace vfil::host {

namespace fs = std::filesystem;
using Bytes = std::vector<std::uint8_t>;

struct Clip {
    VideoInfo info;
    std::vector<PicturePtr> frames;
};

class Video : public testing::Test {
protected:
    void SetUp() override
    {
        fs::create_directory(m_folder);
        fs::current_path(m_folder);
    }
    void TearDown() override
    {
        fs::current_path(m_folder.parent_path());
        fs::remove_all(m_folder);
    }

    static void Ffmpeg(const std::string& arguments)
    {
        ASSERT_EQ(std::system(("ffmpeg -v error -y " + arguments + " </dev/null").c_str()), 0) << arguments;
    }

    /// A raw frame of \p bytes as a clip of NUT.
    static void MakeRaw(const std::string& pixelFormat, const std::string& size, const Bytes& bytes)
    {
        std::ofstream("raw", std::ios::binary) << std::string(bytes.begin(), bytes.end());
        Ffmpeg("-f rawvideo -pix_fmt " + pixelFormat + " -s " + size + " -i raw -c copy raw.nut");
    }

    static Bytes Get(const std::string& name)
    {
        std::ifstream file(name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    /// What FFmpeg's own program says of the video of a file, "codec_name=ffv1|pix_fmt=yuv422p|...".
    static std::string Probe(const std::string& name)
    {
        const std::string command =
            "ffprobe -v error -select_streams v -show_entries stream=codec_name,pix_fmt,"
            "sample_aspect_ratio,color_range,color_space,color_transfer,color_primaries,"
            "field_order,r_frame_rate -of compact=p=0 " +
            name + " > probe";
        EXPECT_EQ(std::system(command.c_str()), 0);
        const Bytes text = Get("probe");
        return {text.begin(), text.end()};
    }

    static Clip ReadClip(const fs::path& path, const VideoOverrides& overrides = {})
    {
        VideoReader reader(path, overrides);
        Clip clip{reader.Info(), {}};
        while (PicturePtr frame = reader.Read())
            clip.frames.push_back(frame);
        return clip;
    }

    static void WriteClip(const fs::path& path, const VideoSettings& settings,
                          const std::vector<PicturePtr>& frames)
    {
        VideoWriter writer(path, settings);
        for (const PicturePtr& frame : frames)
            writer.Write(*frame);
        writer.Finish();
    }

private:
    const fs::path m_folder = fs::temp_directory_path() / ("vfil-video-" + std::to_string(getpid()));
};

/// Frames that differ, of samples that codings of studio range keep apart.
inline std::vector<PicturePtr> RandomFrames(const GUID& format, long width, long height, int count)
{
    std::vector<PicturePtr> frames;
    std::mt19937 random(7);
    for (int i = 0; i < count; ++i) {
        frames.push_back(Picture::Create(format, width, height));
        std::generate_n(frames.back()->Pixels(), frames.back()->Bytes(),
                        [&] { return static_cast<std::uint8_t>(1 + random() % 250); });
    }
    return frames;
}

inline VideoSettings SettingsFor(const Picture& frame, const std::string& codec)
{
    VideoSettings settings;
    settings.format = frame.Format();
    settings.width = frame.Width();
    settings.height = frame.Height();
    settings.codec = codec;
    settings.alpha = frame.FormatInfo().alpha ? AlphaState::Straight : AlphaState::None;
    return settings;
}

/// Of the samples of two pictures of one size, whose rows may lie in another order.
inline int GreatestDifference(const Picture& a, const Picture& b)
{
    int greatest = 0;
    const bool wide = a.FormatInfo().sampleBytes == 2;
    const auto compare = [&](const std::uint8_t* p, const std::uint8_t* q, std::size_t bytes) {
        for (std::size_t i = 0; i < bytes; i += wide ? 2 : 1) {
            const int difference = wide ? p[i] + 256 * p[i + 1] - q[i] - 256 * q[i + 1] : p[i] - q[i];
            greatest = std::max(greatest, std::abs(difference));
        }
    };
    for (long y = 0; y < a.Height(); ++y) {
        compare(a.Row(y), b.Row(y), a.RowBytes());
        if (IsFormatYCCA(a.Format()) != 0)
            compare(a.AlphaRow(y), b.AlphaRow(y), static_cast<std::size_t>(a.Width()));
    }
    return greatest;
}

} // namespace vfil::host
