// The same expectations on every platform: on Windows they hold for the system's own functions.
#include "platform/automation.h"

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

TEST(VariantChangeType, ObjectsGiveTheirDefaultProperty) {
  CountedObject object;
  Value value;
  value->vt = VT_DISPATCH;
  value->pdispVal = &object;
  object.AddRef();
  Value text;
  EXPECT_EQ(VariantChangeType(&text, &value, 0, VT_BSTR), S_OK);
  EXPECT_EQ(TextOf(text->bstrVal), "77");
  EXPECT_EQ(VariantChangeType(&text, &value, VARIANT_NOVALUEPROP, VT_I4), DISP_E_TYPEMISMATCH);
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

TEST(Arithmetic, ResultsReplaceAnOperand) {
  Value text("ab");
  Value more("cd");
  EXPECT_EQ(VarAdd(&text, &more, &text), S_OK);
  EXPECT_EQ(TextOf(text->bstrVal), "abcd");
  EXPECT_EQ(TextOf(more->bstrVal), "cd");
  Value number(6.0);
  Value digits("1.5");
  EXPECT_EQ(VarDiv(&number, &digits, &digits), S_OK);
  EXPECT_EQ(digits->vt, VT_R8);
  EXPECT_EQ(digits->dblVal, 4.0);
  EXPECT_EQ(VarMul(&number, &number, &number), S_OK);
  EXPECT_EQ(number->dblVal, 36.0);
}

#if !defined(_WIN32)
// What the system's own functions do with the result here is not published.
TEST(Arithmetic, FailuresLeaveTheResult) {
  Value text("abc");
  Value number(2.0);
  EXPECT_EQ(VarMul(&text, &number, &text), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(TextOf(text->bstrVal), "abc");
  Value array;
  array->vt = VT_ARRAY | VT_I4;
  array->parray = SafeArrayCreateVector(VT_I4, 0, 1);
  SafeArrayLock(array->parray);
  EXPECT_EQ(VarAdd(&number, &number, &array), DISP_E_ARRAYISLOCKED);
  EXPECT_EQ(array->vt, VT_ARRAY | VT_I4);
  SafeArrayUnlock(array->parray);
}

// An exponent beyond 32 bits, scales beyond 28, references to nothing.
TEST(Variant, HostileContent) {
  Value text("1e2147483648");
  Value result;
  EXPECT_EQ(VariantChangeType(&result, &text, 0, VT_R8), DISP_E_OVERFLOW);
  Value decimal;
  decimal->decVal.scale = 200;
  decimal->decVal.Lo64 = 1;
  decimal->vt = VT_DECIMAL;
  EXPECT_EQ(VarAdd(&decimal, &decimal, &result), E_INVALIDARG);
  EXPECT_EQ(VarCmp(&decimal, &decimal, LOCALE_INVARIANT, 0), E_INVALIDARG);
  Value nowhere(VT_BYREF | VT_I4, 0);
  EXPECT_EQ(VariantCopyInd(&result, &nowhere), E_INVALIDARG);
  EXPECT_EQ(VariantClear(nullptr), E_INVALIDARG);
}
#endif

TEST(Arithmetic, ObjectsAreReleased) {
  CountedObject object;
  Value value;
  value->vt = VT_DISPATCH;
  value->pdispVal = &object;
  object.AddRef();
  Value result;
  EXPECT_EQ(VarAdd(&value, &value, &result), S_OK);
  EXPECT_EQ(result->lVal, 154);
  EXPECT_EQ(object.references, 2u);
}

}  // namespace
