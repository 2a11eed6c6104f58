/// \file
/// Inverses, norms and separation from the decomposition.

#include "il/loops/numeric/matrixsolve.h"

#include <algorithm>
#include <limits>

namespace vfil {

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

/// The largest of count values, none of which is negative; NaN when one of them is.
template <class Value>
double Greatest(long count, Value value)
{
    double greatest = 0;
    for (long i = 0; i < count; ++i) {
        const double candidate = value(i);
        if (std::isnan(candidate)) return candidate;
        greatest = std::max(greatest, candidate);
    }
    return greatest;
}

double GreatestElement(const vfILMatrix& matrix)
{
    return vfil::GreatestElement(matrix.GetElemsPtr(), matrix.GetNumRows(), matrix.GetNumCols());
}

double SpectralNorm(const vfILMatrix& matrix)
{
    const double greatest = GreatestElement(matrix);
    if (!std::isfinite(greatest)) return greatest;
    Svd svd;
    if (svd.Decompose(matrix) == SvdOutcome::kNothing) return 0;
    const long largest = svd.Largest();
    return largest > 0 ? svd.Value(largest) : kNaN;
}

double FrobeniusNorm(const vfILMatrix& matrix)
{
    const int exponent = ScaleExponent(GreatestElement(matrix));
    double sum = 0;
    for (long i = 0; i < matrix.GetNumRows(); ++i)
        for (long j = 0; j < matrix.GetNumCols(); ++j) {
            const double value = std::ldexp(matrix(i, j), -exponent);
            sum += value * value;
        }
    return std::ldexp(std::sqrt(sum), exponent);
}

} // namespace

SvdOutcome Svd::Decompose(const vfILMatrix& matrix) noexcept
{
    if (matrix.IsNotValid()) return SvdOutcome::kNothing;
    rows = matrix.GetNumRows();
    cols = matrix.GetNumCols();
    if (!m_storage.Allocate(rows + cols + 1, cols)) return SvdOutcome::kNothing;
    u = m_storage.Get();
    v = u + rows;
    w = v[cols + 1];
    const double greatest = GreatestElement(matrix);
    if (!std::isfinite(greatest)) {
        for (long i = 1; i <= rows + cols + 1; ++i)
            std::fill_n(u[i] + 1, cols, kNaN);
        return SvdOutcome::kFailed;
    }
    exponent = ScaleExponent(greatest);
    m_storage.Copy(matrix.GetElemsPtr(), rows, cols, exponent);
    return DecomposeUnitOffset(u, rows, cols, w, v);
}

long Svd::Largest() const noexcept
{
    long index = 0;
    double largest = -HUGE_VAL;
    for (long k = 1; k <= cols; ++k) {
        if (std::isnan(w[k])) return 0;
        if (w[k] > largest) {
            largest = w[k];
            index = k;
        }
    }
    return index;
}

vfILMatrix PseudoInverse(const vfILMatrix& matrix, double epsilon, vfILMatrixCondition& condition) noexcept
{
    condition = VFIL_CONDITION_SINGULAR;
    Svd svd;
    const SvdOutcome outcome = svd.Decompose(matrix);
    if (outcome == SvdOutcome::kNothing) return {};
    vfILMatrix inverse(svd.cols, svd.rows);
    bool isZero = outcome != SvdOutcome::kConverged;
    bool isSmall = false;
    // The reciprocals take the place of the values, and V's rows are scaled by them.
    for (long k = 1; k <= svd.cols; ++k) {
        const double value = svd.w[k];
        const bool isDropped = value == 0 || std::fabs(svd.Value(k)) < epsilon;
        (value == 0 ? isZero : isSmall) |= isDropped;
        svd.w[k] = isDropped ? 0 : 1 / value;
    }
    for (long i = 0; i < inverse.GetNumRows(); ++i) {
        double* const scaled = svd.v[i + 1];
        for (long k = 1; k <= svd.cols; ++k)
            scaled[k] *= svd.w[k];
        for (long j = 0; j < inverse.GetNumCols(); ++j) {
            double sum = 0;
            for (long k = 1; k <= svd.cols; ++k)
                sum += scaled[k] * svd.u[j + 1][k];
            inverse(i, j) = std::ldexp(sum, -svd.exponent);
        }
    }
    if (inverse.IsValid() && !isZero)
        condition = isSmall ? VFIL_CONDITION_NEAR_SINGULAR : VFIL_CONDITION_WELL;
    return inverse;
}

double Norm(const vfILMatrix& matrix, vfILMatrixNorm norm) noexcept
{
    const long rows = matrix.GetNumRows();
    const long cols = matrix.GetNumCols();
    switch (norm) {
    case VFIL_NORM_COLUMN_SUM:
        return Greatest(cols, [&](long j) {
            double sum = 0;
            for (long i = 0; i < rows; ++i)
                sum += std::fabs(matrix(i, j));
            return sum;
        });
    case VFIL_NORM_SPECTRAL:
        return SpectralNorm(matrix);
    case VFIL_NORM_ROW_SUM:
        return Greatest(rows, [&](long i) {
            double sum = 0;
            for (long j = 0; j < cols; ++j)
                sum += std::fabs(matrix(i, j));
            return sum;
        });
    default:
        return FrobeniusNorm(matrix);
    }
}

double Correlation(const vfILMatrix& a, const vfILMatrix& b) noexcept
{
    // The result has no scale. The exponent's lower end has a reciprocal; a second turn brings the rest.
    const auto factor = [](const vfILMatrix& m) {
        return std::ldexp(1, -std::max(ScaleExponent(GreatestElement(m)), -1000));
    };
    const double ofA = factor(a);
    const double ofB = factor(b);
    if (ofA != 1 || ofB != 1) return Correlation(a * ofA, b * ofB);
    return a.InnerProduct(b) / (Norm(a, VFIL_NORM_FROBENIUS) * Norm(b, VFIL_NORM_FROBENIUS));
}

bool Separate(const vfILMatrix& matrix, vfILMatrix& column, vfILMatrix& row) noexcept
{
    Svd svd;
    if (svd.Decompose(matrix) != SvdOutcome::kConverged) return false;
    const long k = svd.Largest();
    if (k == 0) return false;
    column.Resize(svd.rows, 1);
    row.Resize(1, svd.cols);
    if (column.IsNotValid() || row.IsNotValid()) {
        column.Resize(0, 0);
        row.Resize(0, 0);
        return false;
    }
    const double root = std::ldexp(std::sqrt(svd.w[k]), svd.exponent / 2);
    for (long i = 0; i < svd.rows; ++i)
        column(i, 0) = svd.u[i + 1][k] * root;
    for (long j = 0; j < svd.cols; ++j)
        row(0, j) = svd.v[j + 1][k] * root;
    return true;
}

} // namespace vfil
