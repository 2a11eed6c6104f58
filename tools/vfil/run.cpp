/// \file
/// The run: read, connect, check, execute, write, report.
#include "tools/vfil/run.h"
#include "host/picturefactory.h"
#include "tools/vfil/failure.h"
#include "tools/vfil/interrupt.h"
#include "tools/vfil/report.h"

#include <vfil/error.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <iostream>
#include <utility>
#include <vector>

namespace vfil::tool {

namespace {

using Json = nlohmann::ordered_json;

// Milliseconds of the stages of a run, in their order.
class Stopwatch {
public:
    void Lap(const char* stage)
    {
        const auto now = Clock::now();
        m_stages.emplace_back(stage, std::chrono::duration<double, std::milli>(now - m_start).count());
        m_start = now;
    }

    Json Stages() const
    {
        Json record;
        for (const auto& [stage, milliseconds] : m_stages)
            record[stage] = milliseconds;
        return record;
    }

private:
    using Clock = std::chrono::steady_clock;

    Clock::time_point m_start = Clock::now();
    std::vector<std::pair<const char*, double>> m_stages;
};

struct Pictures {
    std::vector<host::PicturePtr> inputs;
    host::PicturePtr mask;
    host::PicturePtr output;
};

const char* OptionsOfCode(unsigned long code)
{
    switch (code) {
    case 0x10004:
        return "--default-color";
    case 0x10005:
    case 0x10006:
    case 0x10007:
    case 0x10008:
    case 0x10009:
    case 0x10059:
    case 0x1006C:
    case 0x20001:
        return "--mask";
    case 0x1000A:
    case 0x10060:
        return "--roi, --output-offset and --output-size";
    case 0x1000D:
    case 0x1000E:
        return "--format and --in-format";
    case 0x10012:
        return "--extra-transparency or --alpha";
    case 0x10017:
        return "--dominant-input";
    case 0x1005A:
        return "--alpha-mode";
    case 0x10061:
        return "--input-offset";
    case 0x10062:
        return "--roi, --output-size and the sizes of the pictures";
    case 0x20002:
        return "--channels";
    default:
        return nullptr;
    }
}

// The library's text on one line, with the class for its %s, and where to look.
std::string ErrorLine(const catalogue::Entry& entry, unsigned long code)
{
    const char* text = vfILErrorText(code);
    std::string line = text ? text : "%s ERROR";
    if (const std::size_t hole = line.find("%s"); hole != std::string::npos)
        line.replace(hole, 2, entry.className);
    while (!line.empty() && (line.back() == '\n' || line.back() == ' '))
        line.pop_back();
    char number[16];
    std::snprintf(number, sizeof number, " (0x%lX)", code);
    line += number;
    if (const char* options = OptionsOfCode(code)) line += std::string("; see ") + options;
    return line;
}

void Execute(const catalogue::Entry& entry, vfILImgProc& processor)
{
    if (processor.Verify() != VFIL_SUCCESS) {
        throw RequestError(ErrorLine(entry, processor.GetLastError().GetErrorCode()));
    }
    if (processor.Execute() != VFIL_SUCCESS) {
        throw RunError(ErrorLine(entry, processor.GetLastError().GetErrorCode()));
    }
    // An interrupted run is a success to the library, with part of the output written.
    StopIfInterrupted();
}

// What an opaque back keeps of a front is the front, its colour multiplied by its alpha.
void Multiply(host::Picture& picture, bool simd)
{
    const host::PicturePtr back = host::Picture::Create(picture.Format(), picture.Width(), picture.Height());
    std::fill_n(back->Pixels(), back->Bytes(), std::uint8_t{255});
    const catalogue::Entry& entry = *catalogue::Find("in");
    const std::unique_ptr<catalogue::Operator> in = entry.make(simd);
    in->SetInput(0, back.Get());
    in->SetInput(1, &picture);
    in->SetOutput(&picture);
    in->Frame().SetProcessingMode(VFIL_MODE_RGBA);
    Execute(entry, in->Frame());
}

// Operators whose result is multiplied let the dominant picture through where the two do not overlap:
// straight colour would stand beside multiplied colour there. Who states a premultiplication gets the class's
// own behaviour.
bool WorksMultiplied(const Plan& plan)
{
    const auto& parameters = plan.request.parameters;
    const bool stated = std::any_of(parameters.begin(), parameters.end(), [](const auto& given) {
        return given.first->name.find("premultipl") != std::string::npos;
    });
    const bool rgba = plan.format == PXFormat_RGBA32 || plan.format == PXFormat_RGBA64;
    return plan.request.entry->multiplied && rgba && !stated;
}

void MultiplyStraightInputs(const Plan& plan, const Pictures& pictures)
{
    for (const host::PicturePtr& input : pictures.inputs) {
        if (!input->Premultiplied()) Multiply(*input, !plan.request.plain);
    }
}

// What output pixels without a source take.
vfILColor FillColor(const Plan& plan)
{
    const vfILColor& color = plan.request.defaultColor;
    const double alpha = color.GetAlpha();
    if (!WorksMultiplied(plan)) return color;
    return {color.GetRed() * alpha, color.GetGreen() * alpha, color.GetBlue() * alpha, alpha};
}

Pictures ReadPictures(const Plan& plan)
{
    Pictures pictures;
    for (const std::string& path : plan.request.inputs) {
        pictures.inputs.push_back(host::ReadPicture(path, ReadingOf(plan.request, path)));
        StopIfInterrupted();
    }
    if (plan.mask) {
        host::ReadOptions options;
        options.format = plan.mask->format;
        pictures.mask = host::ReadPicture(plan.request.mask->path, options);
    }
    pictures.output = host::Picture::Create(plan.format, plan.outputSize[0], plan.outputSize[1]);
    return pictures;
}

void Connect(const Plan& plan, const Pictures& pictures, catalogue::Operator& op)
{
    const Request& request = plan.request;
    for (std::size_t i = 0; i < pictures.inputs.size(); ++i)
        op.SetInput(i, pictures.inputs[i].Get());
    // Operators that know better say so after the run.
    pictures.output->SetPremultiplied(pictures.inputs[0]->Premultiplied());
    op.SetOutput(pictures.output.Get());
    vfILImgProc& processor = op.Frame();
    // The whole output takes the default colour, also what lies outside the target: the region is the
    // output's still.
    processor.SetDefaultColor(FillColor(plan));
    processor.FillOutputImage(FillColor(plan));

    processor.SetROI(plan.roi);
    processor.SetOutputOffset(plan.outputOffset);
    processor.SetProcessingMode(request.mode);
    processor.SetInterruptFct(nullptr, InterruptFlag());
    if (plan.mask) processor.SetMask(plan.mask->box, pictures.mask.Get(), plan.mask->channel);
    for (const auto& [parameter, value] : request.parameters)
        parameter->apply(processor, value);
}

// Rows of the other field show the dominant picture, as they do for a host that works in place.
void ShowOtherField(const Plan& plan, const Pictures& pictures)
{
    if ((plan.request.mode & (VFIL_MODE_ODD_ROWS | VFIL_MODE_EVEN_ROWS)) == 0) return;
    const catalogue::Entry& entry = *catalogue::Find("copy");
    const std::unique_ptr<catalogue::Operator> copy = entry.make(!plan.request.plain);
    copy->SetInput(0, pictures.inputs[plan.dominant].Get());
    copy->SetOutput(pictures.output.Get());
    vfILBbox2l region = plan.roi;
    region.SetOffset(region.GetOffset() - plan.dominantBox.GetOffset());
    copy->Frame().SetROI(region);
    copy->Frame().SetOutputOffset(plan.outputOffset);
    copy->Frame().SetDefaultColor(FillColor(plan));
    Execute(entry, copy->Frame());
}

void Write(const Plan& plan, const host::Picture& output)
{
    try {
        host::WritePicture(plan.request.output, output);
    } catch (const host::FileError& error) {
        throw RunError(error.what());
    }
}

host::PictureInfo InspectOutput(const Plan& plan)
{
    host::ReadOptions options;
    if (IsRaw(plan.request.output)) options = {plan.format, plan.outputSize[0], plan.outputSize[1]};
    return host::InspectPicture(plan.request.output, options);
}

Json ParametersRecord(const Request& request)
{
    Json record = Json::object();
    for (const auto& [parameter, value] : request.parameters) {
        record[parameter->name] = ValueRecord(*parameter, value);
    }
    return record;
}

Json BoxRecord(const vfILBbox2l& box)
{
    return {box.GetOffsetX(), box.GetOffsetY(), box.GetSizeX(), box.GetSizeY()};
}

void ReportRecord(const Plan& plan, const Stopwatch& watch)
{
    const Request& request = plan.request;
    Json inputs = Json::array();
    for (std::size_t i = 0; i < request.inputs.size(); ++i) {
        inputs.push_back(Record(request.inputs[i], plan.inputs[i]));
    }
    PrintRecord({{"operator", request.entry->name},
                 {"inputs", inputs},
                 {"output", Record(request.output, InspectOutput(plan))},
                 {"parameters", ParametersRecord(request)},
                 {"roi", BoxRecord(plan.roi)},
                 {"outputOffset", {plan.outputOffset[0], plan.outputOffset[1]}},
                 {"channels", ChannelLetters(request.mode)},
                 {"milliseconds", watch.Stages()}});
}

} // namespace

void RunOperator(const Plan& plan)
{
    const Request& request = plan.request;
    host::RegisterPictureClass();
    Stopwatch watch;
    const Pictures pictures = ReadPictures(plan);
    watch.Lap("read");
    if (WorksMultiplied(plan)) MultiplyStraightInputs(plan, pictures);
    const std::unique_ptr<catalogue::Operator> op = request.entry->make(!request.plain);
    Connect(plan, pictures, *op);
    ShowOtherField(plan, pictures);
    watch.Lap("prepare");
    Execute(*request.entry, op->Frame());
    watch.Lap("run");
    Write(plan, *pictures.output);
    watch.Lap("write");
    if (request.json) {
        ReportRecord(plan, watch);
    } else if (!request.quiet) {
        std::cout << request.output << ": " << Describe(InspectOutput(plan)) << '\n';
    }
}

} // namespace vfil::tool
