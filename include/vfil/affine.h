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
    /// nor mono). A map whose determinant is 0, or whose inverse no float can hold, fails with 0x10010.
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

/// The map of the picture's rectangle to a quadrilateral, bilinear along its sides: eight coefficients, x and
/// y of where the centres of the pixels (0, 0), (w - 1, 0), (w - 1, h - 1) and (0, h - 1) go. Straight lines
/// that are not parallel to the sides become curves; vfILPerspectiveTransform keeps them straight.
///
/// The quadrilateral has to be convex, and its corners apart: otherwise two points of the picture would meet.
/// A picture one pixel wide (or high) shows its pixels all across.
class VFIL_API vfILBilinearTransform : public vfILMonadicTransformProc {
public:
    vfILBilinearTransform();
    vfILBilinearTransform(const vfILBilinearTransform& other) = default;
    vfILBilinearTransform& operator=(const vfILBilinearTransform& other) = default;
    ~vfILBilinearTransform() override;
    /// As vfILAffineTransform's. Corners that are not convex fail with 0x10010.
    vfILStatus Verify() override;

protected:
    /// Fails without an input, too, whose size it needs.
    vfILStatus SetUpCoefficients() override;
    void TransformPointXY(float& x, float& y) override;
    void InvertTransformPointXY(float& x, float& y) override;
    void TransformLineWithNearestNeighborInterpolation(const vfILVector2f& start, long width,
                                                       unsigned char* output) override;
    void TransformLineWithBilinearInterpolation(const vfILVector2f& start, long width,
                                                unsigned char* output) override;
    void TransformLineWithBicubicInterpolation(const vfILVector2f& start, long width,
                                               unsigned char* output) override;

private:
    void Invert(double x, double y, double& u, double& v) const;
    void SampleByForm(const vfILVector2f& start, long width, unsigned char* output);

    double m_origin[2] = {}; ///< where (0, 0) goes
    double m_along[2] = {};  ///< from there to where the first row ends
    double m_across[2] = {}; ///< from there to where the first column ends
    double m_twist[2] = {};  ///< what the last corner lacks of the sum of both
    double m_size[2] = {};   ///< of the picture, less 1
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};
