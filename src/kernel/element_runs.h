#pragma once

#include <cstddef>
#include <vector>

#include "kernel/morphology.h"

namespace vela::kernel {

/// The windows of a structuring element as horizontal runs of cells.
struct ElementRuns {
  /// Window rows and columns, counted from the corner of the box around all runs.
  struct Run {
    std::size_t row, col, length;
  };

  /// For windows in a matrix of rows by cols, which is not empty: cells that never meet it are left
  /// out. `reflected` counts the element's cells backwards from the origin. Throws std::bad_alloc.
  ElementRuns(const StructuringElement& element, bool reflected, std::size_t rows,
              std::size_t cols);

  bool IsEmpty() const { return runs.empty(); }

  /// The corner of the box, seen from the element of the matrix.
  std::ptrdiff_t top = 0, left = 0;
  std::size_t height = 0, width = 0;
  bool is_rectangle = false;         ///< one run for each row of the box, as long as that
  std::vector<Run> runs;             ///< of many lengths, each is two that may overlap
  std::vector<std::size_t> lengths;  ///< of the runs, ascending, each once

 private:
  void FindLengths();
};

}  // namespace vela::kernel
