// Compiled once for each instruction set, with the namespace of Eigen renamed for each: a linker
// that merged its inline functions could put wide instructions where narrow ones must run. For the
// same reason this file calls no other inline function that might not be inlined.
#include "kernel/double_algebra.h"

#include <eigen3/Eigen/LU>

namespace vela::kernel {
namespace {

// By columns what the caller has by rows: every matrix here is the transpose of the caller's, and
// so are products, with their factors exchanged.
using Matrix = Eigen::MatrixXd;
using View = Eigen::Map<Matrix>;
using ConstView = Eigen::Map<const Matrix>;
using Decomposition = Eigen::PartialPivLU<Eigen::Ref<Matrix>>;

template <class To, class T>
To Transposed(const MatrixSpan<T>& x) {
  return To(x.data, static_cast<Eigen::Index>(x.cols), static_cast<Eigen::Index>(x.rows));
}

// Whether a pivot is no more than the rounding errors of the sum that it is: u[k][k] came from
// terms l[k][j] * u[j][k] for j < k, with l[k][k] = 1.
bool IsSingular(const Matrix& lu) {
  constexpr Eigen::Index kBlock = 8;  // rows: a cache line of a column
  const Eigen::Index size = lu.rows();
  const double epsilon = Eigen::NumTraits<double>::epsilon();
  for (Eigen::Index first = 0; first < size; first += kBlock) {
    const Eigen::Index rows = size - first < kBlock ? size - first : kBlock;
    double terms[kBlock] = {};
    for (Eigen::Index j = 0; j < first + rows; ++j) {
      const Eigen::Index top = j < first ? 0 : j - first + 1;
      for (Eigen::Index i = top; i < rows; ++i) {
        terms[i] += Eigen::numext::abs(lu(first + i, j) * lu(j, first + i));
      }
    }
    for (Eigen::Index i = 0; i < rows; ++i) {
      const double pivot = Eigen::numext::abs(lu(first + i, first + i));
      if (!(pivot > epsilon * (terms[i] + pivot))) return true;
    }
  }
  return false;
}

void MultiplyDoubles(MatrixSpan<const double> a, MatrixSpan<const double> b,
                     MatrixSpan<double> out) {
  Transposed<View>(out).noalias() = Transposed<ConstView>(b) * Transposed<ConstView>(a);
}

bool IsFinite(const Matrix& x) {
  return Eigen::numext::isfinite(x.cwiseAbs().maxCoeff<Eigen::PropagateNaN>());
}

// Calls solve(decomposition) with that of x, unless x is not finite or singular.
template <class Solve>
bool WithDecomposition(MatrixSpan<const double> x, Solve solve) {
  Matrix lu = Transposed<ConstView>(x);
  if (!IsFinite(lu)) return false;
  Eigen::Ref<Matrix> in_place(lu);
  const Decomposition decomposition(in_place);
  if (IsSingular(lu)) return false;
  solve(decomposition);
  return true;
}

// The solution for right sides that the row exchanges have been made in.
template <class Sides>
void SolveInPlace(const Decomposition& decomposition, Sides& sides) {
  decomposition.matrixLU().triangularView<Eigen::UnitLower>().solveInPlace(sides);
  decomposition.matrixLU().triangularView<Eigen::Upper>().solveInPlace(sides);
}

bool SolveDoubles(MatrixSpan<const double> a, MatrixSpan<const double> b, MatrixSpan<double> out) {
  if (b.IsEmpty()) return true;
  return WithDecomposition(b, [&](const Decomposition& decomposition) {
    const auto from = Transposed<ConstView>(a);
    auto to = Transposed<View>(out);
    const auto& target = decomposition.permutationP().indices();
    for (Eigen::Index col = 0; col < to.cols(); ++col) {
      for (Eigen::Index row = 0; row < to.rows(); ++row) to(target[row], col) = from(row, col);
    }
    SolveInPlace(decomposition, to);
  });
}

bool InvertDoubles(MatrixSpan<double> x) {
  if (x.IsEmpty()) return true;
  Matrix inverse;
  const auto solve = [&inverse](const Decomposition& decomposition) {
    inverse = decomposition.permutationP();
    SolveInPlace(decomposition, inverse);
  };
  if (!WithDecomposition(x, solve) || !IsFinite(inverse)) return false;
  Transposed<View>(x) = inverse;
  return true;
}

}  // namespace

constinit const DoubleAlgebra VELA_DOUBLE_ALGEBRA = {MultiplyDoubles, SolveDoubles, InvertDoubles};

}  // namespace vela::kernel
