#include "frame/library_state.h"

#include <algorithm>

#include "frame/interface/status.h"

namespace vela {
namespace {

DebugState debug_state{};
ErrorReportCallback error_report = nullptr;
void* host_context = nullptr;

}  // namespace

DebugState& Debug() { return debug_state; }

int GuardElements() {
  // In 64 bits: the host may have written any int.
  const long long guard = static_cast<long long>(debug_state.extra_guard) + 1;
  return static_cast<int>(std::clamp<long long>(guard, 1, 1 << 20));
}

void InstallErrorReport(ErrorReportCallback callback) {
  if (error_report == nullptr) error_report = callback;
  ReportError(status::kReportClear, reinterpret_cast<void**>(callback));
}

void ReportError(int code, void** arguments) {
  if (error_report == nullptr) return;
  ErrorReport report{code};
  error_report(&report, arguments);
}

void SetHostContext(void* context) { host_context = context; }
bool HasHostContext() { return host_context != nullptr; }

}  // namespace vela
