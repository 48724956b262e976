#include "text/string_array.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <utility>

#include "frame/element_value.h"
#include "frame/interface/host_services.h"
#include "frame/library_state.h"
#include "frame/member/table.h"
#include "frame/numeric_object.h"
#include "text/operand_text.h"

using vela::VectorArgument;
using vela::member::Arguments;

namespace {

using Array = TCVectorString;
using vela::member::Method;

const CClassMember kStringArrayMembers[] = {
    Method("Add", &Array::Add),
    Method("SetAtGrow", &Array::SetAtGrow),
    Method("InsertAt", &Array::InsertAt),
    Method("RemoveAt", &Array::RemoveAt),
    Method("FindDuplicates", &Array::FindDuplicates),
    {},
};

// The vector that an operand names as a whole; null for a value or an element.
VectorArgument OperandVector(const tagMSOOBJVECT& operand) {
  if (operand.indices.ElementCount() != 0) return {};
  auto* vector = dynamic_cast<TCAllVectorNonTemplBase*>(operand.object);
  return {vector, vector == nullptr ? 0 : vector->GetVecArrayIndex(&operand.indices)};
}

void Apply(unsigned code, CStringUTF8& text, const CStringUTF8& operand) {
  if (code == operation::kAssign) {
    text = operand;
  } else {
    text += operand.View();
  }
}

}  // namespace

TCVectorString::TCVectorString(void** args, unsigned type_id, unsigned rows, bool is_array)
    : Base((type_id & kTypeIdMask) | kFlagVector), rows_(is_array && rows > 0 ? rows : 1) {
  if (args == nullptr || *args == nullptr) return;
  const int error = vela::member::Run(
      static_cast<CTCall*>(*args), vela::member::AtLeast(1), [&](Arguments& call) {
        StoreRow(0, vela::text::ElementTexts(vela::RequiredVector(call, 0)));
      });
  if (error != status::kOk) vela::ReportError(status::kReportBadInitialiser, args);
}

TCVectorString::TCVectorString(const TCVectorString& other)
    : Base(other.GetTypeID()), rows_(other.rows_) {}

const CRuntimeClass* TCVectorString::GetRuntimeClass() const {
  static const CRuntimeClass runtime_class{"TCVectorString", sizeof(TCVectorString),
                                           TCAllVectorNonTemplBase::GetRuntimeClass()};
  return &runtime_class;
}

const CClassMember* TCVectorString::MemberTable() { return kStringArrayMembers; }

CScriptVelaObject* TCVectorString::CreateCopy() { return vela::NewCopy(*this); }

int TCVectorString::IsSameTypeAndMemoryModel(const CScriptVelaObject* other) const {
  return dynamic_cast<const TCVectorString*>(other) != nullptr;
}

int TCVectorString::Locate(const MSOINDICES* at, CStringUTF8*& element) {
  const int row = GetVecArrayIndex(at);
  if (row < 0) return status::kUnresolved;
  if (row >= RowCount()) return status::kOutOfRange;
  const int index = at == nullptr || at->ElementCount() == 0 ? 0 : at->element;
  if (index < 0) return status::kNegativeElement;
  if (static_cast<std::size_t>(index) >= RowSize(row)) return status::kOutOfRange;
  element = &rows_[row][static_cast<std::size_t>(index)];
  return status::kOk;
}

template <class U>
int TCVectorString::Read(const MSOINDICES* at, U& value) {
  CStringUTF8* element;
  if (const int error = Locate(at, element); error != status::kOk) return error;
  if constexpr (std::is_same_v<U, CStringUTF8>) {
    value = *element;
  } else {
    value = vela::ConvertValue<U>(vela::text::NumberOf(*element));
  }
  return status::kOk;
}

template <class U>
int TCVectorString::Write(const MSOINDICES* at, const U& value) try {
  return SetStringValue(at, vela::ValueText(value));
} catch (...) {
  return vela::member::StatusOfException();
}

unsigned TCVectorString::GetTypeIDCheckIndex(const MSOINDICES* at) {
  if (at != nullptr && at->ElementCount() != 0) {
    return IsValidElement(at) ? unsigned{kTypeString} : unsigned{kTypeNone};
  }
  const int row = GetVecArrayIndex(at);
  return row >= 0 && row < RowCount() ? GetTypeID() : unsigned{kTypeNone};
}

void* TCVectorString::GetArrayElement(const MSOINDICES* at, int index) {
  const MSOINDICES indices = (at == nullptr ? MSOINDICES{} : *at).WithElement(index);
  CStringUTF8* element;
  return Locate(&indices, element) == status::kOk ? element : nullptr;
}

int TCVectorString::GetUpperBound(const MSOINDICES* at, int& upper) {
  const int row = GetVecArrayIndex(at);
  if (row < 0) return status::kUnresolved;
  if (row >= RowCount()) return status::kOutOfRange;
  upper = static_cast<int>(RowSize(row)) - 1;
  return status::kOk;
}

int TCVectorString::IsValidElement(const MSOINDICES* at) {
  CStringUTF8* element;
  return Locate(at, element) == status::kOk;
}

int TCVectorString::SetVectorDimension(const MSOINDICES* at, int size) {
  const int row = GetVecArrayIndex(at);
  if (row < 0) return status::kUnresolved;
  if (row >= RowCount()) return status::kOutOfRange;
  return RawResize(row, size);
}

