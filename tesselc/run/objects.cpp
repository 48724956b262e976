#include "tesselc/run/objects.h"

#include <cmath>
#include <limits>

#include "frame/interface/missing_value.h"
#include "frame/interface/script_object.h"
#include "tesselc/run/bindings.h"
#include "tesselc/run/member_call.h"
#include "tesselc/run/number_conversion.h"
#include "tesselc/run/operators.h"
#include "tesselc/run/plain_operand.h"
#include "tesselc/run/run.h"
#include "tesselc/run/status_text.h"

namespace tesselc {

void CheckStatus(int status, const char* what, const SourceRange& where) {
  if (status == status::kOk) return;
  throw ScriptError(where, status,
                    std::string("cannot ") + what + ": status " + std::to_string(status) + " (" +
                        StatusText(status) + ")");
}

namespace {

using vela::host::ObjectRef;
using ObjectPtr = ValuePtr<ObjectValue>;

ObjectRef CopyOf(const ObjectValue& value, const ObjectType& type, Run& run,
                 const SourceRange& where) {
  if (value.at.kind == 0) {
    ObjectRef copy(value.object->CreateCopy());
    if (copy) return copy;
  }
  ObjectRef copy = run.Create(type.type_word, 0, type.name, where);
  CheckStatus(copy->Operate2(nullptr, operation::kAssign, value.AsOperand(), 0), "copy", where);
  return copy;
}

}  // namespace

const char* NameOfOperation(unsigned op) {
  switch (op) {
    case operation::kAssign:
      return "assign";
    case operation::kAdd:
      return "add";
    case operation::kSubtract:
      return "subtract";
    case operation::kMultiply:
      return "multiply";
    case operation::kDivide:
      return "divide";
    default:
      return "raise to a power";
  }
}

namespace {

template <class P>
TypeName PointName() {
  if (std::is_same_v<P, PointInt>) return TypeName::kPoint;
  return std::is_same_v<P, PointDouble> ? TypeName::kFpoint : TypeName::kFpoint3d;
}

template <class T>
void Operate(Frame& frame, const ObjectValue& target, unsigned op, const T& source,
             const SourceRange& where) {
  int result;
  if constexpr (std::is_same_v<T, ObjectValue>) {
    result = target.object->Operate2(target.At(), op, source.AsOperand(), 0);
  } else if constexpr (std::is_arithmetic_v<T> || std::is_same_v<T, OneTCcomplex>) {
    result = target.object->Operate2(target.At(), op | operation::kPlainOperand,
                                     PlainOperand(source), 0);
  } else {
    Passed passed;
    T value = source;
    const ObjectValue point(passed.BindProxy(*frame.run, PointName<T>(), &value, where));
    result = target.object->Operate2(target.At(), op, point.AsOperand(), 0);
  }
  CheckStatus(result, NameOfOperation(op), where);
}

// The types that can be the other operand of an operation on an object.
template <class F>
NodePtr WithOperand(Carrier carrier, F&& f) {
  if (carrier == kObjectCarrier) return f(std::type_identity<ObjectValue>());
  return WithScalar(carrier, std::forward<F>(f));
}

class LoadObject final : public Expr<LoadObject, ObjectValue> {
 public:
  LoadObject(ObjectPlace place, std::string name, SourceRange where)
      : place_(place), name_(std::move(name)), where_(where) {}
  ObjectValue Eval(Frame& frame) override {
    CScriptVelaObject* object = place_.Slot(frame);
    if (!object) {
      throw ScriptError(where_, status::kUnresolved,
                        "'" + name_ + "' is used before its declaration has run");
    }
    return ObjectValue(object);
  }

 private:
  ObjectPlace place_;
  std::string name_;
  SourceRange where_;
};

class LoadReference final : public Expr<LoadReference, ObjectValue> {
 public:
  explicit LoadReference(std::uint32_t offset) : offset_(offset) {}
  ObjectValue Eval(Frame& frame) override {
    const auto& reference = frame.At<ObjectReference>(offset_);
    return ObjectValue(reference.object, reference.at);
  }

