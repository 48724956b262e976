// The same expectations on every platform: on Windows they hold for the system's own functions.
#include "platform/automation.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "gmock/gmock.h"
#include "gtest/gtest.h"

namespace {

using ::testing::ElementsAre;

BSTR NewText(const std::string& text) {
  const std::basic_string<OLECHAR> wide(text.begin(), text.end());
  return SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
}

std::string TextOf(BSTR text) { return {text, text + SysStringLen(text)}; }

// A VARIANT that clears itself.
class Value {
 public:
  Value() { VariantInit(&value_); }
  explicit Value(double number) : Value() { value_.vt = VT_R8, value_.dblVal = number; }
  explicit Value(const std::string& text) : Value() {
    value_.vt = VT_BSTR, value_.bstrVal = NewText(text);
  }
  Value(VARTYPE type, std::int64_t bits) : Value() { value_.vt = type, value_.llVal = bits; }
  Value(const Value&) = delete;
  Value& operator=(const Value&) = delete;
  ~Value() { VariantClear(&value_); }
  VARIANT* operator&() { return &value_; }
  VARIANT* operator->() { return &value_; }

 private:
  VARIANT value_;
};

class CountedObject final : public IDispatch {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    *object = IsEqualGUID(iid, IID_IUnknown) || IsEqualGUID(iid, IID_IDispatch) ? this : nullptr;
    if (*object == nullptr) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
  ULONG STDMETHODCALLTYPE Release() override { return --references; }
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID, LCID, WORD flags, DISPPARAMS*,
                                   VARIANT* result, EXCEPINFO*, UINT*) override {
    if (member != DISPID_VALUE || !(flags & DISPATCH_PROPERTYGET)) return DISP_E_MEMBERNOTFOUND;
    result->vt = VT_I4;
    result->lVal = 77;
    return S_OK;
  }
  // The automation functions own references; the object itself lives on the test's stack.
  ULONG references = 1;
};

SAFEARRAY* NewMatrix(VARTYPE type, ULONG rows, LONG first_row, ULONG columns, LONG first_column) {
  SAFEARRAYBOUND bounds[] = {{rows, first_row}, {columns, first_column}};
  return SafeArrayCreate(type, 2, bounds);
}

TEST(Bstr, KeepsItsLengthAndEmbeddedZeros) {
  const BSTR text = NewText(std::string("a\0bc", 4));
  EXPECT_EQ(SysStringLen(text), 4u);
  EXPECT_EQ(SysStringByteLen(text), 8u);
  EXPECT_EQ(text[4], 0);
  SysFreeString(text);
  const BSTR odd = SysAllocStringByteLen("abc", 3);
  EXPECT_EQ(SysStringByteLen(odd), 3u);
  EXPECT_EQ(SysStringLen(odd), 1u);
  SysFreeString(odd);
  EXPECT_EQ(SysAllocString(nullptr), nullptr);
  EXPECT_EQ(SysStringLen(nullptr), 0u);
  SysFreeString(nullptr);
}

TEST(SafeArray, ElementSizesAndTypes) {
  const std::vector<std::pair<VARTYPE, UINT>> sizes = {
      {VT_I1, 1},      {VT_UI1, 1},  {VT_I2, 2},       {VT_UI2, 2},     {VT_BOOL, 2},
      {VT_I4, 4},      {VT_UI4, 4},  {VT_R4, 4},       {VT_ERROR, 4},   {VT_INT, 4},
      {VT_UINT, 4},    {VT_R8, 8},   {VT_DATE, 8},     {VT_CY, 8},      {VT_I8, 8},
      {VT_UI8, 8},     {VT_BSTR, 8}, {VT_DISPATCH, 8}, {VT_UNKNOWN, 8}, {VT_VARIANT, 24},
      {VT_DECIMAL, 16}};
  for (const auto& [type, size] : sizes) {
    SCOPED_TRACE(type);
    for (SAFEARRAY* array : {SafeArrayCreateVector(type, -3, 5), NewMatrix(type, 2, 0, 3, 7)}) {
      ASSERT_NE(array, nullptr);
      EXPECT_EQ(SafeArrayGetElemsize(array), size);
      VARTYPE found = VT_EMPTY;
      EXPECT_EQ(SafeArrayGetVartype(array, &found), S_OK);
      EXPECT_EQ(found, type);
      EXPECT_EQ(SafeArrayDestroy(array), S_OK);
    }
  }
  for (const int type : {int{VT_EMPTY}, int{VT_NULL}, VT_ARRAY | VT_I4, VT_BYREF | VT_I4, 15}) {
    EXPECT_EQ(SafeArrayCreateVector(static_cast<VARTYPE>(type), 0, 1), nullptr) << type;
  }
}

