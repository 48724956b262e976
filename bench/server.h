// The loop of a timing program.
#pragma once

#include "prepared.h"

namespace vela::bench {

// Reads commands from standard input to its end, and answers each with one line:
//   data NAME FILE   loads a file of bytes
//   value NAME TEXT  the rest of the line as data
//   drop             forgets all data
//   prepare CASE     makes what a case needs from the data
//   run CALLS        times that many calls one by one; the seconds of each
//   result FILE      writes what a call produces
//   cases            lists the cases
//   target           the instruction set that kernels run with
// An answer that starts with "error" says what went wrong.
void Serve(const Cases& cases);

}  // namespace vela::bench
