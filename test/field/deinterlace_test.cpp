/// \file
/// Deinterlacing against a model that knows image rows and no memory.
#include "support/allocations.h"
#include "support/framemodel.h"
#include "support/processors.h"

#include <vfil/fields.h>

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <numeric>

using namespace vfil::test;

namespace {

constexpr auto kAdaptive = VFIL_DEINTERLACE_ADAPTIVE;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

/// What one output is made of.
struct Sources {
    Snapshot frame; ///< as it was before the run
    Snapshot kept;  ///< where the rows of the output's own field are read
    Snapshot compared;
};

struct Task {
    vfILInterpolationType type;
    double low, high;
    vfILBbox2l roi;
    vfILVector2l offset;
    Pixel fill{};
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

/// One pixel of the output that has the rows of a parity.
Pixel ModelPixel(const Task& task, const FormatCase& format, const Sources& from, int parity, long x, long y)
{
    if ((y & 1) == parity) return from.frame.At(x, y);
    const long height = from.frame.height;
    const long step = format.Is('T') ? -1 : 1; // to the next row in memory, or of the split frame
    const auto beside = [&](long row) {
        if (row >= 0 && row < height) return from.kept.At(x, row);
        return from.frame.At(x, height == 1 ? 0 : row < 0 ? 1 : height - 2);
    };
    const Pixel before = beside(y - step);
    const Pixel behind = beside(y + step);
    if (task.type == VFIL_DEINTERLACE_DUPLICATE) return parity == 0 ? before : behind;
    Pixel result;
    for (std::size_t c = 0; c < 4; ++c) {
        result[c] = task.type == VFIL_DEINTERLACE_INTERPOLATE
                        ? (before[c] + behind[c] + 1) / 2
                        : Mix(task, format.Full(), before[c], behind[c], from.frame.At(x, y)[c],
                              from.compared.At(x, y)[c]);
    }
    return result;
}

Snapshot Model(const Task& task, const FormatCase& format, const Sources& from, int parity,
               const Snapshot& output)
{
    Snapshot after = output;
    for (long ty = 0; ty < task.roi.GetSizeY(); ++ty)
        for (long tx = 0; tx < task.roi.GetSizeX(); ++tx) {
            const long x = tx + task.roi.GetOffsetX();
            const long y = ty + task.roi.GetOffsetY();
            const bool exists = x >= 0 && y >= 0 && x < from.frame.width && y < from.frame.height;
            after.At(tx + task.offset[0], ty + task.offset[1]) =
                exists ? ModelPixel(task, format, from, parity, x, y) : task.fill;
        }
    return after;
}

/// The formats that are taken.
std::vector<GUID> Taken()
{
    std::vector<GUID> taken;
    for (const FormatCase& format : kFormats) {
        const bool plain = format.id == PXFormat_RGBA32 || format.id == PXFormat_RGBA64 ||
                           format.id == PXFormat_Mono8 || format.id == PXFormat_Mono16;
        if (plain || (format.IsSubsampled() && !format.Is('P'))) taken.push_back(format.id);
    }
    return taken;
}

struct Pictures {
    GuardedImage in, compA, compB, outA, outB;

