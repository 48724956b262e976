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

bool SolveDoubles(MatrixSpan<const double> a, MatrixSpan<const double> b, MatrixSpan<double> out) {
  if (out.IsEmpty()) return true;
  Matrix lu = Transposed<ConstView>(b);
  if (!Eigen::numext::isfinite(lu.cwiseAbs().maxCoeff<Eigen::PropagateNaN>())) return false;
  Eigen::Ref<Matrix> in_place(lu);
  const Decomposition decomposition(in_place);
  if (IsSingular(lu)) return false;
  Transposed<View>(out) = decomposition.solve(Transposed<ConstView>(a));
  return true;
}

}  // namespace

constinit const DoubleAlgebra VELA_DOUBLE_ALGEBRA = {MultiplyDoubles, SolveDoubles};

}  // namespace vela::kernel
