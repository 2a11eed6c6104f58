/// \file
/// Processors run, their codes turned into lines, and conversions.
#include "tools/vfil/execute.h"
#include "host/pixelrows.h"
#include "tools/vfil/failure.h"
#include "tools/vfil/interrupt.h"

#include <vfil/error.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <string>

namespace vfil::tool {

namespace {

constexpr unsigned long kMemoryIsShort = 0x10001;

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
    case 0x10017:
        return "--dominant-input";
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

// More memory was asked for than there is, by the radius of a window.
bool IsRadiusTooLarge(const catalogue::Entry& entry, unsigned long code)
{
    const auto isRadius = [](const catalogue::Parameter& parameter) { return parameter.name == "radius"; };
    return code == kMemoryIsShort && std::any_of(entry.parameters.begin(), entry.parameters.end(), isRadius);
}

// The library's text on one line, with the class for its %s, and where to look.
std::string ErrorLine(const catalogue::Entry& entry, const vfILProcessor& processor)
{
    const unsigned long code = processor.GetLastError().GetErrorCode();
    char message[256];
    vfILFormatError(processor, message, sizeof message, entry.className);
    std::string line = message;
    char number[16];
    std::snprintf(number, sizeof number, " (0x%lX)", code);
    line += number;
    if (IsRadiusTooLarge(entry, code)) return line + "; see --radius";
    for (const catalogue::Parameter& parameter : entry.parameters)
        if (parameter.refusal == code) return line + "; see --" + parameter.name;
    if (const char* options = OptionsOfCode(code)) line += std::string("; see ") + options;
    return line;
}

void Apply(const catalogue::Entry& entry, const char* name, const std::optional<bool>& value,
           catalogue::Operator& op)
{
    if (!value) return;
    for (const catalogue::Parameter& parameter : entry.parameters) {
        if (parameter.name == name) parameter.apply(op.Processor(), {*value ? 1.0 : 0.0});
    }
}

// The picture with its top row at the bottom.
void TurnOver(host::Picture& picture)
{
    for (long low = 0, high = picture.Height() - 1; low < high; ++low, --high) {
        std::uint8_t* row = picture.Row(low);
        std::swap_ranges(row, row + picture.RowBytes(), picture.Row(high));
    }
}

} // namespace

void Execute(const catalogue::Entry& entry, vfILProcessor& processor)
{
    processor.SetInterruptFct(nullptr, InterruptFlag());
    if (processor.Verify() != VFIL_SUCCESS) {
        throw RequestError(ErrorLine(entry, processor));
    }
    if (processor.Execute() != VFIL_SUCCESS) {
        const unsigned long code = processor.GetLastError().GetErrorCode();
        if (IsRadiusTooLarge(entry, code)) throw RequestError(ErrorLine(entry, processor));
        throw RunError(ErrorLine(entry, processor));
    }
    // An interrupted run is a success to the library, with part of the output written.
    StopIfInterrupted();
}

const host::PicturePtr& Buffer::Get(const GUID& format, long width, long height)
{
    if (!m_picture || m_picture->Format() != format || m_picture->Width() != width ||
        m_picture->Height() != height) {
        m_picture = host::Picture::Create(format, width, height);
    }
    return m_picture;
}

Converter::Converter(const Conversion& conversion, const RunSettings& settings)
    : m_options(settings.conversions)
{
    for (const ConversionHop& hop : conversion)
        m_hops.push_back({hop, hop.entry ? hop.entry->make(!settings.plain) : nullptr, {}});
}

host::PicturePtr Converter::Convert(const host::PicturePtr& picture)
{
    host::PicturePtr present = picture;
    for (Hop& hop : m_hops) {
        if (!hop.op) {
            present = host::ConvertPicture(present, hop.hop.to);
            continue;
        }
        const host::PicturePtr& made = hop.buffer.Get(hop.hop.to, present->Width(), present->Height());
        made->SetPremultiplied(present->Premultiplied());
        hop.op->SetInput(0, present.Get());
        hop.op->SetOutput(0, made.Get());
        hop.op->Processor().SetProcessingMode(VFIL_MODE_RGBA);
        Apply(*hop.hop.entry, "do-filtering", m_options.filter, *hop.op);
        Apply(*hop.hop.entry, "do-dithering", m_options.dither, *hop.op);
        Execute(*hop.hop.entry, hop.op->Processor());
        if (hop.hop.turnsOver) TurnOver(*made);
        present = made;
    }
    return present;
}

} // namespace vfil::tool
