// The script objects that the host itself has, beside those of the support library.
#pragma once

#include "frame/interface/export.h"

class CScriptVelaObject;

namespace vela::host {

// A new object without references; null when the host has none of the type. DeviceContext so far.
VELAHOST_API CScriptVelaObject* CreateHostObject(unsigned type_word);

// A new object without references, whose members are the host's functions for scripts.
VELAHOST_API CScriptVelaObject* CreateHostFunctions();

}  // namespace vela::host