TEST(SafeArray, BoundsAndLayout) {
  SAFEARRAY* array = NewMatrix(VT_I4, 2, 10, 3, -1);
  ASSERT_NE(array, nullptr);
  EXPECT_EQ(SafeArrayGetDim(array), 2u);
  LONG bound = 0;
  std::vector<LONG> bounds;
  for (const UINT dimension : {1u, 2u}) {
    EXPECT_EQ(SafeArrayGetLBound(array, dimension, &bound), S_OK);
    bounds.push_back(bound);
    EXPECT_EQ(SafeArrayGetUBound(array, dimension, &bound), S_OK);
    bounds.push_back(bound);
  }
  EXPECT_THAT(bounds, ElementsAre(10, 11, -1, 1));
  EXPECT_EQ(SafeArrayGetLBound(array, 0, &bound), DISP_E_BADINDEX);
  EXPECT_EQ(SafeArrayGetUBound(array, 3, &bound), DISP_E_BADINDEX);

  // The first dimension is the fastest.
  void* data = nullptr;
  ASSERT_EQ(SafeArrayAccessData(array, &data), S_OK);
  auto* const elements = static_cast<LONG*>(data);
  for (int i = 0; i < 6; ++i) EXPECT_EQ(elements[i], 0);
  LONG at[] = {11, 0};
  void* element = nullptr;
  EXPECT_EQ(SafeArrayPtrOfIndex(array, at, &element), S_OK);
  EXPECT_EQ(element, elements + 3);
  elements[3] = 42;
  LONG value = 0;
  EXPECT_EQ(SafeArrayGetElement(array, at, &value), S_OK);
  EXPECT_EQ(value, 42);
  for (const auto& [row, column] : {std::pair<LONG, LONG>{9, 0}, {12, 0}, {10, -2}, {10, 2}}) {
    LONG outside[] = {row, column};
    EXPECT_EQ(SafeArrayGetElement(array, outside, &value), DISP_E_BADINDEX);
    EXPECT_EQ(SafeArrayPutElement(array, outside, &value), DISP_E_BADINDEX);
  }
  EXPECT_EQ(SafeArrayUnaccessData(array), S_OK);
  EXPECT_EQ(SafeArrayDestroy(array), S_OK);
}

TEST(SafeArray, EmptyDimension) {
  SAFEARRAYBOUND bounds = {0, 0};
  SAFEARRAY* array = SafeArrayCreate(VT_R8, 1, &bounds);
  ASSERT_NE(array, nullptr);
  LONG bound = 5;
  EXPECT_EQ(SafeArrayGetUBound(array, 1, &bound), S_OK);
  EXPECT_EQ(bound, -1);
  LONG zero = 0;
  double value = 0;
  EXPECT_EQ(SafeArrayGetElement(array, &zero, &value), DISP_E_BADINDEX);
  EXPECT_EQ(SafeArrayDestroy(array), S_OK);
}

