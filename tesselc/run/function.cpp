#include "tesselc/run/function.h"

#include <array>

#include "frame/interface/script_object.h"
#include "tesselc/run/interrupt.h"
#include "tesselc/run/run.h"

namespace tesselc {
namespace {

template <class T>
class ScalarParameter final : public ParameterNode {
 public:
  ScalarParameter(std::uint32_t offset, ValuePtr<T> value)
      : offset_(offset), value_(std::move(value)) {}
  void Pass(Frame& caller, Passed*, std::byte* callee) override {
    *reinterpret_cast<T*>(callee + offset_) = value_->Eval(caller);
  }

 private:
  std::uint32_t offset_;
  ValuePtr<T> value_;
};

class OwnedParameter final : public ParameterNode {
 public:
  OwnedParameter(std::uint32_t offset, ValuePtr<ObjectValue> object)
      : offset_(offset), object_(std::move(object)) {}
  void Pass(Frame& caller, Passed*, std::byte* callee) override {
    const ObjectValue value = object_->Eval(caller);
    value.object->AddRef();
    *reinterpret_cast<CScriptVelaObject**>(callee + offset_) = value.object;
  }

 private:
  std::uint32_t offset_;
  ValuePtr<ObjectValue> object_;
};

class VariableParameter final : public ParameterNode {
 public:
  VariableParameter(std::uint32_t offset, const VariablePlace& place, NodePtr store)
      : offset_(offset), place_(place), store_(std::move(store)) {}
  void Pass(Frame& caller, Passed*, std::byte* callee) override {
    if (store_) store_->Exec(caller);
    *reinterpret_cast<ScalarReference*>(callee + offset_) = place_.Refer(caller);
  }

 private:
  std::uint32_t offset_;
  VariablePlace place_;
  NodePtr store_;
};

class BorrowedParameter final : public ParameterNode {
 public:
  BorrowedParameter(std::uint32_t offset, ValuePtr<ObjectValue> object)
      : offset_(offset), object_(std::move(object)) {}
  void Pass(Frame& caller, Passed*, std::byte* callee) override {
    const ObjectValue value = object_->Eval(caller);
    *reinterpret_cast<ObjectReference*>(callee + offset_) = {value.object, value.at};
  }

 private:
  std::uint32_t offset_;
  ValuePtr<ObjectValue> object_;
};

class ReferenceParameter final : public ParameterNode {
 public:
  ReferenceParameter(std::uint32_t offset, BindingPtr binding)
      : offset_(offset), binding_(std::move(binding)) {}
  bool UsesPassed() const override { return true; }
  void Pass(Frame& caller, Passed* passed, std::byte* callee) override {
    binding_->Bind(caller, *passed);
    *reinterpret_cast<ObjectReference*>(callee + offset_) = {passed->value.object,
                                                             passed->value.at};
  }
  void Complete(Frame&, Passed& passed) override {
    binding_->Complete(passed, Binding::Return::kChanged);
  }

 private:
  std::uint32_t offset_;
  BindingPtr binding_;
};

class ElementParameter final : public ParameterNode {
 public:
  ElementParameter(std::uint32_t offset, std::unique_ptr<Referable> element)
      : offset_(offset), element_(std::move(element)) {}
  bool UsesPassed() const override { return true; }
  void Pass(Frame& caller, Passed* passed, std::byte* callee) override {
    std::unique_ptr<ElementReference> reference = element_->MakeReference();
    reference->Bind(caller);
    *reinterpret_cast<ScalarReference*>(callee + offset_) = {nullptr, reference.get()};
    passed->link = std::move(reference);
  }

 private:
  std::uint32_t offset_;
  std::unique_ptr<Referable> element_;
};

// Releases the objects that a frame owns.
class OwnedSlots {
 public:
  OwnedSlots(std::byte* base, const std::vector<std::uint32_t>& slots)
      : base_(base), slots_(slots) {
    for (std::uint32_t slot : slots_) At(slot) = nullptr;
  }
  ~OwnedSlots() {
    for (std::uint32_t slot : slots_) {
      if (At(slot)) At(slot)->Release();
    }
  }
  OwnedSlots(const OwnedSlots&) = delete;
  OwnedSlots& operator=(const OwnedSlots&) = delete;

 private:
  CScriptVelaObject*& At(std::uint32_t slot) const {
    return *reinterpret_cast<CScriptVelaObject**>(base_ + slot);
  }
  std::byte* base_;
  const std::vector<std::uint32_t>& slots_;
};

class CallBase {
 public:
  CallBase(const CompiledFunction& function, std::vector<ParameterPtr> parameters,
           SourceRange where)
      : function_(function), parameters_(std::move(parameters)), where_(where) {
    for (const auto& parameter : parameters_) tidy_ = tidy_ || parameter->UsesPassed();
  }

