/// \file
/// The frames that all operators stand on: the processor root, the frame with an output picture, the frames
/// of one and of two inputs, and the pixel frames of both.
///
/// A host constructs a processor, calls setters, connects pictures, may call Verify, and calls Execute.
/// Setters only store; Verify checks and Execute does not call it. A processor may be executed any number of
/// times, by one thread at a time. Coordinates: x to the right, y upward from the first memory row of a
/// format that is not top-down.
#pragma once

#include <vfil/color.h>
#include <vfil/error.h>
#include <vfil/export.h>
#include <vfil/geometry.h>
#include <vfil/image.h>
#include <vfil/pxformat.h>

#include <cstddef>
#include <cstdint>
#include <memory>

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

/// The frame of every operator with an output picture: output, region of interest, mask, default colour,
/// Execute.
///
/// The region of interest (ROI) is read from the input; its first pixel lands at the output offset. What of
/// this target has no source takes the default colour. A mask bounds the operation to its box and, where the
/// operator samples it, mixes the result with the input.
class VFIL_API vfILImgProc : public vfILProcessor {
public:
    vfILImgProc();
    vfILImgProc(const vfILImgProc& other);
    vfILImgProc& operator=(const vfILImgProc& other) = default;
    ~vfILImgProc() override;
    /// Runs PrepareData, ProcessData unless the interrupt fires, and always CleanData.
    vfILStatus Execute() override;
    /// Fails with 0x10002 (no output), 0x10003 (output without pixels), 0x10004 (default colour outside 0 ..
    /// 1), 0x10005 .. 0x10009 (mask: no pixels, size, format, channel, sample size), 0x1000A (the target
    /// hangs over the output), 0x10060 and 0x20001 (a top-down format takes only the whole picture and no
    /// mask), 0x20002 (a YCC format takes all colour channels).
    vfILStatus Verify() override;

protected:
    virtual vfILStatus PrepareData() = 0;
    virtual vfILStatus ProcessData() = 0;
    virtual vfILStatus CleanData() = 0;

public:
    /// \param image Not owned; must outlive the run. As long as SetROI was never called, it gives the ROI its
    /// size.
    void SetOutputImg(IPXImage* image);
    IPXImage* GetOutputImg() const;
    /// \param roi The region in input coordinates; default the output's size at (0, 0).
    void SetROI(const vfILBbox2l& roi);
    const vfILBbox2l& GetROI() const;
    /// \param offset Where the region's first pixel lands in the output; default (0, 0).
    void SetOutputOffset(const vfILVector2l& offset);
    const vfILVector2l& GetOutputOffset() const;
    /// \param color Default (0, 0, 0, 0).
    void SetDefaultColor(const vfILColor& color);
    const vfILColor& GetDefaultColor() const;
    /// \param box     Where the mask lies, in input coordinates; default everywhere.
    /// \param mask    Its size is the box's. Not owned. Null leaves only the box.
    /// \param channel The channel that is read: PXImageChannel_MONO for a mono mask.
    void SetMask(const vfILBbox2l& box, IPXImage* mask, PXImageChannel channel);
    void SetMask(long x, long y, unsigned long width, unsigned long height, IPXImage* mask,
                 PXImageChannel channel);
    /// Writes to each pointer that is not null. Returns the mask's box.
    const vfILBbox2l& GetMask(IPXImage** mask, PXImageChannel* channel) const;
    /// Fills the target (the ROI's size at the output offset) with a colour, at once. Fails with 0x1000A when
    /// it hangs over the output.
    vfILStatus FillOutputImage(const vfILColor& color);

protected:
    // The four fills of the output: all of `whole` but `excluded`, which may be a null box. Field bits are
    // respected; with both set nothing is written.
    void FillOutput(const vfILBbox2l& excluded, const vfILBbox2l& whole, const vfILColor& color);
    /// \param pixel As in FillRegion.
    void FillOutput(const vfILBbox2l& excluded, const vfILBbox2l& whole, void* const pixel);
    /// \param source First pixel of a block of rows that covers \p whole, lowest y first. Null does nothing.
    /// \param stride Bytes between rows of the block.
    void FillOutput(const vfILBbox2l& excluded, const vfILBbox2l& whole, void* const source,
                    unsigned long stride);
    void FillOutput(const vfILBbox2l& excluded, const vfILBbox2l& whole, IPXImage* const sourceImage,
                    const void* pixels, int premultiply, const vfILVector2l& offset);

