// The order of texts.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "frame/interface/string_utf8.h"

namespace vela::text {

// The positions of the texts in ascending (descending) order by bytes; equal texts keep their order
// in either direction. Empty texts come first or last, as asked. At most 2^32 texts. O(n log n)
// comparisons of eight bytes at a time; scratch 16 bytes per text.
std::vector<std::uint32_t> SortedOrder(std::span<const CStringUTF8> texts, bool ascending,
                                       bool empty_first);

}  // namespace vela::text
