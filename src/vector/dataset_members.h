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

// --- What members of other bound vectors are made of ---

// Ends the handler with 28 for a row of the object other than its only one.
void CheckRow(const Bound& bound, const member::Arguments& args);
// The column: ends the handler with 1 while nothing is attached, -1 when it was removed.
VeData& Data(const Bound& bound, const member::Arguments& args);
// Null when there is no such column. The column argument is a name or a position.
VeData* FindData(member::Arguments& args, unsigned book, unsigned column);
// The column that a layer is a view of; null for none.
VeData* DataOf(const Layer& layer);
// The column that all arguments together name, as Attach has it.
VeData* SourceArgument(member::Arguments& args);
// Attaches to data of the vector's own of the type, with these elements.
void AttachNew(DataBinding& binding, unsigned type_id, const Layer& elements);

}  // namespace vela::dataset
