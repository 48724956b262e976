#include "tesselc/compile/constants.h"

namespace tesselc {
namespace {

struct FileFlag {
  std::string_view name;
  int value;
};
constexpr FileFlag kFileFlags[] = {
    {"modeRead", 0},          {"modeWrite", 1},
    {"modeReadWrite", 2},     {"shareExclusive", 0x10},
    {"shareDenyWrite", 0x20}, {"shareDenyRead", 0x30},
    {"shareDenyNone", 0x40},  {"modeNoInherit", 0x80},
    {"modeCreate", 0x1000},   {"modeNoTruncate", 0x2000},
    {"typeText", 0x4000},     {"typeBinary", 0x8000},
};

}  // namespace

std::optional<int> FindConstant(TypeName scope, std::string_view name) {
  if (scope != TypeName::kFile && scope != TypeName::kStdioFile) return std::nullopt;
  for (const FileFlag& row : kFileFlags) {
    if (row.name == name) return row.value;
  }
  return std::nullopt;
}

}  // namespace tesselc
