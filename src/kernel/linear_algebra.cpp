#include "kernel/linear_algebra.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <concepts>
#include <cstddef>
#include <span>
#include <utility>
#include <vector>

#include "kernel/convert.h"
#include "kernel/double_algebra.h"
#include "kernel/find.h"
#include "kernel/instruction_set.h"
#include "kernel/missing.h"

namespace vela::kernel {
namespace {

using Complex = std::complex<double>;

const DoubleAlgebra& Doubles() {
  static constexpr const DoubleAlgebra* kSets[kInstructionSets] = {
      &kDoubleAlgebraSse4, &kDoubleAlgebraAvx2, &kDoubleAlgebraAvx512};
  return *kSets[static_cast<std::size_t>(CurrentInstructionSet())];
}

template <class T>
class Matrix {
 public:
  Matrix(std::size_t rows, std::size_t cols) : values_(rows * cols), rows_(rows), cols_(cols) {}
  explicit Matrix(MatrixSpan<const T> x)
      : values_(x.data, x.data + x.Size()), rows_(x.rows), cols_(x.cols) {}
  operator MatrixSpan<T>() { return {values_, rows_, cols_}; }
  operator MatrixSpan<const T>() const { return {values_, rows_, cols_}; }
  std::span<const T> Values() const { return values_; }

