// The text that stands for an automation value.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <string>
#include <utf8.h>
#include <vector>

#include "frame/interface/automation_values.h"
#include "frame/interface/status.h"
#include "frame/interface/type_base.h"
#include "platform/com_variant.h"

namespace {

// No deeper than a value that a script can make: it keeps the stack of a hostile one.
constexpr int kDeepestArray = 200;

std::string NumberText(double value) {
  char buffer[VELAObj::kRealTextSize];
  return {buffer, static_cast<std::size_t>(VELAObj::RealToString(value, buffer, nullptr))};
}

std::string NumberText(float value) {
  char buffer[VELAObj::kRealTextSize];
  return {buffer, static_cast<std::size_t>(VELAObj::FloatToString(value, buffer))};
}

// Units that are no text become the replacement character.
std::string FromUtf16(BSTR text) {
  const auto* unit = reinterpret_cast<const char16_t*>(text);
  const auto* const end = unit + SysStringLen(text);
  std::string utf8_text;
  while (unit != end) {
    std::uint32_t point = *unit++;
    if (utf8::internal::is_lead_surrogate(point) && unit != end &&
        utf8::internal::is_trail_surrogate(*unit)) {
      point = 0x10000 + ((point - 0xD800) << 10) + (*unit++ - 0xDC00u);
    } else if (utf8::internal::is_surrogate(point)) {
      point = 0xFFFD;
    }
    utf8::append(point, std::back_inserter(utf8_text));
  }
  return utf8_text;
}

std::string ConvertedText(const VARIANT& value) {
  CComVariant text;
  if (FAILED(VariantChangeType(&text, &value, VARIANT_ALPHABOOL, VT_BSTR))) {
    return "type " + std::to_string(value.vt);
  }
  return FromUtf16(text.bstrVal);
}

std::string ErrorText(SCODE code) {
  char text[32];
  std::snprintf(text, sizeof text, "error 0x%08X", static_cast<unsigned>(code));
  return text;
}

void AppendQuoted(std::string& text, const std::string& content) {
  text += '"';
  for (const char c : content) {
    if (c == '"' || c == '\\') text += '\\';
    text += c;
  }
  text += '"';
}

// A two-dimensional array is shown row after row, which is the order of its indices: the last one
// runs fastest.
class ArrayText {
 public:
  ArrayText(std::string& text, SAFEARRAY* array, VARTYPE type, int depth)
      : text_(text), array_(array), type_(type), depth_(depth), indices_(SafeArrayGetDim(array)) {}

  void Append() { AppendFrom(0); }

 private:
  void AppendFrom(UINT dimension) {
    LONG lower = 0, upper = -1;
    SafeArrayGetLBound(array_, dimension + 1, &lower);
    SafeArrayGetUBound(array_, dimension + 1, &upper);
    text_ += '{';
    for (std::int64_t i = lower; i <= upper; ++i) {
      if (i > lower) text_ += ", ";
      indices_[dimension] = static_cast<LONG>(i);
      if (dimension + 1 < indices_.size()) {
        AppendFrom(dimension + 1);
      } else {
        AppendElement();
      }
    }
    text_ += '}';
  }
  void AppendElement();

  std::string& text_;
  SAFEARRAY* array_;
  VARTYPE type_;
  int depth_;
  std::vector<LONG> indices_;
};

void AppendText(std::string& text, const VARIANT& value, bool in_array, int depth) {
  if (value.vt & VT_ARRAY) {
    if (value.parray == nullptr || SafeArrayGetDim(value.parray) == 0 || depth > kDeepestArray) {
      text += "{}";
    } else {
      ArrayText(text, value.parray, value.vt & VT_TYPEMASK, depth).Append();
    }
    return;
  }
  switch (value.vt) {
    case VT_EMPTY:
      return;
    case VT_NULL:
      text += "NULL";
      return;
    case VT_R4:
      text += NumberText(value.fltVal);
      return;
    case VT_R8:
      text += NumberText(value.dblVal);
      return;
    case VT_ERROR:
      text += ErrorText(value.scode);
      return;
    case VT_DISPATCH:
    case VT_UNKNOWN:
      text += value.punkVal != nullptr ? "object" : "NULL";
      return;
    case VT_BSTR:
      if (!in_array) {
        text += FromUtf16(value.bstrVal);
        return;
      }
      return AppendQuoted(text, FromUtf16(value.bstrVal));
    default:
      text += ConvertedText(value);
  }
}

void ArrayText::AppendElement() {
  void* cell = nullptr;
  if (FAILED(SafeArrayPtrOfIndex(array_, indices_.data(), &cell))) return;
  if (type_ == VT_VARIANT) return AppendText(text_, *static_cast<VARIANT*>(cell), true, depth_ + 1);
  // A look at the element, which stays the array's.
  VARIANT value{};
  if (type_ == VT_DECIMAL) {
    value.decVal = *static_cast<DECIMAL*>(cell);
  } else {
    std::memcpy(&value.llVal, cell,
                std::min<std::size_t>(SafeArrayGetElemsize(array_), sizeof value.llVal));
  }
  value.vt = type_;
  AppendText(text_, value, true, depth_ + 1);
}

}  // namespace

int TextOfVariant(const VARIANT& value, CStringUTF8& text) try {
  CComVariant own;
  const VARIANT* source = &value;
  if (value.vt & VT_BYREF) {
    if (FAILED(VariantCopyInd(&own, &value))) return status::kAutomationFailed;
    source = &own;
  }
  std::string form;
  AppendText(form, *source, false, 0);
  text = form.c_str();
  return status::kOk;
} catch (const std::bad_alloc&) {
  return status::kCannotResize;
}
