/// \file
/// The root of all operators.
#pragma once

#include <vfil/error.h>
#include <vfil/export.h>
#include <vfil/geometry.h>
#include <vfil/image.h>

#include <cstdint>

/// Bits of the processing mode. The channel bits have the values of PXImageChannel.
enum vfILProcessingMode : unsigned long {
    VFIL_MODE_RED = 1,
    VFIL_MODE_GREEN = 2,
    VFIL_MODE_BLUE = 4,
    VFIL_MODE_RGB = 7,
    VFIL_MODE_ALPHA = 8,
    VFIL_MODE_RGBA = 0xF,
    VFIL_MODE_ODD_ROWS = 0x100,  ///< only rows with odd y are treated
    VFIL_MODE_EVEN_ROWS = 0x200, ///< only rows with even y are treated; with both bits nothing is written
};

/// The root of all operators: processing mode, interruption, last error, filling of regions.
class VFIL_API vfILProcessor {
public:
    using InterruptFct = int (*)();

    vfILProcessor();
    /// Starts from the defaults: neither mode nor interruption is copied.
    vfILProcessor(const vfILProcessor& other);
    /// Copies nothing.
    vfILProcessor& operator=(const vfILProcessor& other);
    // Virtual functions stand in slot order, here and in every class below: the order is part of the ABI.
    virtual ~vfILProcessor();
    /// Runs the operator. An interrupted run returns VFIL_SUCCESS with part of the output written.
    virtual vfILStatus Execute() = 0;
    /// Checks connections and parameters, from the root class down. On the first failure it stores the code
    /// (GetLastError) and returns VFIL_FAILURE.
    virtual vfILStatus Verify() = 0;

    /// \param mode Bits of vfILProcessingMode; default VFIL_MODE_RGB, which leaves alpha as the input has it.
    void SetProcessingMode(unsigned long mode);
    unsigned long GetProcessingMode() const;
    void SetLastError(const vfILError& error);
    /// The last stored error. No run and no Verify clears it: the return value is what counts.
    const vfILError& GetLastError() const;
    /// Sets what is polled between the stages and after each row.
    ///
    /// \param function Stops the run when it returns non-zero. Null installs AlwaysFalse.
    /// \param flag     Stops the run when not null and its long is not 0; read first. Another thread may set
    /// it.
    void SetInterruptFct(InterruptFct function, volatile long* flag);
    /// 1 when the flag is set or the function returns non-zero, else 0.
    int MustInterrupt() const;
    /// Returns 0: the interrupt function that never stops a run.
    static int AlwaysFalse();

    // Each returns non-zero for true. Field bits do not count.
    int IsRedChannelProcessed() const;
    int IsGreenChannelProcessed() const;
    int IsBlueChannelProcessed() const;
    int IsAlphaChannelProcessed() const;
    int IsOnlyRGBChannelProcessed() const;
    int IsOnlyAlphaChannelProcessed() const;
    int IsAllChannelProcessed() const;
    int IsNoneChannelProcessed() const;

protected:
    /// Fills a box of a picture with one pixel value, in the rows that the mode's field bits allow. Does
    /// nothing for a null picture, pixel or box, and for a box that is not inside the picture.
    ///
    /// \param pixel In the picture's own layout. For 4:2:2 the four bytes of a two-pixel group (a pixel takes
    /// the half
    ///              that its column's parity names), with an alpha plane followed by the alpha byte.
    void FillRegion(IPXImage* image, const vfILBbox2l& box, void* const pixel);
    /// Copies a block of pixels to a box of a picture, in the rows that the mode's field bits allow. Does
    /// nothing when both field bits are set, when the box is null or not inside the target, and when the
    /// source does not cover it.
    ///
    /// \param sourceImage  Tells the size and the layout of \p sourcePixels.
    /// \param premultiply  Non-zero multiplies the colour of 8-bit four-channel pixels by their alpha; other
    /// layouts are
    ///                     copied plainly.
    /// \param offset       The position of the source's origin in target coordinates.
    void FillRegionWithImage(IPXImage* target, const vfILBbox2l& box, IPXImage* sourceImage,
                             const void* sourcePixels, int premultiply, const vfILVector2l& offset);
    /// Stores \p code and returns VFIL_FAILURE. A build with VFIL_TRACE writes \p text, with \p className for
    /// its %s, to standard error.
    vfILStatus Fail(unsigned long code, const char* text, const wchar_t* className);

    /// 1 when the fast arithmetic may be used. Set at construction from the machine's features; where an
    /// operator has two arithmetics by design it chooses between them, elsewhere both give the same bytes.
    int m_simdAvailable = 0;

private:
    void Init();

    std::uint32_t m_processingMode;
    vfILError m_lastError;
    InterruptFct m_interruptFct;
    volatile long* m_interruptFlag;
};
