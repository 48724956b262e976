// Elements as an automation array in the result object of a call.
#pragma once

#include <cstdint>

#include "frame/container/element_span.h"
#include "frame/member/arguments.h"

namespace vela {

struct ArrayLayout {
  bool two_dimensional = false;
  std::int32_t columns = 1;      // elements in a row of the array
  std::int32_t lower_bound = 0;  // of a one-dimensional array
  bool variants = false;         // elements are variants instead of numbers
};

// Puts an array of the elements, row by row, into the variant that receives the result; what they
// do not fill of the last row stays zero (empty variants). No elements give an empty variant. Ends
// the handler with 8 for a column count below 1, 12291 for elements that have no automation type, 1
// without a variant for the result, 282 when the array cannot be made: it holds at most 4 GiB - 1.
void ReturnAsArray(member::Arguments& args, const ConstElementSpan& elements,
                   const ArrayLayout& layout);

}  // namespace vela
