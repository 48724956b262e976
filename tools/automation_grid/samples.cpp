#include "tools/automation_grid/samples.h"

#include <cstdint>
#include <initializer_list>
#include <iterator>
#include <limits>

namespace vela::grid {
namespace {

// An object whose default property is a value. It is never destroyed.
class ObjectWithValue final : public IDispatch {
 public:
  explicit ObjectWithValue(const VARIANT& value) : value_(value) {}
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    *object = IsEqualGUID(iid, IID_IUnknown) || IsEqualGUID(iid, IID_IDispatch) ? this : nullptr;
    return *object == nullptr ? E_NOINTERFACE : S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID, LCID, WORD flags, DISPPARAMS*,
                                   VARIANT* result, EXCEPINFO*, UINT*) override {
    if (member != DISPID_VALUE || !(flags & DISPATCH_PROPERTYGET)) return DISP_E_MEMBERNOTFOUND;
    return VariantCopy(result, &value_);
  }

 private:
  VARIANT value_;
};

using Values = std::vector<VARIANT>;

template <typename T>
void AddIntegers(Values& values, VARTYPE type, std::initializer_list<int> more) {
  using limits = std::numeric_limits<T>;
  for (const int number : more) values.push_back(NewInteger(type, number));
  if (limits::is_signed) {
    values.push_back(NewInteger(type, static_cast<long long>(limits::min())));
  }
  values.push_back(NewInteger(type, static_cast<long long>(limits::max())));
}

void AddIntegers(Values& values) {
  AddIntegers<std::int8_t>(values, VT_I1, {0, 1, -1, 100});
  AddIntegers<std::uint8_t>(values, VT_UI1, {0, 1, 3, 200});
  AddIntegers<std::int16_t>(values, VT_I2, {0, 1, -1, 5, 300});
  AddIntegers<std::uint16_t>(values, VT_UI2, {0, 1, 40000});
  AddIntegers<std::int32_t>(values, VT_I4, {0, 1, -1, 7, -50000});
  AddIntegers<std::uint32_t>(values, VT_UI4, {0, 1, 70000});
  AddIntegers<std::int64_t>(values, VT_I8, {0, 1, -1, 9});
  AddIntegers<std::uint64_t>(values, VT_UI8, {0, 1, 11});
  AddIntegers<std::int32_t>(values, VT_INT, {0, 1, -3});
  AddIntegers<std::uint32_t>(values, VT_UINT, {0, 1, 13});
  for (const int number : {0, -1, 1}) values.push_back(NewInteger(VT_BOOL, number & 0xFFFF));
  for (const long long code : {0LL, 0x80020004LL}) values.push_back(NewInteger(VT_ERROR, code));
}

void AddReals(Values& values) {
  using floats = std::numeric_limits<float>;
  using doubles = std::numeric_limits<double>;
  for (const double number :
       {0.0, -0.0, 0.1, -1.5, 2.5, 16777217.0, double{floats::max()}, -double{floats::max()},
        double{floats::denorm_min()}, doubles::infinity(), doubles::quiet_NaN()}) {
    values.push_back(NewReal(VT_R4, number));
  }
  for (const double number : {0.0, -0.0, 0.1, 0.00004, 0.5, -1.5, 2.5, 32767.5, 2147483647.5, 1e15,
                              0x1p63, 1e30, doubles::max(), -doubles::max(), doubles::denorm_min(),
                              doubles::infinity(), -doubles::infinity(), doubles::quiet_NaN()}) {
    values.push_back(NewReal(VT_R8, number));
  }
  for (const double number : {0.0, 0.5, 1.0, 2.0, -1.25, 36526.75, 44000.123456789, -657434.0,
                              -657434.999, 2958465.0, 2958465.99999, 2958466.0}) {
    values.push_back(NewReal(VT_DATE, number));
  }
}

void AddExactNumbers(Values& values) {
  constexpr long long kMost = std::numeric_limits<long long>::max();
  for (const long long number :
       {0LL, 1LL, -1LL, 10000LL, 12345LL, -25000LL, 922337203685470000LL, -kMost - 1, kMost}) {
    values.push_back(NewInteger(VT_CY, number));
  }
  constexpr ULONGLONG kAll = ~ULONGLONG{0};
  constexpr auto kAllHigh = static_cast<ULONG>(kAll);
  for (const auto& decimal :
       {NewDecimal(false, 0, 0, 0), NewDecimal(true, 0, 0, 0), NewDecimal(false, 0, 0, 28),
        NewDecimal(false, 0, 1, 0), NewDecimal(true, 0, 25, 1), NewDecimal(false, 0, 35, 1),
        NewDecimal(false, 0, 3, 0), NewDecimal(false, 0, 1, 28),
        NewDecimal(false, kAllHigh, kAll, 0), NewDecimal(true, kAllHigh, kAll, 0),
        NewDecimal(false, kAllHigh, kAll, 28), NewDecimal(false, kAllHigh, kAll - 5, 1),
        NewDecimal(false, 0, 1, 1), NewDecimal(false, 0, 123456789012345678, 9),
        NewDecimal(false, 0, kAll, 0)}) {
    values.push_back(decimal);
  }
}

void AddTexts(Values& values) {
  values.push_back(NewInteger(VT_BSTR, 0));
  for (const char16_t* text :
       {u"", u"0", u"1", u"-1", u"3", u"2.5", u" 12 ", u"1e3", u"-1.5E-2", u"70000", u"&HFF",
        u"abc", u"ABC", u"True", u"1e400", u"12/31/1999", u"99999999999999999999"}) {
    values.push_back(NewText(text));
  }
}

void AddReferences(Values& values) {
  static LONG integer = 21;
  static double real = 1.25;
  static BYTE byte = 250;
  static BSTR text = NewText(u"4").bstrVal;
  static VARIANT inner = NewInteger(VT_I2, 17);
  static VARIANT null = NewInteger(VT_NULL, 0);
  static DECIMAL decimal = NewDecimal(true, 0, 15, 1).decVal;
  const struct {
    VARTYPE type;
    void* address;
  } references[] = {{VT_I4, &integer},     {VT_R8, &real},       {VT_UI1, &byte},
                    {VT_BSTR, &text},      {VT_VARIANT, &inner}, {VT_VARIANT, &null},
                    {VT_DECIMAL, &decimal}};
  for (const auto& [type, address] : references) {
    VARIANT value = NewInteger(static_cast<VARTYPE>(VT_BYREF | type), 0);
    value.byref = address;
    values.push_back(value);
  }
}

void AddObjects(Values& values) {
  static ObjectWithValue number(NewInteger(VT_I4, 77));
  static ObjectWithValue text(NewText(u"2.5"));
  for (IDispatch* object : {&number, &text}) {
    VARIANT value = NewInteger(VT_DISPATCH, 0);
    value.pdispVal = object;
    values.push_back(value);
  }
  values.push_back(NewInteger(VT_DISPATCH, 0));
  values.push_back(NewInteger(VT_UNKNOWN, 0));
}

void AddOthers(Values& values) {
  for (const VARTYPE type : {VT_I4, VT_UI1, VT_VARIANT}) {
    VARIANT value = NewInteger(static_cast<VARTYPE>(VT_ARRAY | type), 0);
    value.parray = SafeArrayCreateVector(type, 0, 2);
    values.push_back(value);
  }
  for (const int type :
       {15, int{VT_VOID}, int{VT_RECORD}, VT_RESERVED | VT_I4, VT_VECTOR | VT_I4}) {
    values.push_back(NewInteger(static_cast<VARTYPE>(type), 0));
  }
}

}  // namespace

