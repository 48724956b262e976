#include "tesselc/run/elements.h"

#include <cmath>
#include <cstring>
#include <limits>

#include "frame/interface/operations.h"
#include "frame/interface/script_object.h"
#include "tesselc/run/arithmetic.h"
#include "tesselc/run/bindings.h"
#include "tesselc/run/objects.h"
#include "tesselc/run/operators.h"
#include "tesselc/run/plain_operand.h"
#include "tesselc/run/script_error.h"

namespace tesselc {
namespace {

using ObjectPtr = ValuePtr<ObjectValue>;
using IndexPtr = ValuePtr<std::int64_t>;

constexpr std::int64_t kMaxIndex = std::numeric_limits<std::int32_t>::max();

bool IsIndex(std::int64_t index) { return index >= 0 && index <= kMaxIndex; }
void CheckIndex(std::int64_t index, std::int64_t size, const SourceRange& where) {
  if (index < 0 || index >= size) ThrowIndexError(where, index, size);
}

CStringUTF8 ReadText(CScriptVelaObject& object, const MSOINDICES* at, const SourceRange& where) {
  CStringUTF8 text;
  CheckStatus(object.GetString(at, text), "get the text", where);
  return text;
}

// --- How indices pick: the indices themselves, the record that addresses the element, whether it
// exists, and its memory: null where there is none to see.

// An element of the addressed row, or of the whole object.
class RowIndex {
 public:
  using Index = std::int64_t;

  RowIndex(IndexPtr index, SourceRange where) : index_(std::move(index)), where_(where) {}
  Index Evaluate(Frame& frame) { return index_->Eval(frame); }
  MSOINDICES Record(const ObjectValue& row, Index index) const {
    return row.at.WithElement(static_cast<std::int32_t>(index));
  }
  void Check(const ObjectValue& row, Index index) const {
    int upper = -1;
    CheckStatus(row.object->GetUpperBound(row.At(), upper), "get the size", where_);
    CheckIndex(index, std::int64_t{upper} + 1, where_);
  }
  void* Address(const ObjectValue& row, Index index) const {
    if (!IsIndex(index)) return nullptr;
    return row.object->GetArrayElement(row.At(), static_cast<int>(index));
  }
  static void* AddressOf(CScriptVelaObject& object, const MSOINDICES& at) {
    const MSOINDICES row = {at.ObjectKind(), at.index, 0, 0};
    return object.GetArrayElement(&row, at.element);
  }
  const SourceRange& where() const { return where_; }

 private:
  IndexPtr index_;
  SourceRange where_;
};

// A scalar of an array of them.
class ArrayIndex : public RowIndex {
 public:
  using RowIndex::RowIndex;
  MSOINDICES Record(const ObjectValue&, Index index) const {
    return MSOINDICES::Object(static_cast<std::int32_t>(index));
  }
  void Check(const ObjectValue& array, Index index) const {
    CheckIndex(index, array.object->GetArraySize(), where());
  }
  static void* AddressOf(CScriptVelaObject& object, const MSOINDICES& at) {
    return object.GetArrayElement(nullptr, at.index);
  }
};

// A byte of a text.
class CharIndex : public RowIndex {
 public:
  using RowIndex::RowIndex;
  void Check(const ObjectValue& text, Index index) const {
    CheckIndex(index, ReadText(*text.object, text.At(), where()).GetLength(), where());
  }
};

// A cell of a matrix. Its row is addressed as an element of the layer, and the cell as one of the
// row.
class CellIndex {
 public:
  struct Index {
    std::int64_t row, column;
  };

  CellIndex(IndexPtr row, IndexPtr column, SourceRange where)
      : row_(std::move(row)), column_(std::move(column)), where_(where) {}
  Index Evaluate(Frame& frame) {
    const std::int64_t row = row_->Eval(frame);
    return {row, column_->Eval(frame)};
  }
  MSOINDICES Record(const ObjectValue& layer, const Index& cell) const {
    return layer.at.WithCell(static_cast<std::int32_t>(cell.row),
                             static_cast<std::int32_t>(cell.column));
  }
  void Check(const ObjectValue& layer, const Index& cell) const {
    int rows = 0, columns = 0;
    layer.object->GetMatrixDimensions(&rows, &columns, layer.At());
    CheckIndex(cell.row, rows, where_);
    CheckIndex(cell.column, columns, where_);
  }
  void* Address(const ObjectValue& layer, const Index& cell) const {
    if (!IsIndex(cell.row) || !IsIndex(cell.column)) return nullptr;
    const MSOINDICES row = layer.at.WithElement(static_cast<std::int32_t>(cell.row));
    return layer.object->GetArrayElement(&row, static_cast<int>(cell.column));
  }
  static void* AddressOf(CScriptVelaObject& object, const MSOINDICES& at) {
    const MSOINDICES row = at.WithElement(at.element);
    return object.GetArrayElement(&row, at.column);
  }
  const SourceRange& where() const { return where_; }

