// The executable form of a script: a tree of nodes, each specialised by the static types of what it
// works on, so that running it decides nothing about types.
#pragma once

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace tesselc {

class Run;

// What one call of a function runs on. The variables of the call lie at fixed offsets of `base`;
// a return statement stores its value where `result` points, as the function's result type.
struct Frame {
  std::byte* base;
  Run* run;
  void* result = nullptr;

  template <class T>
  T& At(std::uint32_t offset) const {
    return *reinterpret_cast<T*>(base + offset);
  }
};

// Where control goes after a statement.
enum class Flow : std::uint8_t { kNext, kBreak, kContinue, kReturn };

class Node {
 public:
  Node() = default;
  Node(const Node&) = delete;
  Node& operator=(const Node&) = delete;
  virtual ~Node() = default;

  // Runs a statement. An expression is evaluated for its effects.
  virtual Flow Exec(Frame& frame) = 0;
};
using NodePtr = std::unique_ptr<Node>;

// An expression whose value is a T.
template <class T>
class ValueNode : public Node {
 public:
  virtual T Eval(Frame& frame) = 0;
  Flow Exec(Frame& frame) override {
    static_cast<void>(Eval(frame));
    return Flow::kNext;
  }
};
template <class T>
using ValuePtr = std::unique_ptr<ValueNode<T>>;

// The base of the nodes that are often statements of their own: Exec is the node's Eval, without a
// second virtual call.
template <class Self, class T>
class Expr : public ValueNode<T> {
 public:
  Flow Exec(Frame& frame) final {
    static_cast<void>(static_cast<Self*>(this)->Self::Eval(frame));
    return Flow::kNext;
  }
};

// The compiler knows the static type of every node that it holds.
template <class T>
ValuePtr<T> As(NodePtr node) {
  assert(dynamic_cast<ValueNode<T>*>(node.get()) != nullptr);
  return ValuePtr<T>(static_cast<ValueNode<T>*>(node.release()));
}

}  // namespace tesselc
