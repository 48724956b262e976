#include "tesselc/run/long_chain.h"

#include <optional>

namespace tesselc {

class LongChain::Stage {
 public:
  virtual ~Stage() = default;
  virtual void Run(Frame& frame) = 0;
};

namespace {

using Stages = std::vector<std::unique_ptr<LongChain::Stage>>;

// The value of a stage. It is taken as soon as it is there, before any other script code runs, so
// that one place does for every call under way.
template <class T>
class StageValue final : public ValueNode<T> {
 public:
  T Eval(Frame&) override {
    T value = std::move(*value_);
    value_.reset();
    return value;
  }
  void Set(T value) { value_ = std::move(value); }

 private:
  std::optional<T> value_;
};

template <class T>
class ValueStage final : public LongChain::Stage {
 public:
  ValueStage(ValuePtr<T> node, StageValue<T>& value) : node_(std::move(node)), value_(value) {}
  void Run(Frame& frame) override { value_.Set(node_->Eval(frame)); }

 private:
  ValuePtr<T> node_;
  StageValue<T>& value_;
};

class VoidStage final : public LongChain::Stage {
 public:
  explicit VoidStage(NodePtr node) : node_(std::move(node)) {}
  void Run(Frame& frame) override { node_->Exec(frame); }

 private:
  NodePtr node_;
};

class NoValue final : public Node {
 public:
  Flow Exec(Frame&) override { return Flow::kNext; }
};

void RunAll(const Stages& stages, Frame& frame) {
  for (const auto& stage : stages) stage->Run(frame);
}

template <class T>
class ChainNode final : public ValueNode<T> {
 public:
  ChainNode(Stages stages, ValuePtr<T> last) : stages_(std::move(stages)), last_(std::move(last)) {}
  T Eval(Frame& frame) override {
    RunAll(stages_, frame);
    return last_->Eval(frame);
  }

 private:
  Stages stages_;
  ValuePtr<T> last_;
};

class VoidChainNode final : public Node {
 public:
  VoidChainNode(Stages stages, NodePtr last) : stages_(std::move(stages)), last_(std::move(last)) {}
  Flow Exec(Frame& frame) override {
    RunAll(stages_, frame);
    return last_->Exec(frame);
  }

 private:
  Stages stages_;
  NodePtr last_;
};

}  // namespace

LongChain::LongChain() = default;
LongChain::~LongChain() = default;

NodePtr LongChain::Rest(Carrier carrier, NodePtr so_far) {
  if (carrier == TypeName::kVoid) {
    stages_.push_back(std::make_unique<VoidStage>(std::move(so_far)));
    return std::make_unique<NoValue>();
  }
  return WithCarrier(carrier, [&](auto t) -> NodePtr {
    using T = typename decltype(t)::type;
    auto value = std::make_unique<StageValue<T>>();
    stages_.push_back(std::make_unique<ValueStage<T>>(As<T>(std::move(so_far)), *value));
    return value;
  });
}

NodePtr LongChain::Finish(Carrier carrier, NodePtr last) {
  if (stages_.empty()) return last;
  if (carrier == TypeName::kVoid) {
    return std::make_unique<VoidChainNode>(std::move(stages_), std::move(last));
  }
  return WithCarrier(carrier, [&](auto t) -> NodePtr {
    using T = typename decltype(t)::type;
    return std::make_unique<ChainNode<T>>(std::move(stages_), As<T>(std::move(last)));
  });
}

}  // namespace tesselc