 private:
  IndexPtr row_, column_;
  SourceRange where_;
};

// --- What an element holds, and how the object gives it away where its memory is not to be seen.

template <class T>
struct Scalar {
  using Value = T;

  static T Load(CScriptVelaObject& object, const MSOINDICES& at, const SourceRange& where) {
    T value{};
    if constexpr (std::is_arithmetic_v<T> || std::is_same_v<T, OneTCcomplex>) {
      CheckStatus(object.GetNumericValue(&at, value), "read the element", where);
    } else {
      CheckStatus(object.GetPointValue(&at, value), "read the element", where);
    }
    return value;
  }
  static void Store(CScriptVelaObject& object, const MSOINDICES& at, const T& value,
                    const SourceRange& where) {
    CheckStatus(object.SetNumericValue(&at, value), "set the element", where);
  }
};

struct Text {
  using Value = CStringUTF8;

  static CStringUTF8 Load(CScriptVelaObject& object, const MSOINDICES& at,
                          const SourceRange& where) {
    return ReadText(object, &at, where);
  }
  static void Store(CScriptVelaObject& object, const MSOINDICES& at, const CStringUTF8& value,
                    const SourceRange& where) {
    CheckStatus(object.SetStringValue(&at, value), "set the element", where);
  }
};

struct CharOfText {
  using Value = char;

  static char Load(CScriptVelaObject& object, const MSOINDICES& at, const SourceRange& where) {
    const MSOINDICES whole = Whole(at);
    return ReadText(object, &whole, where).GetAt(at.element);
  }
  static void Store(CScriptVelaObject& object, const MSOINDICES& at, char value,
                    const SourceRange& where) {
    const MSOINDICES whole = Whole(at);
    CStringUTF8 text = ReadText(object, &whole, where);
    text.SetAt(at.element, value);
    CheckStatus(object.SetStringValue(&whole, text), "set a character", where);
  }

 private:
  static MSOINDICES Whole(const MSOINDICES& at) { return {at.ObjectKind(), at.index, 0, 0}; }
};

// --- The elements

template <class Pick, class Content>
class Element final : public ElementNode<typename Content::Value> {
 public:
  using T = typename Content::Value;

  // in_memory: what the object shows of its memory are values of T.
  Element(ObjectPtr object, Pick pick, bool in_memory)
      : object_(std::move(object)), pick_(std::move(pick)), in_memory_(in_memory) {}

  Flow Exec(Frame& frame) final {
    Find(frame);
    return Flow::kNext;
  }
  T Eval(Frame& frame) final {
    const ObjectValue container = object_->Eval(frame);
    const auto index = pick_.Evaluate(frame);
    if (in_memory_) {
      if (void* address = pick_.Address(container, index)) return *static_cast<T*>(address);
    }
    pick_.Check(container, index);
    return Content::Load(*container.object, pick_.Record(container, index), pick_.where());
  }
  ElementSpot Find(Frame& frame) final {
    ObjectValue container = object_->Eval(frame);
    const auto index = pick_.Evaluate(frame);
    void* address = in_memory_ ? pick_.Address(container, index) : nullptr;
    if (address == nullptr) pick_.Check(container, index);
    const MSOINDICES at = pick_.Record(container, index);
    return {address, container.object, at, std::move(container.keep)};
  }
  T Load(const ElementSpot& spot) final {
    return spot.address ? *static_cast<T*>(spot.address)
                        : Content::Load(*spot.object, spot.at, pick_.where());
  }
  void Store(const ElementSpot& spot, const T& value) final {
    if (spot.address) {
      *static_cast<T*>(spot.address) = value;
    } else {
      Content::Store(*spot.object, spot.at, value, pick_.where());
    }
  }
  std::unique_ptr<ElementReference> MakeReference() final {
    return std::make_unique<Reference>(*this);
  }

