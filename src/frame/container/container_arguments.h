// Containers among the arguments of a call.
#pragma once

#include "frame/container/layer.h"
#include "frame/interface/type_words.h"
#include "frame/member/arguments.h"

namespace vela {

// The layer that a vector argument addresses: ends the handler with 3 for anything else, 28 for a
// layer that it does not have. NULL is a Layer of none, or status 3 where it is required.
Layer OptionalVector(member::Arguments& args, unsigned arg);
Layer RequiredVector(member::Arguments& args, unsigned arg);

// The layer that a matrix argument addresses: ends the handler with 2 for NULL, 3 for anything
// else, 28 for a layer that it does not have.
Layer RequiredMatrix(member::Arguments& args, unsigned arg);

// A vector or a matrix: ends the handler with 3 for anything else, NULL included.
Layer RequiredContainer(member::Arguments& args, unsigned arg);

// Whether the argument is a vector with this element type, one row of it included.
inline bool IsVectorOf(const member::Arguments& args, unsigned arg, unsigned type_id) {
  const unsigned word = args.TypeId(arg);
  return (word & kFlagAnyVector) != 0 && (word & kTypeIdMask) == type_id;
}

// The argument as an element of the type. A plain number becomes a complex with that real part, and
// a point with that x where the frame converts it; 64-bit integers keep all their digits.
AnyElement ElementArgument(member::Arguments& args, unsigned arg, unsigned type_id);

// Ends the handler with 3 when the argument that it writes to is the layer that it works on.
inline void RefuseSameLayer(const Layer& argument, const Layer& layer) {
  if (argument == layer) member::Fail(status::kBadArguments);
}

// Stores a numeric total of elements of the type in a by-reference argument, by the reference's
// type; status 13702 for a reference narrower than the elements.
void SetTotal(member::Arguments& args, unsigned arg, unsigned type_id, const OneTCcomplex& total);
void RefuseNarrowReference(const member::Arguments& args, unsigned arg, unsigned type_id);

// Makes the layer's elements the call's result, as MakeArray; no elements give an empty variant.
void ReturnArray(member::Arguments& args, const Layer& layer, const ArrayLayout& layout);

// Stores a position in a by-reference argument unless that is NULL; -1 is all bits set.
void SetPosition(member::Arguments& args, unsigned arg, std::ptrdiff_t position);

}  // namespace vela
