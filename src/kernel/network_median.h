#pragma once

#include <cstddef>

#include "kernel/element_types.h"

namespace vela::kernel {

/// Whether windows of that side have a network.
constexpr bool HasMedianNetwork(std::size_t side) { return side == 3 || side == 5; }

/// out[r * cols + c] becomes the median of the window with its corner at rows[r][c], for `count`
/// rows and `cols` columns, by comparing whole vectors of elements in a fixed order. There are
/// count + side - 1 rows, of cols + side - 1 elements and 64 bytes that may be read behind them.
/// Returns false, with out undefined, if there is a NaN in the rows.
template <Element T>
bool NetworkMedian(const T* const* rows, std::size_t count, std::size_t cols, std::size_t side,
                   T* out);

}  // namespace vela::kernel
