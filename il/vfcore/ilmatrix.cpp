/// \file
/// The matrix: storage, filling, arithmetic, comparisons, and the results of the solvers.

#include <vfil/matrix.h>

#include "il/loops/numeric/jacobi.h"
#include "il/loops/numeric/matrixsolve.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <limits>

using vfil::Svd;
using vfil::SvdOutcome;

namespace {

bool HaveOneSize(const vfILMatrix& a, const vfILMatrix& b)
{
    return a.GetNumRows() == b.GetNumRows() && a.GetNumCols() == b.GetNumCols();
}

/// A matrix whose elements are op(a's, b's).
template <class Op>
vfILMatrix Combined(const vfILMatrix& a, const vfILMatrix& b, Op op)
{
    assert(a.IsNotValid() || b.IsNotValid() || HaveOneSize(a, b));
    if (!HaveOneSize(a, b)) return {};
    vfILMatrix result(a.GetNumRows(), a.GetNumCols());
    for (long i = 0; i < result.GetNumRows(); ++i)
        for (long j = 0; j < result.GetNumCols(); ++j)
            result(i, j) = op(a(i, j), b(i, j));
    return result;
}

} // namespace

vfILMatrix::vfILMatrix(long rows, long cols) noexcept
{
    Resize(rows, cols);
}

vfILMatrix::vfILMatrix(const double* rowMajor, long rows, long cols) noexcept
{
    if (rowMajor == nullptr) return;
    Resize(rows, cols);
    for (long i = 0; i < m_rows; ++i)
        std::copy_n(rowMajor + i * cols, cols, m_elements[i]);
}

vfILMatrix::vfILMatrix(const double* const* rowPointers, long rows, long cols) noexcept
{
    if (rowPointers == nullptr) return;
    Resize(rows, cols);
    for (long i = 0; i < m_rows; ++i)
        std::copy_n(rowPointers[i], cols, m_elements[i]);
}

vfILMatrix::vfILMatrix(const vfILMatrix& other) noexcept
    : vfILMatrix(other.m_elements, other.m_rows, other.m_cols)
{
    m_epsilon = other.m_epsilon;
}

vfILMatrix& vfILMatrix::operator=(const vfILMatrix& other) noexcept
{
    if (this == &other) return *this;
    Resize(other.m_rows, other.m_cols);
    for (long i = 0; i < m_rows; ++i)
        std::copy_n(other.m_elements[i], m_cols, m_elements[i]);
    m_epsilon = other.m_epsilon;
    return *this;
}

vfILMatrix::~vfILMatrix()
{
    Release();
}

void vfILMatrix::Release() noexcept
{
    vfil::FreeRows(m_elements, m_rows);
    m_elements = nullptr;
    m_rows = m_cols = 0;
    m_valid = false;
}

void vfILMatrix::SetSize(long rows, long cols) noexcept
{
    Resize(rows, cols);
}

void vfILMatrix::Resize(long rows, long cols) noexcept
{
    if (m_valid && rows == m_rows && cols == m_cols) return SetToZero();
    Release();
    constexpr long kMost = std::numeric_limits<std::int32_t>::max();
    if (rows <= 0 || cols <= 0 || rows > kMost || cols > kMost) return;
    m_elements = vfil::MakeRows(rows, cols);
    if (m_elements == nullptr) return;
    m_rows = static_cast<std::int32_t>(rows);
    m_cols = static_cast<std::int32_t>(cols);
    m_valid = true;
}

void vfILMatrix::SetToIdentity() noexcept
{
    SetToZero();
    for (long i = 0; i < std::min(m_rows, m_cols); ++i)
        m_elements[i][i] = 1;
}

void vfILMatrix::SetToConstant(double value) noexcept
{
    for (long i = 0; i < m_rows; ++i)
        std::fill_n(m_elements[i], m_cols, value);
}

void vfILMatrix::SetToZero() noexcept
{
    SetToConstant(0);
}

void vfILMatrix::MakeDiag(const double* values, long /*count*/) noexcept
{
    SetToZero();
    for (long i = 0; i < std::min(m_rows, m_cols); ++i)
        m_elements[i][i] = values[i];
}

void vfILMatrix::GetDiag(double* out) const noexcept
{
    for (long i = 0; i < std::min(m_rows, m_cols); ++i)
        out[i] = m_elements[i][i];
}

vfILMatrix vfILMatrix::operator+(const vfILMatrix& other) const noexcept
{
    return Combined(*this, other, [](double a, double b) { return a + b; });
}

