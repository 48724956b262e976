#include "host/host_objects.h"

#include "frame/interface/type_words.h"
#include "host/data/worksheet_functions.h"
#include "host/picture/device_context.h"
#include "host/picture/picture_functions.h"

namespace vela::host {
namespace {

// Every function is a member of one of the objects in it.
class HostFunctions final : public TesselCObject {
 public:
  const char* GetTCTypeName() const override { return "host"; }
  const CClassMember* FindMember(const char* name, unsigned name_hash, CTypeBase** owner,
                                 unsigned flags) override {
    const CClassMember* row = pictures_.FindMember(name, name_hash, owner, flags);
    return row ? row : worksheets_.FindMember(name, name_hash, owner, flags);
  }

 private:
  PictureFunctions pictures_;
  WorksheetFunctions worksheets_;
};

}  // namespace

CScriptVelaObject* CreateHostObject(unsigned type_word) {
  return type_word == kTypeDeviceContext ? new DeviceContext : nullptr;
}

CScriptVelaObject* CreateHostFunctions() { return new HostFunctions; }

}  // namespace vela::host
