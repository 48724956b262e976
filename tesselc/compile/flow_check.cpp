#include "tesselc/compile/flow_check.h"

#include <algorithm>

namespace tesselc {
namespace {

bool CanReachEnd(const std::vector<StatementPtr>& statements) {
  return std::ranges::all_of(statements, [](const auto& s) { return CanReachEnd(*s); });
}

bool HasBreak(const Statement& statement);
bool HasBreak(const std::vector<StatementPtr>& statements) {
  return std::ranges::any_of(statements, [](const auto& s) { return HasBreak(*s); });
}

// One that belongs to the loop or switch around the statement.
struct BreakFinder {
  bool operator()(const Break&) const { return true; }
  bool operator()(const Block& block) const { return HasBreak(block.statements); }
  bool operator()(const If& statement) const {
    return std::ranges::any_of(statement.branches,
                               [](const If::Branch& branch) { return HasBreak(*branch.body); }) ||
           (statement.otherwise && HasBreak(*statement.otherwise));
  }
  bool operator()(const Try& statement) const {
    return HasBreak(*statement.body) || HasBreak(*statement.handler);
  }
  template <class Other>
  bool operator()(const Other&) const {
    return false;
  }
};

bool HasBreak(const Statement& statement) { return std::visit(BreakFinder(), statement.node); }

bool IsAlwaysTrue(const ExpressionPtr& condition) {
  if (!condition) return true;
  const auto* literal = std::get_if<IntLiteral>(&condition->node);
  return literal != nullptr && literal->value != 0;
}

struct EndFinder {
  bool operator()(const Return&) const { return false; }
  // What comes behind cannot be reached, and the loop or switch has its end elsewhere.
  bool operator()(const Break&) const { return false; }
  bool operator()(const Continue&) const { return false; }
  bool operator()(const ExpressionStatement& statement) const {
    const auto* call = std::get_if<Call>(&statement.expression->node);
    return call == nullptr || call->function.text != "exit";
  }
  bool operator()(const Block& block) const { return CanReachEnd(block.statements); }
  bool operator()(const If& statement) const {
    return !statement.otherwise || CanReachEnd(*statement.otherwise) ||
           std::ranges::any_of(statement.branches,
                               [](const If::Branch& branch) { return CanReachEnd(*branch.body); });
  }
  bool operator()(const While& loop) const {
    return !IsAlwaysTrue(loop.condition) || HasBreak(*loop.body);
  }
  bool operator()(const DoWhile& loop) const {
    return !IsAlwaysTrue(loop.condition) || HasBreak(*loop.body);
  }
  bool operator()(const For& loop) const {
    return !IsAlwaysTrue(loop.condition) || HasBreak(*loop.body);
  }
  bool operator()(const Switch& statement) const {
    bool has_default = false;
    for (const Switch::Section& section : statement.sections) {
      has_default |= std::ranges::any_of(section.labels,
                                         [](const auto& label) { return label.value == nullptr; });
      if (HasBreak(section.statements)) return true;
    }
    return !has_default || CanReachEnd(statement.sections.back().statements);
  }
  bool operator()(const Try& statement) const {
    return CanReachEnd(*statement.body) || CanReachEnd(*statement.handler);
  }
  template <class Other>
  bool operator()(const Other&) const {
    return true;
  }
};

}  // namespace

bool CanReachEnd(const Statement& statement) { return std::visit(EndFinder(), statement.node); }

}  // namespace tesselc
