// The members that a vector has because it is attached to a column of the host.
#pragma once

#include "frame/interface/call.h"
#include "vector/data_binding.h"
#include "vector/vector_base.h"

namespace vela::dataset {

// What such a member works on.
struct Bound {
  TCAllVectorNonTemplBase& vector;
  DataBinding& binding;
};

// Those that need a column end with status 1 while nothing is attached, -1 when the column was
// removed, 28 for a row of the object other than its only one.
int Attach(const Bound& bound, CTCall* call);
int Detach(const Bound& bound, CTCall* call);
int SetText(const Bound& bound, CTCall* call);
int GetText(const Bound& bound, CTCall* call);
int GetStringArray(const Bound& bound, CTCall* call);
int PutStringArray(const Bound& bound, CTCall* call);
int GetMask(const Bound& bound, CTCall* call);
int SetMask(const Bound& bound, CTCall* call);
int GetName(const Bound& bound, CTCall* call);
int Update(const Bound& bound, CTCall* call);
int Create(const Bound& bound, CTCall* call);
int Destroy(const Bound& bound, CTCall* call);
int PushUndo(const Bound& bound, CTCall* call);
int IsValid(const Bound& bound, CTCall* call);
int SetUpperBound(const Bound& bound, CTCall* call);
int SetLowerBound(const Bound& bound, CTCall* call);

}  // namespace vela::dataset
