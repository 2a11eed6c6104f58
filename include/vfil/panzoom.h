/// \file
/// Scales and shifts without rotation.
#pragma once

#include <vfil/transform.h>

namespace vfil {
class PanZoomLines;
class PanZoomSums;
} // namespace vfil

/// The map of four coefficients sx, tx, sy, ty: x' = sx x + tx, y' = sy y + ty. A negative scale mirrors. All
/// are 0 at first, which is singular.
///
/// It has all types of interpolation. With types 1 to 3 a line walks a table of its columns, which gives what
/// an affine transform of the same map gives, and faster. With VFIL_INTERP_PANZOOM a shrunk axis takes the
/// mean of what each pixel covers, an enlarged one mixes two neighbours, and one of scale 1 or -1 moves whole
/// pixels; then border, opacity and falloff act, and what of the input is transparent shows the default
/// colour. The work of types 1 to 3 grows with the output, and for each of its rows with the columns of the
/// input that it needs; that of VFIL_INTERP_PANZOOM with the part of the input that is seen, and with the
/// output.
class VFIL_API vfILPanZoomTransform : public vfILMonadicTransformProc {
public:
    vfILPanZoomTransform();
    vfILPanZoomTransform(const vfILPanZoomTransform& other);
    vfILPanZoomTransform& operator=(const vfILPanZoomTransform& other);
    ~vfILPanZoomTransform() override;
    /// Adds 0x1000F (an interpolation type that is none of 1 to 8) and 0x1000D (a format that is neither RGBA
    /// nor mono). Scales whose product is 0 in single precision, or no finite number, fail with 0x10010.
    vfILStatus Verify() override;

protected:
    /// Adds 0x10001 when there is no memory for the tables.
    vfILStatus PrepareData() override;
    vfILStatus CleanData() override;
    vfILStatus DoEffect() override;
    vfILStatus SetUpCoefficients() override;
    void TransformPointXY(float& x, float& y) override;
    void InvertTransformPointXY(float& x, float& y) override;
    void TransformLineWithNearestNeighborInterpolation(const vfILVector2f& start, long width,
                                                       unsigned char* output) override;
    void TransformLineWithBilinearInterpolation(const vfILVector2f& start, long width,
                                                unsigned char* output) override;
    void TransformLineWithBicubicInterpolation(const vfILVector2f& start, long width,
                                               unsigned char* output) override;
    void TransformLineWithPixelSumming(const vfILVector2f& start, long width, unsigned char* output) override;

private:
    void ReleaseTables();

    /// sx, tx, sy, ty.
    float m_forward[4] = {};
    float m_inverse[4] = {};
    vfil::PanZoomLines* m_lines = nullptr; ///< of a run with types 1 to 3; owned
    vfil::PanZoomSums* m_sums = nullptr;   ///< of a run with types 5 to 7; owned, may be null
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};
