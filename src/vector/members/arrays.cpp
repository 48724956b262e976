// The row as an automation array. Complex and point elements have no automation type: status 12291.
#include "frame/container/container_arguments.h"
#include "vector/vector_base.h"

using vela::ArrayLayout;
using vela::member::Arguments;
using vela::member::Between;
using vela::member::Exactly;
using vela::member::Run;

namespace {

ArrayLayout OneDimension(Arguments& args, bool variants) {
  ArrayLayout layout;
  layout.variants = variants;
  if (args.Count() == 1) layout.lower_bound = args.Int(0);
  return layout;
}

}  // namespace

// GetAs1DArray(int lowerBound = 0): an array of the elements' automation type.
int TCAllVectorNonTemplBase::GetAs1DArray(CTCall* call) {
  return Run(call, Between(0, 1), [&](Arguments& args) {
    vela::ReturnArray(args, {this, Row(args)}, OneDimension(args, false));
  });
}

int TCAllVectorNonTemplBase::GetDataAsOneDimensionalArray(CTCall* call) {
  return GetAs1DArray(call);
}

// GetDataAsOneDimensionalArrayOfVariants(int lowerBound = 0): the same with each element in a
// variant of its own.
int TCAllVectorNonTemplBase::GetDataAsOneDimensionalArrayOfVariants(CTCall* call) {
  return Run(call, Between(0, 1), [&](Arguments& args) {
    vela::ReturnArray(args, {this, Row(args)}, OneDimension(args, true));
  });
}

// GetAs2DArray(int columns, BOOL variants): an array of two dimensions that the elements fill row
// by row. Status 8 for a column count below 1.
int TCAllVectorNonTemplBase::GetAs2DArray(CTCall* call) {
  return Run(call, Exactly(2), [&](Arguments& args) {
    ArrayLayout layout;
    layout.two_dimensional = true;
    layout.columns = args.Int(0);
    layout.variants = args.Int(1) != 0;
    vela::ReturnArray(args, {this, Row(args)}, layout);
  });
}
