#include "text/text_forms.h"

#include "text/utf8_character.h"

namespace vela::text {
namespace {

bool IsDigit(char ch) { return ch >= '0' && ch <= '9'; }
bool Fits(char ch) {
  return IsDigit(ch) || ch == '_' || (ch >= 'a' && ch <= 'z') || (ch >= 'A' && ch <= 'Z');
}

}  // namespace

std::string ValidCName(std::string_view text, MisfitCharacters misfits) {
  std::string name;
  name.reserve(text.size() + 1);
  while (!text.empty()) {
    if (Fits(text.front())) {
      name += text.front();
    } else if (misfits == MisfitCharacters::kUnderscore) {
      name += '_';
    }
    text.remove_prefix(CharacterBytes(text));
  }
  if (name.empty() || IsDigit(name.front())) name.insert(name.begin(), '_');
  return name;
}

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
