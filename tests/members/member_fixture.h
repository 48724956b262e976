// Calls members through the factory, the lookup and a call frame, as a host does, in one line:
//
//   ObjectRef v = VectorOf<double>({1, 2, kMissingValue});
//   ObjectRef total = Make(kTypeDouble);
//   EXPECT_EQ(Call(v, "Sum", total).status, status::kOk);
//   EXPECT_EQ(ValueOf<double>(total), 3);
#pragma once

#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <initializer_list>
#include <string>
#include <type_traits>
#include <vector>

#include "frame/element_types.h"
#include "frame/interface/missing_value.h"
#include "frame/interface/status.h"
#include "host/call_frame.h"
#include "host/library.h"
#include "host/object_ref.h"

namespace vela::testing {

using host::CallFrame;
using host::ObjectRef;

// The library under test, loaded once, with the host's hooks installed.
inline host::Library& TheLibrary() {
  static host::Library library;
  static const bool loaded = [] {
    if (!library.Load()) {
      ADD_FAILURE() << library.GetError();
      std::abort();
    }
    library.Configure();
    return true;
  }();
  static_cast<void>(loaded);
  return library;
}

inline ObjectRef Make(unsigned type_word, unsigned n = 0) {
  return ObjectRef(TheLibrary().Create(type_word, n));
}

// Sets the debug mode for a scope.
class DebugModeScope {
 public:
  explicit DebugModeScope(int mode) { TheLibrary().SetDebugMode(mode); }
  ~DebugModeScope() { TheLibrary().SetDebugMode(0); }
};

struct Null {};

inline void AddArgument(CallFrame& frame, Null) { frame.AddNull(); }
inline void AddArgument(CallFrame& frame, int value) { frame.AddInt(value); }
inline void AddArgument(CallFrame& frame, unsigned value) { frame.AddInt(static_cast<int>(value)); }
inline void AddArgument(CallFrame& frame, double value) { frame.AddDouble(value); }
inline void AddArgument(CallFrame& frame, char value) { frame.AddChar(value); }
inline void AddArgument(CallFrame& frame, const char* text) { frame.AddText(text); }
inline void AddArgument(CallFrame& frame, const std::string& text) { frame.AddText(text.c_str()); }
inline void AddArgument(CallFrame& frame, const OneTCcomplex& value) { frame.AddComplex(value); }
inline void AddArgument(CallFrame& frame, const ObjectRef& object) {
  frame.AddObject(object.Get());
}
// One row, layer or element of an object as the argument.
struct Part {
  const ObjectRef& object;
  MSOINDICES indices;
};
inline void AddArgument(CallFrame& frame, const Part& part) {
  frame.AddObject(part.object.Get(), part.indices);
}

struct Result {
  int status = -1;
  CallFrame::ResultKind kind = CallFrame::ResultKind::kNone;
  std::int64_t integer = 0;
  double real = 0;
  OneTCcomplex complex;
  std::string text;

  static Result OfStatus(int status) {
    Result result;
    result.status = status;
    return result;
  }
  // For the common case: success with an int result. Anything else is a value no member returns.
  int Int() const {
    return status == 0 && kind != CallFrame::ResultKind::kNone ? static_cast<int>(integer)
                                                               : -987654321;
  }
};

inline Result Collect(const CallFrame& frame, int status) {
  Result result;
  result.status = status;
  result.kind = frame.Kind();
  result.integer = frame.ResultInt();
  result.real = frame.ResultDouble();
  result.complex = frame.ResultComplex();
  result.text = std::string(frame.ResultText().View());
  return result;
}

constexpr int kNoSuchMember = -100;

// Looks a method up and calls it on what indices address. A property row is read, or set when there
// is an argument.
template <class... Args>
Result CallAt(const ObjectRef& object, const MSOINDICES& indices, const char* name,
              const Args&... args) {
  CTypeBase* owner = nullptr;
  const CClassMember* row = object->FindMember(name, 0, &owner, 0);
  if (row == nullptr || owner == nullptr) return Result::OfStatus(kNoSuchMember);
  CallFrame frame;
  frame.GetIndeces() = indices;
  (AddArgument(frame, args), ...);
  const int status = row->IsProperty() && sizeof...(args) > 0
                         ? owner->DoPropertySet(row->GetSetter(), &frame)
                     : row->IsProperty() ? owner->DoPropertyGet(row->GetHandler(), &frame)
                                         : owner->DoMethod(row->GetHandler(), &frame);
  return Collect(frame, status);
}

template <class... Args>
Result Call(const ObjectRef& object, const char* name, const Args&... args) {
  return CallAt(object, MSOINDICES{}, name, args...);
}

template <class T>
ObjectRef VectorOf(std::initializer_list<T> values) {
  ObjectRef vector = Make(kElement<T>.type_id | kFlagVector);
  EXPECT_EQ(vector->InitalizeFromMemory(values.begin(), static_cast<int>(values.size())), 0);
  return vector;
}

template <class T>
ObjectRef VectorOf(const std::vector<T>& values) {
  ObjectRef vector = Make(kElement<T>.type_id | kFlagVector);
  EXPECT_EQ(vector->InitalizeFromMemory(values.data(), static_cast<int>(values.size())), 0);
  return vector;
}

template <class T>
ObjectRef ScalarOf(T value) {
  ObjectRef scalar = Make(kElement<T>.type_id);
  EXPECT_EQ(scalar->InitalizeFromMemory(&value, 1), 0);
  return scalar;
}

// The elements of one row.
template <class T>
std::vector<T> ValuesOf(const ObjectRef& vector, int row = 0) {
  const MSOINDICES at = MSOINDICES::Object(row);
  int upper = -1;
  EXPECT_EQ(vector->GetUpperBound(&at, upper), 0);
  std::vector<T> values(static_cast<std::size_t>(upper + 1));
  for (int i = 0; i <= upper; ++i) {
    const MSOINDICES element = at.WithElement(i);
    EXPECT_EQ(vector->GetValueToBuffer(&values[static_cast<std::size_t>(i)], sizeof(T), &element),
              0);
  }
  return values;
}

template <class T>
T ValueOf(const ObjectRef& scalar) {
  T value{};
  EXPECT_EQ(scalar->GetValueToBuffer(&value, sizeof value, nullptr), 0);
  return value;
}

inline std::string TextOf(const ObjectRef& object, const MSOINDICES* at = nullptr) {
  CStringUTF8 text;
  if (at != nullptr) {
    EXPECT_EQ(object->GetString(at, text), 0);
  } else {
    EXPECT_EQ(object->GetString(text), 1);
  }
  return std::string(text.View());
}

}  // namespace vela::testing
