// Size, bounds and what else a vector tells of itself.
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

}  // namespace

// SetSize(int size): resizes the row, keeping what fits; 1. A negative row is left alone: 0.
int TCAllVectorNonTemplBase::SetSize(CTCall* call) {
  return Run(call, {1, ~0u, status::kFailed}, [&](Arguments& args) {
    if (IsForeignSizeForm(args)) return;
    if (args.Count() != 1) Fail(status::kBadArguments);
    const int size = args.Int(0);
    if (IsNegativeRow(args.Indices())) return args.Return(0);
    const int row = Row(args);
    Check(RawResize(row, size));
    AnnounceChange(row);
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
    if (IsNegativeRow(args.Indices())) Fail(status::kNoRow);
    const int row = Row(args);
    Check(RawResize(row, 0));
    AnnounceChange(row);
    args.Return(1);
  });
}

int TCAllVectorNonTemplBase::GetUpperBound(CTCall* call) {
  return Run(call, NoArguments(),
             [&](Arguments& args) { args.Return(static_cast<int>(RowSize(Row(args))) - 1); });
}

int TCAllVectorNonTemplBase::GetLowerBound(CTCall* call) {
  return Run(call, NoArguments(), [&](Arguments& args) { args.Return(LowerBoundOf(Row(args))); });
}

// GetInternalDataType(): the type id of the elements.
int TCAllVectorNonTemplBase::GetInternalDataType(CTCall* call) {
  return Run(call, NoArguments(),
             [&](Arguments& args) { args.Return(static_cast<int>(GetInternalDataTypeID())); });
}

// The data of a plain vector has no bounds to set and no host data to be valid.
int TCAllVectorNonTemplBase::IsValid(CTCall*) { return status::kUnsupported; }
int TCAllVectorNonTemplBase::SetUpperBound(CTCall*) { return status::kUnsupported; }
int TCAllVectorNonTemplBase::SetLowerBound(CTCall*) { return status::kUnsupported; }

// GetName(string& name): the name of the host's data, which is empty for a vector of its own; 0.
int TCAllVectorNonTemplBase::GetName(CTCall* call) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    Row(args);
    args.Set(0, "");
    args.Return(0);
  });
}

// GetOutputComment(string& comment): the text that SetOutputComment left with the vector; 0.
int TCAllVectorNonTemplBase::GetOutputComment(CTCall* call) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    Row(args);
    args.Set(0, output_comment_.c_str());
    args.Return(0);
  });
}

// SetOutputComment(string comment): keeps the text with the vector, whatever its rows; a copy of
// the vector starts without one. 0.
int TCAllVectorNonTemplBase::SetOutputComment(CTCall* call) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    Row(args);
    output_comment_ = args.Text(0);
    args.Return(0);
  });
}
