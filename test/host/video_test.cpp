/// \file
/// Clips: round trips through containers and codecs, what arrives of streams that FFmpeg's own program made,
/// what files say of colour and fields, and damaged, refused and unfinished clips.

#include "host/video/video.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <random>
#include <sstream>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace vfil::host {
namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<std::uint8_t>;
using testing::AllOf;
using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::ThrowsMessage;

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
std::vector<PicturePtr> RandomFrames(const GUID& format, long width, long height, int count)
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

VideoSettings SettingsFor(const Picture& frame, const std::string& codec)
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
int GreatestDifference(const Picture& a, const Picture& b)
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

TEST_F(Video, LosslessCodecsGiveBackEveryFrame)
{
    struct {
        GUID format;
        const char* file;
        const char* codec;
        const char* description;
        int difference = 0;
    } const cases[] = {
        {PXFormat_YUV422_601, "a.nut", "rawvideo", "rawvideo uyvy422"},
        {PXFormat_YUV422_601, "a.avi", "rawvideo", "rawvideo uyvy422"},
        {PXFormat_YUV422_709, "a.mov", "rawvideo", "rawvideo uyvy422"},
        {PXFormat_YCC422_709, "a.nut", "rawvideo", "rawvideo yuyv422"},
        {PXFormat_YCC422_601, "a.avi", "rawvideo", "rawvideo yuyv422"},
        {PXFormat_YCC422_709, "a.mov", "rawvideo", "rawvideo yuyv422"},
        {PXFormat_YUV422_709, "a.mkv", "ffv1", "ffv1 yuv422p"},
        {PXFormat_YUV422_601, "a.y4m", "", "rawvideo yuv422p"},
        {PXFormat_YCCA422_709, "a.mkv", "ffv1", "ffv1 yuva422p"},
        {PXFormat_YCCA422_601, "a.nut", "rawvideo", "rawvideo yuva422p"},
        {PXFormat_YCCA32, "a.mkv", "ffv1", "ffv1 yuva444p"},
        {PXFormat_YCCA64, "a.mkv", "ffv1", "ffv1 yuva444p16le", 1}, // 65536 / 257 codes become 65536 / 256
        {PXFormat_RGBA32, "a.mov", "qtrle", "qtrle argb"},
        {PXFormat_RGBA32, "a.mov", "png", "png rgba"},
        {PXFormat_RGBA32, "a.mkv", "ffv1", "ffv1 bgra"},
        {PXFormat_RGBA64, "a.mov", "png", "png rgba64be"},
        {PXFormat_RGBA64, "a.mkv", "ffv1", "ffv1 rgba64le"},
        {PXFormat_Mono8, "a.mkv", "ffv1", "ffv1 gray"},
        {PXFormat_Mono16, "a.mkv", "ffv1", "ffv1 gray16le"},
        {PXFormat_YCC422_601_SplitOdd, "a.nut", "rawvideo", "rawvideo yuyv422"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.file) + " " + c.description);
        const std::vector<PicturePtr> frames = RandomFrames(c.format, 38, 21, 3);
        const VideoSettings settings = SettingsFor(*frames[0], c.codec);
        EXPECT_EQ(VideoWriter(c.file, settings).Description(), c.description);
        EXPECT_EQ(FormatsOfVideo(c.file, settings).at(0), c.format);
        WriteClip(c.file, settings, frames);
        const bool is709 = frames[0]->FormatInfo().model == PXColorModel_YCC709;
        const Clip clip = ReadClip(c.file, {.matrix = is709 ? Matrix::Bt709 : Matrix::Bt601});
        ASSERT_EQ(clip.frames.size(), frames.size());
        // Split fields arrive as they are shown.
        EXPECT_THAT(vfILFindFormat(c.format)->name,
                    testing::StartsWith(vfILFindFormat(clip.info.format)->name));
        for (std::size_t i = 0; i < frames.size(); ++i)
            EXPECT_LE(GreatestDifference(*frames[i], *clip.frames[i]), c.difference);
    }
}

Bytes FromHex(const std::string& hex)
{
    Bytes bytes;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2)
        bytes.push_back(static_cast<std::uint8_t>(std::stoi(hex.substr(i, 2), nullptr, 16)));
    return bytes;
}

