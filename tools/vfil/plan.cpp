/// \file
/// The checks that need the pictures' headers.
#include "tools/vfil/plan.h"
#include "catalogue/names.h"
#include "tools/vfil/failure.h"
#include "tools/vfil/report.h"
#include "tools/vfil/text.h"

#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>

namespace vfil::tool {

using catalogue::Entry;
using catalogue::FormatName;

namespace {

const vfILFormatInfo& InfoOf(const GUID& format)
{
    return *vfILFindFormat(format);
}

bool IsMono(const GUID& format)
{
    return InfoOf(format).model == PXColorModel_MONO;
}

bool IsFileFormat(const GUID& format)
{
    return format == PXFormat_RGBA32 || format == PXFormat_RGBA64 || format == PXFormat_Mono8 ||
           format == PXFormat_Mono16;
}

bool Takes(const Entry& entry, const GUID& format)
{
    return std::find(entry.formats.begin(), entry.formats.end(), format) != entry.formats.end();
}

// A remedy for a format that will not do, when conversion at reading is one.
std::string FormatRemedy(const Entry& entry, const GUID& present, const GUID& wanted)
{
    if (!IsFileFormat(present) || !Takes(entry, wanted)) return "";
    return "; add --format " + FormatName(wanted);
}

std::string Extension(const std::string& path)
{
    return UpperCase(std::filesystem::path(path).extension().string());
}

// Deep colour has no place in these: known before the run, unlike clear pixels.
bool HoldsBytesOnly(const std::string& path)
{
    return Extension(path) == ".JPG" || Extension(path) == ".JPEG";
}

void CheckFolder(const std::string& output)
{
    const std::filesystem::path path(output);
    const std::string folder = path.has_parent_path() ? path.parent_path().string() : ".";
    std::error_code ignored;
    if (std::filesystem::is_directory(path, ignored)) {
        throw RequestError(output + " is a folder; -o takes the name of a picture file");
    }
    host::CheckWritable(path);
    if (access(folder.c_str(), W_OK) != 0)
        throw RequestError(output + ": the folder " + folder + " is read-only");
}

void CheckOutput(const Request& request)
{
    CheckFolder(request.output);
    std::vector<std::string> read = request.inputs;
    if (request.mask) read.push_back(request.mask->path);
    for (const std::string& path : read) {
        if (!host::SamePath(path, request.output)) continue;
        throw RequestError(request.output + " is read and written; -o takes another file");
    }
}

GUID FormatAsRead(const Request& request, const std::string& path, const host::PictureInfo& info)
{
    if (!request.format) return info.format;
    if (IsMono(*request.format) && !IsMono(info.format)) {
        throw RequestError(path + " is " + FormatName(info.format) + ", which --format " +
                           FormatName(*request.format) +
                           " does not make grey; take --format rgba32 or rgba64");
    }
    return *request.format;
}

// Of two formats the one that holds both without loss: colour before grey, 16 bits before 8.
GUID CommonFormat(const GUID& a, const GUID& b)
{
    const bool deep = InfoOf(a).sampleBytes == 2 || InfoOf(b).sampleBytes == 2;
    if (IsMono(a) && IsMono(b)) return deep ? PXFormat_Mono16 : PXFormat_Mono8;
    return deep ? PXFormat_RGBA64 : PXFormat_RGBA32;
}

GUID CommonInputFormat(const Request& request, const std::vector<host::PictureInfo>& infos)
{
    const GUID first = FormatAsRead(request, request.inputs[0], infos[0]);
    for (std::size_t i = 1; i < infos.size(); ++i) {
        const GUID other = FormatAsRead(request, request.inputs[i], infos[i]);
        if (other == first) continue;
        throw RequestError(
            request.inputs[0] + " is " + FormatName(first) + " and " + request.inputs[i] + " is " +
            FormatName(other) + ", and they have to be the same" +
            FormatRemedy(*request.entry, IsFileFormat(first) ? other : first, CommonFormat(first, other)));
    }
    return first;
}

void CheckFormat(const Request& request, const GUID& format)
{
    const Entry& entry = *request.entry;
    if (!Takes(entry, format)) {
        const GUID colour = InfoOf(format).sampleBytes == 2 ? PXFormat_RGBA64 : PXFormat_RGBA32;
        throw RequestError(request.inputs[0] + " is " + FormatName(format) + ", and " + entry.name +
                           " takes " + FormatNames(entry) + FormatRemedy(entry, format, colour));
    }
    if (!IsFileFormat(format) && !IsRaw(request.output)) {
        throw RequestError(request.output + " cannot hold " + FormatName(format) + "; only a .raw file can");
    }
    if (InfoOf(format).sampleBytes == 2 && HoldsBytesOnly(request.output)) {
        throw RequestError(request.output + " cannot hold the 16 bits of " + FormatName(format) +
                           "; write .png or .tif, or add --format " + (IsMono(format) ? "mono8" : "rgba32"));
    }
}

void PlanDominant(Plan& plan)
{
    vfILVector2l offset;
    for (const auto& [parameter, value] : plan.request.parameters) {
        if (parameter->name == "dominant-input") plan.dominant = value.x == 0 ? 0 : 1;
        if (parameter->name == "input-offset") {
            offset = vfILVector2l(static_cast<long>(value.x), static_cast<long>(value.y));
        }
    }
    const host::PictureInfo& info = plan.inputs[plan.dominant];
    plan.dominantBox = vfILBbox2l(0, 0, info.width, info.height);
    if (plan.dominant != 0) plan.dominantBox.SetOffset(offset);
}

void PlanRoi(Plan& plan)
{
    const Request& request = plan.request;
    const vfILVector2l size = plan.dominantBox.GetSize();
    if (!request.roi) {
        // What of the picture does not fit an output of a given size is left out.
        const vfILVector2l room = request.outputSize ? *request.outputSize - plan.outputOffset : size;
        plan.roi = vfILBbox2l(0, 0, std::min(size[0], room[0]), std::min(size[1], room[1]));
        return;
    }
    plan.roi = *request.roi;
    if (!(plan.roi & plan.dominantBox).IsNull()) return;
    throw RequestError(
        "--roi " +
        NumberList({plan.roi.GetOffsetX(), plan.roi.GetOffsetY(), plan.roi.GetSizeX(), plan.roi.GetSizeY()}) +
        " lies outside " + request.inputs[plan.dominant] + ", which is " + SizeText(size[0], size[1]));
}

void PlanRegions(Plan& plan)
{
    const Request& request = plan.request;
    plan.outputOffset = request.outputOffset.value_or(vfILVector2l());
    if (plan.outputOffset[0] < 0 || plan.outputOffset[1] < 0) {
        throw RequestError("--output-offset " + NumberList({plan.outputOffset[0], plan.outputOffset[1]}) +
                           " is out of range: X and Y are at least 0");
    }
    PlanRoi(plan);
    plan.outputSize = request.outputSize.value_or(plan.roi.GetSize() + plan.outputOffset);
    const vfILVector2l end = plan.roi.GetSize() + plan.outputOffset;
    if (plan.roi.IsNull() || end[0] > plan.outputSize[0] || end[1] > plan.outputSize[1]) {
        throw RequestError("the region does not fit the output of " +
                           SizeText(plan.outputSize[0], plan.outputSize[1]) +
                           "; see --roi, --output-offset and --output-size");
    }
    const auto pixels =
        static_cast<std::uint64_t>(plan.outputSize[0]) * static_cast<std::uint64_t>(plan.outputSize[1]);
    const auto pixelBytes = static_cast<std::uint64_t>(InfoOf(plan.format).pixelBytes);
    const long side = std::max(plan.outputSize[0], plan.outputSize[1]);
    if (side > host::kMaxFileSide || pixels > host::kMaxFileBytes / pixelBytes) {
        throw RequestError("an output of " + SizeText(plan.outputSize[0], plan.outputSize[1]) +
                           " is too large; see --roi, --output-offset and --output-size");
    }
}

PXImageChannel MaskChannel(const MaskRequest& mask, const host::PictureInfo& info)
{
    const bool mono = IsMono(info.format);
    const bool alpha = info.alpha != host::AlphaState::None;
    if (!mask.channel) return mono ? PXImageChannel_MONO : alpha ? PXImageChannel_ALPHA : PXImageChannel_RED;
    if (mono == (*mask.channel == PXImageChannel_MONO)) return *mask.channel;
    throw RequestError("--mask " + mask.path + " is a " + (mono ? "grey" : "colour") +
                       " picture: its channel is " + (mono ? "mono" : "red, green, blue or alpha"));
}

void PlanMask(Plan& plan)
{
    if (!plan.request.mask) return;
    const MaskRequest& mask = *plan.request.mask;
    if (IsRaw(mask.path)) throw RequestError("--mask " + mask.path + ": a mask is no .raw picture");
    const host::PictureInfo info = host::InspectPicture(mask.path);
    MaskPlan planned;
    planned.channel = MaskChannel(mask, info);
    const bool deep = InfoOf(plan.format).sampleBytes == 2;
    const GUID colour = deep ? PXFormat_RGBA64 : PXFormat_RGBA32;
    const GUID grey = deep ? PXFormat_Mono16 : PXFormat_Mono8;
    planned.format = IsMono(info.format) ? grey : colour;
    planned.box = vfILBbox2l(mask.offset[0], mask.offset[1], info.width, info.height);
    if ((planned.box & plan.roi).IsNull()) {
        throw RequestError("--mask " + mask.path + ", at " + NumberList({mask.offset[0], mask.offset[1]}) +
                           " and of " + SizeText(info.width, info.height) +
                           ", does not touch the region; see --mask-offset");
    }
    plan.mask = planned;
}

} // namespace

host::ReadOptions ReadingOf(const Request& request, const std::string& path)
{
    if (IsRaw(path)) return request.rawOptions;
    host::ReadOptions options;
    options.format = request.format;
    return options;
}

Plan MakePlan(Request request)
{
    Plan plan;
    plan.request = std::move(request);
    for (const std::string& path : plan.request.inputs) {
        plan.inputs.push_back(host::InspectPicture(path, ReadingOf(plan.request, path)));
    }
    CheckOutput(plan.request);
    plan.format = CommonInputFormat(plan.request, plan.inputs);
    CheckFormat(plan.request, plan.format);
    PlanDominant(plan);
    PlanRegions(plan);
    PlanMask(plan);
    return plan;
}

} // namespace vfil::tool
