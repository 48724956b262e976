#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "tesselc/syntax_tree.h"

namespace tesselc {

enum class WordKind : std::uint8_t { kType, kConstant, kKeyword };

// A word the language keeps for itself.
struct Word {
  std::string_view text;
  WordKind kind;
  TypeName type = TypeName::kVoid;  // of a kType
  bool catalogue_only = false;      // an ordinary name in scripts
};

// Null when `text` is an ordinary name. Case matters. Binary search over some sixty words.
const Word* FindWord(std::string_view text);

// All of them, sorted.
std::span<const Word> AllWords();

// Letters, digits and the underscore.
constexpr bool IsWordCharacter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

// The type that `unsigned` makes of the type after it, if it may stand there.
std::optional<TypeName> MakeUnsigned(TypeName type);

}  // namespace tesselc
