/// \file
/// Our keyers of RGBA pictures: a plate is looked at, and another picture gets the matte.
#include "frames.h"

#include <vfil/keyer.h>

namespace bench {

namespace {

template <class Keyer>
void AddKeyer(const std::string& operation, void (*setUp)(Keyer&))
{
    Add(operation, kOurs, [setUp](const Frame& frame) {
        Keyer keyer;
        keyer.SetInputImgA(frame.plate.Get());
        keyer.SetInputImgB(frame.back.Get());
        keyer.SetDominantInput(frame.back.Get());
        keyer.SetOutputImg(frame.out.Get());
        keyer.SetProcessingMode(VFIL_MODE_RGBA);
        setUp(keyer);
        Execute(keyer);
    });
}

void AddKeyers()
{
    AddKeyer<vfILChromaKeyer>(kKeyHue, [](vfILChromaKeyer& keyer) {
        keyer.SetKeyColor({0.16, 0.65, 0.29, 1});
        keyer.SetAngleTolerance(120);
        keyer.SetLiftAndGain(0, 1);
    });
    AddKeyer<vfILBlueGreenKeyer>(kKeyDifference, [](vfILBlueGreenKeyer& keyer) {
        keyer.SetKeyColor({0, 1, 0, 1});
        keyer.SetC0(4);
        keyer.SetC1(1);
        keyer.SetC2(0.25);
    });
    AddKeyer<vfILLinearKeyer>(kKeyRamp, [](vfILLinearKeyer& keyer) {
        keyer.SetKeyColor({0, 1, 0, 1});
        keyer.SetSoftness(0.25);
    });
    AddKeyer<vfILLumaKeyer>(kKeyLuma, [](vfILLumaKeyer& keyer) {
        keyer.SetGain(1.2);
        keyer.SetBrightness(-0.1);
    });
}

const Source s_source(AddKeyers);

} // namespace
} // namespace bench