TEST(SafeArray, NullAndImpossibleArguments) {
  SAFEARRAYBOUND bound = {3, 0};
  EXPECT_EQ(SafeArrayCreate(VT_I4, 0, &bound), nullptr);
  EXPECT_EQ(SafeArrayCreate(VT_I4, 1, nullptr), nullptr);
  EXPECT_EQ(SafeArrayDestroy(nullptr), S_OK);
  EXPECT_EQ(SafeArrayGetDim(nullptr), 0u);
  EXPECT_EQ(SafeArrayGetElemsize(nullptr), 0u);
  EXPECT_EQ(SafeArrayLock(nullptr), E_INVALIDARG);
  EXPECT_EQ(SafeArrayUnlock(nullptr), E_INVALIDARG);
  SAFEARRAY* array = SafeArrayCreate(VT_I4, 1, &bound);
  EXPECT_EQ(SafeArrayRedim(array, nullptr), E_INVALIDARG);
  EXPECT_EQ(SafeArrayCopy(array, nullptr), E_INVALIDARG);
  SafeArrayDestroy(array);
}

#if !defined(_WIN32)
// Not every system's own function notices that the product of the bounds overflows.
TEST(SafeArray, SizesBeyondMemory) {
  constexpr ULONG kMany = 0xFFFFFFFF;
  SAFEARRAYBOUND huge[] = {{kMany, 0}, {kMany, 0}, {kMany, 0}};
  EXPECT_EQ(SafeArrayCreate(VT_VARIANT, 3, huge), nullptr);
  EXPECT_EQ(SafeArrayCreate(VT_VARIANT, 2, huge), nullptr);
  SAFEARRAY* array = NewMatrix(VT_I8, kMany, 0, 0, 0);
  ASSERT_NE(array, nullptr);
  EXPECT_EQ(SafeArrayRedim(array, &huge[0]), E_OUTOFMEMORY);
  EXPECT_EQ(array->rgsabound[0].cElements, 0u);
  SafeArrayDestroy(array);
}
#endif

TEST(SafeArray, LocksNestAndKeepTheArray) {
  SAFEARRAY* array = SafeArrayCreateVector(VT_I2, 0, 4);
  EXPECT_EQ(SafeArrayLock(array), S_OK);
  EXPECT_EQ(SafeArrayLock(array), S_OK);
  EXPECT_EQ(SafeArrayDestroy(array), DISP_E_ARRAYISLOCKED);
  EXPECT_EQ(SafeArrayDestroyData(array), DISP_E_ARRAYISLOCKED);
  SAFEARRAYBOUND more = {9, 0};
  EXPECT_EQ(SafeArrayRedim(array, &more), DISP_E_ARRAYISLOCKED);
  VARIANT holder;
  VariantInit(&holder);
  holder.vt = VT_ARRAY | VT_I2;
  holder.parray = array;
  EXPECT_EQ(VariantClear(&holder), DISP_E_ARRAYISLOCKED);
  EXPECT_EQ(SafeArrayUnlock(array), S_OK);
  EXPECT_EQ(SafeArrayUnlock(array), S_OK);
  EXPECT_EQ(SafeArrayUnlock(array), E_UNEXPECTED);
  EXPECT_EQ(SafeArrayDestroy(array), S_OK);
}

TEST(SafeArray, TextElementsAreDuplicated) {
  SAFEARRAY* array = SafeArrayCreateVector(VT_BSTR, 0, 2);
  const BSTR text = NewText("first");
  LONG index = 1;
  EXPECT_EQ(SafeArrayPutElement(array, &index, text), S_OK);
  text[0] = 'F';
  BSTR read = nullptr;
  EXPECT_EQ(SafeArrayGetElement(array, &index, &read), S_OK);
  EXPECT_EQ(TextOf(read), "first");
  SysFreeString(read);
  EXPECT_EQ(SafeArrayPutElement(array, &index, text), S_OK);
  SysFreeString(text);

  SAFEARRAY* copy = nullptr;
  ASSERT_EQ(SafeArrayCopy(array, &copy), S_OK);
  EXPECT_EQ(SafeArrayDestroy(array), S_OK);
  EXPECT_EQ(SafeArrayGetElement(copy, &index, &read), S_OK);
  EXPECT_EQ(TextOf(read), "First");
  SysFreeString(read);
  index = 0;
  EXPECT_EQ(SafeArrayGetElement(copy, &index, &read), S_OK);
  EXPECT_EQ(SysStringLen(read), 0u);
  SysFreeString(read);
  EXPECT_EQ(SafeArrayDestroy(copy), S_OK);
}

