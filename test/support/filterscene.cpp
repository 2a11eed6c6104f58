#include "support/filterscene.h"

#include "support/layermodel.h"

#include <vfil/morphology.h>

#include <gtest/gtest.h>

#include <algorithm>

namespace vfil::test {

long EdgeIndex(vfILEdgeMode mode, long i, long size)
{
    while (i < 0 || i >= size) {
        if (mode == VFIL_EDGE_COLOR) return -1;
        if (mode == VFIL_EDGE_WRAP) i += i < 0 ? size : -size;
        if (mode == VFIL_EDGE_CLAMP) i += i < 0 ? 1 : -1;
        if (mode == VFIL_EDGE_MIRROR) i = (i < 0 ? 0 : 2 * size) - 1 - i;
    }
    return i;
}

FilterScene::FilterScene(std::mt19937& random, const GUID& id, long width, long height, int keys)
    : format(FormatOf(id)),
      input(id, width, height), separateOutput{id, std::max(1L, width + RandomIn(random, -3, 3)),
                                               std::max(1L, height + RandomIn(random, -3, 3))},
      output(width == 0 || random() % 3 ? &separateOutput : &input),
      edgeMode(static_cast<vfILEdgeMode>(RandomIn(random, 1, 4)))
{
    input.Randomise(random);
    separateOutput.Randomise(random);
    const auto few = [&] { return static_cast<int>(random() % static_cast<unsigned>(keys)); };
    for (long i = 0; i < width * height && keys > 0; ++i) {
        const int unit = format.Full() / keys;
        input.Set(i % width, i / width, {few() * unit, few() * unit, few() * unit, few() * unit});
    }
    const int part = format.Full() / 5;
    const bool mono = format.channels == 1;
    regions.defaultPixel = mono ? Pixel{part * 5} : Pixel{part * 5, 0, part, part * 3};
    edgePixel = mono ? Pixel{part} : Pixel{part, part * 5, 0, part * 4};
    regions.mode = random() % 2 ? random() % 16 : VFIL_MODE_RGBA;
    if (random() % 3 == 0) regions.mode |= (random() % 4) * VFIL_MODE_ODD_ROWS;
    PlaceRegions(random);
    PlaceMask(random);
}

void FilterScene::PlaceRegions(std::mt19937& random)
{
    const bool whole = random() % 3 == 0;
    long size[] = {output->Width(), output->Height()}, target[2], offset[2];
    for (const int axis : {0, 1}) {
        const long space = whole ? 0 : RandomIn(random, 0, size[axis] - 1);
        size[axis] -= space;
        target[axis] = random() % 4 ? RandomIn(random, 0, space) : 0;
        offset[axis] = random() % 3 ? RandomIn(random, -3, 5) : target[axis];
    }
    regions.roi = vfILBbox2l(offset[0], offset[1], size[0], size[1]);
    regions.outputOffset = vfILVector2l(target[0], target[1]);
}

/// None, a box, or a box with a mono or a four-channel picture.
void FilterScene::PlaceMask(std::mt19937& random)
{
    const auto choice = random() % 5;
    if (choice > 1)
        regions.maskBox = {RandomIn(random, -2, 3), RandomIn(random, -2, 3),
                           RandomIn(random, 1, input.Width() + 6), RandomIn(random, 1, input.Height() + 6)};
    if (choice < 3) return;
    const bool mono = random() % 2;
    mask = std::make_unique<GuardedImage>(*kFilterFormats[2 * (format.sampleBytes - 1) + mono],
                                          regions.maskBox.GetSizeX(), regions.maskBox.GetSizeY());
    mask->Randomise(random);
    regions.mask = mask.get();
    regions.maskChannel = mono ? 0 : random() % 4;
}

void FilterScene::DropMask()
{
    regions.mask = nullptr;
    mask.reset();
}

void FilterScene::Arrange(vfILMonadicSpatialProc& filter)
{
    filter.SetInputImg(&input);
    filter.SetOutputImg(output);
    filter.SetDefaultColor(vfILColor(1.0, 0.0, 0.2, 0.6));
    filter.SetROI(regions.roi);
    filter.SetOutputOffset(regions.outputOffset);
    const bool mono = mask == nullptr || mask->Format().channels == 1;
    filter.SetMask(regions.maskBox, mask.get(),
                   mono ? PXImageChannel_MONO : static_cast<PXImageChannel>(1 << regions.maskChannel));
    filter.SetProcessingMode(regions.mode);
    filter.SetEdgeMode(edgeMode);
    filter.SetEdgeColor(vfILColor(0.2, 1.0, 0.0, 0.8));
}

Snapshot FilterScene::Expected(const Snapshot& filtered) const
{
    GuardedImage results(format.id, input.Width(), input.Height());
    for (long i = 0; i < input.Width() * input.Height(); ++i)
        results.Set(i % input.Width(), i / input.Width(), filtered.pixels[static_cast<std::size_t>(i)]);
    return ModelRun(regions, input, results, *output, [this](const Pixel& p, const Pixel& q, int sample) {
        const bool mixes = isFixed && sample >= 0;
        Pixel mixed = q;
        for (std::size_t c = 0; c < 4 && mixes; ++c) {
            const int sum = (q[c] - p[c]) * sample + 128;
            mixed[c] = p[c] + ((sum + (sum >> 8)) >> 8);
        }
        return SelectAndMix(format.Full(), format.channels, regions.mode, p, mixed, mixes ? -1 : sample);
    });
}

Snapshot FilterScene::Expected(long radiusX, long radiusY, const WindowRule& rule) const
{
    const EdgedPicture picture = Picture();
    return Expected(Filtered(picture, [&](long x, long y) {
        Pixel pixel{};
        for (std::size_t c = 0; c < static_cast<std::size_t>(format.channels); ++c)
            pixel[c] = rule([&](long dx, long dy) { return picture(x - radiusX + dx, y - radiusY + dy)[c]; });
        return pixel;
    }));
}

void FilterScene::Check(vfILMonadicSpatialProc& filter, const Snapshot& expected)
{
    SCOPED_TRACE(ClassOf(filter));
    ASSERT_EQ(filter.Verify(), VFIL_SUCCESS) << std::hex << filter.GetLastError().GetErrorCode();
    input.asked = output->asked = {};
    ASSERT_EQ(filter.Execute(), VFIL_SUCCESS);
    ASSERT_EQ(Difference(expected, *output), "");
    // Asking may cost a host a lock: a run asks once, but for those that run others inside.
    if (dynamic_cast<vfILMorphologicalChain*>(&filter) != nullptr) return;
    ASSERT_EQ(input.asked, (GuardedImage::Asked{1, 1, 1, 1, 1}));
    ASSERT_EQ(output->asked, input.asked);
}

unsigned long CodeOf(vfILMonadicSpatialProc& filter)
{
    return filter.Verify() == VFIL_SUCCESS ? 0 : filter.GetLastError().GetErrorCode();
}

unsigned long CodeOf(vfILMonadicSpatialProc& filter, GuardedImage& image)
{
    filter.SetInputImg(&image);
    filter.SetOutputImg(&image);
    return CodeOf(filter);
}

} // namespace vfil::test