 private:
  std::uint32_t offset_;
};

class HostFunctions final : public Expr<HostFunctions, ObjectValue> {
 public:
  ObjectValue Eval(Frame& frame) override { return ObjectValue(frame.run->HostFunctions()); }
};

class DeclareObject final : public Node {
 public:
  DeclareObject(ObjectPlace place, ObjectType type, ValuePtr<std::int64_t> count, SourceRange where)
      : place_(place), type_(std::move(type)), count_(std::move(count)), where_(where) {}
  Flow Exec(Frame& frame) override {
    const unsigned count = Count(frame);
    ObjectRef object = frame.run->Create(type_.type_word, count, type_.name, where_);
    if (static_cast<unsigned>(object->GetArraySize()) < count) {
      throw ScriptError(where_, status::kUnsupported, "there are no arrays of " + type_.name);
    }
    object->AddRef();
    CScriptVelaObject* old = std::exchange(place_.Slot(frame), object.Get());
    if (old) old->Release();
    return Flow::kNext;
  }

 private:
  unsigned Count(Frame& frame) {
    if (!count_) return 0;
    const std::int64_t count = count_->Eval(frame);
    if (count < 1 || count > std::numeric_limits<std::int32_t>::max()) {
      throw ScriptError(where_, status::kBadValue,
                        "an array cannot have " + std::to_string(count) + " elements");
    }
    return static_cast<unsigned>(count);
  }

  ObjectPlace place_;
  ObjectType type_;
  ValuePtr<std::int64_t> count_;
  SourceRange where_;
};

class BindReference final : public Node {
 public:
  BindReference(std::uint32_t offset, ObjectPtr object)
      : offset_(offset), object_(std::move(object)) {}
  Flow Exec(Frame& frame) override {
    const ObjectValue value = object_->Eval(frame);
    frame.At<ObjectReference>(offset_) = {value.object, value.at};
    return Flow::kNext;
  }

 private:
  std::uint32_t offset_;
  ObjectPtr object_;
};

class ArrayItem final : public Expr<ArrayItem, ObjectValue> {
 public:
  ArrayItem(ObjectPtr object, ValuePtr<std::int64_t> index, SourceRange where)
      : object_(std::move(object)), index_(std::move(index)), where_(where) {}
  ObjectValue Eval(Frame& frame) override {
    ObjectValue value = object_->Eval(frame);
    const std::int64_t index = index_->Eval(frame);
    const int count = value.object->GetArraySize();
    if (index < 0 || index >= count) ThrowIndexError(where_, index, count);
    value.at = MSOINDICES::Object(static_cast<std::int32_t>(index));
    return value;
  }

 private:
  ObjectPtr object_;
  ValuePtr<std::int64_t> index_;
  SourceRange where_;
};

class Keep final : public Expr<Keep, ObjectValue> {
 public:
  explicit Keep(ObjectPtr object) : object_(std::move(object)) {}
  ObjectValue Eval(Frame& frame) override {
    ObjectValue value = object_->Eval(frame);
    value.keep = ObjectRef(value.object);
    return value;
  }

 private:
  ObjectPtr object_;
};

class Copy final : public Expr<Copy, ObjectValue> {
 public:
  Copy(ObjectPtr object, ObjectType type, SourceRange where)
      : object_(std::move(object)), type_(std::move(type)), where_(where) {}
  ObjectValue Eval(Frame& frame) override {
    ObjectValue value = object_->Eval(frame);
    // A temporary is nobody else's already.
    if (value.keep && value.at.kind == 0) return value;
    return ObjectValue(CopyOf(value, type_, *frame.run, where_));
  }

 private:
  ObjectPtr object_;
  ObjectType type_;
  SourceRange where_;
};

template <class T>
class Temporary final : public Expr<Temporary<T>, ObjectValue> {
 public:
  Temporary(ObjectType type, ValuePtr<T> value, SourceRange where)
      : type_(std::move(type)), value_(std::move(value)), where_(where) {}
  ObjectValue Eval(Frame& frame) override {
    const T value = value_->Eval(frame);
    ObjectValue result(frame.run->Create(type_.type_word, 0, type_.name, where_));
    if constexpr (std::is_same_v<T, CStringUTF8>) {
      CheckStatus(result.object->SetStringValue(nullptr, value), "assign", where_);
    } else {
      Operate(frame, result, operation::kAssign, value, where_);
    }
    return result;
  }

 private:
  ObjectType type_;
  ValuePtr<T> value_;
  SourceRange where_;
};

template <class T>
class OperateInPlace final : public Expr<OperateInPlace<T>, ObjectValue> {
 public:
  OperateInPlace(unsigned op, ObjectPtr target, ValuePtr<T> source, SourceRange where)
      : op_(op), target_(std::move(target)), source_(std::move(source)), where_(where) {}
  ObjectValue Eval(Frame& frame) override {
    const T source = source_->Eval(frame);
    ObjectValue target = target_->Eval(frame);
    Operate(frame, target, op_, source, where_);
    return target;
  }

