/// \file
/// The convolution of a picture with a kernel of the caller's.
#pragma once

#include <vfil/spatial.h>

/// Each sample becomes the sum of its window's samples times the kernel's weights. RGBA and mono, 8 and 16
/// bits.
///
/// A kernel that is a column times a row (IsKernelSeparable) runs as one pass each way. 8-bit RGBA uses
/// weights of 15 fraction bits, where the machine has the instructions and that is exact to one code value;
/// all else sums in float. Results are rounded to nearest and limited to the range of a sample.
class VFIL_API vfILConvolveImg : public vfILMonadicSpatialProc {
public:
    vfILConvolveImg();
    vfILConvolveImg(const vfILConvolveImg& other) = default;
    vfILConvolveImg& operator=(const vfILConvolveImg& other) = default;
    ~vfILConvolveImg() override;
    /// Adds 0x1000D (a format that is neither RGBA nor mono), 0x10021 (no kernel).
    vfILStatus Verify() override;

protected:
    vfILStatus CleanData() override;
    /// Fails with 0x10001 when memory is short.
    vfILStatus DoEffect() override;
    /// For a leaf with a kernel of its own: the sums of a run's windows, by one pass. Fails with 0x10001.
    ///
    /// \param run     Run(), or a copy of it that writes elsewhere.
    /// \param kernel  run.kernelWidth * run.kernelHeight weights, as in SetKernel.
    vfILStatus SinglePassConvolve(vfILWindowRun& run, const float* kernel);

public:
    /// 1 when the kernel has one singular value of 1e-6 or more; else 0, also when memory is short (0x10001).
    virtual int IsKernelSeparable();
    /// Gives the column and the row whose product is nearest to the kernel.
    ///
    /// \param kx Receives as many weights as the kernel is wide.
    /// \param ky Receives as many as it is high.
    /// \return   Failure for a kernel that cannot be decomposed, with 0x10001 when memory is short.
    virtual vfILStatus SeparateKernel(float* kx, float* ky);

    /// Sets the weights, and the radius by SetRadius.
    ///
    /// \param kernel Row after row from the window's corner at the lowest x and y: 2 * radius + 1 weights a
    ///               row, and as many rows, each radius without its fraction. A weight multiplies the sample
    ///               in its own place. Not owned; must outlive the run. Verify refuses null (0x10021).
    void SetKernel(float* kernel, float r);
    void SetKernel(float* kernel, float rx, float ry);
    void SetKernel(float* kernel, const vfILVector2f& radius);
    float* GetKernel() const;
    /// \param offset What is added to each result, in units of a sample. Default 0. A separable kernel that
    /// is
    ///               more than one pixel wide and high takes no notice of it.
    void SetOffset(float offset);
    float GetOffset() const;

private:
    vfILStatus DualPassConvolve(const float* kx, const float* ky);
    vfILStatus FindFactors();
    vfILStatus OutOfMemory(const char* text);

    float* m_kernel = nullptr;
    float m_offset = 0;
    vfILRunBuffer m_factorBuffer;
    bool m_isMemoryShort = false;
    bool m_isPlanned = false;   ///< m_factors is what this run needs
    float* m_factors = nullptr; ///< of a run: the row and the column of a separable kernel, null for another
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};
