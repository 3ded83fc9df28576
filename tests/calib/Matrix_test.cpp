#include "calib/Matrix.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <new>
#include <utility>
#include <vector>

#include "support/ExitGuard.h"
#include "support/Support.h"

namespace {

using KORVANELASERALGO::calib::Matrix;
using Rows = std::vector<std::vector<double>>;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();

Matrix matrixOf(const Rows& rows) {
    Matrix matrix(static_cast<std::int32_t>(rows.size()), static_cast<std::int32_t>(rows.front().size()));
    for (std::size_t i = 0; i < rows.size(); ++i) {
        for (std::size_t j = 0; j < rows[i].size(); ++j) matrix.data[i][j] = rows[i][j];
    }
    return matrix;
}

Rows rowsOf(const Matrix& matrix) {
    Rows rows;
    for (std::int32_t i = 0; i < matrix.rows; ++i) rows.emplace_back(matrix.data[i], matrix.data[i] + matrix.cols);
    return rows;
}

Matrix vectorOf(double x, double y, double z) {
    return matrixOf({{x}, {y}, {z}});
}

/// 1, 2, 3, ... row by row.
Rows countedRows(std::size_t rowCount, std::size_t colCount) {
    Rows rows(rowCount, std::vector<double>(colCount));
    double next = 1.0;
    for (std::vector<double>& row : rows) {
        for (double& element : row) element = next++;
    }
    return rows;
}

/// Whether the elements lie in the matrix itself, and not in a block of memory.
bool holdsItsElements(const Matrix& matrix) {
    const std::uintptr_t element = reinterpret_cast<std::uintptr_t>(matrix.data[0]);
    return element >= reinterpret_cast<std::uintptr_t>(&matrix) &&
           element < reinterpret_cast<std::uintptr_t>(&matrix + 1);
}

// ---- Construction

TEST(Matrix, NewMatrixIsZero) {
    EXPECT_EQ(rowsOf(Matrix(2, 3)), (Rows{{0, 0, 0}, {0, 0, 0}}));
}

TEST(Matrix, NegativeCountsAreMadePositive) {
    const Matrix column(-3, 1);
    EXPECT_EQ(column.rows, 3);
    EXPECT_EQ(column.cols, 1);
    EXPECT_EQ(rowsOf(column), (Rows{{0}, {0}, {0}}));

    const Matrix both(-2, -4);
    EXPECT_EQ(both.rows, 2);
    EXPECT_EQ(both.cols, 4);
    EXPECT_EQ(rowsOf(both), (Rows{{0, 0, 0, 0}, {0, 0, 0, 0}}));
}

TEST(Matrix, RowsLieBehindOneAnotherInOneBlock) {
    const Matrix matrix(3, 4);
    EXPECT_EQ(matrix.data[1], matrix.data[0] + 4);
    EXPECT_EQ(matrix.data[2], matrix.data[0] + 8);
}

TEST(Matrix, MatrixWithoutRowsOrColumnsHasNullDataAndNormZero) {
    const Matrix withoutRows(0, 5);
    EXPECT_EQ(withoutRows.data, nullptr);
    EXPECT_EQ(withoutRows.rows, 0);
    EXPECT_EQ(withoutRows.cols, 5);
    EXPECT_SAME_BITS(withoutRows.norm(), 0.0);

    const Matrix withoutColumns(5, 0);
    EXPECT_EQ(withoutColumns.data, nullptr);
    EXPECT_EQ(withoutColumns.rows, 5);
    EXPECT_EQ(withoutColumns.cols, 0);
    EXPECT_SAME_BITS(withoutColumns.norm(), 0.0);

    EXPECT_EQ(Matrix(0, 0).data, nullptr);
    EXPECT_EQ(Matrix(0, 2).data, nullptr);
    EXPECT_EQ(Matrix(2, 0).data, nullptr);
}

TEST(Matrix, MatrixOfUpToThreeRowsAndColumnsHoldsItsElementsItself) {
    for (std::int32_t rows = 1; rows <= 5; ++rows) {
        for (std::int32_t cols = 1; cols <= 5; ++cols)
            EXPECT_EQ(holdsItsElements(Matrix(rows, cols)), rows <= 3 && cols <= 3) << rows << " x " << cols;
    }
}

TEST(Matrix, ConstructedCopyHasItsOwnElements) {
    Matrix source = matrixOf({{1, 2}, {3, 4}});
    const Matrix copy(source);
    source.data[1][0] = 9;
    EXPECT_EQ(rowsOf(copy), (Rows{{1, 2}, {3, 4}}));
}

TEST(Matrix, ConstructedCopyOfAnEmptyMatrixIsEmpty) {
    const Matrix source(0, 5);
    const Matrix copy(source);
    EXPECT_EQ(copy.data, nullptr);
    EXPECT_EQ(copy.rows, 0);
    EXPECT_EQ(copy.cols, 5);
}

TEST(Matrix, CopyOfAnySizeHasAllElements) {
    for (std::size_t rows = 1; rows <= 5; ++rows) {
        for (std::size_t cols = 1; cols <= 5; ++cols) {
            const Rows counted = countedRows(rows, cols);
            const Matrix source = matrixOf(counted);
            const Matrix copy(source);
            EXPECT_EQ(rowsOf(copy), counted) << rows << " x " << cols;
        }
    }
}

TEST(Matrix, MovedMatrixHandsItsElementsOver) {
    Matrix source = matrixOf({{1, 2, 3}, {4, 5, 6}});
    const Matrix target(std::move(source));
    EXPECT_EQ(rowsOf(target), (Rows{{1, 2, 3}, {4, 5, 6}}));
}

TEST(Matrix, MovedMatrixIsEmptyAfterwards) {
    Matrix source = matrixOf({{1, 2, 3}, {4, 5, 6}});
    const Matrix target(std::move(source));
    EXPECT_EQ(source.data, nullptr);
    EXPECT_EQ(source.rows, 0);
    EXPECT_EQ(source.cols, 0);
}

TEST(Matrix, MovedMatrixWithoutElementsHandsItsCountsOver) {
    Matrix source(0, 5);
    const Matrix target(std::move(source));
    EXPECT_EQ(target.data, nullptr);
    EXPECT_EQ(target.rows, 0);
    EXPECT_EQ(target.cols, 5);
    EXPECT_EQ(source.cols, 0);
}

TEST(Matrix, MovedLargeMatrixHandsItsBlockOver) {
    Matrix source = matrixOf({{1, 2, 3, 4, 5}});
    double** const block = source.data;
    const Matrix target(std::move(source));
    EXPECT_EQ(target.data, block);
    EXPECT_EQ(rowsOf(target), (Rows{{1, 2, 3, 4, 5}}));
    EXPECT_EQ(source.data, nullptr);
    EXPECT_EQ(source.rows, 0);
    EXPECT_EQ(source.cols, 0);
}

// ---- Copy assignment

TEST(Matrix, AssignmentToItselfChangesNothing) {
    Matrix matrix = matrixOf({{1, 2}, {3, 4}});
    const Matrix& itself = matrix;
    double** const storage = matrix.data;
    matrix = itself;
    EXPECT_EQ(matrix.data, storage);
    EXPECT_EQ(rowsOf(matrix), (Rows{{1, 2}, {3, 4}}));
}

TEST(Matrix, AssignmentOfEqualSizeCopiesIntoTheStorageThatIsThere) {
    Matrix source = matrixOf({{1, 2}, {3, 4}});
    Matrix target = matrixOf({{5, 6}, {7, 8}});
    double** const storage = target.data;
    target = source;
    source.data[0][0] = 9;
    EXPECT_EQ(target.data, storage);
    EXPECT_EQ(rowsOf(target), (Rows{{1, 2}, {3, 4}}));
}

TEST(Matrix, AssignmentOfAnotherSizeRebuildsTheTarget) {
    const Matrix source = matrixOf({{1, 2, 3}, {4, 5, 6}});
    Matrix target = matrixOf({{9, 9}, {9, 9}, {9, 9}});  // as many elements, another shape
    target = source;
    EXPECT_EQ(target.rows, 2);
    EXPECT_EQ(target.cols, 3);
    EXPECT_EQ(rowsOf(target), (Rows{{1, 2, 3}, {4, 5, 6}}));
}

TEST(Matrix, AssignmentOfAnotherNumberOfRowsOrColumnsAloneRebuildsTheTargetToo) {
    const Matrix source = matrixOf({{1, 2}, {3, 4}});
    Matrix oneRow = matrixOf({{9, 9}});
    oneRow = source;
    EXPECT_EQ(rowsOf(oneRow), (Rows{{1, 2}, {3, 4}}));
    Matrix oneColumn = matrixOf({{9}, {9}});
    oneColumn = source;
    EXPECT_EQ(rowsOf(oneColumn), (Rows{{1, 2}, {3, 4}}));
}

TEST(Matrix, AssignmentThatFindsNoMemoryLeavesTheTargetEmpty) {
    Matrix source(1, 1);
    source.rows = source.cols = std::numeric_limits<std::int32_t>::max();  // more bytes than there are addresses
    Matrix target = matrixOf({{1, 2}, {3, 4}});
    EXPECT_THROW(target = source, std::bad_alloc);
    EXPECT_EQ(target.data, nullptr);
    EXPECT_EQ(target.rows, 0);
    EXPECT_EQ(target.cols, 0);
}

TEST(Matrix, AssignmentIntoAnEmptyMatrixBuildsIt) {
    Matrix target(0, 5);
    target = matrixOf({{1, 2}});
    EXPECT_EQ(rowsOf(target), (Rows{{1, 2}}));
}

TEST(Matrix, AssignmentOfAnEmptyMatrixReleasesTheStorageOfTheTarget) {
    const Matrix empty(0, 5);
    Matrix target = matrixOf({{1, 2}, {3, 4}});
    target = empty;
    EXPECT_EQ(target.data, nullptr);
    EXPECT_EQ(target.rows, 0);
    EXPECT_EQ(target.cols, 5);
    EXPECT_SAME_BITS(target.norm(), 0.0);
}

// ---- Norm and transpose

TEST(Matrix, NormIsTheRootOfTheSumOfAllSquares) {
    EXPECT_SAME_BITS(vectorOf(0, -3, 4).norm(), 5.0);
    EXPECT_SAME_BITS(matrixOf({{1, 2}, {4, -10}}).norm(), 11.0);
}

TEST(Matrix, NormSumsTheSquaresRowByRow) {
    // 1e16 + 1 rounds to 1e16 again; 1 + 1 + 1e16 does not.
    const double largestFirst = std::sqrt((1e16 + 1.0) + 1.0);
    const double largestLast = std::sqrt((1.0 + 1.0) + 1e16);
    ASSERT_NE(largestFirst, largestLast);
    EXPECT_SAME_BITS(vectorOf(1e8, 1, 1).norm(), largestFirst);
    EXPECT_SAME_BITS(vectorOf(1, 1, 1e8).norm(), largestLast);
    EXPECT_SAME_BITS(matrixOf({{1e8, 1}, {1, 0}}).norm(), largestFirst);
    EXPECT_SAME_BITS(matrixOf({{1, 1}, {0, 1e8}}).norm(), largestLast);
}

TEST(Matrix, NormSquaresWithoutScaling) {
    EXPECT_SAME_BITS(vectorOf(1e200, 0, 0).norm(), kInfinity);
    EXPECT_SAME_BITS(vectorOf(1e-200, 0, 0).norm(), 0.0);
}

TEST(Matrix, NormOfANotANumberIsNotANumber) {
    EXPECT_TRUE(std::isnan(vectorOf(1, kNotANumber, 2).norm()));
}

TEST(Matrix, TransposeExchangesRowsAndColumns) {
    EXPECT_EQ(rowsOf(matrixOf({{1, 2, 3}, {4, 5, 6}}).transpose()), (Rows{{1, 4}, {2, 5}, {3, 6}}));
}

TEST(Matrix, TransposeOfAnEmptyMatrixIsEmpty) {
    const Matrix transposed = Matrix(0, 5).transpose();
    EXPECT_EQ(transposed.rows, 5);
    EXPECT_EQ(transposed.cols, 0);
    EXPECT_EQ(transposed.data, nullptr);
}

// ---- Products

TEST(Matrix, ProductSumsRowTimesColumn) {
    const Matrix product = matrixOf({{1, 2, 3}, {4, 5, 6}}) * matrixOf({{7, 8}, {9, 10}, {11, 12}});
    EXPECT_EQ(rowsOf(product), (Rows{{1 * 7 + 2 * 9 + 3 * 11, 1 * 8 + 2 * 10 + 3 * 12},
                                     {4 * 7 + 5 * 9 + 6 * 11, 4 * 8 + 5 * 10 + 6 * 12}}));
}

TEST(Matrix, ProductOfColumnAndRowIsTheOuterProduct) {
    const Matrix product = vectorOf(1, 2, 3) * matrixOf({{4, 5, 6}});
    EXPECT_EQ(rowsOf(product), (Rows{{4, 5, 6}, {8, 10, 12}, {12, 15, 18}}));
}

TEST(Matrix, ProductSumsInIncreasingIndex) {
    // 1e16 + 1 rounds to 1e16 again; 1 + 1 + 1e16 does not.
    ASSERT_NE((1e16 + 1.0) + 1.0, (1.0 + 1.0) + 1e16);
    const Matrix ones = vectorOf(1, 1, 1);
    EXPECT_SAME_BITS((matrixOf({{1e16, 1, 1}}) * ones).data[0][0], 1e16);
    EXPECT_SAME_BITS((matrixOf({{1, 1, 1e16}}) * ones).data[0][0], 1e16 + 2.0);
}

TEST(Matrix, ProductIsSummedIntoPositiveZero) {
    const Matrix product = matrixOf({{-1}}) * matrixOf({{0}});
    EXPECT_SAME_BITS(product.data[0][0], 0.0);  // 0.0 + -0.0
}

TEST(Matrix, ProductOverAnEmptyInnerSizeIsZero) {
    EXPECT_EQ(rowsOf(Matrix(2, 0) * Matrix(0, 3)), (Rows{{0, 0, 0}, {0, 0, 0}}));
}

TEST(Matrix, ProductWithoutRowsIsEmpty) {
    const Matrix product = Matrix(0, 2) * Matrix(2, 3);
    EXPECT_EQ(product.rows, 0);
    EXPECT_EQ(product.cols, 3);
    EXPECT_EQ(product.data, nullptr);
}

TEST(Matrix, ScalarMultipliesEveryElement) {
    const Matrix matrix = matrixOf({{1, -2, 3}, {4, 5, 0.1}});
    EXPECT_EQ(rowsOf(matrix * 3.0), (Rows{{3, -6, 9}, {12, 15, 0.1 * 3.0}}));
    EXPECT_EQ(rowsOf(matrix), (Rows{{1, -2, 3}, {4, 5, 0.1}}));
}

/// A place for a matrix, with a number right behind it.
struct Place {
    alignas(Matrix) unsigned char matrix[sizeof(Matrix)];
    double behind;
};

TEST(Matrix, ScalarMultipliesAndDividesNothingBehindTheElements) {
    const Rows full = countedRows(3, 3);
    Place given, received;
    Matrix* const source = new (given.matrix) Matrix(matrixOf(full));
    given.behind = 5.0;

    received.behind = 7.0;
    (new (received.matrix) Matrix(*source * 2.0))->~Matrix();
    EXPECT_EQ(received.behind, 7.0);
    (new (received.matrix) Matrix(*source / 2.0))->~Matrix();
    EXPECT_EQ(received.behind, 7.0);

    source->~Matrix();
    EXPECT_EQ(given.behind, 5.0);
}

// ---- Division by a scalar

TEST(Matrix, DivisionDividesEveryElement) {
    ASSERT_NE(49.0 / 49.0, 49.0 * (1.0 / 49.0));  // a division is not a product with the reciprocal
    EXPECT_EQ(rowsOf(matrixOf({{49, 98}, {7, -1}}) / 49.0), (Rows{{1, 2}, {7.0 / 49.0, -1.0 / 49.0}}));
}

TEST(Matrix, DivisorOfExactlyTheSmallestMagnitudeProceeds) {
    EXPECT_EQ(rowsOf(matrixOf({{1, 2}}) / 1e-20), (Rows{{1.0 / 1e-20, 2.0 / 1e-20}}));
    EXPECT_EQ(rowsOf(matrixOf({{1, 2}}) / -1e-20), (Rows{{1.0 / -1e-20, 2.0 / -1e-20}}));
}

TEST(Matrix, DivisorThatIsNotANumberProceeds) {
    const Matrix quotient = matrixOf({{1, 0}}) / kNotANumber;
    EXPECT_TRUE(std::isnan(quotient.data[0][0]));
    EXPECT_TRUE(std::isnan(quotient.data[0][1]));
}

TEST(Matrix, InfiniteDivisorProceeds) {
    EXPECT_EQ(rowsOf(matrixOf({{1, 2}}) / kInfinity), (Rows{{0, 0}}));
}

// ---- Vector product

TEST(Matrix, CrossOfTheFirstTwoAxesIsTheThird) {
    EXPECT_EQ(rowsOf(cross(vectorOf(1, 0, 0), vectorOf(0, 1, 0))), (Rows{{0}, {0}, {1}}));
}

TEST(Matrix, CrossOfTwoVectors) {
    EXPECT_EQ(rowsOf(cross(vectorOf(1, 2, 3), vectorOf(4, 5, 6))),
              (Rows{{2 * 6 - 3 * 5}, {3 * 4 - 1 * 6}, {1 * 5 - 2 * 4}}));
}

// ---- Violated preconditions end the process with exit status 0 and one line on the standard error stream

TEST(MatrixDeathTest, ProductOfSizesThatDoNotFitEndsTheProcess) {
    EXPECT_EXIT(
        {
            support::expectProcessEnd();
            (void)(Matrix(3, 2) * Matrix(3, 3));
        },
        testing::ExitedWithCode(0), "^ERROR: Trying to multiply matrices of size \\(3x2\\) and \\(3x3\\)\n$");
}

TEST(MatrixDeathTest, ProductMessageNamesTheCountsInDecimal) {
    EXPECT_EXIT(
        {
            support::expectProcessEnd();
            (void)(Matrix(1, 12) * Matrix(1, 12));
        },
        testing::ExitedWithCode(0), "^ERROR: Trying to multiply matrices of size \\(1x12\\) and \\(1x12\\)\n$");
}

TEST(MatrixDeathTest, ProductOfEmptyMatricesThatDoNotFitEndsTheProcess) {
    EXPECT_EXIT(
        {
            support::expectProcessEnd();
            (void)(Matrix(2, 0) * Matrix(5, 0));
        },
        testing::ExitedWithCode(0), "^ERROR: Trying to multiply matrices of size \\(2x0\\) and \\(5x0\\)\n$");
}

void divideInAProcessOfItsOwn(double divisor) {
    support::expectProcessEnd();
    (void)(vectorOf(1, 2, 3) / divisor);
}

constexpr char kDivideMessage[] = "^ERROR: Trying to divide by zero!\n$";

TEST(MatrixDeathTest, DivisionByZeroEndsTheProcess) {
    EXPECT_EXIT(divideInAProcessOfItsOwn(0.0), testing::ExitedWithCode(0), kDivideMessage);
    EXPECT_EXIT(divideInAProcessOfItsOwn(-0.0), testing::ExitedWithCode(0), kDivideMessage);
}

TEST(MatrixDeathTest, DivisionByATinyDivisorEndsTheProcess) {
    EXPECT_EXIT(divideInAProcessOfItsOwn(1e-21), testing::ExitedWithCode(0), kDivideMessage);
    EXPECT_EXIT(divideInAProcessOfItsOwn(-1e-21), testing::ExitedWithCode(0), kDivideMessage);
}

TEST(MatrixDeathTest, DivisionByTheNumberJustBelowTheSmallestMagnitudeEndsTheProcess) {
    EXPECT_EXIT(divideInAProcessOfItsOwn(std::nextafter(1e-20, 0.0)), testing::ExitedWithCode(0), kDivideMessage);
    EXPECT_EXIT(divideInAProcessOfItsOwn(std::nextafter(-1e-20, 0.0)), testing::ExitedWithCode(0), kDivideMessage);
}

void crossInAProcessOfItsOwn(const Matrix& a, const Matrix& b) {
    support::expectProcessEnd();
    (void)cross(a, b);
}

constexpr char kCrossMessage[] = "^ERROR: Cross product vectors must be of size \\(3x1\\)\n$";

TEST(MatrixDeathTest, CrossOfAnythingButTwoColumnVectorsOfThreeEndsTheProcess) {
    EXPECT_EXIT(crossInAProcessOfItsOwn(Matrix(1, 3), Matrix(3, 1)), testing::ExitedWithCode(0), kCrossMessage);
    EXPECT_EXIT(crossInAProcessOfItsOwn(Matrix(3, 1), Matrix(1, 3)), testing::ExitedWithCode(0), kCrossMessage);
    EXPECT_EXIT(crossInAProcessOfItsOwn(Matrix(4, 1), Matrix(3, 1)), testing::ExitedWithCode(0), kCrossMessage);
    EXPECT_EXIT(crossInAProcessOfItsOwn(Matrix(3, 1), Matrix(2, 1)), testing::ExitedWithCode(0), kCrossMessage);
    EXPECT_EXIT(crossInAProcessOfItsOwn(Matrix(3, 2), Matrix(3, 1)), testing::ExitedWithCode(0), kCrossMessage);
    EXPECT_EXIT(crossInAProcessOfItsOwn(Matrix(3, 1), Matrix(3, 2)), testing::ExitedWithCode(0), kCrossMessage);
    EXPECT_EXIT(crossInAProcessOfItsOwn(Matrix(0, 0), Matrix(0, 0)), testing::ExitedWithCode(0), kCrossMessage);
}

}  // namespace