 private:
  unsigned op_;
  ObjectPtr target_;
  ValuePtr<T> source_;
  SourceRange where_;
};

template <class T>
class OperateOnCopy final : public Expr<OperateOnCopy<T>, ObjectValue> {
 public:
  OperateOnCopy(unsigned op, ObjectPtr left, ValuePtr<T> right, SourceRange where)
      : op_(op), left_(std::move(left)), right_(std::move(right)), where_(where) {}
  ObjectValue Eval(Frame& frame) override {
    ObjectValue result = left_->Eval(frame);
    Operate(frame, result, op_, right_->Eval(frame), where_);
    return result;
  }

 private:
  unsigned op_;
  ObjectPtr left_;  // a Copy
  ValuePtr<T> right_;
  SourceRange where_;
};

// A copy of an operand, of whatever type it is.
ObjectValue CopyFor(const ObjectValue& value, Frame& frame, const SourceRange& where) {
  const ObjectType type = {value.object->GetTypeID(), "the operand"};
  return ObjectValue(CopyOf(value, type, *frame.run, where));
}

bool IsEmpty(const ObjectValue& value) {
  int upper = 0;
  return value.object->GetUpperBound(value.At(), upper) == status::kOk && upper < 0;
}

// x = x / divisor element by element, where the operator between matrices is another.
void DivideByElement(Frame& frame, const ObjectValue& x, const ObjectValue& divisor,
                     const SourceRange& where) {
  CallFrameLease call(*frame.run);
  call->GetIndeces() = x.at;
  call->AddObject(divisor.object, divisor.at);
  CallMethod(*x.object, "DotDivide", *call, where);
}

template <class T>
class OperateOnFilled final : public Expr<OperateOnFilled<T>, ObjectValue> {
 public:
  OperateOnFilled(unsigned op, ValuePtr<T> left, ObjectPtr right, SourceRange where)
      : op_(op), left_(std::move(left)), right_(std::move(right)), where_(where) {}
  ObjectValue Eval(Frame& frame) override {
    const T left = left_->Eval(frame);
    const ObjectValue right = right_->Eval(frame);
    ObjectValue result = CopyFor(right, frame, where_);
    if (IsMirrored(*result.object, left)) {
      Operate(frame, result, op_, left, where_);
      return result;
    }
    // An operation with a scalar gives an empty container one element, a zero to start from.
    if (IsEmpty(right)) Operate(frame, result, operation::kAdd, 0, where_);
    const ObjectValue operand = IsEmpty(right) ? CopyFor(result, frame, where_) : right;
    Operate(frame, result, operation::kAssign, left, where_);
    if (op_ == operation::kDivide && (result.object->GetTypeID() & kFlagAnyMatrix) != 0) {
      DivideByElement(frame, result, operand, where_);
    } else {
      Operate(frame, result, op_, operand, where_);
    }
    return result;
  }

 private:
  // Whether the order of the operands makes no difference: it makes none to + and *, and none to
  // floats where the scalar is missing, which a float filled with it forgets.
  bool IsMirrored(CScriptVelaObject& object, const T& scalar) const {
    if (op_ == operation::kAdd || op_ == operation::kMultiply) return true;
    if ((object.GetInternalDataTypeID() & kTypeIdMask) != kTypeFloat) return false;
    if constexpr (!std::is_arithmetic_v<T> && !std::is_same_v<T, OneTCcomplex>) {
      return false;
    } else {
      const OneTCcomplex number = ConvertScalar<OneTCcomplex>(scalar);
      return AnyMissing(number, number) || std::isnan(number.m_re);
    }
  }

  unsigned op_;
  ValuePtr<T> left_;
  ObjectPtr right_;
  SourceRange where_;
};

class NegateObject final : public Expr<NegateObject, ObjectValue> {
 public:
  NegateObject(ObjectPtr object, SourceRange where) : object_(std::move(object)), where_(where) {}
  ObjectValue Eval(Frame& frame) override {
    const ObjectValue value = object_->Eval(frame);
    ObjectValue result = CopyFor(value, frame, where_);
    if (IsEmpty(value)) return result;
    if (IsPoint(ScalarOfTypeId(value.object->GetInternalDataTypeID() & kTypeIdMask))) {
      Point3D zero;
      zero[0] = zero[1] = zero[2] = -0.0;
      Operate(frame, result, operation::kAssign, zero, where_);
    } else {
      Operate(frame, result, operation::kAssign, OneTCcomplex(-0.0, -0.0), where_);
    }
    Operate(frame, result, operation::kSubtract, value, where_);
    return result;
  }

