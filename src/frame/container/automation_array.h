// Elements as an automation array.
#pragma once

#include <cstdint>
#include <functional>

#include "frame/container/element_span.h"
#include "platform/com_variant.h"

namespace vela {

struct ArrayLayout {
  bool two_dimensional = false;
  std::int32_t columns = 1;      // elements in a row of the array
  std::int32_t lower_bound = 0;  // of a one-dimensional array
  bool variants = false;         // elements are variants instead of numbers
};

// An array of the elements, row by row; what they do not fill of the last row stays zero (empty
// variants). Ends the handler with 8 for a column count below 1, 12291 for elements that have no
// automation type, 282 when the array cannot be made: it holds at most 4 GiB - 1.
CComVariant MakeArray(const ConstElementSpan& elements, const ArrayLayout& layout);

// The same for count values of a type as wide as a pointer, or of variants, that are made one by
// one: make(i) hands over the value of element i.
CComVariant MakeArray(VARTYPE type, std::size_t count, const ArrayLayout& layout,
                      const std::function<VARIANT(std::size_t)>& make);

// An array of zeros with the bounds given, first dimension first; null where it cannot be made.
SAFEARRAY* CreateArray(VARTYPE type, std::span<const SAFEARRAYBOUND> bounds);

// Makes the variant that receives the call's result this value; ends the handler with 1 where none
// does.
void ReturnVariant(member::Arguments& args, CComVariant&& value);

}  // namespace vela
