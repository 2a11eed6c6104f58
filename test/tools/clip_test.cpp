/// \file
/// Clips through the tool as a process: what the files say and hold afterwards, in which order and on how
/// many threads, and what is said to clips that will not do.
#include "test/tools/toolfolder.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cmath>

namespace vfil::tool {

namespace {

using testing::HasSubstr;

// No two of its frames are the same.
constexpr const char* kFrames = "-f lavfi -i mandelbrot=size=64x48:rate=25";

class ClipTest : public ToolFolder {
protected:
    ClipTest()
    {
        Make("soft.png", PXFormat_RGBA32, 40, 40,
             [](long x, long y, long c) { return c == 3 ? 5 * x : 3 * y + 50 * c; });
    }

    /// Makes a clip by the command of the codec library, without which these tests say nothing.
    void Encode(const std::string& arguments) const
    {
        const ProcessResult result = Shell("ffmpeg -v error -y -bitexact " + arguments);
        ASSERT_EQ(result.status, 0) << arguments << result.err;
    }

    void MakeRaw(const std::string& name, int frames, const std::string& more = "") const
    {
        Encode(std::string(kFrames) + " -frames:v " + std::to_string(frames) +
               " -vf scale=out_color_matrix=bt709,setparams=colorspace=bt709:range=tv -pix_fmt uyvy422 -c:v "
               "rawvideo " +
               more + " " + name);
    }

    /// What another reader finds in the header of a clip. That RGB is RGB need not be said.
    std::string Flags(const std::string& name) const
    {
        return Shell("ffprobe -v error -select_streams v -of csv=p=0 -show_entries "
                     "stream=codec_name,pix_fmt,width,height,"
                     "sample_aspect_ratio,field_order,color_range,color_space,r_frame_rate " +
                     name + " | sed s/,gbr,/,unknown,/")
            .out;
    }

    /// The pixels of all frames, as another reader sees them.
    std::string Pixels(const std::string& name) const
    {
        return Shell("ffmpeg -v error -i " + name + " -map 0:v -f framemd5 - | grep -v '^#' | sed 's/.*,//'")
            .out;
    }

    long Frames(const std::string& name) const
    {
        return static_cast<long>(std::ranges::count(Pixels(name), '\n'));
    }

