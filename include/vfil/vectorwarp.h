/// \file
/// The warp of a picture along a vector a pixel.
#pragma once

#include <vfil/transform.h>

/// Moves a picture along a dense field of vectors, as an optical flow has them.
///
/// The exact path takes the pixels for the corners of a grid of cells, moves each corner along its vector,
/// and writes the pixels that a moved cell covers from where they lie in it: bilinearly, in place and in
/// colour. What no cell reaches is black with full alpha, and where two cover a pixel, the later one stands,
/// by rows and columns. A pixel on the common edge of two cells may fall to either within 1e-9. A cell
/// without extent in x along both its lower and its upper edge (one that is turned by 90 degrees) is not
/// drawn, nor one with a corner that is no finite number. A picture one pixel wide or high has no cells.
///
/// The approximate path takes each pixel from where its own vector points back to.
///
/// The picture is warped whole, whatever region, offset and field bits say: input and output are of one size,
/// RGBA or mono of 8 bits. What only one of them has is left out, and where the approximate path has no
/// vectors, the output is the default colour; so is what is sampled outside of the input. The interpolation
/// type does not count. The interrupt is polled after each row, of cells or of pixels.
class VFIL_API vfILVectorWarp : public vfILMonadicTransformProc {
public:
    vfILVectorWarp();
    vfILVectorWarp(const vfILVectorWarp& other) = default;
    vfILVectorWarp& operator=(const vfILVectorWarp& other) = default;
    ~vfILVectorWarp() override;
    /// Adds 0x10034 (a format other than PXFormat_RGBA32 and PXFormat_Mono8).
    vfILStatus Verify() override;

protected:
    /// Fails without vectors, with 0x10034 for such a format, and with 0x10001 when memory is short.
    vfILStatus DoEffect() override;
    // The vectors are the mapping: these do nothing.
    vfILStatus SetUpCoefficients() override;
    void TransformPointXY(float& x, float& y) override;
    void InvertTransformPointXY(float& x, float& y) override;

public:
    /// The vectors are not owned and must outlive the run. Without them a run fails.
    ///
    /// \param x The vectors' first components: width times height of the input, in pixels, row by row from
    ///          the lowest.
    /// \param y Their second components, in the same order.
    void SetVectors(const double* x, const double* y);
    /// How far along the vectors the grid stands in the input and in the output, in that order. With a second
    /// factor of 0 the path is the approximate one.
    void SetWarpFactor(double first, double second);
    /// Warps by a share of the vectors, 1 being the default: 0 and \p factor, or below 0, back from their
    /// end, 1 and \p factor + 1.
    void SetWarpFactor(double factor);
    /// Writes to each pointer that is not null.
    void GetWarpFactor(double* first, double* second) const;
    /// \param approximate Not 0: the approximate path. Default 0.
    void SetFastApproximation(int approximate);
    int GetFastApproximation() const;

private:
    template <class Warp>
    void Process(Warp warp) const;
    void ProcessMono8();
    void ProcessRGBA8();
    void ProcessFastMono8();
    void ProcessFastRGBA8();

    const double* m_vectorsX = nullptr;
    const double* m_vectorsY = nullptr;
    double m_firstFactor = 0;
    double m_secondFactor = 1;
    int m_fastApproximation = 0;
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};
