/// \file
/// What is made of a matrix' singular value decomposition: the decomposition of a copy, inverses, norms,
/// separation.
#pragma once

#include "il/loops/numeric/matrixrows.h"
#include "il/loops/numeric/matrixsvd.h"

#include <vfil/matrix.h>

#include <cmath>

namespace vfil {

/// A copy of a matrix, decomposed.
class Svd {
public:
    /// An empty matrix has nothing to decompose. One with an element that is not finite fails, and all is
    /// NaN.
    SvdOutcome Decompose(const vfILMatrix& matrix) noexcept;
    /// The index of the largest singular value, the first of equals; 0 when one is NaN.
    long Largest() const noexcept;
    /// Singular value \p k, from 1; infinite when a double does not hold it.
    double Value(long k) const noexcept { return exponent == 0 ? w[k] : std::ldexp(w[k], exponent); }

    long rows = 0;
    long cols = 0;
    double** u = nullptr; ///< rows by cols
    double** v = nullptr; ///< cols by cols
    double* w = nullptr;  ///< cols values from w[1], divided by the scale
    int exponent = 0;     ///< the scale is 2 to this power: 0 unless the matrix is beyond the ordinary range

private:
    UnitOffsetRows m_storage; ///< of u, then v, then w
};

/// The number of indices of the singular values of which \p predicate(svd, k) holds; 0 without a
/// decomposition.
template <class Predicate>
long CountSingularValues(const vfILMatrix& matrix, Predicate predicate) noexcept
{
    Svd svd;
    long count = 0;
    if (svd.Decompose(matrix) != SvdOutcome::kConverged) return count;
    for (long k = 1; k <= svd.cols; ++k)
        count += predicate(svd, k) ? 1 : 0;
    return count;
}

/// As vfILMatrix::PseudoInverse.
///
/// \param epsilon Singular values below it count as 0.
vfILMatrix PseudoInverse(const vfILMatrix& matrix, double epsilon, vfILMatrixCondition& condition) noexcept;

/// As vfILMatrix::Norm.
double Norm(const vfILMatrix& matrix, vfILMatrixNorm norm) noexcept;

/// As vfILMatrix::CorrelationCoefficient, on operands of as many rows.
double Correlation(const vfILMatrix& a, const vfILMatrix& b) noexcept;

/// As vfILMatrix::SeparateIntoTensorProduct, on a column and a row of the right sizes.
bool Separate(const vfILMatrix& matrix, vfILMatrix& column, vfILMatrix& row) noexcept;

} // namespace vfil
