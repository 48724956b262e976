// The call frame: a member reads its arguments from it by position and delivers its result to it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <type_traits>
#include <vector>

#include "frame/interface/complex.h"
#include "frame/interface/export.h"
#include "frame/interface/indices.h"
#include "frame/interface/object_argument.h"
#include "frame/interface/point.h"
#include "frame/interface/string_utf8.h"
#include "frame/interface/type_words.h"
#include "platform/types.h"

class CScriptVelaObject;

// Marshals arguments for a call into an external function: a run of 8-byte slots in argument order.
// Numbers are widened as C does for variable arguments (integers to 64 bits, float to double);
// texts are pointers that the builder keeps alive.
class VELAHOST_API CTCExternalCallBuilder {
 public:
  // What a slot holds, so that a consumer can check it against what it expects.
  enum class SlotKind { kInteger, kUnsigned, kDouble, kText, kPointer };
  struct Slot {
    SlotKind kind;
    int width;  // bytes of the argument before widening
    union {
      std::int64_t integer;
      double real;
      const char* text;
      void* pointer;
    };
  };

  void AddNext(std::int64_t value, int width);
  void AddNext(std::uint64_t value, int width);
  void AddNext(double value, int width);
  void AddNext(const CStringUTF8& text);
  void AddNext(void* pointer);

  // The slots in argument order; valid until the next AddNext.
  const Slot* GetArgValuesBuffer() const { return slots_.data(); }
  unsigned GetCount() const { return static_cast<unsigned>(slots_.size()); }

 private:
  std::vector<Slot> slots_;
  std::vector<CStringUTF8> texts_;
};

// Arguments are numbered from 0. Every getter and setter returns 0 for success and a status
// otherwise (3 for an argument that is not there or cannot be read as asked), leaving the output
// untouched. Text and objects that a getter hands out are borrowed until the call ends.
class VELAHOST_API CTCall {
 public:
  // What a frame keeps of an argument. kInt64 holds an unsigned 64-bit value when the type id says
  // so.
  enum class ArgumentKind : std::uint8_t { kNull, kInt, kInt64, kDouble, kComplex, kText, kObject };
  struct Argument {
    ArgumentKind kind = ArgumentKind::kNull;
    bool by_reference = false;
    unsigned type_id = 0;
    unsigned lent_bytes = 0;
    std::int64_t integer = 0;
    OneTCcomplex number;
    const char* text = nullptr;  // NUL-terminated UTF-8, owned by the caller
    CScriptVelaObject* object = nullptr;
    MSOINDICES indices;
    void* lent = nullptr;  // by GetBuffer, until ReleaseBuffer
  };

  // 0 when the frame cannot run a member; a member that gets 0 returns 1 at once.
  virtual int IsReady();
  // Called with 0 by string members after their result is set.
  virtual void Notify(int notice);

  virtual ~CTCall();

  unsigned GetNumOfArguments() const { return count_; }
  // Type id of the argument, joined with its container flag: 3 for a character, 8 for an int, 11
  // for a double literal, 33 for a string literal, the object's own type word for an object (a
  // reference reports its target); 0 for NULL and for an argument that is not there.
  unsigned GetTypeID(unsigned arg) const {
    const Argument* const argument = Find(arg);
    return argument != nullptr ? argument->type_id : 0;
  }

  // Numbers convert as the scalar objects do: truncation toward zero with saturation, NaN and the
  // missing value give 0. A text converts by the text-to-number rule.
  int GetInt(unsigned arg, int& out) { return GetInteger(arg, out); }
  int GetUINT(unsigned arg, unsigned& out) { return GetInteger(arg, out); }
  int GetDWORD(unsigned arg, DWORD& out) {
    unsigned bits = 0;
    const int code = GetUINT(arg, bits);
    if (code == 0) out = bits;
    return code;
  }
  int GetDouble(unsigned arg, double& out);
  int GetComplex(unsigned arg, OneTCcomplex& out);
  int GetPointInt(unsigned arg, PointInt& out);
  int GetPointDouble(unsigned arg, PointDouble& out);
  int GetPoint3D(unsigned arg, Point3D& out);
  // The argument as text: a string object or literal as it is, a character as one character, any
  // other value by its own text form.
  int GetString(unsigned arg, CStringUTF8& out);

  // The argument as an object. NULL yields success with a null object; a plain value is status 3.
  int GetArgumentObject(int arg, tagMSOOBJVECT& out);
  // The object that a by-reference argument points at; flags other than 0 accept an argument passed
  // by value as well.
  int GetArgumentReferenceTarget(int arg, tagMSOOBJVECT& out, unsigned flags) {
    const Argument* const argument = Find(static_cast<unsigned>(arg));
    if (argument == nullptr || !argument->by_reference || IsUnresolved(argument->type_id)) {
      return ReadReferenceTarget(arg, out, flags);
    }
    SetObject(*argument, out);
    return 0;
  }
  // The bytes of an argument: the text of a string, the elements of a vector, the storage of a
  // scalar. bytes is the least that the member will touch (0:
  // whatever is there); an argument that has fewer is status 3. Pair with ReleaseBuffer.
  int GetBuffer(unsigned arg, void** out, int bytes);
  int ReleaseBuffer(unsigned arg);
  // How many bytes GetBuffer gave for the argument.
  unsigned GetBufferBytes(unsigned arg) const;

