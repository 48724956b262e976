#include "text/string_object.h"

#include <algorithm>
#include <limits>

#include "frame/element_value.h"
#include "frame/interface/host_services.h"
#include "frame/member/table.h"
#include "frame/numeric_object.h"
#include "text/operand_text.h"

using vela::member::Arguments;
using vela::member::Fail;

namespace {

using String = CScriptVelaString;
using vela::member::Method;

const CClassMember kStringMembers[] = {
    Method("Delete", &String::Delete),
    Method("Write", static_cast<int (String::*)(CTCall*)>(&String::Write)),
    Method("WriteLine", &String::WriteLine),
    Method("Format", &String::Format),
    Method("GetLength", &String::GetLength),
    Method("TrimLeft", &String::TrimLeft),
    Method("TrimRight", &String::TrimRight),
    Method("Left", &String::Left),
    Method("Right", &String::Right),
    Method("CompareNoCase", &String::CompareNoCase),
    Method("Compare", &String::Compare),
    Method("Find", &String::Find),
    Method("ReverseFind", &String::ReverseFind),
    Method("Insert", &String::Insert),
    Method("MakeLower", &String::MakeLower),
    Method("MakeUpper", &String::MakeUpper),
    Method("Mid", &String::Mid),
    Method("GetAt", &String::GetAt),
    Method("SetAt", &String::SetAt),
    Method("GetToken", &String::GetToken),
    Method("GetNumTokens", &String::GetNumTokens),
    Method("GetTokens", &String::GetTokens),
    Method("SetTokens", &String::SetTokens),
    Method("FindToken", &String::FindToken),
    Method("MakeValidCName", &String::MakeValidCName),
    Method("IsEmpty", &String::IsEmpty),
    Method("Empty", &String::Empty),
    Method("SpanIncluding", &String::SpanIncluding),
    Method("SpanExcluding", &String::SpanExcluding),
    Method("Replace", &String::Replace),
    Method("Remove", &String::Remove),
    Method("FindOneOf", &String::FindOneOf),
    Method("GetBufferSetLength", &String::GetBufferSetLength),
    Method("GetBuffer", &String::GetBuffer),
    Method("ReleaseBuffer", &String::ReleaseBuffer),
    Method("FreeExtra", &String::FreeExtra),
    Method("LockBuffer", &String::LockBuffer),
    Method("UnlockBuffer", &String::UnlockBuffer),
    Method("Match", &String::Match),
    Method("IsPath", &String::IsPath),
    Method("IsFile", &String::IsFile),
    Method("GetBytes", &String::GetBytes),
    Method("SetBytes", &String::SetBytes),
    Method("Count", &String::Count),
    Method("SetUTF16", &String::SetUTF16),
    Method("Shorten", &String::Shorten),
    {},
};

// Runs a value operation that may run out of memory; a status.
template <class Operation>
int Guarded(Operation&& operation) noexcept {
  try {
    return operation();
  } catch (...) {
    return vela::member::StatusOfException();
  }
}

bool IsOutcome(unsigned op, int order) {
  switch (op) {
    case operation::kEqual:
      return order == 0;
    case operation::kNotEqual:
      return order != 0;
    case operation::kLess:
      return order < 0;
    case operation::kLessOrEqual:
      return order <= 0;
    case operation::kGreater:
      return order > 0;
    default:
      return order >= 0;
  }
}

}  // namespace

CScriptVelaString::CScriptVelaString(unsigned count, unsigned type_id, void** args) {
  InitTypeIDs(type_id & kTypeIdMask);
  constexpr unsigned kMostElements = 0x7FFFFFFF;
  if (count > kMostElements) throw std::bad_alloc();
  own_.resize(std::max(count, 1u));
  if (args == nullptr || *args == nullptr) return;
  vela::member::Run(static_cast<CTCall*>(*args), vela::member::AtLeast(1),
                    [&](Arguments& call) { own_.front() = call.Text(0); });
}

CScriptVelaString::CScriptVelaString(const CScriptVelaString& other)
    : own_(other.external_ == nullptr ? other.own_ : std::vector{*other.external_}) {
  InitTypeIDs(other.GetTypeID());
}

const CRuntimeClass* CScriptVelaString::GetRuntimeClass() const {
  static const CRuntimeClass runtime_class{"CScriptVelaString", sizeof(CScriptVelaString),
                                           TesselCObject::GetRuntimeClass()};
  return &runtime_class;
}

const CClassMember* CScriptVelaString::MemberTable() { return kStringMembers; }

CScriptVelaObject* CScriptVelaString::CreateCopy() { return vela::NewCopy(*this); }

CStringUTF8& CScriptVelaString::Acted(Arguments& args) {
  CStringUTF8* text = Element(&args.Indices());
  if (text == nullptr) Fail(status::kUnresolved);
  return *text;
}

template <class U>
int CScriptVelaString::Read(const MSOINDICES* at, U& value) {
  const CStringUTF8* text = Element(at);
  if (text == nullptr) return status::kUnresolved;
  if constexpr (std::is_same_v<U, CStringUTF8>) {
    value = *text;
  } else {
    value = vela::ConvertValue<U>(vela::text::NumberOf(*text));
  }
  return status::kOk;
}

template <class U>
int CScriptVelaString::Write(const MSOINDICES* at, const U& value) {
  return Guarded([&] { return SetStringValue(at, vela::ValueText(value)); });
}