    // Channel arithmetic. F is a front, B a back channel, A the front's alpha, C the back's alpha, M a blend
    // amount. An 8-bit product is a * b / 255 rounded to nearest, and sums of two clip. A 16-bit result is
    // one sum of products, wrapped to 32 bits, divided by 65535, rounded to nearest and limited to 65535.

    /// F by M, B by the rest.
    static unsigned char BlendChannel8(unsigned char F, unsigned char B, unsigned char M);
    static unsigned short BlendChannel16(unsigned short F, unsigned short B, unsigned short M);
    /// F + (1 - A) B, clipped. At 16 bits F enters the sum unscaled, as a 65535th.
    static unsigned char FrontOverBack8(unsigned char F, unsigned char B, unsigned char A);
    static unsigned short FrontOverBack16(unsigned short F, unsigned short B, unsigned short A);
    /// F + (255 - A) B / 255 of signed channels with an 8-bit alpha, wrapped to 16 bits.
    static short FrontOverBack16(short F, short B, unsigned char A);
    static unsigned char FrontInBack8(unsigned char F, unsigned char C);
    static unsigned short FrontInBack16(unsigned short F, unsigned short C);
    static unsigned char FrontOutBack8(unsigned char F, unsigned char C);
    static unsigned short FrontOutBack16(unsigned short F, unsigned short C);
    static unsigned char FrontAtopBack8(unsigned char F, unsigned char B, unsigned char A, unsigned char C);
    static unsigned short FrontAtopBack16(unsigned short F, unsigned short B, unsigned short A,
                                          unsigned short C);
    static unsigned char FrontXorBack8(unsigned char F, unsigned char B, unsigned char A, unsigned char C);
    static unsigned short FrontXorBack16(unsigned short F, unsigned short B, unsigned short A,
                                         unsigned short C);
    static unsigned char MultChannel(unsigned char a, unsigned char b);
    static unsigned short MultChannel(unsigned short a, unsigned short b);
    static unsigned char AddChannel(unsigned char a, unsigned char b);
    static unsigned short AddChannel(unsigned short a, unsigned short b);
    /// a + b - a b. At 16 bits b enters unscaled.
    static unsigned char AddNoClipChannel(unsigned char a, unsigned char b);
    static unsigned short AddNoClipChannel(unsigned short a, unsigned short b);
    /// The distance. At 16 bits its low byte only.
    static unsigned char DiffChannel(unsigned char a, unsigned char b);
    static unsigned short DiffChannel(unsigned short a, unsigned short b);
    /// The inverse of compositing: a front (oR, oG, oB) and alpha oA that over the back (br, bg, bb, ba) give
    /// the composite (r, g, b, a).
    static void Uncomposite8(unsigned char r, unsigned char g, unsigned char b, unsigned char a,
                             unsigned char br, unsigned char bg, unsigned char bb, unsigned char ba,
                             unsigned char& oR, unsigned char& oG, unsigned char& oB, unsigned char& oA);
    static void Uncomposite16(unsigned short r, unsigned short g, unsigned short b, unsigned short a,
                              unsigned short br, unsigned short bg, unsigned short bb, unsigned short ba,
                              unsigned short& oR, unsigned short& oG, unsigned short& oB, unsigned short& oA);

    /// The output's format; all zero without an output.
    GUID OutputFormat() const;
    IPXImage* GetMaskImg() const;

    /// 1 when the first processed row has an even y. Set by PrepareData.
    int m_firstRowEven;

private:
    void Init();
    vfILStatus VerifyMask();
    vfILStatus VerifyTopDown(const vfILBbox2l& wholeOutput);