/// Frames of 8 by 8 pixels of one colour: "51x64 5ax16" is 64 bytes and 16 bytes.
Bytes Planes(const std::string& text)
{
    Bytes bytes;
    std::istringstream words(text);
    for (std::string word; words >> word;) {
        const std::size_t cross = word.find('x');
        const Bytes unit = FromHex(word.substr(0, cross));
        for (int i = std::stoi(word.substr(cross + 1)); i > 0; --i)
            bytes.insert(bytes.end(), unit.begin(), unit.end());
    }
    return bytes;
}

TEST_F(Video, EachKindOfStreamArrivesInTheNearestFormat)
{
    const VideoOverrides as709{.matrix = Matrix::Bt709};
    struct {
        const char* pixelFormat;
        const char* planes;
        const char* format;
        const char* pixels; ///< the first bytes of the picture
        VideoOverrides overrides = {};
        const char* remark = "";
    } const cases[] = {
        {"yuv420p", "51x64 5ax16 f0x16", "YUV422_601", "5a51f051"},
        {"yuv411p", "51x64 5ax16 f0x16", "YUV422_709", "5a51f051", as709},
        {"yuva420p", "51x64 5ax16 f0x16 33x64", "YCCA422_601", "5a51f051"},
        {"yuv444p", "51x64 5ax64 f0x64", "YCCA32", "515af0ff"},
        {"yuva444p", "51x64 5ax64 f0x64 33x64", "YCCA32", "515af033"},
        {"yuv444p", "51x64 5ax64 f0x64", "YUV422_709", "5a51f051", as709, "halved"},
        // 255 of full range is white; 85 and -128 of chroma are 74.7 and -112.4.
        {"yuv422p", "ffx64 d5x32 00x32", "YUV422_601", "cbeb10eb", {.range = Range::Full}, "full range"},
        // 235 of 8 bits is 940 of 10, 60160 of 16, and 235 * 257 of ours.
        {"yuv422p10le", "ac03x64 0002x32 c003x32", "YCCA64", "ebeb8080f0f0ffff"},
        {"yuva444p16le", "00ebx64 0080x64 00f0x64 0080x64", "YCCA64", "ebeb8080f0f00080"},
        // 942 and 961 are 235.5 and 240.25 of 8 bits.
        {"yuv420p10le", "ae03x64 0002x16 c103x16", "YUV422_709", "80ecf0ec", as709, "rounded"},
        {"rgb24", "112233x64", "RGBA32", "112233ff"},
        {"bgra", "11223344x64", "RGBA32", "33221144"},
        {"0rgb", "00112233x64", "RGBA32", "112233ff"},
        {"gbrp", "22x64 33x64 11x64", "RGBA32", "112233ff"},
        {"rgb565le", "1ff8x64", "RGBA32", "ff00ffff"},
        {"gbrap10le", "ff03x64 0000x64 0102x64 0100x64", "RGBA64", "6080ffff00004000"},
        {"rgb48be", "123456789abcx64", "RGBA64", "34127856bc9affff"},
        {"gray", "77x64", "Mono8", "77"},
        {"gray10le", "ff03x64", "Mono16", "ffff"},
        {"ya8", "7788x64", "RGBA32", "77777788"},
        {"monow", "0fx8", "Mono8", "ffffffff00000000"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.pixelFormat);
        MakeRaw(c.pixelFormat, "8x8", Planes(c.planes));
        const Clip clip = ReadClip("raw.nut", c.overrides);
        ASSERT_EQ(clip.frames.size(), 1U);
        const Picture& picture = *clip.frames[0];
        EXPECT_STREQ(picture.FormatInfo().name, c.format);
        const Bytes pixels = FromHex(c.pixels);
        EXPECT_EQ(Bytes(picture.Pixels(), picture.Pixels() + pixels.size()), pixels);
        EXPECT_EQ(picture.FormatInfo().alphaPlane ? *picture.AlphaRow(0) : 0x33, 0x33);
        const std::string name = c.pixelFormat;
        const bool alpha = std::ranges::any_of(std::array{"yuva", "bgra", "ya8", "gbrap"},
                                               [&](const char* start) { return name.starts_with(start); });
        EXPECT_EQ(clip.info.alpha.value, alpha ? AlphaState::Straight : AlphaState::None);
        EXPECT_THAT(testing::PrintToString(clip.info.remarks), HasSubstr(c.remark));
    }
}

