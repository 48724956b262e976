// The members that a curve has beside those of a data set.
#pragma once

#include "vector/dataset_members.h"

namespace vela::curve {

// The Y values, and the X values that belong to them.
struct Bound {
  dataset::Bound y;
  DataBinding& x;
};

// Statuses as those of data sets.
int Attach(const Bound& bound, CTCall* call);
int AttachX(const Bound& bound, CTCall* call);
int Sort(const Bound& bound, CTCall* call);
int SetXBounds(const Bound& bound, CTCall* call);
int ConstructInit(const Bound& bound, CTCall* call);

}  // namespace vela::curve