    Pictures(const GUID& format, long width, long height, long outWidth, long outHeight, std::mt19937& random)
        : in(format, width, height), compA(format, width, height), compB(format, width, height),
          outA(format, outWidth, outHeight), outB(format, outWidth, outHeight)
    {
        in.Randomise(random);
        outA.Randomise(random);
        outB.Randomise(random);
        for (GuardedImage* comp : {&compA, &compB}) // half of it near the frame
            for (long y = 0; y < height; ++y)
                for (long x = 0; x < width; ++x) {
                    Pixel pixel = in.Get(x, y);
                    const int full = in.Format().Full();
                    for (int& value : pixel)
                        value = random() % 2 == 0
                                    ? RandomSample(random, full)
                                    : std::min(full, value + static_cast<int>(random() % 40) * (full / 255));
                    comp->Set(x, y, pixel);
                }
    }
};

void Connect(vfILDeinterlace& p, const Task& task, GuardedImage* in, GuardedImage* outA, GuardedImage* outB)
{
    p.SetInputImg(in);
    p.SetOutputImgA(outA);
    p.SetOutputImgB(outB);
    p.SetInterpolationType(task.type);
    p.SetMinThreshold(task.low);
    p.SetMaxThreshold(task.high);
    p.SetROI(task.roi);
    p.SetOutputOffset(task.offset);
}

Task RandomTask(std::mt19937& random, vfILInterpolationType type, long width, long height)
{
    constexpr std::array<std::array<double, 2>, 6> kThresholds = {
        {{0, 0.15}, {0.1, 0.1}, {0, 0}, {0.02, 1}, {1, 1}, {0.05, 0.075}}};
    const auto& [low, high] = kThresholds[random() % kThresholds.size()];
    const long x = RandomIn(random, 0, width - 1);
    const long y = RandomIn(random, 0, height - 1);
    Task task{type, low, high, {0, 0, width, height}, {}};
    if (random() % 3 == 0) return task;
    task.roi = {x, y, RandomIn(random, 1, width - x), RandomIn(random, 1, height - y)};
    return task;
}

TEST(Deinterlace, MakesTheFieldsOfAnyPart)
{
    std::mt19937 random(12);
    const std::vector<GUID> formats = Taken();
    for (int turn = 0; turn < 6000; ++turn) {
        const GUID& format = formats[random() % formats.size()];
        const auto type =
            std::array{VFIL_DEINTERLACE_DUPLICATE, VFIL_DEINTERLACE_INTERPOLATE, kAdaptive}[turn % 3];
        const long width = RandomIn(random, format == PXFormat_Mono8 ? 2 : 1, 20);
        const long height = RandomIn(random, 1, 9);
        Pictures p(format, width, height, width + 3, height + 3, random);
        Task task = RandomTask(random, type, width, height);
        if (random() % 3 == 0) // hangs over the input
            task.roi = {RandomIn(random, -3, 2), RandomIn(random, -3, 2), width, height};
        if (format == PXFormat_Mono8 && task.roi.GetSizeX() < 2) continue;
        task.offset = vfILVector2l(RandomIn(random, 0, width + 3 - task.roi.GetSizeX()),
                                   RandomIn(random, 0, height + 3 - task.roi.GetSizeY()));
        if ((task.roi & vfILBbox2l(0, 0, width, height)).GetSizeX() < 2 && format == PXFormat_Mono8) continue;
        const bool hasA = random() % 3 != 0;
        const bool hasB = !hasA || random() % 2 == 0;
        Switched<vfILDeinterlace> processor(random() % 2 == 0);
        Connect(processor, task, &p.in, hasA ? &p.outA : nullptr, hasB ? &p.outB : nullptr);
        if (type == kAdaptive) {
            processor.SetCompImgA(hasA ? &p.compA : nullptr);
            processor.SetCompImgB(hasB ? &p.compB : nullptr);
        }
        const Snapshot beforeA(p.outA);
        const Snapshot beforeB(p.outB);
        ASSERT_EQ(processor.Execute(), VFIL_SUCCESS) << std::hex << processor.GetLastError().GetErrorCode();
        // (0, 0, 0, 0) in YCC is the black of studio range.
        const FormatCase& known = p.in.Format();
        const Sources fromA{Snapshot(p.in), Snapshot(p.in), Snapshot(p.compA)};
        const Sources fromB{Snapshot(p.in), Snapshot(p.in), Snapshot(p.compB)};
        if (known.IsSubsampled()) task.fill = known.Is('C') ? Pixel{128, 16} : Pixel{16, 128};
        EXPECT_EQ(Difference(hasA ? Model(task, known, fromA, 0, beforeA) : beforeA, p.outA), "")
            << "A, " << known.name << ", type " << type << ", turn " << turn;
        EXPECT_EQ(Difference(hasB ? Model(task, known, fromB, 1, beforeB) : beforeB, p.outB), "")
            << "B, " << known.name << ", type " << type << ", turn " << turn;
        if (HasFailure()) return;
    }
}

} // namespace
