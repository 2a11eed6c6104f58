/// \file
/// The frame of the operators whose output pixel depends on a neighbourhood of input pixels.
#pragma once

#include <vfil/frame.h>

/// What a sample outside of the input picture is.
enum vfILEdgeMode : int {
    VFIL_EDGE_COLOR = 1,  ///< the edge colour
    VFIL_EDGE_WRAP = 2,   ///< the picture, repeated in both axes
    VFIL_EDGE_CLAMP = 3,  ///< the nearest pixel of the picture's edge
    VFIL_EDGE_MIRROR = 4, ///< the picture, reflected in both axes: of three pixels ... 1 0 0 1 2 2 1 0 0 ...
};

/// What a leaf of the spatial frame knows during DoEffect, in addition to what the pixel frames tell:
/// processBox is what this call computes, and the walks of output and mask start at its first row. Unlike
/// there the walks hold every row; rows that the mode's field bits select are `firstRow + i * rowStep` for i
/// in 0 .. rows - 1.
struct vfILWindowRun : vfILPixelRun {
    vfILPictureView inputPicture; ///< the input
    /// The padded input. Row j holds, side by side and overlapping, the top-left corners of the windows of
    /// effect row j; the window's further rows are the rows j + 1 ... of the walk. Never the output's memory.
    vfILRowWalk windows;
    vfILRowWalk centres;  ///< the centres of the same windows: the effect box as the input has it
    long kernelWidth = 1; ///< 2 * radiusX + 1
    long kernelHeight = 1;
    long radiusX = 0;
    long radiusY = 0;
    vfILBbox2l windowBox; ///< what the windows of the whole effect box cover, in input coordinates
    /// For a leaf that reads the input itself: the picture in whose coordinates windowBox is. It is the
    /// input, but where the output shares the input's memory a copy of it, or of the windows if they are
    /// inside.
    vfILRowWalk input;
    vfILVector2l inputSize;
    unsigned long channels = VFIL_MODE_RGBA; ///< the channels of RGBA that results go to, as in the mode
    long firstRow = 0; ///< the first treated row of processBox, counted from its first row
    long rowStep = 1;
    unsigned char* resultRow = nullptr; ///< room for one row of output pixels
    bool stopped = false; ///< to be set by a row loop that the interrupt ended: no further band is begun
};

/// The frame of the filters. It owns radius, edge modes, regions, the padded copy of the input, mask and
/// field rows; a leaf adds its checks to Verify and reads windows in DoEffect without a test for an edge.
///
/// Edge modes apply at the edges of the input picture: pixels outside of the region of interest, but inside
/// of the picture, are read as they are. The pixels of the region outside the mask's box are copied. Input
/// and output may be the same picture, also at a shift.
class VFIL_API vfILMonadicSpatialProc : public vfILMonadicImgProc {
public:
    vfILMonadicSpatialProc();
    vfILMonadicSpatialProc(const vfILMonadicSpatialProc& other) = default;
    vfILMonadicSpatialProc& operator=(const vfILMonadicSpatialProc& other) = default;
    ~vfILMonadicSpatialProc() override;
    /// Adds 0x1000E (input and output formats differ), 0x10023 (radius), 0x10020 (edge mode), 0x10048 (edge
    /// colour, when the edge mode is VFIL_EDGE_COLOR).
    vfILStatus Verify() override;

protected:
    /// For the Verify of a leaf: that of this class, then 0x1000D (a format that is neither RGBA nor mono).
    vfILStatus VerifyFrame(const wchar_t* className);
    /// Fails with 0x10001, before anything is written, when the padded copy is too large for the memory, and
    /// with 0x1000C when the input refuses ReadRegion.
    vfILStatus PrepareData() override;
    vfILStatus ProcessData() override;
    vfILStatus CleanData() override;
    /// For the PrepareData of a leaf whose windows have other radii than SetRadius says: PrepareData is this
    /// with WholeRadius(). Negative radii fail with 0x10023.
    vfILStatus PrepareWindows(const vfILVector2l& radius);
    /// For the same PrepareData: the input, which the frame does not ask again in this run.
    const vfILPictureView& ViewInput();
    /// Computes Run().processBox, which is never null. Called once a run, or once a band: see AllowBands.
    virtual vfILStatus DoEffect() = 0;

public:
    /// Sets how far the filter reaches from a pixel.
    ///
    /// \param r  Reach in pixels, in both axes. Its whole part makes the window 2r + 1 wide and high;
    ///           GetRadius returns r as it was set. Default 0. Verify refuses values outside 0 ..
    ///           1073741824.9 and NaN (0x10023).
    void SetRadius(float r);
    void SetRadius(float rx, float ry);
    void SetRadius(const vfILVector2f& radius);
    const vfILVector2f& GetRadius() const;
    float GetRadiusX() const;
    float GetRadiusY() const;
    /// \param mode Default VFIL_EDGE_COLOR. Verify refuses unknown values (0x10020).
    void SetEdgeMode(vfILEdgeMode mode);
    vfILEdgeMode GetEdgeMode() const;
    /// \param color Default (0, 0, 0, 0). Verify refuses components outside 0 .. 1 (0x10048).
    void SetEdgeColor(const vfILColor& color);
    const vfILColor& GetEdgeColor() const;

protected:
    /// For leaves that walk by pointers of their own: called before each row of the process box, with
    /// pointers to the row's start in the output, the windows and the mask.
    ///
    /// \param parity Non-zero for an even row: m_firstRowEven before the first. Toggled.
    /// \param mask   May be null, and is left alone without a mask picture.
    /// \return 1 when the field bits skip the row, whose pointers are then moved to the next row; else 0.
    int SkipLine(int& parity, void** out, void** in, void** mask);

