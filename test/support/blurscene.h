/// \file
/// A run of a filter on a random picture, region, edge mode, selection and mask, beside the frame's model.
#pragma once

#include "support/spatialmodel.h"

#include <gtest/gtest.h>

namespace vfil::test {

struct BlurScene {
    BlurScene(std::mt19937& random, const GUID& format, long width, long height)
        : input(format, width, height), output(format, width, height), mask(format)
    {
        input.Randomise(random);
        output.Randomise(random);
        run.edgeMode = static_cast<vfILEdgeMode>(RandomIn(random, 1, 4));
        run.regions.mode = random() % 2 ? VFIL_MODE_RGBA : random() % 16;
        if (random() % 3 == 0) run.regions.mode |= VFIL_MODE_ODD_ROWS << random() % 2;
        const long dx = RandomIn(random, 0, width / 3), dy = RandomIn(random, 0, height / 3);
        run.regions.roi = vfILBbox2l(dx, dy, width - dx, height - dy);
        run.regions.outputOffset = vfILVector2l(random() % 2 ? dx : 0, dy / 2);
    }
    /// Its first channel.
    void Mask(std::mt19937& random)
    {
        mask.SetDimensions(input.Width(), input.Height());
        mask.Randomise(random);
        run.regions.mask = &mask;
        run.regions.maskBox = vfILBbox2l(0, 0, input.Width(), input.Height());
    }
    /// The radii may have fractions.
    void Arrange(vfILMonadicSpatialProc& filter, float rx, float ry)
    {
        run.radiusX = static_cast<long>(rx);
        run.radiusY = static_cast<long>(ry);
        filter.SetInputImg(&input);
        filter.SetOutputImg(&output);
        filter.SetROI(run.regions.roi);
        filter.SetOutputOffset(run.regions.outputOffset);
        filter.SetProcessingMode(run.regions.mode);
        filter.SetEdgeMode(run.edgeMode);
        filter.SetRadius(rx, ry);
        if (run.regions.mask != nullptr)
            filter.SetMask(run.regions.maskBox, &mask,
                           mask.Format().channels == 1 ? PXImageChannel_MONO : PXImageChannel_RED);
    }
    void Check(vfILMonadicSpatialProc& filter, const WindowRule& rule)
    {
        Check(filter, ModelSpatialRun(run, input, output, rule));
    }
    void Check(vfILMonadicSpatialProc& filter, const Snapshot& expected)
    {
        ASSERT_EQ(filter.Verify(), VFIL_SUCCESS) << std::hex << filter.GetLastError().GetErrorCode();
        ASSERT_EQ(filter.Execute(), VFIL_SUCCESS);
        ASSERT_EQ(Difference(expected, output), "");
    }

    GuardedImage input, output, mask;
    SpatialCase run;
};

} // namespace vfil::test