vfILMatrix vfILMatrix::operator-(const vfILMatrix& other) const noexcept
{
    return Combined(*this, other, [](double a, double b) { return a - b; });
}

vfILMatrix vfILMatrix::operator*(double factor) const noexcept
{
    return Combined(*this, *this, [factor](double a, double) { return a * factor; });
}

vfILMatrix vfILMatrix::operator/(double divisor) const noexcept
{
    return Combined(*this, *this, [divisor](double a, double) { return a / divisor; });
}

vfILMatrix vfILMatrix::operator*(const vfILMatrix& other) const noexcept
{
    assert(!m_valid || !other.m_valid || m_cols == other.m_rows);
    vfILMatrix product;
    if (!m_valid || !other.m_valid || m_cols != other.m_rows) return product;
    product.Resize(m_rows, other.m_cols);
    // Each element's sum runs over k in order; along the row it is contiguous.
    for (long i = 0; i < product.m_rows; ++i)
        for (long k = 0; k < m_cols; ++k) {
            const double factor = m_elements[i][k];
            const double* const from = other.m_elements[k];
            double* const to = product.m_elements[i];
            for (long j = 0; j < product.m_cols; ++j)
                to[j] += factor * from[j];
        }
    return product;
}

vfILMatrix vfILMatrix::Transpose() const noexcept
{
    vfILMatrix result(m_cols, m_rows);
    for (long i = 0; i < result.m_rows; ++i)
        for (long j = 0; j < result.m_cols; ++j)
            result.m_elements[i][j] = m_elements[j][i];
    return result;
}

double vfILMatrix::Mean() const noexcept
{
    if (!m_valid) return 0;
    double sum = 0;
    for (long i = 0; i < m_rows; ++i)
        for (long j = 0; j < m_cols; ++j)
            sum += m_elements[i][j];
    return sum / (static_cast<double>(m_rows) * m_cols);
}

double vfILMatrix::Trace() const noexcept
{
    double sum = 0;
    for (long i = 0; i < std::min(m_rows, m_cols); ++i)
        sum += m_elements[i][i];
    return sum;
}

double vfILMatrix::InnerProduct(const vfILMatrix& other) const noexcept
{
    assert(!m_valid || !other.m_valid || m_rows == other.m_rows);
    if (m_rows != other.m_rows) return 0;
    double trace = 0;
    for (long j = 0; j < std::min(m_cols, other.m_cols); ++j) {
        double sum = 0;
        for (long i = 0; i < m_rows; ++i)
            sum += m_elements[i][j] * other.m_elements[i][j];
        trace += sum;
    }
    return trace;
}

double vfILMatrix::CorrelationCoefficient(const vfILMatrix& other) const noexcept
{
    if (!m_valid || m_rows != other.m_rows) return InnerProduct(other);
    return vfil::Correlation(*this, other);
}

bool vfILMatrix::IsSymmetric() const noexcept
{
    if (!IsSquare()) return false;
    for (long i = 0; i < m_rows; ++i)
        for (long j = 0; j < i; ++j)
            if (!IsAlmostEqual(m_elements[i][j], m_elements[j][i])) return false;
    return true;
}

bool vfILMatrix::IsOrthogonal() const noexcept
{
    for (long i = 0; i < m_rows; ++i)
        for (long j = 0; j <= i; ++j) {
            double sum = 0;
            for (long k = 0; k < m_cols; ++k)
                sum += m_elements[i][k] * m_elements[j][k];
            if (!IsAlmostEqual(sum, i == j ? 1 : 0)) return false;
        }
    return true;
}

bool vfILMatrix::operator==(const vfILMatrix& other) const noexcept
{
    if (this == &other) return true;
    if (!HaveOneSize(*this, other)) return false;
    for (long i = 0; i < m_rows; ++i)
        for (long j = 0; j < m_cols; ++j)
            if (!IsAlmostEqual(m_elements[i][j], other.m_elements[i][j])) return false;
    return true;
}

double vfILMatrix::Sign(double a, double b) noexcept
{
    return vfil::Sign(a, b);
}

double vfILMatrix::Pythagoras(double a, double b) noexcept
{
    return vfil::Pythagoras(a, b);
}

double vfILMatrix::Square(double x) noexcept
{
    return x * x;
}

bool vfILMatrix::IsVerySmall(double x) const noexcept
{
    return -m_epsilon < x && x < m_epsilon;
}