TEST_F(Video, StreamsOfMoreBitsAndOfFullRangeComeBackAsTheyWere)
{
    for (const auto& [pixelFormat, codes] : {std::pair{"yuv444p10le", 1024}, {"yuv444p12le", 4096}}) {
        Bytes bytes;
        for (int plane = 0; plane < 3; ++plane) {
            for (int code = 0; code < codes; ++code) {
                // Codes above the 16-bit white of our pictures have no place in them.
                const int kept = std::min((code + 7 * plane) % codes, codes * 65280 / 65536);
                bytes.push_back(static_cast<std::uint8_t>(kept));
                bytes.push_back(static_cast<std::uint8_t>(kept >> 8));
            }
        }
        MakeRaw(pixelFormat, "64x" + std::to_string(codes / 64), bytes);
        VideoReader reader("raw.nut", {.matrix = Matrix::Bt601});
        const PicturePtr frame = reader.Read();
        VideoSettings settings = SettingsFor(*frame, "ffv1");
        settings.alpha = AlphaState::None;
        settings.likeInput = &reader;
        WriteClip("b.mkv", settings, {frame});
        EXPECT_THAT(Probe("b.mkv"), HasSubstr(pixelFormat));
        Ffmpeg("-i b.mkv -f rawvideo back");
        EXPECT_EQ(Get("back"), bytes);
    }
    // All of studio luma and chroma to a full-range file and back: 220 levels fit in 256.
    const PicturePtr ramp = Picture::Create(PXFormat_YUV422_601, 220, 4);
    for (long i = 0; i < 220 * 8; ++i)
        ramp->Pixels()[i] = static_cast<std::uint8_t>(16 + i / 2 % 220);
    VideoSettings settings = SettingsFor(*ramp, "ffv1");
    settings.range = Range::Full;
    WriteClip("full.mkv", settings, {ramp});
    EXPECT_THAT(Probe("full.mkv"), HasSubstr("color_range=pc"));
    const Clip clip = ReadClip("full.mkv");
    EXPECT_EQ(clip.info.range.origin, Origin::Stream);
    EXPECT_EQ(GreatestDifference(*clip.frames[0], *ramp), 0);
}

TEST_F(Video, ChromaIsResampledWithinFieldsAndBesideTheLeftSample)
{
    // Rows of chroma alternate between the fields, which have one colour each.
    MakeRaw("yuv420p", "16x16", Planes("51x256 20x8 c0x8 20x8 c0x8 20x8 c0x8 20x8 c0x8 80x64"));
    const auto chromaOf = [](const Clip& clip, long row) { return clip.frames[0]->Row(15 - row)[4]; };
    const Clip fields = ReadClip("raw.nut", {.fieldOrder = FieldOrder::TopFirst});
    EXPECT_NEAR(chromaOf(ReadClip("raw.nut"), 7), 0x70, 0x40); // where the frame is taken for one moment
    for (long row = 0; row < 16; ++row) {
        EXPECT_EQ(chromaOf(fields, row), row % 2 == 0 ? 0x20 : 0xC0);
    }
    VideoSettings settings = SettingsFor(*fields.frames[0], "rawvideo");
    VideoReader like("raw.nut");
    settings.likeInput = &like;
    settings.fieldOrder = FieldOrder::TopFirst;
    WriteClip("b.nut", settings, fields.frames);
    Ffmpeg("-i b.nut -f rawvideo back");
    EXPECT_EQ(Get("back"), Get("raw"));
    // 4:1:1 whose chroma rises by 4 a luma sample: between the samples it lies on the straight line.
    Bytes line(32 * 4, 0x51);
    for (int i = 0; i < 64; ++i)
        line.push_back(static_cast<std::uint8_t>(40 + 16 * (i % 8)));
    MakeRaw("yuv411p", "32x4", line);
    const Clip rise = ReadClip("raw.nut");
    for (long x = 4; x < 24; x += 2)
        EXPECT_NEAR(rise.frames[0]->Row(1)[2 * x], 40 + 4 * static_cast<int>(x), 1) << x;
}

