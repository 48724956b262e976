// What the runtime knows about the built-in types by their ids.
#pragma once

namespace vela::host {

// Name as in a declaration ("unsigned char"); "object" for an id without one.
const char* TypeName(unsigned type_id);
// Name of a whole type word: "vector" or "matrix" for a container, else the type's name.
const char* TypeWordName(unsigned type_word);
bool IsIntegralType(unsigned type_id);
// Whether values of the type are plain bytes: integers, floating-point numbers, complex, points.
bool IsPlainType(unsigned type_id);
// Whether the type word says vector or matrix of any kind.
bool IsContainerWord(unsigned type_word);

}  // namespace vela::host
