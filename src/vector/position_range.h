// The range of elements that two index arguments name.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace vela {

// Positions begin .. end - 1.
struct PositionRange {
  std::size_t begin;
  std::size_t end;
  bool IsEmpty() const { return begin >= end; }
};

// first .. last of size elements: a first below 0 is 0, a last of -1 or beyond the end is the last
// one. Any other last below 0 names nothing.
inline PositionRange PositionsBetween(std::int64_t first, std::int64_t last, std::size_t size) {
  const auto count = static_cast<std::int64_t>(size);
  if (last == -1 || last >= count) last = count - 1;
  if (last < 0) return {0, 0};
  return {static_cast<std::size_t>(std::max<std::int64_t>(first, 0)),
          static_cast<std::size_t>(last + 1)};
}

}  // namespace vela