 private:
  class Reference final : public ElementReference {
   public:
    explicit Reference(Element& element) : element_(element) {}
    void Bind(Frame& frame) override {
      spot_ = element_.Find(frame);
      if (!spot_.keep) spot_.keep = vela::host::ObjectRef(spot_.object);
    }
    void Load(void* value) override {
      Refresh();
      *static_cast<T*>(value) = element_.Load(spot_);
    }
    void Store(const void* value) override {
      Refresh();
      element_.Store(spot_, *static_cast<const T*>(value));
    }

   private:
    // Storage may have moved; null when the element is gone, which the object then answers.
    void Refresh() {
      spot_.address = element_.in_memory_ ? Pick::AddressOf(*spot_.object, spot_.at) : nullptr;
    }

    Element& element_;
    ElementSpot spot_;
  };

  ObjectPtr object_;
  Pick pick_;
  bool in_memory_;
};

template <class T>
class StoreElement final : public Expr<StoreElement<T>, T> {
 public:
  StoreElement(std::unique_ptr<ElementNode<T>> element, ValuePtr<T> value)
      : element_(std::move(element)), value_(std::move(value)) {}
  T Eval(Frame& frame) override {
    T value = value_->Eval(frame);
    element_->Store(element_->Find(frame), value);
    return value;
  }

 private:
  std::unique_ptr<ElementNode<T>> element_;
  ValuePtr<T> value_;
};

template <class T>
class UpdateElement final : public Expr<UpdateElement<T>, T> {
 public:
  UpdateElement(std::unique_ptr<ElementNode<T>> element, std::uint32_t scratch, NodePtr first,
                ValuePtr<T> combined, bool give_old)
      : element_(std::move(element)),
        scratch_(scratch),
        first_(std::move(first)),
        combined_(std::move(combined)),
        give_old_(give_old) {}
  T Eval(Frame& frame) override {
    if (first_) first_->Exec(frame);
    const ElementSpot spot = element_->Find(frame);
    const T old = element_->Load(spot);
    frame.At<T>(scratch_) = old;
    const T value = combined_->Eval(frame);
    element_->Store(spot, value);
    return give_old_ ? old : value;
  }

 private:
  std::unique_ptr<ElementNode<T>> element_;
  std::uint32_t scratch_;
  NodePtr first_;
  ValuePtr<T> combined_;
  bool give_old_;
};

// The operand of an operation, whatever its type.
class OperandNode {
 public:
  virtual ~OperandNode() = default;
  // `passed` keeps what the operand refers to.
  virtual tagMSOOBJVECT Evaluate(Frame& frame, Passed& passed) = 0;
};

template <class U>
class ScalarOperand final : public OperandNode {
 public:
  ScalarOperand(TypeName type, ValuePtr<U> value, SourceRange where)
      : type_(type), value_(std::move(value)), where_(where) {}
  tagMSOOBJVECT Evaluate(Frame& frame, Passed& passed) override {
    const U value = value_->Eval(frame);
    if constexpr (std::is_arithmetic_v<U> || std::is_same_v<U, OneTCcomplex>) {
      return PlainOperand(value);
    } else {
      std::memcpy(passed.scalar, &value, sizeof(U));
      CScriptVelaObject* object = passed.BindProxy(*frame.run, type_, passed.scalar, where_);
      return {object, object->GetTypeID()};
    }
  }

 private:
  TypeName type_;
  ValuePtr<U> value_;
  SourceRange where_;
};

void Operate(const ElementSpot& spot, unsigned op, const tagMSOOBJVECT& operand,
             const SourceRange& where) {
  const unsigned plain = operand.object == nullptr ? operation::kPlainOperand : 0;
  CheckStatus(spot.object->Operate2(&spot.at, op | plain, operand, 0), NameOfOperation(op), where);
}

template <class T>
class OperateElement final : public Expr<OperateElement<T>, T> {
 public:
  OperateElement(std::unique_ptr<ElementNode<T>> element, unsigned op,
                 std::unique_ptr<OperandNode> operand, bool give_old, SourceRange where)
      : element_(std::move(element)),
        op_(op),
        operand_(std::move(operand)),
        give_old_(give_old),
        where_(where) {}
  T Eval(Frame& frame) override {
    Passed passed;
    const tagMSOOBJVECT operand = operand_->Evaluate(frame, passed);
    const ElementSpot spot = element_->Find(frame);
    const T old = give_old_ ? element_->Load(spot) : T{};
    Operate(spot, op_, operand, where_);
    return give_old_ ? old : element_->Load(spot);
  }

