/// \file
/// Rows and their scale.

#include "il/loops/numeric/matrixrows.h"

#include <algorithm>

namespace vfil {

void FreeRows(double** rows, long count) noexcept
{
    for (long i = 0; i < count; ++i)
        delete[] rows[i];
    delete[] rows;
}

double** MakeRows(long rows, long cols) noexcept
{
    std::unique_ptr<double*[]> pointers = MakeArray<double*>(static_cast<std::size_t>(rows));
    if (pointers == nullptr) return nullptr;
    for (long i = 0; i < rows; ++i) {
        pointers[i] = MakeArray<double>(static_cast<std::size_t>(cols)).release();
        if (pointers[i] == nullptr) {
            FreeRows(pointers.release(), i);
            return nullptr;
        }
        std::fill_n(pointers[i], cols, 0.0);
    }
    return pointers.release();
}

bool UnitOffsetRows::Allocate(long rows, long cols) noexcept
{
    const auto numRows = static_cast<std::size_t>(rows);
    const auto rowLength = static_cast<std::size_t>(cols) + 1;
    m_rows = MakeArray<double*>(numRows + 1);
    m_values = MakeArray<double>((numRows + 1) * rowLength);
    if (m_rows == nullptr || m_values == nullptr) return false;
    for (std::size_t i = 0; i <= numRows; ++i)
        m_rows[i] = m_values.get() + i * rowLength;
    return true;
}

void UnitOffsetRows::Copy(const double* const* rows, long numRows, long numCols, int exponent) noexcept
{
    for (long i = 0; i < numRows; ++i)
        std::copy_n(rows[i], numCols, m_rows[i + 1] + 1);
    if (exponent == 0) return;
    for (long i = 1; i <= numRows; ++i)
        for (long j = 1; j <= numCols; ++j)
            m_rows[i][j] = std::ldexp(m_rows[i][j], -exponent);
}

double GreatestElement(const double* const* rows, long numRows, long numCols) noexcept
{
    double greatest = 0;
    for (long i = 0; i < numRows; ++i)
        for (long j = 0; j < numCols; ++j) {
            const double value = std::fabs(rows[i][j]);
            if (std::isnan(value)) return value;
            if (value > greatest) greatest = value;
        }
    return greatest;
}

double GreatestOfUpperTriangle(const double* const* rows, long n) noexcept
{
    double greatest = 0;
    for (long i = 0; i < n; ++i) {
        const double* const row = rows[i] + i;
        const double own = GreatestElement(&row, 1, n - i);
        if (std::isnan(own)) return own;
        greatest = std::max(greatest, own);
    }
    return greatest;
}

int ScaleExponent(double greatest) noexcept
{
    const bool isOrdinary = greatest >= 0x1p-300 && greatest <= 0x1p300;
    if (isOrdinary || greatest == 0 || !std::isfinite(greatest)) return 0;
    return std::ilogb(greatest) / 2 * 2;
}

} // namespace vfil