VARIANT NewInteger(VARTYPE type, long long bits) {
  VARIANT value = {};
  value.vt = type;
  value.llVal = bits;
  return value;
}

VARIANT NewReal(VARTYPE type, double number) {
  VARIANT value = {};
  value.vt = type;
  if (type == VT_R4) {
    value.fltVal = static_cast<float>(number);
  } else {
    value.dblVal = number;
  }
  return value;
}

VARIANT NewDecimal(bool negative, ULONG high, ULONGLONG low, BYTE scale) {
  VARIANT value = {};
  value.decVal.scale = scale;
  value.decVal.sign = negative ? DECIMAL_NEG : 0;
  value.decVal.Hi32 = high;
  value.decVal.Lo64 = low;
  value.vt = VT_DECIMAL;
  return value;
}

VARIANT NewText(const char16_t* text) {
  VARIANT value = {};
  value.vt = VT_BSTR;
  value.bstrVal = SysAllocString(reinterpret_cast<const OLECHAR*>(text));
  return value;
}

std::vector<VARIANT>& Samples() {
  // Never destroyed, so that what they own stays in reach of leak checks.
  static Values& values = *[] {
    auto* const all = new Values{NewInteger(VT_EMPTY, 0), NewInteger(VT_NULL, 0)};
    Values& made = *all;
    AddIntegers(made);
    AddReals(made);
    AddExactNumbers(made);
    AddTexts(made);
    AddReferences(made);
    AddObjects(made);
    AddOthers(made);
    return all;
  }();
  return values;
}

