// Statements that decide what runs next, and expressions that choose.
#pragma once

#include <optional>

#include "tesselc/run/carrier.h"
#include "tesselc/run/node.h"
#include "tesselc/run/variables.h"
#include "tesselc/source.h"

namespace tesselc {

struct PlacedStatement {
  NodePtr node;
  SourceRange range;  // named when memory runs out in the statement
};

NodePtr MakeBlock(std::vector<PlacedStatement> statements);
// Releases the objects in the frame's slots, newest first, however the body ends. The slots are
// empty at its start.
NodePtr MakeScope(NodePtr body, std::vector<std::uint32_t> object_slots);

// Conditions are truths.
NodePtr MakeIf(std::vector<std::pair<NodePtr, NodePtr>> branches, NodePtr otherwise);
NodePtr MakeWhile(NodePtr condition, NodePtr body);
NodePtr MakeDoWhile(NodePtr body, NodePtr condition);
// Any part but the body may be null.
NodePtr MakeFor(NodePtr initializer, NodePtr condition, NodePtr step, NodePtr body);
NodePtr MakeJump(Flow flow);

// One case of a switch: its value, and the statement of the sections' common list that it jumps to.
struct SwitchCase {
  std::int64_t value;
  std::size_t target;
};
// The subject is an int64.
NodePtr MakeSwitch(NodePtr subject, std::vector<SwitchCase> cases, std::optional<std::size_t> other,
                   std::vector<PlacedStatement> statements);

// The status of an error caught in the body goes to an int of the frame.
NodePtr MakeTry(NodePtr body, std::uint32_t status_offset, NodePtr handler);

// Returns without a value.
NodePtr MakeReturn();

// Of expressions of one carrier.
NodePtr MakeReturnValue(Carrier carrier, NodePtr value);
NodePtr MakeConditional(Carrier carrier, NodePtr condition, NodePtr yes, NodePtr no);
// The value is that of the second; the first is evaluated for its effects.
NodePtr MakeComma(Carrier carrier, NodePtr first, NodePtr second);

}  // namespace tesselc
