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
    return place_.template Get<T>(frame) = value;
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
    T& variable = place_.template Get<T>(frame);
    return variable = Op::Apply(variable, value);
  }

 private:
  Place place_;
  ValuePtr<T> value_;
};

template <class T, class Place, bool kUp, bool kOld>
class StepVariable final : public Expr<StepVariable<T, Place, kUp, kOld>, T> {
 public:
  explicit StepVariable(Place place) : place_(place) {}
  T Eval(Frame& frame) override {
    T& variable = place_.template Get<T>(frame);
    const T old = variable;
    variable = kUp ? AddOne(old) : SubtractOne(old);
    return kOld ? old : variable;
  }

 private:
  Place place_;
};

template <class Place>
class FillVariable final : public Node {
 public:
  FillVariable(Place place, std::uint32_t size, unsigned char byte)
      : place_(place), size_(size), byte_(byte) {}
  Flow Exec(Frame& frame) override {
    std::memset(&place_.template Get<std::byte>(frame), byte_, size_);
    return Flow::kNext;
  }

 private:
  Place place_;
  std::uint32_t size_;
  unsigned char byte_;
};

template <class T, class Op>
NodePtr MakeUpdateOf(const VariablePlace& place, NodePtr& value) {
  return WithPlace(place, [&](auto at) -> NodePtr {
    return std::make_unique<UpdateVariable<T, decltype(at), Op>>(at, As<T>(std::move(value)));
  });
}

template <class T, bool kUp, bool kOld>
NodePtr MakeStepOf(const VariablePlace& place) {
  return WithPlace(place, [](auto at) -> NodePtr {
    return std::make_unique<StepVariable<T, decltype(at), kUp, kOld>>(at);
  });
}

}  // namespace

NodePtr MakeLoad(TypeName type, const VariablePlace& place) {
  return WithScalar(type, [&](auto t) {
    using T = typename decltype(t)::type;
    return WithPlace(place, [](auto at) -> NodePtr {
      return std::make_unique<LoadVariable<T, decltype(at)>>(at);
    });
  });
}

NodePtr MakeStore(TypeName type, const VariablePlace& place, NodePtr value) {
  return WithScalar(type, [&](auto t) {
    using T = typename decltype(t)::type;
    return WithPlace(place, [&](auto at) -> NodePtr {
      return std::make_unique<StoreVariable<T, decltype(at)>>(at, As<T>(std::move(value)));
    });
  });
}

NodePtr MakeFill(TypeName type, const VariablePlace& place, unsigned char byte) {
  return WithPlace(place, [&](auto at) -> NodePtr {
    return std::make_unique<FillVariable<decltype(at)>>(at, ScalarSize(type), byte);
  });
}

NodePtr MakeUpdate(TypeName type, const VariablePlace& place, BinaryOperator op, NodePtr& value) {
  return WithArithmetic(type, [&](auto t) -> NodePtr {
    using T = typename decltype(t)::type;
    switch (op) {
      case BinaryOperator::kAdd:
        return MakeUpdateOf<T, AddOp>(place, value);
      case BinaryOperator::kSubtract:
        return MakeUpdateOf<T, SubtractOp>(place, value);
      case BinaryOperator::kMultiply:
        return MakeUpdateOf<T, MultiplyOp>(place, value);
      default:
        return nullptr;
    }
  });
}

NodePtr MakeStep(TypeName type, const VariablePlace& place, bool up, bool give_old) {
  return WithNumber(type, [&](auto t) -> NodePtr {
    using T = typename decltype(t)::type;
    if (up) return give_old ? MakeStepOf<T, true, true>(place) : MakeStepOf<T, true, false>(place);
    return give_old ? MakeStepOf<T, false, true>(place) : MakeStepOf<T, false, false>(place);
  });
}

}  // namespace tesselc