TEST_F(Video, WhatFilesSayOfColourAndFieldsIsReadAgain)
{
    struct {
        const char* file;
        const char* codec;
        GUID format;
        Range range;
        FieldOrder fields;
        const char* probe;
    } const cases[] = {
        {"a.mpg", "mpeg2video", PXFormat_YUV422_709, Range::Studio, FieldOrder::TopFirst, "field_order=tt"},
        {"a.mpg", "mpeg2video", PXFormat_YUV422_601, Range::Studio, FieldOrder::BottomFirst,
         "field_order=bb"},
        {"a.mp4", "libx264", PXFormat_YUV422_709, Range::Full, FieldOrder::TopFirst, "color_range=pc"},
        {"a.mkv", "ffv1", PXFormat_YUV422_709, Range::Full, FieldOrder::BottomFirst, "color_range=pc"},
        {"a.mov", "rawvideo", PXFormat_YUV422_709, Range::Studio, FieldOrder::BottomFirst, "field_order=bb"},
        {"a.mov", "rawvideo", PXFormat_YCC422_709, Range::Studio, FieldOrder::TopFirst, "pix_fmt=yuyv422"},
        {"a.mov", "prores_ks", PXFormat_YUV422_709, Range::Studio, FieldOrder::TopFirst, "codec_name=prores"},
        {"a.nut", "rawvideo", PXFormat_YUV422_709, Range::Full, FieldOrder::BottomFirst, "uyvy422"},
        {"a.nut", "ffv1", PXFormat_YUV422_709, Range::Studio, FieldOrder::Progressive, "codec_name=ffv1"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.file) + " " + c.codec);
        const std::vector<PicturePtr> frames(4, RandomFrames(c.format, 64, 48, 1)[0]);
        VideoSettings settings = SettingsFor(*frames[0], c.codec);
        settings.range = c.range;
        settings.fieldOrder = c.fields;
        settings.aspect = {4, 3};
        settings.rate = {30000, 1001};
        EXPECT_THAT(VideoWriter(c.file, settings).Remarks(), IsEmpty());
        WriteClip(c.file, settings, frames);
        const std::string probe = Probe(c.file);
        EXPECT_THAT(probe, AllOf(HasSubstr(c.probe), HasSubstr("sample_aspect_ratio=4:3"),
                                 HasSubstr("r_frame_rate=30000/1001")));
        const bool is709 = IsFormat709(c.format) != 0;
        if (fs::path(c.file).extension() != ".nut") {
            EXPECT_THAT(probe, HasSubstr(is709 ? "color_space=bt709" : "color_space=smpte170m"));
        }
        const Clip clip = ReadClip(c.file);
        EXPECT_EQ(clip.frames.size(), 4U);
        EXPECT_EQ(clip.info.matrix.value, is709 ? Matrix::Bt709 : Matrix::Bt601);
        EXPECT_NE(clip.info.matrix.origin, Origin::Default);
        EXPECT_EQ(clip.info.range.value, c.range);
        EXPECT_EQ(clip.info.fieldOrder.value, c.fields);
        EXPECT_EQ(clip.info.aspect.numerator * 3, clip.info.aspect.denominator * 4);
    }
    VideoSettings avi = SettingsFor(*Picture::Create(PXFormat_YUV422_709, 64, 32), "rawvideo");
    avi.range = Range::Full;
    avi.fieldOrder = FieldOrder::TopFirst;
    EXPECT_THAT(VideoWriter("a.avi", avi).Remarks(),
                testing::ElementsAre(HasSubstr("--matrix 709"), HasSubstr("--range full"),
                                     HasSubstr("--field-order top")));
}

