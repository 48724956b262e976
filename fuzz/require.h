// What the fuzz targets check with.
#pragma once

#include <cstdio>
#include <cstdlib>

namespace vela::fuzz {

// Ends the run as a finding.
inline void RequireAt(bool holds, const char* what, int line) {
  if (holds) return;
  std::fprintf(stderr, "line %d: %s does not hold\n", line, what);
  std::abort();
}

}  // namespace vela::fuzz

#define REQUIRE(condition) ::vela::fuzz::RequireAt((condition), #condition, __LINE__)
