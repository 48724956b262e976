// The random stream of the members that draw values.
#pragma once

#include "kernel/random.h"

namespace vela {

// One stream for the process: the seeded members restart it, the others go on from where it is, so
// that a script that seeds once is reproducible. It starts from seed 0.
kernel::RandomSource& RandomStream();

}  // namespace vela
