#include <vfil/pixel.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <sstream>
#include <string>
#include <string_view>

namespace {

/// What each text speaks of, from the first code on; nothing where there is no text.
constexpr const char* kSubjects =
    "memory|Output image is NULL|Output image pixel|Default color|Mask pixel|Mask width|mask image format|"
    "mask channel|match mask|ROI and output|Input image is|Input image pixel|Invalid image format|"
    "formats do not match|Interpolation|mapping|Color invalid|Alpha invalid|A is NULL|B is NULL|A pixel|"
    "B pixel|dominant|Lut|Red|Green|Blue|Alpha threshold|Type of noise|Color of noise|Level of noise|"
    "Edge mode|Kernel is||in valid range|Type of blurring|sharpening|Degree|Laplace|irection|Bias|"
    "sensitivity|Input DIB||handle|Dib32|Pathname|open DIB|read DIB|save DIB|models must be different|"
    "input image format|is not valid|coordinates are|Tolerance level is|Increment|Type of fill|Aliasing||"
    "images must be different|Input images must have|Type of the color|Vector|Color of the|Color of the|"
    "Color of the|Color of the|Color of the|Ratio|Threshold is|Invert flag|olor is invalid|edge detection|"
    "Snapping|Starting|neighborhood|Blur radius|The Seed|||||zero region|Approximation|flat|Search Area|"
    "locking only|locking mode|must be used|Alpha mode|structural||morphological|don't care||support ROI|"
    "Input offset|Input/Output|Mode is|Adjustment|No Input|Number of|fill in|Ranking|crop|model not|"
    "TrackingColour|used as mask||opacity|falloff|softness|masking|search region|must match";

TEST(Error, KindFollowsTheRangeOfTheCode)
{
    for (const unsigned long code :
         {0x0UL, 0x1UL, 0xFFFFUL, 0x10000UL, 0x1FFFFUL, 0x20000UL, 0x2FFFFUL, 0x30000UL, 0xFFFFFFFFUL}) {
        const vfILError error(code);
        EXPECT_EQ(error.IsNoError(), code == 0) << code;
        EXPECT_EQ(error.IsFatalError(), code >> 16 == 1) << code;
        EXPECT_EQ(error.IsWarning(), code >> 16 == 2) << code;
        EXPECT_EQ(static_cast<unsigned long>(error), code);
    }
    EXPECT_EQ(vfILError(static_cast<unsigned long>(-1L)) == vfILError(0xFFFFFFFF), 1) << "32 bits count";
}

TEST(Error, EveryCodeHasItsTextOfOneLineThatNamesTheClassOnce)
{
    std::map<unsigned long, std::string> subjects{
        {0, "no error"}, {0x20001, "Mask are"}, {0x20002, "channels cannot"}, {0x20004, "Snap8"}};
    std::istringstream list(kSubjects);
    std::string subject;
    for (unsigned long code = 0x10001; std::getline(list, subject, '|'); ++code)
        if (!subject.empty()) subjects[code] = subject;
    for (unsigned long code = 0; code < 0x30000; ++code) {
        const char* text = vfILErrorText(code);
        ASSERT_EQ(text != nullptr, subjects.contains(code)) << code;
        if (text == nullptr) continue;
        const std::string_view view(text);
        EXPECT_NE(view.find(subjects[code]), view.npos) << std::hex << code << ' ' << view;
        EXPECT_TRUE(view.starts_with("%s")) << view;
        EXPECT_EQ(view.find('%', 1), view.npos) << view;
        EXPECT_EQ(view.find('\n'), view.size() - 1) << view;
    }
    EXPECT_STREQ(vfILErrorText(0xFFFFFFFF), "%s ERROR: Failure\n");
    EXPECT_EQ(vfILErrorText(0xFFFFFFFE), nullptr);
    for (const unsigned long shared : {0x10023UL, 0x10026UL, 0x10028UL, 0x10048UL})
        for (const char* one : {"Kernel", "blur", "Gradient", "Edge"})
            EXPECT_EQ(std::string(vfILErrorText(shared)).find(one), std::string::npos) << shared;
}

TEST(Error, MessagesNameTheClassAndAreCutToTheBuffer)
{
    class Host : public vfILInvertImg {
    public:
        vfILStatus Refuse(const char* text) { return Fail(0x10026, text, L"Host"); }
    } host;
    const auto message = [&](std::size_t size, const char* name = nullptr) {
        char buffer[64];
        std::fill(std::begin(buffer), std::end(buffer), '#');
        const std::size_t length = vfILFormatError(host, buffer, size, name);
        EXPECT_EQ(buffer[size], '#') << size;
        return std::to_string(length) + ' ' + (size > 0 ? buffer : "");
    };
    EXPECT_EQ(message(63), "23 vfILProcessor: no error");
    EXPECT_EQ(host.Verify(), VFIL_FAILURE);
    EXPECT_EQ(message(63, "invert"), "41 invert ERROR Verify: Output image is NULL");
    host.Refuse("%s ERROR Verify: 100% of %s \n");
    EXPECT_EQ(message(63), "29 Host ERROR Verify: 100% of %s");
    EXPECT_EQ(message(6), "29 Host ");
    EXPECT_EQ(message(1), "29 ");
    EXPECT_EQ(message(0), "29 ");
    host.SetLastError(vfILError(0x10026));
    EXPECT_STREQ(host.GetLastErrorText(), vfILErrorText(0x10026)) << "the text was of the other error";
    host.SetLastError(vfILError(0x7A5));
    EXPECT_EQ(message(63, "own"), "15 own ERROR 0x7A5");
    char buffer[64];
    vfILFormatError(vfILError(0x1000D), buffer, sizeof buffer, "It");
    EXPECT_STREQ(buffer, "It ERROR Verify: Invalid image format");
}

} // namespace
