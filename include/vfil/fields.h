/// \file
/// Operators on the fields of video: splitting a frame, weaving, swapping and merging fields, and a filter.
///
/// An even field is that of the rows of even y, and y counts from the bottom row, which is 0.
#pragma once

#include <vfil/frame.h>
#include <vfil/interpolation.h>

/// Smooths an RGBA32 picture, all four channels, by a first-order recursive filter along rows and then along
/// columns. Each runs in both directions, so that nothing moves. In doubles throughout; a result is rounded
/// half to even and limited to 0 .. 255 once, at the end. The output may be the input.
class VFIL_API vfIL2TapIIR : public vfILProcessor {
public:
    vfIL2TapIIR() = default;
    vfIL2TapIIR(const vfIL2TapIIR& other) = default;
    vfIL2TapIIR& operator=(const vfIL2TapIIR& other) = default;
    ~vfIL2TapIIR() override;
    /// Does not call Verify; fails and writes nothing for pictures without pixels, of other sizes, or of
    /// other than four bytes a pixel. Needs a scratch of 32 bytes a pixel, and fails with 0x10001 without
    /// one. An interrupt ends the pass along rows: the rows that remain are smoothed along columns alone.
    vfILStatus Execute() override;
    /// Fails with 0x1000B (no input), 0x10002 (no output), 0x1000C (input without pixels), 0x10034 and
    /// 0x1000D (the input, the output is not RGBA32), 0x10003 (output without pixels, or of another size).
    vfILStatus Verify() override;

    /// The weight of a new sample; the result before it has the rest. 1 changes nothing along that axis, 0
    /// repeats the first pixel. Neither is checked. Default 0.5 each.
    void SetAlphas(double horizontal, double vertical);
    /// A null pointer skips that one.
    void GetAlphas(double* horizontal, double* vertical) const;
    /// \param image Not owned; must outlive the run.
    void SetInputImg(IPXImage* image);
    IPXImage* GetInputImg() const;
    void SetOutputImg(IPXImage* image);
    IPXImage* GetOutputImg() const;

private:
    vfILStatus ProcessTestAlgorithmUsingDoubles();

    double m_horizontalAlpha = 0.5;
    double m_verticalAlpha = 0.5;
    IPXImage* m_inputImg = nullptr;
    IPXImage* m_outputImg = nullptr;
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};

/// Where the rows of a part of a frame lie: from the first in memory on, or in a split-field format, whose
/// memory holds one field behind the other, from the uppermost on.
struct vfILFieldWalk {
    unsigned char* first[2] = {nullptr, nullptr}; ///< the first row of each field: rows 0 and 1
    std::ptrdiff_t step = 0;                      ///< bytes from a row to the next one of its field
};

/// What a vfILDeinterlace knows of a run, from PrepareData to CleanData. The first of two is that of A.
struct vfILDeinterlaceRun {
    vfILBbox2l placedBox; ///< what of the target has a source, in output coordinates
    long rows = 0;        ///< of placedBox
    std::size_t rowBytes = 0;
    long sampleBytes = 1;
    bool firstRowEven = true; ///< the first row of the walks belongs to the even field
    vfILFieldWalk input;
    vfILFieldWalk outputs[2], comparisons[2];
    const unsigned char* above = nullptr; ///< the row before the first one of the walk, ...
    const unsigned char* below = nullptr; ///< ... and the one behind the last
    bool apart = true;      ///< no output shares memory with a picture that is read, or with the other one
    bool streaming = false; ///< the results are large, and may go around the cache
};