 private:
  std::unique_ptr<ElementNode<T>> element_;
  unsigned op_;
  std::unique_ptr<OperandNode> operand_;
  bool give_old_;
  SourceRange where_;
};

// The operand type for which an element in memory is worth a look of its own.
template <class T>
using UsualOperand = std::conditional_t<std::is_floating_point_v<T>, double, int>;

// x op y, where it is sure that the object would store just that. False leaves it to the object:
// what is missing or not finite, divisions by zero, operands that the element's type cannot hold.
template <class T>
bool ComputeUsual(unsigned op, T x, UsualOperand<T> y, T& result) {
  const T operand = static_cast<T>(y);
  if constexpr (std::is_integral_v<T>) {
    const bool fits = static_cast<std::int64_t>(operand) == y && (std::is_signed_v<T> || y >= 0);
    if (!fits) return false;
    if (op == operation::kDivide) {
      if (y == 0 || y == -1) return false;
      result = static_cast<T>(x / operand);
      return true;
    }
  } else if (op == operation::kDivide) {
    result = x / operand;
  }
  if (op == operation::kAdd) {
    result = AddOp::Apply<T>(x, operand);
  } else if (op == operation::kSubtract) {
    result = SubtractOp::Apply<T>(x, operand);
  } else if (op == operation::kMultiply) {
    result = MultiplyOp::Apply<T>(x, operand);
  } else if (op != operation::kDivide) {
    return false;
  }
  if constexpr (std::is_floating_point_v<T>) {
    // Far from the end of the numbers, where the object may look closer.
    constexpr T kLimit = std::is_same_v<T, float> ? T(1e37) : T(1e300);
    return std::fabs(result) < kLimit && !IsMissing(y) && !AnyMissing(x, x);
  } else {
    return true;
  }
}

template <class T>
class OperateUsual final : public Expr<OperateUsual<T>, T> {
 public:
  using U = UsualOperand<T>;

  OperateUsual(std::unique_ptr<ElementNode<T>> element, unsigned op, ValuePtr<U> operand,
               bool give_old, SourceRange where)
      : element_(std::move(element)),
        op_(op),
        operand_(std::move(operand)),
        give_old_(give_old),
        where_(where) {}
  T Eval(Frame& frame) override {
    const U operand = operand_->Eval(frame);
    const ElementSpot spot = element_->Find(frame);
    if (T* memory = static_cast<T*>(spot.address)) {
      const T old = *memory;
      if (T result{}; ComputeUsual(op_, old, operand, result)) {
        *memory = result;
        return give_old_ ? old : result;
      }
    }
    const T old = give_old_ ? element_->Load(spot) : T{};
    Operate(spot, op_, PlainOperand(operand), where_);
    return give_old_ ? old : element_->Load(spot);
  }

