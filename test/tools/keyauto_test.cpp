/// \file
/// vfil key-auto: the command that it finds, and what it refuses.
#include "test/tools/toolfolder.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>

namespace vfil::tool {

namespace {

using nlohmann::json;
using testing::HasSubstr;

// A red ball before a green screen.
class KeyAutoTool : public ToolFolder {
protected:
    KeyAutoTool()
    {
        const auto alpha = [](long x, long y) {
            return std::clamp(20.5 - std::hypot(static_cast<double>(x) - 48, static_cast<double>(y) - 32),
                              0.0, 1.0);
        };
        const auto plate = [=](long x, long y, long c) {
            const double front[] = {200, 60, 50, 255};
            const double back[] = {50, 160, 70, 255};
            return std::lround(front[c] * alpha(x, y) + back[c] * (1 - alpha(x, y))) +
                   (x * 7 + y * 5) % 3 % (4 - c);
        };
        Make("plate.png", PXFormat_RGBA32, 96, 64, plate);
        Make("it's.png", PXFormat_RGBA32, 96, 64, plate);
        Make("truth.png", PXFormat_Mono8, 96, 64,
             [=](long x, long y, long) { return std::lround(255 * alpha(x, y)); });
        Make("inverse.png", PXFormat_Mono8, 96, 64,
             [=](long x, long y, long) { return std::lround(255 - 255 * alpha(x, y)); });
        Make("screen.png", PXFormat_RGBA32, 96, 64, [](long, long, long c) { return c == 1 ? 160 : 50; });
        Make("black.png", PXFormat_RGBA32, 96, 64, [](long, long, long) { return 0; });
        Make("dot.png", PXFormat_RGBA32, 1, 1, [](long, long, long c) { return c == 1 ? 160 : 50; });
        RunWell("convert plate.png -o plate16.png --to rgba64 --quiet");
    }
};

TEST_F(KeyAutoTool, PrintsTheCommandThatMakesItsResult)
{
    for (const std::string plate : {"plate.png", "plate16.png", "\"it's.png\""}) {
        const std::string text = RunWell("key-auto " + plate + " --truth truth.png -o keyed.png");
        const std::string line = text.substr(0, text.find('\n'));
        ASSERT_EQ(line.substr(0, 5), "vfil ");
        const host::PicturePtr keyed = host::ReadPicture(Path("keyed.png"));
        std::filesystem::remove(Path("keyed.png"));
        RunWell(line.substr(5) + " --quiet");
        const host::PicturePtr again = host::ReadPicture(Path("keyed.png"));
        ASSERT_EQ(keyed->Bytes(), again->Bytes());
        EXPECT_EQ(std::memcmp(keyed->Pixels(), again->Pixels(), keyed->Bytes()), 0);
        const json score = json::parse(RunWell("score keyed.png truth.png --json"))["total"];
        EXPECT_LT(score["meanSquaredError"], 40) << line;
        json record = json::parse(RunWell("key-auto " + plate + " --truth truth.png --json"));
        EXPECT_EQ(record["truth"]["meanSquaredError"], score["meanSquaredError"]);
        EXPECT_EQ(record["screen"]["kind"], "green");
        // A wrong truth has no say.
        json wrong = json::parse(RunWell("key-auto " + plate + " --truth inverse.png --json"));
        EXPECT_GT(wrong["truth"]["meanSquaredError"], 10000);
        wrong.erase("truth");
        record.erase("truth");
        EXPECT_EQ(wrong, record);
    }
    EXPECT_EQ(RunWell("key-auto plate.png --quiet -o quiet.png"), "");
    EXPECT_TRUE(std::filesystem::exists(Path("quiet.png")));
    const json record = json::parse(RunWell("key-auto plate.png --keyer linear-keyer --json"));
    EXPECT_EQ(record["keys"].size(), 1U);
    EXPECT_THAT(record["command"], HasSubstr("vfil linear-keyer plate.png -o OUT.png --key-color"));
}

TEST_F(KeyAutoTool, RefusesInOneLineAndLeavesNothing)
{
    ExpectRefusals(
        {{"key-auto screen.png -o new.png", {"no subject found: "}, 1},
         {"key-auto black.png -o new.png", {"no screen found: "}, 1},
         {"key-auto dot.png -o new.png", {"no screen found: "}, 1},
         {"key-auto truth.png -o new.png", {"no screen found: "}, 1},
         {"key-auto", {"takes 1 picture"}},
         {"key-auto plate.png truth.png", {"takes 1 picture"}},
         {"key-auto none.png -o new.png", {"none.png: no such file"}},
         {"key-auto plate.png --keyer liner-keyer", {"did you mean 'linear-keyer'"}},
         {"key-auto plate.png --keyer luma-keyer", {"is not one of"}},
         {"key-auto plate.png --json --quiet", {"exclude each other"}},
         {"key-auto plate.png -o -", {"takes the name of a file"}},
         {"key-auto plate.png -o ''", {"takes the name of a file"}},
         {"key-auto plate.png -o none/new.png", {"none does not exist"}},
         {"key-auto plate.png -o plate.png", {"plate.png is read"}},
         {"key-auto plate.png --truth none.png -o new.png", {"none.png: no such file"}},
         {"key-auto plate.png --truth dot.png -o new.png", {"dot.png is 1x1, and the plate is 96x64"}}},
        "vfil key-auto: [^\n]*\n");
}

} // namespace

} // namespace vfil::tool
