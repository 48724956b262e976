#include "text/c_name.h"

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

}  // namespace vela::text
