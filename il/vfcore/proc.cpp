/// \file
/// The root of all operators.

#include "il/loops/frame/imageview.h"
#include "il/loops/frame/regions.h"
#include "il/loops/frame/rowcopy.h"

#include "il/rows/pixarith.h"

#include <vfil/frame.h>

#if defined(VFIL_TRACE)
#include <cstdio>
#endif

using namespace vfil;

vfILProcessor::vfILProcessor()
{
    Init();
}

vfILProcessor::vfILProcessor(const vfILProcessor&) : vfILProcessor()
{}

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment): nothing is assigned
vfILProcessor& vfILProcessor::operator=(const vfILProcessor&)
{
    return *this;
}

vfILProcessor::~vfILProcessor() = default;

void vfILProcessor::Init()
{
    m_processingMode = VFIL_MODE_RGB;
    m_interruptFct = AlwaysFalse;
    m_interruptFlag = nullptr;
    m_simdAvailable = 1;
}

vfILStatus vfILProcessor::Verify()
{
    return VFIL_SUCCESS;
}

void vfILProcessor::SetProcessingMode(unsigned long mode)
{
    m_processingMode = static_cast<std::uint32_t>(mode);
}

unsigned long vfILProcessor::GetProcessingMode() const
{
    return m_processingMode;
}

void vfILProcessor::SetLastError(const vfILError& error)
{
    m_lastError = error;
    m_errorText = nullptr;
    m_errorClass = nullptr;
}

const vfILError& vfILProcessor::GetLastError() const
{
    return m_lastError;
}

const char* vfILProcessor::GetLastErrorText() const
{
    return m_errorText != nullptr ? m_errorText : vfILErrorText(m_lastError.GetErrorCode());
}

const wchar_t* vfILProcessor::GetLastErrorClass() const
{
    return m_errorClass;
}

void vfILProcessor::SetInterruptFct(InterruptFct function, volatile long* flag)
{
    m_interruptFct = function != nullptr ? function : AlwaysFalse;
    m_interruptFlag = flag;
}

void vfILProcessor::SetInterruptCallback(InterruptCallback callback, void* user)
{
    m_interruptCallback = callback;
    m_interruptUser = user;
}

int vfILProcessor::MustInterrupt() const
{
    if (m_interruptFlag != nullptr && *m_interruptFlag != 0) return 1;
    if (m_interruptFct() != 0) return 1;
    return m_interruptCallback != nullptr && m_interruptCallback(m_interruptUser) != 0 ? 1 : 0;
}

int vfILProcessor::AlwaysFalse()
{
    return 0;
}

int vfILProcessor::IsRedChannelProcessed() const
{
    return (m_processingMode & VFIL_MODE_RED) != 0;
}

int vfILProcessor::IsGreenChannelProcessed() const
{
    return (m_processingMode & VFIL_MODE_GREEN) != 0;
}

int vfILProcessor::IsBlueChannelProcessed() const
{
    return (m_processingMode & VFIL_MODE_BLUE) != 0;
}

int vfILProcessor::IsAlphaChannelProcessed() const
{
    return (m_processingMode & VFIL_MODE_ALPHA) != 0;
}

int vfILProcessor::IsOnlyRGBChannelProcessed() const
{
    return (m_processingMode & VFIL_MODE_RGBA) == VFIL_MODE_RGB;
}

int vfILProcessor::IsOnlyAlphaChannelProcessed() const
{
    return (m_processingMode & VFIL_MODE_RGBA) == VFIL_MODE_ALPHA;
}

int vfILProcessor::IsAllChannelProcessed() const
{
    return (m_processingMode & VFIL_MODE_RGBA) == VFIL_MODE_RGBA;
}

int vfILProcessor::IsNoneChannelProcessed() const
{
    return (m_processingMode & VFIL_MODE_RGBA) == 0;
}

vfILStatus vfILProcessor::Fail(unsigned long code, const wchar_t* className)
{
    return Fail(code, nullptr, className);
}

