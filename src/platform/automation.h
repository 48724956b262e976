// Automation values: VARIANT, BSTR, SAFEARRAY, the interfaces they hold and the functions on them.
// Windows has them; elsewhere this header declares the same names with the same layouts, the
// sources in automation/ implement the published behaviour, and the host runtime exports them, so
// that a value may be made in one library of a process and cleared in another. Text conversions
// follow the invariant locale here, the user's on Windows.
#pragma once

#if defined(_WIN32)

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
// clang-format off
#include <windows.h>
#include <oleauto.h>
#include <olectl.h>
// clang-format on

// Macros of the system headers that would rename our own identifiers or swallow common words.
#undef DrawText
#undef ERROR
#undef GetMessage
#undef GetObject
#undef IN
#undef OUT
#undef Yield
#undef far
#undef interface
#undef near
#undef small

#include "platform/types.h"

// These only read their source; MinGW's declarations forget to say so.
inline HRESULT VariantCopy(VARIANT* destination, const VARIANT* source) {
  return VariantCopy(destination, const_cast<VARIANT*>(source));
}
inline HRESULT VariantCopyInd(VARIANT* destination, const VARIANT* source) {
  return VariantCopyInd(destination, const_cast<VARIANT*>(source));
}
inline HRESULT VariantChangeType(VARIANT* destination, const VARIANT* source, USHORT flags,
                                 VARTYPE type) {
  return VariantChangeType(destination, const_cast<VARIANT*>(source), flags, type);
}

#else

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "platform/types.h"

using HRESULT = std::int32_t;
using SCODE = std::int32_t;
using ULONG = std::uint32_t;
using USHORT = std::uint16_t;
using SHORT = std::int16_t;
using CHAR = char;
using INT = int;
using FLOAT = float;
using DOUBLE = double;
using LONGLONG = std::int64_t;
using ULONGLONG = std::uint64_t;
using PVOID = void*;
using LCID = std::uint32_t;
using DISPID = std::int32_t;
using VARTYPE = std::uint16_t;
using VARIANT_BOOL = std::int16_t;
using DATE = double;
// A UTF-16 unit, and text with its length in bytes in the four bytes in front of it.
using OLECHAR = char16_t;
using LPOLESTR = OLECHAR*;
using BSTR = OLECHAR*;

// Calling convention of interface methods; the platform's only one here.
#define STDMETHODCALLTYPE

inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT S_FALSE = 1;
inline constexpr HRESULT E_NOTIMPL = static_cast<HRESULT>(0x80004001u);
inline constexpr HRESULT E_NOINTERFACE = static_cast<HRESULT>(0x80004002u);
inline constexpr HRESULT E_POINTER = static_cast<HRESULT>(0x80004003u);
inline constexpr HRESULT E_FAIL = static_cast<HRESULT>(0x80004005u);
inline constexpr HRESULT E_UNEXPECTED = static_cast<HRESULT>(0x8000FFFFu);
inline constexpr HRESULT E_OUTOFMEMORY = static_cast<HRESULT>(0x8007000Eu);
inline constexpr HRESULT E_INVALIDARG = static_cast<HRESULT>(0x80070057u);
inline constexpr HRESULT DISP_E_MEMBERNOTFOUND = static_cast<HRESULT>(0x80020003u);
inline constexpr HRESULT DISP_E_TYPEMISMATCH = static_cast<HRESULT>(0x80020005u);
inline constexpr HRESULT DISP_E_UNKNOWNNAME = static_cast<HRESULT>(0x80020006u);
inline constexpr HRESULT DISP_E_BADVARTYPE = static_cast<HRESULT>(0x80020008u);
inline constexpr HRESULT DISP_E_OVERFLOW = static_cast<HRESULT>(0x8002000Au);
inline constexpr HRESULT DISP_E_BADINDEX = static_cast<HRESULT>(0x8002000Bu);
inline constexpr HRESULT DISP_E_ARRAYISLOCKED = static_cast<HRESULT>(0x8002000Du);
inline constexpr HRESULT DISP_E_DIVBYZERO = static_cast<HRESULT>(0x80020012u);

constexpr bool SUCCEEDED(HRESULT result) { return result >= 0; }
constexpr bool FAILED(HRESULT result) { return result < 0; }

struct GUID {
  std::uint32_t Data1;
  std::uint16_t Data2;
  std::uint16_t Data3;
  std::uint8_t Data4[8];
};
using IID = GUID;
using REFIID = const IID&;

