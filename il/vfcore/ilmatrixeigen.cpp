/// \file
/// The symmetric eigenproblem by cyclic Jacobi rotations.

#include <vfil/matrix.h>

#include "il/loops/numeric/matrixsvd.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#if defined(VFIL_TRACE)
#include <cstdio>
#endif

namespace {

constexpr int kMaxSweeps = 50;

/// Whether \p addend is lost in a sum with \p value.
bool IsLost(double addend, double value)
{
    return std::fabs(value) + addend == std::fabs(value);
}

/// The tangent of the angle that clears the element \p a between diagonal elements that differ by \p h.
double Tangent(double a, double h, double g)
{
    if (IsLost(g, h)) return a / h;
    const double theta = 0.5 * h / a;
    const double t = 1 / (std::fabs(theta) + std::sqrt(1 + theta * theta));
    return theta < 0 ? -t : t;
}

double SumAboveDiagonal(double** a, long n)
{
    double sum = 0;
    for (long p = 1; p < n; ++p)
        for (long q = p + 1; q <= n; ++q)
            sum += std::fabs(a[p][q]);
    return sum;
}

} // namespace

void vfILMatrix::JacobiRotate(double** a, double s, double tau, long i, long j, long k, long l) noexcept
{
    const double g = a[i][j];
    const double h = a[k][l];
    a[i][j] = g - s * (h + g * tau);
    a[k][l] = h + s * (g - h * tau);
}

/// Clears a[p][q]. \p z gathers what the diagonal \p d changes by.
void vfILMatrix::ClearByRotation(double** a, double* d, double* z, double** v, long p, long q) const noexcept
{
    const double difference = d[q] - d[p];
    const double t = Tangent(a[p][q], difference, 100 * std::fabs(a[p][q]));
    const double c = 1 / std::sqrt(1 + t * t);
    const double s = t * c;
    const double tau = s / (1 + c);
    const double h = t * a[p][q];
    z[p] -= h;
    z[q] += h;
    d[p] -= h;
    d[q] += h;
    a[p][q] = 0;
    for (long j = 1; j < p; ++j)
        JacobiRotate(a, s, tau, j, p, j, q);
    for (long j = p + 1; j < q; ++j)
        JacobiRotate(a, s, tau, p, j, j, q);
    for (long j = q + 1; j <= m_rows; ++j)
        JacobiRotate(a, s, tau, p, j, q, j);
    for (long j = 1; j <= m_rows; ++j)
        JacobiRotate(v, s, tau, j, p, j, q);
}

vfILStatus vfILMatrix::DestructiveJacobiUnitOffset(double** a, double* const d, double** v) const noexcept
{
    const long n = m_rows;
    const auto b = vfil::MakeArray<double>(static_cast<std::size_t>(n) + 1);
    const auto z = vfil::MakeArray<double>(static_cast<std::size_t>(n) + 1);
    if (b == nullptr || z == nullptr) return VFIL_FAILURE;
    for (long p = 1; p <= n; ++p) {
        std::fill(v[p] + 1, v[p] + n + 1, 0.0);
        v[p][p] = 1;
        b[p] = d[p] = a[p][p];
        z[p] = 0;
    }
    for (int sweep = 1; sweep <= kMaxSweeps; ++sweep) {
        const double sum = SumAboveDiagonal(a, n);
        if (sum == 0) return VFIL_SUCCESS;
        const double threshold = sweep < 4 ? 0.2 * sum / static_cast<double>(n * n) : 0;
        for (long p = 1; p < n; ++p)
            for (long q = p + 1; q <= n; ++q) {
                const double g = 100 * std::fabs(a[p][q]);
                if (sweep > 4 && IsLost(g, d[p]) && IsLost(g, d[q]))
                    a[p][q] = 0;
                else if (std::fabs(a[p][q]) > threshold)
                    ClearByRotation(a, d, z.get(), v, p, q);
            }
        for (long p = 1; p <= n; ++p) {
            b[p] += z[p];
            d[p] = b[p];
            z[p] = 0;
        }
    }
#if defined(VFIL_TRACE)
    std::fputs("ERROR! Too many iterations in routine Jacobi iteration routine!!!\n", stderr);
#endif
    return VFIL_FAILURE;
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
    for (long i = 0; i < n; ++i)
        std::copy_n(m_elements[i], n, a[i + 1] + 1);
    if (DestructiveJacobiUnitOffset(a.Get(), d.get(), v.Get()) != VFIL_SUCCESS) return VFIL_FAILURE;
    values.Resize(n, 1);
    vectors.Resize(n, n);
    if (!values.m_valid || !vectors.m_valid) {
        values.Release();
        vectors.Release();
        return VFIL_FAILURE;
    }
    for (long i = 0; i < n; ++i) {
        values.m_elements[i][0] = d[i + 1];
        std::copy_n(v[i + 1] + 1, n, vectors.m_elements[i]);
    }
    return VFIL_SUCCESS;
}
