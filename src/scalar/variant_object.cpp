#include "scalar/variant_object.h"

#include "frame/member/arguments.h"
#include "frame/member/table.h"
#include "frame/numeric_object.h"

using vela::member::Unbuilt;
using vela::member::UnbuiltProperty;

namespace {

const CClassMember kVariantMembers[] = {
    UnbuiltProperty("vt"),       Unbuilt("GetSubVariant"),
    Unbuilt("CreateAsArray"),    Unbuilt("SetOneVariantInArray"),
    Unbuilt("GetNumDimensions"), Unbuilt("GetSize"),
    Unbuilt("SetHWND"),          {},
};

}  // namespace

TCVariantObj::TCVariantObj(unsigned count, unsigned type_word, void** args)
    : values_(count == 0 ? 1 : count) {
  InitTypeIDs(type_word);
  for (VARIANT& value : values_) VariantInit(&value);
  if (args == nullptr || *args == nullptr) return;
  vela::member::Run(static_cast<CTCall*>(*args), vela::member::AtLeast(1),
                    [&](vela::member::Arguments& call) {
                      const tagMSOOBJVECT source = call.Object(0);
                      if (source.object == nullptr) return int{status::kOk};
                      return source.object->GetIntoVariant(&source.indices, &values_.front());
                    });
}

TCVariantObj::TCVariantObj(const TCVariantObj& other) : values_(other.values_.size()) {
  InitTypeIDs(other.GetTypeID());
  for (std::size_t i = 0; i < values_.size(); ++i) {
    VariantInit(&values_[i]);
    if (FAILED(VariantCopy(&values_[i], &other.values_[i]))) throw std::bad_alloc();
  }
}

TCVariantObj::~TCVariantObj() { TCVariantObj::ResetValue(); }

const CRuntimeClass* TCVariantObj::GetRuntimeClass() const {
  static const CRuntimeClass runtime_class{"TCVariantObj", sizeof(TCVariantObj),
                                           TesselCObject::GetRuntimeClass()};
  return &runtime_class;
}

const CClassMember* TCVariantObj::MemberTable() { return kVariantMembers; }

VARIANT* TCVariantObj::GetVariantAddress(const MSOINDICES* at) {
  const int index = at == nullptr ? 0 : at->ObjectIndex();
  return index >= 0 && index < GetArraySize() ? &values_[index] : nullptr;
}

int TCVariantObj::GetIntoVariant(const MSOINDICES* at, VARIANT* value) {
  const VARIANT* source = GetVariantAddress(at);
  if (source == nullptr) return status::kUnresolved;
  return FAILED(VariantCopy(value, source)) ? status::kAutomationFailed : status::kOk;
}

int TCVariantObj::SetFromVariant(const MSOINDICES* at, const VARIANT* value) {
  VARIANT* target = GetVariantAddress(at);
  if (target == nullptr) return status::kUnresolved;
  return FAILED(VariantCopy(target, value)) ? status::kAutomationFailed : status::kOk;
}

int TCVariantObj::GetNumericValue(const MSOINDICES* at, VARIANT& value) {
  return GetIntoVariant(at, &value);
}

int TCVariantObj::SetNumericValue(const MSOINDICES* at, const VARIANT& value) {
  return SetFromVariant(at, &value);
}

int TCVariantObj::ResetValue() {
  for (VARIANT& value : values_) VariantClear(&value);
  return status::kOk;
}

CScriptVelaObject* TCVariantObj::CreateCopy() { return vela::NewCopy(*this); }
