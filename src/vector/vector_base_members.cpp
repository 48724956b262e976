// The members of every vector that need no element type, and the refusals of those that do.
#include <algorithm>
#include <string>
#include <string_view>

#include "frame/library_state.h"
#include "vector/vector_base.h"

using vela::member::Arguments;
using vela::member::Check;
using vela::member::Exactly;
using vela::member::Fail;
using vela::member::NoArguments;
using vela::member::Run;

namespace {

// Host object whose dimensions SetSize could take, in a call of four arguments.
constexpr unsigned kTypeSizeSource = 61;

// The forms of SetSize that are another object's business: they succeed and do nothing.
bool IsForeignSizeForm(const Arguments& args) {
  const unsigned type_id = args.TypeId(0);
  return (args.Count() == 4 && (type_id & kTypeIdMask) == kTypeSizeSource) ||
         (args.Count() == 2 && (type_id & (kFlagAnyContainer | kFlagAnyMatrix)) != 0);
}

bool IsNegativeRow(const MSOINDICES& at) {
  return at.ObjectKind() == MSOINDICES::kOneObject && at.index < 0;
}

// Texts that stand for elements read back as what they were.
bool ExchangesText(unsigned type_id) {
  return !vela::WithElementType(
      type_id, []<class T>() { return vela::ComplexElement<T> || vela::PointElement<T>; });
}

constexpr std::string_view kSeparators = " \t\r\n\v\f,;";

// Calls use(word) for each run of characters other than separators; how many.
template <class Use>
std::int64_t ForEachWord(std::string_view text, Use use) {
  std::int64_t count = 0;
  for (std::size_t begin = text.find_first_not_of(kSeparators); begin != text.npos;) {
    const std::size_t end = std::min(text.find_first_of(kSeparators, begin), text.size());
    use(count++, text.substr(begin, end - begin));
    begin = text.find_first_not_of(kSeparators, end);
  }
  return count;
}

}  // namespace

// SetSize(int size): resizes the row, keeping what fits; 1. A negative row is left alone: 0.
int TCAllVectorNonTemplBase::SetSize(CTCall* call) {
  return Run(call, {1, ~0u, status::kFailed}, [&](Arguments& args) {
    if (IsForeignSizeForm(args)) return;
    if (args.Count() != 1) Fail(status::kBadArguments);
    const int size = args.Int(0);
    if (IsNegativeRow(args.Indices())) return args.Return(0);
    Check(RawResize(Row(args), size));
    SetModify(1);
    args.Return(1);
  });
}

// GetSize(): the number of elements.
int TCAllVectorNonTemplBase::GetSize(CTCall* call) {
  return Run(call, NoArguments(),
             [&](Arguments& args) { args.Return(static_cast<int>(RowSize(Row(args)))); });
}

// RemoveAll(): empties the row; 1. Status -1 for a negative row.
int TCAllVectorNonTemplBase::RemoveAll(CTCall* call) {
  return Run(call, NoArguments(), [&](Arguments& args) {
    if (IsNegativeRow(args.Indices())) Fail(-1);
    Check(RawResize(Row(args), 0));
    SetModify(1);
    args.Return(1);
  });
}

// GetInternalDataType(): the type id of the elements.
int TCAllVectorNonTemplBase::GetInternalDataType(CTCall* call) {
  return Run(call, NoArguments(),
             [&](Arguments& args) { args.Return(static_cast<int>(GetInternalDataTypeID())); });
}

// GetParleyVectorValue(string text): the row becomes the words of the text, each read as the text
// of an element (unreadable numbers are missing); white space, commas and semicolons part them. How
// many. Status 1 while the host has set no context, 12291 for elements that no word can stand for.
int TCAllVectorNonTemplBase::GetParleyVectorValue(CTCall* call) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    if (!vela::HasHostContext()) Fail(status::kFailed);
    const int row = Row(args);
    if (!ExchangesText(GetInternalDataTypeID())) Fail(status::kUnsupported);
    const CStringUTF8 text = args.Text(0);
    const std::int64_t count = ForEachWord(text.View(), [](std::int64_t, std::string_view) {});
    Check(RawResize(row, count));
    ForEachWord(text.View(), [&](std::int64_t i, std::string_view word) {
      const MSOINDICES at = MSOINDICES::Object(row).WithElement(static_cast<int>(i));
      Check(SetString(&at, std::string(word).c_str()));
    });
    SetModify(1);
    args.Return(static_cast<int>(count));
  });
}

// SetParleyVectorValue(string& text): the text becomes the elements' texts with a space between
// them; how many. Statuses as above.
int TCAllVectorNonTemplBase::SetParleyVectorValue(CTCall* call) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    if (!vela::HasHostContext()) Fail(status::kFailed);
    const int row = Row(args);
    if (!ExchangesText(GetInternalDataTypeID())) Fail(status::kUnsupported);
    const int count = static_cast<int>(RowSize(row));
    CStringUTF8 text;
    CStringUTF8 element;
    for (int i = 0; i < count; ++i) {
      const MSOINDICES at = MSOINDICES::Object(row).WithElement(i);
      Check(GetString(&at, element));
      if (i > 0) text += ' ';
      text += element.View();
    }
    args.Set(0, text.c_str());
    args.Return(count);
  });
}

