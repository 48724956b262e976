#pragma once

#include <memory>
#include <vector>

#include "tesselc/run/carrier.h"
#include "tesselc/run/node.h"

namespace tesselc {

// The nodes of a chain of binary operators (a + b + c ...) nest on the left, one level for each
// link. A long chain rests now and then, so that running it takes a bounded depth of native stack:
// what is computed so far becomes a stage of its own, whose value the next link picks up.
class LongChain {
 public:
  LongChain();
  ~LongChain();
  LongChain(const LongChain&) = delete;
  LongChain& operator=(const LongChain&) = delete;

  // Takes the chain so far and returns the node that stands for its value. What is built on that
  // node must evaluate it before anything else.
  NodePtr Rest(Carrier carrier, NodePtr so_far);
  // The whole chain, given its last part.
  NodePtr Finish(Carrier carrier, NodePtr last);

  class Stage;

 private:
  std::vector<std::unique_ptr<Stage>> stages_;
};

}  // namespace tesselc
