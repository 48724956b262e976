#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <type_traits>
#include <vector>

namespace vela::kernel {

/// Positions begin .. end - 1.
struct IndexRun {
  std::uint32_t begin;
  std::uint32_t end;
};

struct Removal {
  std::vector<IndexRun> runs;  ///< what goes: ascending, apart from each other
  std::size_t count = 0;       ///< how many elements that is
  bool complete = true;        ///< every position could be removed
};

/// What goes from `size` elements (below 2^32) when the positions, given in ascending order, are
/// removed one at a time from the last to the first, so that a position that repeats takes the
/// element that moved there. A position outside the elements that are left ends the removal there.
/// Linear in the number of positions; throws std::bad_alloc.
inline Removal PlanRemoval(std::span<const std::int32_t> ascending, std::size_t size) {
  Removal removal;
  std::vector<IndexRun>& runs = removal.runs;  // the lowest is last until the end
  runs.reserve(std::min(ascending.size(), size / 2 + 1));
  for (std::size_t k = ascending.size(); k-- > 0;) {
    const std::int64_t position = ascending[k];
    if (position < 0 || position >= static_cast<std::int64_t>(size - removal.count)) {
      removal.complete = false;
      break;
    }
    const auto at = static_cast<std::uint32_t>(position);
    ++removal.count;
    if (runs.empty() || runs.back().begin > at + 1) {
      runs.push_back({at, at + 1});
    } else if (runs.back().begin == at + 1) {
      runs.back().begin = at;
    } else {
      // The element that moved here is the first one behind the run; it may close a gap.
      ++runs.back().end;
      if (runs.size() > 1 && runs[runs.size() - 2].begin == runs.back().end) {
        runs[runs.size() - 2].begin = runs.back().begin;
        runs.pop_back();
      }
    }
  }
  std::reverse(runs.begin(), runs.end());
  return removal;
}

/// Closes the gaps of the runs (ascending, apart, inside x) and returns how many elements are left.
/// What x holds behind them is unspecified.
template <class T>
requires std::is_trivially_copyable_v<T> std::size_t RemoveRuns(std::span<T> x,
                                                                std::span<const IndexRun> runs) {
  if (runs.empty()) return x.size();
  std::size_t kept = runs.front().begin;
  for (std::size_t k = 0; k < runs.size(); ++k) {
    const std::size_t next = k + 1 < runs.size() ? runs[k + 1].begin : x.size();
    const std::size_t count = next - runs[k].end;
    if (count > 0) {
      std::memmove(static_cast<void*>(&x[kept]), &x[runs[k].end], count * sizeof(T));
    }
    kept += count;
  }
  return kept;
}

}  // namespace vela::kernel