TEST(SafeArray, InterfacesAreCounted) {
  CountedObject object;
  SAFEARRAY* array = SafeArrayCreateVector(VT_DISPATCH, 0, 3);
  LONG index = 0;
  EXPECT_EQ(SafeArrayPutElement(array, &index, &object), S_OK);
  EXPECT_EQ(SafeArrayPutElement(array, &index, &object), S_OK);
  EXPECT_EQ(object.references, 2u);
  IDispatch* read = nullptr;
  EXPECT_EQ(SafeArrayGetElement(array, &index, &read), S_OK);
  EXPECT_EQ(read, &object);
  EXPECT_EQ(object.references, 3u);
  read->Release();
  SAFEARRAY* copy = nullptr;
  ASSERT_EQ(SafeArrayCopy(array, &copy), S_OK);
  EXPECT_EQ(object.references, 3u);
  EXPECT_EQ(SafeArrayDestroy(copy), S_OK);
  EXPECT_EQ(SafeArrayDestroy(array), S_OK);
  EXPECT_EQ(object.references, 1u);
}

TEST(SafeArray, RedimKeepsWhatRemains) {
  CountedObject object;
  Value holder;
  holder->vt = VT_UNKNOWN;
  holder->punkVal = &object;
  object.AddRef();
  SAFEARRAY* array = NewMatrix(VT_VARIANT, 2, 0, 3, 0);
  for (LONG column = 0; column < 3; ++column) {
    LONG at[] = {1, column};
    EXPECT_EQ(SafeArrayPutElement(array, at, &holder), S_OK);
  }
  EXPECT_EQ(object.references, 5u);
  SAFEARRAYBOUND columns = {2, 5};
  EXPECT_EQ(SafeArrayRedim(array, &columns), S_OK);
  EXPECT_EQ(object.references, 4u);
  columns = {4, 0};
  EXPECT_EQ(SafeArrayRedim(array, &columns), S_OK);
  for (LONG column = 0; column < 4; ++column) {
    LONG at[] = {1, column};
    Value read;
    EXPECT_EQ(SafeArrayGetElement(array, at, &read), S_OK);
    EXPECT_EQ(read->vt, column < 2 ? VT_UNKNOWN : VT_EMPTY) << column;
  }
  EXPECT_EQ(SafeArrayDestroy(array), S_OK);
  EXPECT_EQ(object.references, 2u);
}

TEST(Variant, CopiesOwnTheirContent) {
  Value text("abc");
  Value copy(3.5);
  EXPECT_EQ(VariantCopy(&copy, &text), S_OK);
  EXPECT_NE(copy->bstrVal, text->bstrVal);
  EXPECT_EQ(VariantCopy(&copy, &copy), S_OK);
  EXPECT_EQ(VariantClear(&text), S_OK);
  EXPECT_EQ(text->vt, VT_EMPTY);
  EXPECT_EQ(TextOf(copy->bstrVal), "abc");

  Value array;
  array->vt = VT_ARRAY | VT_VARIANT;
  array->parray = SafeArrayCreateVector(VT_VARIANT, 0, 1);
  LONG index = 0;
  EXPECT_EQ(SafeArrayPutElement(array->parray, &index, &copy), S_OK);
  Value nested;
  nested->vt = VT_ARRAY | VT_VARIANT;
  nested->parray = SafeArrayCreateVector(VT_VARIANT, 0, 1);
  EXPECT_EQ(SafeArrayPutElement(nested->parray, &index, &array), S_OK);
  EXPECT_EQ(VariantCopy(&copy, &nested), S_OK);
  EXPECT_NE(copy->parray, nested->parray);
}