 private:
  std::vector<T> values_;
  std::size_t rows_, cols_;
};

// How matrices of T become matrices of doubles whose product or solution becomes one of T.
template <class T>
struct DoubleForm;

template <>
struct DoubleForm<float> {
  static Matrix<double> Left(MatrixSpan<const float> x) {
    Matrix<double> form(x.rows, x.cols);
    Convert<double, float>(x.Values(), MatrixSpan<double>(form).Values());
    return form;
  }
  static Matrix<double> Right(MatrixSpan<const float> x) { return Left(x); }
  static Matrix<double> Result(MatrixSpan<float> out) { return {out.rows, out.cols}; }
  static void Store(const Matrix<double>& form, MatrixSpan<float> out) {
    Convert<float, double>(form.Values(), out.Values());
  }
};

template <>
struct DoubleForm<Complex> {
  // [re, im], each of the shape of x.
  static Matrix<double> Left(MatrixSpan<const Complex> x) {
    Matrix<double> form(x.rows, 2 * x.cols);
    const MatrixSpan<double> to = form;
    for (std::size_t row = 0; row < x.rows; ++row) {
      for (std::size_t col = 0; col < x.cols; ++col) {
        to(row, col) = x(row, col).real();
        to(row, x.cols + col) = x(row, col).imag();
      }
    }
    return form;
  }
  // [re, im] over [-im, re]: a Left times this is the Left of the complex product.
  static Matrix<double> Right(MatrixSpan<const Complex> x) {
    Matrix<double> form(2 * x.rows, 2 * x.cols);
    const MatrixSpan<double> to = form;
    for (std::size_t row = 0; row < x.rows; ++row) {
      for (std::size_t col = 0; col < x.cols; ++col) {
        const Complex value = x(row, col);
        to(row, col) = to(x.rows + row, x.cols + col) = value.real();
        to(row, x.cols + col) = value.imag();
        to(x.rows + row, col) = -value.imag();
      }
    }
    return form;
  }
  // Of the shape of a Left.
  static Matrix<double> Result(MatrixSpan<Complex> out) { return {out.rows, 2 * out.cols}; }
  static void Store(const Matrix<double>& form, MatrixSpan<Complex> out) {
    const MatrixSpan<const double> from = form;
    for (std::size_t row = 0; row < out.rows; ++row) {
      for (std::size_t col = 0; col < out.cols; ++col) {
        out(row, col) = {from(row, col), from(row, out.cols + col)};
      }
    }
  }
};

std::span<const float> Numbers(std::span<const float> x) { return x; }
std::span<const double> Numbers(std::span<const double> x) { return x; }
std::span<const double> Numbers(std::span<const Complex> x) {
  return {reinterpret_cast<const double*>(x.data()), 2 * x.size()};
}

template <class T>
bool AnyMissing(std::span<const T> x) {
  if constexpr (std::same_as<T, float>) {
    return false;
  } else {
    return HoldsMissing(Numbers(x));
  }
}

template <class T>
constexpr T kMissingElement = kMissing;
template <>
constexpr Complex kMissingElement<Complex> = {kMissing, kMissing};

template <class T>
void MarkRows(MatrixSpan<const T> a, MatrixSpan<T> out) {
  for (std::size_t row = 0; row < a.rows; ++row) {
    if (AnyMissing<T>(a.Row(row))) std::ranges::fill(out.Row(row), kMissingElement<T>);
  }
}

template <class T>
std::vector<bool> ColumnsWithMissing(MatrixSpan<const T> b) {
  std::vector<bool> columns(b.cols);
  for (std::size_t row = 0; row < b.rows; ++row) {
    if (!AnyMissing<T>(b.Row(row))) continue;
    for (std::size_t col = 0; col < b.cols; ++col) {
      if (AnyMissing<T>(b.Row(row).subspan(col, 1))) columns[col] = true;
    }
  }
  return columns;
}

template <class T>
void MarkColumns(const std::vector<bool>& columns, MatrixSpan<T> out) {
  for (std::size_t col = 0; col < out.cols; ++col) {
    if (!columns[col]) continue;
    for (std::size_t row = 0; row < out.rows; ++row) out(row, col) = kMissingElement<T>;
  }
}

template <class T>
Matrix<T> Identity(std::size_t size) {
  Matrix<T> identity(size, size);
  const MatrixSpan<T> x = identity;
  for (std::size_t i = 0; i < size; ++i) x(i, i) = T{1};
  return identity;
}

}  // namespace

template <class T>
void Multiply(MatrixSpan<const T> a, MatrixSpan<const T> b, MatrixSpan<T> out) {
  const std::vector<bool> missing_columns = ColumnsWithMissing(b);
  if constexpr (std::same_as<T, double>) {
    Doubles().multiply(a, b, out);
  } else {
    using Form = DoubleForm<T>;
    const Matrix<double> left = Form::Left(a), right = Form::Right(b);
    Matrix<double> product = Form::Result(out);
    Doubles().multiply(left, right, product);
    Form::Store(product, out);
  }
  MarkRows(a, out);
  MarkColumns(missing_columns, out);
}

template <class T>
bool SolveRight(MatrixSpan<const T> a, MatrixSpan<const T> b, MatrixSpan<T> out) {
  if (AnyMissing<T>(b.Values())) return false;
  if constexpr (std::same_as<T, double>) {
    if (!Doubles().solve_right(a, b, out)) return false;
  } else {
    using Form = DoubleForm<T>;
    const Matrix<double> left = Form::Left(a), right = Form::Right(b);
    Matrix<double> solution = Form::Result(out);
    if (!Doubles().solve_right(left, right, solution)) return false;
    Form::Store(solution, out);
  }
  MarkRows(a, out);
  return true;
}

template <class T>
bool Invert(MatrixSpan<T> x) {
  if constexpr (std::same_as<T, double>) {
    return !AnyMissing<double>(x.Values()) && Doubles().invert(x);
  } else {
    Matrix<T> inverse(x.rows, x.cols);
    if (!SolveRight<T>(Identity<T>(x.rows), x, inverse)) return false;
    const auto is_finite = [](auto number) { return std::isfinite(number); };
    if (!std::ranges::all_of(Numbers(inverse.Values()), is_finite)) return false;
    std::ranges::copy(inverse.Values(), x.data);
    return true;
  }
}

template <class T>
bool Power(MatrixSpan<T> x, std::int64_t n) {
  const auto magnitude = n < 0 ? 0 - static_cast<std::uint64_t>(n) : static_cast<std::uint64_t>(n);
  Matrix<T> result = Identity<T>(x.rows), base(x), product(x.rows, x.cols);
  if (n < 0 && !Invert<T>(base)) return false;
  const auto multiply = [&product](Matrix<T>& target, const Matrix<T>& factor) {
    Multiply<T>(target, factor, product);
    std::swap(target, product);
  };
  bool is_identity = true;  // times it, missing values would spread
  for (std::uint64_t rest = magnitude; rest != 0;) {
    if (rest & 1) {
      if (is_identity) {
        result = base;
      } else {
        multiply(result, base);
      }
      is_identity = false;
    }
    rest >>= 1;
    if (rest != 0) multiply(base, base);
  }
  std::ranges::copy(result.Values(), x.data);
  return true;
}

#define VELA_KERNEL_INSTANTIATE(T)                                                   \
  template void Multiply(MatrixSpan<const T>, MatrixSpan<const T>, MatrixSpan<T>);   \
  template bool SolveRight(MatrixSpan<const T>, MatrixSpan<const T>, MatrixSpan<T>); \
  template bool Invert(MatrixSpan<T>);                                               \
  template bool Power(MatrixSpan<T>, std::int64_t);
VELA_KERNEL_INSTANTIATE(float)
VELA_KERNEL_INSTANTIATE(double)
VELA_KERNEL_INSTANTIATE(Complex)
#undef VELA_KERNEL_INSTANTIATE

}  // namespace vela::kernel
