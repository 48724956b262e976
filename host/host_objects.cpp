#include "host/host_objects.h"

#include "frame/interface/type_words.h"
#include "host/picture/device_context.h"
#include "host/picture/picture_functions.h"

namespace vela::host {

CScriptVelaObject* CreateHostObject(unsigned type_word) {
  return type_word == kTypeDeviceContext ? new DeviceContext : nullptr;
}

CScriptVelaObject* CreateHostFunctions() { return new PictureFunctions; }

}  // namespace vela::host
