#include "support/allocations.h"

#include <vfil/matrix.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace {

using Matrix = vfILMatrix;

Matrix Random(std::mt19937& random, long rows, long cols, double scale = 1)
{
    std::uniform_real_distribution<double> values(-scale, scale);
    Matrix m(rows, cols);
    for (long i = 0; i < rows; ++i)
        for (long j = 0; j < cols; ++j)
            m(i, j) = values(random);
    return m;
}

Matrix Of(long rows, long cols, const std::vector<double>& rowMajor)
{
    return {rowMajor.data(), rows, cols};
}

Matrix Identity(long n)
{
    Matrix m(n, n);
    m.SetToIdentity();
    return m;
}

/// The greatest difference of an element, relative to \p scale; infinite for different sizes and for NaN.
double Distance(const Matrix& a, const Matrix& b, double scale = 1)
{
    if (a.GetNumRows() != b.GetNumRows() || a.GetNumCols() != b.GetNumCols()) return INFINITY;
    double greatest = 0;
    for (long i = 0; i < a.GetNumRows(); ++i)
        for (long j = 0; j < a.GetNumCols(); ++j) {
            const double distance = std::fabs(a(i, j) - b(i, j)) / scale;
            if (!(distance <= greatest)) greatest = std::isnan(distance) ? INFINITY : distance;
        }
    return greatest;
}

struct Shape {
    long rows, cols;
};
constexpr Shape kShapes[] = {{1, 1}, {1, 5}, {5, 1}, {2, 2},   {3, 3},
                             {4, 7}, {7, 4}, {9, 9}, {30, 12}, {12, 30}};

TEST(Matrix, SizesAndCopies)
{
    const double values[] = {1, 2, 3, 4, 5, 6};
    const double* const rows[] = {values + 3, values};
    Matrix m(rows, 2, 3);
    std::swap(m.GetElemsPtr()[0], m.GetElemsPtr()[1]);
    EXPECT_EQ(Distance(m, Matrix(values, 2, 3)), 0);
    m.SetEpsilon(10);
    const Matrix copy(m);
    m.Resize(2, 3);
    EXPECT_EQ(Distance(m, Matrix(2, 3)), 0) << "the same size loses the contents too";
    EXPECT_TRUE(copy == m && copy(0, 1) == 2) << "a deep copy, epsilon included";
    EXPECT_FALSE(Matrix(2, 3) == copy) << "the left one's epsilon decides";
    EXPECT_FALSE(copy == Matrix(3, 2));
    for (const Shape s : {Shape{0, 3}, {3, 0}, {-1, 2}, {2, LONG_MIN}, {1L << 32, 1}, {1, LONG_MAX}}) {
        m = copy;
        vfil::test::g_allocations = {};
        m.SetSize(s.rows, s.cols);
        EXPECT_EQ(vfil::test::g_allocations.count, 0) << "nothing of that size is asked for";
        EXPECT_TRUE(m.IsNotValid() && m.GetNumRows() + m.GetNumCols() == 0 && m.GetElemsPtr() == nullptr);
    }
}

