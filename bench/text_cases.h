// The timed members of the text classes and of files.
#pragma once

#include "host/library.h"
#include "prepared.h"

namespace vela::bench {

// The library must outlive the cases.
Cases TextCases(const host::Library& library);

}  // namespace vela::bench
