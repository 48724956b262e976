// The built-in functions on the worksheets of the host.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tesselc/run/node.h"

namespace tesselc {

// What a function is called with, in the order of its parameters of either kind.
struct WorksheetArguments {
  std::vector<std::string> texts;
  std::vector<int> numbers;
};

struct WorksheetFunction {
  std::string_view name;
  std::string_view parameters;  // a letter each: t for a text, i for an int
  std::size_t least;            // arguments
  int (*call)(const WorksheetArguments& arguments);
};

// Null when there is none of that name.
const WorksheetFunction* FindWorksheetFunction(std::string_view name);
// The value is an int. The arguments are texts and ints, as the parameters say.
NodePtr MakeWorksheetCall(const WorksheetFunction& function, std::vector<NodePtr> arguments);

}  // namespace tesselc