 protected:
  // `result` points at the caller's variable for the result; null for a function without one.
  void Run(Frame& caller, void* result) {
    CheckInterrupt();
    const FrameLease lease(*caller.run, function_.frame_size, where_);
    const OwnedSlots owned(lease.base(), function_.owned_slots);
    if (tidy_) {
      RunTidily(caller, lease.base(), result);
    } else {
      for (auto& parameter : parameters_) parameter->Pass(caller, nullptr, lease.base());
      Execute(caller, lease.base(), result);
    }
  }

 private:
  void RunTidily(Frame& caller, std::byte* base, void* result) {
    constexpr std::size_t kFewParameters = 3;
    if (parameters_.size() <= kFewParameters) {
      std::array<Passed, kFewParameters> passed;
      RunWith(caller, base, result, passed.data());
    } else {
      const std::unique_ptr<Passed[]> passed(new Passed[parameters_.size()]);
      RunWith(caller, base, result, passed.get());
    }
  }

  void RunWith(Frame& caller, std::byte* base, void* result, Passed* passed) {
    for (std::size_t i = 0; i < parameters_.size(); ++i) {
      if (i > 0) passed[i].previous = &passed[i - 1];
      parameters_[i]->Pass(caller, &passed[i], base);
    }
    Execute(caller, base, result);
    for (std::size_t i = 0; i < parameters_.size(); ++i) {
      parameters_[i]->Complete(caller, passed[i]);
    }
  }

  void Execute(Frame& caller, std::byte* base, void* result) {
    Frame frame{base, caller.run, result};
    Flow flow;
    try {
      flow = function_.body->Exec(frame);
    } catch (ScriptError& error) {
      error.AddCall(function_.name, where_);
      throw;
    }
    if (flow != Flow::kReturn && result && !function_.is_main) {
      throw ScriptError(where_, status::kFailed,
                        "'" + function_.name + "' ended without returning a value");
    }
  }

  const CompiledFunction& function_;
  std::vector<ParameterPtr> parameters_;
  SourceRange where_;
  bool tidy_ = false;
};

template <class T>
class CallNode final : public Expr<CallNode<T>, T>, private CallBase {
 public:
  using CallBase::CallBase;
  T Eval(Frame& frame) override {
    T result{};
    Run(frame, &result);
    return result;
  }
};

class VoidCall final : public Node, private CallBase {
 public:
  using CallBase::CallBase;
  Flow Exec(Frame& frame) override {
    Run(frame, nullptr);
    return Flow::kNext;
  }
};

}  // namespace

ParameterPtr MakeScalarParameter(TypeName type, std::uint32_t offset, NodePtr value) {
  return WithScalar(type, [&](auto t) -> ParameterPtr {
    using T = typename decltype(t)::type;
    return std::make_unique<ScalarParameter<T>>(offset, As<T>(std::move(value)));
  });
}

ParameterPtr MakeOwnedParameter(std::uint32_t offset, NodePtr object) {
  return std::make_unique<OwnedParameter>(offset, As<ObjectValue>(std::move(object)));
}

ParameterPtr MakeVariableParameter(std::uint32_t offset, const VariablePlace& place) {
  return std::make_unique<VariableParameter>(offset, place, nullptr);
}

ParameterPtr MakeStoredParameter(std::uint32_t offset, NodePtr store, const VariablePlace& place) {
  return std::make_unique<VariableParameter>(offset, place, std::move(store));
}

ParameterPtr MakeBorrowedParameter(std::uint32_t offset, NodePtr object_in_variable) {
  return std::make_unique<BorrowedParameter>(offset,
                                             As<ObjectValue>(std::move(object_in_variable)));
}

ParameterPtr MakeReferenceParameter(std::uint32_t offset, BindingPtr binding) {
  return std::make_unique<ReferenceParameter>(offset, std::move(binding));
}

ParameterPtr MakeElementParameter(TypeName type, std::uint32_t offset, NodePtr element) {
  return std::make_unique<ElementParameter>(offset, AsReferable(type, std::move(element)));
}

NodePtr MakeCall(const CompiledFunction& function, std::vector<ParameterPtr> parameters,
                 SourceRange where) {
  if (function.result == TypeName::kVoid) {
    return std::make_unique<VoidCall>(function, std::move(parameters), where);
  }
  return WithCarrier(function.result, [&](auto t) -> NodePtr {
    return std::make_unique<CallNode<typename decltype(t)::type>>(function, std::move(parameters),
                                                                  where);
  });
}

}  // namespace tesselc
