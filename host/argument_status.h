// What a refusal by an argument object means.
#pragma once

#include "frame/interface/status.h"

namespace vela::host {

// A refusal by the object means, to the member, an argument of the wrong type.
constexpr int StatusOfRead(int code) {
  return code == status::kUnsupported ? status::kBadArguments : code;
}

}  // namespace vela::host
