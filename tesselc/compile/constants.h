#pragma once

#include <optional>
#include <string_view>

#include "tesselc/syntax_tree.h"

namespace tesselc {

// The value of a constant such as file::modeRead; none when the type has no such constant.
std::optional<int> FindConstant(TypeName scope, std::string_view name);

}  // namespace tesselc