 private:
  std::unique_ptr<ElementNode<T>> element_;
  unsigned op_;
  ValuePtr<U> operand_;
  bool give_old_;
  SourceRange where_;
};

template <class T>
std::unique_ptr<ElementNode<T>> AsElement(NodePtr node) {
  assert(dynamic_cast<ElementNode<T>*>(node.get()) != nullptr);
  return std::unique_ptr<ElementNode<T>>(static_cast<ElementNode<T>*>(node.release()));
}

template <class Content, class Pick>
NodePtr MakeElement(NodePtr object, Pick pick, bool in_memory) {
  return std::make_unique<Element<Pick, Content>>(As<ObjectValue>(std::move(object)),
                                                  std::move(pick), in_memory);
}

// Elements of a type that is known only at run time are read as double, through the object.
template <class Pick>
NodePtr MakeScalarElement(TypeName element, NodePtr object, Pick pick) {
  const bool known = element != TypeName::kVoid;
  return WithScalar(known ? element : TypeName::kDouble, [&](auto t) {
    return MakeElement<Scalar<typename decltype(t)::type>>(std::move(object), std::move(pick),
                                                           known);
  });
}

template <class Pick>
Pick Picking(NodePtr index, const SourceRange& where) {
  return Pick(As<std::int64_t>(std::move(index)), where);
}

}  // namespace

NodePtr MakeVectorElement(TypeName element, NodePtr object, NodePtr index, SourceRange where) {
  return MakeScalarElement(element, std::move(object), Picking<RowIndex>(std::move(index), where));
}

NodePtr MakeMatrixCell(TypeName element, NodePtr object, NodePtr row, NodePtr column,
                       SourceRange where) {
  CellIndex pick(As<std::int64_t>(std::move(row)), As<std::int64_t>(std::move(column)), where);
  return MakeScalarElement(element, std::move(object), std::move(pick));
}

NodePtr MakeArrayElement(TypeName element, NodePtr object, NodePtr index, SourceRange where) {
  return MakeScalarElement(element, std::move(object),
                           Picking<ArrayIndex>(std::move(index), where));
}

NodePtr MakeTextChar(NodePtr object, NodePtr index, SourceRange where) {
  return MakeElement<CharOfText>(std::move(object), Picking<CharIndex>(std::move(index), where),
                                 false);
}

NodePtr MakeTextElement(NodePtr object, NodePtr index, SourceRange where) {
  return MakeElement<Text>(std::move(object), Picking<RowIndex>(std::move(index), where), false);
}

std::unique_ptr<Referable> AsReferable(TypeName type, NodePtr element) {
  return WithScalar(type, [&](auto t) -> std::unique_ptr<Referable> {
    return AsElement<typename decltype(t)::type>(std::move(element));
  });
}

NodePtr MakeStoreElement(Carrier carrier, NodePtr element, NodePtr value) {
  const auto make = [&](auto t) -> NodePtr {
    using T = typename decltype(t)::type;
    return std::make_unique<StoreElement<T>>(AsElement<T>(std::move(element)),
                                             As<T>(std::move(value)));
  };
  if (carrier == kTextCarrier) return make(std::type_identity<CStringUTF8>());
  return WithScalar(carrier, make);
}

namespace {

// Whether an operand of this type converts to the usual one without losing anything.
bool IsUsualOperand(TypeName operand, TypeName usual) {
  if (usual == TypeName::kDouble) {
    return IsNumber(operand) && operand != TypeName::kInt64 && operand != TypeName::kUint64;
  }
  return IsInteger(operand) && ScalarSize(operand) <= sizeof(int) && operand != TypeName::kUint;
}

std::unique_ptr<OperandNode> MakeOperand(TypeName type, NodePtr value, SourceRange where) {
  return WithScalar(type, [&](auto t) -> std::unique_ptr<OperandNode> {
    using U = typename decltype(t)::type;
    return std::make_unique<ScalarOperand<U>>(type, As<U>(std::move(value)), where);
  });
}

}  // namespace

NodePtr MakeOperateElement(TypeName type, NodePtr element, unsigned op, TypeName operand_type,
                           NodePtr operand, bool give_old, SourceRange where) {
  const TypeName usual = IsFloating(type) ? TypeName::kDouble : TypeName::kInt;
  if (IsNumber(type) && IsUsualOperand(operand_type, usual)) {
    operand = MakeConversion(operand_type, usual, std::move(operand));
    return WithNumber(type, [&](auto t) -> NodePtr {
      using T = typename decltype(t)::type;
      return std::make_unique<OperateUsual<T>>(AsElement<T>(std::move(element)), op,
                                               As<UsualOperand<T>>(std::move(operand)), give_old,
                                               where);
    });
  }
  auto typed = MakeOperand(operand_type, std::move(operand), where);
  return WithScalar(type, [&](auto t) -> NodePtr {
    using T = typename decltype(t)::type;
    return std::make_unique<OperateElement<T>>(AsElement<T>(std::move(element)), op,
                                               std::move(typed), give_old, where);
  });
}

NodePtr MakeUpdateElement(TypeName type, NodePtr element, std::uint32_t scratch, NodePtr first,
                          NodePtr combined, bool give_old) {
  return WithScalar(type, [&](auto t) -> NodePtr {
    using T = typename decltype(t)::type;
    return std::make_unique<UpdateElement<T>>(AsElement<T>(std::move(element)), scratch,
                                              std::move(first), As<T>(std::move(combined)),
                                              give_old);
  });
}

}  // namespace tesselc
