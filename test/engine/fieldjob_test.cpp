/// \file
/// Jobs on the fields of clips: which frames belong together, and which are looked at beside them.
#include "catalogue/catalogue.h"
#include "engine/failure.h"
#include "engine/jobparts.h"
#include "test/engine/silence.h"
#include "test/support/fieldscene.h"
#include "test/support/testfolder.h"

#include <vfil/fields.h>

#include <gmock/gmock.h>

namespace vfil::engine {

namespace {

using host::FieldOrder;
using Pictures = std::vector<host::PicturePtr>;

constexpr FieldScene kScene{.right = 0.4, .down = 0.3};
constexpr long kWidth = 64;
constexpr long kFrames = 7;

// How a run goes: which frames, on how many threads.
struct Going {
    long first = 0;
    std::optional<long> end = {};
    unsigned threads = 3;
};

std::string Texts(const Pictures& pictures)
{
    std::string text;
    for (const host::PicturePtr& picture : pictures)
        text.append(reinterpret_cast<const char*>(picture->Pixels()), picture->Bytes());
    return text;
}

class FieldJobTest : public TestFolder {
protected:
    std::string Clip(const char* name, long height, FieldOrder order, long frames = kFrames) const
    {
        WriteScene(Path(name), kScene, kWidth, height, frames, order, order);
        return Path(name).string();
    }

    /// Runs steps one behind the other.
    Pictures Run(const std::string& clip, const std::vector<std::pair<const char*, Values>>& steps,
                 const Going& going = {})
    {
        Job job;
        job.sources = {MakeSource("made", clip, {})};
        std::string last = "made";
        for (const auto& [name, values] : steps) {
            const catalogue::Entry& entry = *catalogue::Find(name);
            Step step = MakeStep(entry, values);
            step.inputs.resize(entry.inputs.size());
            step.inputs.front() = last;
            last += "'";
            step.results.resize(entry.outputs.size());
            step.results.front() = last;
            job.steps.push_back(std::move(step));
        }
        const std::string out = Path("out.mkv").string();
        job.sinks = {MakeSink(out, last, {{{"codec", {"ffv1"}}}})};
        job.settings.firstFrame = going.first;
        job.settings.endFrame = going.end;
        job.settings.threads = going.threads;
        m_silence.remarks.clear();
        RunJob(CheckJob(job), m_silence);
        return Read(out);
    }

    Pictures Read(const std::string& path)
    {
        host::VideoReader reader(path);
        m_info = reader.Info();
        Pictures pictures;
        while (const host::PicturePtr picture = reader.Read())
            pictures.push_back(picture);
        return pictures;
    }

