#pragma once

namespace vela::host {

// A value that allocates nothing to be there and is never destroyed: objects with static lifetime
// may use it when the rest of the runtime is gone. For static variables.
template <class T>
union NeverDestroyed {
  NeverDestroyed() : value() {}
  ~NeverDestroyed() {}

  T value;
};

}  // namespace vela::host
