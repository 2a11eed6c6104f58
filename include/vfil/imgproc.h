/// \file
/// The frame of every operator with an output picture.
#pragma once

#include <vfil/color.h>
#include <vfil/processor.h>
#include <vfil/pxformat.h>

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
    vfILGuid OutputFormat() const;
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