// Elements of no numeric type take each value by their own conversion.
int TCAllVectorNonTemplBase::StoreRun(int row, std::size_t offset, const vela::ElementRun& run) {
  return vela::WithElementType(run.type_id, [&]<class T>() -> int {
    int next = static_cast<int>(offset);
    for (const T& element : run.As<T>()) {
      const MSOINDICES at = MSOINDICES::Object(row).WithElement(next++);
      if (const int error = SetNumericValue(&at, element); error != status::kOk) return error;
    }
    SetModify(1);
    return status::kOk;
  });
}

int TCAllVectorNonTemplBase::Append(CTCall*) { return status::kUnsupported; }
int TCAllVectorNonTemplBase::Sort(CTCall*) { return status::kUnsupported; }
int TCAllVectorNonTemplBase::Reorder(CTCall*) { return status::kUnsupported; }
int TCAllVectorNonTemplBase::Sum(CTCall*) { return status::kUnsupported; }
int TCAllVectorNonTemplBase::GetMinMax(CTCall*) { return status::kUnsupported; }
int TCAllVectorNonTemplBase::Difference(CTCall*) { return status::kUnsupported; }
int TCAllVectorNonTemplBase::FrequencyCount(CTCall*) { return status::kUnsupported; }
int TCAllVectorNonTemplBase::GetBytes(CTCall*) { return status::kUnsupported; }
int TCAllVectorNonTemplBase::SetBytes(CTCall*) { return status::kUnsupported; }
int TCAllVectorNonTemplBase::Data(CTCall*) { return status::kUnsupported; }
int TCAllVectorNonTemplBase::Uniform(CTCall*) { return status::kUnsupported; }
int TCAllVectorNonTemplBase::Normal(CTCall*) { return status::kUnsupported; }
int TCAllVectorNonTemplBase::Wrap(CTCall*) { return status::kUnsupported; }
int TCAllVectorNonTemplBase::IsValid(CTCall*) { return status::kUnsupported; }
int TCAllVectorNonTemplBase::GetSubVector(CTCall*) { return status::kUnsupported; }
int TCAllVectorNonTemplBase::SetSubVector(CTCall*) { return status::kUnsupported; }
int TCAllVectorNonTemplBase::SetUpperBound(CTCall*) { return status::kUnsupported; }
int TCAllVectorNonTemplBase::SetLowerBound(CTCall*) { return status::kUnsupported; }
int TCAllVectorNonTemplBase::GetDataAsOneDimensionalArray(CTCall*) { return status::kUnsupported; }
int TCAllVectorNonTemplBase::GetAs1DArray(CTCall*) { return status::kUnsupported; }
int TCAllVectorNonTemplBase::Find(CTCall*) { return status::kUnsupported; }
int TCAllVectorNonTemplBase::GetAs2DArray(CTCall*) { return status::kUnsupported; }
int TCAllVectorNonTemplBase::Average(CTCall*) { return status::kUnsupported; }
int TCAllVectorNonTemplBase::GetReal(CTCall*) { return status::kUnsupported; }
int TCAllVectorNonTemplBase::GetImaginary(CTCall*) { return status::kUnsupported; }
int TCAllVectorNonTemplBase::GetAmplitude(CTCall*) { return status::kUnsupported; }
int TCAllVectorNonTemplBase::GetPhase(CTCall*) { return status::kUnsupported; }
int TCAllVectorNonTemplBase::Conjugate(CTCall*) { return status::kUnsupported; }
int TCAllVectorNonTemplBase::MakeComplex(CTCall*) { return status::kUnsupported; }
int TCAllVectorNonTemplBase::GetUpperBound(CTCall*) { return status::kUnsupported; }
int TCAllVectorNonTemplBase::GetLowerBound(CTCall*) { return status::kUnsupported; }
int TCAllVectorNonTemplBase::GetName(CTCall*) { return status::kUnsupported; }
int TCAllVectorNonTemplBase::TrimLeft(CTCall*) { return status::kUnsupported; }
int TCAllVectorNonTemplBase::TrimRight(CTCall*) { return status::kUnsupported; }
int TCAllVectorNonTemplBase::Trim(CTCall*) { return status::kUnsupported; }
int TCAllVectorNonTemplBase::CopyData(CTCall*) { return status::kUnsupported; }
int TCAllVectorNonTemplBase::Replace(CTCall*) { return status::kUnsupported; }
int TCAllVectorNonTemplBase::InsertValue(CTCall*) { return status::kUnsupported; }
int TCAllVectorNonTemplBase::GetOutputComment(CTCall*) { return status::kUnsupported; }
int TCAllVectorNonTemplBase::SetOutputComment(CTCall*) { return status::kUnsupported; }
int TCAllVectorNonTemplBase::Abs(CTCall*) { return status::kUnsupported; }
int TCAllVectorNonTemplBase::Pattern(CTCall*) { return status::kUnsupported; }
int TCAllVectorNonTemplBase::Merge(CTCall*) { return status::kUnsupported; }
int TCAllVectorNonTemplBase::Product(CTCall*) { return status::kUnsupported; }
