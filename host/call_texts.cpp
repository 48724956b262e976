// The arguments of a call frame as text.
#include <charconv>
#include <string_view>

#include "frame/interface/call.h"
#include "frame/interface/host_services.h"
#include "frame/interface/script_object.h"
#include "host/call_object.h"
#include "host/number_text.h"

using vela::host::kNumberTextSize;
using vela::host::StatusOfRead;

namespace {

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

void WriteDouble(double value, CStringUTF8& out) {
  char buffer[kNumberTextSize];
  const char* const end = vela::host::WriteReal(value, buffer);
  out = std::string_view(buffer, static_cast<std::size_t>(end - buffer));
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

}  // namespace

int CTCall::GetString(unsigned arg, CStringUTF8& out) {
  const Argument* const argument = Find(arg);
  if (!argument) return status::kBadArguments;
  switch (argument->kind) {
    case ArgumentKind::kNull:
      return status::kBadArguments;
    case ArgumentKind::kInt:
    case ArgumentKind::kInt64:
      WriteIntegerOf(argument->type_id, argument->integer, out);
      break;
    case ArgumentKind::kDouble:
      WriteDouble(argument->number.m_re, out);
      break;
    case ArgumentKind::kComplex:
      argument->number.Get(out);
      break;
    case ArgumentKind::kText:
      out = argument->text;
      break;
    case ArgumentKind::kObject:
      return ReadObjectText(*argument->object, argument->type_id, argument->indices, out);
  }
  return status::kOk;
}