unsigned CScriptVelaString::GetTypeIDCheckIndex(const MSOINDICES* at) {
  return Element(at) == nullptr ? unsigned{kTypeNone} : GetTypeID();
}

void* CScriptVelaString::GetArrayElement(const MSOINDICES*, int index) {
  const MSOINDICES at = MSOINDICES::Object(index);
  return Element(&at);
}

int CScriptVelaString::GetUpperBound(const MSOINDICES*, int& upper) {
  upper = GetArraySize() - 1;
  return status::kOk;
}

int CScriptVelaString::GetString(CStringUTF8& text) { return Read(nullptr, text) == status::kOk; }

int CScriptVelaString::GetString(const MSOINDICES* at, CStringUTF8& text) { return Read(at, text); }

int CScriptVelaString::SetString(const char* text) {
  return SetString(nullptr, text) == status::kOk;
}

int CScriptVelaString::SetString(const MSOINDICES* at, const char* text) {
  return Guarded([&] { return SetStringValue(at, CStringUTF8(text)); });
}

int CScriptVelaString::SetStringValue(const MSOINDICES* at, const CStringUTF8& text) {
  CStringUTF8* element = Element(at);
  if (element == nullptr) return status::kUnresolved;
  return Guarded([&] {
    *element = text;
    return int{status::kOk};
  });
}

int CScriptVelaString::SetNumericValue(const MSOINDICES* at, char value) {
  return Guarded([&] { return SetStringValue(at, make_str_from_char(value)); });
}

int CScriptVelaString::GetDisplayElement(CStringUTF8& text, int index) {
  const MSOINDICES at = MSOINDICES::Object(index < 0 ? 0 : index);
  const CStringUTF8* element = Element(&at);
  return Guarded([&] {
    if (element == nullptr) {
      text = "Error: Value cannot be determined";
    } else {
      CStringUTF8 quoted("\"");
      quoted += element->View();
      quoted += '"';
      text = quoted;
    }
    return int{status::kOk};
  });
}

int CScriptVelaString::ResetValue() {
  for (int i = 0; i < GetArraySize(); ++i) {
    const MSOINDICES at = MSOINDICES::Object(i);
    Element(&at)->Empty();
  }
  return status::kOk;
}

int CScriptVelaString::CompareVals(const MSOINDICES* at, unsigned op, const tagMSOOBJVECT& operand,
                                   unsigned* flags) {
  if (op < operation::kEqual || op > operation::kGreaterOrEqual) return status::kFailed;
  if (flags == nullptr) return status::kBadArguments;
  const CStringUTF8* text = Element(at);
  if (text == nullptr) return status::kUnresolved;
  return Guarded([&] {
    CStringUTF8 other;
    if (const int error = vela::text::OperandText(operand, other); error != status::kOk) {
      return error;
    }
    const bool is_true = IsOutcome(op, text->View().compare(other.View()));
    *flags = (*flags & ~operation::kCompareTrue) | (is_true ? operation::kCompareTrue : 0);
    return int{status::kOk};
  });
}

int CScriptVelaString::Operate2(const MSOINDICES* at, unsigned op, const tagMSOOBJVECT& operand,
                                unsigned) {
  const unsigned code = op & operation::kCodeMask;
  if (code != operation::kAssign && code != operation::kAdd) return status::kFailed;
  CStringUTF8* text = Element(at);
  if (text == nullptr) return status::kUnresolved;
  return Guarded([&] {
    CStringUTF8 other;
    if (const int error = vela::text::OperandText(operand, other); error != status::kOk) {
      return error;
    }
    if (code == operation::kAdd) {
      *text += other.View();
    } else {
      *text = other;
    }
    return int{status::kOk};
  });
}

int CScriptVelaString::SetExternalData(void* address) {
  external_ = static_cast<CStringUTF8*>(address);
  return status::kOk;
}

int CScriptVelaString::GetExternalData(void** address) {
  if (address == nullptr) return status::kBadArguments;
  *address = Element(nullptr);
  return status::kOk;
}

unsigned CScriptVelaString::GetBufferSize(const MSOINDICES* at) {
  const CStringUTF8* text = Element(at);
  return text == nullptr ? 0 : static_cast<unsigned>(text->GetLength()) + 1;
}

int CScriptVelaString::SetBufferSize(const MSOINDICES* at, unsigned bytes) {
  CStringUTF8* text = Element(at);
  if (text == nullptr) return status::kUnresolved;
  if (bytes > static_cast<unsigned>(std::numeric_limits<int>::max())) return status::kCannotResize;
  return Guarded([&] {
    text->GetBufferSetLength(static_cast<int>(bytes));
    text->ReleaseBuffer(static_cast<int>(bytes));
    return int{status::kOk};
  });
}

int CScriptVelaString::GetBufferMSO(const MSOINDICES* at, void** buffer) {
  if (buffer == nullptr) return status::kBadArguments;
  CStringUTF8* text = Element(at);
  if (text == nullptr) return status::kUnresolved;
  return Guarded([&] {
    *buffer = text->GetBuffer(text->GetLength());
    return int{status::kOk};
  });
}

int CScriptVelaString::ReleaseBufferMSO(const MSOINDICES* at, void*) {
  CStringUTF8* text = Element(at);
  if (text == nullptr) return status::kUnresolved;
  return Guarded([&] {
    text->ReleaseBuffer(text->GetLength());
    return int{status::kOk};
  });
}
