/// \file
/// Turns, shears and scales, and the mapping of a rectangle to a quadrilateral.
#pragma once

#include <vfil/transform.h>

/// The affine map of six coefficients a .. f: x' = a x + b y + c, y' = d x + e y + f. All are 0 at first,
/// which is singular.
///
/// With types 1 to 4 the input coordinates of a line are stepped in double precision.
class VFIL_API vfILAffineTransform : public vfILMonadicTransformProc {
public:
    vfILAffineTransform();
    vfILAffineTransform(const vfILAffineTransform& other) = default;
    vfILAffineTransform& operator=(const vfILAffineTransform& other) = default;
    ~vfILAffineTransform() override;
    /// Adds 0x1000F (an interpolation type that is none of 1 to 7) and 0x1000D (a format that is neither RGBA
    /// nor mono). A map whose determinant is 0, or no finite number, fails with 0x10010.
    vfILStatus Verify() override;

protected:
    vfILStatus SetUpCoefficients() override;
    void TransformPointXY(float& x, float& y) override;
    void InvertTransformPointXY(float& x, float& y) override;
    void TransformLineWithNearestNeighborInterpolation(const vfILVector2f& start, long width,
                                                       unsigned char* output) override;
    void TransformLineWithBilinearInterpolation(const vfILVector2f& start, long width,
                                                unsigned char* output) override;
    void TransformLineWithBicubicInterpolation(const vfILVector2f& start, long width,
                                               unsigned char* output) override;
    void TransformLineWithBilinearPrefilteredInterpolation(const vfILVector2f& start, long width,
                                                           unsigned char* output) override;

private:
    void SampleByForm(const vfILVector2f& start, long width, unsigned char* output);

    float m_forward[6] = {};
    float m_inverse[6] = {};
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};
