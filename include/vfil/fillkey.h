/// \file
/// Fill and key: a picture with alpha in the two pictures that video equipment carries, and back.
///
/// The fill is the colour, the key is the alpha as luma of studio range. The 4:2:2 samples of the colour pass
/// untouched. Picture and fill or key have one standard, BT.601 or BT.709, one size, and no region: the whole
/// picture is treated, both fields, whatever the processing mode says. Any 4:2:2 order of bytes and of rows
/// will do on the side of fill and key.
#pragma once

#include <vfil/frame.h>

/// Splits a picture of 4:2:2 with an alpha plane into fill (output A) and key (output B). Either may be
/// missing.
///
/// The key has Y = 16 + alpha * 219 / 255, rounded, and Cb = Cr = 128.
class VFIL_API vfILYCCA2YCCYCC : public vfILProcessor {
public:
    vfILYCCA2YCCYCC();
    vfILYCCA2YCCYCC(const vfILYCCA2YCCYCC& other);
    vfILYCCA2YCCYCC& operator=(const vfILYCCA2YCCYCC& other);
    ~vfILYCCA2YCCYCC() override;
    /// Unlike most operators it calls Verify first. Then PrepareData, ProcessData unless the interrupt fires,
    /// and, whatever failed, CleanData.
    vfILStatus Execute() override;
    /// Fails with 0x1000B (no input), 0x1000C (input without pixels), 0x10002 (no output at all), 0x10034
    /// (the input is not 4:2:2 with an alpha plane), 0x10003 (an output without pixels, or not 4:2:2),
    /// 0x10062 (sizes differ), 0x1000D (an output of the other standard or with an alpha plane), 0x10004
    /// (default colour outside 0 .. 1), 0x10060 (the region is not the whole picture).
    vfILStatus Verify() override;

protected:
    virtual vfILStatus PrepareData();
    virtual vfILStatus ProcessData();
    virtual vfILStatus CleanData();

public:
    // Pictures are not owned and must outlive the run.
    void SetInputImg(IPXImage* image);
    IPXImage* GetInputImg() const;
    /// As long as SetROI was never called, an output gives the region its size.
    void SetOutputImgA(IPXImage* image);
    IPXImage* GetOutputImgA() const;
    void SetOutputImgB(IPXImage* image);
    IPXImage* GetOutputImgB() const;
    /// \param roi Only the whole picture is accepted, and only the offset (0, 0).
    void SetROI(const vfILBbox2l& roi);
    const vfILBbox2l& GetROI() const;
    void SetOutputOffset(const vfILVector2l& offset);
    const vfILVector2l& GetOutputOffset() const;
    /// \param color Checked, and never seen, since the whole picture is treated. Default (0, 0, 0, 0).
    void SetDefaultColor(const vfILColor& color);
    const vfILColor& GetDefaultColor() const;

private:
    void TakeSize(IPXImage* output);
    vfILStatus VerifyOutput(IPXImage* output);
    void Convert8_YCCA2YCCYCC();

    IPXImage* m_inputImg = nullptr;
    IPXImage* m_outputImgA = nullptr;
    IPXImage* m_outputImgB = nullptr;
    vfILBbox2l m_roi;
    bool m_roiSet = false;
    vfILVector2l m_outputOffset;
    vfILColor m_defaultColor;
    bool m_streaming = false; ///< in a run: the results are large, they may go around the cache
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};

/// Joins fill (input A) and key (input B) to a picture of 4:2:2 with an alpha plane.
///
/// Alpha is (Y - 16) * 255 / 219 of the key's luma, rounded; the key's chroma is ignored. A luma outside 16
/// .. 235 wraps to a byte: 15 gives 255, 236 gives 0.
class VFIL_API vfILYCCYCC2YCCA : public vfILImgProc {
public:
    vfILYCCYCC2YCCA();
    vfILYCCYCC2YCCA(const vfILYCCYCC2YCCA& other);
    vfILYCCYCC2YCCA& operator=(const vfILYCCYCC2YCCA& other);
    ~vfILYCCYCC2YCCA() override;
    /// Unlike most operators it calls Verify first.
    vfILStatus Execute() override;
    /// Adds 0x1000B (an input is missing and is not to be filled in), 0x1000C (an input without pixels),
    /// 0x10034 (an input that is not 4:2:2), 0x10003 (the output is not 4:2:2 with an alpha plane), 0x10062
    /// (sizes differ), 0x1000D (an input of the other standard or with an alpha plane).
    vfILStatus Verify() override;

protected:
    vfILStatus PrepareData() override;
    vfILStatus ProcessData() override;
    vfILStatus CleanData() override;

public:
    /// \param image Not owned; must outlive the run.
    void SetInputImgA(IPXImage* image);
    IPXImage* GetInputImgA() const;
    void SetInputImgB(IPXImage* image);
    IPXImage* GetInputImgB() const;
    /// \param flag Not 0 makes a missing input, or both, from the fill colour. Default 0.
    void SetFillMissingInput(int flag);
    int GetFillMissingInput() const;
    /// \param color Its alpha becomes the alpha plane as it is. Default (0, 0, 0, 1).
    void SetFillColor(const vfILColor& color);
    const vfILColor& GetFillColor() const;

private:
    vfILStatus VerifyInput(IPXImage* input);
    void Convert8_YCCYCC2YCCA();

    IPXImage* m_inputImgA = nullptr;
    IPXImage* m_inputImgB = nullptr;
    std::int32_t m_fillMissingInput = 0;
    vfILColor m_fillColor;
    bool m_streaming = false; ///< in a run: the result is large, it may go around the cache
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};
