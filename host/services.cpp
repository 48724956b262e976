// Switches and small services of the host that keep no more than a flag.
#include <atomic>
#include <cmath>
#include <cstring>

#include "frame/interface/host_services.h"
#include "frame/interface/script_object.h"
#include "frame/interface/type_base.h"
#include "host/number_text.h"

namespace {

std::atomic<int> char_index_mode = 0;
std::atomic<int> parallel_enabled = 0;

}  // namespace

int VELAObj::IsValid() { return 1; }
int VELAObj::OnLHMessage(unsigned, void*) { return 0; }

int VELAObj::RealToString(double value, char* buffer, const char* unit) {
  if (!buffer) return 0;
  char* end = vela::host::WriteReal(value, buffer);
  if (unit) {
    const auto room = static_cast<std::size_t>(buffer + kRealTextSize - 1 - end);
    const std::size_t length = strnlen(unit, room);
    std::memcpy(end, unit, length);
    end += length;
  }
  *end = '\0';
  return static_cast<int>(end - buffer);
}

int VELAObj::FloatToString(float value, char* buffer) {
  constexpr int kFloatDigits = 7;
  if (!buffer) return 0;
  char* const end = vela::host::WriteGeneral(value, kFloatDigits, buffer);
  *end = '\0';
  return static_cast<int>(end - buffer);
}

double VELAObj::ParleyStr2double(const char* text) {
  return vela::host::ReadNumber(text ? text : "");
}

// A console host shows no cursor, keeps no views of objects and wraps none.
void VELAObj::BusyCursor(int) {}
void VELAObj::InvalidateObj(void*) {}
int VELAObj::IsObjWrapped(void*) { return 0; }

// Only the address is looked at: the object may be gone.
int VELAObj::IsValid(const VELAObj* object) {
  return object && CScriptVelaObject::IsInMap(static_cast<const CScriptVelaObject*>(object));
}

int VELAObj::IsCharIndexMode() { return char_index_mode.load(std::memory_order_relaxed); }
void VELAObj::SetCharIndexMode(int on) { char_index_mode = on != 0; }
int VELAObj::IsParallelEnabled() { return parallel_enabled.load(std::memory_order_relaxed); }
void VELAObj::SetParallelEnabled(int on) { parallel_enabled = on != 0; }

int CheckedPower(double x, double y, double& result) {
  const double value = std::pow(x, y);
  if (!std::isfinite(value)) return 0;
  result = value;
  return 1;
}