TEST(Matrix, ArithmeticAgainstTheDefinitions)
{
    std::mt19937 random(1);
    for (const Shape& s : kShapes) {
        const Matrix a = Random(random, s.rows, s.cols), b = Random(random, s.rows, s.cols);
        const Matrix c = Random(random, s.cols, 3), turned = a.Transpose(), product = a * c;
        const Matrix sum = a + b, difference = a - b, twice = a * 2, third = a / 3;
        double all = 0, inner = 0, squares = 0;
        for (long i = 0; i < s.rows; ++i)
            for (long j = 0; j < s.cols; ++j) {
                EXPECT_TRUE(sum(i, j) == a(i, j) + b(i, j) && difference(i, j) == a(i, j) - b(i, j));
                EXPECT_TRUE(twice(i, j) == 2 * a(i, j) && third(i, j) == a(i, j) / 3 &&
                            turned(j, i) == a(i, j));
                all += a(i, j), inner += a(i, j) * b(i, j), squares += a(i, j) * a(i, j);
            }
        for (long i = 0; i < s.rows * 3; ++i) {
            double element = 0;
            for (long k = 0; k < s.cols; ++k)
                element += a(i / 3, k) * c(k, i % 3);
            EXPECT_EQ(product(i / 3, i % 3), element);
        }
        EXPECT_NEAR(a.Mean(), all / static_cast<double>(s.rows * s.cols), 1e-14);
        EXPECT_NEAR(a.InnerProduct(b), inner, 1e-13);
        EXPECT_NEAR(a.CorrelationCoefficient(a * -3), -1, 1e-14);
        EXPECT_NEAR(a.Norm(static_cast<vfILMatrixNorm>(77)), std::sqrt(squares), 1e-14);
    }
    Matrix m = Of(2, 3, {1, -2, 3, 4, 5, -6});
    EXPECT_EQ(m.Norm(VFIL_NORM_COLUMN_SUM), 9);
    EXPECT_EQ(m.Norm(VFIL_NORM_ROW_SUM), 15);
    EXPECT_DOUBLE_EQ(Of(2, 1, {3, 4}).Norm(VFIL_NORM_SPECTRAL), 5);
    const double diagonal[] = {7, 8};
    double got[] = {0, 0};
    m.MakeDiag(diagonal, 99);
    EXPECT_EQ(Distance(m, Of(2, 3, {7, 0, 0, 0, 8, 0})), 0);
    m.GetDiag(got);
    EXPECT_TRUE(got[0] == 7 && got[1] == 8 && m.Trace() == 15);
}

TEST(Matrix, Properties)
{
    EXPECT_TRUE(Of(2, 2, {1, 2, 2 + 9e-7, 1}).IsSymmetric());
    EXPECT_FALSE(Of(2, 2, {1, 2, 2 + 2e-6, 1}).IsSymmetric() || Matrix(2, 3).IsSymmetric());
    EXPECT_TRUE(Of(2, 2, {0.6, -0.8, 0.8, 0.6}).IsOrthogonal() && Of(1, 2, {0.6, 0.8}).IsOrthogonal());
    EXPECT_FALSE(Of(2, 1, {0.6, 0.8}).IsOrthogonal() || Of(2, 2, {1, 0, 0, 1.001}).IsOrthogonal());
}

TEST(Matrix, SvdTakesApart)
{
    std::mt19937 random(2);
    for (const Shape& s : kShapes)
        for (const double scale : {1.0, 1e-155, 1e100, 0.0})
            for (const bool zeroRow : {false, true}) {
                SCOPED_TRACE(testing::Message() << s.rows << " by " << s.cols << " * " << scale << zeroRow);
                Matrix a = Random(random, s.rows, s.cols, scale), u, w, v;
                for (long j = 0; j < s.cols && zeroRow; ++j)
                    a(s.rows / 2, j) = 0;
                ASSERT_EQ(a.ThinSVD(u, w, v), VFIL_SUCCESS);
                EXPECT_LE(Distance(u * w * v.Transpose(), a, scale == 0 ? 1 : scale), 1e-13);
                EXPECT_LE(Distance(v.Transpose() * v, Identity(s.cols)), 1e-13);
                for (long k = 0; k < s.cols; ++k)
                    EXPECT_GE(w(k, k), 0);
                if (scale != 1 || zeroRow || s.rows < s.cols) continue;
                EXPECT_LE(Distance(u.Transpose() * u, Identity(s.cols)), 1e-13);
                EXPECT_EQ(a.EffectiveRank(1e-6), s.cols);
            }
}

// From a plain model of the algorithm: a fused or reordered sum would change the last bits.
TEST(Matrix, SvdIsTheSameToTheLastBit)
{
    Matrix u, w, v;
    ASSERT_EQ(Of(4, 3, {2, -1, 3, 4, 0, -2, 1, 5, 7, -3, 6, 1}).ThinSVD(u, w, v), VFIL_SUCCESS);
    EXPECT_EQ(w(0, 0), 0x1.e6f67358aff37p+1);
    EXPECT_EQ(w(1, 1), 0x1.8ed36b587f0dap+2);
    EXPECT_EQ(w(2, 2), 0x1.42b290f43836ap+3);
}