TEST(Variant, RefusesBadTypes) {
  for (const int type : {15, VT_VECTOR | VT_I4, int{VT_RESERVED}, VT_BYREF | VT_EMPTY, 0x0FFF}) {
    VARIANT bad;
    VariantInit(&bad);
    bad.vt = static_cast<VARTYPE>(type);
    EXPECT_EQ(VariantClear(&bad), DISP_E_BADVARTYPE) << type;
    Value good(1.0);
    EXPECT_EQ(VariantCopy(&good, &bad), DISP_E_BADVARTYPE) << type;
    EXPECT_EQ(good->vt, VT_R8);
  }
}

TEST(Variant, IndirectCopyFollowsReferences) {
  LONG number = 12;
  Value reference;
  reference->vt = VT_BYREF | VT_I4;
  reference->plVal = &number;
  Value outer;
  outer->vt = VT_BYREF | VT_VARIANT;
  outer->pvarVal = &reference;
  Value copy("old");
  EXPECT_EQ(VariantCopyInd(&copy, &outer), S_OK);
  EXPECT_EQ(copy->vt, VT_I4);
  EXPECT_EQ(copy->lVal, 12);
  EXPECT_EQ(VariantCopyInd(&reference, &reference), S_OK);
  EXPECT_EQ(reference->vt, VT_I4);
  outer->pvarVal = &outer;
  EXPECT_EQ(VariantCopyInd(&copy, &outer), E_INVALIDARG);

  BSTR shared = NewText("shared");
  Value text;
  text->vt = VT_BYREF | VT_BSTR;
  text->pbstrVal = &shared;
  EXPECT_EQ(VariantCopyInd(&copy, &text), S_OK);
  EXPECT_NE(copy->bstrVal, shared);
  EXPECT_EQ(TextOf(copy->bstrVal), "shared");
  SysFreeString(shared);
}

// value as text after a conversion to type, or the code in hexadecimal when that fails.
std::string Converted(const VARIANT* value, VARTYPE type, USHORT flags = 0) {
  Value result;
  const HRESULT code = VariantChangeType(&result, value, flags, type);
  if (code != S_OK) {
    if (code == DISP_E_OVERFLOW) return "overflow";
    return code == DISP_E_TYPEMISMATCH ? "mismatch" : "failed";
  }
  EXPECT_EQ(result->vt, type);
  switch (type) {
    case VT_I1:
      return std::to_string(static_cast<signed char>(result->cVal));
    case VT_UI1:
      return std::to_string(result->bVal);
    case VT_I2:
    case VT_BOOL:
      return std::to_string(result->iVal);
    case VT_UI2:
      return std::to_string(result->uiVal);
    case VT_I4:
      return std::to_string(result->lVal);
    case VT_UI4:
      return std::to_string(result->ulVal);
    case VT_I8:
    case VT_CY:
      return std::to_string(result->llVal);
    case VT_UI8:
      return std::to_string(result->ullVal);
    case VT_R4:
      return std::to_string(result->fltVal);
    case VT_R8:
      return std::to_string(result->dblVal);
    case VT_BSTR:
      return TextOf(result->bstrVal);
    default:
      return "?";
  }
}

