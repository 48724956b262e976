#include "tesselc/run/elements.h"

#include <limits>

#include "frame/interface/script_object.h"
#include "tesselc/run/objects.h"
#include "tesselc/run/script_error.h"

namespace tesselc {
namespace {

using ObjectPtr = ValuePtr<ObjectValue>;
using IndexPtr = ValuePtr<std::int64_t>;

constexpr std::int64_t kMaxIndex = std::numeric_limits<std::int32_t>::max();

// Throws unless the index is below the size of the addressed row, or of the whole object.
std::int32_t CheckRowIndex(const ObjectValue& row, std::int64_t index, const SourceRange& where) {
  int upper = -1;
  CheckStatus(row.object->GetUpperBound(row.At(), upper), "get the size", where);
  if (index < 0 || index > upper) ThrowIndexError(where, index, std::int64_t{upper} + 1);
  return static_cast<std::int32_t>(index);
}

ElementSpot SpotIn(ObjectValue&& container, void* address, const MSOINDICES& at) {
  return {address, container.object, at, std::move(container.keep)};
}

// What the kinds of element have in common; Self supplies Find.
template <class Self, class T>
class ElementBase : public ElementNode<T> {
 public:
  Flow Exec(Frame& frame) final {
    self().Find(frame);
    return Flow::kNext;
  }
  T Eval(Frame& frame) override { return self().Load(self().Find(frame)); }

 private:
  Self& self() { return static_cast<Self&>(*this); }
};

// Elements that are scalars: in memory where it can be seen, else through the object.
template <class Self, class T>
class ScalarElement : public ElementBase<Self, T> {
 public:
  T Load(const ElementSpot& spot) final {
    if (spot.address) return *static_cast<T*>(spot.address);
    T value{};
    if constexpr (std::is_arithmetic_v<T> || std::is_same_v<T, OneTCcomplex>) {
      CheckStatus(spot.object->GetNumericValue(&spot.at, value), "read the element", where_);
    } else {
      CheckStatus(spot.object->GetPointValue(&spot.at, value), "read the element", where_);
    }
    return value;
  }
  void Store(const ElementSpot& spot, const T& value) final {
    if (spot.address) {
      *static_cast<T*>(spot.address) = value;
      return;
    }
    CheckStatus(spot.object->SetNumericValue(&spot.at, value), "set the element", where_);
  }

 protected:
  explicit ScalarElement(SourceRange where) : where_(where) {}
  const SourceRange& where() const { return where_; }

 private:
  SourceRange where_;
};

template <class T>
class VectorElement final : public ScalarElement<VectorElement<T>, T> {
 public:
  VectorElement(ObjectPtr object, IndexPtr index, bool typed, SourceRange where)
      : ScalarElement<VectorElement, T>(where),
        object_(std::move(object)),
        index_(std::move(index)),
        typed_(typed) {}

  T Eval(Frame& frame) override {
    ObjectValue row = object_->Eval(frame);
    const std::int64_t index = index_->Eval(frame);
    if (void* address = Address(row, index)) return *static_cast<T*>(address);
    return this->Load(FindSlowly(std::move(row), index));
  }
  ElementSpot Find(Frame& frame) override {
    ObjectValue row = object_->Eval(frame);
    const std::int64_t index = index_->Eval(frame);
    void* address = Address(row, index);
    if (!address) return FindSlowly(std::move(row), index);
    const MSOINDICES at = row.at.WithElement(static_cast<std::int32_t>(index));
    return SpotIn(std::move(row), address, at);
  }

 private:
  void* Address(const ObjectValue& row, std::int64_t index) const {
    if (!typed_ || index < 0 || index > kMaxIndex) return nullptr;
    return row.object->GetArrayElement(row.At(), static_cast<int>(index));
  }
  // The index is outside, or the elements are not in memory.
  ElementSpot FindSlowly(ObjectValue&& row, std::int64_t index) {
    const MSOINDICES at = row.at.WithElement(CheckRowIndex(row, index, this->where()));
    return SpotIn(std::move(row), nullptr, at);
  }

  ObjectPtr object_;
  IndexPtr index_;
  bool typed_;  // the elements in memory are of type T
};

template <class T>
class MatrixCell final : public ScalarElement<MatrixCell<T>, T> {
 public:
  MatrixCell(ObjectPtr object, IndexPtr row, IndexPtr column, SourceRange where)
      : ScalarElement<MatrixCell, T>(where),
        object_(std::move(object)),
        row_(std::move(row)),
        column_(std::move(column)) {}

  ElementSpot Find(Frame& frame) override {
    ObjectValue layer = object_->Eval(frame);
    const std::int64_t row = row_->Eval(frame);
    const std::int64_t column = column_->Eval(frame);
    int rows = 0, columns = 0;
    layer.object->GetMatrixDimensions(&rows, &columns, layer.At());
    if (row < 0 || row >= rows) ThrowIndexError(this->where(), row, rows);
    if (column < 0 || column >= columns) ThrowIndexError(this->where(), column, columns);
    const MSOINDICES at =
        layer.at.WithCell(static_cast<std::int32_t>(row), static_cast<std::int32_t>(column));
    return SpotIn(std::move(layer), nullptr, at);
  }

 private:
  ObjectPtr object_;
  IndexPtr row_, column_;
};

template <class T>
class ArrayElement final : public ScalarElement<ArrayElement<T>, T> {
 public:
  ArrayElement(ObjectPtr object, IndexPtr index, SourceRange where)
      : ScalarElement<ArrayElement, T>(where),
        object_(std::move(object)),
        index_(std::move(index)) {}

