#pragma once

#include <vector>

#include "tesselc/run/carrier.h"
#include "tesselc/source.h"

namespace tesselc {

// Calls the member SetSize of a container with sizes that are int64s.
NodePtr MakeSetSize(NodePtr object, std::vector<NodePtr> sizes, SourceRange where);

}  // namespace tesselc
