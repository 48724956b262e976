// The automation functions that work on values, looked up in the process.
#pragma once

#include "platform/automation.h"

namespace vela {

enum class AutomationEntry { kAdd, kSubtract, kMultiply, kDivide, kCompare };

using ArithmeticEntry = decltype(&VarAdd);
using CompareEntry = HRESULT(STDMETHODCALLTYPE*)(VARIANT*, VARIANT*, LCID, ULONG);

// VarAdd, VarSub, VarMul, VarDiv for the first four, VarCmp: null where the automation library is
// not loaded in the process (it is never loaded from here) or lacks the function. Once a lookup has
// failed, every later one fails without another try, for as long as this library is loaded.
ArithmeticEntry FindArithmetic(AutomationEntry entry);
CompareEntry FindCompare();

}  // namespace vela
