#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "kernel/correlation_plan.h"
#include "kernel/padded_bands.h"

namespace vela::kernel {

/// How far a sum can be trusted that was not found by adding the rounded products row by row.
enum class Trust : std::uint8_t {
  kFull,      ///< as good, or the same
  kFinite,    ///< only where it is finite: else the products decide
  kNotWhole,  ///< only where rounding cannot have moved it across a whole number
};

template <class S>
struct Weights {
  const S* values = nullptr;
  std::size_t rows = 0, cols = 0;
};

/// One band of a matrix whose elements are kept, and summed, as S. Neighbours are `step` apart.
template <class S>
struct CorrelationJob {
  const CorrelationPlan* plan;
  Trust trust;
  bool is_plain = false;  ///< round the products
  bool is_whole = false;  ///< of whole numbers, which need their products rounded in doubt
  std::size_t step = 1;
  Weights<S> kernel = {};
  Weights<S> column = {}, row = {};  ///< for two passes; else empty
  const S* const* rows = nullptr;    ///< extended
  S* const* sums = nullptr;          ///< of the rows times the row of weights, for two passes
  std::size_t fresh = 0;             ///< the sums from here on are still to be found
  std::size_t count = 0;
  void* out = nullptr;
  std::size_t width = 0;  ///< of out

  bool IsSeparable() const { return column.rows != 0; }
};

/// Calls filter(job) for band after band of x, whose cells hold job.step elements and are kept as
/// Kept. Throws std::bad_alloc before the first call.
template <class Kept, class Cell, class S, class Filter>
void CorrelateBands(MatrixSpan<Cell> x, const WindowReach& reach, CorrelationJob<S> job,
                    Filter filter) {
  PaddedBands<Cell, Kept> bands(x, reach);
  job.width = x.cols * job.step;
  RowRing<S> sums(job.IsSeparable() ? bands.MaxCount() + bands.Halo() : 0, job.width);
  std::vector<const S*> rows(bands.MaxCount() + bands.Halo());
  job.rows = rows.data();
  while (bands.Next()) {
    if (job.IsSeparable()) sums.Advance(job.count);
    job.sums = sums.Rows();
    job.fresh = bands.Fresh();
    job.count = bands.Count();
    for (std::size_t i = 0; i < job.count + bands.Halo(); ++i) {
      rows[i] = reinterpret_cast<const S*>(bands.Rows()[i]);
    }
    job.out = x.data + bands.First() * x.cols;
    filter(job);
  }
}

}  // namespace vela::kernel