const std::vector<const char16_t*>& Texts() {
  static const std::vector<const char16_t*> texts = {
      // Numbers: signs, white space, points, groups.
      u"00",
      u"-0",
      u"+5",
      u"--5",
      u"+-5",
      u"- 5",
      u"5-",
      u"5 -",
      u"5+",
      u"-5-",
      u"\t7",
      u"7\r\n",
      u"\u00A07",
      u"7\u3000",
      u"1 000",
      u"1 2",
      u".5",
      u"5.",
      u".",
      u"-.5",
      u"1.2.3",
      u"1..2",
      u"1,000",
      u"1,00",
      u"1,0,0",
      u",1",
      u"1,",
      u"1,000.5",
      u"1.5,000",
      u"1.000,5",
      u"12,34,56",
      u"-1,000",
      u"1,,0",
      u"0x10",
      u"1_0",
      u"\u0661",
      u"\uFF11",
      // Exponents.
      u"1e",
      u"1e+",
      u"1e5",
      u"1E5",
      u"1d5",
      u"1D-2",
      u"1e+05",
      u"e5",
      u"1e5.5",
      u"1e 5",
      u"1 e5",
      u"-1e-1",
      u"1e308",
      u"1e309",
      u"-1e309",
      u"1e-400",
      u"4.9e-324",
      u"1e28",
      u"1e29",
      u"1e-28",
      u"1e-29",
      u"1e99999",
      u"1e-99999",
      u"0e999",
      u"1.5e1,0",
      u"(1e2)",
      u"$1e2",
      // Edges of the types, and halves.
      u"127",
      u"128",
      u"-128",
      u"-129",
      u"255",
      u"256",
      u"-1",
      u"32767",
      u"32768",
      u"-32768",
      u"-32769",
      u"65535",
      u"65536",
      u"2147483647",
      u"2147483648",
      u"-2147483648",
      u"-2147483649",
      u"4294967295",
      u"4294967296",
      u"9223372036854775807",
      u"9223372036854775808",
      u"-9223372036854775808",
      u"-9223372036854775809",
      u"18446744073709551615",
      u"18446744073709551616",
      u"79228162514264337593543950335",
      u"79228162514264337593543950336",
      u"-79228162514264337593543950335",
      u"79228162514264337593543950335.4",
      u"79228162514264337593543950335.5",
      u"7.9228162514264337593543950335",
      u"0.0000000000000000000000000001",
      u"0.00000000000000000000000000005",
      u"0.00000000000000000000000000015",
      u"922337203685477.5807",
      u"922337203685477.5808",
      u"-922337203685477.5808",
      u"922337203685477.58074",
      u"922337203685477.58075",
      u"0.5",
      u"1.5",
      u"2.5",
      u"3.5",
      u"-0.5",
      u"-1.5",
      u"-2.5",
      u"0.49999999999999999999",
      u"2.50000000000000000001",
      u"0.00005",
      u"0.00015",
      u"0.00025",
      u"1.23455",
      u"1.23445",
      u"126.5",
      u"127.5",
      u"254.5",
      u"255.5",
      u"0.1",
      u"123456789012345678901234567890",
      u"0.1234567890123456789012345678901",
      u"3.4028235e38",
      u"3.4028236e38",
      u"1.7976931348623157e308",
      u"1.7976931348623159e308",
      u"3.14159265358979323846",
      // Bases.
      u"&H",
      u"&h1f",
      u"&HFF",
      u"&H7F",
      u"&H80",
      u"&H100",
      u"&H7FFF",
      u"&H8000",
      u"&HFFFF",
      u"&H10000",
      u"&H7FFFFFFF",
      u"&H80000000",
      u"&HFFFFFFFF",
      u"&H100000000",
      u"&H7FFFFFFFFFFFFFFF",
      u"&H8000000000000000",
      u"&HFFFFFFFFFFFFFFFF",
      u"&H10000000000000000",
      u"&HG",
      u"&H1.5",
      u"&O17",
      u"&o8",
      u"&O377",
      u"&O177777",
      u"&O37777777777",
      u"-&HF",
      u"&H-F",
      u" &HF ",
      u"& HF",
      u"&17",
      u"(&HF)",
      u"&H 1",
      u"&HF&",
      // Currency and brackets.
      u"$1.50",
      u"-$1.50",
      u"$-1.50",
      u"1.50$",
      u"($1.50)",
      u"$(1.50)",
      u"$ 1.50",
      u"$",
      u"$$1",
      u"\u00A41.50",
      u"1.50\u00A4",
      u"-\u00A41.50",
      u"(\u00A41.50)",
      u"\u00A4(1.50)",
      u"\u00A4 1.50",
      u"\u00A41,234.56",
      u"\u20AC1",
      u"\u00A31",
      u"(12)",
      u"( 12 )",
      u"(-12)",
      u"-(12)",
      u"((12))",
      u"(12",
      u"12)",
      u"()",
      u"(1,000)",
      u"50%",
      // Truth values and words.
      u"True",
      u"true",
      u"TRUE",
      u"False",
      u"fAlse",
      u" True",
      u"True ",
      u"#TRUE#",
      u"#FALSE#",
      u"#True#",
      u"Yes",
      u"No",
      u"On",
      u"T",
      u"tru",
      u"Truex",
      u"null",
      u"nan",
      u"inf",
      u"Infinity",
      u"1.#INF",
      u"#12#",
      u"a",
      u"\U0001F600",
      // Dates.
      u"1/2/2003",
      u"01/02/2003",
      u"1-2-2003",
      u"1.2.2003",
      u"1 2 2003",
      u"2003-01-02",
      u"2003/1/2",
      u"2003-1-2",
      u"13/2/2003",
      u"13/13/2003",
      u"2/29/2000",
      u"2/29/2001",
      u"2/30/2000",
      u"4/31/2000",
      u"12/31/9999",
      u"1/1/10000",
      u"1/1/100",
      u"12/31/99",
      u"1/1/99",
      u"1/1/0",
      u"1/1/29",
      u"1/1/30",
      u"1/1/31",
      u"1/1/49",
      u"1/1/50",
      u"1/1/1899",
      u"12/30/1899",
      u"12/29/1899",
      u"0/1/2000",
      u"1/0/2000",
      u"1/2",
      u"13/2",
      u"2/13",
      u"1/2000",
      u"2000/1",
      u"13/2000",
      u"1/32",
      u"1-2",
      u"1/",
      u"/1/2/2003",
      u"1//2/2003",
      u"1/2/2003/4",
      u"20030102",
      u"January 2, 2003",
      u"Jan 2, 2003",
      u"jan 2 2003",
      u"2 January 2003",
      u"2 jan 2003",
      u"2-Jan-2003",
      u"2-Jan-03",
      u"Jan 2003",
      u"January 2003",
      u"2 Jan",
      u"Jan 2",
      u"Jan 32",
      u"Jan",
      u"Janu 2 2003",
      u"Janua 2, 2003",
      u"2003 Jan 2",
      u"2003-Jan-2",
      u"Feb 30, 2003",
      u"Sept 2, 2003",
      u"Wednesday, January 1, 2003",
      u"Thursday, January 2, 2003",
      u"Wed, 1 Jan 2003",
      u"Monday",
      u"2 Jan, 2003",
      u"Jan, 2, 2003",
      u"May 5 5",
      u"5 May",
      u"31 Feb",
      u"30 Feb",
      // Times.
      u"1:02",
      u"01:02:03",
      u"1:2:3",
      u"13:45",
      u"24:00",
      u"23:59:59",
      u"23:59:60",
      u"0:0:0",
      u"1:60",
      u"1:02:03.5",
      u"1 AM",
      u"1AM",
      u"1 PM",
      u"12 AM",
      u"12 PM",
      u"13 PM",
      u"0 AM",
      u"0 PM",
      u"1:30 PM",
      u"1:30PM",
      u"1:30 pm",
      u"1:30 p",
      u"1:30 P.M.",
      u"1:30:15 AM",
      u"PM 1:30",
      u"1.30",
      u"1.30 PM",
      u"13:45 PM",
      u"1:",
      u":30",
      u"1:2:3:4",
      u"-1:00",
      u"1::2",
      // Both.
      u"1/2/2003 13:45",
      u"1/2/2003 13:45:30",
      u"1/2/2003 1:45 PM",
      u"13:45 1/2/2003",
      u"1:45 PM 1/2/2003",
      u"2003-01-02 13:45:30",
      u"2003-01-02T13:45:30",
      u"2003-01-02T13:45:30Z",
      u"2003-01-02 13:45:30.25",
      u"1/2/2003,13:45",
      u"1/2/200313:45",
      u"  1/2/2003   13:45  ",
      u"Jan 2 2003 1PM",
      u"12/29/1899 6:00:00",
      u"12/29/1899 18:00",
      u"1/1/100 23:59:59",
      u"12/31/9999 23:59:59",
      u"#1/2/2003#",
      u"1/2/2003 ",
      u"1/2/2003x",
      u"1/2/2003 24:00",
      u"1/2/2003 1:00 2:00",
      u"1 PM 2",
      u"2.5.2003 1:00",
  };
  return texts;
}

