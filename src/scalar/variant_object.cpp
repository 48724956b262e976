#include "scalar/variant_object.h"

#include <array>

#include "frame/element_value.h"
#include "frame/interface/automation_values.h"
#include "frame/numeric_object.h"
#include "scalar/variant_argument.h"
#include "scalar/variant_operation.h"

using vela::member::Check;
using vela::member::Method;
using vela::member::Property;
using vela::member::StatusOfException;

namespace {

const CClassMember kVariantMembers[] = {
    Property("vt", &TCVariantObj::GetVt, &TCVariantObj::SetVt),
    Method("GetSubVariant", &TCVariantObj::GetSubVariant),
    Method("CreateAsArray", &TCVariantObj::CreateAsArray),
    Method("SetOneVariantInArray", &TCVariantObj::SetOneVariantInArray),
    Method("GetNumDimensions", &TCVariantObj::GetNumDimensions),
    Method("GetSize", &TCVariantObj::GetSize),
    Method("SetHWND", &TCVariantObj::SetHWND),
    {},
};

}  // namespace

TCVariantObj::TCVariantObj(unsigned count, unsigned type_word, void** args)
    : values_(count == 0 ? 1 : count) {
  InitTypeIDs(type_word);
  if (args == nullptr || *args == nullptr) return;
  vela::member::Run(static_cast<CTCall*>(*args), vela::member::AtLeast(1),
                    [&](vela::member::Arguments& call) {
                      if (!call.IsNull(0)) values_.front() = vela::VariantArgument(call, 0);
                    });
}

TCVariantObj::TCVariantObj(const TCVariantObj& other) : values_(other.values_) {
  InitTypeIDs(other.GetTypeID());
}

const CRuntimeClass* TCVariantObj::GetRuntimeClass() const {
  static const CRuntimeClass runtime_class{"TCVariantObj", sizeof(TCVariantObj),
                                           TesselCObject::GetRuntimeClass()};
  return &runtime_class;
}

const CClassMember* TCVariantObj::MemberTable() { return kVariantMembers; }

CComVariant* TCVariantObj::Value(const MSOINDICES* at) {
  const int index = at == nullptr ? 0 : at->ObjectIndex();
  return index >= 0 && index < GetArraySize() ? &values_[index] : nullptr;
}

template <class U>
int TCVariantObj::Read(const MSOINDICES* at, U& value) {
  const CComVariant* source = Value(at);
  if (source == nullptr) return status::kUnresolved;
  if constexpr (std::is_same_v<U, CStringUTF8>) {
    return TextOfVariant(*source, value);
  } else if constexpr (vela::SimpleElement<U>) {
    VariantNumber number;
    const int error = NumberOfVariant(*source, number);
    if (error == status::kOk) {
      value = std::visit([](auto n) { return vela::ConvertValue<U>(n); }, number);
    }
    return error;
  } else {
    std::array<double, 3> parts{};
    const int error = PartsOfVariant(*source, parts);
    if (error == status::kOk) value = vela::ConvertValue<U>(Point3D{parts[0], parts[1], parts[2]});
    return error;
  }
}

template <class U>
int TCVariantObj::Write(const MSOINDICES* at, const U& value) try {
  CComVariant* target = Value(at);
  if (target == nullptr) return status::kUnresolved;
  *target = vela::VariantOf(value);
  return status::kOk;
} catch (...) {
  return StatusOfException();
}

template class vela::ValueAccess<TCVariantObj, TesselCObject>;

unsigned TCVariantObj::GetTypeIDCheckIndex(const MSOINDICES* at) {
  return Value(at) == nullptr ? unsigned{kTypeNone} : GetTypeID();
}

void* TCVariantObj::GetArrayElement(const MSOINDICES*, int index) {
  const MSOINDICES at = MSOINDICES::Object(index);
  return Value(&at);
}

int TCVariantObj::GetIntoVariant(const MSOINDICES* at, VARIANT* value) {
  const CComVariant* source = Value(at);
  if (source == nullptr) return status::kUnresolved;
  return FAILED(VariantCopy(value, source)) ? status::kAutomationFailed : status::kOk;
}

int TCVariantObj::SetFromVariant(const MSOINDICES* at, const VARIANT* value) try {
  CComVariant* target = Value(at);
  if (target == nullptr) return status::kUnresolved;
  if (value == nullptr) return status::kBadArguments;
  *target = CComVariant(*value);
  return status::kOk;
} catch (...) {
  return StatusOfException();
}

int TCVariantObj::GetVariantArray(const MSOINDICES* at, VARIANT* value, int) {
  const CComVariant* source = Value(at);
  if (source == nullptr) return status::kUnresolved;
  return (source->vt & VT_ARRAY) != 0 ? GetIntoVariant(at, value) : int{status::kBadValue};
}

int TCVariantObj::SetVariantArray(const MSOINDICES* at, const VARIANT* value) {
  if (value == nullptr) return status::kBadArguments;
  return (value->vt & VT_ARRAY) != 0 ? SetFromVariant(at, value) : int{status::kBadValue};
}

int TCVariantObj::GetNumericValue(const MSOINDICES* at, VARIANT& value) {
  return GetIntoVariant(at, &value);
}

int TCVariantObj::SetNumericValue(const MSOINDICES* at, const VARIANT& value) {
  return SetFromVariant(at, &value);
}

IDispatch* TCVariantObj::GetDispatchInterface(const MSOINDICES* at) {
  const CComVariant* source = Value(at);
  return source != nullptr && source->vt == VT_DISPATCH ? source->pdispVal : nullptr;
}

int TCVariantObj::GetString(CStringUTF8& text) { return Read(nullptr, text) == status::kOk; }

int TCVariantObj::SetString(const char* text) { return SetString(nullptr, text) == status::kOk; }

int TCVariantObj::SetString(const MSOINDICES* at, const char* text) {
  CComVariant* target = Value(at);
  if (target == nullptr) return status::kUnresolved;
  CComVariant made;
  const int error = VariantOfText(text, made);
  if (error == status::kOk) *target = std::move(made);
  return error;
}

int TCVariantObj::GetDisplayElement(CStringUTF8& text, int index) {
  const MSOINDICES at = MSOINDICES::Object(index < 0 ? 0 : index);
  if (Read(&at, text) != status::kOk) text = "Error: Value cannot be determined";
  return status::kOk;
}

int TCVariantObj::ResetValue() {
  int result = status::kOk;
  for (CComVariant& value : values_) {
    if (FAILED(VariantClear(&value))) result = status::kArrayFailed;
  }
  return result;
}

CScriptVelaObject* TCVariantObj::CreateCopy() { return vela::NewCopy(*this); }

int TCVariantObj::Operate2(const MSOINDICES* at, unsigned op, const tagMSOOBJVECT& operand,
                           unsigned) try {
  CComVariant* target = Value(at);
  if (target == nullptr) return status::kUnresolved;
  return vela::OperateOnVariant(*target, vela::OperandVariant(operand), op & operation::kCodeMask);
} catch (...) {
  return StatusOfException();
}

int TCVariantObj::CompareVals(const MSOINDICES* at, unsigned op, const tagMSOOBJVECT& operand,
                              unsigned* flags) try {
  if (flags == nullptr) return status::kFailed;
  const CComVariant* value = Value(at);
  if (value == nullptr) return status::kUnresolved;
  return vela::CompareVariants(*value, vela::OperandVariant(operand), op, *flags);
} catch (...) {
  return StatusOfException();
}
