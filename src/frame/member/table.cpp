#include "frame/member/table.h"

namespace vela::member {

CClassMember Unbuilt(const char* name) { return {name, &CTypeBase::NotSupported}; }
CClassMember UnbuiltProperty(const char* name) {
  return {name, &CTypeBase::NotSupported, &CTypeBase::NotSupported};
}
bool IsUnbuilt(const CClassMember& row) { return row.GetHandler() == &CTypeBase::NotSupported; }

}  // namespace vela::member
