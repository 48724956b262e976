// Values of any automation type as an array in the result object of a call.
#pragma once

#include <functional>

#include "platform/automation.h"
#include "vector/automation_array.h"

namespace vela {

// As ReturnAsArray, for count elements of the given type, as wide as a pointer, that are made one
// by one: make(i) hands over the value of element i.
void ReturnValuesAsArray(member::Arguments& args, VARTYPE type, std::size_t count,
                         const ArrayLayout& layout,
                         const std::function<VARIANT(std::size_t)>& make);

}  // namespace vela