/// By the four conditions that make it the only one.
void ExpectPseudoInverse(const Matrix& a, const Matrix& p, double tolerance)
{
    EXPECT_LE(Distance(a * p * a, a), tolerance);
    EXPECT_LE(Distance(p * a * p, p), tolerance);
    EXPECT_LE(Distance((a * p).Transpose(), a * p), tolerance);
    EXPECT_LE(Distance((p * a).Transpose(), p * a), tolerance);
}

TEST(Matrix, PseudoInverses)
{
    std::mt19937 random(3);
    vfILMatrixCondition condition{};
    for (const Shape& s : kShapes)
        for (const long rank : {1L, 2L, 99L}) {
            const long inner = std::min({rank, s.rows, s.cols});
            const Matrix a = Random(random, s.rows, inner) * Random(random, inner, s.cols);
            const Matrix p = a.PseudoInverse(condition);
            ExpectPseudoInverse(a, p, 1e-12 * (1 + std::pow(p.Norm(VFIL_NORM_FROBENIUS), 2)));
            EXPECT_EQ(condition == VFIL_CONDITION_WELL, inner == s.cols);
            EXPECT_EQ(a.EffectiveRank(1e-9), inner);
        }
    // Remainders of rounding that have no finite reciprocal must not reach the inverse.
    Matrix checkered(31, 31), flat(44, 44);
    for (long i = 0; i < 31 * 31; ++i)
        checkered(i / 31, i % 31) = static_cast<double>((i / 31 / 3 + i % 31 / 5) % 2);
    flat.SetToConstant(1);
    for (const Matrix& m : {checkered, flat, Of(2, 2, {1, 0, 0, 1e-310}), Of(1, 2, {1, 1e-310}),
                            Of(3, 3, {1, 1e-310, 1e-310, 0, 1, 0, 0, 0, 1})})
        ExpectPseudoInverse(m, m.PseudoInverse(condition), 1e-11);
}

TEST(Matrix, ConditionsOfInverses)
{
    struct Case {
        std::vector<double> values;
        vfILMatrixCondition condition;
        std::vector<double> inverse;
        double number; ///< in the spectral norm
        long rank;
    };
    const Case cases[] = {
        {{1, 2, 3, 4}, VFIL_CONDITION_WELL, {-2, 1, 1.5, -0.5}, 14.933034373659268, 2},
        {{1, 2, 2, 4}, VFIL_CONDITION_NEAR_SINGULAR, {0.04, 0.08, 0.08, 0.16}, 1, 2},
        {{1, 0, 0, 9e-7}, VFIL_CONDITION_NEAR_SINGULAR, {1, 0, 0, 0}, 1, 2},
        {{1, 2, 0, 0}, VFIL_CONDITION_SINGULAR, {0.2, 0, 0.4, 0}, HUGE_VAL, 1},
        {{0, 0, 0, 0}, VFIL_CONDITION_SINGULAR, {0, 0, 0, 0}, HUGE_VAL, 0},
        {{1, 0, 0, 0, 1e-7, 0, 0, 0, 0}, VFIL_CONDITION_SINGULAR, {1, 0, 0, 0, 0, 0, 0, 0, 0}, HUGE_VAL, 2},
    };
    for (const Case& c : cases) {
        const long n = c.values.size() == 4 ? 2 : 3;
        const Matrix m = Of(n, n, c.values);
        vfILMatrixCondition condition{};
        EXPECT_LE(Distance(m.Inverse(condition), Of(n, n, c.inverse)), 1e-14);
        EXPECT_EQ(condition, c.condition) << c.values[1];
        EXPECT_EQ(m.Rank(), c.rank) << c.values[1];
        EXPECT_DOUBLE_EQ(m.ConditionNumber(VFIL_NORM_SPECTRAL), c.number);
    }
    const Matrix m = Of(2, 2, {1, 2, 3, 4});
    EXPECT_NEAR(m.ConditionNumber(VFIL_NORM_COLUMN_SUM), 6 * 3.5, 1e-12);
    EXPECT_NEAR(m.ConditionNumber(VFIL_NORM_ROW_SUM), 7 * 3, 1e-12);
    EXPECT_NEAR(m.ConditionNumber(VFIL_NORM_FROBENIUS), 30 / 2.0, 1e-12);
    Matrix small = Of(2, 2, {1, 0, 0, 9e-7});
    small.SetEpsilon(1e-9);
    vfILMatrixCondition condition{};
    EXPECT_NEAR(small.Inverse(condition)(1, 1), 1 / 9e-7, 1e-8);
    EXPECT_EQ(condition, VFIL_CONDITION_WELL);
}