    IPXImage* m_outputImg;
    vfILColor m_defaultColor;
    IPXImage* m_maskImg;
    vfILBbox2l m_maskBox;
    PXImageChannel m_maskChannel;
    vfILBbox2l m_roi;
    vfILVector2l m_outputOffset;
    int m_roiSet;
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};

/// Where the rows of one picture lie in a run.
struct vfILRowWalk {
    unsigned char* first = nullptr; ///< first byte of the first treated row
    std::ptrdiff_t step = 0;        ///< bytes from a treated row to the next
    unsigned char* plane = nullptr; ///< the same for the alpha plane of a 4:2:2 format, null without one
    std::ptrdiff_t planeStep = 0;
};

/// Memory of one run, owned by its processor. A copy is empty.
class VFIL_API vfILRunBuffer {
public:
    vfILRunBuffer() = default;
    vfILRunBuffer(const vfILRunBuffer&) {}
    vfILRunBuffer& operator=(const vfILRunBuffer&) { return *this; }
    /// Null when memory is short.
    unsigned char* Allocate(std::size_t bytes);
    void Free() { m_bytes.reset(); }

private:
    std::unique_ptr<unsigned char[]> m_bytes;
};

/// What both pixel frames know of a run, from PrepareData to CleanData.
struct vfILPixelRun {
    vfILBbox2l validBox;        ///< the part of the ROI that has a source, in input coordinates
    vfILBbox2l maskedBox;       ///< the part of it that gets the operation
    vfILBbox2l targetBox;       ///< the ROI's size at the output offset
    vfILBbox2l shiftedValidBox; ///< validBox in output coordinates
    vfILBbox2l processBox;      ///< maskedBox in output coordinates
    long rows = 0;              ///< treated rows of processBox, after field selection
    bool streaming = false;     ///< the result is large and in no input's place: it may go around the cache
    vfILRowWalk output;
    vfILRowWalk mask;                ///< null without a mask picture
    long maskPixelStep = 0;          ///< bytes between mask samples
    unsigned char* source = nullptr; ///< pixels of validBox outside the mask, null when nothing of it remains
    unsigned long sourceStride = 0;
};

/// The frame of one input.
class VFIL_API vfILMonadicImgProc : public vfILImgProc {
public:
    vfILMonadicImgProc();
    vfILMonadicImgProc(const vfILMonadicImgProc& other);
    vfILMonadicImgProc& operator=(const vfILMonadicImgProc& other) = default;
    ~vfILMonadicImgProc() override;
    /// Adds 0x1000B (no input), 0x1000C (input without pixels), 0x1006C (the output is the mask, other than
    /// an input masked by a channel of its own that is not processed), 0x10062 (sizes differ in a top-down
    /// format).
    vfILStatus Verify() override;

    /// \param image Not owned; must outlive the run.
    void SetInputImg(IPXImage* image);
    IPXImage* GetInputImg() const;

private:
    void Init();

    IPXImage* m_inputImg;
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};

/// The frame of one output pixel for one input pixel. A leaf that overrides only Operation8 and Operation16
/// is a whole operator on RGBA and mono pictures: mask, channel selection, fields and interruption are the
/// frame's.
class VFIL_API vfILMonadicPixelProc : public vfILMonadicImgProc {
public:
    vfILMonadicPixelProc() = default;
    vfILMonadicPixelProc(const vfILMonadicPixelProc& other) = default;
    vfILMonadicPixelProc& operator=(const vfILMonadicPixelProc& other) = default;
    ~vfILMonadicPixelProc() override;
    /// Adds 0x1000E (input and output formats differ).
    vfILStatus Verify() override;

protected:
    vfILStatus PrepareData() override;
    vfILStatus ProcessData() override;
    vfILStatus CleanData() override;
    /// Treats the process box. The base applies Operation8 or Operation16 to every sample of an RGBA or mono
    /// picture.
    virtual vfILStatus DoEffect();
    /// Moves the row walks onto the rows that the mode's field bits select.
    virtual vfILStatus AdjustJumps();
    /// One 8-bit sample for one. The base returns its argument.
    virtual unsigned char Operation8(unsigned char value);
    /// One 16-bit sample for one. The base returns its argument.
    virtual unsigned short Operation16(unsigned short value);

