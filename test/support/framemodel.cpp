#include "support/framemodel.h"

#include <gtest/gtest.h>

#include <cxxabi.h>

#include <cstdlib>
#include <memory>
#include <sstream>
#include <typeinfo>

namespace vfil::test {
namespace {

bool Covers(const vfILBbox2l& box, long x, long y)
{
    return x >= box.GetOffsetX() && y >= box.GetOffsetY() && x - box.GetOffsetX() < box.GetSizeX() &&
           y - box.GetOffsetY() < box.GetSizeY();
}

} // namespace

Snapshot::Snapshot(const GuardedImage& image) : width(image.Width()), height(image.Height())
{
    for (long y = 0; y < height; ++y)
        for (long x = 0; x < width; ++x)
            pixels.push_back(image.Get(x, y));
}

bool IsRowTreated(unsigned long mode, long y)
{
    if (mode & VFIL_MODE_ODD_ROWS && y % 2 == 0) return false;
    return !(mode & VFIL_MODE_EVEN_ROWS && y % 2 != 0);
}

Snapshot ModelRun(const FrameCase& run, const GuardedImage& a, const GuardedImage& b,
                  const GuardedImage& output, const PixelRule& rule)
{
    const Snapshot before(output);
    const Snapshot mask = run.mask ? Snapshot(*run.mask) : before;
    const vfILBbox2l target(run.outputOffset[0], run.outputOffset[1], run.roi.GetSizeX(), run.roi.GetSizeY());
    Snapshot after = before;
    for (long y = 0; y < after.height; ++y)
        for (long x = 0; x < after.width; ++x) {
            if (!Covers(target, x, y) || !IsRowTreated(run.mode, y)) continue;
            const long px = x - run.outputOffset[0] + run.roi.GetOffsetX();
            const long py = y - run.outputOffset[1] + run.roi.GetOffsetY();
            const long bx = px - run.inputOffset[0];
            const long by = py - run.inputOffset[1];
            const bool inA = a.Contains(px, py);
            const bool inB = b.Contains(bx, by);
            Pixel& pixel = after.At(x, y);
            if (!(run.dominantB ? inB : inA))
                pixel = run.defaultPixel;
            else if (!inA || !inB || !Covers(run.maskBox, px, py))
                pixel = run.dominantB ? b.Get(bx, by) : a.Get(px, py);
            else {
                const long mx = px - run.maskBox.GetOffsetX();
                const long my = py - run.maskBox.GetOffsetY();
                pixel = rule(a.Get(px, py), b.Get(bx, by), run.mask ? mask.At(mx, my)[run.maskChannel] : -1);
            }
        }
    return after;
}

std::string ClassOf(const vfILProcessor& processor)
{
    const std::unique_ptr<char, decltype(&std::free)> name(
        abi::__cxa_demangle(typeid(processor).name(), nullptr, nullptr, nullptr), std::free);
    return name.get();
}

std::string Difference(const Snapshot& expected, const GuardedImage& actual)
{
    if (!actual.AreGuardsIntact()) return "wrote outside the pixels";
    for (long y = 0; y < expected.height; ++y)
        for (long x = 0; x < expected.width; ++x)
            if (expected.At(x, y) != actual.Get(x, y)) {
                std::ostringstream text;
                text << "at (" << x << ", " << y << ") expected " << testing::PrintToString(expected.At(x, y))
                     << ", is " << testing::PrintToString(actual.Get(x, y));
                return text.str();
            }
    return {};
}

} // namespace vfil::test