TEST(Matrix, SolvesSystems)
{
    const auto norm = VFIL_NORM_ROW_SUM;
    vfILMatrixCondition condition{};
    double number = 0;
    const Matrix square = Of(2, 2, {1, 2, 3, 4}), right = Of(2, 2, {5, 1, 11, 1});
    EXPECT_LE(Distance(square.SolveSystem(right, condition, true, norm, &number), Of(2, 2, {1, -1, 2, 1})),
              1e-14);
    EXPECT_DOUBLE_EQ(number, 21);
    // The line through (0, 1), (1, 3), (2, 4), (3, 4), by the sums of the normal equations.
    const Matrix line = Of(4, 2, {1, 0, 1, 1, 1, 2, 1, 3}), heights = Of(4, 1, {1, 3, 4, 4});
    EXPECT_LE(Distance(line.SolveSystem(heights, condition, false, norm, &number), Of(2, 1, {1.5, 1})),
              1e-14);
    EXPECT_EQ(condition, VFIL_CONDITION_WELL);
    EXPECT_DOUBLE_EQ(number, 21) << "nobody asked";
}

TEST(Matrix, Separates)
{
    const Matrix across = Of(1, 4, {1, -2, 4, 0.5}), down = Of(3, 1, {0.25, 3, -1});
    Matrix kernel = down * across, column, row;
    EXPECT_TRUE(kernel.IsSeparable());
    ASSERT_EQ(kernel.SeparateIntoTensorProduct(column, row), VFIL_SUCCESS);
    EXPECT_LE(Distance(column * row, kernel), 1e-14);
    EXPECT_NEAR(column.Norm(VFIL_NORM_FROBENIUS), row.Norm(VFIL_NORM_FROBENIUS), 1e-14);
    kernel(1, 1) += 1e-3;
    EXPECT_FALSE(kernel.IsSeparable() || Matrix(3, 3).IsSeparable());
    ASSERT_EQ(Of(3, 3, {2, 0, 0, 0, 5, 0, 0, 0, 3}).SeparateIntoTensorProduct(column, row), VFIL_SUCCESS);
    EXPECT_LE(Distance(column * row, Of(3, 3, {0, 0, 0, 0, 5, 0, 0, 0, 0})), 1e-14)
        << "the largest value's part";
}

TEST(Matrix, Eigenproblem)
{
    std::mt19937 random(4);
    Matrix values, vectors;
    for (const long n : {1, 2, 3, 8, 25}) {
        const Matrix half = Random(random, n, n);
        const Matrix a = half + half.Transpose();
        Matrix upper = a, diagonal(n, n);
        for (long i = 0; i < n * n; ++i)
            if (i / n > i % n) upper(i / n, i % n) = 1e6;
        ASSERT_EQ(upper.SymmetricEigensolve(values, vectors), VFIL_SUCCESS);
        diagonal.MakeDiag(values.Transpose().GetElemsPtr()[0], n);
        EXPECT_LE(Distance(a * vectors, vectors * diagonal), 1e-13);
        EXPECT_LE(Distance(vectors.Transpose() * vectors, Identity(n)), 1e-13);
    }
    ASSERT_EQ(Of(3, 3, {3, 0, 0, 0, -1, 0, 0, 0, 7}).SymmetricEigensolve(values, vectors), VFIL_SUCCESS);
    EXPECT_EQ(Distance(values, Of(3, 1, {3, -1, 7})) + Distance(vectors, Identity(3)), 0)
        << "no sweep, no order";
}

