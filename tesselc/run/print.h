// The built-in functions that write.
#pragma once

#include <vector>

#include "tesselc/run/carrier.h"
#include "tesselc/source.h"

namespace tesselc {

struct PrintArgument {
  Carrier carrier;
  NodePtr value;
};

// print(a, b, ...)
NodePtr MakePrint(std::vector<PrintArgument> arguments, SourceRange where);
// The value of an expression at a prompt, as print shows it, cut to a screenful.
NodePtr MakeEcho(PrintArgument value, SourceRange where);
// printf(format, ...): objects among the arguments are strings, as texts. The value is an int, the
// number of bytes written.
NodePtr MakePrintf(NodePtr format, std::vector<PrintArgument> arguments, SourceRange where);

}  // namespace tesselc
