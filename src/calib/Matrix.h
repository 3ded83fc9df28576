// A small dense matrix of doubles, for the vector algebra of the plane-aligning transform.
//
// A violated precondition writes one line to the standard error stream and ends the process with exit status 0: the
// sensor's hosts rely on it, so it is meant.

#ifndef KORVANE_CALIB_MATRIX_H
#define KORVANE_CALIB_MATRIX_H

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace KORVANELASERALGO::calib {

/// `rows` x `cols` values; a column vector of n elements is an n x 1 matrix.
class Matrix {
public:
    double** data = nullptr;  ///< row i starts at data[i]; null when the matrix is empty; owned
    std::int32_t rows = 0;    ///< never negative
    std::int32_t cols = 0;    ///< never negative

    /// All zero. A negative count is made positive.
    Matrix(std::int32_t rowCount, std::int32_t colCount) { allocate(std::abs(rowCount), std::abs(colCount)); }
    ~Matrix() { release(); }
    Matrix(const Matrix& other);
    Matrix(Matrix&& other) noexcept;
    Matrix& operator=(const Matrix& other);

    /// Frobenius norm; 0 for an empty matrix.
    double norm() const;
    Matrix transpose() const;

    /// Matrix product; a.cols must be b.rows.
    friend Matrix operator*(const Matrix& a, const Matrix& b);
    friend Matrix operator*(const Matrix& a, double scalar);
    /// |scalar| must be at least 1e-20; a divisor that is not a number passes.
    friend Matrix operator/(const Matrix& a, double scalar);
    /// Vector product of two 3 x 1 matrices.
    friend Matrix cross(const Matrix& a, const Matrix& b);

private:
    static constexpr std::int32_t kInnerRows = 3;
    static constexpr std::int32_t kInnerCols = 3;

    // The matrix is empty before.
    void allocate(std::int32_t rowCount, std::int32_t colCount) {
        if (rowCount > kInnerRows || colCount > kInnerCols) return allocateBlock(rowCount, colCount);
        if (rowCount > 0 && colCount > 0) data = innerRows_;
        for (double& element : innerElements_) element = 0.0;
        for (std::int32_t i = 0; i < kInnerRows; ++i) innerRows_[i] = innerElements_ + std::ptrdiff_t{i} * colCount;
        rows = rowCount;
        cols = colCount;
    }
    void release() {
        if (data != nullptr && data != innerRows_) releaseBlock(data);
        data = nullptr;
        rows = 0;
        cols = 0;
    }
    void allocateBlock(std::int32_t rowCount, std::int32_t colCount);
    static void releaseBlock(double** rowPointers);

    // A matrix that fits, such as all of the plane-aligning transform, needs no memory beside itself.
    double* innerRows_[kInnerRows];
    double innerElements_[kInnerRows * kInnerCols];
};

Matrix cross(const Matrix& a, const Matrix& b);

}  // namespace KORVANELASERALGO::calib

#endif  // KORVANE_CALIB_MATRIX_H
