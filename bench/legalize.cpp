/// \file
/// Our legalizer, on what it finds most to do in, something and nearly nothing: noise, bars at full colour
/// and a photograph.
#include "frames.h"

#include <vfil/treat.h>

namespace bench {

namespace {

struct Mode {
    const char* name;
    vfILLegalizeMode mode;
};

constexpr Mode kModes[] = {
    {"clip", VFIL_LEGALIZE_CLIP},
    {"gain", VFIL_LEGALIZE_ADJUST_GAIN},
    {"saturation", VFIL_LEGALIZE_ADJUST_SATURATION},
    {"luma and saturation", VFIL_LEGALIZE_ADJUST_LUMINANCE_SATURATION},
    {"show", VFIL_LEGALIZE_SHOW_ILLEGAL},
};

struct Picture {
    const char* name;
    vfil::host::Picture& (*of)(const Frame&);
};

constexpr Picture kPictures[] = {
    {", noise", [](const Frame& frame) -> vfil::host::Picture& { return frame.In(PXFormat_YCC422_601); }},
    {", bars", [](const Frame& frame) -> vfil::host::Picture& { return *frame.videoBars; }},
    {", photograph", [](const Frame& frame) -> vfil::host::Picture& { return *frame.videoPlate; }},
};

void AddLegalizer(const Mode& mode, const Picture& picture, bool strict)
{
    const std::string operation = kLegalize + std::string(mode.name) + (strict ? ", strict" : "");
    Add(operation + picture.name, kOurs, [=, of = picture.of](const Frame& frame) {
        vfILLegalizeImg legalize;
        legalize.SetInputImg(&of(frame));
        legalize.SetOutputImg(&frame.Out(PXFormat_YCC422_601));
        legalize.SetMode(mode.mode);
        legalize.SetStrictPairs(strict ? 1 : 0);
        Execute(legalize);
    });
}

void AddLegalizers()
{
    for (const Mode& mode : kModes)
        for (const Picture& picture : kPictures) {
            AddLegalizer(mode, picture, false);
            if (mode.mode != VFIL_LEGALIZE_SHOW_ILLEGAL) AddLegalizer(mode, picture, true);
        }
}

const Source s_source(AddLegalizers);

} // namespace
} // namespace bench