const std::vector<double>& Numbers() {
  static const std::vector<double> numbers = {
      // Halves and edges of the integers.
      0.5,
      1.5,
      3.5,
      -0.5,
      -2.5,
      126.5,
      127.4,
      127.5,
      -128.5,
      -128.6,
      254.5,
      255.4,
      255.5,
      -0.6,
      32766.5,
      32767.5,
      -32768.5,
      -32768.6,
      65534.5,
      65535.5,
      2147483646.5,
      2147483647.4,
      -2147483648.4,
      -2147483648.6,
      4294967294.5,
      4294967295.5,
      4503599627370497.5,
      9007199254740993.0,
      9223372036854774784.0,
      9223372036854775808.0,
      -9223372036854775808.0,
      -9223372036854777856.0,
      18446744073709549568.0,
      18446744073709551616.0,
      0.49999999999999994,
      1.4999999999999998,
      // Currency: halves of ten-thousandths, and its ends.
      0.00005,
      0.00015,
      0.00025,
      -0.00015,
      1.00005,
      1.00015,
      123456.78905,
      922337203685477.5,
      922337203685478.0,
      -922337203685477.6,
      -922337203685478.0,
      // Digits in text and in decimals.
      1.0,
      10.0,
      100000.0,
      999999.0,
      9999999.0,
      12345678.0,
      123456789.0,
      1e14,
      123456789012345.0,
      999999999999999.0,
      1e15,
      1234567890123456.0,
      1e16,
      1e20,
      1e21,
      1e22,
      1e28,
      7.9e28,
      7.92281625142643e28,
      7.92281625142644e28,
      1e29,
      0.1,
      0.01,
      0.001,
      0.0001,
      0.00001,
      0.000001,
      1e-7,
      1e-10,
      1e-14,
      1e-15,
      1e-16,
      1e-28,
      4e-29,
      6e-29,
      1e-30,
      0.30000000000000004,
      1.1,
      1.23456789,
      1.234567890123456,
      123.456,
      123456.7,
      1234567.8,
      12345678.9,
      33.333333333333336,
      66.66666666666667,
      1e100,
      1.5e300,
      1e-100,
      2.2250738585072014e-308,
      3.4028234663852886e38,
      3.4028235677973366e38,
      3.4028235677973362e38,
      1.1754943508222875e-38,
      1.401298464324817e-45,
      7e-46,
      16777217.0,
      // Dates.
      12.5,
      -0.25,
      -1.0,
      -1.75,
      0.99999,
      0.999999,
      0.9999999,
      1.999999,
      59.0,
      60.0,
      61.0,
      366.0,
      36585.0,
      -36522.0,
      37257.04167,
      44000.5000058,
      44000.500005787037,
      0.00000578,
      2958465.999994,
      2958465.999995,
      -657434.25,
      -657434.999994,
      -657434.9999999,
  };
  return numbers;
}

}  // namespace vela::grid
