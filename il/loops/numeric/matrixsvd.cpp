/// \file
/// The decomposition of Golub and Reinsch. The Householder stages run along rows, the rotations along
/// columns, which are rows of transposed copies by then: so the inner loops are contiguous and each sum keeps
/// the order of its index, whatever the vector width.

#include "il/loops/numeric/matrixsvd.h"

#include "il/loops/numeric/matrixrows.h"

#include <algorithm>
#include <limits>

namespace vfil {

namespace {

constexpr int kMaxIterations = 30;

class Decomposition {
public:
    Decomposition(double** a, long m, long n, double* w, double** v) : m_a(a), m_m(m), m_n(n), m_w(w), m_v(v)
    {}

    bool Allocate() noexcept;
    void ReduceToBidiagonal();
    void AccumulateRight();
    void AccumulateLeft();
    /// \return Whether each value converged.
    bool Diagonalise();

private:
    double ReflectColumn(long i);
    double ReflectRow(long i);
    void AddProjections(double** x, long rows, long i, long firstRow, long firstCol);
    template <class Weight>
    void SumRows(double** x, long firstRow, long lastRow, long firstCol, Weight weight);

    bool IsNegligible(double value) const { return std::fabs(value) + m_anorm == m_anorm; }
    long FindBlock(long k, bool& cancel) const;
    void Cancel(long l, long k);
    void Sweep(long l, long k);
    static void RotateColumns(double* columns, long length, long j, long i, double c, double s);
    bool Converge(long k);

