#include "tesselc/run/script_error.h"

#include "frame/interface/status.h"

namespace tesselc {

void ThrowIndexError(const SourceRange& where, std::int64_t index, std::int64_t count) {
  const std::string text = "index " + std::to_string(index);
  throw ScriptError(where, status::kOutOfRange,
                    count > 0 ? text + " is outside 0 .. " + std::to_string(count - 1)
                              : text + " of something that is empty");
}

}  // namespace tesselc