    /// The greatest difference of a byte of each pixel in two pictures.
    int Difference(const std::string& a, const std::string& b, long channel) const
    {
        const host::PicturePtr one = host::ReadPicture(Path(a));
        const host::PicturePtr other = host::ReadPicture(Path(b));
        EXPECT_EQ(one->Bytes(), other->Bytes());
        int most = 0;
        for (std::size_t i = static_cast<std::size_t>(channel); i < one->Bytes(); i += 4)
            most = std::max(most, std::abs(one->Pixels()[i] - other->Pixels()[i]));
        return most;
    }
};

TEST_F(ClipTest, KeepsWhatTheClipSaysOfItself)
{
    const struct {
        const char* encoding;
        const char* file;
        bool lossless = true;
    } cases[] = {
        {"-vf setparams=colorspace=bt709:range=tv -pix_fmt uyvy422 -c:v rawvideo", "uyvy.mkv"},
        {"-vf setparams=colorspace=smpte170m:range=tv -pix_fmt yuyv422 -c:v rawvideo", "yuyv.mkv"},
        {"-pix_fmt yuyv422 -c:v rawvideo", "untold.avi"},
        {"-vf setparams=colorspace=bt709:range=tv:field_mode=tff,setsar=16/11 -field_order tt -pix_fmt "
         "yuv422p -c:v ffv1",
         "top.mkv"},
        {"-vf setparams=colorspace=smpte170m:range=tv:field_mode=bff -field_order bb -pix_fmt yuv422p -c:v "
         "ffv1",
         "bottom.mkv"},
        {"-vf setparams=colorspace=smpte170m:range=pc -pix_fmt yuvj422p -c:v ffv1", "full.mkv", false},
        {"-vf setparams=colorspace=smpte170m:range=tv:field_mode=tff -field_order tt -pix_fmt yuv422p -c:v "
         "mpeg2video "
         "-g 1 -q:v 2 -flags +ildct+ilme",
         "intra.mkv", false},
        {"-vf format=rgba,colorchannelmixer=aa=0.5,setparams=colorspace=gbr -c:v qtrle -pix_fmt argb",
         "alpha.mov"},
        {"-vf format=rgba,colorchannelmixer=aa=0.5,setparams=colorspace=gbr -c:v png -pix_fmt rgba",
         "png.mov"},
        {"-vf setparams=colorspace=smpte170m -pix_fmt gray -c:v ffv1", "grey.mkv"},
    };
    for (const auto& c : cases) {
        const std::string in = c.file;
        Encode(std::string(kFrames) + " -frames:v 3 " + c.encoding + " " + in);
        const std::string out = "out-" + in;
        const ProcessResult result = Run("copy " + in + " -o " + out);
        ASSERT_EQ(result.status, 0) << in << result.err;
        EXPECT_EQ(Flags(out), Flags(in)) << in;
        if (c.lossless) {
            EXPECT_EQ(Pixels(out), Pixels(in)) << in;
        }
        EXPECT_EQ(Frames(out), 3) << in;
        // Through another colour model and back.
        EXPECT_EQ(Run("invert " + in + " -o inverted-" + in).status, 0) << in;
        EXPECT_EQ(Flags("inverted-" + in), Flags(in)) << in;
        EXPECT_NE(Pixels("inverted-" + in), Pixels(in)) << in;
    }
}

TEST_F(ClipTest, YccOfRgbHasStudioRange)
{
    Encode("-f lavfi -i color=white:size=32x16:rate=25 -frames:v 1 -c:v png white.mov");
    for (const std::string weights : {"601", "709"}) {
        RunWell("convert white.mov --to yuv422-" + weights + " --codec ffv1 -o " + weights + ".mkv");
        EXPECT_THAT(Flags(weights + ".mkv"), testing::HasSubstr("yuv422p,tv,"));
        RunWell("convert " + weights + ".mkv --frames 0:1 -o " + weights + ".raw");
        const std::string pixels = Bytes(weights + ".raw");
        EXPECT_EQ(pixels.substr(0, 4), "\x80\xEB\x80\xEB");
        EXPECT_EQ(pixels.size(), 32U * 16 * 2);
    }
}

TEST_F(ClipTest, SamplingIsTheInputsUnlessAFormatIsNamed)
{
    Encode(std::string(kFrames) +
           " -frames:v 2 -vf setparams=colorspace=smpte170m:range=tv -pix_fmt yuv420p -c:v ffv1 in.mkv");
    RunWell("copy in.mkv -o same.mkv");
    RunWell("convert in.mkv --to yuv422-601 -o named.mkv");
    EXPECT_THAT(Flags("same.mkv"), testing::HasSubstr(",yuv420p,"));
    EXPECT_THAT(Flags("named.mkv"), testing::HasSubstr(",yuv422p,"));
}

TEST_F(ClipTest, AFrameIsWhatThePictureWouldBe)
{
    MakeRaw("clip.mkv", 6);
    RunWell("convert clip.mkv --frames 4:5 -o frame.png");
    RunWell("over frame.png soft.png --input-offset 3,5 --extra-transparency 0.7 -o still.png");
    RunWell("over clip.mkv soft.png --input-offset 3,5 --extra-transparency 0.7 --frames 4:5 -o direct.png");
    EXPECT_TRUE(Bytes("still.png") == Bytes("direct.png"));
    // The other frames differ, so that the number counts; a part of a clip starts where it is told.
    RunWell("convert clip.mkv --frames 2: -o part.mkv");
    EXPECT_EQ(Frames("part.mkv"), 4);
    RunWell("convert part.mkv --frames 2:3 -o part.png");
    EXPECT_TRUE(Bytes("part.png") == Bytes("frame.png"));
    RunWell("convert part.mkv --frames 1:2 -o part.png");
    EXPECT_FALSE(Bytes("part.png") == Bytes("frame.png"));
}

TEST_F(ClipTest, TakesTheMatrixThatItSays)
{
    // Two pixels each of saturated colours, on which a wrong matrix or range shows.
    constexpr std::array<std::array<int, 3>, 6> kColours = {
        {{255, 0, 0}, {0, 255, 0}, {0, 0, 255}, {255, 255, 0}, {0, 255, 255}, {255, 0, 255}}};
    Make("patches.png", PXFormat_RGBA32, 12, 1, [&](long x, long, long c) {
        return c == 3 ? 255 : kColours[static_cast<std::size_t>(x / 2)][static_cast<std::size_t>(c)];
    });
    const struct {
        const char* format;
        double red, blue; // weights of luma
    } matrices[] = {{"yuv422-601", 0.299, 0.114}, {"yuv422-709", 0.2126, 0.0722}};
    for (const auto& m : matrices) {
        const std::string format = m.format;
        RunWell("convert patches.png -o patches.raw --to " + format);
        const std::string bytes = Bytes("patches.raw");
        ASSERT_EQ(bytes.size(), 24U);
        for (std::size_t i = 0; i < kColours.size(); ++i) {
            const auto [r, g, b] = kColours[i];
            const double y = m.red * r + (1 - m.red - m.blue) * g + m.blue * b;
            const double expected[] = {128 + 112 * (b - y) / (1 - m.blue) / 255, 16 + 219 * y / 255,
                                       128 + 112 * (r - y) / (1 - m.red) / 255, 16 + 219 * y / 255};
            for (std::size_t k = 0; k < 4; ++k)
                EXPECT_NEAR(static_cast<std::uint8_t>(bytes[4 * i + k]), expected[k], 1) << format << i << k;
        }
        RunWell("convert patches.raw --in-format " + format + " --in-size 12x1 -o back.png");
        for (long c = 0; c < 3; ++c)
            EXPECT_LE(Difference("patches.png", "back.png", c), 3) << format << c;
    }
}

TEST_F(ClipTest, ThreadsAndPipesChangeNoByte)
{
    MakeRaw("clip.mkv", 20);
    for (const char* threads : {"1", "2", "5"})
        RunWell("over clip.mkv soft.png -o t" + std::string(threads) + ".nut --threads " + threads);
    EXPECT_TRUE(Bytes("t1.nut") == Bytes("t2.nut"));
    EXPECT_TRUE(Bytes("t1.nut") == Bytes("t5.nut"));
    EXPECT_EQ(Frames("t1.nut"), 20);

    const std::string vfil = "'" VFIL_TOOL "' ";
    RunWell("invert clip.mkv -o inverted.nut --to rgba32 --codec rawvideo");
    RunWell("over inverted.nut soft.png -o files.nut");
    const ProcessResult pipe =
        Shell(vfil + "invert clip.mkv -o - --to rgba32 | " + vfil + "over - soft.png -o - >pipe.nut");
    EXPECT_EQ(pipe.status, 0);
    EXPECT_EQ(Pixels("pipe.nut"), Pixels("files.nut"));
    EXPECT_EQ(Flags("pipe.nut"), Flags("files.nut"));
    // Who stops reading is no failure.
    const ProcessResult closed =
        Shell("{ " + vfil + "convert clip.mkv -o - --quiet; echo $? >status; } | head -c 100 >cut");
    EXPECT_EQ(closed.err, "");
    EXPECT_EQ(Bytes("status"), "0\n");
}

TEST_F(ClipTest, EndsWithTheShorterAndRepeatsPictures)
{
    MakeRaw("long.mkv", 9);
    MakeRaw("short.mkv", 5);
    const ProcessResult result =
        Run("over long.mkv short.mkv --mask soft.png:alpha -o out.nut --json --verbose");
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.err, HasSubstr("short.mkv ends after 5 frames, before long.mkv"));
    EXPECT_THAT(result.err, HasSubstr("long.mkv: yuv422-709 to rgba32"));
    EXPECT_EQ(Frames("out.nut"), 5);
    const auto record = nlohmann::json::parse(result.out);
    EXPECT_EQ(record["frames"], 5);
    EXPECT_EQ(record["conversions"].size(), 3U);
    EXPECT_EQ(record["conversions"][2]["to"], "yuv422-709");
    EXPECT_EQ(record["inputs"][0]["matrix"]["from"], "stream");
}

TEST_F(ClipTest, SplitsAndJoinsFillAndKey)
{
    Encode(std::string(kFrames) +
           " -frames:v 3 -vf \"format=rgba,geq=r='r(X,Y)':g='g(X,Y)':b='b(X,Y)':a='4*X'\" -c:v qtrle "
           "-pix_fmt argb alpha.mov");
    RunWell("split-key alpha.mov -o fill.nut --key key.nut --quiet");
    RunWell("join-key fill.nut key.nut -o joined.mov --codec qtrle --quiet");
    RunWell("convert alpha.mov --frames 2:3 -o before.png");
    RunWell("convert joined.mov --frames 2:3 -o after.png");
    EXPECT_LE(Difference("before.png", "after.png", 3), 1);
    EXPECT_EQ(Frames("joined.mov"), 3);
    // Who says so may drop the alpha.
    RunWell("convert alpha.mov -o opaque.nut --to yuv422-601 --quiet");
    EXPECT_THAT(Flags("opaque.nut"), HasSubstr("yuv422p"));
}

TEST_F(ClipTest, InfoSaysWhoSays)
{
    MakeRaw("clip.mkv", 2);
    const auto info =
        nlohmann::json::parse(RunWell("info clip.mkv --json --field-order bottom --range full"))[0];
    EXPECT_EQ(info["matrix"], nlohmann::json({{"value", "709"}, {"from", "stream"}}));
    EXPECT_EQ(info["fieldOrder"], nlohmann::json({{"value", "bottom"}, {"from", "override"}}));
    EXPECT_EQ(info["range"]["value"], "full");
    EXPECT_EQ(info["format"], "yuv422-709");
    EXPECT_THAT(RunWell("info clip.mkv"), HasSubstr("709 (stream)"));
}

// The signal waits until frames are being written.
TEST_F(ClipTest, InterruptKeepsTheFramesSoFar)
{
    Encode("-f lavfi -i testsrc2=size=640x360:rate=25 -frames:v 400 -pix_fmt uyvy422 -c:v rawvideo long.mkv");
    const ProcessResult result =
        Shell("'" VFIL_TOOL "' invert long.mkv -o out.mkv --codec ffv1 --quiet & "
              "until [ -n \"$(find . -name '.vfil*' -size +200k)\" ]; do sleep 0.01; done; "
              "kill -INT $!; wait $!");
    EXPECT_EQ(result.status, 130);
    EXPECT_EQ(result.err, "vfil invert: interrupted\n");
    EXPECT_GT(Frames("out.mkv"), 0);
    EXPECT_LT(Frames("out.mkv"), 400);
    const ProcessResult killed =
        Shell("'" VFIL_TOOL "' invert long.mkv -o killed.mkv --codec ffv1 --quiet & "
              "until [ -n \"$(find . -name '.vfil*' -size +200k)\" ]; do sleep 0.01; done; "
              "kill -KILL $!; wait $! 2>/dev/null");
    EXPECT_FALSE(fs::exists(Path("killed.mkv")));
}

TEST_F(ClipTest, RefusesWhatWillNotDoAndLeavesNothing)
{
    MakeRaw("clip.mkv", 4);
    Encode("-f lavfi -i sine=duration=1 sound.wav");
    Encode("-i clip.mkv -c copy whole.nut");
    Encode(std::string(kFrames) + " -frames:v 3 a.m2v");
    Encode("-f lavfi -i testsrc2=size=32x48 -frames:v 3 b.m2v");
    Shell("cat a.m2v b.m2v >sizes.m2v; head -c 20000 whole.nut >cut.nut; echo no clip >text.mp4; : "
          ">empty.mov");
    const std::vector<Refusal> refusals = {
        {"invert cut.nut -o o.mov", {"cut.nut", "cut short or damaged after frame 3"}},
        {"invert sizes.m2v -o o.mov", {"sizes.m2v", "32x48"}},
        {"invert sound.wav -o o.mov", {"sound.wav", "no video"}},
        {"invert text.mp4 -o o.mov", {"text.mp4", "not a clip"}},
        {"invert empty.mov -o o.mov", {"empty.mov"}},
        {"invert gone.mov -o o.mov", {"gone.mov: no such file"}},
        {"invert clip.mkv -o o.mov --codec nosuch", {"'nosuch'", "ffv1"}},
        {"invert clip.mkv -o o.mov --container nosuch", {"'nosuch'", "matroska"}},
        {"invert clip.mkv -o o.mkv --codec ffv1 --codec-option nosuch=1", {"ffv1", "'nosuch'"}},
        {"invert clip.mkv -o o.xyz", {"o.xyz", ".mov"}},
        {"invert clip.mkv -o gone/o.mov", {"the folder gone does not exist"}},
        {"invert clip.mkv -o clip.mkv", {"clip.mkv is read and written"}},
        {"over - - -o o.mov", {"standard input (-) is read twice"}},
        {"copy clip.mkv --roi 0,0,33,20 -o o.nut", {"33 pixels wide", "even width"}},
        {"invert clip.mkv -o o.nut --to rgba64 --codec mpeg2video", {"o.nut cannot hold rgba64", "--codec"}},
        {"over soft.png clip.mkv -o o.mp4", {"o.mp4", "cannot hold alpha"}},
        {"in clip.mkv soft.png -o o.nut", {"clear pixels", "--to"}, 1},
        {"invert soft.png -o o.mov", {"o.mov", "at least one clip"}},
        {"invert soft.png -o o.png --frames 0:1", {"--frames needs a clip"}},
        {"invert clip.mkv -o o.png", {"o.png is one picture", "--frames 10:11"}},
        {"invert clip.mkv -o o.mov --frames 7:9", {"clip.mkv has 4 frames"}},
        {"invert clip.mkv -o o.mov --frames 3:3", {"--frames '3:3'", "A:B"}},
        {"invert clip.mkv -o o.mov --threads 0", {"--threads '0'"}},
        {"invert clip.mkv -o o.mov --matrix 602", {"'602'", "601, 709"}},
        {"invert clip.mkv -o o.mov --codec-option crf", {"NAME=VALUE"}},
        {"convert clip.mkv -o - >/dev/full", {"No space left on device"}, 1},
    };
    // What is remarked of the input may stand before.
    ExpectRefusals(refusals, "(vfil: [^\n]*\n)*vfil [a-z]*: [^\n]*\n");
}

// Sizes that 4:2:2 takes; what no pixel of an opaque clip gets to is opaque, and all else stays.
TEST_F(ClipTest, MovedFramesKeepWhatTheClipSays)
{
    Encode(std::string(kFrames) + " -frames:v 3 -vf setsar=16/11,setfield=tff -c:v ffv1 -pix_fmt yuv422p "
                                  "-field_order tt -color_range tv -colorspace smpte170m fields.mkv");
    const std::string before = Flags("fields.mkv");
    ASSERT_THAT(before, HasSubstr(",64,48,"));
    RunWell("affine fields.mkv -o out.mkv --rotate 30 --size fit --fields both --default-color 0,0,0");
    std::string after = before;
    EXPECT_EQ(Flags("out.mkv"), after.replace(after.find(",64,48,"), 7, ",80,74,"));
    EXPECT_EQ(Frames("out.mkv"), 3);
    RunWell("pan-zoom fields.mkv -o out.mkv --fill 80x74 --fields both");
    EXPECT_EQ(Flags("out.mkv"), after);
    EXPECT_THAT(Run("pan-zoom fields.mkv -o odd.mkv --fit 31x30 --fields both --default-color 0,0,0").err,
                HasSubstr("31 pixels wide"));
}

} // namespace

} // namespace vfil::tool