    double** m_a;
    long m_m, m_n;
    double* m_w;
    double** m_v;
    double m_anorm = 0;
    std::unique_ptr<double[]> m_scratch;
    double* m_superdiagonal = nullptr; // from index 1; the first is 0
    double* m_sums = nullptr;          // of each column, from index 1
    double* m_uColumns = nullptr;      // the columns of U and V without offset, one after the other
    double* m_vColumns = nullptr;
};

bool Decomposition::Allocate() noexcept
{
    const auto m = static_cast<std::size_t>(m_m);
    const auto n = static_cast<std::size_t>(m_n);
    m_scratch = MakeArray<double>(2 * (n + 1) + (m + n) * n);
    if (m_scratch == nullptr) return false;
    m_superdiagonal = m_scratch.get();
    m_sums = m_superdiagonal + n + 1;
    m_uColumns = m_sums + n + 1;
    m_vColumns = m_uColumns + m * n;
    return true;
}

/// m_sums[j] = the sum of weight(k) * x[k][j] over the rows k.
template <class Weight>
void Decomposition::SumRows(double** x, long firstRow, long lastRow, long firstCol, Weight weight)
{
    double* const sums = m_sums;
    std::fill(sums + firstCol, sums + m_n + 1, 0.0);
    for (long k = firstRow; k <= lastRow; ++k) {
        const double* const row = x[k];
        const double factor = weight(k);
        for (long j = firstCol; j <= m_n; ++j)
            sums[j] += factor * row[j];
    }
}

/// Adds column i, times what m_sums has for a column, to that column.
void Decomposition::AddProjections(double** x, long rows, long i, long firstRow, long firstCol)
{
    const double* const sums = m_sums;
    for (long k = firstRow; k <= rows; ++k) {
        double* const row = x[k];
        const double factor = row[i];
        for (long j = firstCol; j <= m_n; ++j)
            row[j] += sums[j] * factor;
    }
}

/// What is so small that its reciprocal may be no number counts as nothing, so that finite matrices have
/// finite decompositions: rounding leaves such remainders in matrices of deficient rank.
bool IsNothing(double scale)
{
    using Limits = std::numeric_limits<double>;
    return scale < Limits::min() / Limits::epsilon();
}

/// Clears column i below the diagonal. Beyond the last row there is nothing to sum. \return The diagonal
/// element.
double Decomposition::ReflectColumn(long i)
{
    double scale = 0;
    for (long k = i; k <= m_m; ++k)
        scale += std::fabs(m_a[k][i]);
    if (IsNothing(scale)) return 0;
    double s = 0;
    for (long k = i; k <= m_m; ++k) {
        m_a[k][i] /= scale;
        s += m_a[k][i] * m_a[k][i];
    }
    const double f = m_a[i][i];
    const double g = -Sign(std::sqrt(s), f);
    const double h = f * g - s;
    m_a[i][i] = f - g;
    SumRows(m_a, i, m_m, i + 1, [this, i](long k) { return m_a[k][i]; });
    for (long j = i + 1; j <= m_n; ++j)
        m_sums[j] /= h;
    AddProjections(m_a, m_m, i, i, i + 1);
    for (long k = i; k <= m_m; ++k)
        m_a[k][i] *= scale;
    return scale * g;
}

/// Clears row i beyond the superdiagonal. \return The superdiagonal element.
double Decomposition::ReflectRow(long i)
{
    if (i > m_m || i == m_n) return 0;
    const long l = i + 1;
    double* const own = m_a[i];
    double scale = 0;
    for (long k = l; k <= m_n; ++k)
        scale += std::fabs(own[k]);
    if (IsNothing(scale)) return 0;
    double s = 0;
    for (long k = l; k <= m_n; ++k) {
        own[k] /= scale;
        s += own[k] * own[k];
    }
    const double f = own[l];
    const double g = -Sign(std::sqrt(s), f);
    const double h = f * g - s;
    own[l] = f - g;
    double* const scaled = m_sums;
    for (long k = l; k <= m_n; ++k)
        scaled[k] = own[k] / h;
    for (long j = l; j <= m_m; ++j) {
        double* const row = m_a[j];
        double sum = 0;
        for (long k = l; k <= m_n; ++k)
            sum += row[k] * own[k];
        for (long k = l; k <= m_n; ++k)
            row[k] += sum * scaled[k];
    }
    for (long k = l; k <= m_n; ++k)
        own[k] *= scale;
    return scale * g;
}

void Decomposition::ReduceToBidiagonal()
{
    double superdiagonal = 0;
    for (long i = 1; i <= m_n; ++i) {
        m_superdiagonal[i] = superdiagonal;
        m_w[i] = ReflectColumn(i);
        superdiagonal = ReflectRow(i);
        m_anorm = std::max(m_anorm, std::fabs(m_w[i]) + std::fabs(m_superdiagonal[i]));
    }
}

void Decomposition::AccumulateRight()
{
    for (long i = m_n; i >= 1; --i) {
        const long l = i + 1;
        const double g = i < m_n ? m_superdiagonal[l] : 0;
        if (g != 0) {
            const double* const own = m_a[i];
            // Two divisions, since the product of the divisors may underflow.
            for (long j = l; j <= m_n; ++j)
                m_v[j][i] = own[j] / own[l] / g;
            SumRows(m_v, l, m_n, l, [own](long k) { return own[k]; });
            AddProjections(m_v, m_n, i, l, l);
        }
        for (long j = l; j <= m_n; ++j)
            m_v[i][j] = m_v[j][i] = 0;
        m_v[i][i] = 1;
    }
}

void Decomposition::AccumulateLeft()
{
    for (long i = std::min(m_m, m_n); i >= 1; --i) {
        const long l = i + 1;
        std::fill(m_a[i] + l, m_a[i] + m_n + 1, 0.0);
        if (m_w[i] == 0) {
            for (long k = i; k <= m_m; ++k)
                m_a[k][i] = 0;
        } else {
            const double g = 1 / m_w[i];
            SumRows(m_a, l, m_m, l, [this, i](long k) { return m_a[k][i]; });
            const double head = m_a[i][i];
            for (long j = l; j <= m_n; ++j)
                m_sums[j] = m_sums[j] / head * g;
            AddProjections(m_a, m_m, i, i, l);
            for (long k = i; k <= m_m; ++k)
                m_a[k][i] *= g;
        }
        m_a[i][i] += 1;
    }
}

/// From unit-offset rows to columns without offset, or back.
void CopyToColumns(double** rows, long numRows, long numCols, double* columns)
{
    for (long i = 0; i < numRows; ++i)
        for (long j = 0; j < numCols; ++j)
            columns[j * numRows + i] = rows[i + 1][j + 1];
}

void CopyFromColumns(const double* columns, long numRows, long numCols, double** rows)
{
    for (long i = 0; i < numRows; ++i)
        for (long j = 0; j < numCols; ++j)
            rows[i + 1][j + 1] = columns[j * numRows + i];
}

/// Turns the columns j and i, counted from 1.
void Decomposition::RotateColumns(double* columns, long length, long j, long i, double c, double s)
{
    double* const first = columns + (j - 1) * length;
    double* const second = columns + (i - 1) * length;
    for (long r = 0; r < length; ++r) {
        const double x = first[r];
        const double z = second[r];
        first[r] = x * c + z * s;
        second[r] = z * c - x * s;
    }
}

/// The first index of the block that ends at k and has no negligible superdiagonal element, or that follows a
/// negligible diagonal one: then \p cancel is set. The superdiagonal begins with a 0, so that 1 always will
/// do.
long Decomposition::FindBlock(long k, bool& cancel) const
{
    cancel = false;
    long l = k;
    for (; l > 1; --l) {
        if (IsNegligible(m_superdiagonal[l])) return l;
        cancel = IsNegligible(m_w[l - 1]);
        if (cancel) return l;
    }
    return l;
}

/// Brings the superdiagonal element l to 0, where the diagonal element l - 1 is negligible.
void Decomposition::Cancel(long l, long k)
{
    double c = 0;
    double s = 1;
    for (long i = l; i <= k; ++i) {
        const double f = s * m_superdiagonal[i];
        m_superdiagonal[i] *= c;
        if (IsNegligible(f)) return;
        const double g = m_w[i];
        m_w[i] = Pythagoras(f, g);
        const double h = 1 / m_w[i];
        c = g * h;
        s = -f * h;
        RotateColumns(m_uColumns, m_m, l - 1, i, c, s);
    }
}

/// One QR step on the block l .. k, with the shift from its last 2 by 2 minor.
void Decomposition::Sweep(long l, long k)
{
    double* const w = m_w;
    double* const e = m_superdiagonal;
    double x = w[l];
    double y = w[k - 1];
    double z = w[k];
    double g = e[k - 1];
    double h = e[k];
    double f = ((y - z) * (y + z) + (g - h) * (g + h)) / (2 * h * y);
    f = ((x - z) * (x + z) + h * (y / (f + Sign(Pythagoras(f, 1), f)) - h)) / x;
    double c = 1;
    double s = 1;
    for (long j = l; j < k; ++j) {
        const long i = j + 1;
        g = c * e[i];
        h = s * e[i];
        y = w[i];
        z = Pythagoras(f, h);
        e[j] = z;
        c = f / z;
        s = h / z;
        f = x * c + g * s;
        g = g * c - x * s;
        h = y * s;
        y *= c;
        RotateColumns(m_vColumns, m_n, j, i, c, s);
        z = Pythagoras(f, h);
        w[j] = z;
        if (z != 0) {
            z = 1 / z;
            c = f * z;
            s = h * z;
        }
        f = c * g + s * y;
        x = c * y - s * g;
        RotateColumns(m_uColumns, m_m, j, i, c, s);
    }
    e[l] = 0;
    e[k] = f;
    w[k] = x;
}

/// Iterates until element k of the diagonal is a singular value, and makes it positive.
bool Decomposition::Converge(long k)
{
    for (int iteration = 1; iteration <= kMaxIterations; ++iteration) {
        bool cancel = false;
        const long l = FindBlock(k, cancel);
        if (cancel) Cancel(l, k);
        if (l == k) {
            if (m_w[k] < 0) {
                m_w[k] = -m_w[k];
                double* const column = m_vColumns + (k - 1) * m_n;
                for (long j = 0; j < m_n; ++j)
                    column[j] = -column[j];
            }
            return true;
        }
        if (iteration < kMaxIterations) Sweep(l, k);
    }
    return false;
}

bool Decomposition::Diagonalise()
{
    CopyToColumns(m_a, m_m, m_n, m_uColumns);
    CopyToColumns(m_v, m_n, m_n, m_vColumns);
    long k = m_n;
    while (k >= 1 && Converge(k))
        --k;
    CopyFromColumns(m_uColumns, m_m, m_n, m_a);
    CopyFromColumns(m_vColumns, m_n, m_n, m_v);
    return k == 0;
}

} // namespace

SvdOutcome DecomposeUnitOffset(double** a, long m, long n, double* w, double** v) noexcept
{
    Decomposition decomposition(a, m, n, w, v);
    if (!decomposition.Allocate()) return SvdOutcome::kNothing;
    decomposition.ReduceToBidiagonal();
    decomposition.AccumulateRight();
    decomposition.AccumulateLeft();
    return decomposition.Diagonalise() ? SvdOutcome::kConverged : SvdOutcome::kFailed;
}

} // namespace vfil
