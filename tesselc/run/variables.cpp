#include "tesselc/run/variables.h"

#include <cstring>

#include "tesselc/run/number_types.h"
#include "tesselc/run/operators.h"

namespace tesselc {
namespace {

template <class T, class Place>
class StoreVariable final : public Expr<StoreVariable<T, Place>, T> {
 public:
  StoreVariable(Place place, ValuePtr<T> value) : place_(place), value_(std::move(value)) {}
  T Eval(Frame& frame) override {
    T value = value_->Eval(frame);
    place_.Store(frame, value);
    return value;
  }

 private:
  Place place_;
  ValuePtr<T> value_;
};

template <class T, class Place, class Op>
class UpdateVariable final : public Expr<UpdateVariable<T, Place, Op>, T> {
 public:
  UpdateVariable(Place place, ValuePtr<T> value) : place_(place), value_(std::move(value)) {}
  T Eval(Frame& frame) override {
    const T value = value_->Eval(frame);
    const T result = Op::Apply(place_.template Load<T>(frame), value);
    place_.Store(frame, result);
    return result;
  }

 private:
  Place place_;
  ValuePtr<T> value_;
};

template <class T, class Place>
class StepVariable final : public Expr<StepVariable<T, Place>, T> {
 public:
  StepVariable(Place place, bool up, bool give_old)
      : place_(place), step_(up ? T{1} : SubtractOp::Apply<T>(0, 1)), give_old_(give_old) {}
  T Eval(Frame& frame) override {
    const T old = place_.template Load<T>(frame);
    const T next = AddOp::Apply<T>(old, step_);
    place_.Store(frame, next);
    return give_old_ ? old : next;
  }

 private:
  Place place_;
  T step_;  // 1, or -1 in the arithmetic of T
  bool give_old_;
};

class FillVariable final : public Node {
 public:
  FillVariable(VariablePlace place, std::uint32_t size, unsigned char byte)
      : place_(place), size_(size), byte_(byte) {}
  Flow Exec(Frame& frame) override {
    std::memset(place_.Refer(frame).address, byte_, size_);
    return Flow::kNext;
  }

 private:
  VariablePlace place_;
  std::uint32_t size_;
  unsigned char byte_;
};

template <class T, class Op>
NodePtr MakeUpdateOf(const VariablePlace& place, NodePtr& value) {
  return WithPlace(place, [&](auto at) -> NodePtr {
    return NodePtr(new UpdateVariable<T, decltype(at), Op>(at, As<T>(std::move(value))));
  });
}

template <class T>
bool IsPlainOf(Node& value) {
  return dynamic_cast<Constant<T>*>(&value) != nullptr ||
         dynamic_cast<LoadVariable<T, DirectVariable>*>(&value) != nullptr;
}

}  // namespace

NodePtr MakeLoad(TypeName type, const VariablePlace& place) {
  return WithScalar(type, [&](auto t) {
    using T = typename decltype(t)::type;
    return WithPlace(place, [](auto at) { return NodePtr(new LoadVariable<T, decltype(at)>(at)); });
  });
}

NodePtr MakeStore(TypeName type, const VariablePlace& place, NodePtr value) {
  return WithScalar(type, [&](auto t) {
    using T = typename decltype(t)::type;
    return WithPlace(place, [&](auto at) {
      return NodePtr(new StoreVariable<T, decltype(at)>(at, As<T>(std::move(value))));
    });
  });
}

NodePtr MakeFill(TypeName type, const VariablePlace& place, unsigned char byte) {
  return std::make_unique<FillVariable>(place, ScalarSize(type), byte);
}

NodePtr MakeUpdate(TypeName type, const VariablePlace& place, BinaryOperator op, NodePtr& value) {
  return WithArithmetic(type, [&](auto t) -> NodePtr {
    using T = typename decltype(t)::type;
    if constexpr (kIsFastType<T>) {
      if (op == BinaryOperator::kAdd) return MakeUpdateOf<T, AddOp>(place, value);
      if (op == BinaryOperator::kSubtract) return MakeUpdateOf<T, SubtractOp>(place, value);
      if (op == BinaryOperator::kMultiply) return MakeUpdateOf<T, MultiplyOp>(place, value);
    }
    return nullptr;
  });
}

bool IsPlain(TypeName type, Node& value) {
  return WithScalar(type, [&](auto t) { return IsPlainOf<typename decltype(t)::type>(value); });
}

NodePtr MakeStep(TypeName type, const VariablePlace& place, bool up, bool give_old) {
  return WithNumber(type, [&](auto t) {
    using T = typename decltype(t)::type;
    return WithPlace(place, [&](auto at) {
      return NodePtr(new StepVariable<T, decltype(at)>(at, up, give_old));
    });
  });
}

}  // namespace tesselc
