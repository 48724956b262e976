#include "tools/automation_grid/arrays.h"

#include <limits>
#include <string>
#include <vector>

#include "tools/automation_grid/describe.h"
#include "tools/automation_grid/samples.h"

namespace vela::grid {
namespace {

constexpr LONG kLeast = std::numeric_limits<LONG>::min();
constexpr LONG kMost = std::numeric_limits<LONG>::max();
// What the published flags say; the others are the implementation's own.
constexpr int kPublished = FADF_AUTO | FADF_STATIC | FADF_EMBEDDED | FADF_FIXEDSIZE | FADF_RECORD |
                           FADF_HAVEIID | FADF_HAVEVARTYPE | FADF_BSTR | FADF_UNKNOWN |
                           FADF_DISPATCH | FADF_VARIANT;

using Bounds = std::vector<SAFEARRAYBOUND>;

std::string Text(const Bounds& bounds) {
  std::string text;
  for (const auto& bound : bounds) {
    text += "[" + std::to_string(bound.cElements) + " from " + std::to_string(bound.lLbound) + "]";
  }
  return text;
}

std::string DescribeArray(SAFEARRAY* array) {
  if (array == nullptr) return "null";
  VARTYPE type = VT_EMPTY;
  const HRESULT code = SafeArrayGetVartype(array, &type);
  std::string text = SUCCEEDED(code) ? NameOf(type) : NameOf(code);
  text += " size " + std::to_string(SafeArrayGetElemsize(array)) + " features " +
          HexText(array->fFeatures & kPublished);
  text += array->pvData == nullptr ? " no data" : " data";
  for (UINT dimension = 0; dimension <= SafeArrayGetDim(array) + 1; ++dimension) {
    LONG lower = 0;
    LONG upper = 0;
    const HRESULT lower_code = SafeArrayGetLBound(array, dimension, &lower);
    const HRESULT upper_code = SafeArrayGetUBound(array, dimension, &upper);
    text += " " + (FAILED(lower_code) ? NameOf(lower_code) : std::to_string(lower)) + ".." +
            (FAILED(upper_code) ? NameOf(upper_code) : std::to_string(upper));
  }
  return text;
}

SAFEARRAY* Create(VARTYPE type, Bounds bounds) {
  return SafeArrayCreate(type, static_cast<UINT>(bounds.size()), bounds.data());
}

void PrintCode(const std::string& call, HRESULT code) { Print(call + " -> " + NameOf(code)); }

void Creation() {
  for (const int flag : {0, int{VT_ARRAY}, int{VT_BYREF}, int{VT_VECTOR}, int{VT_RESERVED}}) {
    for (int number = 0; number < 80; ++number) {
      const auto type = static_cast<VARTYPE>(flag | number);
      for (const bool vector : {false, true}) {
        if (number == VT_RECORD) continue;  // needs a description of the record
        SAFEARRAY* array =
            vector ? SafeArrayCreateVector(type, -1, 3) : Create(type, {{2, 1}, {3, -5}});
        Print((vector ? "vector of " : "array of ") + NameOf(type) + " -> " + DescribeArray(array));
        SafeArrayDestroy(array);
      }
    }
  }
  const Bounds shapes[] = {{{0, 0}},
                           {{0, 5}},
                           {{0, -5}},
                           {{0, kLeast}},
                           {{0, kMost}},
                           {{1, kMost}},
                           {{1, kLeast}},
                           {{2, kMost}},
                           {{2, kMost - 1}},
                           {{3, -3}},
                           {{0, 0}, {3, 0}},
                           {{3, 0}, {0, 0}},
                           {{2, -1}, {3, 1}, {4, 10}},
                           {{1, 1}, {1, 1}, {1, 1}, {1, 1}, {1, 1}, {1, 1}, {1, 1}, {1, 1}}};
  for (const auto& shape : shapes) {
    for (const VARTYPE type : {VT_UI1, VT_R8, VT_VARIANT}) {
      SAFEARRAY* array = Create(type, shape);
      Print("array " + Text(shape) + " of " + NameOf(type) + " -> " + DescribeArray(array));
      SafeArrayDestroy(array);
    }
  }
  Print("array of no dimension -> " + DescribeArray(SafeArrayCreate(VT_I4, 0, nullptr)));
  SAFEARRAYBOUND bound = {1, 0};
  Print("array of too many dimensions -> " +
        DescribeArray(SafeArrayCreate(VT_I4, 0x10000, &bound)));
}

void Descriptors() {
  for (const UINT dimensions : {0u, 1u, 2u, 65535u, 65536u}) {
    SAFEARRAY* array = nullptr;
    PrintCode("descriptor " + std::to_string(dimensions),
              SafeArrayAllocDescriptor(dimensions, &array));
    if (array == nullptr) continue;
    Print("dimensions " + std::to_string(SafeArrayGetDim(array)));
    PrintCode("destroy descriptor", SafeArrayDestroyDescriptor(array));
  }
  PrintCode("descriptor null", SafeArrayAllocDescriptor(1, nullptr));
  for (const VARTYPE type : {VT_I4, VT_BSTR, VT_VARIANT, VT_UNKNOWN, VT_DISPATCH, VT_EMPTY}) {
    SAFEARRAY* array = nullptr;
    const std::string name = "of " + NameOf(type);
    PrintCode("descriptor " + name, SafeArrayAllocDescriptorEx(type, 2, &array));
    if (array == nullptr) continue;
    array->rgsabound[0] = {2, 0};
    array->rgsabound[1] = {3, 1};
    Print("descriptor " + name + " is " + DescribeArray(array));
    if (type != VT_EMPTY) PrintCode("data " + name, SafeArrayAllocData(array));
    Print("descriptor " + name + " then is " + DescribeArray(array));
    PrintCode("destroy data " + name, SafeArrayDestroyData(array));
    Print("descriptor " + name + " at last is " + DescribeArray(array));
    PrintCode("destroy data again " + name, SafeArrayDestroyData(array));
    PrintCode("destroy descriptor " + name, SafeArrayDestroyDescriptor(array));
  }
}

void NullArguments() {
  SAFEARRAYBOUND bound = {3, 0};
  LONG index = 0;
  LONG number = 5;
  void* data = nullptr;
  VARTYPE type = VT_EMPTY;
  SAFEARRAY* array = SafeArrayCreate(VT_I4, 1, &bound);
  SAFEARRAY* copy = nullptr;
  PrintCode("data null", SafeArrayAllocData(nullptr));
  PrintCode("destroy null", SafeArrayDestroy(nullptr));
  PrintCode("destroy data null", SafeArrayDestroyData(nullptr));
  PrintCode("destroy descriptor null", SafeArrayDestroyDescriptor(nullptr));
  Print("dimensions null -> " + std::to_string(SafeArrayGetDim(nullptr)));
  Print("size null -> " + std::to_string(SafeArrayGetElemsize(nullptr)));
  PrintCode("lower null", SafeArrayGetLBound(nullptr, 1, &number));
  PrintCode("lower to null", SafeArrayGetLBound(array, 1, nullptr));
  PrintCode("upper null", SafeArrayGetUBound(nullptr, 1, &number));
  PrintCode("upper to null", SafeArrayGetUBound(array, 1, nullptr));
  PrintCode("type null", SafeArrayGetVartype(nullptr, &type));
  PrintCode("type to null", SafeArrayGetVartype(array, nullptr));
  PrintCode("lock null", SafeArrayLock(nullptr));
  PrintCode("unlock null", SafeArrayUnlock(nullptr));
  PrintCode("access null", SafeArrayAccessData(nullptr, &data));
  PrintCode("access to null", SafeArrayAccessData(array, nullptr));
  PrintCode("unaccess null", SafeArrayUnaccessData(nullptr));
  PrintCode("pointer null", SafeArrayPtrOfIndex(nullptr, &index, &data));
  PrintCode("pointer of null", SafeArrayPtrOfIndex(array, nullptr, &data));
  PrintCode("pointer to null", SafeArrayPtrOfIndex(array, &index, nullptr));
  PrintCode("get null", SafeArrayGetElement(nullptr, &index, &number));
  PrintCode("get of null", SafeArrayGetElement(array, nullptr, &number));
  PrintCode("get to null", SafeArrayGetElement(array, &index, nullptr));
  PrintCode("put null", SafeArrayPutElement(nullptr, &index, &number));
  PrintCode("put of null", SafeArrayPutElement(array, nullptr, &number));
  PrintCode("copy null", SafeArrayCopy(nullptr, &copy));
  Print("copy null is " + DescribeArray(copy));
  PrintCode("copy to null", SafeArrayCopy(array, nullptr));
  PrintCode("redim null", SafeArrayRedim(nullptr, &bound));
  PrintCode("redim to null", SafeArrayRedim(array, nullptr));
  SafeArrayDestroy(array);
}

void Locks() {
  SAFEARRAYBOUND bound = {2, 0};
  for (const bool vector : {false, true}) {
    SAFEARRAY* array =
        vector ? SafeArrayCreateVector(VT_I2, 0, 2) : SafeArrayCreate(VT_I2, 1, &bound);
    const std::string name = vector ? "locked vector: " : "locked array: ";
    PrintCode(name + "unlock too early", SafeArrayUnlock(array));
    PrintCode(name + "lock", SafeArrayLock(array));
    PrintCode(name + "destroy", SafeArrayDestroy(array));
    PrintCode(name + "destroy data", SafeArrayDestroyData(array));
    PrintCode(name + "destroy descriptor", SafeArrayDestroyDescriptor(array));
    PrintCode(name + "redim", SafeArrayRedim(array, &bound));
    VARIANT holder = NewInteger(VT_ARRAY | VT_I2, 0);
    holder.parray = array;
    PrintCode(name + "clear", VariantClear(&holder));
    Print(name + "holder is " + Describe(holder));
    VARIANT other = {};
    PrintCode(name + "copy", VariantCopy(&other, &holder));
    Print(name + "locks of the copy " + std::to_string(other.parray->cLocks));
    PrintCode(name + "clear the copy", VariantClear(&other));
    HRESULT code = S_OK;
    int count = 1;
    while (SUCCEEDED(code) && count < 70000) {
      code = SafeArrayLock(array);
      if (SUCCEEDED(code)) ++count;
    }
    PrintCode(name + "lock " + std::to_string(count + 1), code);
    Print(name + "count " + std::to_string(array->cLocks));
    while (count-- > 0) code = SafeArrayUnlock(array);
    PrintCode(name + "last unlock", code);
    PrintCode(name + "destroy unlocked", SafeArrayDestroy(array));
  }
}

void Elements() {
  for (const VARIANT& sample : Samples()) {
    const bool plain = sample.vt != VT_EMPTY && sample.vt != VT_NULL && sample.vt < VT_VOID &&
                       sample.vt != 15 && sample.vt != VT_DISPATCH;
    const VARTYPE own = plain ? sample.vt : VARTYPE{VT_VARIANT};
    for (const VARTYPE type : {own, VARTYPE{VT_VARIANT}}) {
      SAFEARRAY* array = SafeArrayCreateVector(type, 4, 2);
      if (array == nullptr) continue;
      VARIANT value = sample;
      const bool itself = type == VT_BSTR || type == VT_UNKNOWN;
      void* source = type == VT_VARIANT   ? static_cast<void*>(&value)
                     : itself             ? static_cast<void*>(value.punkVal)
                     : type == VT_DECIMAL ? static_cast<void*>(&value.decVal)
                                          : static_cast<void*>(&value.llVal);
      LONG index = 5;
      const std::string name = " " + Describe(sample) + " in " + NameOf(type);
      PrintCode("put" + name, SafeArrayPutElement(array, &index, source));
      SAFEARRAY* copy = nullptr;
      PrintCode("copy with" + name, SafeArrayCopy(array, &copy));
      if (copy != nullptr) {
        VARIANT read = {};
        void* target = type == VT_VARIANT   ? static_cast<void*>(&read)
                       : type == VT_DECIMAL ? static_cast<void*>(&read.decVal)
                                            : static_cast<void*>(&read.llVal);
        const HRESULT code = SafeArrayGetElement(copy, &index, target);
        if (type != VT_VARIANT) read.vt = type;
        Print("get" + name + " -> " + (FAILED(code) ? NameOf(code) : Describe(read)));
        VariantClear(&read);
        SafeArrayDestroy(copy);
      }
      SafeArrayDestroy(array);
    }
  }
}

void Positions() {
  SAFEARRAY* array = Create(VT_I4, {{2, 10}, {3, -1}, {0, 0}});
  LONG nowhere[] = {10, 0, 0};
  void* element = nullptr;
  LONG value = 0;
  PrintCode("pointer into an empty dimension", SafeArrayPtrOfIndex(array, nowhere, &element));
  PrintCode("get from an empty dimension", SafeArrayGetElement(array, nowhere, &value));
  SafeArrayDestroy(array);
  array = Create(VT_I4, {{2, 10}, {3, -1}});
  LONG at[2] = {};
  for (at[0] = 9; at[0] < 13; ++at[0]) {
    for (at[1] = -2; at[1] < 3; ++at[1]) {
      const std::string name = " " + std::to_string(at[0]) + "," + std::to_string(at[1]);
      const HRESULT code = SafeArrayPtrOfIndex(array, at, &element);
      const auto offset = static_cast<char*>(element) - static_cast<char*>(array->pvData);
      Print("pointer" + name + " -> " + (FAILED(code) ? NameOf(code) : std::to_string(offset)));
      PrintCode("put" + name, SafeArrayPutElement(array, at, &at[1]));
      PrintCode("get" + name, SafeArrayGetElement(array, at, &value));
    }
  }
  for (const LONG far : {kLeast, kMost}) {
    LONG outside[] = {far, 0};
    PrintCode("put " + std::to_string(far), SafeArrayPutElement(array, outside, &value));
  }
  SafeArrayDestroy(array);
}

std::string Numbers(SAFEARRAY* array) {
  ULONG count = 1;
  for (UINT i = 0; i < array->cDims; ++i) count *= array->rgsabound[i].cElements;
  void* data = nullptr;
  if (FAILED(SafeArrayAccessData(array, &data))) return "no access";
  std::string text = "{";
  for (ULONG i = 0; i < count; ++i) text += " " + std::to_string(static_cast<LONG*>(data)[i]);
  SafeArrayUnaccessData(array);
  return text + " }";
}

void Resizing() {
  for (const bool vector : {false, true}) {
    for (const SAFEARRAYBOUND last : {SAFEARRAYBOUND{0, 0}, {1, 5}, {2, -7}, {3, 0}, {5, 1}}) {
      SAFEARRAY* array =
          vector ? SafeArrayCreateVector(VT_I4, 0, 3) : Create(VT_I4, {{2, 1}, {3, 0}});
      const LONG total = vector ? 3 : 6;
      for (LONG i = 0; i < total; ++i) static_cast<LONG*>(array->pvData)[i] = i + 1;
      SAFEARRAYBOUND bound = last;
      const std::string name =
          std::string(vector ? "vector" : "array") + " redim to " + Text({last});
      PrintCode(name, SafeArrayRedim(array, &bound));
      Print(name + " is " + DescribeArray(array));
      Print(name + " holds " + Numbers(array));
      SafeArrayDestroy(array);
    }
  }
  SAFEARRAY* array = Create(VT_I4, {{0, 0}, {3, 0}});
  SAFEARRAYBOUND bound = {7, 0};
  PrintCode("redim of nothing", SafeArrayRedim(array, &bound));
  Print("redim of nothing is " + DescribeArray(array));
  SafeArrayDestroy(array);
  array = Create(VT_I4, {{2, 0}});
  array->fFeatures |= FADF_FIXEDSIZE;
  PrintCode("redim of a fixed size", SafeArrayRedim(array, &bound));
  SafeArrayDestroy(array);
}

// Arrays of values that hold arrays of values.
void Nesting() {
  VARIANT inner = NewInteger(VT_I4, 42);
  for (int depth = 1; depth <= 5; ++depth) {
    VARIANT outer = NewInteger(VT_ARRAY | VT_VARIANT, 0);
    outer.parray = SafeArrayCreateVector(VT_VARIANT, 0, 2);
    LONG index = 1;
    PrintCode("nest " + std::to_string(depth), SafeArrayPutElement(outer.parray, &index, &inner));
    VariantClear(&inner);
    inner = outer;
  }
  VARIANT copy = {};
  PrintCode("copy nested", VariantCopy(&copy, &inner));
  VariantClear(&inner);
  while (copy.vt == (VT_ARRAY | VT_VARIANT)) {
    LONG index = 1;
    VARIANT element = {};
    PrintCode("get nested", SafeArrayGetElement(copy.parray, &index, &element));
    Print("nested is " + Describe(element));
    VariantClear(&copy);
    copy = element;
  }
}

void Values() {
  for (int flags = 0; flags < 0x10000; flags += 0x1000) {
    for (int number = 0; number < 80; ++number) {
      const auto type = static_cast<VARTYPE>(flags | number);
      const std::string name = " " + NameOf(type) + " flags " + HexText(unsigned(flags));
      VARIANT value = NewInteger(type, 0);
      VARIANT copy = NewInteger(VT_I2, 3);
      PrintCode("copy" + name, VariantCopy(&copy, &value));
      Print("copy" + name + " is " + NameOf(copy.vt));
      VariantClear(&copy);
      PrintCode("clear" + name, VariantClear(&value));
      Print("clear" + name + " is " + NameOf(value.vt));
    }
  }
  for (const VARIANT& sample : Samples()) {
    VARIANT value = sample;
    VARIANT copy = NewInteger(VT_I2, 3);
    const HRESULT code = VariantCopyInd(&copy, &value);
    Print("copy of target " + Describe(sample) + " -> " + NameOf(code) + " " + Describe(copy));
    VariantClear(&copy);
  }
}

}  // namespace

void RunArrays() {
  Creation();
  Descriptors();
  NullArguments();
  Locks();
  Elements();
  Positions();
  Resizing();
  Nesting();
  Values();
}

}  // namespace vela::grid
