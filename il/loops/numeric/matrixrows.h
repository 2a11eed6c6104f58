/// \file
/// What matrices and their decompositions stand on: the rows of a matrix, arrays with unit offset (rows and
/// columns run from 1 and leave element 0 unused), the scale of both, and small arithmetic.
#pragma once

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

/// Zeroed rows, each an allocation of its own, for FreeRows. Null when memory runs out.
double** MakeRows(long rows, long cols) noexcept;
void FreeRows(double** rows, long count) noexcept;

/// Rows with unit offset in one block.
class UnitOffsetRows {
public:
    /// Their elements are uninitialised. \return Whether memory sufficed.
    bool Allocate(long rows, long cols) noexcept;
    double** Get() noexcept { return m_rows.get(); }
    /// Takes a matrix' rows without offset, each element divided by 2 to the power of \p exponent.
    void Copy(const double* const* rows, long numRows, long numCols, int exponent) noexcept;
    const double* operator[](long row) const noexcept { return m_rows[row]; }
    double* operator[](long row) noexcept { return m_rows[row]; }

private:
    std::unique_ptr<double*[]> m_rows;
    std::unique_ptr<double[]> m_values;
};

/// The greatest absolute value of rows without offset; NaN when one of them is.
double GreatestElement(const double* const* rows, long numRows, long numCols) noexcept;

/// The same of the diagonal and what is above it.
double GreatestOfUpperTriangle(const double* const* rows, long n) noexcept;

/// The power of two by which numbers of that size are divided before squares and products are made of them,
/// which would leave the range of a double otherwise. It is 0 over the ordinary range, where results then are
/// what they would be without scaling to the last bit; and even, so that a root can be scaled back.
int ScaleExponent(double greatest) noexcept;

} // namespace vfil
