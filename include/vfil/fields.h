/// \file
/// Filters of video fields.
#pragma once

#include <vfil/frame.h>

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
