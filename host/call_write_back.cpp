// Writing to the by-reference arguments of a call frame.
#include "frame/interface/call.h"
#include "frame/interface/script_object.h"
#include "host/call_object.h"
#include "host/number_text.h"

using vela::host::StatusOfRead;

namespace {

int Write(CScriptVelaObject& object, const MSOINDICES& at, const char* text) {
  return object.SetString(&at, text ? text : "");
}

int Write(CScriptVelaObject& object, const MSOINDICES& at, int value) {
  return object.SetNumericValue(&at, value);
}

int Write(CScriptVelaObject& object, const MSOINDICES& at, double value) {
  return object.SetNumericValue(&at, value);
}

int Write(CScriptVelaObject& object, const MSOINDICES& at, const OneTCcomplex& value) {
  return object.SetNumericValue(&at, value);
}

// A number written to a string becomes its text.
CStringUTF8 TextOf(double value) {
  char buffer[vela::host::kNumberTextSize];
  const char* const end = vela::host::WriteReal(value, buffer);
  return CStringUTF8(std::string_view(buffer, static_cast<std::size_t>(end - buffer)));
}

CStringUTF8 TextOf(const OneTCcomplex& value) {
  CStringUTF8 text;
  value.Get(text);
  return text;
}

template <class Argument, class Value>
int WriteBack(const Argument* argument, const Value& value) {
  if (!argument || !argument->object || !argument->by_reference) return status::kBadArguments;
  const unsigned type = argument->type_id;
  if (type == kTypeReference || type == kTypePointer) return status::kUnresolved;
  CScriptVelaObject& object = *argument->object;
  if constexpr (!std::is_convertible_v<Value, const char*>) {
    if (type == kTypeString) {
      return StatusOfRead(Write(object, argument->indices, TextOf(value).c_str()));
    }
  }
  return StatusOfRead(Write(object, argument->indices, value));
}

}  // namespace

int CTCall::SetInt(unsigned arg, int value) { return WriteBack(Find(arg), value); }
int CTCall::SetDouble(unsigned arg, double value) { return WriteBack(Find(arg), value); }
int CTCall::SetString(unsigned arg, const char* text) { return WriteBack(Find(arg), text); }
int CTCall::SetComplex(int arg, const OneTCcomplex& value) {
  return WriteBack(arg < 0 ? nullptr : Find(static_cast<unsigned>(arg)), value);
}
