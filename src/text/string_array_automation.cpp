// Texts as automation arrays.
#include "text/string_array.h"
#include "vector/automation_values.h"

using vela::ArrayLayout;
using vela::member::Arguments;
using vela::member::Between;
using vela::member::Check;
using vela::member::Exactly;
using vela::member::Run;

void TCVectorString::ReturnArray(Arguments& args, const ArrayLayout& layout) {
  const int row = Row(args);
  vela::ReturnValuesAsArray(args, VT_BSTR, RowSize(row), layout, [&](std::size_t i) {
    const MSOINDICES at = MSOINDICES::Object(row).WithElement(static_cast<int>(i));
    VARIANT value;
    VariantInit(&value);
    Check(GetIntoVariant(&at, &value));
    return value;
  });
}

int TCVectorString::GetAs1DArray(CTCall* call) {
  return Run(call, Between(0, 1), [&](Arguments& args) {
    ArrayLayout layout;
    if (args.Count() == 1) layout.lower_bound = args.Int(0);
    ReturnArray(args, layout);
  });
}

int TCVectorString::GetDataAsOneDimensionalArray(CTCall* call) { return GetAs1DArray(call); }

int TCVectorString::GetAs2DArray(CTCall* call) {
  return Run(call, Exactly(2), [&](Arguments& args) {
    ArrayLayout layout;
    layout.two_dimensional = true;
    layout.columns = args.Int(0);
    layout.variants = args.Int(1) != 0;
    ReturnArray(args, layout);
  });
}
