#include "tesselc/utf8_text.h"

#include <iterator>
#include <utf8.h>

namespace tesselc {

std::size_t Utf8SequenceLength(std::string_view text) {
  if (text.empty()) return 0;
  auto next = text.begin();
  try {
    utf8::next(next, text.end());
  } catch (const utf8::exception&) {
    return 0;
  }
  return static_cast<std::size_t>(std::distance(text.begin(), next));
}

void AppendUtf8(char32_t code_point, std::string& text) {
  utf8::append(code_point, std::back_inserter(text));
}

}  // namespace tesselc
