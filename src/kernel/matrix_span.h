#pragma once

#include <cstddef>
#include <span>
#include <type_traits>

namespace vela::kernel {

/// Borrowed elements of rows by cols, row-major and contiguous.
template <class T>
struct MatrixSpan {
  T* data = nullptr;
  std::size_t rows = 0;
  std::size_t cols = 0;

  MatrixSpan() = default;
  MatrixSpan(T* first, std::size_t row_count, std::size_t col_count)
      : data(first), rows(row_count), cols(col_count) {}
  MatrixSpan(std::span<T> elements, std::size_t row_count, std::size_t col_count)
      : MatrixSpan(elements.data(), row_count, col_count) {}

  std::size_t Size() const { return rows * cols; }
  bool IsEmpty() const { return rows == 0 || cols == 0; }
  std::span<T> Values() const { return {data, Size()}; }
  std::span<T> Row(std::size_t row) const { return {data + row * cols, cols}; }
  T& operator()(std::size_t row, std::size_t col) const { return data[row * cols + col]; }
  /// The count rows from first on.
  MatrixSpan Rows(std::size_t first, std::size_t count) const {
    return {data + first * cols, count, cols};
  }
  operator MatrixSpan<const T>() const requires(!std::is_const_v<T>) { return {data, rows, cols}; }
};

}  // namespace vela::kernel