inline bool operator==(const GUID& a, const GUID& b) { return std::memcmp(&a, &b, sizeof a) == 0; }
inline bool IsEqualGUID(const GUID& a, const GUID& b) { return a == b; }

inline constexpr IID IID_NULL = {0, 0, 0, {0, 0, 0, 0, 0, 0, 0, 0}};
inline constexpr IID IID_IUnknown = {0, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID IID_IDispatch = {0x00020400, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

// Reference-counted interfaces: QueryInterface adds the reference that the caller releases.
struct IUnknown {
  virtual HRESULT QueryInterface(REFIID iid, void** object) = 0;
  virtual ULONG AddRef() = 0;
  virtual ULONG Release() = 0;
};

struct ITypeInfo;
struct IRecordInfo;
struct EXCEPINFO;

struct DISPPARAMS {
  VARIANT* rgvarg;
  DISPID* rgdispidNamedArgs;
  UINT cArgs;
  UINT cNamedArgs;
};

inline constexpr DISPID DISPID_VALUE = 0;
inline constexpr DISPID DISPID_UNKNOWN = -1;
inline constexpr WORD DISPATCH_METHOD = 1;
inline constexpr WORD DISPATCH_PROPERTYGET = 2;
inline constexpr WORD DISPATCH_PROPERTYPUT = 4;

struct IDispatch : IUnknown {
  virtual HRESULT GetTypeInfoCount(UINT* count) = 0;
  virtual HRESULT GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) = 0;
  virtual HRESULT GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID locale,
                                DISPID* ids) = 0;
  virtual HRESULT Invoke(DISPID member, REFIID reserved, LCID locale, WORD flags,
                         DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* exception,
                         UINT* argument_error) = 0;
};

enum VARENUM {
  VT_EMPTY = 0,
  VT_NULL = 1,
  VT_I2 = 2,
  VT_I4 = 3,
  VT_R4 = 4,
  VT_R8 = 5,
  VT_CY = 6,
  VT_DATE = 7,
  VT_BSTR = 8,
  VT_DISPATCH = 9,
  VT_ERROR = 10,
  VT_BOOL = 11,
  VT_VARIANT = 12,
  VT_UNKNOWN = 13,
  VT_DECIMAL = 14,
  VT_I1 = 16,
  VT_UI1 = 17,
  VT_UI2 = 18,
  VT_UI4 = 19,
  VT_I8 = 20,
  VT_UI8 = 21,
  VT_INT = 22,
  VT_UINT = 23,
  VT_VOID = 24,
  VT_HRESULT = 25,
  VT_RECORD = 36,
  VT_INT_PTR = 37,
  VT_UINT_PTR = 38,
  VT_CLSID = 72,
  VT_VECTOR = 0x1000,
  VT_ARRAY = 0x2000,
  VT_BYREF = 0x4000,
  VT_RESERVED = 0x8000,
  VT_ILLEGAL = 0xFFFF,
  VT_TYPEMASK = 0xFFF,
};

inline constexpr VARIANT_BOOL VARIANT_TRUE = -1;
inline constexpr VARIANT_BOOL VARIANT_FALSE = 0;

// A count of ten-thousandths.
union CY {
  __extension__ struct {
    ULONG Lo;
    LONG Hi;
  };
  LONGLONG int64;
};

inline constexpr BYTE DECIMAL_NEG = 0x80;

// A 96-bit integer divided by 10 to the power scale (0 .. 28).
struct DECIMAL {
  USHORT wReserved;
  union {
    __extension__ struct {
      BYTE scale;
      BYTE sign;  // 0 or DECIMAL_NEG
    };
    USHORT signscale;
  };
  ULONG Hi32;
  union {
    __extension__ struct {
      ULONG Lo32;
      ULONG Mid32;
    };
    ULONGLONG Lo64;
  };
};