TEST(VariantChangeType, RealNumbersRoundHalfToEven) {
  const struct {
    double value;
    VARTYPE type;
    const char* expected;
  } cases[] = {{0.5, VT_I4, "0"},           {1.5, VT_I4, "2"},
               {-2.5, VT_I4, "-2"},         {255.4, VT_UI1, "255"},
               {255.6, VT_UI1, "overflow"}, {-1.0, VT_UI1, "overflow"},
               {-0.4, VT_UI4, "0"},         {127.0, VT_I1, "127"},
               {-129.0, VT_I1, "overflow"}, {65536.0, VT_UI2, "overflow"},
               {1e300, VT_R4, "overflow"},  {0.25, VT_R4, "0.250000"},
               {0.25, VT_BOOL, "-1"},       {0.0, VT_BOOL, "0"},
               {1.23456, VT_CY, "12346"},   {1e300, VT_CY, "overflow"},
               {0.1, VT_BSTR, "0.1"},       {-4.5, VT_BSTR, "-4.5"},
               {1e20, VT_BSTR, "1E+20"},    {3, VT_BSTR, "3"}};
  for (const auto& c : cases) {
    Value value(c.value);
    EXPECT_EQ(Converted(&value, c.type), c.expected) << c.value << " to " << c.type;
  }
  Value least(-2147483648.0), most(2147483647.4), more(2147483648.0);
  EXPECT_EQ(Converted(&least, VT_I4), "-2147483648");
  EXPECT_EQ(Converted(&most, VT_I4), "2147483647");
  EXPECT_EQ(Converted(&more, VT_I4), "overflow");
}

// Between types of one width the bits stay, as in a cast.
TEST(VariantChangeType, IntegersKeepTheirValueOrOverflow) {
  const auto converted = [](VARTYPE from, std::int64_t number, VARTYPE to) {
    Value value(from, number);
    return Converted(&value, to);
  };
  const struct {
    VARTYPE from;
    std::int64_t value;
    VARTYPE to;
    const char* expected;
  } cases[] = {{VT_UI8, -1, VT_I8, "-1"},         {VT_UI1, 200, VT_I1, "-56"},
               {VT_I4, -1, VT_UI2, "overflow"},   {VT_I4, -1, VT_UI8, "overflow"},
               {VT_I4, -1, VT_I2, "-1"},          {VT_I4, 3, VT_CY, "30000"},
               {VT_CY, 25000, VT_I4, "2"},        {VT_CY, 35000, VT_I4, "4"},
               {VT_CY, 12500, VT_BSTR, "1.25"},   {VT_BOOL, -1, VT_I4, "-1"},
               {VT_BOOL, -1, VT_UI1, "255"},      {VT_BOOL, -1, VT_BSTR, "-1"},
               {VT_BOOL, 0, VT_BSTR, "0"},        {VT_EMPTY, 9, VT_I4, "0"},
               {VT_EMPTY, 9, VT_BSTR, ""},        {VT_EMPTY, 9, VT_BOOL, "0"},
               {VT_NULL, 0, VT_I4, "mismatch"},   {VT_ERROR, 5, VT_I4, "mismatch"},
               {VT_I4, 5, VT_UNKNOWN, "mismatch"}};
  for (const auto& c : cases) {
    EXPECT_EQ(converted(c.from, c.value, c.to), c.expected)
        << c.from << " to " << c.to << ": " << c.value;
  }
  constexpr std::int64_t kMax = std::numeric_limits<std::int64_t>::max();
  EXPECT_EQ(converted(VT_I4, -1, VT_UI4), "4294967295");
  EXPECT_EQ(converted(VT_I4, 70000, VT_I2), "overflow");
  EXPECT_EQ(converted(VT_I1, -5, VT_R8), "-5.000000");
  EXPECT_EQ(converted(VT_CY, -15000, VT_R8), "-1.500000");
  EXPECT_EQ(converted(VT_BOOL, -1, VT_R8), "-1.000000");
  EXPECT_EQ(converted(VT_UI4, 0xFFFFFFFF, VT_I8), "4294967295");
  EXPECT_EQ(converted(VT_I8, kMax, VT_UI8), "9223372036854775807");
  EXPECT_EQ(converted(VT_I8, -kMax - 1, VT_BSTR), "-9223372036854775808");
  Value truth(VT_BOOL, -1);
  EXPECT_EQ(Converted(&truth, VT_BSTR, VARIANT_ALPHABOOL), "True");
}

