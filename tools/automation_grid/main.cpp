// Runs the automation functions over a grid of types and values and prints a line per case:
//
//     OPERATION OPERAND[, OPERAND] -> RESULT
//
// where a value is TYPE:VALUE and a failure its code. The same program runs on every platform, so
// that two of them can be compared line for line (tools/compare_automation.py). With the names of
// sections (arithmetic, comparison, conversion, arrays) as arguments it runs those alone.
#include <algorithm>
#include <cstdio>
#include <string>

#include "tools/automation_grid/arrays.h"
#include "tools/automation_grid/describe.h"
#include "tools/automation_grid/samples.h"

namespace vela::grid {
namespace {

constexpr int kTargets[] = {VT_EMPTY,
                            VT_NULL,
                            VT_I1,
                            VT_UI1,
                            VT_I2,
                            VT_UI2,
                            VT_I4,
                            VT_UI4,
                            VT_I8,
                            VT_UI8,
                            VT_INT,
                            VT_UINT,
                            VT_R4,
                            VT_R8,
                            VT_CY,
                            VT_DATE,
                            VT_DECIMAL,
                            VT_BOOL,
                            VT_BSTR,
                            VT_ERROR,
                            VT_DISPATCH,
                            VT_UNKNOWN,
                            VT_ARRAY | VT_UI1,
                            VT_ARRAY | VT_I4};

bool IsNoType(const VARIANT& value) {
  return value.vt == 15 || value.vt == VT_VOID || value.vt == VT_RECORD ||
         (value.vt & (VT_RESERVED | VT_VECTOR)) != 0;
}

template <typename Function>
void ForEachPair(Function function) {
  for (auto& left : Samples()) {
    for (auto& right : Samples()) {
      if (!IsNoType(left) || !IsNoType(right)) function(left, right);
    }
  }
}

void PrintPair(const std::string& name, const VARIANT& left, const VARIANT& right,
               const std::string& result) {
  Print(name + " " + Describe(left) + ", " + Describe(right) + " -> " + result);
}

void RunArithmetic() {
  const struct {
    const char* name;
    HRESULT(STDMETHODCALLTYPE* function)(VARIANT*, VARIANT*, VARIANT*);
  } operations[] = {{"add", VarAdd}, {"sub", VarSub}, {"mul", VarMul}, {"div", VarDiv}};
  for (const auto& operation : operations) {
    ForEachPair([&](VARIANT& left, VARIANT& right) {
      VARIANT result = {};
      const HRESULT code = operation.function(&left, &right, &result);
      PrintPair(operation.name, left, right, FAILED(code) ? NameOf(code) : Describe(result));
      if (SUCCEEDED(code)) VariantClear(&result);
    });
  }
}

void Compare(VARIANT& left, VARIANT& right, ULONG flags) {
  static const char* const kOrder[] = {"less", "equal", "greater", "null"};
  const HRESULT code = VarCmp(&left, &right, LOCALE_INVARIANT, flags);
  const std::string name = flags == 0 ? "cmp" : "cmp/" + HexText(flags);
  PrintPair(name, left, right,
            code >= 0 && code <= VARCMP_NULL ? std::string(kOrder[code]) : NameOf(code));
}

void RunComparison() {
  ForEachPair([](VARIANT& left, VARIANT& right) { Compare(left, right, 0); });
  std::vector<VARIANT> texts;
  for (const char16_t* text : {u"",
                               u"a",
                               u"A",
                               u"b",
                               u"B",
                               u"ab",
                               u"aB",
                               u"Ab",
                               u"a b",
                               u"a-b",
                               u"a_b",
                               u"coop",
                               u"co-op",
                               u"co'op",
                               u"coop-",
                               u"-coop",
                               u"CO-OP",
                               u"cop",
                               u"-",
                               u"'",
                               u"--",
                               u"_",
                               u" ",
                               u"  ",
                               u"1",
                               u"10",
                               u"2",
                               u"1a",
                               u"\u00E4",
                               u"a\u0308",
                               u"\u00C4",
                               u"\u00E9",
                               u"e",
                               u"f",
                               u"\u00E7",
                               u"\u00F1",
                               u"\u00DF",
                               u"ss",
                               u"\u00E6",
                               u"ae",
                               u"\u00C6",
                               u"AE",
                               u"\u0153",
                               u"oe",
                               u"\u00FE",
                               u"th",
                               u"\u00F8",
                               u"z",
                               u"\u03B1",
                               u"\u0391",
                               u"\u0431",
                               u"\uFF21",
                               u"\u3042",
                               u"\u30A2",
                               u"\u4E00",
                               u"a\u0001",
                               u"#",
                               u"+",
                               u"~",
                               u"<",
                               u"$",
                               u"(",
                               u"[",
                               u"resume",
                               u"r\u00E9sum\u00E9",
                               u"Resume",
                               u"R\u00C9SUM\u00C9"}) {
    texts.push_back(NewText(text));
  }
  constexpr ULONG kFlags[] = {0,
                              NORM_IGNORECASE,
                              NORM_IGNORENONSPACE,
                              NORM_IGNORESYMBOLS,
                              SORT_STRINGSORT,
                              NORM_IGNOREKANATYPE,
                              NORM_IGNOREWIDTH,
                              NORM_IGNORECASE | NORM_IGNORENONSPACE};
  for (const ULONG flags : kFlags) {
    for (auto& left : texts) {
      for (auto& right : texts) Compare(left, right, flags);
    }
  }
  for (auto& text : texts) VariantClear(&text);
}

void Convert(VARIANT& source, int target, USHORT flags) {
  VARIANT result = {};
  const auto type = static_cast<VARTYPE>(target);
  const HRESULT code = VariantChangeTypeEx(&result, &source, LOCALE_INVARIANT, flags, type);
  std::string name = "to " + NameOf(type);
  if (flags != 0) name += "/" + HexText(flags);
  Print(name + " " + Describe(source) + " -> " + (FAILED(code) ? NameOf(code) : Describe(result)));
  if (SUCCEEDED(code)) VariantClear(&result);
}

void RunConversion() {
  for (auto& sample : Samples()) {
    for (const int target : kTargets) Convert(sample, target, 0);
    Convert(sample, VT_BSTR, VARIANT_ALPHABOOL);
    Convert(sample, VT_I4, VARIANT_NOVALUEPROP);
  }
  for (const char16_t* text : Texts()) {
    VARIANT sample = NewText(text);
    for (const int target : kTargets) Convert(sample, target, 0);
    VariantClear(&sample);
  }
  for (const double number : Numbers()) {
    for (const VARTYPE type : {VT_R4, VT_R8, VT_DATE}) {
      VARIANT sample = NewReal(type, number);
      for (const int target : kTargets) Convert(sample, target, 0);
    }
  }
  VARIANT one = NewInteger(VT_I4, 1);
  for (int type = 0; type < 0x100; ++type) Convert(one, type, 0);
  for (const int flag : {VT_VECTOR, VT_ARRAY, VT_BYREF, VT_RESERVED}) {
    for (int type = 0; type < 40; ++type) Convert(one, flag | type, 0);
  }
}

}  // namespace
}  // namespace vela::grid

int main(int count, char** arguments) {
  const struct {
    std::string name;
    void (*run)();
  } sections[] = {{"arithmetic", vela::grid::RunArithmetic},
                  {"comparison", vela::grid::RunComparison},
                  {"conversion", vela::grid::RunConversion},
                  {"arrays", vela::grid::RunArrays}};
  OleInitialize(nullptr);
  for (const auto& section : sections) {
    char** const end = arguments + count;
    if (count < 2 || std::find(arguments + 1, end, section.name) != end) section.run();
  }
  OleUninitialize();
  return std::fflush(stdout) == 0 ? 0 : 1;
}
