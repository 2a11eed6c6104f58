/// \file
/// The singular value decomposition behind every solver of vfILMatrix, on arrays with unit offset: rows and
/// columns run from 1, and element 0 of each is unused.
#pragma once

#include <vfil/matrix.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

namespace vfil {

inline double Sign(double a, double b)
{
    return b >= 0 ? std::fabs(a) : -std::fabs(a);
}

inline double Pythagoras(double a, double b)
{
    const double x = std::fabs(a);
    const double y = std::fabs(b);
    const double larger = x > y ? x : y;
    if (larger == 0) return 0;
    const double ratio = (x > y ? y : x) / larger;
    return larger * std::sqrt(1 + ratio * ratio);
}

/// Room for \p count values; null when there is none.
template <class T>
std::unique_ptr<T[]> MakeArray(std::size_t count) noexcept
{
    if (count > PTRDIFF_MAX / sizeof(T)) return nullptr;
    return std::unique_ptr<T[]>(new (std::nothrow) T[count]);
}

/// Rows with unit offset in one block.
class UnitOffsetRows {
public:
    /// Their elements are uninitialised. \return Whether memory sufficed.
    bool Allocate(long rows, long cols) noexcept;
    double** Get() noexcept { return m_rows.get(); }
    const double* operator[](long row) const noexcept { return m_rows[row]; }
    double* operator[](long row) noexcept { return m_rows[row]; }

private:
    std::unique_ptr<double*[]> m_rows;
    std::unique_ptr<double[]> m_values;
};

enum class SvdOutcome {
    kConverged,
    kTooManyIterations, ///< the arrays hold what stood by then
    kNothing,           ///< memory ran out, or there is nothing to decompose
};

/// Decomposes a (m by n) = U diag(w) V^T: \p a becomes U, \p v receives V.
SvdOutcome DecomposeUnitOffset(double** a, long m, long n, double* w, double** v) noexcept;

/// A copy of a matrix, decomposed.
class Svd {
public:
    /// An empty matrix has nothing to decompose.
    SvdOutcome Decompose(const vfILMatrix& matrix) noexcept;
    /// The index of the largest singular value, the first of equals; 0 when all are NaN.
    long Largest() const noexcept;

    long rows = 0;
    long cols = 0;
    double** u = nullptr; ///< rows by cols
    double** v = nullptr; ///< cols by cols
    double* w = nullptr;  ///< cols values from w[1]

private:
    UnitOffsetRows m_storage; ///< of u, then v, then w
};

} // namespace vfil