TEST(Matrix, WhatIsNotFiniteStaysSoAndNeverLooksGood)
{
    for (const double bad : {double{NAN}, HUGE_VAL, -HUGE_VAL})
        for (const long n : {1L, 3L}) {
            Matrix a = Identity(n), u(2, 1), w, v, values, vectors;
            a(n - 1, 0) = bad;
            EXPECT_EQ(a.ThinSVD(u, w, v), VFIL_FAILURE);
            EXPECT_EQ(a.SeparateIntoTensorProduct(u, w), VFIL_FAILURE);
            EXPECT_EQ(a.Transpose().SymmetricEigensolve(values, vectors), VFIL_FAILURE);
            EXPECT_TRUE(u.GetNumRows() == 2 && w.IsNotValid()) << "the results as they were";
            EXPECT_TRUE(a.Rank() == 0 && !a.IsSeparable());
            for (const int norm : {0, 1, 2, 3}) {
                const double value = a.Norm(static_cast<vfILMatrixNorm>(norm));
                EXPECT_TRUE(std::isnan(bad) ? std::isnan(value) : value == HUGE_VAL) << norm;
                EXPECT_EQ(a.ConditionNumber(static_cast<vfILMatrixNorm>(norm)), HUGE_VAL) << norm;
            }
            vfILMatrixCondition condition{};
            EXPECT_TRUE(std::isnan(a.Inverse(condition)(0, n - 1)));
            EXPECT_EQ(condition, VFIL_CONDITION_SINGULAR);
        }
}

// A power of two is exact: all results are those of the matrix itself, moved, to the last bit.
TEST(Matrix, ScaleIsNoMatter)
{
    std::mt19937 random(6);
    for (const Shape& s : kShapes)
        for (const int scale : {-1040, -963, -340, 340, 963, 1010}) {
            // Halves leave no bit below the smallest number.
            Matrix a(s.rows, s.cols), scaled(s.rows, s.cols), u, w, v, su, sw, sv;
            for (long i = 0; i < s.rows * s.cols; ++i) {
                a(i / s.cols, i % s.cols) = static_cast<double>(random() % 64) / 2 - 16;
                scaled(i / s.cols, i % s.cols) = std::ldexp(a(i / s.cols, i % s.cols), scale);
            }
            a.SetEpsilon(0);
            scaled.SetEpsilon(0);
            const auto moved = [](Matrix m, int by) {
                for (long i = 0; i < m.GetNumRows() * m.GetNumCols(); ++i)
                    m(i / m.GetNumCols(), i % m.GetNumCols()) =
                        std::ldexp(m(i / m.GetNumCols(), i % m.GetNumCols()), by);
                return m;
            };
            ASSERT_EQ(a.ThinSVD(u, w, v) + scaled.ThinSVD(su, sw, sv), 2 * VFIL_SUCCESS);
            EXPECT_EQ(Distance(u, su) + Distance(v, sv) + Distance(moved(w, scale), sw), 0) << scale;
            vfILMatrixCondition condition{}, of{};
            if (scale < 1000 && scale > -1000) {
                const Matrix inverse = moved(a.PseudoInverse(condition), -scale);
                EXPECT_EQ(Distance(scaled.PseudoInverse(of), inverse), 0) << scale;
                EXPECT_EQ(condition, of) << scale;
            }
            for (const auto norm : {VFIL_NORM_SPECTRAL, VFIL_NORM_FROBENIUS})
                EXPECT_EQ(std::ldexp(a.Norm(norm), scale), scaled.Norm(norm)) << scale;
            EXPECT_EQ(a.Rank(), scaled.Rank()) << scale;
            EXPECT_NEAR(scaled.CorrelationCoefficient(a), 1, 1e-14) << scale;
            ASSERT_EQ(scaled.SeparateIntoTensorProduct(su, sv), VFIL_SUCCESS);
            ASSERT_EQ(a.SeparateIntoTensorProduct(u, v), VFIL_SUCCESS);
            EXPECT_TRUE(scale % 2 != 0 || Distance(su, moved(u, scale / 2)) == 0) << scale;
            if (s.rows != s.cols) continue;
            ASSERT_EQ(scaled.SymmetricEigensolve(su, sv), VFIL_SUCCESS);
            ASSERT_EQ(a.SymmetricEigensolve(u, v), VFIL_SUCCESS);
            EXPECT_EQ(Distance(moved(u, scale), su) + Distance(v, sv), 0) << scale;
        }
    const double largest = std::numeric_limits<double>::max();
    vfILMatrixCondition condition{};
    EXPECT_DOUBLE_EQ(Of(2, 1, {largest, largest}).PseudoInverse(condition)(0, 0), 0.5 / largest);
    EXPECT_EQ(condition, VFIL_CONDITION_WELL);
}

