// The members of "_VARIANT".
#include <algorithm>

#include "frame/container/automation_input.h"
#include "frame/container/locked_array.h"
#include "scalar/variant_argument.h"
#include "scalar/variant_object.h"

using vela::LockedArray;
using vela::member::Arguments;
using vela::member::Exactly;
using vela::member::Fail;
using vela::member::NoArguments;
using vela::member::Run;
using vela::member::RunSetter;

namespace {

// Deeper values would overflow the stack of whoever copies or clears them.
constexpr int kDeepestArray = 100;

bool IsArrayOfVariants(const VARIANT& value) {
  return value.vt == (VT_ARRAY | VT_VARIANT) && value.parray != nullptr;
}

struct Bounds {
  std::int64_t lower = 0;
  std::int64_t upper = -1;
  std::size_t Size() const {
    return static_cast<std::size_t>(std::max<std::int64_t>(upper - lower + 1, 0));
  }
};

Bounds BoundsOf(SAFEARRAY* array, UINT dimension) {
  LONG lower = 0, upper = -1;
  if (FAILED(SafeArrayGetLBound(array, dimension, &lower)) ||
      FAILED(SafeArrayGetUBound(array, dimension, &upper))) {
    Fail(status::kBadValue);
  }
  return {lower, upper};
}

std::size_t CellCount(SAFEARRAY* array) {
  std::size_t count = 1;
  for (UINT dimension = 1; dimension <= SafeArrayGetDim(array); ++dimension) {
    count *= BoundsOf(array, dimension).Size();
  }
  return count;
}

// How many arrays lie inside each other in a value; it looks no deeper than is allowed.
int DepthOf(const VARIANT& value, int deepest = kDeepestArray + 1) {
  if ((value.vt & VT_ARRAY) == 0) return 0;
  if (deepest == 0 || !IsArrayOfVariants(value)) return 1;
  const LockedArray cells(value.parray);
  const auto* cell = static_cast<const VARIANT*>(cells.Get());
  int inner = 0;
  for (std::size_t i = CellCount(value.parray); i > 0; --i, ++cell) {
    inner = std::max(inner, DepthOf(*cell, deepest - 1));
  }
  return 1 + inner;
}

// What a failed copy leaves in its place.
CComVariant FailureValue(HRESULT code) {
  CComVariant value;
  value.vt = VT_ERROR;
  value.scode = code;
  return value;
}

// A count of elements as the array functions take it; a negative one is more than there can be.
SAFEARRAYBOUND Bound(int count, int lower) { return {static_cast<ULONG>(count), lower}; }

}  // namespace

CComVariant& TCVariantObj::Addressed(Arguments& args) {
  CComVariant* value = Value(&args.Indices());
  if (value == nullptr) Fail(status::kUnresolved);
  return *value;
}

int TCVariantObj::GetVt(CTCall* call) {
  return Run(call, NoArguments(), [&](Arguments& args) { args.Return(int{Addressed(args).vt}); });
}

int TCVariantObj::SetVt(CTCall* call) {
  return RunSetter(call, [](Arguments&) { Fail(status::kUnsupported); });
}

int TCVariantObj::GetSubVariant(CTCall* call) {
  return Run(call, Exactly(2), [&](Arguments& args) {
    const CComVariant& array = Addressed(args);
    const int index = args.Int(0);
    if (index < 0 || !IsArrayOfVariants(array)) Fail(status::kBadValue);
    const tagMSOOBJVECT target = args.Reference(1);
    if (target.object == nullptr || target.object->GetVariantAddress(&target.indices) == nullptr) {
      Fail(status::kBadValue);
    }
    if (static_cast<std::size_t>(index) >= CellCount(array.parray)) return args.Return(0);
    CComVariant element;
    {
      const LockedArray cells(array.parray);
      element = static_cast<const VARIANT*>(cells.Get())[index];
    }
    // The array itself may be the target: the copy is made and the lock is gone.
    vela::member::Check(target.object->SetFromVariant(&target.indices, &element));
    args.Return(1);
  });
}

int TCVariantObj::CreateAsArray(CTCall* call) {
  return Run(call, Exactly(5), [&](Arguments& args) {
    CComVariant& value = Addressed(args);
    const int type = args.Int(0);
    const int count1 = args.Int(1), count2 = args.Int(2);
    const SAFEARRAYBOUND bounds[] = {Bound(count1, args.Int(3)), Bound(count2, args.Int(4))};
    value.Clear();
    const bool is_type = type >= 0 && type <= VT_TYPEMASK;
    SAFEARRAY* array =
        is_type && count1 >= 0
            ? vela::CreateArray(static_cast<VARTYPE>(type), std::span(bounds, count2 >= 1 ? 2 : 1))
            : nullptr;
    if (array == nullptr) return args.Return(0);
    value.vt = static_cast<VARTYPE>(type | VT_ARRAY);
    value.parray = array;
    args.Return(1);
  });
}

int TCVariantObj::SetOneVariantInArray(CTCall* call) {
  return Run(call, Exactly(3), [&](Arguments& args) {
    CComVariant& value = Addressed(args);
    if (!IsArrayOfVariants(value)) Fail(status::kBadValue);
    const int index1 = args.Int(1), index2 = args.Int(2);
    if (index1 < 0 || index2 < 0) Fail(status::kBadValue);
    const UINT dimensions = SafeArrayGetDim(value.parray);
    if (dimensions != 1 && dimensions != 2) Fail(status::kBadValue);
    const std::size_t count1 = BoundsOf(value.parray, 1).Size();
    const std::size_t count2 = dimensions == 2 ? BoundsOf(value.parray, 2).Size() : 1;
    const auto first = static_cast<std::size_t>(index1), second = static_cast<std::size_t>(index2);
    if (first >= count1 || second >= count2) return args.Return(0);
    const auto store = [&](CComVariant&& element) {
      const LockedArray cells(value.parray);
      VARIANT& cell = static_cast<VARIANT*>(cells.Get())[count1 * second + first];
      CComVariant::Check(VariantClear(&cell));
      cell = element.Detach();
    };
    try {
      CComVariant element = vela::VariantArgument(args, 0);
      if (DepthOf(element) >= kDeepestArray) Fail(status::kBadValue);
      store(std::move(element));
    } catch (const AutomationError& error) {
      store(FailureValue(error.code));
      throw;
    }
    args.Return(1);
  });
}

int TCVariantObj::GetNumDimensions(CTCall* call) {
  return Run(call, NoArguments(), [&](Arguments& args) {
    SAFEARRAY* array = ArrayIn(Addressed(args));
    if (array == nullptr) Fail(status::kBadValue);
    args.Return(SafeArrayGetDim(array));
  });
}

int TCVariantObj::GetSize(CTCall* call) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    SAFEARRAY* array = ArrayIn(Addressed(args));
    const int dimension = args.Int(0);
    if (array == nullptr || dimension < 1 ||
        static_cast<UINT>(dimension) > SafeArrayGetDim(array)) {
      Fail(status::kBadValue);
    }
    const Bounds bounds = BoundsOf(array, static_cast<UINT>(dimension));
    args.Return(bounds.upper == -1 ? 0 : static_cast<int>(bounds.Size()));
  });
}

int TCVariantObj::SetHWND(CTCall* call) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    CComVariant& value = Addressed(args);
    const std::uint64_t handle = args.Handle(0);
    value.Clear();
    value.vt = VT_UI8;
    value.ullVal = handle;
  });
}
