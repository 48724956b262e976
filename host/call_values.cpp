// The arguments of a call frame as numbers, points and text, read and written back.
#include <charconv>
#include <concepts>
#include <cstdint>
#include <limits>
#include <string_view>

#include "frame/interface/call.h"
#include "frame/interface/host_services.h"
#include "frame/interface/script_object.h"
#include "host/argument_status.h"
#include "host/number_text.h"
#include "host/saturate.h"
#include "host/type_description.h"

using vela::host::IsContainerWord;
using vela::host::IsIntegralType;
using vela::host::kNumberTextSize;
using vela::host::ReadNumber;
using vela::host::Saturate;
using vela::host::StatusOfRead;

namespace {

// An argument's number before it becomes what the member asked for.
struct Number {
  enum class Kind { kSigned, kUnsigned, kComplex };
  Kind kind = Kind::kSigned;
  std::int64_t integer = 0;
  OneTCcomplex complex;

  static Number OfInteger(std::int64_t value, bool is_unsigned) {
    return {is_unsigned ? Kind::kUnsigned : Kind::kSigned, value, {}};
  }
  static Number OfComplex(const OneTCcomplex& value) { return {Kind::kComplex, 0, value}; }

  double Real() const {
    switch (kind) {
      case Kind::kSigned:
        return static_cast<double>(integer);
      case Kind::kUnsigned:
        return static_cast<double>(static_cast<std::uint64_t>(integer));
      default:
        return complex.m_re;
    }
  }
  OneTCcomplex Complex() const { return kind == Kind::kComplex ? complex : OneTCcomplex(Real()); }
};

template <std::integral T>
T ToInteger(const Number& number) {
  switch (number.kind) {
    case Number::Kind::kComplex:
      return Saturate<T>(number.complex.m_re);
    case Number::Kind::kUnsigned:
      return Saturate<T>(static_cast<std::uint64_t>(number.integer));
    default:
      break;
  }
  // Scripts pass -1 for "all flags": a negative int keeps its bits, as in C.
  const bool keeps_bits = std::unsigned_integral<T> && number.integer < 0 &&
                          number.integer >= std::numeric_limits<std::int32_t>::min();
  return keeps_bits ? static_cast<T>(number.integer) : Saturate<T>(number.integer);
}

int ReadObjectInteger(CScriptVelaObject& object, const MSOINDICES& at, bool is_unsigned,
                      Number& out) {
  std::int64_t value = 0;
  std::uint64_t natural = 0;
  const int code =
      is_unsigned ? object.GetNumericValue(&at, natural) : object.GetNumericValue(&at, value);
  if (code == status::kOk) {
    out = Number::OfInteger(is_unsigned ? static_cast<std::int64_t>(natural) : value, is_unsigned);
  }
  return StatusOfRead(code);
}

int ReadObjectReal(CScriptVelaObject& object, const MSOINDICES& at, Number& out) {
  double value = 0;
  const int code = object.GetDouble(&at, value);
  if (code == status::kOk) out = Number::OfComplex(value);
  return StatusOfRead(code);
}

int ReadObjectComplex(CScriptVelaObject& object, const MSOINDICES& at, Number& out) {
  OneTCcomplex value;
  const int code = object.GetNumericValue(&at, value);
  if (code == status::kOk) out = Number::OfComplex(value);
  return StatusOfRead(code);
}

int ReadObjectText(CScriptVelaObject& object, const MSOINDICES& at, Number& out) {
  CStringUTF8 text;
  const int code = object.GetString(&at, text);
  if (code == status::kOk) out = Number::OfComplex(ReadNumber(text.View()));
  return StatusOfRead(code);
}

int ReadObject(CScriptVelaObject& object, unsigned type_word, const MSOINDICES& at, Number& out) {
  if (IsContainerWord(type_word)) return status::kBadArguments;
  const unsigned type = type_word & kTypeIdMask;
  if (type == kTypeNone || type == kTypeReference || type == kTypePointer) {
    return status::kUnresolved;
  }
  if (IsIntegralType(type)) return ReadObjectInteger(object, at, type == kTypeUnsignedInt64, out);
  if (type == kTypeDouble || type == kTypeFloat) return ReadObjectReal(object, at, out);
  if (type == kTypeString) return ReadObjectText(object, at, out);
  if (type == kTypeComplex) return ReadObjectComplex(object, at, out);
  return ReadObjectReal(object, at, out);
}

int Read(const CTCall::Argument* argument, Number& out) {
  if (!argument) return status::kBadArguments;
  using enum CTCall::ArgumentKind;
  switch (argument->kind) {
    case kNull:
      out = {};
      break;
    case kInt:
    case kInt64:
      out = Number::OfInteger(argument->integer, argument->type_id == kTypeUnsignedInt64);
      break;
    case kDouble:
    case kComplex:
      out = Number::OfComplex(argument->number);
      break;
    case kText:
      out = Number::OfComplex(ReadNumber(argument->text));
      break;
    case kObject:
      return ReadObject(*argument->object, argument->type_id, argument->indices, out);
  }
  return status::kOk;
}

template <class T>
int ReadIntegerOf(const CTCall::Argument* argument, T& out) {
  Number number;
  if (const int code = Read(argument, number)) return code;
  out = ToInteger<T>(number);
  return status::kOk;
}

bool IsPointType(unsigned type_id) {
  return type_id == kTypePointInt || type_id == kTypePointDouble || type_id == kTypePoint3D;
}

// A point object as it is; any other value as the point whose coordinates are its complex parts.
template <class Point>
int ReadPoint(const CTCall::Argument* argument, Point& out) {
  if (argument && argument->object && IsPointType(argument->type_id)) {
    return StatusOfRead(argument->object->GetPointValue(&argument->indices, out));
  }
  Number number;
  if (const int code = Read(argument, number)) return code;
  out = static_cast<Point>(number.Complex());
  return status::kOk;
}

template <class T>
void WriteInteger(T value, CStringUTF8& out) {
  char buffer[kNumberTextSize];
  const char* const end = std::to_chars(buffer, buffer + sizeof buffer, value).ptr;
  out = std::string_view(buffer, static_cast<std::size_t>(end - buffer));
}

void WriteIntegerOf(unsigned type_id, std::int64_t value, CStringUTF8& out) {
  if (type_id == kTypeChar) {
    out = make_str_from_char(static_cast<char>(value));
  } else if (type_id == kTypeUnsignedInt64) {
    WriteInteger(static_cast<std::uint64_t>(value), out);
  } else {
    WriteInteger(value, out);
  }
}

CStringUTF8 TextOf(double value) {
  char buffer[kNumberTextSize];
  const char* const end = vela::host::WriteReal(value, buffer);
  return CStringUTF8(std::string_view(buffer, static_cast<std::size_t>(end - buffer)));
}

CStringUTF8 TextOf(const OneTCcomplex& value) {
  CStringUTF8 text;
  value.Get(text);
  return text;
}

int ReadObjectText(CScriptVelaObject& object, unsigned type_id, const MSOINDICES& at,
                   CStringUTF8& out) {
  if (type_id == kTypeNone || type_id == kTypeReference || type_id == kTypePointer) {
    return status::kUnresolved;
  }
  if (type_id != kTypeChar && type_id != kTypeCharAlias) {
    return StatusOfRead(object.GetString(&at, out));
  }
  char ch = 0;
  if (const int code = object.GetNumericValue(&at, ch)) return StatusOfRead(code);
  out = make_str_from_char(ch);
  return status::kOk;
}

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
template <class Value>
int WriteBack(const CTCall::Argument* argument, const Value& value) {
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

int CTCall::ReadInteger(unsigned arg, int& out) { return ReadIntegerOf(Find(arg), out); }
int CTCall::ReadInteger(unsigned arg, unsigned& out) { return ReadIntegerOf(Find(arg), out); }

int CTCall::GetDouble(unsigned arg, double& out) {
  Number number;
  if (const int code = Read(Find(arg), number)) return code;
  out = number.Real();
  return status::kOk;
}

int CTCall::GetComplex(unsigned arg, OneTCcomplex& out) {
  Number number;
  if (const int code = Read(Find(arg), number)) return code;
  out = number.Complex();
  return status::kOk;
}

int CTCall::GetPointInt(unsigned arg, PointInt& out) { return ReadPoint(Find(arg), out); }
int CTCall::GetPointDouble(unsigned arg, PointDouble& out) { return ReadPoint(Find(arg), out); }
int CTCall::GetPoint3D(unsigned arg, Point3D& out) { return ReadPoint(Find(arg), out); }

int CTCall::GetString(unsigned arg, CStringUTF8& out) {
  const Argument* const argument = Find(arg);
  if (!argument) return status::kBadArguments;
  using enum ArgumentKind;
  switch (argument->kind) {
    case kNull:
      return status::kBadArguments;
    case kInt:
    case kInt64:
      WriteIntegerOf(argument->type_id, argument->integer, out);
      break;
    case kDouble:
      out = TextOf(argument->number.m_re);
      break;
    case kComplex:
      argument->number.Get(out);
      break;
    case kText:
      out = argument->text;
      break;
    case kObject:
      return ReadObjectText(*argument->object, argument->type_id, argument->indices, out);
  }
  return status::kOk;
}

int CTCall::SetInt(unsigned arg, int value) { return WriteBack(Find(arg), value); }
int CTCall::SetDouble(unsigned arg, double value) { return WriteBack(Find(arg), value); }
int CTCall::SetString(unsigned arg, const char* text) { return WriteBack(Find(arg), text); }
int CTCall::SetComplex(int arg, const OneTCcomplex& value) {
  return WriteBack(arg < 0 ? nullptr : Find(static_cast<unsigned>(arg)), value);
}
