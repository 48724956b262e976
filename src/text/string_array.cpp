#include "text/string_array.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <utility>

#include "frame/container/container_arguments.h"
#include "frame/element_value.h"
#include "frame/interface/host_services.h"
#include "frame/library_state.h"
#include "frame/numeric_object.h"
#include "text/operand_text.h"

using vela::Layer;
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
  int row;
  std::size_t index;
  const int error = Base::Locate(at, row, index);
  if (error == status::kOk) element = &rows_[row][index];
  return error;
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

void* TCVectorString::GetArrayElement(const MSOINDICES* at, int index) {
  const MSOINDICES indices = (at == nullptr ? MSOINDICES{} : *at).WithElement(index);
  CStringUTF8* element;
  return Locate(&indices, element) == status::kOk ? element : nullptr;
}

int TCVectorString::ReadElements(int row, std::size_t offset, const vela::ElementSpan& to) {
  for (std::size_t i = 0; i < to.size; ++i) {
    const double number = vela::text::NumberOf(rows_[row][offset + i]);
    vela::ConvertElements(vela::ConstElementSpan(std::span(&number, 1)), to.Part(i, 1));
  }
  return status::kOk;
}

int TCVectorString::StoreElements(int row, std::size_t offset,
                                  const vela::ConstElementSpan& from) try {
  vela::WithElements(from, [&]<class T>(std::span<T> values) {
    Texts texts;
    texts.reserve(values.size());
    for (const T& value : values) texts.push_back(vela::ValueText(value));
    std::move(texts.begin(), texts.end(), rows_[row].begin() + static_cast<std::ptrdiff_t>(offset));
  });
  return status::kOk;
} catch (...) {
  return vela::member::StatusOfException();
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
  AnnounceChange(row);
}

void TCVectorString::AppendRow(int row, Texts&& texts) {
  Texts& to = rows_[row];
  if (texts.size() > kMostElements - to.size()) throw std::length_error("vector too long");
  to.insert(to.end(), std::make_move_iterator(texts.begin()), std::make_move_iterator(texts.end()));
  AnnounceChange(row);
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

bool TCVectorString::IsOperation(unsigned code) const {
  return code == operation::kAssign || code == operation::kAdd;
}

int TCVectorString::OperateOnElement(const MSOINDICES* at, unsigned code,
                                     const tagMSOOBJVECT& operand) {
  CStringUTF8 text;
  if (const int error = vela::text::OperandText(operand, text); error != status::kOk) return error;
  CStringUTF8* element;
  if (const int error = Locate(at, element); error != status::kOk) return error;
  Apply(code, *element, text);
  return status::kOk;
}

int TCVectorString::OperateWithValue(int row, unsigned code, const tagMSOOBJVECT& operand) {
  CStringUTF8 text;
  if (const int error = vela::text::OperandText(operand, text); error != status::kOk) return error;
  Texts& texts = rows_[row];
  if (texts.empty()) texts.resize(1);
  for (CStringUTF8& element : texts) Apply(code, element, text);
  AnnounceChange(row);
  return status::kOk;
}

int TCVectorString::OperateWithLayer(int row, unsigned code, const Layer& source,
                                     unsigned options) {
  Texts operands = vela::text::ElementTexts(source);
  if (code == operation::kAssign) {
    if ((options & operation::kAppend) != 0) {
      AppendRow(row, std::move(operands));
    } else {
      StoreRow(row, std::move(operands));
    }
    return status::kOk;
  }
  Texts& texts = rows_[row];
  const bool broadcast = (options & operation::kBroadcast) != 0 && operands.size() == 1;
  if (!broadcast && operands.size() != texts.size()) return status::kFailed;
  for (std::size_t i = 0; i < texts.size(); ++i) {
    Apply(code, texts[i], operands[broadcast ? 0 : i]);
  }
  AnnounceChange(row);
  return status::kOk;
}
