// Lists what the library declares but does not do yet: the members whose handler only refuses, and
// the types that its factory does not make.
#include <cstdio>
#include <set>
#include <string>
#include <utility>

#include "frame/interface/type_words.h"
#include "host/library.h"
#include "host/object_ref.h"
#include "tesselc/catalogue.h"

namespace {

using vela::host::ObjectRef;

// One type word for every script class and every type of the language.
constexpr std::pair<const char*, unsigned> kTypes[] = {
    {"string", kTypeString},
    {"StringArray", kTypeString | kFlagVector},
    {"file", kTypeFile},
    {"stdioFile", kTypeStdioFile},
    {"complex", kTypeComplex},
    {"point", kTypePointInt},
    {"fpoint", kTypePointDouble},
    {"fpoint3d", kTypePoint3D},
    {"_VARIANT", kTypeVariant},
    {"Picture", kTypePicture},
    {"vectorbase", kTypeVectorBase},
    {"vector", kTypeDouble | kFlagVector},
    {"Dataset", kTypeDouble | kFlagDataset},
    {"Curve", kTypeDouble | kFlagCurve},
    {"Categorical", kTypeCategorical},
    {"matrixbase", kTypeMatrixBase},
    {"matrix", kTypeDouble | kFlagMatrix},
    {"MatrixObject", kTypeDouble | kFlagMatrixObject},
    {"pointer", kTypePointer},
    {"reference", kTypeReference},
};

bool IsUnbuilt(CScriptVelaObject& object, const char* member) {
  CTypeBase* owner = nullptr;
  const CClassMember* row = object.FindMember(member, 0, &owner, 0);
  return row == nullptr || row->GetHandler() == &CTypeBase::NotSupported;
}

}  // namespace

int main() {
  vela::host::Library library;
  if (!library.Load()) {
    std::fprintf(stderr, "%s\n", library.GetError().c_str());
    return 1;
  }
  const tesselc::Catalogue& catalogue = tesselc::Catalogue::Get();
  int missing = 0;
  std::set<const CClassMember*> seen;
  for (const auto& [type, word] : kTypes) {
    const ObjectRef object(library.Create(word));
    if (!object) {
      std::printf("type    %s\n", type);
      ++missing;
      continue;
    }
    for (const std::string_view name : catalogue.MemberNames(type)) {
      const std::string member(name);
      if (!IsUnbuilt(*object, member.c_str())) continue;
      CTypeBase* owner = nullptr;
      const CClassMember* row = object->FindMember(member.c_str(), 0, &owner, 0);
      // A row that several classes share is listed with the first of them.
      if (row != nullptr && !seen.insert(row).second) continue;
      std::printf("member  %s.%s\n", type, member.c_str());
      ++missing;
    }
  }
  std::printf("%d not built\n", missing);
  return 0;
}
