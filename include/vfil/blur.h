/// \file
/// Blurs: of a disc, a Gaussian, a box, and two whose cost does not depend on the radius.
#pragma once

#include <vfil/convolve.h>

enum vfILBlurType : int {
    VFIL_BLUR_DISC = 1,        ///< equal weights inside an ellipse, mixed with the picture by the degree
    VFIL_BLUR_GAUSS = 2,       ///< a Gaussian that ends at the radius
    VFIL_BLUR_BOX = 3,         ///< equal weights in a rectangle; 8-bit formats only
    VFIL_BLUR_EXPONENTIAL = 4, ///< falls exponentially to both sides; fixed point on 8-bit formats
    VFIL_BLUR_EXPONENTIAL_FLOAT = 5, ///< the same in floating point
    VFIL_BLUR_FAST_GAUSS = 6, ///< flat, then falling exponentially; a Gaussian where both radii are below 5
    VFIL_BLUR_FAST_GAUSS_FLOAT = 7, ///< the same in floating point, at every radius
};

/// Blurs a picture. RGBA and mono, 8 and 16 bits; VFIL_BLUR_BOX 8 bits.
///
/// The disc and the Gaussian cost more with the radius, the other types do not.
class VFIL_API vfILBlurImg : public vfILConvolveImg {
public:
    vfILBlurImg() = default;
    vfILBlurImg(const vfILBlurImg& other) = default;
    vfILBlurImg& operator=(const vfILBlurImg& other) = default;
    ~vfILBlurImg() override;
    /// With degree 0, and where both radii are below 1, copies the picture: the mask is not looked at.
    vfILStatus Execute() override;
    /// Adds 0x10001 (no memory for the kernel), 0x10024 (type), 0x1000D (the type does not take the format),
    /// 0x10026 (degree).
    vfILStatus Verify() override;

protected:
    vfILStatus PrepareData() override;
    vfILStatus CleanData() override;
    vfILStatus DoEffect() override;

public:
    int IsKernelSeparable() override;
    /// There is a kernel during runs only.
    vfILStatus SeparateKernel(float* kx, float* ky) override;

    /// \param type Default VFIL_BLUR_DISC. Verify refuses unknown types (0x10024).
    void SetType(vfILBlurType type);
    vfILBlurType GetType() const;
    /// \param degree How much the picture is blurred, 0 .. 1: the share of the disc, and a factor of the
    /// other
    ///               types' radii but the box's. Default 1. Verify refuses others and NaN (0x10026).
    void SetDegree(float degree);
    float GetDegree() const;
    /// Sets the radius, half of it for a box, so that all types blur about as far. The type is set before.
    void SetRadiusNormalizedForBlurType(float rx, float ry);

private:
    vfILVector2l KernelRadius() const;
    vfILStatus BuildKernel();
    vfILStatus NoKernel();
    void FreeKernel();
    void FillDisc(float* kernel, std::size_t weights) const;
    bool FillGauss(float* kernel) const;
    bool IsConvolutionFasterThanFastGauss() const;
    bool IsGauss() const;
    bool HasKernel() const;
    bool IsRecursive() const;
    bool BlurBox();
    bool BlurRecursively();

    vfILBlurType m_type = VFIL_BLUR_DISC;
    float m_degree = 1;
    vfILRunBuffer m_kernelBuffer;
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};
