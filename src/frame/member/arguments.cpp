#include "frame/member/arguments.h"

#include <cstring>

#include "frame/element_types.h"
#include "frame/element_value.h"
#include "platform/com_variant.h"

namespace vela::member {

void Fail(int code) { throw Failure{code}; }

int StatusOfException() noexcept {
  try {
    throw;
  } catch (const Failure& failure) {
    return failure.code;
  } catch (const std::bad_alloc&) {
    return status::kCannotResize;
  } catch (const std::length_error&) {
    return status::kCannotResize;
  } catch (const std::out_of_range&) {
    return status::kOutOfRange;
  } catch (const AutomationError& error) {
    return error.code == E_OUTOFMEMORY ? status::kCannotResize : status::kAutomationFailed;
  } catch (...) {
    return status::kFailed;
  }
}

bool Arguments::IsCharacter(unsigned arg) const {
  return WithElementType(TypeId(arg), []<class T>() { return IntegerElement<T>; });
}

bool Arguments::IsText(unsigned arg) const {
  const unsigned id = TypeId(arg);
  return id == kTypeString || id == kTypeStringLiteral;
}

double Arguments::Double(unsigned arg) {
  double value = 0;
  Check(call_.GetDouble(arg, value));
  return value;
}

OneTCcomplex Arguments::Complex(unsigned arg) {
  OneTCcomplex value;
  Check(call_.GetComplex(arg, value));
  return value;
}

CStringUTF8 Arguments::Text(unsigned arg) {
  CStringUTF8 text;
  Check(call_.GetString(arg, text));
  return text;
}

std::uint64_t Arguments::Handle(unsigned arg) {
  std::uint64_t handle = 0;
  if (IsCharacter(arg)) {
    // The text of an integer has all its digits, where a double has not.
    const CStringUTF8 digits = Text(arg);
    handle = *digits == '-' ? static_cast<std::uint64_t>(ValueOfText<std::int64_t>(digits))
                            : ValueOfText<std::uint64_t>(digits);
  } else {
    std::memcpy(&handle, Buffer(arg, sizeof handle), sizeof handle);
  }
  return handle;
}

tagMSOOBJVECT Arguments::Object(unsigned arg) {
  tagMSOOBJVECT object;
  Check(call_.GetArgumentObject(static_cast<int>(arg), object));
  return object;
}

void* Arguments::Buffer(unsigned arg, int bytes) {
  void* data = nullptr;
  Check(call_.GetBuffer(arg, &data, bytes));
  locked_ |= 1u << (arg & 31);
  return data;
}

void Arguments::ReleaseBuffers() {
  for (unsigned arg = 0; locked_ != 0; ++arg, locked_ >>= 1) {
    if ((locked_ & 1) != 0) call_.ReleaseBuffer(arg);
  }
}

}  // namespace vela::member