  // What of the object the member runs on.
  MSOINDICES& GetIndeces() { return indices_; }
  void SetIndeces(std::uint32_t kind, unsigned index, unsigned element, unsigned column);

  int SetReturnInt(int value) {
    result_kind_ = ResultKind::kInt;
    result_integer_ = value;
    return 0;
  }
  int SetReturnInt(unsigned value);
  int SetReturnInt(unsigned long value);
  int SetReturnInt(unsigned long long value);
  int SetReturnDouble(double value);
  // The frame copies the text; null is the empty text.
  int SetReturnString(const char* text);
  int SetReturnString(const CStringUTF8& text);
  int SetReturnComplex(const OneTCcomplex& value);
  // The result points into memory that the object owns.
  int SetReturnMemoryPtr(void* memory);
  // The object that receives an object result (a _VARIANT for an array result), or null.
  CScriptVelaObject* GetReturnObject(int index);

  // Write back to a by-reference argument; status 3 for one that is not by reference.
  int SetInt(unsigned arg, int value);
  int SetDouble(unsigned arg, double value);
  int SetString(unsigned arg, const char* text);
  int SetComplex(int arg, const OneTCcomplex& value);

  // Marshal count arguments from first on into the builder; each argument whose kind has no native
  // form (a container) is status 3. End releases what Begin locked.
  int BeginGetValuesForExternalCall(CTCExternalCallBuilder& builder, unsigned first, unsigned count,
                                    unsigned flags);
  int EndGetValuesForExternalCall(CTCExternalCallBuilder& builder, unsigned first, unsigned count,
                                  unsigned flags);

 protected:
  CTCall();
  CTCall(const CTCall&) = delete;
  CTCall& operator=(const CTCall&) = delete;

  enum class ResultKind : std::uint8_t {
    kNone,
    kInt,
    kUnsigned,
    kDouble,
    kText,
    kComplex,
    kMemory
  };

  static constexpr unsigned kInlineArguments = 8;
  Argument& AddArgument() {
    static_assert(std::is_trivially_destructible_v<Argument>);
    if (count_ >= kInlineArguments) return AddAnotherArgument();
    void* const place = inline_arguments_ + count_++ * sizeof(Argument);
    return *new (place) Argument;
  }
  const Argument* Find(unsigned arg) const {
    if (arg >= count_) return nullptr;
    if (arg >= kInlineArguments) return &more_arguments_[arg - kInlineArguments];
    const void* const place = inline_arguments_ + arg * sizeof(Argument);
    return std::launder(static_cast<const Argument*>(place));
  }
  Argument* Find(unsigned arg) {
    return const_cast<Argument*>(static_cast<const CTCall*>(this)->Find(arg));
  }
  void Clear();

  unsigned count_ = 0;
  ResultKind result_kind_ = ResultKind::kNone;
  std::int64_t result_integer_ = 0;
  OneTCcomplex result_number_;
  void* result_memory_ = nullptr;
  CScriptVelaObject* return_object_ = nullptr;
  MSOINDICES indices_;
  CStringUTF8 result_text_;

 private:
  Argument& AddAnotherArgument();
  void* LendText(const char* text, unsigned size);

  // A plain int as it is: an unsigned type takes its bits, so that -1 means "all flags".
  template <class T>
  int GetInteger(unsigned arg, T& out) {
    const Argument* const argument = Find(arg);
    if (argument == nullptr || argument->kind != ArgumentKind::kInt) return ReadInteger(arg, out);
    out = static_cast<T>(argument->integer);
    return 0;
  }
  static constexpr bool IsUnresolved(unsigned type_id) {
    return type_id == kTypeReference || type_id == kTypePointer;
  }
  static void SetObject(const Argument& argument, tagMSOOBJVECT& out) {
    out.object = argument.object;
    out.type_word = argument.type_id;
    out.indices = argument.indices;
    out.flags = argument.by_reference ? tagMSOOBJVECT::kByReference : 0;
    out.plain = {};
    out.lent_buffer = nullptr;
  }
  int ReadReferenceTarget(int arg, tagMSOOBJVECT& out, unsigned flags);
  int ReadInteger(unsigned arg, int& out);
  int ReadInteger(unsigned arg, unsigned& out);

  // Raw storage, so that a frame costs only the arguments it has.
  alignas(Argument) std::byte inline_arguments_[kInlineArguments * sizeof(Argument)];
  std::vector<Argument> more_arguments_;  // from argument kInlineArguments on
  std::vector<std::unique_ptr<char[]>> text_copies_;
};