/// Splits a frame of two fields into two pictures of full height: output A keeps the even rows, output B the
/// odd ones, and each fills the rows that it lacks. RGBA and mono, 8 and 16 bits, and 8-bit 4:2:2 without
/// alpha, in all row orders.
///
/// All samples of a row are treated alike. Whose field a row is goes by its y in the input. At the first and
/// the last row the picture is mirrored. The mode's field bits bound the fill with the default colour and
/// nothing else.
///
/// An output may be the input: of an output at another place of it the input is copied first. With one output
/// in place of the input the results are those of pictures apart. With both there, A is made before B, from
/// the same memory. A comparison picture may be the output of its own letter, at the same place. What other
/// pictures share is read as it is found: first both outputs take their rows, then A is filled, then B.
class VFIL_API vfILDeinterlace : public vfILProcessor {
public:
    /// The processing mode starts as VFIL_MODE_RGBA.
    vfILDeinterlace();
    /// Copies the pictures and parameters.
    vfILDeinterlace(const vfILDeinterlace& other);
    vfILDeinterlace& operator=(const vfILDeinterlace& other);
    ~vfILDeinterlace() override;
    /// Runs Verify, PrepareData and ProcessData, and CleanData in every case; the interrupt is polled once a
    /// row. Fails with 0x10001 when there is no memory for two rows, or for the copy of an input that is an
    /// output at another place, and with 0x1000C when the input refuses ReadRegion.
    vfILStatus Execute() override;
    /// Fails with 0x20002 (not all channels are selected), 0x1000B, 0x1000C (input missing, or without
    /// pixels), 0x10002 (no output at all), 0x10034 (a format not taken); for A, then for B, if connected:
    /// 0x10003 (output without pixels), 0x1000E (another format than the input), 0x1000A (the target hangs
    /// over the output); with a type other than the first two, for A, then for B, if connected: 0x1000C,
    /// 0x1000E, 0x1003D (comparison picture missing or without pixels, of another format, of another size);
    /// then 0x10004 (default colour outside 0 .. 1), 0x1000F (an unknown type), 0x10046 (a threshold outside
    /// 0 .. 1, or the lower one above the upper one). Row orders cannot differ, as formats do not.
    vfILStatus Verify() override;

protected:
    virtual vfILStatus PrepareData();
    virtual vfILStatus ProcessData();
    virtual vfILStatus CleanData();
    virtual vfILStatus DoEffect();

public:
    IPXImage* GetInputImg() const;
    /// \param image The frame. Not owned, as all pictures here; must outlive the run.
    void SetInputImg(IPXImage* image);
    IPXImage* GetOutputImgA() const;
    /// \param image Receives the even rows; null, the default, when they are not wanted. As long as SetROI
    /// was
    ///              never called, it gives the region its size.
    void SetOutputImgA(IPXImage* image);
    IPXImage* GetOutputImgB() const;
    /// \param image Receives the odd rows; otherwise as for A.
    void SetOutputImgB(IPXImage* image);
    IPXImage* GetCompImgA() const;
    /// \param image A neighbouring frame, whose odd rows the adaptive type compares with those of the input:
    ///              the one before where the even field comes first in time, else the one behind.
    void SetCompImgA(IPXImage* image);
    IPXImage* GetCompImgB() const;
    /// \param image The same for output B, with its even rows: the one behind where the even field comes
    ///              first, else the one before.
    void SetCompImgB(IPXImage* image);
    /// \param roi The region in input coordinates; default the size of the output that was connected last, at
    ///            (0, 0). What of it the input lacks takes the default colour.
    void SetROI(const vfILBbox2l& roi);
    const vfILBbox2l& GetROI() const;
    /// \param offset Where the region's first pixel lands in the outputs; default (0, 0).
    void SetOutputOffset(const vfILVector2l& offset);
    const vfILVector2l& GetOutputOffset() const;
    /// \param type VFIL_DEINTERLACE_DUPLICATE, the default: A repeats the row before in memory, B the one
    ///             behind. VFIL_DEINTERLACE_INTERPOLATE: the mean of both, (a + b + 1) / 2.
    ///             VFIL_DEINTERLACE_ADAPTIVE: by the distance between a sample of the input and the same one
    ///             of the comparison picture, their mean up to the lower threshold, that of the rows before
    ///             and behind from the upper one on, a linear mix between; rows of a single byte (a column of
    ///             8-bit mono) stay as the output had them. Verify refuses others (0x1000F).
    void SetInterpolationType(vfILInterpolationType type);
    vfILInterpolationType GetInterpolationType() const;
    /// \param threshold The share of full scale up to which a sample counts as still, 0 .. 1; default 0.
    void SetMinThreshold(double threshold);
    double GetMinThreshold() const;
    /// \param threshold The share of full scale from which a sample counts as moving, 0 .. 1, at least the
    ///                  other one; default 0.15. With both alike there is no mix.
    void SetMaxThreshold(double threshold);
    double GetMaxThreshold() const;
    const vfILColor& GetDefaultColor() const;
    /// \param color What the rest of the target takes; default (0, 0, 0, 0).
    void SetDefaultColor(const vfILColor& color);
    /// Paints both outputs inside \p whole, apart from \p excluded, which may be a null box, in the rows that
    /// the mode's field bits allow. Bands that are not inside an output are left out.
    void FillOutput(const vfILBbox2l& excluded, const vfILBbox2l& whole, const vfILColor& color);

private:
    bool IsAdaptive() const;
    void TakeSizeOf(IPXImage* output);
    vfILStatus VerifyOutputs();
    vfILStatus VerifyComparisons();
    vfILStatus VerifyParameters();
    bool PlaceOutputs(const vfILBbox2l& valid);
    vfILStatus ReadInput(const vfILBbox2l& valid, bool copiesRegion);

