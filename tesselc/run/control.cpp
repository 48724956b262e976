#include "tesselc/run/control.h"

#include <algorithm>
#include <new>
#include <stdexcept>

#include "frame/interface/script_object.h"
#include "frame/interface/status.h"
#include "tesselc/run/interrupt.h"
#include "tesselc/run/object_value.h"
#include "tesselc/run/script_error.h"

namespace tesselc {
namespace {

// Runs statements in order from one on. Memory that runs out becomes a script error here: it can
// run out anywhere, and the statement is as near as matters.
Flow ExecFrom(const std::vector<PlacedStatement>& statements, std::size_t first, Frame& frame) {
  std::size_t i = first;
  try {
    for (; i < statements.size(); ++i) {
      const Flow flow = statements[i].node->Exec(frame);
      if (flow != Flow::kNext) return flow;
    }
  } catch (Interrupted& interrupted) {
    if (!interrupted.where) interrupted.where = statements[i].range;
    throw;
  } catch (const std::bad_alloc&) {
    throw ScriptError(statements[i].range, status::kFailed, "out of memory");
  } catch (const std::length_error&) {
    throw ScriptError(statements[i].range, status::kFailed, "out of memory: too long");
  }
  return Flow::kNext;
}

class BlockNode final : public Node {
 public:
  explicit BlockNode(std::vector<PlacedStatement> statements)
      : statements_(std::move(statements)) {}
  Flow Exec(Frame& frame) override { return ExecFrom(statements_, 0, frame); }

 private:
  std::vector<PlacedStatement> statements_;
};

class ScopeNode final : public Node {
 public:
  ScopeNode(NodePtr body, std::vector<std::uint32_t> slots)
      : body_(std::move(body)), slots_(std::move(slots)) {}
  Flow Exec(Frame& frame) override {
    const Guard guard(frame, slots_);
    return body_->Exec(frame);
  }

 private:
  class Guard {
   public:
    Guard(Frame& frame, const std::vector<std::uint32_t>& slots) : frame_(frame), slots_(slots) {
      for (std::uint32_t slot : slots_) frame_.At<CScriptVelaObject*>(slot) = nullptr;
    }
    ~Guard() {
      for (auto slot = slots_.rbegin(); slot != slots_.rend(); ++slot) {
        if (auto* object = frame_.At<CScriptVelaObject*>(*slot)) object->Release();
      }
    }
    Guard(const Guard&) = delete;
    Guard& operator=(const Guard&) = delete;

   private:
    Frame& frame_;
    const std::vector<std::uint32_t>& slots_;
  };

  NodePtr body_;
  std::vector<std::uint32_t> slots_;
};

class IfNode final : public Node {
 public:
  IfNode(std::vector<std::pair<ValuePtr<int>, NodePtr>> branches, NodePtr otherwise)
      : branches_(std::move(branches)), otherwise_(std::move(otherwise)) {}
  Flow Exec(Frame& frame) override {
    for (auto& [condition, body] : branches_) {
      if (condition->Eval(frame)) return body->Exec(frame);
    }
    return otherwise_ ? otherwise_->Exec(frame) : Flow::kNext;
  }

 private:
  std::vector<std::pair<ValuePtr<int>, NodePtr>> branches_;
  NodePtr otherwise_;
};

class WhileNode final : public Node {
 public:
  WhileNode(ValuePtr<int> condition, NodePtr body)
      : condition_(std::move(condition)), body_(std::move(body)) {}
  Flow Exec(Frame& frame) override {
    while (condition_->Eval(frame)) {
      CheckInterrupt();
      const Flow flow = body_->Exec(frame);
      if (flow == Flow::kBreak) break;
      if (flow == Flow::kReturn) return flow;
    }
    return Flow::kNext;
  }

 private:
  ValuePtr<int> condition_;
  NodePtr body_;
};

class DoWhileNode final : public Node {
 public:
  DoWhileNode(NodePtr body, ValuePtr<int> condition)
      : body_(std::move(body)), condition_(std::move(condition)) {}
  Flow Exec(Frame& frame) override {
    do {
      CheckInterrupt();
      const Flow flow = body_->Exec(frame);
      if (flow == Flow::kBreak) break;
      if (flow == Flow::kReturn) return flow;
    } while (condition_->Eval(frame));
    return Flow::kNext;
  }

 private:
  NodePtr body_;
  ValuePtr<int> condition_;
};

class ForNode final : public Node {
 public:
  ForNode(NodePtr initializer, ValuePtr<int> condition, NodePtr step, NodePtr body)
      : initializer_(std::move(initializer)),
        condition_(std::move(condition)),
        step_(std::move(step)),
        body_(std::move(body)) {}
  Flow Exec(Frame& frame) override {
    if (initializer_) initializer_->Exec(frame);
    while (!condition_ || condition_->Eval(frame)) {
      CheckInterrupt();
      const Flow flow = body_->Exec(frame);
      if (flow == Flow::kBreak) break;
      if (flow == Flow::kReturn) return flow;
      if (step_) step_->Exec(frame);
    }
    return Flow::kNext;
  }

 private:
  NodePtr initializer_;
  ValuePtr<int> condition_;
  NodePtr step_, body_;
};

class JumpNode final : public Node {
 public:
  explicit JumpNode(Flow flow) : flow_(flow) {}
  Flow Exec(Frame&) override { return flow_; }

