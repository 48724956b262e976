// The arguments of a call frame as numbers and points.
#include <concepts>
#include <cstdint>
#include <limits>

#include "frame/interface/call.h"
#include "frame/interface/script_object.h"
#include "host/call_object.h"
#include "host/number_text.h"
#include "host/saturate.h"
#include "host/type_description.h"

using vela::host::IsContainerWord;
using vela::host::IsIntegralType;
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

struct ArgumentReader {
  template <class Argument>
  static int Read(const Argument* argument, Number& out) {
    using Kind = decltype(argument->kind);
    if (!argument) return status::kBadArguments;
    switch (argument->kind) {
      case Kind::kNull:
        out = {};
        break;
      case Kind::kInt:
      case Kind::kInt64:
        out = Number::OfInteger(argument->integer, argument->type_id == kTypeUnsignedInt64);
        break;
      case Kind::kDouble:
      case Kind::kComplex:
        out = Number::OfComplex(argument->number);
        break;
      case Kind::kText:
        out = Number::OfComplex(ReadNumber(argument->text));
        break;
      case Kind::kObject:
        return ReadObject(*argument->object, argument->type_id, argument->indices, out);
    }
    return status::kOk;
  }
};

template <class T, class Argument>
int ReadIntegerOf(const Argument* argument, T& out) {
  Number number;
  if (const int code = ArgumentReader::Read(argument, number)) return code;
  out = ToInteger<T>(number);
  return status::kOk;
}

bool IsPointType(unsigned type_id) {
  return type_id == kTypePointInt || type_id == kTypePointDouble || type_id == kTypePoint3D;
}

// A point object as it is; any other value as the point whose coordinates are its complex parts.
template <class Point, class Argument>
int ReadPoint(const Argument* argument, Point& out) {
  if (argument && argument->object && IsPointType(argument->type_id)) {
    return StatusOfRead(argument->object->GetPointValue(&argument->indices, out));
  }
  Number number;
  if (const int code = ArgumentReader::Read(argument, number)) return code;
  const bool is_complex = number.kind == Number::Kind::kComplex;
  out = static_cast<Point>(is_complex ? number.complex : OneTCcomplex(number.Real()));
  return status::kOk;
}

}  // namespace

int CTCall::ReadInteger(unsigned arg, int& out) { return ReadIntegerOf(Find(arg), out); }
int CTCall::ReadInteger(unsigned arg, unsigned& out) { return ReadIntegerOf(Find(arg), out); }

int CTCall::GetDouble(unsigned arg, double& out) {
  Number number;
  if (const int code = ArgumentReader::Read(Find(arg), number)) return code;
  out = number.Real();
  return status::kOk;
}

int CTCall::GetComplex(unsigned arg, OneTCcomplex& out) {
  Number number;
  if (const int code = ArgumentReader::Read(Find(arg), number)) return code;
  out = number.kind == Number::Kind::kComplex ? number.complex : OneTCcomplex(number.Real());
  return status::kOk;
}

int CTCall::GetPointInt(unsigned arg, PointInt& out) { return ReadPoint(Find(arg), out); }
int CTCall::GetPointDouble(unsigned arg, PointDouble& out) { return ReadPoint(Find(arg), out); }
int CTCall::GetPoint3D(unsigned arg, Point3D& out) { return ReadPoint(Find(arg), out); }