vfILStatus vfILProcessor::Fail(unsigned long code, const char* text, const wchar_t* className)
{
    SetLastError(vfILError(code));
    m_errorText = text;
    m_errorClass = className;
#if defined(VFIL_TRACE)
    char message[256];
    vfILFormatError(*this, message, sizeof message);
    std::fprintf(stderr, "%s\n", message);
#endif
    return VFIL_FAILURE;
}

void vfILProcessor::FillRegion(IPXImage* image, const vfILBbox2l& box, void* const pixel)
{
    const ImageView view(image);
    if (!view.HasPixels() || pixel == nullptr || box.IsNull() || !Covers(view.Box(), box)) return;

    const auto* value = static_cast<const unsigned char*>(pixel);
    const long x = box.GetOffsetX();
    const auto width = static_cast<std::size_t>(box.GetSizeX());
    const std::size_t group = view.format->subsampled ? 4 : static_cast<std::size_t>(view.RowPixelBytes());
    unsigned char turned[4]; // a 4:2:2 group that starts with its second pixel
    if (view.format->subsampled && (x & 1) != 0) {
        const unsigned char secondFirst[4] = {value[2], value[3], value[0], value[1]};
        value = static_cast<const unsigned char*>(std::memcpy(turned, secondFirst, sizeof turned));
    }
    const RowSelection rows = SelectField(m_processingMode, box.GetOffsetY(), box.GetSizeY());
    for (long i = 0; i < rows.count; ++i) {
        const long row = view.MemoryRow(box.GetOffsetY() + rows.skip + i * rows.step);
        FillRow(view.Pixel(x, row), width * static_cast<std::size_t>(view.RowPixelBytes()), value, group);
        if (view.format->alphaPlane) {
            std::memset(view.PlanePixel(x, row), static_cast<const unsigned char*>(pixel)[4], width);
        }
    }
}

namespace {

void PremultiplyRow(const unsigned char* in, unsigned char* out, std::size_t pixels)
{
    for (std::size_t i = 0; i < pixels; ++i, in += 4, out += 4) {
        const unsigned char alpha = in[3];
        for (int c = 0; c < 3; ++c)
            out[c] = Arith<std::uint8_t>::Mult(in[c], alpha);
        out[3] = alpha;
    }
}

} // namespace

void vfILProcessor::FillRegionWithImage(IPXImage* target, const vfILBbox2l& box, IPXImage* sourceImage,
                                        const void* sourcePixels, int premultiply, const vfILVector2l& offset)
{
    const ImageView to(target);
    ImageView from(sourceImage);
    from.pixels = static_cast<unsigned char*>(const_cast<void*>(sourcePixels)); // only read below
    if (!to.HasPixels() || !from.HasPixels() || from.RowPixelBytes() != to.RowPixelBytes()) return;
    if (box.IsNull() || !Covers(to.Box(), box) || !Covers(Moved(from.Box(), offset[0], offset[1]), box))
        return;

    const bool multiply = premultiply != 0 && from.format->channels == 4 && from.pixelBytes == 4;
    const bool plane = to.format->alphaPlane && from.format->alphaPlane;
    const long x = box.GetOffsetX();
    const auto width = static_cast<std::size_t>(box.GetSizeX());
    const std::size_t bytes = width * static_cast<std::size_t>(to.RowPixelBytes());
    const RowSelection rows = SelectField(m_processingMode, box.GetOffsetY(), box.GetSizeY());
    for (long i = 0; i < rows.count; ++i) {
        const long y = box.GetOffsetY() + rows.skip + i * rows.step;
        const vfILRowWalk in = from.Walk(x - offset[0], from.MemoryRow(y - offset[1]));
        const vfILRowWalk out = to.Walk(x, to.MemoryRow(y));
        if (multiply) {
            PremultiplyRow(in.first, out.first, width);
        } else {
            MoveRow(m_simdAvailable != 0, in.first, out.first, bytes);
        }
        if (plane) MoveRow(m_simdAvailable != 0, in.plane, out.plane, width);
    }
}
