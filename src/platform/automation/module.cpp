#include "platform/module.h"

#if !defined(_WIN32)

#include <atomic>
#include <cstring>
#include <strings.h>

#include "platform/automation.h"

namespace {

std::atomic<int> initialisations = 0;

// Only its address matters.
HMODULE Module() {
  static char module;
  return reinterpret_cast<HMODULE>(&module);
}

template <typename Function>
FARPROC Address(Function* function) {
  return reinterpret_cast<FARPROC>(reinterpret_cast<void (*)()>(function));
}

const struct {
  const char* name;
  FARPROC function;
} kFunctions[] = {{"VarAdd", Address(VarAdd)},
                  {"VarSub", Address(VarSub)},
                  {"VarMul", Address(VarMul)},
                  {"VarDiv", Address(VarDiv)},
                  {"VarCmp", Address(VarCmp)}};

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

FARPROC GetProcAddress(HMODULE module, const char* name) {
  if (module != Module() || name == nullptr) return nullptr;
  for (const auto& known : kFunctions) {
    if (std::strcmp(known.name, name) == 0) return known.function;
  }
  return nullptr;
}

#endif
