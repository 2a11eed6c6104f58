/// \file
/// Processors run, their codes turned into lines, and conversions.
#include "engine/execute.h"
#include "engine/failure.h"
#include "engine/interrupt.h"
#include "host/pixelrows.h"

#include <vfil/error.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <string>

namespace vfil::engine {

using catalogue::FindRole;
using catalogue::Parameter;
using catalogue::ParameterRole;

namespace {

constexpr unsigned long kMemoryIsShort = 0x10001;

// Where to look when the library refuses with a code that no parameter has.
Message SettingsOfCode(unsigned long code)
{
    switch (code) {
    case 0x10004:
        return Named("default-color");
    case 0x10005:
    case 0x10006:
    case 0x10007:
    case 0x10008:
    case 0x10009:
    case 0x10059:
    case 0x1006C:
    case 0x20001:
        return Named("mask");
    case 0x1000A:
    case 0x10060:
        return Named("roi") + ", " + Named("output-offset") + " and " + Named("output-size");
    case 0x1000D:
    case 0x1000E:
        return Named("format") + " and " + Named("in-format");
    case 0x10062:
        return Named("roi") + ", " + Named("output-size") + " and the sizes of the pictures";
    case 0x20002:
        return Named("channels");
    default:
        return {};
    }
}

// More memory was asked for than there is, by the radius of a window.
const Parameter* TooLargeRadius(const catalogue::Entry& entry, unsigned long code)
{
    return code == kMemoryIsShort ? FindRole(entry, ParameterRole::Radius) : nullptr;
}

// What a code refuses, among the parameters.
const Parameter* RefusedParameter(const catalogue::Entry& entry, unsigned long code)
{
    if (const Parameter* radius = TooLargeRadius(entry, code)) return radius;
    if (code == 0x10017) return FindRole(entry, ParameterRole::DominantInput);
    if (code == 0x10061) return FindRole(entry, ParameterRole::InputOffset);
    const auto refused = std::find_if(entry.parameters.begin(), entry.parameters.end(),
                                      [code](const Parameter& p) { return p.refusal == code; });
    return refused == entry.parameters.end() ? nullptr : &*refused;
}

// The parameters that are refused together with a code, whose own ranges were looked at before.
Message JointSettings(const catalogue::Entry& entry, unsigned long code)
{
    Message names;
    for (const catalogue::JointRefusal& joint : entry.joint) {
        if (joint.code != code) continue;
        for (const char* name : joint.parameters)
            names += (names.IsEmpty() ? Message("") : Message(", ")) + Named(name);
    }
    return names;
}

// The library's text on one line, with the class for its %s, and where to look.
Fault FaultOf(const catalogue::Entry& entry, const vfILProcessor& processor)
{
    const unsigned long code = processor.GetLastError().GetErrorCode();
    char message[256];
    vfILFormatError(processor, message, sizeof message, entry.className);
    std::string line = message;
    char number[16];
    std::snprintf(number, sizeof number, " (0x%lX)", code);
    line += number;
    const Message joint = JointSettings(entry, code);
    if (!joint.IsEmpty()) return {.text = line + "; see " + joint};
    if (const Parameter* refused = RefusedParameter(entry, code))
        return {.parameter = refused->name, .text = line + "; see " + Named(refused->name)};
    const Message settings = SettingsOfCode(code);
    return {.text = settings.IsEmpty() ? Message(line) : line + "; see " + settings};
}

void Apply(const catalogue::Entry& entry, ParameterRole role, const std::optional<bool>& value,
           catalogue::Operator& op)
{
    const Parameter* const parameter = value ? FindRole(entry, role) : nullptr;
    if (parameter) parameter->apply(op.Processor(), {*value ? 1.0 : 0.0});
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

void Execute(const catalogue::Entry& entry, vfILProcessor& processor, volatile long* interrupt)
{
    processor.SetInterruptFct(nullptr, interrupt);
    if (processor.Verify() != VFIL_SUCCESS) throw RequestError(FaultOf(entry, processor));
    if (processor.Execute() != VFIL_SUCCESS) {
        const unsigned long code = processor.GetLastError().GetErrorCode();
        if (TooLargeRadius(entry, code)) throw RequestError(FaultOf(entry, processor));
        throw RunError(FaultOf(entry, processor));
    }
    // An interrupted run is a success to the library, with part of the output written.
    StopIfInterrupted(interrupt);
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
    : m_options(settings.conversions), m_interrupt(settings.interrupt)
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
        Apply(*hop.hop.entry, ParameterRole::ChromaFilter, m_options.filter, *hop.op);
        Apply(*hop.hop.entry, ParameterRole::Dither, m_options.dither, *hop.op);
        Execute(*hop.hop.entry, hop.op->Processor(), m_interrupt);
        if (hop.hop.turnsOver) TurnOver(*made);
        present = made;
    }
    return present;
}

} // namespace vfil::engine