 private:
  ObjectPtr object_;
  SourceRange where_;
};

class CompareObjects final : public Expr<CompareObjects, int> {
 public:
  CompareObjects(unsigned op, ObjectPtr left, ObjectPtr right, SourceRange where)
      : op_(op), left_(std::move(left)), right_(std::move(right)), where_(where) {}
  int Eval(Frame& frame) override {
    const ObjectValue left = left_->Eval(frame);
    const ObjectValue right = right_->Eval(frame);
    unsigned flags = 0;
    CheckStatus(left.object->CompareVals(left.At(), op_, right.AsOperand(), &flags), "compare",
                where_);
    return (flags & operation::kCompareTrue) != 0;
  }

 private:
  unsigned op_;
  ObjectPtr left_, right_;
  SourceRange where_;
};

class TextOf final : public Expr<TextOf, CStringUTF8> {
 public:
  TextOf(ObjectPtr object, SourceRange where) : object_(std::move(object)), where_(where) {}
  CStringUTF8 Eval(Frame& frame) override {
    const ObjectValue value = object_->Eval(frame);
    CStringUTF8 text;
    CheckStatus(value.object->GetString(value.At(), text), "get the text", where_);
    return text;
  }

 private:
  ObjectPtr object_;
  SourceRange where_;
};

// The object gives its text away meanwhile, so that appending to it copies nothing.
void AppendText(const ObjectValue& target, std::string_view more, const SourceRange& where) {
  const auto set = [&](const CStringUTF8& text) {
    CheckStatus(target.object->SetStringValue(target.At(), text), "set the text", where);
  };
  CStringUTF8 text;
  CheckStatus(target.object->GetString(target.At(), text), "get the text", where);
  set(CStringUTF8());
  try {
    text += more;
  } catch (...) {
    set(text);
    throw;
  }
  set(text);
}

template <bool kAppend>
class SetText final : public Expr<SetText<kAppend>, ObjectValue> {
 public:
  SetText(ObjectPtr object, ValuePtr<CStringUTF8> text, SourceRange where)
      : object_(std::move(object)), text_(std::move(text)), where_(where) {}
  ObjectValue Eval(Frame& frame) override {
    const CStringUTF8 text = text_->Eval(frame);
    ObjectValue value = object_->Eval(frame);
    if constexpr (kAppend) {
      AppendText(value, text.View(), where_);
    } else {
      CheckStatus(value.object->SetStringValue(value.At(), text), "set the text", where_);
    }
    return value;
  }

 private:
  ObjectPtr object_;
  ValuePtr<CStringUTF8> text_;
  SourceRange where_;
};

template <class T>
class NumberOf final : public Expr<NumberOf<T>, T> {
 public:
  NumberOf(ObjectPtr object, SourceRange where) : object_(std::move(object)), where_(where) {}
  T Eval(Frame& frame) override {
    const ObjectValue value = object_->Eval(frame);
    T number{};
    CheckStatus(value.object->GetNumericValue(value.At(), number), "get a number", where_);
    return number;
  }

 private:
  ObjectPtr object_;
  SourceRange where_;
};

class TruthOf final : public Expr<TruthOf, int> {
 public:
  TruthOf(ObjectPtr object, SourceRange where) : number_(std::move(object), where) {}
  int Eval(Frame& frame) override {
    const double number = number_.Eval(frame);
    return number != 0 && number != kMissingValue;
  }

