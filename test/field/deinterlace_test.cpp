/// \file
/// Deinterlacing against a model that knows image rows and no memory.
#include "support/allocations.h"
#include "support/framemodel.h"
#include "support/processors.h"

#include <vfil/fields.h>

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

using namespace vfil::test;

namespace {

constexpr auto kDuplicate = VFIL_DEINTERLACE_DUPLICATE;
constexpr auto kInterpolate = VFIL_DEINTERLACE_INTERPOLATE;
constexpr auto kAdaptive = VFIL_DEINTERLACE_ADAPTIVE;

struct Task {
    vfILInterpolationType type;
    double low, high;
    vfILBbox2l roi;
    vfILVector2l offset;
};

/// What an output is made of.
struct Sources {
    const FormatCase& format;
    Snapshot frame; ///< as it was before the run
    Snapshot kept;  ///< what the rows of the output's own field are read from
    Snapshot compared;
};

int Mix(const Task& task, int full, int before, int behind, int here, int compared)
{
    const int space = (before + behind + 1) / 2;
    const int time = (here + compared + 1) / 2;
    const int motion = std::abs(here - compared);
    const double low = std::round(task.low * full);
    const double high = std::round(task.high * full);
    if (motion <= low) return time;
    if (motion >= high) return space;
    const double w = (motion - low) * (1 / (high - low));
    return static_cast<int>(std::round(w * space + (1 - w) * time));
}

/// A pixel that the output of a parity lacks.
Pixel Missing(const Task& task, const Sources& from, int parity, long x, long y)
{
    const long height = from.frame.height;
    const long step = from.format.Is('T') ? -1 : 1; // to the row that is behind in memory
    const auto beside = [&](long row) {
        if (row >= 0 && row < height) return from.kept.At(x, row);
        return from.frame.At(x, height == 1 ? 0 : row < 0 ? 1 : height - 2);
    };
    const Pixel before = beside(y - step);
    const Pixel behind = beside(y + step);
    if (task.type == kDuplicate) return parity == 0 ? before : behind;
    Pixel result;
    for (std::size_t c = 0; c < result.size(); ++c) {
        result[c] = task.type == kInterpolate ? (before[c] + behind[c] + 1) / 2
                                              : Mix(task, from.format.Full(), before[c], behind[c],
                                                    from.frame.At(x, y)[c], from.compared.At(x, y)[c]);
    }
    return result;
}

Snapshot Model(const Task& task, const Sources& from, int parity, const Snapshot& output)
{
    // (0, 0, 0, 0) is the black of studio range in video.
    const Pixel video = from.format.Is('C') ? Pixel{128, 16} : Pixel{16, 128};
    const vfILBbox2l valid = task.roi & vfILBbox2l(0, 0, from.frame.width, from.frame.height);
    const bool leavesMissing = task.type == kAdaptive && valid.GetSizeX() * from.format.pixelBytes < 2;
    Snapshot after = output;
    for (long ty = 0; ty < task.roi.GetSizeY(); ++ty)
        for (long tx = 0; tx < task.roi.GetSizeX(); ++tx) {
            const long x = tx + task.roi.GetOffsetX();
            const long y = ty + task.roi.GetOffsetY();
            Pixel& pixel = after.At(tx + task.offset[0], ty + task.offset[1]);
            if (x < 0 || y < 0 || x >= from.frame.width || y >= from.frame.height)
                pixel = from.format.IsSubsampled() ? video : Pixel{};
            else if ((y & 1) == parity)
                pixel = from.kept.At(x, y);
            else if (!leavesMissing)
                pixel = Missing(task, from, parity, x, y);
        }
    return after;
}

/// A frame, its neighbours in time, half of whose samples are near those of the frame, and outputs.
struct Pictures {
    GuardedImage in, compA, compB, outA, outB;

