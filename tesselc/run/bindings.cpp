#include "tesselc/run/bindings.h"

#include <cstring>

#include "frame/interface/script_object.h"
#include "tesselc/run/objects.h"

namespace tesselc {

CScriptVelaObject* Passed::BindProxy(Run& run, TypeName type, void* address,
                                     const SourceRange& where) {
  proxy_ = run.BorrowProxy(type, where);
  run_ = &run;
  proxy_type_ = type;
  CheckStatus(proxy_->SetExternalData(address), "pass the variable", where);
  return proxy_.Get();
}

Passed::~Passed() {
  if (!proxy_) return;
  proxy_->SetExternalData(nullptr);
  run_->ReturnProxy(proxy_type_, std::move(proxy_));
}

namespace {

using vela::host::CallFrame;

class ObjectBinding final : public Binding {
 public:
  explicit ObjectBinding(ValuePtr<ObjectValue> object) : object_(std::move(object)) {}
  void Bind(Frame& frame, Passed& passed) override { passed.value = object_->Eval(frame); }

 private:
  ValuePtr<ObjectValue> object_;
};

class VariableBinding final : public Binding {
 public:
  VariableBinding(TypeName type, const VariablePlace& place, SourceRange where)
      : type_(type), place_(place), where_(where) {}
  void Bind(Frame& frame, Passed& passed) override {
    ScalarReference reference = place_.Refer(frame);
    if (reference.element != nullptr) {
      reference.element->Load(passed.scalar);
      reference.address = passed.scalar;
    }
    passed.value = ObjectValue(passed.BindProxy(*frame.run, type_, reference.address, where_));
    passed.referred = reference.element;
  }
  void Complete(Passed& passed, Return) override {
    if (passed.referred != nullptr) passed.referred->Store(passed.scalar);
  }

 private:
  TypeName type_;
  VariablePlace place_;
  SourceRange where_;
};

// Makes a temporary object of a value, and reads the value back.
template <class T>
struct TemporaryOf {
  static void Bind(Frame& frame, Passed& passed, TypeName type, const T& value,
                   const SourceRange& where) {
    std::memcpy(passed.scalar, &value, sizeof(T));
    passed.value = ObjectValue(passed.BindProxy(*frame.run, type, passed.scalar, where));
  }
  static T Read(const Passed& passed, const SourceRange&) {
    T value;
    std::memcpy(&value, passed.scalar, sizeof(T));
    return value;
  }
};
template <>
struct TemporaryOf<CStringUTF8> {
  static void Bind(Frame& frame, Passed& passed, TypeName, const CStringUTF8& value,
                   const SourceRange& where) {
    passed.value = ObjectValue(frame.run->Create(kTypeString, 0, "string", where));
    CheckStatus(passed.value.object->SetStringValue(nullptr, value), "set the text", where);
  }
  static CStringUTF8 Read(const Passed& passed, const SourceRange& where) {
    CStringUTF8 text;
    CheckStatus(passed.value.object->GetString(nullptr, text), "get the text", where);
    return text;
  }
};

template <class T>
bool IsSame(const T& a, const T& b) {
  if constexpr (std::is_same_v<T, CStringUTF8>) {
    return a == b;
  } else {
    return std::memcmp(&a, &b, sizeof(T)) == 0;
  }
}

template <class T>
class ElementBinding final : public Binding {
 public:
  ElementBinding(Carrier carrier, std::unique_ptr<ElementNode<T>> element, SourceRange where)
      : carrier_(carrier), element_(std::move(element)), where_(where) {}

  void Bind(Frame& frame, Passed& passed) override {
    passed.spot = element_->Find(frame);
    if (const Passed* same = FindSame(passed)) {
      passed.value = ObjectValue(same->value.object);
      return;
    }
    T value = element_->Load(passed.spot);
    TemporaryOf<T>::Bind(frame, passed, carrier_, value, where_);
    Keep(passed, std::move(value));
  }
  void Complete(Passed& passed, Return when) override {
    if (!passed.text) return;
    T value = TemporaryOf<T>::Read(passed, where_);
    if (when == Return::kChanged && IsSame(value, Kept(passed))) return;
    // The call may have moved the storage, or made the container shorter.
    passed.spot.address = nullptr;
    try {
      element_->Store(passed.spot, value);
    } catch (const ScriptError&) {
    }
  }

 private:
  // The earlier use of the same element that holds the copy.
  static const Passed* FindSame(const Passed& passed) {
    for (const Passed* other = passed.previous; other != nullptr; other = other->previous) {
      if (other->text && other->spot.object == passed.spot.object &&
          other->spot.at == passed.spot.at) {
        return other;
      }
    }
    return nullptr;
  }
  // The value before the call: texts in passed.text, scalars as bytes in it.
  static void Keep(Passed& passed, T&& value) {
    if constexpr (std::is_same_v<T, CStringUTF8>) {
      passed.text = std::move(value);
    } else {
      passed.text.emplace(reinterpret_cast<const char*>(&value), static_cast<int>(sizeof(T)));
    }
  }
  static T Kept(const Passed& passed) {
    if constexpr (std::is_same_v<T, CStringUTF8>) {
      return *passed.text;
    } else {
      T value;
      std::memcpy(&value, passed.text->c_str(), sizeof(T));
      return value;
    }
  }