    IPXImage* m_inputImg = nullptr;
    IPXImage* m_outputImgs[2] = {nullptr, nullptr};
    IPXImage* m_compImgs[2] = {nullptr, nullptr};
    vfILInterpolationType m_interpolationType = VFIL_DEINTERLACE_DUPLICATE;
    double m_minThreshold = 0.0;
    double m_maxThreshold = 0.15;
    vfILBbox2l m_roi;
    int m_roiSet = 0;
    vfILVector2l m_outputOffset;
    vfILColor m_defaultColor;
    vfILDeinterlaceRun m_run;
    vfILRunBuffer m_scratch;
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};

/// Where a field operator finds the rows of a region.
struct vfILFieldRows {
    vfILPictureView picture;
    long x = 0; ///< of the region's first pixel
    long y = 0;
};

/// What the operators on fields know of a run, from PrepareData to CleanData.
struct vfILFieldRun {
    vfILFieldRows a, b, output; ///< b is a for an operator of one input
    vfILBbox2l validBox;        ///< the part of the region that has a source, in input coordinates
    vfILBbox2l targetBox;       ///< the region's size at the output offset
    vfILBbox2l processBox;      ///< validBox in output coordinates
    std::size_t rowBytes = 0;   ///< of a row of these boxes
    unsigned char* held =
        nullptr;            ///< space of two rows where each row is written in its own place; else null
    bool streaming = false; ///< the result is large and in no input's place: it may go around the cache
};

/// The frame of the operators below, which make rows of a picture of rows of one or two others: RGBA and
/// mono, 8 and 16 bits, and 8-bit 4:2:2 without alpha, in all row orders. All pictures have one format.
///
/// Rows are counted by y, also for the mode's field bits, whatever their order in memory. All channels are
/// processed, which is the default here; there is no mask. The output may be an input: the result is that of
/// two pictures.
class VFIL_API vfILFieldProc : public vfILImgProc {
public:
    vfILFieldProc();
    /// Copies the pictures and parameters; the mode is the default one.
    vfILFieldProc(const vfILFieldProc& other);
    /// Copies the pictures and parameters.
    vfILFieldProc& operator=(const vfILFieldProc& other);
    ~vfILFieldProc() override;
    /// Runs Verify, PrepareData and ProcessData, and CleanData in every case. Fails with 0x10001 when an
    /// output is an input and there is no memory for two rows, or, where the region moves, for the region.
    vfILStatus Execute() override;

protected:
    vfILStatus PrepareData() override;
    vfILStatus ProcessData() override;
    vfILStatus CleanData() override;
    virtual vfILStatus DoEffect() = 0;

    /// The checks of an operator of one input: 0x20002 (not all channels are selected), 0x1000B, 0x1000C
    /// (input missing, or without pixels), 0x10034 (a format not taken), 0x10002, 0x10003 (output missing, or
    /// without pixels), 0x1000E (another format than the input), 0x1000A (the region hangs over the output),
    /// 0x10004 (default colour outside 0 .. 1).
    vfILStatus VerifyOneInput(const wchar_t* className);
    vfILStatus VerifyMode(const wchar_t* className);
    vfILStatus VerifyPixels(IPXImage* input, const wchar_t* className);
    vfILStatus VerifyOutput(const wchar_t* className);
    /// The region fits into the output.
    vfILStatus VerifyRegion(const wchar_t* className);

