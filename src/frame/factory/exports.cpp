// The functions that the library exports.
#include "frame/factory/application.h"
#include "frame/factory/create.h"
#include "frame/interface/call.h"
#include "frame/interface/entry_points.h"
#include "frame/interface/host_services.h"
#include "frame/interface/missing_value.h"
#include "frame/library_state.h"
#include "kernel/min_max.h"
#include "vector/source_range.h"
#include "vector/vector_base.h"

namespace {

void Configure(std::uint64_t value, void** args, unsigned n, unsigned mode) {
  switch (mode) {
    case factory_mode::kSetCallback:
      VELAObj::SetCallback(reinterpret_cast<HWND>(value), reinterpret_cast<HostCallback>(args));
      break;
    case factory_mode::kSetDebugMode:
      vela::Debug().mode = static_cast<int>(n);
      break;
    case factory_mode::kSetErrorReport:
      vela::InstallErrorReport(reinterpret_cast<ErrorReportCallback>(args));
      break;
    default:
      vela::SetHostContext(args);
      break;
  }
}

bool IsControlMode(unsigned mode) {
  return mode == factory_mode::kSetCallback || mode == factory_mode::kSetDebugMode ||
         mode == factory_mode::kSetErrorReport || mode == factory_mode::kSetHostContext;
}

}  // namespace

extern "C" {

std::uint64_t VELA_CRT_OBJ(std::uint64_t type_word, void** args, unsigned n, unsigned mode) {
  if (IsControlMode(mode)) {
    Configure(type_word, args, n, mode);
    return 0;
  }
  const vela::CreationRequest request{static_cast<unsigned>(type_word), args, n};
  if (request.TypeId() == kTypeNone) return 0;
  vela::ReportError(status::kReportClear, args);
  if (request.TypeId() < kTypeCharAlias || request.TypeId() > kLastTypeId) return 0;
  if (!vela::StartApplication()) return 0;
  try {
    const bool is_matrix = request.Has(kFlagAnyMatrix) || type_word == kTypeMatrixBase;
    CScriptVelaObject* object =
        is_matrix ? vela::CreateMatrix(request) : vela::CreateObject(request);
    return reinterpret_cast<std::uint64_t>(object);
  } catch (...) {
    return 0;
  }
}

std::uint64_t CreateMDNumericObjectPtr(unsigned type, MDObjectRecord* record) {
  if (type != 0) return 0;
  if (record == nullptr || record->object == nullptr) return 1;
  delete record->object;
  record->object = nullptr;
  return 0;
}

int* GetDebugModePtr() { return &vela::Debug().mode; }

double safe_pow(double x, double y) {
  if (x == kMissingValue || y == kMissingValue) return kMissingValue;
  double result = 0;
  return CheckedPower(x, y, result) != 0 ? result : kMissingValue;
}

int TCAllVectorsBase_GetMinMax(CScriptVelaObject* object, const MSOINDICES* at, double* min,
                               double* max, unsigned* min_index, unsigned* max_index) {
  auto* vector = dynamic_cast<TCAllVectorNonTemplBase*>(object);
  if (vector == nullptr) return -1;
  const vela::Layer row{vector, vector->GetVecArrayIndex(at)};
  if (row.number < 0 || row.number >= vector->LayerCount()) return -1;
  try {
    const vela::kernel::MinMaxResult result = vela::WithElements(
        vela::LayerElements(row).Span(),
        []<vela::SimpleElement T>(std::span<T> x) { return vela::kernel::MinMax<T>(x); });
    if (min != nullptr) *min = result.min;
    if (max != nullptr) *max = result.max;
    if (min_index != nullptr) *min_index = static_cast<unsigned>(result.min_index);
    if (max_index != nullptr) *max_index = static_cast<unsigned>(result.max_index);
    return static_cast<int>(result.count);
  } catch (...) {
    return -1;
  }
}

int VectorSourceDataRangeHolder_CheckRemoveValidRangePtr(VectorSourceDataRangeHolder** holder) {
  if (holder == nullptr || *holder == nullptr) return 0;
  if ((*holder)->IsValid()) return 1;
  delete *holder;
  *holder = nullptr;
  return 0;
}

}  // extern "C"
