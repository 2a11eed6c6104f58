/// \file
/// Jobs without a face: what a fault says of itself, what a run tells, and the row form of premultiplication.
#include "catalogue/catalogue.h"
#include "engine/failure.h"
#include "engine/jobparts.h"
#include "host/pixelrows.h"
#include "test/engine/silence.h"
#include "test/support/testfolder.h"
#include <vfil/host/picturefactory.h>

#include <gmock/gmock.h>

namespace vfil::engine {

namespace {

class JobTest : public TestFolder {
protected:
    JobTest()
    {
        Make("a.png", PXFormat_RGBA32, 3, 2, [](long x, long y, long c) { return 40 * x + 20 * y + 9 * c; });
    }

    /// One step of an operator on a.png.
    Job MakeJob(const char* name, const Values& values) const
    {
        Job job;
        const catalogue::Entry& entry = *catalogue::Find(name);
        job.sources = {MakeSource("in", Path("a.png").string(), {})};
        job.steps = {MakeStep(entry, values)};
        job.steps.front().inputs.assign(entry.inputs.size(), "in");
        job.steps.front().results = {"made"};
        job.sinks = {MakeSink(Path("out.png").string(), "made", {})};
        return job;
    }
};

// A face needs the part and the setting; the text has the names of settings as parts of its own.
TEST_F(JobTest, FaultsSayWhichPartAndWhichSetting)
{
    const struct {
        const char* name;
        Values values;
        const char* step;
        const char* parameter;
        const char* text;
    } cases[] = {
        {"blur", {{{"radius", {"-1"}}}}, "", "radius", "radius -1 is out of range"},
        {"blur", {{{"roi", {"9,9,1,1"}}}}, "made", "roi", "roi 9,9,1,1 lies outside"},
        {"blur", {{{"radius", {"1073741824"}}}}, "made", "radius", "see radius"},
        {"convolve", {}, "", "", "needs kernel or kernel-file"},
        {"copy",
         {{{"output-size", {"1x1"}}, {"output-offset", {"1,0"}}}},
         "made",
         "",
         "see roi, output-offset"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        try {
            Silence silence;
            RunJob(CheckJob(MakeJob(c.name, c.values)), silence);
            ADD_FAILURE() << "is taken";
        } catch (const RequestError& error) {
            EXPECT_EQ(error.What().step, c.step);
            EXPECT_EQ(error.What().parameter, c.parameter);
            EXPECT_THAT(error.what(), testing::HasSubstr(c.text));
        }
        EXPECT_FALSE(fs::exists(Path("out.png")));
    }
}

TEST_F(JobTest, RunTellsOfConversionsFramesAndFiles)
{
    const std::string clip = Path("clip.nut").string();
    {
        host::VideoSettings settings;
        settings.format = PXFormat_YUV422_601;
        settings.width = 4;
        settings.height = 4;
        settings.codec = "rawvideo";
        host::VideoWriter writer(clip, settings);
        for (int i = 0; i < 3; ++i)
            writer.Write(*host::Picture::Create(settings.format, 4, 4));
        writer.Finish();
    }
    Job job = MakeJob("invert", {});
    job.sources.front().path = clip;
    job.sinks.front().path = Path("out.nut").string();
    Silence events;
    const RunResult result = RunJob(CheckJob(job), events);
    EXPECT_EQ(events.done, 3);
    EXPECT_TRUE(events.ended);
    EXPECT_EQ(result.frames, 3);
    EXPECT_EQ(result.files.at(0).frames, 3);
    EXPECT_EQ(events.converted, (std::vector<std::string>{clip, "made"}));
    // Who wants to stop before the first frame gets no file.
    volatile long stop = 1;
    job.settings.interrupt = &stop;
    job.sinks.front().path = Path("stopped.nut").string();
    EXPECT_THROW(RunJob(CheckJob(job), events), Interrupted);
    EXPECT_FALSE(fs::exists(Path("stopped.nut")));
}

// What an opaque back keeps of a front is the front, its colour multiplied by its alpha.
TEST(Premultiply, RowsAreThoseOfTheLayerOperator)
{
    host::RegisterPictureClass();
    for (const GUID& format : {PXFormat_RGBA32, PXFormat_RGBA64}) {
        const host::PicturePtr front = host::Picture::Create(format, 256, 256);
        const host::PicturePtr white = host::Picture::Create(format, 256, 256);
        const host::PicturePtr made = host::Picture::Create(format, 256, 256);
        std::memset(white->Pixels(), 255, white->Bytes());
        const int sampleBytes = front->FormatInfo().sampleBytes;
        // All pairs of bytes, as colour and alpha; of words, pairs that differ in both of their bytes.
        for (long y = 0; y < 256; ++y) {
            for (long i = 0; i < 256 * 4 * sampleBytes; ++i) {
                const bool alpha = i / sampleBytes % 4 == 3;
                front->Row(y)[i] =
                    static_cast<std::uint8_t>((alpha ? y : i / sampleBytes / 4) ^ (i % sampleBytes * 91));
            }
        }
        const std::unique_ptr<catalogue::Operator> in = catalogue::Find("in")->make(true);
        in->SetInput(0, white.Get());
        in->SetInput(1, front.Get());
        in->SetOutput(0, made.Get());
        in->Processor().SetProcessingMode(VFIL_MODE_RGBA);
        ASSERT_EQ(in->Processor().Execute(), VFIL_SUCCESS);
        std::vector<std::uint8_t> row(front->RowBytes());
        for (long y = 0; y < 256; ++y) {
            host::PremultiplyRow(front->Row(y), sampleBytes, row.data(), 256);
            ASSERT_EQ(std::memcmp(row.data(), made->Row(y), row.size()), 0) << sampleBytes << " " << y;
        }
    }
}

} // namespace

} // namespace vfil::engine