TEST_F(Video, InterlacedSourceKeepsItsFlagsAndItsSound)
{
    const std::string source = VFIL_SOURCE_DIR "/media/dog-352x288i25-tff-422.mpg";
    VideoReader reader(source);
    const VideoInfo& info = reader.Info();
    EXPECT_EQ(info.format, PXFormat_YUV422_601);
    EXPECT_EQ(info.fieldOrder.value, FieldOrder::TopFirst);
    EXPECT_EQ(info.matrix.value, Matrix::Bt601);
    EXPECT_THAT(info.remarks, IsEmpty());
    EXPECT_THAT(info.otherStreams, testing::ElementsAre(HasSubstr("mp2")));
    VideoSettings settings;
    settings.format = info.format;
    settings.width = info.width;
    settings.height = info.height;
    settings.rate = info.rate;
    settings.aspect = info.aspect;
    settings.fieldOrder = info.fieldOrder.value;
    settings.likeInput = &reader;
    VideoWriter writer("b.mpg", settings);
    EXPECT_EQ(writer.Description(), "mpeg2video yuv422p");
    std::vector<PicturePtr> frames;
    EXPECT_TRUE(reader.Skip());
    while (PicturePtr frame = reader.Read()) {
        writer.Write(*frame);
        frames.push_back(frame);
    }
    writer.Finish();
    EXPECT_EQ(frames.size(), 9U);
    EXPECT_EQ(Probe("b.mpg"), Probe(source));
    const Clip again = ReadClip("b.mpg");
    EXPECT_EQ(again.info.otherStreams, info.otherStreams);
    ASSERT_EQ(again.frames.size(), 9U);
    for (std::size_t i = 0; i < 9; ++i)
        EXPECT_LE(GreatestDifference(*again.frames[i], *frames[i]), 20);
    EXPECT_THAT(VideoWriter("b.y4m", settings).Remarks(), Contains(HasSubstr("audio mp2")));
}

TEST_F(Video, SilenceContradictionAndOverrideAreToldApart)
{
    // The track says 709, the codec's own header 601.
    Ffmpeg("-f lavfi -i testsrc2=s=64x64:d=0.2 -pix_fmt yuv420p -c:v libx264 "
           "-colorspace bt709 -color_primaries bt709 -color_trc bt709 in.mp4");
    Ffmpeg("-i in.mp4 -c copy -bsf:v h264_metadata=matrix_coefficients=6 two.mp4");
    const VideoInfo two = ReadClip("two.mp4").info;
    EXPECT_EQ(two.matrix.value, Matrix::Bt601);
    EXPECT_EQ(two.matrix.origin, Origin::Frame);
    EXPECT_THAT(two.remarks,
                Contains(AllOf(HasSubstr("stream says colour matrix 709"), HasSubstr("--matrix"))));
    const VideoInfo told =
        ReadClip("two.mp4", {Matrix::Bt709, Range::Full, FieldOrder::BottomFirst, {}}).info;
    EXPECT_EQ(told.format, PXFormat_YUV422_709);
    EXPECT_EQ(told.matrix.origin, Origin::Override);
    EXPECT_EQ(told.range.origin, Origin::Override);
    EXPECT_EQ(told.fieldOrder.value, FieldOrder::BottomFirst);

    for (const auto& [size, matrix] : {std::pair{"720x576", Matrix::Bt601}, {"1280x720", Matrix::Bt709}}) {
        Ffmpeg(std::string("-f lavfi -i color=s=") + size + ":d=0.04 -pix_fmt yuv422p silent.y4m");
        const VideoInfo silent = ReadClip("silent.y4m").info;
        EXPECT_EQ(silent.matrix.value, matrix);
        EXPECT_EQ(silent.matrix.origin, Origin::Default);
        EXPECT_THAT(silent.remarks, Contains(AllOf(HasSubstr("not stated"), HasSubstr("--matrix 601|709"))));
    }
    Ffmpeg("-f lavfi -i color=s=64x64:d=0.04 -pix_fmt yuv420p -c:v libx264 -colorspace bt2020nc far.mp4");
    const VideoInfo far = ReadClip("far.mp4").info;
    EXPECT_EQ(far.matrix.value, Matrix::Bt709);
    EXPECT_THAT(far.remarks, Contains(HasSubstr("bt2020nc")));
}