bool vfILMatrix::IsAlmostEqual(double a, double b) const noexcept
{
    return IsVerySmall(a - b);
}

void vfILMatrix::JacobiRotate(double** a, double s, double tau, long i, long j, long k, long l) noexcept
{
    vfil::JacobiRotate(a, s, tau, i, j, k, l);
}

vfILStatus vfILMatrix::ThinSVDUnitOffsetInPlace(double** a, long m, long n, double* const w,
                                                double** v) noexcept
{
    return vfil::DecomposeUnitOffset(a, m, n, w, v) == SvdOutcome::kConverged ? VFIL_SUCCESS : VFIL_FAILURE;
}

vfILStatus vfILMatrix::DestructiveJacobiUnitOffset(double** a, double* const d, double** v) const noexcept
{
    return vfil::SolveByJacobi(a, m_rows, d, v) ? VFIL_SUCCESS : VFIL_FAILURE;
}

/// Frees results of which not all are whole. \return Whether they are.
bool vfILMatrix::AreWhole(std::initializer_list<vfILMatrix*> results) noexcept
{
    if (std::ranges::all_of(results, &vfILMatrix::IsValid)) return true;
    for (vfILMatrix* result : results)
        result->Release();
    return false;
}

vfILStatus vfILMatrix::ThinSVD(vfILMatrix& u, vfILMatrix& w, vfILMatrix& v) const noexcept
{
    Svd svd;
    if (svd.Decompose(*this) != SvdOutcome::kConverged) return VFIL_FAILURE;
    u.Resize(svd.rows, svd.cols);
    w.Resize(svd.cols, svd.cols);
    v.Resize(svd.cols, svd.cols);
    if (!AreWhole({&u, &w, &v})) return VFIL_FAILURE;
    for (long i = 0; i < svd.rows; ++i)
        std::copy_n(svd.u[i + 1] + 1, svd.cols, u.m_elements[i]);
    for (long k = 1; k <= svd.cols; ++k)
        w.m_elements[k - 1][k - 1] = svd.Value(k);
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

vfILStatus vfILMatrix::SymmetricEigensolve(vfILMatrix& values, vfILMatrix& vectors) const noexcept
{
    assert(IsSquare());
    const long n = m_rows;
    vfil::UnitOffsetRows a;
    vfil::UnitOffsetRows v;
    const auto d = vfil::MakeArray<double>(static_cast<std::size_t>(n) + 1);
    if (!m_valid || !IsSquare() || d == nullptr || !a.Allocate(n, n) || !v.Allocate(n, n))
        return VFIL_FAILURE;
    const double greatest = vfil::GreatestOfUpperTriangle(m_elements, n);
    if (!std::isfinite(greatest)) return VFIL_FAILURE;
    const int exponent = vfil::ScaleExponent(greatest);
    a.Copy(m_elements, n, n, exponent);
    if (DestructiveJacobiUnitOffset(a.Get(), d.get(), v.Get()) != VFIL_SUCCESS) return VFIL_FAILURE;
    values.Resize(n, 1);
    vectors.Resize(n, n);
    if (!AreWhole({&values, &vectors})) return VFIL_FAILURE;
    for (long i = 0; i < n; ++i) {
        values.m_elements[i][0] = std::ldexp(d[i + 1], exponent);
        std::copy_n(v[i + 1] + 1, n, vectors.m_elements[i]);
    }
    return VFIL_SUCCESS;
}

vfILMatrix vfILMatrix::PseudoInverse(vfILMatrixCondition& condition) const noexcept
{
    return vfil::PseudoInverse(*this, m_epsilon, condition);
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
    return vfil::Norm(*this, norm);
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
    return vfil::CountSingularValues(*this, [](const Svd& svd, long k) { return svd.w[k] != 0; });
}

long vfILMatrix::EffectiveRank(double tolerance) const noexcept
{
    return vfil::CountSingularValues(*this,
                                     [=](const Svd& svd, long k) { return svd.Value(k) >= tolerance; });
}

bool vfILMatrix::IsSeparable() const noexcept
{
    return EffectiveRank(m_epsilon) == 1;
}

vfILStatus vfILMatrix::SeparateIntoTensorProduct(vfILMatrix& column, vfILMatrix& row) const noexcept
{
    return vfil::Separate(*this, column, row) ? VFIL_SUCCESS : VFIL_FAILURE;
}

void vfILMatrix::OutputToDebug() const noexcept
{}
