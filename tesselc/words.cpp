#include "tesselc/words.h"

#include <algorithm>
#include <array>

namespace tesselc {

namespace {

constexpr Word Keyword(std::string_view text) { return {text, WordKind::kKeyword}; }
constexpr Word Constant(std::string_view text) { return {text, WordKind::kConstant}; }
constexpr Word TypeWord(std::string_view text, TypeName type) {
  return {text, WordKind::kType, type};
}
constexpr Word CatalogueWord(std::string_view text, TypeName type) {
  return {text, WordKind::kType, type, true};
}

constexpr auto SortedWords() {
  std::array words = {
      Keyword("break"),
      Keyword("case"),
      Keyword("catch"),
      Keyword("const"),
      Keyword("continue"),
      Keyword("default"),
      Keyword("do"),
      Keyword("else"),
      Keyword("for"),
      Keyword("if"),
      Keyword("return"),
      Keyword("switch"),
      Keyword("try"),
      Keyword("unsigned"),
      Keyword("while"),
      Constant("FALSE"),
      Constant("INFINITY"),
      Constant("NAN"),
      Constant("NANUM"),
      Constant("NULL"),
      Constant("PI"),
      Constant("TRUE"),
      Constant("false"),
      Constant("true"),
      TypeWord("void", TypeName::kVoid),
      TypeWord("char", TypeName::kChar),
      TypeWord("byte", TypeName::kUchar),
      TypeWord("uchar", TypeName::kUchar),
      TypeWord("short", TypeName::kShort),
      TypeWord("word", TypeName::kUshort),
      TypeWord("ushort", TypeName::kUshort),
      TypeWord("int", TypeName::kInt),
      TypeWord("bool", TypeName::kInt),
      TypeWord("BOOL", TypeName::kInt),
      TypeWord("uint", TypeName::kUint),
      TypeWord("DWORD", TypeName::kUint),
      TypeWord("float", TypeName::kFloat),
      TypeWord("double", TypeName::kDouble),
      TypeWord("__int64", TypeName::kInt64),
      TypeWord("int64", TypeName::kInt64),
      TypeWord("uint64", TypeName::kUint64),
      TypeWord("complex", TypeName::kComplex),
      TypeWord("point", TypeName::kPoint),
      TypeWord("fpoint", TypeName::kFpoint),
      TypeWord("fpoint3d", TypeName::kFpoint3d),
      TypeWord("vector", TypeName::kVector),
      TypeWord("matrix", TypeName::kMatrix),
      TypeWord("vectorbase", TypeName::kVectorBase),
      TypeWord("matrixbase", TypeName::kMatrixBase),
      TypeWord("string", TypeName::kString),
      TypeWord("StringArray", TypeName::kStringArray),
      TypeWord("file", TypeName::kFile),
      TypeWord("stdioFile", TypeName::kStdioFile),
      TypeWord("_VARIANT", TypeName::kVariant),
      TypeWord("Picture", TypeName::kPicture),
      TypeWord("DeviceContext", TypeName::kDeviceContext),
      TypeWord("Dataset", TypeName::kDataset),
      TypeWord("Curve", TypeName::kCurve),
      TypeWord("Categorical", TypeName::kCategorical),
      TypeWord("MatrixObject", TypeName::kMatrixObject),
      CatalogueWord("numeric", TypeName::kNumeric),
      CatalogueWord("buffer", TypeName::kBuffer),
      CatalogueWord("any", TypeName::kAny),
  };
  std::sort(words.begin(), words.end(),
            [](const Word& a, const Word& b) { return a.text < b.text; });
  return words;
}

constexpr auto kWords = SortedWords();

}  // namespace

const Word* FindWord(std::string_view text) {
  const auto found = std::lower_bound(
      kWords.begin(), kWords.end(), text,
      [](const Word& word, std::string_view wanted) { return word.text < wanted; });
  return found != kWords.end() && found->text == text ? &*found : nullptr;
}

std::span<const Word> AllWords() { return kWords; }

std::optional<TypeName> MakeUnsigned(TypeName type) {
  switch (type) {
    case TypeName::kChar:
      return TypeName::kUchar;
    case TypeName::kShort:
      return TypeName::kUshort;
    case TypeName::kInt:
      return TypeName::kUint;
    case TypeName::kInt64:
      return TypeName::kUint64;
    default:
      return std::nullopt;
  }
}

}  // namespace tesselc