  ElementSpot Find(Frame& frame) override {
    ObjectValue array = object_->Eval(frame);
    const std::int64_t index = index_->Eval(frame);
    const int count = array.object->GetArraySize();
    if (index < 0 || index >= count) ThrowIndexError(this->where(), index, count);
    void* first = nullptr;
    const bool seen = array.object->GetExternalData(&first) == status::kOk && first != nullptr;
    return SpotIn(std::move(array), seen ? static_cast<T*>(first) + index : nullptr,
                  MSOINDICES::Object(static_cast<std::int32_t>(index)));
  }

 private:
  ObjectPtr object_;
  IndexPtr index_;
};

class TextChar final : public ElementBase<TextChar, char> {
 public:
  TextChar(ObjectPtr object, IndexPtr index, SourceRange where)
      : object_(std::move(object)), index_(std::move(index)), where_(where) {}

  ElementSpot Find(Frame& frame) override {
    ObjectValue text = object_->Eval(frame);
    const std::int64_t index = index_->Eval(frame);
    const int length = Read(text.object, text.At()).GetLength();
    if (index < 0 || index >= length) ThrowIndexError(where_, index, length);
    const MSOINDICES at = text.at.WithElement(static_cast<std::int32_t>(index));
    return SpotIn(std::move(text), nullptr, at);
  }
  char Load(const ElementSpot& spot) override {
    const MSOINDICES whole = Whole(spot.at);
    return Read(spot.object, &whole).GetAt(spot.at.element);
  }
  void Store(const ElementSpot& spot, const char& value) override {
    const MSOINDICES whole = Whole(spot.at);
    CStringUTF8 text = Read(spot.object, &whole);
    text.SetAt(spot.at.element, value);
    CheckStatus(spot.object->SetStringValue(&whole, text), "set a character", where_);
  }

 private:
  static MSOINDICES Whole(const MSOINDICES& at) { return {at.ObjectKind(), at.index, 0, 0}; }
  CStringUTF8 Read(CScriptVelaObject* object, const MSOINDICES* at) {
    CStringUTF8 text;
    CheckStatus(object->GetString(at, text), "get the text", where_);
    return text;
  }

  ObjectPtr object_;
  IndexPtr index_;
  SourceRange where_;
};

class TextElement final : public ElementBase<TextElement, CStringUTF8> {
 public:
  TextElement(ObjectPtr object, IndexPtr index, SourceRange where)
      : object_(std::move(object)), index_(std::move(index)), where_(where) {}

  ElementSpot Find(Frame& frame) override {
    ObjectValue row = object_->Eval(frame);
    const std::int64_t index = index_->Eval(frame);
    const MSOINDICES at = row.at.WithElement(CheckRowIndex(row, index, where_));
    return SpotIn(std::move(row), nullptr, at);
  }
  CStringUTF8 Load(const ElementSpot& spot) override {
    CStringUTF8 text;
    CheckStatus(spot.object->GetString(&spot.at, text), "read the element", where_);
    return text;
  }
  void Store(const ElementSpot& spot, const CStringUTF8& value) override {
    CheckStatus(spot.object->SetStringValue(&spot.at, value), "set the element", where_);
  }

 private:
  ObjectPtr object_;
  IndexPtr index_;
  SourceRange where_;
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

template <class T>
std::unique_ptr<ElementNode<T>> AsElement(NodePtr node) {
  assert(dynamic_cast<ElementNode<T>*>(node.get()) != nullptr);
  return std::unique_ptr<ElementNode<T>>(static_cast<ElementNode<T>*>(node.release()));
}

template <class Element>
NodePtr MakeIndexed(NodePtr object, NodePtr index, SourceRange where) {
  return std::make_unique<Element>(As<ObjectValue>(std::move(object)),
                                   As<std::int64_t>(std::move(index)), where);
}

}  // namespace

NodePtr MakeVectorElement(TypeName element, NodePtr object, NodePtr index, SourceRange where) {
  const bool typed = element != TypeName::kVoid;
  return WithScalar(typed ? element : TypeName::kDouble, [&](auto t) -> NodePtr {
    using T = typename decltype(t)::type;
    return std::make_unique<VectorElement<T>>(As<ObjectValue>(std::move(object)),
                                              As<std::int64_t>(std::move(index)), typed, where);
  });
}

NodePtr MakeMatrixCell(TypeName element, NodePtr object, NodePtr row, NodePtr column,
                       SourceRange where) {
  return WithScalar(
      element == TypeName::kVoid ? TypeName::kDouble : element, [&](auto t) -> NodePtr {
        using T = typename decltype(t)::type;
        return std::make_unique<MatrixCell<T>>(As<ObjectValue>(std::move(object)),
                                               As<std::int64_t>(std::move(row)),
                                               As<std::int64_t>(std::move(column)), where);
      });
}

NodePtr MakeArrayElement(TypeName element, NodePtr object, NodePtr index, SourceRange where) {
  return WithScalar(element, [&](auto t) {
    using T = typename decltype(t)::type;
    return MakeIndexed<ArrayElement<T>>(std::move(object), std::move(index), where);
  });
}

NodePtr MakeTextChar(NodePtr object, NodePtr index, SourceRange where) {
  return MakeIndexed<TextChar>(std::move(object), std::move(index), where);
}

NodePtr MakeTextElement(NodePtr object, NodePtr index, SourceRange where) {
  return MakeIndexed<TextElement>(std::move(object), std::move(index), where);
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
