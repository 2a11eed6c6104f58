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
    /// As InterruptFct, with what it was set together with.
    using InterruptCallback = int (*)(void* user);

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
    /// Stores a code without a text of its own. vfILError() clears the stored one.
    void SetLastError(const vfILError& error);
    /// The last stored error. No Verify and no Execute clears it, also when it succeeds: the return value is
    /// what counts, and a host that asks without one clears the old code first.
    const vfILError& GetLastError() const;
    /// The text where the last error was stored, which may tell more than vfILErrorText of the code: a format
    /// string with one %s for the class name, as there. vfILFormatError makes a message of it. Null for a
    /// code that has none.
    const char* GetLastErrorText() const;
    /// The class in which the last error was stored, which may be a base of this one; null when the host
    /// stored it.
    const wchar_t* GetLastErrorClass() const;
    /// Sets what is polled between the stages and after each row.
    ///
    /// A volatile long may be stored from a signal handler of the thread that runs. A store from another
    /// thread is seen at the next poll on every machine where a long is stored by one instruction, which is
    /// where this library runs, though the language calls it a race (and so do tools that look for races):
    /// SetInterruptFlag takes an atomic flag, which is none. The three may be set side by side.
    ///
    /// \param function Stops the run when it returns non-zero. Null installs AlwaysFalse. It is called on the
    ///                 thread that runs, as are all that a run calls.
    /// \param flag     Stops the run when not null and its long is not 0; read first.
    void SetInterruptFct(InterruptFct function, volatile long* flag);
    /// Sets a function that is polled besides, after the others.
    ///
    /// \param callback Stops the run when it returns non-zero. Null, the default, takes it away.
    /// \param user     What it is called with. The caller keeps it alive.
    void SetInterruptCallback(InterruptCallback callback, void* user);
    /// Takes the place of the callback: stops the run while an atomic flag is not 0. Any thread may store it
    /// at any time.
    ///
    /// \param flag A std::atomic<long>, or of another type whose load() gives a number. Null takes it away.
    /// The
    ///             caller keeps it alive.
    template <class Flag>
    void SetInterruptFlag(Flag* flag)
    {
        const InterruptCallback load = [](void* user) {
            return static_cast<Flag*>(user)->load() != 0 ? 1 : 0;
        };
        SetInterruptCallback(flag != nullptr ? load : nullptr, flag);
    }
    /// 1 when the flag is set or a function returns non-zero, else 0.
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
    /// Stores \p code with the text that the table has for it, and returns VFIL_FAILURE. A build with
    /// VFIL_TRACE writes the message to standard error. What refuses stores a code in this way: a run that
    /// fails is never without one.
    vfILStatus Fail(unsigned long code, const wchar_t* className);
    /// The same with a text of the site's own.
    ///
    /// \param text      A format string with one %s for the class name. It and \p className must outlive the
    ///                  processor: literals do.
    vfILStatus Fail(unsigned long code, const char* text, const wchar_t* className);

    /// 1 when the fast arithmetic may be used, the default. Where an operator has two arithmetics by design
    /// it chooses between them, elsewhere both give the same bytes. The machine has no say: every arithmetic
    /// has a portable form, and the machine's features choose only among forms that give the same bytes.
    int m_simdAvailable = 1;

private:
    void Init();

    std::uint32_t m_processingMode;
    vfILError m_lastError;
    InterruptFct m_interruptFct;
    volatile long* m_interruptFlag;
    const char* m_errorText = nullptr; ///< of the site; null stands for the table's
    const wchar_t* m_errorClass = nullptr;
    InterruptCallback m_interruptCallback = nullptr;
    void* m_interruptUser = nullptr;
};
