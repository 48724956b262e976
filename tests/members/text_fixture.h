// What the tests of the text classes share.
#pragma once

#include "host/output.h"
#include "member_fixture.h"

namespace vela::testing {

inline ObjectRef StringOf(std::string_view text) {
  ObjectRef string = Make(kTypeString);
  EXPECT_EQ(string->SetStringValue(nullptr, CStringUTF8(text)), 0);
  return string;
}

inline ObjectRef ArrayOf(const std::vector<std::string>& texts) {
  ObjectRef array = Make(kTypeString | kFlagVector);
  EXPECT_EQ(Call(array, "SetSize", static_cast<int>(texts.size())).status, 0);
  for (std::size_t i = 0; i < texts.size(); ++i) {
    const MSOINDICES at = MSOINDICES::Element(static_cast<int>(i));
    EXPECT_EQ(array->SetStringValue(&at, CStringUTF8(texts[i])), 0);
  }
  return array;
}

inline std::vector<std::string> TextsOf(const ObjectRef& array, int row = 0) {
  const MSOINDICES at = MSOINDICES::Object(row);
  int upper = -1;
  EXPECT_EQ(array->GetUpperBound(&at, upper), 0);
  std::vector<std::string> texts;
  for (int i = 0; i <= upper; ++i) {
    const MSOINDICES element = at.WithElement(i);
    texts.push_back(TextOf(array, &element));
  }
  return texts;
}

using Texts = std::vector<std::string>;

// Counts positions in characters for a scope.
class CharacterModeScope {
 public:
  CharacterModeScope() { VELAObj::SetCharIndexMode(1); }
  ~CharacterModeScope() { VELAObj::SetCharIndexMode(0); }
};

}  // namespace vela::testing