    Silence m_silence;
    host::VideoInfo m_info; ///< of what was read last
};

// The frames of a run by the class itself: each field between the two of the other parity nearest in time.
Pictures ByHand(const Pictures& frames, bool evenFirst, long first, long end)
{
    Pictures made;
    const auto at = [&](long i, long otherwise) {
        const bool there = i >= 0 && i < static_cast<long>(frames.size());
        return frames[static_cast<std::size_t>(there ? i : otherwise)].Get();
    };
    for (long i = first; i < end; ++i) {
        const host::PicturePtr& frame = frames[static_cast<std::size_t>(i)];
        const auto output = [&] {
            return host::Picture::Create(frame->Format(), frame->Width(), frame->Height());
        };
        const host::PicturePtr even = output();
        const host::PicturePtr odd = output();
        IPXImage* const before = at(i - 1, i + 1);
        IPXImage* const behind = at(i + 1, i - 1);
        EXPECT_EQ(vfILDeinterlaceFields(frame.Get(), even.Get(), odd.Get(), VFIL_DEINTERLACE_ADAPTIVE,
                                        evenFirst ? before : behind, evenFirst ? behind : before, 0, 0.15),
                  0);
        made.push_back(evenFirst ? even : odd);
        made.push_back(evenFirst ? odd : even);
    }
    return made;
}

TEST_F(FieldJobTest, FieldsComeInTheirOrderAndSeeTheFramesAround)
{
    const struct {
        long height;
        FieldOrder order;
        bool evenFirst; ///< rows of even y, from the bottom
    } cases[] = {
        {48, FieldOrder::TopFirst, false},
        {48, FieldOrder::BottomFirst, true},
        {47, FieldOrder::TopFirst, true},
        {47, FieldOrder::BottomFirst, false},
    };
    for (const auto& c : cases) {
        const std::string clip = Clip("in.mkv", c.height, c.order);
        const Pictures frames = Read(clip);
        for (const auto& [first, end, threads] :
             {std::tuple{0L, kFrames, 1U}, {0L, kFrames, 4U}, {2L, 5L, 2U}}) {
            const Pictures made = Run(clip, {{"deinterlace", {}}}, {first, end, threads});
            EXPECT_TRUE(Texts(made) == Texts(ByHand(frames, c.evenFirst, first, end)))
                << c.height << " " << c.evenFirst << " " << first << " " << threads;
            EXPECT_EQ(m_info.fieldOrder.value, FieldOrder::Progressive);
            EXPECT_EQ(m_info.rate.numerator, 50 * m_info.rate.denominator);
        }
        // Both fields to one clip each, and the earlier ones alone.
        const Pictures once = Run(clip, {{"deinterlace", {{{"same-rate", {"yes"}}}}}});
        ASSERT_EQ(once.size(), frames.size());
        EXPECT_EQ(m_info.rate.numerator, 25 * m_info.rate.denominator);
        EXPECT_TRUE(Texts({once[3]}) == Texts({ByHand(frames, c.evenFirst, 3, 4).front()}));
    }
}

TEST_F(FieldJobTest, WeavingGivesBackWhatWasSplit)
{
    for (const long height : {48, 47}) {
        for (const FieldOrder order : {FieldOrder::TopFirst, FieldOrder::BottomFirst}) {
            const std::string clip = Clip("in.mkv", height, order);
            const Values weave = {{{"field-order", {order == FieldOrder::TopFirst ? "top" : "bottom"}}}};
            for (const char* type : {"duplicate", "adaptive"}) {
                const Pictures made =
                    Run(clip, {{"deinterlace", {{{"type", {type}}}}}, {"copy", {}}, {"interlace", weave}});
                EXPECT_TRUE(Texts(made) == Texts(Read(clip))) << height;
            }
            Run(clip, {{"copy", {}}});
            EXPECT_EQ(m_info.fieldOrder.value, order);
        }
    }
}

// The woven frames that are compared are made of frames far around those of the time.
TEST_F(FieldJobTest, AChainSeesWhatTwoRunsSee)
{
    const std::string clip = Clip("in.mkv", 48, FieldOrder::Progressive, 10);
    const Pictures chained = Run(clip, {{"interlace", {}}, {"deinterlace", {}}}, {2, 8, 2});
    Run(clip, {{"interlace", {}}});
    EXPECT_EQ(m_info.fieldOrder.value, FieldOrder::TopFirst);
    EXPECT_EQ(2 * m_info.rate.numerator, 25 * m_info.rate.denominator);
    fs::rename(Path("out.mkv"), Path("woven.mkv"));
    EXPECT_TRUE(Texts(chained) == Texts(Run(Path("woven.mkv").string(), {{"deinterlace", {}}}, {1, 4, 1})));
    EXPECT_EQ(chained.size(), 6U);
}

TEST_F(FieldJobTest, AFrameAloneIsInterpolated)
{
    const std::string clip = Clip("in.mkv", 48, FieldOrder::TopFirst, 1);
    EXPECT_TRUE(Texts(Run(clip, {{"deinterlace", {}}})) ==
                Texts(Run(clip, {{"deinterlace", {{{"type", {"interpolate"}}}}}})));
}

TEST_F(FieldJobTest, OrderIsThatOfTheRowsAfterwards)
{
    const std::string clip = Clip("in.mkv", 48, FieldOrder::TopFirst, 2);
    const struct {
        const char* name;
        Values values;
        FieldOrder order;
    } cases[] = {
        {"field-swap", {}, FieldOrder::BottomFirst},
        {"field-swap", {{{"swap-lines", {"yes"}}}}, FieldOrder::BottomFirst},
        {"field-swap", {{{"fields", {"odd"}}}}, FieldOrder::TopFirst},
        {"field-merge", {}, FieldOrder::Progressive},
        {"field-merge", {{{"fields", {"even"}}}}, FieldOrder::TopFirst},
        {"invert", {}, FieldOrder::TopFirst},
    };
    for (const auto& c : cases) {
        Run(clip, {{c.name, c.values}});
        EXPECT_EQ(m_info.fieldOrder.value, c.order) << c.name;
    }
}

// What mixes fields runs, and the remedy is named once.
TEST_F(FieldJobTest, MixedFieldsAreToldOfOnce)
{
    const std::string clip = Clip("in.mkv", 48, FieldOrder::TopFirst, 2);
    const Values both = {{{"fields", {"both"}}}};
    Run(clip, {{"blur", {}}, {"median-rank", {}}});
    ASSERT_EQ(m_silence.remarks.size(), 1U);
    for (const char* text :
         {"blur mixes the two fields", "deinterlace", "fields both", "field-order progressive"})
        EXPECT_THAT(m_silence.remarks.front(), testing::HasSubstr(text));
    Run(clip, {{"blur", both}});
    EXPECT_TRUE(m_silence.remarks.empty());
    Run(clip, {{"deinterlace", {}}, {"blur", {}}, {"interlace", {}}});
    EXPECT_TRUE(m_silence.remarks.empty());
}

TEST_F(FieldJobTest, RefusesWhatMakesNoWholeFrames)
{
    const std::string clip = Clip("in.mkv", 48, FieldOrder::Progressive);
    const auto refused = [&](const auto& work, const char* text) {
        fs::remove(Path("out.mkv"));
        try {
            work();
            ADD_FAILURE() << "is taken";
        } catch (const RequestError& error) {
            EXPECT_THAT(error.what(), testing::HasSubstr(text));
        }
        EXPECT_FALSE(fs::exists(Path("out.mkv")));
    };
    refused([&] { Run(clip, {{"interlace", {}}}); }, "has 7 frames, and 2 become one");
    refused([&] { Run(clip, {{"interlace", {}}}, {1, 4, 2}); }, "3 frames in the range");
    refused(
        [&] {
            Job job;
            job.sources = {MakeSource("in", clip, {})};
            Step split = MakeStep(*catalogue::Find("deinterlace"), {});
            split.inputs = {"in", "", ""};
            split.results = {"moments", ""};
            Step over = MakeStep(*catalogue::Find("over"), {});
            over.inputs = {"moments", "in"};
            over.results = {"made"};
            job.steps = {split, over};
            job.sinks = {MakeSink(Path("out.mkv").string(), "made", {})};
            CheckJob(job);
        },
        "differ in their rate");
}

} // namespace

} // namespace vfil::engine
