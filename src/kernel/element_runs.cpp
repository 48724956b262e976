#include "kernel/element_runs.h"

#include <algorithm>
#include <bit>
#include <limits>

namespace vela::kernel {
namespace {

// Whether a neighbour that far away can be inside a line of n.
bool Meets(std::ptrdiff_t offset, std::size_t n) {
  const auto reach = static_cast<std::ptrdiff_t>(n);
  return -reach < offset && offset < reach;
}

}  // namespace

ElementRuns::ElementRuns(const StructuringElement& element, bool reflected, std::size_t rows,
                         std::size_t cols) {
  struct Found {
    std::ptrdiff_t row, col;
    std::size_t length;
  };
  std::vector<Found> found;
  const auto offset = [&](std::size_t index, std::size_t size) {
    const auto forward = static_cast<std::ptrdiff_t>(index) - static_cast<std::ptrdiff_t>(size / 2);
    return reflected ? -forward : forward;
  };
  top = left = std::numeric_limits<std::ptrdiff_t>::max();
  for (std::size_t i = 0; i < element.rows; ++i) {
    // Backwards where the element is, as offsets go up.
    const std::size_t mask_row = reflected ? element.rows - 1 - i : i;
    const std::ptrdiff_t row = offset(mask_row, element.rows);
    if (!Meets(row, rows)) continue;
    bool is_open = false;
    for (std::size_t j = 0; j < element.cols; ++j) {
      const std::size_t mask_col = reflected ? element.cols - 1 - j : j;
      const std::ptrdiff_t col = offset(mask_col, element.cols);
      const bool is_member =
          Meets(col, cols) && element.mask[mask_row * element.cols + mask_col] != 0;
      if (is_member && !is_open) found.push_back({row, col, 0});
      if (is_member) ++found.back().length;
      is_open = is_member;
    }
  }
  for (const Found& run : found) {
    top = std::min(top, run.row);
    left = std::min(left, run.col);
  }
  if (found.empty()) return;
  std::ptrdiff_t right = 0;
  std::size_t covered = 0;
  for (const Found& run : found) {
    right = std::max(right, run.col - left + static_cast<std::ptrdiff_t>(run.length));
    runs.push_back({static_cast<std::size_t>(run.row - top),
                    static_cast<std::size_t>(run.col - left), run.length});
    covered += run.length;
  }
  height = static_cast<std::size_t>(found.back().row - top + 1);
  width = static_cast<std::size_t>(right);
  is_rectangle = runs.size() == height && covered == height * width;

  FindLengths();
  constexpr std::size_t kManyLengths = 12;
  if (lengths.size() <= kManyLengths) return;
  const std::size_t count = runs.size();
  for (std::size_t k = 0; k < count; ++k) {
    const Run run = runs[k];
    runs[k].length = std::bit_floor(run.length);
    const std::size_t rest = run.length - runs[k].length;
    if (rest > 0) runs.push_back({run.row, run.col + rest, runs[k].length});
  }
  FindLengths();
}

void ElementRuns::FindLengths() {
  lengths.clear();
  for (const Run& run : runs) lengths.push_back(run.length);
  std::sort(lengths.begin(), lengths.end());
  lengths.erase(std::unique(lengths.begin(), lengths.end()), lengths.end());
}

}  // namespace vela::kernel
