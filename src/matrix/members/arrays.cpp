// A layer as an automation array, and from one.
#include <algorithm>

#include "frame/container/automation_input.h"
#include "frame/container/container_arguments.h"
#include "matrix/matrix_base.h"

using vela::member::Arguments;
using vela::member::Between;
using vela::member::Exactly;
using vela::member::Fail;
using vela::member::Run;

// GetAs2DArray(BOOL variants = 0): an array of rows by columns of the elements' automation type, or
// with each element in a variant of its own; an empty variant for a layer without elements. Complex
// elements have no automation type: status 12291.
int TCAllMatrixNonTemplBase::GetAs2DArray(CTCall* call) {
  return Run(call, Between(0, 1), [&](Arguments& args) {
    const vela::Layer layer = Addressed(args, status::kNoRow);
    vela::ArrayLayout layout;
    layout.two_dimensional = true;
    layout.columns = std::max(GetNumCols(layer.number), 1);
    layout.variants = args.Count() == 1 && args.Int(0) != 0;
    vela::ReturnArray(args, layer, layout);
  });
}

// SetByArrayInVariant(_VARIANT array): the layer becomes the array's elements, with its shape; one
// dimension is one row. 1, or 0 for a variant that holds no array of one or two dimensions. Status
// 3 for an argument that is no variant.
int TCAllMatrixNonTemplBase::SetByArrayInVariant(CTCall* call) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    const vela::Layer own = Addressed(args, status::kNoRow);
    const tagMSOOBJVECT source = args.Object(0);
    const VARIANT* value =
        source.object != nullptr ? source.object->GetVariantAddress(&source.indices) : nullptr;
    if (value == nullptr) Fail(status::kBadArguments);
    const auto array = vela::ReadArray(*value);
    if (!array) return args.Return(0);
    vela::StoreResult(own, array->shape, array->elements.Span());
    args.Return(1);
  });
}
