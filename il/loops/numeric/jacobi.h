/// \file
/// The symmetric eigenproblem by cyclic Jacobi rotations, on arrays with unit offset.
#pragma once

namespace vfil {

/// Turns the elements (i, j) and (k, l) by the angle of sine \p s; \p tau is the tangent of its half.
inline void JacobiRotate(double** a, double s, double tau, long i, long j, long k, long l)
{
    const double g = a[i][j];
    const double h = a[k][l];
    a[i][j] = g - s * (h + g * tau);
    a[k][l] = h + s * (g - h * tau);
}

/// \param a n by n; only the diagonal and what is above it are read, and the latter is destroyed.
/// \param d Receives the eigenvalues, from d[1].
/// \param v Receives the eigenvectors, one a column.
/// \return  False after 50 sweeps, or when memory runs out.
bool SolveByJacobi(double** a, long n, double* d, double** v) noexcept;

} // namespace vfil