struct tagVARIANT {
  union {
    __extension__ struct {
      VARTYPE vt;
      WORD wReserved1;
      WORD wReserved2;
      WORD wReserved3;
      union {
        LONGLONG llVal;
        LONG lVal;
        BYTE bVal;
        SHORT iVal;
        FLOAT fltVal;
        DOUBLE dblVal;
        VARIANT_BOOL boolVal;
        SCODE scode;
        CY cyVal;
        DATE date;
        BSTR bstrVal;
        IUnknown* punkVal;
        IDispatch* pdispVal;
        SAFEARRAY* parray;
        BYTE* pbVal;
        SHORT* piVal;
        LONG* plVal;
        LONGLONG* pllVal;
        FLOAT* pfltVal;
        DOUBLE* pdblVal;
        VARIANT_BOOL* pboolVal;
        SCODE* pscode;
        CY* pcyVal;
        DATE* pdate;
        BSTR* pbstrVal;
        IUnknown** ppunkVal;
        IDispatch** ppdispVal;
        SAFEARRAY** pparray;
        VARIANT* pvarVal;
        PVOID byref;
        CHAR cVal;
        USHORT uiVal;
        ULONG ulVal;
        ULONGLONG ullVal;
        INT intVal;
        UINT uintVal;
        DECIMAL* pdecVal;
        CHAR* pcVal;
        USHORT* puiVal;
        ULONG* pulVal;
        ULONGLONG* pullVal;
        INT* pintVal;
        UINT* puintVal;
        __extension__ struct {
          PVOID pvRecord;
          IRecordInfo* pRecInfo;
        };
      };
    };
    DECIMAL decVal;  // its reserved word lies under vt
  };
};
using VARIANTARG = VARIANT;

struct SAFEARRAYBOUND {
  ULONG cElements;
  LONG lLbound;
};

// Array features.
inline constexpr USHORT FADF_AUTO = 0x1;
inline constexpr USHORT FADF_STATIC = 0x2;
inline constexpr USHORT FADF_EMBEDDED = 0x4;
inline constexpr USHORT FADF_FIXEDSIZE = 0x10;
inline constexpr USHORT FADF_RECORD = 0x20;
inline constexpr USHORT FADF_HAVEIID = 0x40;
inline constexpr USHORT FADF_HAVEVARTYPE = 0x80;
inline constexpr USHORT FADF_BSTR = 0x100;
inline constexpr USHORT FADF_UNKNOWN = 0x200;
inline constexpr USHORT FADF_DISPATCH = 0x400;
inline constexpr USHORT FADF_VARIANT = 0x800;

// Elements lie with the first dimension fastest; the bounds are kept last dimension first. The 16
// bytes in front of the descriptor hold the element type or the interface id.
struct tagSAFEARRAY {
  USHORT cDims;
  USHORT fFeatures;
  ULONG cbElements;
  ULONG cLocks;
  PVOID pvData;
  SAFEARRAYBOUND rgsabound[1];
};

static_assert(sizeof(GUID) == 16 && sizeof(CY) == 8 && sizeof(DECIMAL) == 16);
static_assert(sizeof(void*) != 8 || (sizeof(VARIANT) == 24 && sizeof(SAFEARRAY) == 32));
static_assert(offsetof(VARIANT, llVal) == 8 && offsetof(SAFEARRAY, pvData) == 16);

