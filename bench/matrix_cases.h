// The timed members of matrices.
#pragma once

#include "host/library.h"
#include "prepared.h"

namespace vela::bench {

// One case, "matrix_member": the member is data too, in the form
//   call     its name and arguments, each a kind and what goes with it: int 3, double 0.5,
//            matrix NAME, doubles NAME (a matrix of doubles whatever "type" is), result (an empty
//            matrix); "operator" and its code stand for the name of an operator
//   outcome  what is compared with the peers: self, result, number (which it returns), none; a call
//            whose outcome is self starts from the data each time
//   type     of the elements
// The matrix "x" that the member belongs to and the others have their elements in the data of that
// name, and rows and columns in NAME_shape. The library must outlive the case.
Cases MatrixCases(const host::Library& library);

}  // namespace vela::bench
