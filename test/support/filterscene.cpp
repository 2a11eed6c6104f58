#include "support/filterscene.h"

#include <gtest/gtest.h>

#include <cmath>

namespace vfil::test {

namespace {

const FormatCase& RandomFormat(std::mt19937& random)
{
    static constexpr const GUID* kFour[] = {&PXFormat_RGBA32, &PXFormat_RGBA64, &PXFormat_Mono8,
                                            &PXFormat_Mono16};
    return FormatOf(*kFour[random() % 4]);
}

} // namespace

FilterScene::FilterScene(std::mt19937& random, long width, long height, int keys)
    : format(RandomFormat(random)), input(format.id, width, height),
      separateOutput(format.id, width + static_cast<long>(random() % 3), height + 1),
      output(random() % 4 ? &separateOutput : &input),
      edgeMode(static_cast<vfILEdgeMode>(RandomIn(random, 1, 4))), before(input)
{
    for (Pixel& pixel : before.pixels)
        for (std::size_t c = 0; c < static_cast<std::size_t>(format.channels); ++c)
            pixel[c] = static_cast<int>(random() % static_cast<unsigned>(keys)) * (format.Full() / keys);
    for (long y = 0; y < height; ++y)
        for (long x = 0; x < width; ++x)
            input.Set(x, y, before.At(x, y));
    separateOutput.Randomise(random);
    const int part = format.Full() / 5;
    edgePixel = format.channels == 1 ? Pixel{part} : Pixel{part, part * 5, 0, part * 4};
    regions.roi = vfILBbox2l(RandomIn(random, -2, 3), RandomIn(random, -1, 2),
                             RandomIn(random, 1, output->Width()), RandomIn(random, 1, output->Height()));
    if (random() % 2) regions.roi = vfILBbox2l(0, 0, input.Width(), input.Height());
    regions.outputOffset =
        vfILVector2l(static_cast<long>(random() % 2) * (output->Width() - regions.roi.GetSizeX()),
                     output->Height() - regions.roi.GetSizeY());
    regions.mode = random() % 2 ? VFIL_MODE_RGBA : random() % 16;
    if (random() % 4 == 0) regions.mode |= (random() % 4) * VFIL_MODE_ODD_ROWS;
    if (random() % 4 == 0) {
        regions.maskBox = vfILBbox2l(1, 0, RandomIn(random, 1, 12), RandomIn(random, 1, 12));
        mask = std::make_unique<GuardedImage>(format.sampleBytes == 1 ? PXFormat_Mono8 : PXFormat_Mono16,
                                              regions.maskBox.GetSizeX(), regions.maskBox.GetSizeY());
        mask->Randomise(random);
        regions.mask = mask.get();
    }
}

void FilterScene::Check(vfILMonadicSpatialProc& processor, const Snapshot& filtered)
{
    GuardedImage results(format.id, input.Width(), input.Height());
    for (long y = 0; y < input.Height(); ++y)
        for (long x = 0; x < input.Width(); ++x)
            results.Set(x, y, filtered.At(x, y));
    const Snapshot expected =
        ModelRun(regions, input, results, *output, [this](const Pixel& p, const Pixel& q, int sample) {
            return SelectAndMix(format.Full(), format.channels, regions.mode, p, q, sample);
        });
    processor.SetInputImg(&input);
    processor.SetOutputImg(output);
    processor.SetROI(regions.roi);
    processor.SetOutputOffset(regions.outputOffset);
    processor.SetMask(regions.maskBox, mask.get(), PXImageChannel_MONO);
    processor.SetProcessingMode(regions.mode);
    processor.SetEdgeMode(edgeMode);
    processor.SetEdgeColor(vfILColor(0.2, 1.0, 0.0, 0.8));
    ASSERT_EQ(processor.Verify(), VFIL_SUCCESS) << std::hex << processor.GetLastError().GetErrorCode();
    ASSERT_EQ(processor.Execute(), VFIL_SUCCESS);
    ASSERT_EQ(Difference(expected, *output), "");
}

} // namespace vfil::test
