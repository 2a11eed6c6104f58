/// \file
/// Our keys of one picture by tables, and what corrects the colour beside a key.
#include "frames.h"

#include <vfil/tablekeyer.h>

#include <array>

namespace bench {

namespace {

/// A table that is 255 but between two numbers.
std::array<unsigned char, 256> Notch(int from, int to)
{
    std::array<unsigned char, 256> table{};
    for (int i = 0; i < 256; ++i)
        table[static_cast<std::size_t>(i)] = i < from || i > to ? 255 : 0;
    return table;
}

template <class Keyer>
void AddOneInput(const std::string& operation, void (*setUp)(Keyer&))
{
    Add(operation, kOurs, [setUp](const Frame& frame) {
        Keyer keyer;
        keyer.SetInputImg(frame.plate.Get());
        keyer.SetOutputImg(frame.out.Get());
        setUp(keyer);
        Execute(keyer);
    });
}

void AddTableKeyers()
{
    static auto hues = Notch(70, 115);
    static auto ends = Notch(20, 250);
    static auto luminances = Notch(0, 99);
    AddOneInput<vfILChromaKeyImg>("key by tables of hue, lightness, saturation", [](vfILChromaKeyImg& key) {
        key.SetHueMapLUT(hues.data());
        key.SetLightnessMapLUT(ends.data());
        key.SetSaturationMapLUT(ends.data());
    });
    AddOneInput<vfILLumKeyImg>("key by a table of luminance",
                               [](vfILLumKeyImg& key) { key.SetLuminanceMapLUT(luminances.data()); });
    AddOneInput<vfILFGSurpress>("limit green by red", [](vfILFGSurpress&) {});
    Add("replace chroma by alpha", kOurs, [](const Frame& frame) {
        vfILChromaReplace replace;
        replace.SetInputImgA(frame.front.Get());
        replace.SetInputImgB(frame.back.Get());
        replace.SetDominantInput(frame.back.Get());
        replace.SetOutputImg(frame.out.Get());
        replace.SetKeyColor({0, 1, 0, 1});
        Execute(replace);
    });
}

const Source s_source(AddTableKeyers);

} // namespace
} // namespace bench
