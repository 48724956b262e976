// The shape of a layer, and what of a matrix needs host data.
#include "frame/container/container_arguments.h"
#include "matrix/matrix_base.h"

using vela::Layer;
using vela::member::Arguments;
using vela::member::AtLeast;
using vela::member::Check;
using vela::member::NoArguments;
using vela::member::Run;

// SetSize(int rows, int cols, int keep = 0): 1, or 0 for a layer number below 0.
int TCAllMatrixNonTemplBase::SetSize(CTCall* call) {
  return Run(call, {1, ~0u, status::kFailed}, [&](Arguments& args) {
    if (args.Count() > 3) vela::member::Fail(status::kBadArguments);
    const int rows = args.Int(0);
    const int cols = args.Int(1);
    const int keep = args.Count() == 3 ? args.Int(2) : 0;
    if (LayerCount() == 0) vela::member::Fail(status::kUnsupported);
    const int layer = args.Indices().ObjectIndex();
    if (layer < 0) return args.Return(0);
    Check(SetLayerSize(layer, rows, cols, keep));
    Update(layer);
    args.Return(1);
  });
}

int TCAllMatrixNonTemplBase::GetNumRows(CTCall* call) {
  return Run(call, NoArguments(), [&](Arguments& args) {
    args.Return(GetNumRows(Addressed(args, status::kFailed).number));
  });
}

int TCAllMatrixNonTemplBase::GetNumCols(CTCall* call) {
  return Run(call, NoArguments(), [&](Arguments& args) {
    args.Return(GetNumCols(Addressed(args, status::kFailed).number));
  });
}

// GetInternalDataType(): the type id of the elements.
int TCAllMatrixNonTemplBase::GetInternalDataType(CTCall* call) {
  return Run(call, NoArguments(),
             [&](Arguments& args) { args.Return(static_cast<int>(GetInternalDataTypeID())); });
}

// A matrix of its own has no source of host data.
int TCAllMatrixNonTemplBase::GetSourceDim(CTCall* call) {
  return Run(call, AtLeast(0), [&](Arguments& args) {
    Addressed(args, status::kNoRow);
    return int{status::kUnsupported};
  });
}

int TCAllMatrixNonTemplBase::CopyFromWks(CTCall* call) {
  return Run(call, AtLeast(1), [&](Arguments& args) {
    Addressed(args, status::kNoRow);
    return int{status::kUnsupported};
  });
}

int TCAllMatrixNonTemplBase::PutRecordset(CTCall* call) { return CopyFromWks(call); }