 private:
  Flow flow_;
};

class SwitchNode final : public Node {
 public:
  SwitchNode(ValuePtr<std::int64_t> subject, std::vector<SwitchCase> cases, std::size_t other,
             std::vector<PlacedStatement> statements)
      : subject_(std::move(subject)),
        cases_(std::move(cases)),
        other_(other),
        statements_(std::move(statements)) {
    std::ranges::sort(cases_, {}, &SwitchCase::value);
  }
  Flow Exec(Frame& frame) override {
    const std::int64_t subject = subject_->Eval(frame);
    const auto found = std::ranges::lower_bound(cases_, subject, {}, &SwitchCase::value);
    const bool hit = found != cases_.end() && found->value == subject;
    const Flow flow = ExecFrom(statements_, hit ? found->target : other_, frame);
    return flow == Flow::kBreak ? Flow::kNext : flow;
  }

 private:
  ValuePtr<std::int64_t> subject_;
  std::vector<SwitchCase> cases_;
  std::size_t other_;
  std::vector<PlacedStatement> statements_;
};

class TryNode final : public Node {
 public:
  TryNode(NodePtr body, std::uint32_t status_offset, NodePtr handler)
      : body_(std::move(body)), status_offset_(status_offset), handler_(std::move(handler)) {}
  Flow Exec(Frame& frame) override {
    try {
      return body_->Exec(frame);
    } catch (const ScriptError& error) {
      frame.At<int>(status_offset_) = error.status();
    }
    return handler_->Exec(frame);
  }

 private:
  NodePtr body_;
  std::uint32_t status_offset_;
  NodePtr handler_;
};

template <class T>
class ReturnValueNode final : public Node {
 public:
  explicit ReturnValueNode(ValuePtr<T> value) : value_(std::move(value)) {}
  Flow Exec(Frame& frame) override {
    *static_cast<T*>(frame.result) = value_->Eval(frame);
    return Flow::kReturn;
  }

 private:
  ValuePtr<T> value_;
};

template <class T>
class ConditionalNode final : public Expr<ConditionalNode<T>, T> {
 public:
  ConditionalNode(ValuePtr<int> condition, ValuePtr<T> yes, ValuePtr<T> no)
      : condition_(std::move(condition)), yes_(std::move(yes)), no_(std::move(no)) {}
  T Eval(Frame& frame) override {
    return condition_->Eval(frame) ? yes_->Eval(frame) : no_->Eval(frame);
  }

 private:
  ValuePtr<int> condition_;
  ValuePtr<T> yes_, no_;
};

template <class T>
class CommaNode final : public Expr<CommaNode<T>, T> {
 public:
  CommaNode(NodePtr first, ValuePtr<T> second)
      : first_(std::move(first)), second_(std::move(second)) {}
  T Eval(Frame& frame) override {
    first_->Exec(frame);
    return second_->Eval(frame);
  }

 private:
  NodePtr first_;
  ValuePtr<T> second_;
};

}  // namespace

NodePtr MakeBlock(std::vector<PlacedStatement> statements) {
  return std::make_unique<BlockNode>(std::move(statements));
}

NodePtr MakeScope(NodePtr body, std::vector<std::uint32_t> object_slots) {
  if (object_slots.empty()) return body;
  return std::make_unique<ScopeNode>(std::move(body), std::move(object_slots));
}

NodePtr MakeIf(std::vector<std::pair<NodePtr, NodePtr>> branches, NodePtr otherwise) {
  std::vector<std::pair<ValuePtr<int>, NodePtr>> typed;
  for (auto& [condition, body] : branches) {
    typed.emplace_back(As<int>(std::move(condition)), std::move(body));
  }
  return std::make_unique<IfNode>(std::move(typed), std::move(otherwise));
}

NodePtr MakeWhile(NodePtr condition, NodePtr body) {
  return std::make_unique<WhileNode>(As<int>(std::move(condition)), std::move(body));
}

NodePtr MakeDoWhile(NodePtr body, NodePtr condition) {
  return std::make_unique<DoWhileNode>(std::move(body), As<int>(std::move(condition)));
}

NodePtr MakeFor(NodePtr initializer, NodePtr condition, NodePtr step, NodePtr body) {
  ValuePtr<int> truth = condition ? As<int>(std::move(condition)) : nullptr;
  return std::make_unique<ForNode>(std::move(initializer), std::move(truth), std::move(step),
                                   std::move(body));
}

NodePtr MakeJump(Flow flow) { return std::make_unique<JumpNode>(flow); }

NodePtr MakeSwitch(NodePtr subject, std::vector<SwitchCase> cases, std::optional<std::size_t> other,
                   std::vector<PlacedStatement> statements) {
  const std::size_t otherwise = other.value_or(statements.size());
  return std::make_unique<SwitchNode>(As<std::int64_t>(std::move(subject)), std::move(cases),
                                      otherwise, std::move(statements));
}

NodePtr MakeTry(NodePtr body, std::uint32_t status_offset, NodePtr handler) {
  return std::make_unique<TryNode>(std::move(body), status_offset, std::move(handler));
}

NodePtr MakeReturn() { return MakeJump(Flow::kReturn); }

NodePtr MakeReturnValue(Carrier carrier, NodePtr value) {
  return WithCarrier(carrier, [&](auto t) -> NodePtr {
    using T = typename decltype(t)::type;
    return std::make_unique<ReturnValueNode<T>>(As<T>(std::move(value)));
  });
}

NodePtr MakeConditional(Carrier carrier, NodePtr condition, NodePtr yes, NodePtr no) {
  return WithCarrier(carrier, [&](auto t) -> NodePtr {
    using T = typename decltype(t)::type;
    return std::make_unique<ConditionalNode<T>>(As<int>(std::move(condition)),
                                                As<T>(std::move(yes)), As<T>(std::move(no)));
  });
}

NodePtr MakeComma(Carrier carrier, NodePtr first, NodePtr second) {
  return WithCarrier(carrier, [&](auto t) -> NodePtr {
    using T = typename decltype(t)::type;
    return std::make_unique<CommaNode<T>>(std::move(first), As<T>(std::move(second)));
  });
}

}  // namespace tesselc
