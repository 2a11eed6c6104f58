/// \file
/// The root of all operators.

#include "il/loops/frame/fills.h"

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
    FillBox(image, box, pixel, {m_processingMode, m_simdAvailable != 0});
}

void vfILProcessor::FillRegionWithImage(IPXImage* target, const vfILBbox2l& box, IPXImage* sourceImage,
                                        const void* sourcePixels, int premultiply, const vfILVector2l& offset)
{
    ImageView source(sourceImage);
    source.pixels = static_cast<unsigned char*>(const_cast<void*>(sourcePixels)); // is only read
    FillBox(target, box, source, premultiply != 0, offset, {m_processingMode, m_simdAvailable != 0});
}