TEST(VariantChangeType, TextIsRead) {
  const auto read = [](const std::string& text, VARTYPE type) {
    Value value(text);
    return Converted(&value, type);
  };
  const struct {
    const char* text;
    VARTYPE type;
    const char* expected;
  } cases[] = {
      {" 12 ", VT_I4, "12"},          {"2.5", VT_I4, "2"},          {"3.5", VT_I4, "4"},
      {"1e3", VT_I4, "1000"},         {"+7", VT_UI1, "7"},          {"&H1F", VT_I4, "31"},
      {"&O17", VT_I4, "15"},          {"0", VT_BOOL, "0"},          {"TRUE", VT_BOOL, "-1"},
      {"false", VT_BOOL, "0"},        {"0.5", VT_BOOL, "-1"},       {"-1.5", VT_R8, "-1.500000"},
      {"1.25E-2", VT_R8, "0.012500"}, {"256", VT_UI1, "overflow"},  {"1e400", VT_R8, "overflow"},
      {"1.00006", VT_CY, "10001"},    {"", VT_I4, "mismatch"},      {"abc", VT_R8, "mismatch"},
      {"1 2", VT_I4, "mismatch"},     {"1.2.3", VT_R8, "mismatch"}, {"yes", VT_BOOL, "mismatch"}};
  for (const auto& c : cases) {
    EXPECT_EQ(read(c.text, c.type), c.expected) << '"' << c.text << "\" to " << c.type;
  }
  for (const std::string wide : {"9223372036854775807", "18446744073709551615"}) {
    EXPECT_EQ(read(wide, wide[0] == '9' ? VT_I8 : VT_UI8), wide);
  }
}

TEST(VariantChangeType, DecimalsAreExact) {
  Value text("79228162514264337593543950335");  // 2^96 - 1
  EXPECT_EQ(VariantChangeType(&text, &text, 0, VT_DECIMAL), S_OK);
  EXPECT_EQ(text->decVal.Hi32, 0xFFFFFFFFu);
  EXPECT_EQ(text->decVal.Lo64, ~std::uint64_t{0});
  EXPECT_EQ(Converted(&text, VT_BSTR), "79228162514264337593543950335");
  EXPECT_EQ(Converted(&text, VT_I8), "overflow");
  Value real(-12.375);
  EXPECT_EQ(VariantChangeType(&real, &real, 0, VT_DECIMAL), S_OK);
  EXPECT_EQ(real->decVal.scale, 3);
  EXPECT_EQ(real->decVal.sign, DECIMAL_NEG);
  EXPECT_EQ(real->decVal.Lo64, 12375u);
  EXPECT_EQ(Converted(&real, VT_R8), "-12.375000");
}

TEST(VariantChangeType, ObjectsGiveTheirDefaultProperty) {
  CountedObject object;
  Value value;
  value->vt = VT_DISPATCH;
  value->pdispVal = &object;
  object.AddRef();
  EXPECT_EQ(Converted(&value, VT_BSTR), "77");
  EXPECT_EQ(Converted(&value, VT_I4, VARIANT_NOVALUEPROP), "mismatch");
  Value unknown;
  EXPECT_EQ(VariantChangeType(&unknown, &value, 0, VT_UNKNOWN), S_OK);
  EXPECT_EQ(object.references, 3u);
  EXPECT_EQ(VariantClear(&unknown), S_OK);
  EXPECT_EQ(VariantClear(&value), S_OK);
  EXPECT_EQ(object.references, 1u);
}

TEST(VariantChangeType, FailureLeavesTheDestination) {
  Value source("no number");
  Value destination(4.0);
  EXPECT_EQ(VariantChangeType(&destination, &source, 0, VT_I4), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(destination->vt, VT_R8);
  EXPECT_EQ(VariantChangeType(&source, &source, 0, VT_I4), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(TextOf(source->bstrVal), "no number");
  EXPECT_EQ(VariantChangeType(&destination, &destination, 0, VT_BSTR), S_OK);
  EXPECT_EQ(TextOf(destination->bstrVal), "4");
}

}  // namespace
