// Ctrl-C and requests to terminate while a script runs.
#pragma once

#include <atomic>
#include <optional>

#include "tesselc/source.h"

namespace tesselc {

class Output;

namespace detail {
// The signal that asks the script to stop, 0 for none.
extern std::atomic<int> requested_signal;
static_assert(std::atomic<int>::is_always_lock_free);
}  // namespace detail

// Ends the script, past every catch. Whoever runs statements adds the place.
struct Interrupted {
  int exit_code;  // 130 for Ctrl-C, 143 for a request to terminate
  std::optional<SourceRange> where;
};

[[noreturn]] void ThrowInterrupted();

// Every loop and call asks.
inline void CheckInterrupt() {
  if (detail::requested_signal.load(std::memory_order_relaxed) != 0) [[unlikely]]
    ThrowInterrupted();
}

// While this lives, Ctrl-C and a request to terminate are left to CheckInterrupt. A script that
// does not ask within two seconds (it may be inside a long computation), or is interrupted again,
// ends at once; what it has printed is written even then.
class InterruptScope {
 public:
  explicit InterruptScope(Output& output);
  ~InterruptScope();
  InterruptScope(const InterruptScope&) = delete;
  InterruptScope& operator=(const InterruptScope&) = delete;
};

}  // namespace tesselc
