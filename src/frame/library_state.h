// What the host sets through the factory's control modes: process-wide, until the library unloads.
#pragma once

#include "frame/interface/entry_points.h"

namespace vela {

DebugState& Debug();
inline bool IsDebugMode() { return Debug().mode > 0; }

// Guard elements behind scalar storage: the debug state's second field plus 1, at least 1.
int GuardElements();

// Installs the callback unless one is installed, then reports code 0 through the installed one.
void InstallErrorReport(ErrorReportCallback callback);
// Reports a code through the callback; does nothing without one.
void ReportError(int code, void** arguments);

void SetHostContext(void* context);
// Whether the host-context pointer is set; members that exchange values with the host need it.
bool HasHostContext();

}  // namespace vela