  Carrier carrier_;
  std::unique_ptr<ElementNode<T>> element_;
  SourceRange where_;
};

template <class T>
class ValueBinding final : public Binding {
 public:
  ValueBinding(Carrier carrier, ValuePtr<T> value, SourceRange where)
      : carrier_(carrier), value_(std::move(value)), where_(where) {}
  void Bind(Frame& frame, Passed& passed) override {
    TemporaryOf<T>::Bind(frame, passed, carrier_, value_->Eval(frame), where_);
  }

 private:
  Carrier carrier_;
  ValuePtr<T> value_;
  SourceRange where_;
};

class NullArgument final : public ArgumentNode {
 public:
  void Pass(Frame&, Passed&, CallFrame& call) override { call.AddNull(); }
};

void Add(CallFrame& call, char value) { call.AddChar(value); }
void Add(CallFrame& call, int value) { call.AddInt(value); }
void Add(CallFrame& call, unsigned value) { call.AddInt64(value); }
void Add(CallFrame& call, std::int64_t value) { call.AddInt64(value); }
void Add(CallFrame& call, std::uint64_t value) { call.AddUnsigned64(value); }
void Add(CallFrame& call, double value) { call.AddDouble(value); }
void Add(CallFrame& call, const OneTCcomplex& value) { call.AddComplex(value); }

// The argument that a number is widened to.
template <class T>
auto Widened(const T& value) {
  if constexpr (std::is_same_v<T, float>) {
    return static_cast<double>(value);
  } else if constexpr (std::is_integral_v<T> && sizeof(T) < sizeof(int) &&
                       !std::is_same_v<T, char>) {
    return static_cast<int>(value);
  } else {
    return value;
  }
}

template <class T>
class NumberArgument final : public ArgumentNode {
 public:
  explicit NumberArgument(ValuePtr<T> value) : value_(std::move(value)) {}
  void Pass(Frame& frame, Passed&, CallFrame& call) override {
    Add(call, Widened(value_->Eval(frame)));
  }

 private:
  ValuePtr<T> value_;
};

class TextArgument final : public ArgumentNode {
 public:
  explicit TextArgument(ValuePtr<CStringUTF8> value) : value_(std::move(value)) {}
  void Pass(Frame& frame, Passed& passed, CallFrame& call) override {
    passed.text = value_->Eval(frame);
    if (passed.text->View().find('\0') == std::string_view::npos) {
      call.AddText(passed.text->c_str());
      return;
    }
    // A literal of a frame ends at its first NUL; a string object does not.
    TemporaryOf<CStringUTF8>::Bind(frame, passed, kTextCarrier, *passed.text, {});
    call.AddObject(passed.value.object, {}, false);
  }

 private:
  ValuePtr<CStringUTF8> value_;
};

class ObjectArgument final : public ArgumentNode {
 public:
  ObjectArgument(BindingPtr binding, bool by_reference, bool is_const)
      : binding_(std::move(binding)), by_reference_(by_reference), is_const_(is_const) {}
  void Pass(Frame& frame, Passed& passed, CallFrame& call) override {
    binding_->Bind(frame, passed);
    call.AddObject(passed.value.object, passed.value.at, by_reference_);
  }
  void Complete(Passed& passed) override {
    if (by_reference_ && !is_const_) binding_->Complete(passed, Binding::Return::kAlways);
  }

 private:
  BindingPtr binding_;
  bool by_reference_;
  bool is_const_;
};

template <class F>
auto WithPlainCarrier(Carrier carrier, F&& f) {
  if (carrier == kTextCarrier) return f(std::type_identity<CStringUTF8>());
  return WithScalar(carrier, std::forward<F>(f));
}

}  // namespace

BindingPtr MakeObjectBinding(NodePtr object) {
  return std::make_unique<ObjectBinding>(As<ObjectValue>(std::move(object)));
}

BindingPtr MakeVariableBinding(TypeName type, const VariablePlace& place, SourceRange where) {
  return std::make_unique<VariableBinding>(type, place, where);
}

BindingPtr MakeElementBinding(Carrier carrier, NodePtr element, SourceRange where) {
  return WithPlainCarrier(carrier, [&](auto t) -> BindingPtr {
    using T = typename decltype(t)::type;
    auto typed = std::unique_ptr<ElementNode<T>>(static_cast<ElementNode<T>*>(element.release()));
    return std::make_unique<ElementBinding<T>>(carrier, std::move(typed), where);
  });
}

BindingPtr MakeValueBinding(Carrier carrier, NodePtr value, SourceRange where) {
  return WithPlainCarrier(carrier, [&](auto t) -> BindingPtr {
    using T = typename decltype(t)::type;
    return std::make_unique<ValueBinding<T>>(carrier, As<T>(std::move(value)), where);
  });
}

ArgumentPtr MakeNullArgument() { return std::make_unique<NullArgument>(); }

ArgumentPtr MakeValueArgument(Carrier carrier, NodePtr value) {
  if (carrier == kTextCarrier) {
    return std::make_unique<TextArgument>(As<CStringUTF8>(std::move(value)));
  }
  const auto make = [&](auto t) -> ArgumentPtr {
    using T = typename decltype(t)::type;
    return std::make_unique<NumberArgument<T>>(As<T>(std::move(value)));
  };
  if (carrier == TypeName::kComplex) return make(std::type_identity<OneTCcomplex>());
  return WithNumber(carrier, make);
}

ArgumentPtr MakeObjectArgument(BindingPtr binding, bool by_reference, bool is_const) {
  return std::make_unique<ObjectArgument>(std::move(binding), by_reference, is_const);
}

}  // namespace tesselc
