// Argument rules that the operations of CStringUTF8 share.
#pragma once

#include <algorithm>
#include <string_view>

namespace vela::host {

// A null text is the empty one.
inline std::string_view ViewOf(const char* text) {
  return text == nullptr ? std::string_view() : std::string_view(text);
}

// Below 0 is 0, past the end is the end.
inline int ClipIndex(int index, int length) { return std::clamp(index, 0, length); }

// A position that fits, since no text is longer; npos is -1.
inline int ToInt(std::size_t position) {
  return position == std::string_view::npos ? -1 : static_cast<int>(position);
}

}  // namespace vela::host
