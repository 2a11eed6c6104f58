/// \file
/// The cyclic Jacobi method.

#include "il/loops/numeric/jacobi.h"

#include "il/loops/numeric/matrixrows.h"

#include <algorithm>
#include <cmath>
#if defined(VFIL_TRACE)
#include <cstdio>
#endif

namespace vfil {

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

/// Clears a[p][q]. \p z gathers what the diagonal \p d changes by.
void ClearByRotation(double** a, long n, double* d, double* z, double** v, long p, long q)
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
    for (long j = q + 1; j <= n; ++j)
        JacobiRotate(a, s, tau, p, j, q, j);
    for (long j = 1; j <= n; ++j)
        JacobiRotate(v, s, tau, j, p, j, q);
}

} // namespace

bool SolveByJacobi(double** a, long n, double* d, double** v) noexcept
{
    const auto b = MakeArray<double>(static_cast<std::size_t>(n) + 1);
    const auto z = MakeArray<double>(static_cast<std::size_t>(n) + 1);
    if (b == nullptr || z == nullptr) return false;
    for (long p = 1; p <= n; ++p) {
        std::fill(v[p] + 1, v[p] + n + 1, 0.0);
        v[p][p] = 1;
        b[p] = d[p] = a[p][p];
        z[p] = 0;
    }
    for (int sweep = 1; sweep <= kMaxSweeps; ++sweep) {
        const double sum = SumAboveDiagonal(a, n);
        if (sum == 0) return true;
        const double threshold = sweep < 4 ? 0.2 * sum / static_cast<double>(n * n) : 0;
        for (long p = 1; p < n; ++p)
            for (long q = p + 1; q <= n; ++q) {
                const double g = 100 * std::fabs(a[p][q]);
                if (sweep > 4 && IsLost(g, d[p]) && IsLost(g, d[q]))
                    a[p][q] = 0;
                else if (std::fabs(a[p][q]) > threshold)
                    ClearByRotation(a, n, d, z.get(), v, p, q);
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
    return false;
}

} // namespace vfil