    /// For the constructor of a leaf whose pixels depend on nothing but their windows, and which sets
    /// Run().stopped when the interrupt ends its loop (the loops of windowloop.h do). DoEffect may then be
    /// called several times a run, for one band of rows after the other, so that the padded copy need not
    /// hold the whole picture: that saves memory, and the copy stays in the cache.
    void AllowBands() { m_bandsAllowed = true; }
    /// For the PrepareData of a leaf, before the frame's: the leaf reads Run().input for itself in this run,
    /// by the edge rule, and nothing is padded for it. Run().windows is null. DoEffect is called once.
    void ReadInputItself(bool itself) { m_readsInput = itself; }
    /// Whether Verify takes the radius.
    bool IsRadiusValid() const;
    /// The radius without its fraction; saturated, and 0 for NaN.
    vfILVector2l WholeRadius() const;
    /// The state of the run, from PrepareData to CleanData.
    vfILWindowRun& Run() { return m_run; }

    // The boxes of the last run, in output coordinates (an empty effect box is not moved there).
    vfILBbox2l m_validBox;    ///< the region of interest, cut by the input
    vfILBbox2l m_outputBox;   ///< the region's size at the output offset
    vfILBbox2l m_maskedBox;   ///< m_validBox, cut by the mask's box
    vfILBbox2l m_validOutBox; ///< m_validBox at its place in the output
    vfILBbox2l m_effectBox;   ///< what the filter computes

private:
    vfILStatus PreparePassThrough();
    bool PrepareScratch(const vfILVector2l& radius);
    bool PrepareInputRows(bool shared);
    bool AllocateScratch(std::int64_t rowBytes, std::int64_t rows, std::int64_t resultBytes);
    void FillScratch(long firstRow, long rows);
    void Read(const vfILBbox2l& window, unsigned char* to);
    void SelectFieldRows();
    vfILStatus DoEffectInBands();

    vfILEdgeMode m_edgeMode = VFIL_EDGE_COLOR;
    vfILColor m_edgeColor;
    vfILVector2f m_radius;
    bool m_bandsAllowed = false;
    bool m_readsInput = false; ///< the leaf does
    vfILWindowRun m_run;
    long m_bandRows = 0; ///< effect rows that the scratch holds at a time
    vfILRunBuffer m_passThrough;
    vfILRunBuffer m_scratch;
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};
