#include "host/text/case_mapping.h"

#include <utf8.h>

#include "host/text/characters.h"

namespace vela::host {

void MapAsciiCase(char* text, std::size_t length, LetterCase letter_case) {
  const char first = letter_case == LetterCase::kUpper ? 'a' : 'A';
  for (std::size_t i = 0; i < length; ++i) {
    const bool changes = text[i] >= first && text[i] <= first + ('z' - 'a');
    text[i] = static_cast<char>(text[i] ^ (changes ? 'a' - 'A' : 0));
  }
}

std::string MapCase(std::string_view text, LetterCase letter_case) {
  std::string mapped;
  mapped.reserve(text.size());
  while (!text.empty()) {
    const auto* valid_end = utf8::find_invalid(text.data(), text.data() + text.size());
    const std::string_view valid =
        text.substr(0, static_cast<std::size_t>(valid_end - text.data()));
    if (IsAscii(valid)) {
      mapped += valid;
      MapAsciiCase(mapped.data() + mapped.size() - valid.size(), valid.size(), letter_case);
    } else {
      AppendMappedCase(valid, letter_case, mapped);
    }
    text.remove_prefix(valid.size());
    if (text.empty()) break;
    mapped += text.front();
    text.remove_prefix(1);
  }
  return mapped;
}

}  // namespace vela::host
