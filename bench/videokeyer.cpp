/// \file
/// Our keyers of 4:2:2 video: a plate over another picture.
#include "frames.h"

#include <vfil/videokeyer.h>

namespace bench {

namespace {

template <class Keyer>
void AddKeyer(const std::string& operation, void (*setUp)(Keyer&))
{
    Add(operation, kOurs, [setUp](const Frame& frame) {
        Keyer keyer;
        vfil::host::Picture& back = frame.In(PXFormat_YCC422_601);
        keyer.SetInputImgA(frame.videoPlate.Get());
        keyer.SetInputImgB(&back);
        keyer.SetDominantInput(&back);
        keyer.SetOutputImg(&frame.Out(PXFormat_YCC422_601));
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
    AddKeyer<vfILYUVKeyer>(kVideoDifferenceSpill, [](vfILYUVKeyer& keyer) {
        SetDifference(keyer);
        keyer.SetApplySpillCorrectionFlag(1);
    });
    AddKeyer<vfILYUVKeyer>(kVideoDifferenceMatte, [](vfILYUVKeyer& keyer) {
        SetDifference(keyer);
        keyer.SetOutputMatteFlag(1);
    });
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