#pragma GCC visibility push(default)
extern "C" {

// Text. Null is a valid empty BSTR everywhere. The allocators return null when out of memory, or
// for null text (SysAllocStringLen and ...ByteLen then make uninitialised, terminated text).
BSTR SysAllocString(const OLECHAR* text);
BSTR SysAllocStringLen(const OLECHAR* text, UINT length);
BSTR SysAllocStringByteLen(const char* bytes, UINT size);
void SysFreeString(BSTR text);
UINT SysStringLen(BSTR text);
UINT SysStringByteLen(BSTR text);

// Arrays. bounds come first dimension first; the elements start as zero bytes. Null for an element
// type that no array can hold, no dimension, or more memory than there is.
SAFEARRAY* SafeArrayCreate(VARTYPE type, UINT dimensions, SAFEARRAYBOUND* bounds);
// One dimension, descriptor and data in one allocation.
SAFEARRAY* SafeArrayCreateVector(VARTYPE type, LONG lower_bound, ULONG elements);
HRESULT SafeArrayAllocDescriptor(UINT dimensions, SAFEARRAY** out);
HRESULT SafeArrayAllocDescriptorEx(VARTYPE type, UINT dimensions, SAFEARRAY** out);
HRESULT SafeArrayAllocData(SAFEARRAY* array);
// Release the elements and the memory; DISP_E_ARRAYISLOCKED, and nothing done, while locked.
HRESULT SafeArrayDestroy(SAFEARRAY* array);
HRESULT SafeArrayDestroyData(SAFEARRAY* array);
HRESULT SafeArrayDestroyDescriptor(SAFEARRAY* array);
UINT SafeArrayGetDim(SAFEARRAY* array);
UINT SafeArrayGetElemsize(SAFEARRAY* array);
// Dimensions count from 1; DISP_E_BADINDEX outside them.
HRESULT SafeArrayGetUBound(SAFEARRAY* array, UINT dimension, LONG* bound);
HRESULT SafeArrayGetLBound(SAFEARRAY* array, UINT dimension, LONG* bound);
HRESULT SafeArrayGetVartype(SAFEARRAY* array, VARTYPE* type);
// Locks nest; at most 65535. E_UNEXPECTED beyond that and for an unlock without a lock.
HRESULT SafeArrayLock(SAFEARRAY* array);
HRESULT SafeArrayUnlock(SAFEARRAY* array);
// Lock and give the first element; unlock.
HRESULT SafeArrayAccessData(SAFEARRAY* array, void** data);
HRESULT SafeArrayUnaccessData(SAFEARRAY* array);
// indices: one per dimension, first dimension first; DISP_E_BADINDEX outside the bounds.
HRESULT SafeArrayPtrOfIndex(SAFEARRAY* array, LONG* indices, void** element);
// Copy one element out of or into the array with its ownership: text is duplicated, interfaces are
// referenced. value is the element, or for text and interfaces (Put) the pointer itself.
HRESULT SafeArrayGetElement(SAFEARRAY* array, LONG* indices, void* value);
HRESULT SafeArrayPutElement(SAFEARRAY* array, LONG* indices, void* value);
HRESULT SafeArrayCopy(SAFEARRAY* array, SAFEARRAY** out);
// Changes the last dimension, the only one that keeps the other elements in place.
HRESULT SafeArrayRedim(SAFEARRAY* array, SAFEARRAYBOUND* last_dimension);

// Values. Init is for fresh memory; Clear releases what the value owns and leaves VT_EMPTY.
void VariantInit(VARIANT* value);
HRESULT VariantClear(VARIANT* value);
// Clears destination first; a failed copy leaves it VT_EMPTY. Ind follows VT_BYREF.
HRESULT VariantCopy(VARIANT* destination, const VARIANT* source);
HRESULT VariantCopyInd(VARIANT* destination, const VARIANT* source);
// Converts between numbers, truth values, dates and text, in the forms of the invariant locale
// whatever locale is asked for; destination may be source, and is unchanged on failure. Fractions
// round half to even; DISP_E_OVERFLOW outside the target's range, DISP_E_TYPEMISMATCH for text that
// is no number and where no conversion exists. docs/automation.md has the rules.
HRESULT VariantChangeType(VARIANT* destination, const VARIANT* source, USHORT flags, VARTYPE type);
HRESULT VariantChangeTypeEx(VARIANT* destination, const VARIANT* source, LCID locale, USHORT flags,
                            VARTYPE type);

inline constexpr USHORT VARIANT_NOVALUEPROP = 1;  // do not read an object's default property
inline constexpr USHORT VARIANT_ALPHABOOL = 2;    // truth values become "True" and "False"

inline constexpr LCID LOCALE_USER_DEFAULT = 0x400;
inline constexpr LCID LOCALE_INVARIANT = 0x7F;

// Arithmetic on values, reached by name (platform/module.h), as docs/automation.md has it. result
// may be an operand; what it held before is cleared, and kept on failure. Operands are left alone
// otherwise.
HRESULT VarAdd(VARIANT* left, VARIANT* right, VARIANT* result);
HRESULT VarSub(VARIANT* left, VARIANT* right, VARIANT* result);
HRESULT VarMul(VARIANT* left, VARIANT* right, VARIANT* result);
HRESULT VarDiv(VARIANT* left, VARIANT* right, VARIANT* result);
// One of VARCMP_*, or a failure where the values do not compare. Numbers stand before texts, and
// texts in the order of the words of the invariant locale, of which flags take out differences.
HRESULT VarCmp(VARIANT* left, VARIANT* right, LCID locale, ULONG flags);

inline constexpr ULONG NORM_IGNORECASE = 0x1;
inline constexpr ULONG NORM_IGNORENONSPACE = 0x2;
inline constexpr ULONG NORM_IGNORESYMBOLS = 0x4;
inline constexpr ULONG SORT_STRINGSORT = 0x1000;  // hyphens and apostrophes as other symbols
inline constexpr ULONG NORM_IGNOREKANATYPE = 0x10000;
inline constexpr ULONG NORM_IGNOREWIDTH = 0x20000;

inline constexpr HRESULT VARCMP_LT = 0;
inline constexpr HRESULT VARCMP_EQ = 1;
inline constexpr HRESULT VARCMP_GT = 2;
inline constexpr HRESULT VARCMP_NULL = 3;  // an operand is VT_NULL

// Bring the automation module into the process and take it out again; initialisations nest.
// S_FALSE when it was there.
HRESULT OleInitialize(PVOID reserved);
void OleUninitialize();

}  // extern "C"
#pragma GCC visibility pop

#endif
