/// \file
/// What the matrix makes of its singular value decomposition: inverses, norms, ranks, separation.

#include <vfil/matrix.h>

#include "il/loops/numeric/matrixsvd.h"

#include <algorithm>
#include <cassert>
#include <cmath>

using vfil::Svd;
using vfil::SvdOutcome;

namespace {

/// The largest of count values, none of which is negative.
template <class Value>
double Greatest(long count, Value value)
{
    double greatest = 0;
    for (long i = 0; i < count; ++i)
        greatest = std::max(greatest, value(i));
    return greatest;
}

/// The number of singular values of which \p predicate holds; 0 without a decomposition.
template <class Predicate>
long CountSingularValues(const vfILMatrix& a, Predicate predicate)
{
    Svd svd;
    if (svd.Decompose(a) != SvdOutcome::kConverged) return 0;
    return std::count_if(svd.w + 1, svd.w + 1 + svd.cols, predicate);
}

} // namespace

vfILStatus vfILMatrix::ThinSVDUnitOffsetInPlace(double** a, long m, long n, double* const w,
                                                double** v) noexcept
{
    return vfil::DecomposeUnitOffset(a, m, n, w, v) == SvdOutcome::kConverged ? VFIL_SUCCESS : VFIL_FAILURE;
}

vfILStatus vfILMatrix::ThinSVD(vfILMatrix& u, vfILMatrix& w, vfILMatrix& v) const noexcept
{
    Svd svd;
    if (svd.Decompose(*this) != SvdOutcome::kConverged) return VFIL_FAILURE;
    u.Resize(svd.rows, svd.cols);
    w.Resize(svd.cols, svd.cols);
    v.Resize(svd.cols, svd.cols);
    if (!u.m_valid || !w.m_valid || !v.m_valid) {
        for (vfILMatrix* result : {&u, &w, &v})
            result->Release();
        return VFIL_FAILURE;
    }
    for (long i = 0; i < svd.rows; ++i)
        std::copy_n(svd.u[i + 1] + 1, svd.cols, u.m_elements[i]);
    w.MakeDiag(svd.w + 1, svd.cols);
    for (long i = 0; i < svd.cols; ++i)
        std::copy_n(svd.v[i + 1] + 1, svd.cols, v.m_elements[i]);
    return VFIL_SUCCESS;
}

vfILMatrix vfILMatrix::Inverse(vfILMatrixCondition& condition) const noexcept
{
    assert(IsSquare());
    condition = VFIL_CONDITION_SINGULAR;
    return IsSquare() ? PseudoInverse(condition) : vfILMatrix();
}

vfILMatrix vfILMatrix::PseudoInverse(vfILMatrixCondition& condition) const noexcept
{
    condition = VFIL_CONDITION_SINGULAR;
    Svd svd;
    if (svd.Decompose(*this) == SvdOutcome::kNothing) return {};
    vfILMatrix inverse(m_cols, m_rows);
    if (!inverse.m_valid) return {};
    bool isZero = false;
    bool isSmall = false;
    // The reciprocals take the place of the values, and V's rows are scaled by them.
    for (long k = 1; k <= svd.cols; ++k) {
        const double value = svd.w[k];
        const bool isDropped = value == 0 || IsVerySmall(value);
        (value == 0 ? isZero : isSmall) |= isDropped;
        svd.w[k] = isDropped ? 0 : 1 / value;
    }
    for (long i = 0; i < inverse.m_rows; ++i) {
        double* const scaled = svd.v[i + 1];
        for (long k = 1; k <= svd.cols; ++k)
            scaled[k] *= svd.w[k];
        for (long j = 0; j < inverse.m_cols; ++j) {
            double sum = 0;
            for (long k = 1; k <= svd.cols; ++k)
                sum += scaled[k] * svd.u[j + 1][k];
            inverse.m_elements[i][j] = sum;
        }
    }
    condition = isZero    ? VFIL_CONDITION_SINGULAR
                : isSmall ? VFIL_CONDITION_NEAR_SINGULAR
                          : VFIL_CONDITION_WELL;
    return inverse;
}

vfILMatrix vfILMatrix::SolveSystem(const vfILMatrix& b, vfILMatrixCondition& condition, bool wantCondition,
                                   vfILMatrixNorm norm, double* conditionOut) const noexcept
{
    const vfILMatrix inverse = PseudoInverse(condition);
    if (wantCondition && conditionOut != nullptr) *conditionOut = ConditionNumber(norm);
    return inverse * b;
}

double vfILMatrix::Norm(vfILMatrixNorm norm) const noexcept
{
    if (!m_valid) return 0;
    const auto absolute = [this](long i, long j) { return std::fabs(m_elements[i][j]); };
    switch (norm) {
    case VFIL_NORM_COLUMN_SUM:
        return Greatest(m_cols, [&](long j) {
            double sum = 0;
            for (long i = 0; i < m_rows; ++i)
                sum += absolute(i, j);
            return sum;
        });
    case VFIL_NORM_SPECTRAL: {
        Svd svd;
        if (svd.Decompose(*this) == SvdOutcome::kNothing) return 0;
        const long largest = svd.Largest();
        return largest > 0 ? svd.w[largest] : -HUGE_VAL;
    }
    case VFIL_NORM_ROW_SUM:
        return Greatest(m_rows, [&](long i) {
            double sum = 0;
            for (long j = 0; j < m_cols; ++j)
                sum += absolute(i, j);
            return sum;
        });
    default: {
        double sum = 0;
        for (long i = 0; i < m_rows; ++i)
            for (long j = 0; j < m_cols; ++j)
                sum += Square(m_elements[i][j]);
        return std::sqrt(sum);
    }
    }
}

double vfILMatrix::ConditionNumber(vfILMatrixNorm norm) const noexcept
{
    vfILMatrixCondition condition = VFIL_CONDITION_WELL;
    const vfILMatrix inverse = PseudoInverse(condition);
    if (condition == VFIL_CONDITION_SINGULAR) return HUGE_VAL;
    return Norm(norm) * inverse.Norm(norm);
}

long vfILMatrix::Rank() const noexcept
{
    return CountSingularValues(*this, [](double value) { return std::fabs(value) != 0; });
}

long vfILMatrix::EffectiveRank(double tolerance) const noexcept
{
    return CountSingularValues(*this, [tolerance](double value) { return std::fabs(value) >= tolerance; });
}

bool vfILMatrix::IsSeparable() const noexcept
{
    return EffectiveRank(m_epsilon) == 1;
}

vfILStatus vfILMatrix::SeparateIntoTensorProduct(vfILMatrix& column, vfILMatrix& row) const noexcept
{
    Svd svd;
    if (svd.Decompose(*this) != SvdOutcome::kConverged) return VFIL_FAILURE;
    const long k = svd.Largest();
    if (k == 0) return VFIL_FAILURE;
    column.Resize(svd.rows, 1);
    row.Resize(1, svd.cols);
    if (!column.m_valid || !row.m_valid) {
        column.Release();
        row.Release();
        return VFIL_FAILURE;
    }
    const double root = std::sqrt(svd.w[k]);
    for (long i = 0; i < svd.rows; ++i)
        column.m_elements[i][0] = svd.u[i + 1][k] * root;
    for (long j = 0; j < svd.cols; ++j)
        row.m_elements[0][j] = svd.v[j + 1][k] * root;
    return VFIL_SUCCESS;
}
