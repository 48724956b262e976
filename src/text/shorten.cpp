#include "text/shorten.h"

#include "text/utf8_character.h"

namespace vela::text {

std::string Shortened(std::string_view text, std::size_t most, CutAt cut) {
  constexpr std::string_view kDots = "...";
  if (most < kDots.size()) return std::string(text.substr(0, WholeCharacters(text, most)));
  const std::size_t kept = most - kDots.size();
  const std::size_t tail = cut == CutAt::kEnd ? 0 : kept / 2;
  std::string result(text.substr(0, WholeCharacters(text, kept - tail)));
  result += kDots;
  result += text.substr(NextCharacterStart(text, text.size() - tail));
  return result;
}

}  // namespace vela::text
