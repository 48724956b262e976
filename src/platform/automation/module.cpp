#include "platform/module.h"

#if !defined(_WIN32)

#include <atomic>
#include <strings.h>

#include "platform/automation.h"

namespace {

std::atomic<int> initialisations = 0;

// Only its address matters.
HMODULE Module() {
  static char module;
  return reinterpret_cast<HMODULE>(&module);
}

}  // namespace

HRESULT OleInitialize(PVOID reserved) {
  if (reserved != nullptr) return E_INVALIDARG;
  return initialisations++ == 0 ? S_OK : S_FALSE;
}

void OleUninitialize() {
  int count = initialisations;
  while (count > 0 && !initialisations.compare_exchange_weak(count, count - 1)) {
  }
}

HMODULE GetModuleHandleA(const char* name) {
  const bool known = name != nullptr && strcasecmp(name, "oleaut32.dll") == 0;
  return known && initialisations > 0 ? Module() : nullptr;
}

FARPROC GetProcAddress(HMODULE, const char*) { return nullptr; }

#endif