    /// The state of the run.
    const vfILPixelRun& Run() const { return m_run; }
    const vfILRowWalk& InputWalk() const { return m_input; }

private:
    vfILPixelRun m_run;
    vfILRowWalk m_input;
    vfILRunBuffer m_buffer;
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};

/// The frame of two inputs. A lies at (0, 0) of the working plane, B at the input offset. Where they do not
/// overlap the dominant input shows.
class VFIL_API vfILDyadicImgProc : public vfILImgProc {
public:
    vfILDyadicImgProc();
    vfILDyadicImgProc(const vfILDyadicImgProc& other);
    vfILDyadicImgProc& operator=(const vfILDyadicImgProc& other) = default;
    ~vfILDyadicImgProc() override;
    /// Adds 0x10013 .. 0x10016 (A or B missing or without pixels), 0x10017 (the dominant input is neither),
    /// 0x1006C (the output is the mask), 0x10062 and 0x10061 (a top-down format takes equal sizes and no
    /// input offset).
    vfILStatus Verify() override;

    /// \param image Not owned; must outlive the run. A later input of the same kind replaces it.
    void SetInputImgA(IPXImage* image);
    IPXImage* GetInputImgA() const;
    void SetInputImgB(IPXImage* image);
    IPXImage* GetInputImgB() const;
    /// \param image A or B, by the pointer. A picture that is both counts as A.
    void SetDominantInput(IPXImage* image);
    IPXImage* GetDominantInput() const;
    /// \param offset The position of B relative to A; default (0, 0).
    void SetInputOffset(const vfILVector2l& offset);
    const vfILVector2l& GetInputOffset() const;

private:
    void Init();
    vfILStatus VerifyOwnMask();
    vfILStatus VerifyTopDownInputs();

    IPXImage* m_inputImgA;
    IPXImage* m_inputImgB;
    IPXImage* m_dominantInput;
    vfILVector2l m_inputOffset;
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};

/// What an operator of two layers knows of its run: A is the back, B the front.
struct vfILLayerRun {
    const vfILPixelRun& run;
    const vfILRowWalk& back;
    const vfILRowWalk& front;
    bool dominantFront; ///< B is dominant
    bool fast;          ///< the fast forms of the row loops may be used
};

/// The frame of one output pixel for two input pixels.
class VFIL_API vfILDyadicPixelProc : public vfILDyadicImgProc {
public:
    vfILDyadicPixelProc() = default;
    vfILDyadicPixelProc(const vfILDyadicPixelProc& other) = default;
    vfILDyadicPixelProc& operator=(const vfILDyadicPixelProc& other) = default;
    ~vfILDyadicPixelProc() override;
    /// Adds 0x1000E (an input's format differs from the output's).
    vfILStatus Verify() override;

protected:
    vfILStatus PrepareData() override;
    vfILStatus ProcessData() override;
    vfILStatus CleanData() override;
    /// Moves the row walks onto the rows that the mode's field bits select.
    virtual vfILStatus AdjustJumps();
    /// Treats the process box. The base applies Operation8 or Operation16 to the samples of RGBA or mono
    /// pictures; unselected channels and a mask of 0 take A.
    virtual vfILStatus DoEffect();
    /// The base returns \p a.
    virtual unsigned char Operation8(unsigned char a, unsigned char b);
    virtual unsigned short Operation16(unsigned short a, unsigned short b);

    /// The state of the run.
    const vfILPixelRun& Run() const { return m_run; }
    vfILLayerRun Layers() const;

private:
    bool IsDominantB() const;

    vfILPixelRun m_run;
    vfILRowWalk m_inputA;
    vfILRowWalk m_inputB;
    vfILRunBuffer m_bufferA;
    vfILRunBuffer m_bufferB;
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};
