/// \file
/// Wrong requests and failed runs: one line that says what would be right, the exit status, and no trace in
/// the folder.
#include "tools/process.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace vfil::test {

namespace {

using testing::HasSubstr;

class BadInput : public ToolTest {
protected:
    BadInput()
    {
        const auto noise = [](long x, long y, int c) {
            return static_cast<int>(x * 31 + y * 17 + c * 50) % 256;
        };
        Make("a.png", PXFormat_RGBA32, 6, 4, noise);
        Make("b.png", PXFormat_RGBA32, 6, 4, noise);
        Make("grey.png", PXFormat_Mono8, 6, 4, noise);
        Make("deep.png", PXFormat_RGBA64, 6, 4, noise);
        WriteBytes("cut.png", Bytes("a.png").substr(0, 60));
        WriteBytes("empty.png", "");
        WriteBytes("words.png", "these are no pixels");
        WriteBytes("short.raw", "12345");
        std::filesystem::create_directory(Path("folder"));
        std::filesystem::create_directory(Path("folder.png"));
    }

    // Runs and expects one line that begins with the command's name, has all texts, and that nothing changed.
    void ExpectRefusal(const std::string& arguments, int status, const std::vector<std::string>& texts) const
    {
        const std::vector<std::string> before = Files();
        const ProcessResult result = Run(arguments);
        EXPECT_EQ(result.status, status) << arguments;
        EXPECT_EQ(result.out, "") << arguments;
        EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << arguments << "\n"
                                                                             << result.err;
        EXPECT_THAT(result.err, testing::StartsWith("vfil")) << arguments;
        for (const std::string& text : texts)
            EXPECT_THAT(result.err, HasSubstr(text)) << arguments;
        EXPECT_EQ(Files(), before) << arguments;
    }
};

struct Refusal {
    const char* arguments;
    std::vector<std::string> texts;
};

TEST_F(BadInput, RequestsAreRefused)
{
    const Refusal refusals[] = {
        {"", {"vfil help"}},
        {"ovr a.png b.png -o out.png", {"'ovr'", "did you mean 'over'?"}},
        {"over a.png b.png -o out.png --extra-transparancy 1",
         {"vfil over: ", "did you mean '--extra-transparency'?"}},
        {"over a.png -o out.png", {"2 pictures (BACK FRONT)", "not 1"}},
        {"over a.png b.png", {"-o FILE"}},
        {"over a.png '' -o out.png", {"is empty"}},
        {"invert a.png -o out.png --mask :red", {"--mask ':red'", "is empty"}},
        {"over a.png b.png -o", {"--output needs a value"}},
        {"over a.png b.png -o out.png -o x.png", {"--output is given 2 times"}},
        {"over a.png b.png -o out.png --extra-transparency 1.5", {"--extra-transparency 1.5", "0 .. 1"}},
        {"over a.png b.png -o out.png --extra-transparency nan", {"--extra-transparency 'nan'", "0 .. 1"}},
        {"over a.png b.png -o out.png --alpha-mode ful", {"zero, full, computed", "'full'"}},
        {"over a.png b.png -o out.png --roi 1,2,3", {"--roi '1,2,3'", "X,Y,W,H"}},
        {"over a.png b.png -o out.png --roi 6,0,2,2", {"--roi", "outside a.png", "6x4"}},
        {"over a.png b.png -o out.png --output-size 3x3 --output-offset 3,0", {"does not fit", "3x3"}},
        {"over a.png b.png -o out.png --output-offset -1,0", {"--output-offset"}},
        {"over a.png b.png -o out.png --output-size 60000x60000", {"too large"}},
        {"over a.png b.png -o out.png --fields 0", {"odd or even"}},
        {"over a.png b.png -o out.png --channels rgx", {"--channels 'rgx'"}},
        {"lum a.png b.png -o out.png --channels ra", {"--channels ra", "rgb or rgba"}},
        {"over a.png b.png -o out.png --default-color 0,0,0,2", {"--default-color", "0 .. 1"}},
        {"over a.png b.png -o out.png --format rgb", {"--format 'rgb'", "rgba32"}},
        {"composite a.png b.png -o out.png", {"--mask FILE"}},
        {"invert a.png -o out.png --mask grey.png:red", {"grey.png", "mono"}},
        {"invert a.png -o out.png --mask b.png:alhpa", {"'alhpa'", "did you mean 'alpha'?"}},
        {"invert a.png -o out.png --mask b.png --mask-offset 6,0", {"b.png", "--mask-offset"}},
        {"over a.png gone.png -o out.png", {"vfil over: ", "gone.png"}},
        {"over a.png folder -o out.png", {"folder"}},
        {"over cut.png b.png -o out.png", {"cut.png"}},
        {"over empty.png b.png -o out.png", {"empty.png"}},
        {"over words.png b.png -o out.png", {"words.png"}},
        {"copy short.raw -o out.raw", {"short.raw", "--in-format", "--in-size"}},
        {"copy short.raw -o out.raw --in-format rgba32 --in-size 2x2", {"short.raw"}},
        {"over a.png grey.png -o out.png", {"a.png is rgba32 and grey.png is mono8", "--format rgba32"}},
        {"over a.png deep.png -o out.png", {"deep.png is rgba64", "--format rgba64"}},
        {"over grey.png grey.png -o out.png", {"grey.png is mono8", "--format rgba32"}},
        {"invert a.png -o out.png --format mono8", {"a.png is rgba32", "--format mono8"}},
        {"copy deep.png -o out.jpg", {"out.jpg", "16 bits", "--format rgba32"}},
        {"over a.png b.png -o a.png", {"a.png", "-o"}},
        {"over a.png b.png -o ./folder/../b.png", {"b.png", "-o"}},
        {"invert a.png --mask grey.png -o grey.png", {"grey.png", "-o"}},
        {"over a.png b.png -o out.gif", {"out.gif", ".png"}},
        {"over a.png b.png -o gone/out.png", {"gone"}},
        {"over a.png b.png -o folder.png", {"folder.png is a folder"}},
        {"over a.png b.png -o out.png --json --quiet", {"--json and --quiet"}},
        {"help ovr", {"did you mean 'over'?"}},
        {"info", {"picture files"}},
        {"list all", {"'all'"}},
    };
    for (const Refusal& refusal : refusals)
        ExpectRefusal(refusal.arguments, 2, refusal.texts);
}

TEST_F(BadInput, OutputThatCannotBeWrittenFailsTheRun)
{
    // Clear pixels do not go into a JPEG file: this is known after the run alone.
    ExpectRefusal("copy a.png -o out.jpg", 1, {"out.jpg"});
    // A file may grow to 0 bytes here, as on a full disk.
    const std::vector<std::string> before = Files();
    const ProcessResult full =
        Shell("trap '' XFSZ; ulimit -f 0; '" VFIL_TOOL "' over a.png b.png -o out.png --quiet 2>/dev/null");
    EXPECT_EQ(full.status, 1);
    EXPECT_EQ(Files(), before);
}

TEST_F(BadInput, InfoShowsTheOthers)
{
    const ProcessResult result = Run("info a.png gone.png grey.png");
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.out, HasSubstr("a.png: PNG 6x4, rgba32, 8 bits, 4 channels, straight alpha"));
    EXPECT_THAT(result.out, HasSubstr("grey.png: PNG 6x4, mono8, 8 bits, 1 channel, no alpha"));
    EXPECT_THAT(result.err, HasSubstr("gone.png"));
}

// The signal is sent until it is heard: it is ignored up to the moment when the tool listens.
TEST_F(BadInput, InterruptLeavesNoOutput)
{
    Make("big.png", PXFormat_RGBA32, 2000, 2000,
         [](long x, long y, int c) { return static_cast<int>(x ^ y) + c; });
    const std::vector<std::string> before = Files();
    const ProcessResult result = Shell("trap '' INT; '" VFIL_TOOL "' lum big.png big.png -o out.png & "
                                       "while kill -INT $! 2>/dev/null; do sleep 0.02; done; wait $!");
    EXPECT_EQ(result.status, 130);
    EXPECT_EQ(result.err, "vfil lum: interrupted\n");
    EXPECT_EQ(Files(), before);
}

} // namespace

} // namespace vfil::test