    const vfILFieldRun& Run() const { return m_run; }

    IPXImage* m_inputImgA = nullptr; ///< or the only input
    IPXImage* m_inputImgB = nullptr;

private:
    vfILStatus PrepareInputs();

    vfILFieldRun m_run;
    vfILRunBuffer m_buffer;
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};

/// Weaves two pictures into a frame: its even rows are those of A, its odd ones those of B. Whose a row is
/// goes by its y in the inputs.
class VFIL_API vfILInterlace : public vfILFieldProc {
public:
    vfILInterlace() = default;
    vfILInterlace(const vfILInterlace& other) = default;
    vfILInterlace& operator=(const vfILInterlace& other) = default;
    ~vfILInterlace() override;
    /// Fails with, in this order, 0x20002 (not all channels are selected), 0x1000B, 0x1000C (A, then B
    /// missing, or without pixels), 0x1000D (a format not taken), 0x10002, 0x10003 (output missing, or
    /// without pixels), 0x1000E (output of another format, then B), 0x1003D (B of another size), 0x10060 (in
    /// a top-down format another region than the whole output, or an offset), 0x10004 (default colour outside
    /// 0 .. 1), 0x1000A (the region hangs over the output).
    vfILStatus Verify() override;

    IPXImage* GetInputImgA() const;
    /// \param image Not owned, as all pictures here; must outlive the run.
    void SetInputImgA(IPXImage* image);
    IPXImage* GetInputImgB() const;
    void SetInputImgB(IPXImage* image);

protected:
    vfILStatus DoEffect() override;

private:
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};

/// Brings the rows of a frame to the other field: the two rows of each pair trade places, or the picture
/// moves up by one row. The region is the picture: at its edges it is mirrored.
class VFIL_API vfILFieldSwap : public vfILFieldProc {
public:
    vfILFieldSwap() = default;
    vfILFieldSwap(const vfILFieldSwap& other) = default;
    vfILFieldSwap& operator=(const vfILFieldSwap& other) = default;
    ~vfILFieldSwap() override;
    /// As vfILFieldProc::VerifyOneInput.
    vfILStatus Verify() override;

    IPXImage* GetInputImg() const;
    void SetInputImg(IPXImage* image);
    int GetSwapLines() const;
    /// \param swap Non-zero trades row r of the region for r ^ 1; 0, the default, for r - 1, so that rows
    ///             follow each other as before. Row -1 is row 1, and the one behind the last is the one
    ///             before it. Either way what was in even rows gets into odd ones, and the field that was
    ///             second in time, by its place in the frame, becomes the first.
    void SetSwapLines(int swap);

protected:
    vfILStatus DoEffect() override;

private:
    std::int32_t m_swapLines = 0;
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};

/// Melts the two fields of a frame: each sample c with those above and below, a and b, is (c + (a + b + 1) /
/// 2
/// + 1) / 2 in integers. The region is the picture: at its edges it is mirrored.
class VFIL_API vfILFieldMerge : public vfILFieldProc {
public:
    vfILFieldMerge() = default;
    vfILFieldMerge(const vfILFieldMerge& other) = default;
    vfILFieldMerge& operator=(const vfILFieldMerge& other) = default;
    ~vfILFieldMerge() override;
    /// As vfILFieldProc::VerifyOneInput.
    vfILStatus Verify() override;

    IPXImage* GetInputImg() const;
    void SetInputImg(IPXImage* image);

protected:
    vfILStatus DoEffect() override;

private:
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};

/// Runs a vfILInterlace on whole pictures.
/// \return 0, or 0x80004005 (as a 32-bit number, which is negative) when anything fails
VFIL_API long vfILInterlaceFields(IPXImage* a, IPXImage* b, IPXImage* out);

/// Runs a vfILDeinterlace on whole pictures. Comparison pictures and thresholds are of use for
/// VFIL_DEINTERLACE_ADAPTIVE alone. \return as vfILInterlaceFields
VFIL_API long vfILDeinterlaceFields(IPXImage* in, IPXImage* outA, IPXImage* outB, vfILInterpolationType type,
                                    IPXImage* compA, IPXImage* compB, double minThreshold,
                                    double maxThreshold);