struct Probe : Matrix {
    using Matrix::Pythagoras;
    using Matrix::Sign;
    using Matrix::ThinSVDUnitOffsetInPlace;
};

TEST(Matrix, BuildingBlocks)
{
    EXPECT_DOUBLE_EQ(Probe::Pythagoras(-3e200, 4e200), 5e200);
    EXPECT_TRUE(Probe::Sign(-3, -0.0) == 3 && Probe::Sign(3, -1) == -3);
    double a1[] = {0, 3}, a2[] = {0, 4}, v1[] = {0, 0}, w[] = {0, 0};
    double *a[] = {nullptr, a1, a2}, *v[] = {nullptr, v1};
    EXPECT_EQ(Probe::ThinSVDUnitOffsetInPlace(a, 2, 1, w, v), VFIL_SUCCESS);
    EXPECT_NEAR(a1[1] * w[1] * v1[1], 3, 1e-14);
    EXPECT_NEAR(a2[1] * w[1] * v1[1], 4, 1e-14);
}

TEST(Matrix, MisfitsAreEmpty)
{
    const Matrix a(2, 3), empty;
    vfILMatrixCondition condition{};
    EXPECT_DEBUG_DEATH(EXPECT_FALSE((a + Matrix(3, 2)).IsValid()), "");
    EXPECT_DEBUG_DEATH(EXPECT_FALSE((a * a).IsValid()), "");
    EXPECT_DEBUG_DEATH(EXPECT_EQ(a.InnerProduct(Matrix(3, 3)), 0), "");
    EXPECT_DEBUG_DEATH(EXPECT_FALSE(a.Inverse(condition).IsValid()), "");
    EXPECT_FALSE((a - empty).IsValid() || (empty * a).IsValid() || empty.Transpose().IsValid());
    EXPECT_EQ(empty.ConditionNumber(VFIL_NORM_FROBENIUS), HUGE_VAL);
    EXPECT_EQ(
        empty.Norm(VFIL_NORM_SPECTRAL) + empty.InnerProduct(empty) + empty.CorrelationCoefficient(empty), 0);
}

// Wherever memory ends, there is a whole result or an empty one, and a failure is told.
TEST(Matrix, ShortMemory)
{
    std::mt19937 random(5);
    const Matrix a = Random(random, 3, 3), symmetric = a + a.Transpose();
    vfILMatrixCondition condition{};
    const auto solve = [&] { return a.SolveSystem(symmetric, condition, true, VFIL_NORM_SPECTRAL, nullptr); };
    const Matrix solution = solve();
    for (long count = 0; count < 60; ++count) {
        const auto limited = [count](auto action) {
            vfil::test::g_allocations.granted = count;
            auto result = action();
            vfil::test::g_allocations = {};
            return result;
        };
        EXPECT_EQ(limited([&] { return Matrix(a); }).IsValid(), count >= 4);
        const Matrix solved = limited(solve);
        EXPECT_TRUE(solved.IsNotValid() ? count < 30 : Distance(solved, solution) == 0);
        Matrix u, w, v, values, vectors, column, row;
        const bool isApart = limited([&] { return a.ThinSVD(u, w, v); }) == VFIL_SUCCESS;
        EXPECT_TRUE(u.IsValid() == isApart && w.IsValid() == isApart && v.IsValid() == isApart);
        const bool isSolved =
            limited([&] { return symmetric.SymmetricEigensolve(values, vectors); }) == VFIL_SUCCESS;
        EXPECT_TRUE(values.IsValid() == isSolved && vectors.IsValid() == isSolved);
        const bool isSplit =
            limited([&] { return a.SeparateIntoTensorProduct(column, row); }) == VFIL_SUCCESS;
        EXPECT_TRUE(column.IsValid() == isSplit && row.IsValid() == isSplit);
        EXPECT_TRUE(count < 30 || (isApart && isSolved && isSplit));
    }
}

} // namespace