    Pictures(const GUID& format, long width, long height, std::mt19937& random, long margin = 0)
        : in(format, width, height), compA(format, width, height), compB(format, width, height),
          outA(format, width + margin, height + margin), outB(format, width + margin, height + margin)
    {
        for (GuardedImage* image : {&in, &compA, &compB, &outA, &outB})
            image->Randomise(random);
        const int full = in.Format().Full();
        for (long i = 0; i < width * height; ++i) {
            for (GuardedImage* comp : {&compA, &compB}) {
                Pixel pixel = in.Get(i % width, i / width);
                for (std::size_t c = 0; c < pixel.size(); ++c) {
                    pixel[c] = random() % 2 == 0 ? comp->Get(i % width, i / width)[c]
                                                 : pixel[c] ^ static_cast<int>(random() % 64 * (full / 255));
                }
                comp->Set(i % width, i / width, pixel);
            }
        }
    }
};

template <class Processor>
void Arrange(Processor& p, const Task& task, Pictures& pictures, GuardedImage* outA, GuardedImage* outB)
{
    p.SetInputImg(&pictures.in);
    p.SetOutputImgA(outA);
    p.SetOutputImgB(outB);
    p.SetInterpolationType(task.type);
    p.SetMinThreshold(task.low);
    p.SetMaxThreshold(task.high);
    p.SetROI(task.roi);
    p.SetOutputOffset(task.offset);
    // Only what is needed.
    p.SetCompImgA(task.type == kAdaptive && outA != nullptr ? &pictures.compA : nullptr);
    p.SetCompImgB(task.type == kAdaptive && outB != nullptr ? &pictures.compB : nullptr);
}

constexpr std::array<std::array<double, 2>, 6> kThresholds = {
    {{0, 0.15}, {0.1, 0.1}, {0, 0}, {0.02, 1}, {1, 1}, {0.05, 0.075}}};

Task RandomTask(std::mt19937& random, const GuardedImage& in)
{
    const auto type = std::array{kDuplicate, kInterpolate, kAdaptive}[random() % 3];
    const auto& [low, high] = kThresholds[random() % kThresholds.size()];
    Task task{type, low, high, {0, 0, in.Width(), in.Height()}, {}};
    if (random() % 3 == 0) return task;
    const long x = RandomIn(random, 0, in.Width() - 1);
    const long y = RandomIn(random, 0, in.Height() - 1);
    task.roi = {x, y, RandomIn(random, 1, in.Width() - x), RandomIn(random, 1, in.Height() - y)};
    if (random() % 2 == 0) task.roi.SetOffset(x - 3, y - 3); // hangs over the input
    return task;
}

vfILVector2l RandomOffset(std::mt19937& random, const Task& task, const GuardedImage& out)
{
    const long x = RandomIn(random, 0, out.Width() - task.roi.GetSizeX());
    return {x, RandomIn(random, 0, out.Height() - task.roi.GetSizeY())};
}

const FormatCase& RandomFormat(std::mt19937& random)
{
    for (;;) {
        const FormatCase& format = kFormats[random() % kFormats.size()];
        if (format.IsSubsampled() ? !format.Is('P')
                                  : format.id == PXFormat_RGBA32 || format.id == PXFormat_RGBA64 ||
                                        format.id == PXFormat_Mono8 || format.id == PXFormat_Mono16)
            return format;
    }
}

/// Which picture of the run an output is.
enum class Sharing { Apart, A, B, Both, MovedA, ComparisonA };

TEST(Deinterlace, MakesTheFieldsOfAnyPart)
{
    std::mt19937 random(12);
    for (int turn = 0; turn < 5000 && !HasFailure(); ++turn) {
        const auto sharing = static_cast<Sharing>(std::max(0L, RandomIn(random, -4, 5)));
        const bool apart = sharing == Sharing::Apart;
        const FormatCase& format = RandomFormat(random);
        Pictures p(format.id, RandomIn(random, 1, 20), RandomIn(random, 1, 9), random, apart ? 3 : 0);
        const vfILBbox2l whole(0, 0, p.in.Width(), p.in.Height());
        GuardedImage& outA = apart || sharing == Sharing::B    ? p.outA
                             : sharing == Sharing::ComparisonA ? p.compA
                                                               : p.in;
        GuardedImage& outB = sharing == Sharing::B || sharing == Sharing::Both ? p.in : p.outB;
        Task task = RandomTask(random, p.in);
        task.offset = RandomOffset(random, task, outA);
        if (!apart && sharing != Sharing::MovedA) {
            task.roi &= whole;
            if (task.roi.IsNull()) continue;
            task.offset = task.roi.GetOffset();
        }
        const bool hasA = !apart || random() % 3 != 0;
        const bool hasB = !apart || !hasA || random() % 2 == 0;
        Switched<vfILDeinterlace> processor(random() % 2 == 0);
        Arrange(processor, task, p, hasA ? &outA : nullptr, hasB ? &outB : nullptr);

        const Snapshot in(p.in), beforeA(outA), beforeB(outB);
        const Snapshot afterA = hasA ? Model(task, {format, in, in, Snapshot(p.compA)}, 0, beforeA) : beforeA;
        // With both in place B is made of what A left.
        const bool both = sharing == Sharing::Both;
        const Sources fromB{format, in, both ? afterA : in, Snapshot(p.compB)};
        const Snapshot afterB = hasB ? Model(task, fromB, 1, both ? afterA : beforeB) : beforeB;
        ASSERT_EQ(processor.Execute(), VFIL_SUCCESS) << std::hex << processor.GetLastError().GetErrorCode();
        const std::string what = std::string(format.name) + ", type " + std::to_string(task.type) +
                                 ", sharing " + std::to_string(static_cast<int>(sharing)) + ", turn " +
                                 std::to_string(turn);
        EXPECT_EQ(Difference(both ? afterB : afterA, outA), "") << "A, " << what;
        EXPECT_EQ(Difference(afterB, outB), "") << "B, " << what;
    }
}

/// Results that go around the cache, from rows that begin anywhere.
TEST(Deinterlace, LargeResultsAreThoseOfThePlainForm)
{
    std::mt19937 random(14);
    Pictures p(PXFormat_RGBA64, 311, 701, random);
    for (const auto type : {kDuplicate, kInterpolate, kAdaptive}) {
        std::vector<std::uint8_t> a, b;
        for (const bool simd : {false, true}) {
            Switched<vfILDeinterlace> processor(simd);
            Arrange(processor, {type, 0, 0.15, {1, 1, 310, 700}, {}}, p, &p.outA, &p.outB);
            ASSERT_EQ(processor.Execute(), VFIL_SUCCESS);
            EXPECT_TRUE(!simd || (a == p.outA.Bytes() && b == p.outB.Bytes())) << "type " << type;
            a = p.outA.Bytes();
            b = p.outB.Bytes();
        }
    }
}

TEST(Deinterlace, StopsAfterARowAndFailsWithoutMemory)
{
    std::mt19937 random(15);
    Pictures p(PXFormat_Mono16, 5, 6, random);
    const Task task{kInterpolate, 0, 0.15, {0, 0, 5, 6}, {}};
    const Snapshot in(p.in), before(p.outB);
    Snapshot expected = Model(task, {p.in.Format(), in, in, in}, 1, before);
    std::copy(before.pixels.begin() + 15, before.pixels.end(), expected.pixels.begin() + 15);
    vfILDeinterlace processor;
    Arrange(processor, task, p, &p.outA, &p.outB);
    g_pollsLeft = 2;
    processor.SetInterruptFct(StopAfterPolls, nullptr);
    EXPECT_EQ(processor.Execute(), VFIL_SUCCESS);
    EXPECT_EQ(Difference(expected, p.outB), "") << "three rows of six";

    // In place the rows of A come first, and those of B stay as they are.
    g_pollsLeft = 0;
    processor.SetOutputImgB(&p.in);
    EXPECT_EQ(processor.Execute(), VFIL_SUCCESS);
    EXPECT_EQ(Difference(in, p.in), "");

    processor.SetInterruptFct(nullptr, nullptr);
    p.in.failReadRegion = true;
    EXPECT_EQ(processor.Execute(), VFIL_FAILURE);
    EXPECT_EQ(processor.GetLastError().GetErrorCode(), 0x1000CU);
    g_allocations.granted = 0;
    EXPECT_EQ(processor.Execute(), VFIL_FAILURE);
    g_allocations = {};
    EXPECT_EQ(processor.GetLastError().GetErrorCode(), 0x10001U);
    EXPECT_EQ(Difference(in, p.in), "");
}

TEST(Deinterlace, FreeFunctionAndCopies)
{
    std::mt19937 random(16);
    Pictures p(PXFormat_RGBA32, 7, 5, random);
    const Snapshot in(p.in);
    const Task whole{kAdaptive, 0.05, 0.3, {0, 0, 7, 5}, {}};
    const Snapshot expected = Model(whole, {p.in.Format(), in, in, Snapshot(p.compB)}, 1, in);
    EXPECT_EQ(vfILDeinterlaceFields(&p.in, nullptr, &p.outB, kAdaptive, nullptr, &p.compB, 0.05, 0.3), 0);
    EXPECT_EQ(Difference(expected, p.outB), "");
    // The other types look at neither thresholds nor comparison pictures.
    EXPECT_EQ(vfILDeinterlaceFields(&p.in, &p.outA, &p.outB, kDuplicate, nullptr, nullptr, 7, -7), 0);
    EXPECT_EQ(vfILDeinterlaceFields(&p.in, &p.outA, &p.outB, kAdaptive, &p.compA, nullptr, 0, 1),
              -0x7FFFBFFB);

    vfILDeinterlace processor;
    Arrange(processor, {kAdaptive, 0.05, 0.3, {0, 1, 7, 4}, {0, 1}}, p, nullptr, &p.outB);
    vfILDeinterlace copy(processor), assigned;
    assigned = processor;
    for (vfILDeinterlace* made : {&copy, &assigned}) {
        p.outB.Randomise(random);
        Snapshot after(p.outB);
        std::copy(expected.pixels.begin() + 7, expected.pixels.end(), after.pixels.begin() + 7);
        EXPECT_EQ(made->Execute(), VFIL_SUCCESS);
        EXPECT_EQ(Difference(after, p.outB), "");
    }
}

/// Each case is right but for what it spoils, and what is looked for later is spoilt as well.
TEST(Deinterlace, RefusesInOrder)
{
    GuardedImage in(PXFormat_RGBA32, 4, 4), out(PXFormat_RGBA32, 4, 4), wide(PXFormat_RGBA64, 4, 4);
    GuardedImage low(PXFormat_RGBA32, 4, 3), planes(PXFormat_YCCA422_601, 4, 4), empty(PXFormat_RGBA32);
    struct Case {
        unsigned long code;
        const char* name;
        std::function<void(vfILDeinterlace&)> mend; ///< after the cases above it
    };
    using P = vfILDeinterlace;
    const Case cases[] = {
        {0x20002, "no alpha", [](P&) {}},
        {0x1000B, "no input", [](P& p) { p.SetProcessingMode(VFIL_MODE_RGBA | VFIL_MODE_ODD_ROWS); }},
        {0x1000C, "an input without pixels", [&](P& p) { p.SetInputImg(&empty); }},
        {0x10002, "no output", [&](P& p) { p.SetInputImg(&planes); }},
        {0x10034, "an alpha plane", [&](P& p) { p.SetOutputImgA(&empty), p.SetOutputImgB(&empty); }},
        {0x10003, "A without pixels", [&](P& p) { p.SetInputImg(&in); }},
        {0x1000E, "A of another format", [&](P& p) { p.SetOutputImgA(&wide); }},
        {0x1000A, "A too low", [&](P& p) { p.SetOutputImgA(&low); }},
        {0x10003, "B without pixels", [&](P& p) { p.SetOutputImgA(&out); }},
        {0x1000E, "B of another format", [&](P& p) { p.SetOutputImgB(&wide); }},
        {0x1000A, "B too low", [&](P& p) { p.SetOutputImgB(&low); }},
        {0x1000C, "nothing to compare A with", [&](P& p) { p.SetOutputImgB(&in); }},
        {0x1000C, "or nothing in it", [&](P& p) { p.SetCompImgA(&empty); }},
        {0x1000E, "compared in another format", [&](P& p) { p.SetCompImgA(&wide); }},
        {0x1003D, "compared in another size", [&](P& p) { p.SetCompImgA(&low); }},
        {0x1000C, "nothing to compare B with", [&](P& p) { p.SetCompImgA(&in); }},
        {0x10004, "no colour", [&](P& p) { p.SetCompImgB(&out); }},
        {0x1000F, "no type",
         [](P& p) {
             p.SetDefaultColor({0, 0, 0, 1});
         }},
        {0x10046, "thresholds that cross", [](P& p) { p.SetInterpolationType(kAdaptive); }},
        {0x10046, "one above 1", [](P& p) { p.SetMinThreshold(0), p.SetMaxThreshold(1.01); }},
        {0x10046, "one that is no number", [](P& p) { p.SetMaxThreshold(std::nan("")); }},
        {0x10046, "one below 0", [](P& p) { p.SetMaxThreshold(0), p.SetMinThreshold(-1e-9); }},
        {0, "nothing", [](P& p) { p.SetMinThreshold(0); }},
        {0, "A alone, which needs no B", [](P& p) { p.SetOutputImgB(nullptr), p.SetCompImgB(nullptr); }},
        {0, "a type without comparison",
         [](P& p) { p.SetInterpolationType(kInterpolate), p.SetCompImgA(nullptr); }},
    };
    P p;
    p.SetProcessingMode(VFIL_MODE_RGB);
    p.SetROI({0, 0, 4, 4});
    p.SetDefaultColor({0, 2, 0, 0});
    p.SetInterpolationType(VFIL_INTERP_BICUBIC);
    p.SetMinThreshold(0.5);
    for (const Case& c : cases) {
        c.mend(p);
        p.SetLastError(vfILError());
        EXPECT_EQ(p.Execute(), c.code == 0 ? VFIL_SUCCESS : VFIL_FAILURE) << c.name;
        EXPECT_EQ(p.GetLastError().GetErrorCode(), c.code) << c.name;
    }
}

} // namespace
