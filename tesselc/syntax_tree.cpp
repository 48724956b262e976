#include "tesselc/syntax_tree.h"

#include <array>

namespace tesselc {

namespace {

struct TypeTraits {
  const char* spelling;
  enum Role : std::uint8_t { kNumber, kCompound, kTemplate, kOther } role;
};

// In the order of TypeName.
constexpr std::array kTraits = {
    TypeTraits{"void", TypeTraits::kOther},
    TypeTraits{"char", TypeTraits::kNumber},
    TypeTraits{"uchar", TypeTraits::kNumber},
    TypeTraits{"short", TypeTraits::kNumber},
    TypeTraits{"ushort", TypeTraits::kNumber},
    TypeTraits{"int", TypeTraits::kNumber},
    TypeTraits{"uint", TypeTraits::kNumber},
    TypeTraits{"float", TypeTraits::kNumber},
    TypeTraits{"double", TypeTraits::kNumber},
    TypeTraits{"int64", TypeTraits::kNumber},
    TypeTraits{"uint64", TypeTraits::kNumber},
    TypeTraits{"complex", TypeTraits::kCompound},
    TypeTraits{"point", TypeTraits::kCompound},
    TypeTraits{"fpoint", TypeTraits::kCompound},
    TypeTraits{"fpoint3d", TypeTraits::kCompound},
    TypeTraits{"vector", TypeTraits::kTemplate},
    TypeTraits{"matrix", TypeTraits::kTemplate},
    TypeTraits{"vectorbase", TypeTraits::kOther},
    TypeTraits{"matrixbase", TypeTraits::kOther},
    TypeTraits{"string", TypeTraits::kOther},
    TypeTraits{"StringArray", TypeTraits::kOther},
    TypeTraits{"file", TypeTraits::kOther},
    TypeTraits{"stdioFile", TypeTraits::kOther},
    TypeTraits{"_VARIANT", TypeTraits::kOther},
    TypeTraits{"Picture", TypeTraits::kOther},
    TypeTraits{"DeviceContext", TypeTraits::kOther},
    TypeTraits{"Dataset", TypeTraits::kTemplate},
    TypeTraits{"Curve", TypeTraits::kTemplate},
    TypeTraits{"Categorical", TypeTraits::kOther},
    TypeTraits{"MatrixObject", TypeTraits::kTemplate},
    TypeTraits{"numeric", TypeTraits::kOther},
    TypeTraits{"buffer", TypeTraits::kOther},
    TypeTraits{"any", TypeTraits::kOther},
};
static_assert(kTraits.size() == static_cast<std::size_t>(TypeName::kAny) + 1);

const TypeTraits& TraitsOf(TypeName name) { return kTraits[static_cast<std::size_t>(name)]; }

}  // namespace

const char* Spelling(TypeName name) { return TraitsOf(name).spelling; }

bool IsNumber(TypeName name) { return TraitsOf(name).role == TypeTraits::kNumber; }

bool IsElement(TypeName name) {
  return IsNumber(name) || TraitsOf(name).role == TypeTraits::kCompound;
}

bool IsTemplate(TypeName name) { return TraitsOf(name).role == TypeTraits::kTemplate; }

std::string Spelling(const Type& type) {
  std::string text = type.is_const ? "const " : "";
  text += Spelling(type.name);
  if (IsTemplate(type.name)) text += std::string("<") + Spelling(type.element) + ">";
  text.append(type.pointers, '*');
  if (type.is_reference) text += "&";
  return text;
}

}  // namespace tesselc
