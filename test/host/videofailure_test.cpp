/// \file
/// Clips that are damaged, refused or unfinished, and the standard streams.

#include "videofolder.h"

#include <gmock/gmock.h>

#include <array>
#include <csignal>

#include <fcntl.h>
#include <sys/resource.h>

namespace vfil::host {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::ThrowsMessage;

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