int TCVectorString::RawResize(int row, std::int64_t size) try {
  if (size < 0 || size > static_cast<std::int64_t>(kMostElements)) return status::kCannotResize;
  rows_[row].resize(static_cast<std::size_t>(size));
  return status::kOk;
} catch (...) {
  return status::kCannotResize;
}

int TCVectorString::ResizeWithLowerBound(int row, std::int64_t size, int) {
  return RawResize(row, size);
}

void TCVectorString::StoreRow(int row, Texts&& texts) {
  if (texts.size() > kMostElements) throw std::length_error("vector too long");
  rows_[row] = std::move(texts);
  SetModify(1);
}

void TCVectorString::AppendRow(int row, Texts&& texts) {
  Texts& to = rows_[row];
  if (texts.size() > kMostElements - to.size()) throw std::length_error("vector too long");
  to.insert(to.end(), std::make_move_iterator(texts.begin()), std::make_move_iterator(texts.end()));
  SetModify(1);
}

int TCVectorString::GetString(CStringUTF8& text) {
  text.Format("string(%d)", static_cast<int>(RowSize(0)));
  return 1;
}

int TCVectorString::GetString(const MSOINDICES* at, CStringUTF8& text) {
  if (at != nullptr && at->ElementCount() != 0) return Read(at, text);
  GetString(text);
  return status::kOk;
}

int TCVectorString::SetString(const MSOINDICES* at, const char* text) try {
  return SetStringValue(at, CStringUTF8(text));
} catch (...) {
  return vela::member::StatusOfException();
}

int TCVectorString::SetStringValue(const MSOINDICES* at, const CStringUTF8& text) try {
  CStringUTF8* element;
  if (const int error = Locate(at, element); error != status::kOk) return error;
  *element = text;
  return status::kOk;
} catch (...) {
  return vela::member::StatusOfException();
}

int TCVectorString::SetNumericValue(const MSOINDICES* at, char value) try {
  return SetStringValue(at, make_str_from_char(value));
} catch (...) {
  return vela::member::StatusOfException();
}

int TCVectorString::GetDisplaySize(int& rows, int& cols) {
  return GetDisplaySizeEx(nullptr, rows, cols);
}

int TCVectorString::GetDisplaySizeEx(const MSOINDICES* at, int& rows, int& cols) {
  int upper = 0;
  if (const int error = GetUpperBound(at, upper); error != status::kOk) return error;
  rows = upper + 1;
  cols = 1;
  return status::kOk;
}

int TCVectorString::GetDisplayElement(CStringUTF8& text, int index) {
  const MSOINDICES at = index < 0 ? MSOINDICES{} : MSOINDICES::Element(index);
  return GetDisplayElementEx(text, &at);
}

int TCVectorString::GetDisplayElementEx(CStringUTF8& text, const MSOINDICES* at) {
  if (GetString(at, text) != status::kOk) text = "Error: Value cannot be determined";
  return status::kOk;
}

int TCVectorString::ResetValue() {
  for (Texts& row : rows_) row.clear();
  return status::kOk;
}

int TCVectorString::Operate2(const MSOINDICES* at, unsigned op, const tagMSOOBJVECT& operand,
                             unsigned options) try {
  const unsigned code = op & operation::kCodeMask;
  if (code != operation::kAssign && code != operation::kAdd) return status::kFailed;
  if (at == nullptr || at->ElementCount() == 0) {
    const int row = GetVecArrayIndex(at);
    if (row < 0) return status::kUnresolved;
    if (row >= RowCount()) return status::kOutOfRange;
    return OperateOnRow(row, code, operand, options);
  }
  CStringUTF8 text;
  if (const int error = vela::text::OperandText(operand, text); error != status::kOk) return error;
  CStringUTF8* element;
  if (const int error = Locate(at, element); error != status::kOk) return error;
  Apply(code, *element, text);
  return status::kOk;
} catch (...) {
  return vela::member::StatusOfException();
}

int TCVectorString::OperateOnRow(int row, unsigned code, const tagMSOOBJVECT& operand,
                                 unsigned options) {
  const VectorArgument source = OperandVector(operand);
  Texts& texts = rows_[row];
  if (!source) {
    CStringUTF8 text;
    if (const int error = vela::text::OperandText(operand, text); error != status::kOk) {
      return error;
    }
    if (texts.empty()) texts.resize(1);
    for (CStringUTF8& element : texts) Apply(code, element, text);
    SetModify(1);
    return status::kOk;
  }
  if (source.row < 0 || source.row >= source.vector->RowCount()) return status::kOutOfRange;
  Texts operands = vela::text::ElementTexts(source);
  if (code == operation::kAssign) {
    if ((options & operation::kAppend) != 0) {
      AppendRow(row, std::move(operands));
    } else {
      StoreRow(row, std::move(operands));
    }
    return status::kOk;
  }
  const bool broadcast = (options & operation::kBroadcast) != 0 && operands.size() == 1;
  if (!broadcast && operands.size() != texts.size()) return status::kFailed;
  for (std::size_t i = 0; i < texts.size(); ++i) {
    Apply(code, texts[i], operands[broadcast ? 0 : i]);
  }
  SetModify(1);
  return status::kOk;
}
