// The functions that the support library exports.
#pragma once

#include <cstdint>

#include "frame/interface/export.h"
#include "platform/types.h"

// The record that the error-report callback receives; further fields are the host's.
struct ErrorReport {
  int code;
};
using ErrorReportCallback = void (*)(ErrorReport* report, void** arguments);

// Modes of VELA_CRT_OBJ; any other mode creates an object.
namespace factory_mode {
inline constexpr unsigned kCreate = 0;
inline constexpr unsigned kSetCallback = 1;
inline constexpr unsigned kSetDebugMode = 4;
inline constexpr unsigned kSetErrorReport = 5;
inline constexpr unsigned kSetHostContext = 7;
}  // namespace factory_mode

// The debug state: GetDebugModePtr returns the address of its first field.
struct DebugState {
  int mode;         // above 0: new numeric storage is filled with 0xCC, lent buffers are guarded
  int extra_guard;  // guard elements behind scalar storage, less one
};

class CScriptVelaObject;
struct MSOINDICES;
struct VectorSourceDataRangeHolder;

// Where a multi-dimensional array keeps its numeric object.
struct MDObjectRecord {
  CScriptVelaObject* object;
};

extern "C" {
// Creates the object of a type word (see type_words.h) and returns it as a CScriptVelaObject*, or
// 0 when the word names none or memory runs out. args, when given, is one pointer: to the call
// frame (CTCall) whose argument 0 initialises the object; n is the number of script array elements
// (rows, layers), or the number of bits of a bit field. Modes 1, 4, 5 and 7 configure the library
// and return 0.
VELA_ENTRY std::uint64_t VELA_CRT_OBJ(std::uint64_t type_word, void** args, unsigned n,
                                      unsigned mode);
// With a type, creates a multi-dimensional numeric object (0: not available). With type 0, destroys
// the record's object and clears it: 0, or 1 when the record held none.
VELA_ENTRY std::uint64_t CreateMDNumericObjectPtr(unsigned type, MDObjectRecord* record);
// Address of DebugState::mode.
VELA_ENTRY int* GetDebugModePtr();
// x to the power y; the missing value when either is missing or the power cannot be computed.
VELA_ENTRY double safe_pow(double x, double y);
// GetMinMax of the vector's addressed row without a call frame; null outputs are skipped. The
// number of values that are not missing, or -1 when the object or row is not a vector's.
VELA_ENTRY int TCAllVectorsBase_GetMinMax(CScriptVelaObject* vector, const MSOINDICES* at,
                                          double* min, double* max, unsigned* min_index,
                                          unsigned* max_index);
// 1 when the holder's source still has its range; otherwise deletes the holder, clears the pointer
// and returns 0.
VELA_ENTRY int VectorSourceDataRangeHolder_CheckRemoveValidRangePtr(
    VectorSourceDataRangeHolder** holder);
}
using CreateObjectFunction = decltype(&VELA_CRT_OBJ);
