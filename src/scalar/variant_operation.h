// The operators on automation values.
#pragma once

#include "platform/automation.h"

namespace vela {

// target = source for the code of an assignment; target = target <code> source for those of
// addition, subtraction, multiplication and division, by the automation functions of that name.
// Status 1 for another code, 287 where the function is missing or fails; the target is then
// unchanged. source may be target. Throws AutomationError where a copy fails.
int OperateOnVariant(VARIANT& target, const VARIANT& source, unsigned code);

// Sets or clears operation::kCompareTrue in flags: whether left <op> right holds. Values are equal
// when they are of one type and equal in it, and NULL equals NULL; order is that of VarCmp. Status
// 1 for another code, 287 where the function is missing or fails, with flags unchanged.
int CompareVariants(const VARIANT& left, const VARIANT& right, unsigned op, unsigned& flags);

}  // namespace vela
