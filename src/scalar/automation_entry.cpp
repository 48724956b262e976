#include "scalar/automation_entry.h"

#include <array>
#include <atomic>

#include "platform/module.h"

namespace vela {
namespace {

constexpr const char* kNames[] = {"VarAdd", "VarSub", "VarMul", "VarDiv", "VarCmp"};

std::array<std::atomic<FARPROC>, std::size(kNames)> entries;
std::atomic<bool> lookup_failed;

FARPROC Find(AutomationEntry entry) {
  if (lookup_failed) return nullptr;
  const auto index = static_cast<std::size_t>(entry);
  if (const FARPROC known = entries[index]) return known;
  const HMODULE module = GetModuleHandleA("oleaut32.dll");
  const FARPROC found = module != nullptr ? GetProcAddress(module, kNames[index]) : nullptr;
  if (found == nullptr) {
    lookup_failed = true;
  } else {
    entries[index] = found;
  }
  return found;
}

// Through a plain function pointer, as a cast between the two types is warned of.
template <class Function>
Function Cast(FARPROC function) {
  return reinterpret_cast<Function>(reinterpret_cast<void (*)()>(function));
}

}  // namespace

ArithmeticEntry FindArithmetic(AutomationEntry entry) { return Cast<ArithmeticEntry>(Find(entry)); }

CompareEntry FindCompare() { return Cast<CompareEntry>(Find(AutomationEntry::kCompare)); }

}  // namespace vela
