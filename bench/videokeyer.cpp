/// \file
/// Our keyers that put a plate over another picture: of 4:2:2 video, and one of RGBA.
#include "frames.h"

#include <vfil/videokeyer.h>

namespace bench {

namespace {

template <class Keyer>
void AddKeyer(const std::string& operation, void (*setUp)(Keyer&), const GUID& format = PXFormat_YCC422_601)
{
    Add(operation, kOurs, [=](const Frame& frame) {
        Keyer keyer;
        vfil::host::Picture& back = frame.In(format);
        keyer.SetInputImgA(format == PXFormat_RGBA32 ? frame.plate.Get() : frame.videoPlate.Get());
        keyer.SetInputImgB(&back);
        keyer.SetDominantInput(&back);
        keyer.SetOutputImg(&frame.Out(format));
        setUp(keyer);
        Execute(keyer);
    });
}

void SetHue(vfILChromaKeyerYUV& keyer)
{
    keyer.SetKeyColor({0.16, 0.65, 0.29, 1});
    keyer.SetKeyAngleTolerance(100);
    keyer.SetKeyLiftAndGain(0, 1);
    keyer.SetSpillAngleTolerance(140);
    keyer.SetSpillLiftAndGain(0, 1);
}

void SetDifference(vfILYUVKeyer& keyer)
{
    keyer.SetKeyColor({0.16, 0.65, 0.29, 1});
    keyer.SetCoefficients(3, 1, 0.25);
    keyer.SetClipValues(0.1, 0.9);
    keyer.SetApplySpillCorrectionFlag(0);
}

void SetDifferenceSpill(vfILYUVKeyer& keyer)
{
    SetDifference(keyer);
    keyer.SetApplySpillCorrectionFlag(1);
}

void SetDifferenceMatte(vfILYUVKeyer& keyer)
{
    SetDifference(keyer);
    keyer.SetOutputMatteFlag(1);
}

void AddVideoKeyers()
{
    AddKeyer<vfILChromaKeyerYUV>(kVideoHue, SetHue);
    AddKeyer<vfILChromaKeyerYUV>(kVideoHueSpill, [](vfILChromaKeyerYUV& keyer) {
        SetHue(keyer);
        keyer.SetApplySpill(1);
    });
    AddKeyer<vfILChromaKeyerYUV>(kVideoHueMatte, [](vfILChromaKeyerYUV& keyer) {
        SetHue(keyer);
        keyer.SetOutputMatte(1);
    });
    AddKeyer<vfILYUVKeyer>(kVideoDifference, SetDifference);
    AddKeyer<vfILYUVKeyer>(kVideoDifferenceSpill, SetDifferenceSpill);
    AddKeyer<vfILYUVKeyer>(kVideoDifferenceMatte, SetDifferenceMatte);
    AddKeyer<vfILYUVKeyer>(kRgbDifference, SetDifference, PXFormat_RGBA32);
    AddKeyer<vfILYUVKeyer>(kRgbDifferenceSpill, SetDifferenceSpill, PXFormat_RGBA32);
    AddKeyer<vfILYUVKeyer>(kRgbDifferenceMatte, SetDifferenceMatte, PXFormat_RGBA32);
    AddKeyer<vfIL2InputLumaKeyer>(kVideoLuma, [](vfIL2InputLumaKeyer& keyer) {
        keyer.SetLumaClip(0.3);
        keyer.SetLumaGain(0.7);
        keyer.SetGain(1.2);
        keyer.SetBrightness(-0.1);
    });
}

const Source s_source(AddVideoKeyers);

} // namespace
} // namespace bench