TEST_F(Video, AlphaIsKeptOrRefused)
{
    const std::vector<PicturePtr> frames{Picture::Create(PXFormat_YCCA422_709, 64, 32)};
    std::fill_n(frames[0]->Pixels(), 64 * 32 * 2, std::uint8_t{128});
    for (long i = 0; i < 64 * 32; ++i)
        frames[0]->Pixels()[64 * 64 + i] = static_cast<std::uint8_t>(i % 64 * 4);
    VideoSettings settings = SettingsFor(*frames[0], "prores_ks");
    WriteClip("a.mov", settings, frames);
    Clip clip = ReadClip("a.mov", {.premultiplied = true});
    EXPECT_THAT(clip.info.pixelFormat, HasSubstr("yuva444p"));
    EXPECT_EQ(clip.info.format, PXFormat_YCCA422_709);
    EXPECT_TRUE(clip.frames[0]->Premultiplied());
    EXPECT_LE(GreatestDifference(*clip.frames[0], *frames[0]), 1);

    settings.codec = "libx264";
    EXPECT_THAT([&] { VideoWriter("a.mp4", settings); },
                ThrowsMessage<FileError>(HasSubstr("cannot hold alpha")));
    settings.codec = "ffv1";
    settings.alpha = AlphaState::Premultiplied;
    EXPECT_THAT(VideoWriter("a.mkv", settings).Remarks(), Contains(HasSubstr("--premultiplied yes")));
    WriteClip("a.nut", settings, frames);
    EXPECT_EQ(ReadClip("a.nut").info.alpha.value, AlphaState::Premultiplied);
}

TEST_F(Video, DamagedClipsAreRefusedInOneLine)
{
    Ffmpeg("-f lavfi -i testsrc2=s=64x64:d=1 -c:v libx264 -bf 0 -movflags +faststart good.mp4");
    Ffmpeg("-i good.mp4 -c:v ffv1 -pix_fmt yuv422p good.mkv");
    Ffmpeg("-i good.mp4 -c:v rawvideo -pix_fmt uyvy422 good.avi");
    Ffmpeg("-i good.mp4 -pix_fmt yuv422p good.y4m");
    Ffmpeg("-f lavfi -i sine=d=1 sound.mp4");
    MakeRaw("yuv420p", "7x8", Bytes(56 + 32, 80));
    Ffmpeg("-f lavfi -i testsrc2=s=64x64:d=0.2 -f mpeg2video a.m2v");
    Ffmpeg("-f lavfi -i testsrc2=s=96x64:d=0.2 -f mpeg2video b.m2v");
    ASSERT_EQ(std::system("cat a.m2v b.m2v > sizes.m2v; echo text > notes.txt; : > empty.mp4"), 0);
    for (const char* name : {"good.mp4", "good.mkv", "good.avi", "good.y4m"}) {
        EXPECT_EQ(ReadClip(name).frames.size(), 25U) << name;
        fs::copy_file(name, std::string("cut") + name);
        fs::resize_file(std::string("cut") + name, fs::file_size(name) * 2 / 3);
    }
    ASSERT_EQ(std::system("sed s/avc1/xyzq/g good.mp4 > nocodec.mp4"), 0);
    const std::pair<const char*, const char*> cases[] = {
        {"cutgood.mp4", "cut short or damaged after frame"},
        {"cutgood.mkv", "header promises 25"},
        {"cutgood.avi", "cut short or damaged after frame"},
        {"cutgood.y4m", "end within a frame"},
        {"sound.mp4", "holds no video"},
        {"raw.nut", "a width of 7 is odd"},
        {"sizes.m2v", "from 64x64 to 96x64"},
        {"notes.txt", "not a clip"},
        {"empty.mp4", "not a clip"},
        {"missing.mp4", "no such file"},
        {"nocodec.mp4", "codec 'xyzq' is not known"},
    };
    for (const auto& [name, message] : cases) {
        EXPECT_THAT([name = name] { ReadClip(name); },
                    ThrowsMessage<FileError>(AllOf(HasSubstr(std::string(name) + ": "), HasSubstr(message),
                                                   testing::Not(HasSubstr("\n")))));
    }
    EXPECT_TRUE(IsVideo("good.mkv") && IsVideo("-") && IsVideo("missing.mov"));
    EXPECT_FALSE(IsVideo("missing.png") || IsVideo(VFIL_SOURCE_DIR "/media/room-rgb16.png"));
}

