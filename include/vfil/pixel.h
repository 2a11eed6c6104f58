/// \file
/// Operators of one input that make one pixel of one pixel.
#pragma once

#include <vfil/frame.h>

/// The complement of every selected channel: 255 - c, or 65535 - c at 16 bits. RGBA and mono, 8 and 16 bits.
class VFIL_API vfILInvertImg : public vfILMonadicPixelProc {
public:
    /// Adds 0x1000D (a format that is neither RGBA nor mono).
    vfILStatus Verify() override;

protected:
    vfILStatus DoEffect() override;

private:
    static unsigned char InvertChannel8(unsigned char c);
    static unsigned short InvertChannel16(unsigned short c);
    vfILStatus Process8();
    vfILStatus Process16();

    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};

/// Copies whole pixels of any format. Channel selection and mask samples have no effect; the mask's box has.
class VFIL_API vfILCopyImg : public vfILMonadicPixelProc {
protected:
    vfILStatus PrepareData() override;
    vfILStatus DoEffect() override;

private:
    std::size_t m_rowBytes = 0;
    std::size_t m_planeRowBytes = 0;
};

/// Grey from colour: (29 R + 57 G + 11 B) / 97, truncated, in all three colour channels. Alpha is copied.
/// RGBA, 8 and 16 bits.
class VFIL_API vfILGrayscaleImg : public vfILMonadicPixelProc {
public:
    /// Adds 0x1000D (a format that is not RGBA), 0x20002 (not all of red, green and blue are selected).
    vfILStatus Verify() override;

protected:
    vfILStatus DoEffect() override;

private:
    vfILStatus Grayscale8();
    vfILStatus Grayscale16();

    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};

/// Copies \p bytes bytes between ranges that do not overlap, with the widest stores that the machine has.
VFIL_API void vfILSIMDMemCopy(const void* source, void* destination, unsigned long bytes);