 private:
  NumberOf<double> number_;
};

template <template <class> class Operation>
NodePtr OperationOf(unsigned op, NodePtr object, Carrier carrier, NodePtr operand,
                    SourceRange where) {
  return WithOperand(carrier, [&](auto t) {
    using T = typename decltype(t)::type;
    return NodePtr(
        new Operation<T>(op, As<ObjectValue>(std::move(object)), As<T>(std::move(operand)), where));
  });
}

}  // namespace

NodePtr MakeLoadObject(const ObjectPlace& place, std::string name, SourceRange where) {
  if (place.mode == ObjectPlace::Mode::kReference) {
    return std::make_unique<LoadReference>(place.offset);
  }
  return std::make_unique<LoadObject>(place, std::move(name), where);
}

NodePtr MakeHostFunctions() { return std::make_unique<HostFunctions>(); }

NodePtr MakeDeclareObject(const ObjectPlace& place, ObjectType type, NodePtr count,
                          SourceRange where) {
  auto number = count ? As<std::int64_t>(std::move(count)) : nullptr;
  return std::make_unique<DeclareObject>(place, std::move(type), std::move(number), where);
}

NodePtr MakeBindReference(std::uint32_t offset, NodePtr object) {
  return std::make_unique<BindReference>(offset, As<ObjectValue>(std::move(object)));
}

NodePtr MakeArrayItem(NodePtr object, NodePtr index, SourceRange where) {
  return std::make_unique<ArrayItem>(As<ObjectValue>(std::move(object)),
                                     As<std::int64_t>(std::move(index)), where);
}

NodePtr MakeCopy(NodePtr object, ObjectType type, SourceRange where) {
  return std::make_unique<Copy>(As<ObjectValue>(std::move(object)), std::move(type), where);
}

NodePtr MakeTemporary(ObjectType type, Carrier carrier, NodePtr value, SourceRange where) {
  if (carrier == kTextCarrier) {
    return std::make_unique<Temporary<CStringUTF8>>(std::move(type),
                                                    As<CStringUTF8>(std::move(value)), where);
  }
  return WithOperand(carrier, [&](auto t) -> NodePtr {
    using T = typename decltype(t)::type;
    return std::make_unique<Temporary<T>>(std::move(type), As<T>(std::move(value)), where);
  });
}

NodePtr MakeOperate(unsigned op, NodePtr target, Carrier carrier, NodePtr source,
                    SourceRange where) {
  return OperationOf<OperateInPlace>(op, std::move(target), carrier, std::move(source), where);
}

NodePtr MakeOperateOnCopy(unsigned op, NodePtr left, Carrier carrier, NodePtr right,
                          SourceRange where) {
  return OperationOf<OperateOnCopy>(op, std::move(left), carrier, std::move(right), where);
}

NodePtr MakeOperateOnFilled(unsigned op, Carrier scalar, NodePtr left, NodePtr right,
                            SourceRange where) {
  return WithOperand(scalar, [&](auto t) -> NodePtr {
    using T = typename decltype(t)::type;
    return std::make_unique<OperateOnFilled<T>>(op, As<T>(std::move(left)),
                                                As<ObjectValue>(std::move(right)), where);
  });
}

NodePtr MakeNegateObject(NodePtr object, SourceRange where) {
  return std::make_unique<NegateObject>(As<ObjectValue>(std::move(object)), where);
}

NodePtr MakeCompareObjects(unsigned op, NodePtr left, NodePtr right, SourceRange where) {
  return std::make_unique<CompareObjects>(op, As<ObjectValue>(std::move(left)),
                                          As<ObjectValue>(std::move(right)), where);
}

NodePtr MakeTextOf(NodePtr object, SourceRange where) {
  return std::make_unique<TextOf>(As<ObjectValue>(std::move(object)), where);
}

NodePtr MakeSetText(NodePtr object, NodePtr text, SourceRange where) {
  return std::make_unique<SetText<false>>(As<ObjectValue>(std::move(object)),
                                          As<CStringUTF8>(std::move(text)), where);
}

NodePtr MakeAppendText(NodePtr object, NodePtr text, SourceRange where) {
  return std::make_unique<SetText<true>>(As<ObjectValue>(std::move(object)),
                                         As<CStringUTF8>(std::move(text)), where);
}

NodePtr MakeKeep(NodePtr object) {
  return std::make_unique<Keep>(As<ObjectValue>(std::move(object)));
}

NodePtr MakeTruthOf(NodePtr object, SourceRange where) {
  return std::make_unique<TruthOf>(As<ObjectValue>(std::move(object)), where);
}

NodePtr MakeNumberOf(TypeName scalar, NodePtr object, SourceRange where) {
  const auto make = [&](auto t) -> NodePtr {
    return std::make_unique<NumberOf<typename decltype(t)::type>>(
        As<ObjectValue>(std::move(object)), where);
  };
  if (scalar == TypeName::kComplex) return make(std::type_identity<OneTCcomplex>());
  return WithNumber(scalar, make);
}

}  // namespace tesselc