TEST_F(Video, RefusedAndUnfinishedClipsLeaveNothing)
{
    const std::vector<PicturePtr> frames = RandomFrames(PXFormat_YUV422_601, 64, 64, 1);
    const VideoSettings good = SettingsFor(*frames[0], "rawvideo");
    const std::array<const char*, 4> refused[] = {
        // path, codec, container, message
        {"a.mkv", "nocodec", "", "'nocodec'"},
        {"a.xyz", "", "", "no known kind of clip"},
        {"a.mkv", "", "nokind", "'nokind'"},
        {"a.mp4", "qtrle", "", "does not hold qtrle"},
        {"a.mov", "qtrle", "", "does not take frames in YUV422_601; convert them to one of RGBA32"},
        {"none/a.mkv", "ffv1", "", "folder none does not exist"},
        {"/dev/full", "", "nut", "no regular file"},
    };
    const auto expectRefusal = [](const std::string& path, const VideoSettings& settings,
                                  const char* message) {
        EXPECT_THAT([&] { VideoWriter(path, settings); }, ThrowsMessage<FileError>(HasSubstr(message)));
    };
    for (const auto& [path, codec, container, message] : refused) {
        VideoSettings settings = good;
        settings.codec = codec;
        settings.container = container;
        expectRefusal(path, settings, message);
    }
    VideoSettings bad = good;
    bad.codecOptions = {{"nooption", "1"}};
    expectRefusal("a.mkv", bad, "'nooption'");
    bad.width = 63;
    expectRefusal("a.mkv", bad, "is odd");
    std::ofstream("a.nut") << "old";
    {
        VideoWriter writer("a.nut", good);
        writer.Write(*frames[0]);
        EXPECT_THROW(writer.Write(*Picture::Create(PXFormat_YUV422_601, 32, 64)), FileError);
    }
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit old{};
    getrlimit(RLIMIT_FSIZE, &old);
    const rlimit limit{100000, old.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
    EXPECT_THAT([&] { WriteClip("a.nut", good, std::vector<PicturePtr>(40, frames[0])); },
                ThrowsMessage<FileError>(HasSubstr("File too large")));
    setrlimit(RLIMIT_FSIZE, &old);
    EXPECT_EQ(Get("a.nut"), (Bytes{'o', 'l', 'd'}));
    EXPECT_EQ(std::distance(fs::directory_iterator("."), {}), 1);
}

/// Runs a step with a file in the place of a standard stream.
template <class Step>
void Redirected(int stream, int file, Step step)
{
    const int old = dup(stream);
    dup2(file, stream);
    close(file);
    step();
    dup2(old, stream);
    close(old);
}

TEST_F(Video, StandardStreamsCarryEverything)
{
    const std::vector<PicturePtr> frames = RandomFrames(PXFormat_YCC422_709, 64, 32, 3);
    VideoSettings settings = SettingsFor(*frames[0], "");
    settings.fieldOrder = FieldOrder::TopFirst;
    for (const std::string container : {"", "yuv4mpegpipe"}) {
        settings.container = container;
        Redirected(STDOUT_FILENO, open("pipe", O_WRONLY | O_CREAT | O_TRUNC, 0600),
                   [&] { WriteClip("-", settings, frames); });
        Clip clip;
        Redirected(STDIN_FILENO, open("pipe", O_RDONLY), [&] { clip = ReadClip("-"); });
        ASSERT_EQ(clip.frames.size(), 3U);
        EXPECT_EQ(clip.info.fieldOrder.value, FieldOrder::TopFirst);
        EXPECT_EQ(container.empty() ? GreatestDifference(*clip.frames[2], *frames[2]) : 0, 0);
        EXPECT_EQ(clip.info.matrix.value, container.empty() ? Matrix::Bt709 : Matrix::Bt601);
    }
    std::signal(SIGPIPE, SIG_IGN);
    int ends[2] = {};
    ASSERT_EQ(pipe(ends), 0);
    close(ends[0]);
    Redirected(STDOUT_FILENO, ends[1], [&] {
        EXPECT_THROW(WriteClip("-", settings, std::vector<PicturePtr>(40, frames[0])), PipeClosed);
    });
}

} // namespace
} // namespace vfil::host
