/// \file
/// Dense matrices of doubles, with the linear algebra that rests on the thin singular value decomposition.
#pragma once

#include <vfil/error.h>
#include <vfil/export.h>

#include <cstdint>
#include <initializer_list>

/// The norms of a matrix. Any other value than these is the Frobenius norm.
enum vfILMatrixNorm : int {
    VFIL_NORM_COLUMN_SUM = 0, ///< the 1-norm: the largest column sum of absolute values
    VFIL_NORM_SPECTRAL = 1,   ///< the 2-norm: the largest singular value
    VFIL_NORM_ROW_SUM = 2,    ///< the infinity norm: the largest row sum of absolute values
    VFIL_NORM_FROBENIUS = 3,  ///< the root of the sum of squares
};

/// How an inversion went.
enum vfILMatrixCondition : int {
    VFIL_CONDITION_WELL = 0,          ///< every singular value was inverted
    VFIL_CONDITION_NEAR_SINGULAR = 1, ///< at least one was within epsilon of 0, and was taken for 0
    VFIL_CONDITION_SINGULAR = 2, ///< at least one was exactly 0, or the decomposition failed; a wide matrix
                                 ///< reports this or the one above
};

/// A matrix of rows by columns. Rows and columns count from 0.
///
/// It is valid once it has elements; an empty one has no rows and no columns. What cannot be computed, since
/// memory runs out or an operand is empty, is an empty matrix, or 0 where the result is a number. Operands
/// whose sizes do not fit give the same in a release build, and stop a debug build by an assertion.
///
/// Results have the default epsilon. All sums run in the order of the indices, so that a result does not
/// depend on the machine. Infinite and NaN elements spread by the rules of IEEE arithmetic, and what rests on
/// the decomposition of such a matrix fails. Matrices of a scale far from 1 are decomposed as those near it:
/// their elements are divided by a power of two first.
class VFIL_API vfILMatrix {
public:
    /// Empty.
    vfILMatrix() noexcept = default;
    /// All zero. For the sizes see Resize.
    vfILMatrix(long rows, long cols) noexcept;
    /// \param rowMajor rows * cols values, row after row. Null gives an empty matrix.
    vfILMatrix(const double* rowMajor, long rows, long cols) noexcept;
    /// \param rowPointers As many rows, of cols values each. Null gives an empty matrix.
    vfILMatrix(const double* const* rowPointers, long rows, long cols) noexcept;
    /// A deep copy, epsilon included; empty when memory runs out.
    vfILMatrix(const vfILMatrix& other) noexcept;
    vfILMatrix& operator=(const vfILMatrix& other) noexcept;
    virtual ~vfILMatrix();

    /// The same as Resize.
    void SetSize(long rows, long cols) noexcept;
    /// Makes a zero matrix of that size: old contents go, also when the size stays. A number of rows or
    /// columns below 1 or beyond 32 bits, and a failed allocation, leave an empty matrix.
    void Resize(long rows, long cols) noexcept;

    /// An element. The indices are not checked.
    double& operator()(long row, long col) noexcept { return m_elements[row][col]; }
    double operator()(long row, long col) const noexcept { return m_elements[row][col]; }
    /// The row pointers, null when empty. They may be swapped; each row stays an allocation of the matrix.
    double** GetElemsPtr() noexcept { return m_elements; }
    const double* const* GetElemsPtr() const noexcept { return m_elements; }
    long GetNumRows() const noexcept { return m_rows; }
    long GetNumCols() const noexcept { return m_cols; }
    bool IsValid() const noexcept { return m_valid; }
    bool IsNotValid() const noexcept { return !m_valid; }
    /// \param epsilon The distance below which two values are nearly equal, and a value nearly 0. Default
    /// 1e-6.
    void SetEpsilon(double epsilon) noexcept { m_epsilon = epsilon; }

    /// Ones on the main diagonal, zeros elsewhere; of any shape.
    void SetToIdentity() noexcept;
    void SetToConstant(double value) noexcept;
    void SetToZero() noexcept;
    /// Puts \p values on the main diagonal and zeros elsewhere.
    /// \param values min(rows, cols) of them.
    /// \param count  Not looked at: the diagonal's length decides.
    void MakeDiag(const double* values, long count) noexcept;
    /// \param out Receives min(rows, cols) values.
    void GetDiag(double* out) const noexcept;

    vfILMatrix operator+(const vfILMatrix& other) const noexcept;
    vfILMatrix operator-(const vfILMatrix& other) const noexcept;
    vfILMatrix operator*(double factor) const noexcept;
    vfILMatrix operator/(double divisor) const noexcept;
    /// \param other Must have as many rows as this has columns.
    vfILMatrix operator*(const vfILMatrix& other) const noexcept;
    vfILMatrix Transpose() const noexcept;
    double Mean() const noexcept;
    /// The sum of the main diagonal, of any shape.
    double Trace() const noexcept;
    /// The trace of the transpose times \p other, which must have as many rows.
    double InnerProduct(const vfILMatrix& other) const noexcept;
    /// The inner product over the product of the two Frobenius norms, -1 .. 1 for operands of one size. NaN
    /// when one of them is zero.
    double CorrelationCoefficient(const vfILMatrix& other) const noexcept;

    bool IsSquare() const noexcept { return m_rows == m_cols; }
    /// Square, and elements across the diagonal nearly equal.
    bool IsSymmetric() const noexcept;
    /// The product with the transpose is nearly the identity, so that a wide matrix of orthonormal rows is
    /// too.
    bool IsOrthogonal() const noexcept;
    /// Exactly one singular value is epsilon or more: a column times a row. An absolute measure, so that a
    /// small matrix may want a small epsilon.
    bool IsSeparable() const noexcept;
    /// Of one size, and all elements nearly equal by this matrix's epsilon. A matrix equals itself.
    bool operator==(const vfILMatrix& other) const noexcept;

