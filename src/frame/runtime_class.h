// What GetRuntimeClass tells of the class templates.
#pragma once

#include <algorithm>
#include <array>
#include <string_view>

#include "frame/element_types.h"
#include "frame/interface/type_base.h"

namespace vela {

// "TCVectorBase<double>", as a constant.
template <class T, std::size_t kSize>
constexpr auto TemplateName(const char (&name)[kSize]) {
  constexpr std::string_view kElementName = kElement<T>.display_name;
  std::array<char, kSize + kElementName.size() + 2> text{};
  auto end = std::copy_n(name, kSize - 1, text.begin());
  *end++ = '<';
  end = std::copy(kElementName.begin(), kElementName.end(), end);
  *end = '>';
  return text;
}

}  // namespace vela