    /// This (m by n) = u * w * transpose of v, by Householder reduction to bidiagonal form and implicitly
    /// shifted QR (Golub and Reinsch, 1970).
    ///
    /// \param u m by n; the columns whose values in w are not (nearly) 0 are orthonormal.
    /// \param w n by n, the singular values on the diagonal: none negative, in no order; infinite where a
    ///          double holds it no more.
    /// \param v n by n, orthogonal.
    /// \return  Failure, with the results as they were, when one value takes more than 30 iterations, an
    ///          element is not finite, memory runs out or this is empty; with empty results when memory for
    ///          these runs out.
    vfILStatus ThinSVD(vfILMatrix& u, vfILMatrix& w, vfILMatrix& v) const noexcept;
    /// The eigenvalues and eigenvectors of a symmetric matrix by cyclic Jacobi rotations. Only the diagonal
    /// and what is above it are read.
    ///
    /// \param values  A column of the n eigenvalues, in no order.
    /// \param vectors n by n; column i is of length 1 and belongs to value i.
    /// \return        Failure as ThinSVD, here after 50 sweeps.
    vfILStatus SymmetricEigensolve(vfILMatrix& values, vfILMatrix& vectors) const noexcept;
    /// The inverse of a square matrix; of a singular one the pseudo-inverse. Never fails outright.
    vfILMatrix Inverse(vfILMatrixCondition& condition) const noexcept;
    /// The Moore-Penrose pseudo-inverse, n by m. Singular values within epsilon of 0 count as 0. An empty
    /// result reports a singular matrix, and so does a decomposition that failed: the result is made of what
    /// it had by then, and is NaN when an element is not finite.
    vfILMatrix PseudoInverse(vfILMatrixCondition& condition) const noexcept;
    /// The x of least length among those that bring this * x closest to \p b.
    ///
    /// \param b             As many rows as this; a problem each column.
    /// \param condition     That of the inversion.
    /// \param wantCondition Asks for the condition number too, which costs more decompositions.
    /// \param norm          The norm of the condition number.
    /// \param conditionOut  Receives the condition number; may be null.
    vfILMatrix SolveSystem(const vfILMatrix& b, vfILMatrixCondition& condition, bool wantCondition,
                           vfILMatrixNorm norm, double* conditionOut) const noexcept;
    /// NaN when an element is NaN, else infinite when one is or when a double does not hold the norm. The
    /// spectral norm of a decomposition that failed is the largest value it had by then.
    double Norm(vfILMatrixNorm norm) const noexcept;
    /// The norm times the norm of the (pseudo-)inverse. HUGE_VAL when a singular value is exactly 0 or the
    /// decomposition fails; one that is only nearly 0 leaves a finite number, since the inverse leaves it
    /// out.
    double ConditionNumber(vfILMatrixNorm norm) const noexcept;
    /// The number of singular values that are not exactly 0. Rounding raises it: EffectiveRank is what
    /// serves.
    long Rank() const noexcept;
    /// The number of singular values of \p tolerance and more; 0 also when the decomposition fails.
    long EffectiveRank(double tolerance) const noexcept;
    /// The nearest product of a column (rows by 1) and a row (1 by cols): from the largest singular value,
    /// whose root each of them takes. \return Failure as ThinSVD.
    vfILStatus SeparateIntoTensorProduct(vfILMatrix& column, vfILMatrix& row) const noexcept;
    /// Does nothing: the library writes nowhere.
    void OutputToDebug() const noexcept;

protected:
    /// |a|, or -|a| unless b >= 0.
    static double Sign(double a, double b) noexcept;
    /// The root of a * a + b * b, without overflow on the way.
    static double Pythagoras(double a, double b) noexcept;
    static double Square(double x) noexcept;
    bool IsVerySmall(double x) const noexcept;
    bool IsAlmostEqual(double a, double b) const noexcept;
    /// Turns the elements (i, j) and (k, l) by the angle of sine \p s; \p tau is the tangent of its half.
    static void JacobiRotate(double** a, double s, double tau, long i, long j, long k, long l) noexcept;
    /// The decomposition on arrays whose rows and columns run from 1.
    ///
    /// \param a m by n, of elements of 1e-90 .. 1e90 or 0; becomes U.
    /// \param w Receives the n singular values, from w[1].
    /// \param v Receives V, n by n.
    /// \return  Failure after 30 iterations on one value, or when memory runs out.
    static vfILStatus ThinSVDUnitOffsetInPlace(double** a, long m, long n, double* const w,
                                               double** v) noexcept;
    /// The eigenproblem on arrays whose rows and columns run from 1, of as many rows as this matrix.
    ///
    /// \param a Symmetric; what is above the diagonal is destroyed.
    /// \param d Receives the eigenvalues, from d[1].
    /// \param v Receives the eigenvectors, one a column.
    /// \return  Failure after 50 sweeps, or when memory runs out.
    vfILStatus DestructiveJacobiUnitOffset(double** a, double* const d, double** v) const noexcept;

private:
    void Release() noexcept;
    static bool AreWhole(std::initializer_list<vfILMatrix*> results) noexcept;

    double** m_elements = nullptr; // a block of row pointers, and a block each row
    std::int32_t m_rows = 0;
    std::int32_t m_cols = 0;
    bool m_valid = false;
    double m_epsilon = 1e-6;
};
