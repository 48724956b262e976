// Apart from what fills the builder, for use without script objects.
#include "frame/interface/call.h"

void CTCExternalCallBuilder::AddNext(std::int64_t value, int width) {
  slots_.push_back({SlotKind::kInteger, width, {.integer = value}});
}

void CTCExternalCallBuilder::AddNext(std::uint64_t value, int width) {
  slots_.push_back({SlotKind::kUnsigned, width, {.integer = static_cast<std::int64_t>(value)}});
}

void CTCExternalCallBuilder::AddNext(double value, int width) {
  slots_.push_back({SlotKind::kDouble, width, {.real = value}});
}

void CTCExternalCallBuilder::AddNext(const CStringUTF8& text) {
  // The text's own buffer, not the handle, is what the slot points at: it stays put when texts_
  // grows.
  texts_.push_back(text);
  slots_.push_back({SlotKind::kText, sizeof(char*), {.text = texts_.back().c_str()}});
}

void CTCExternalCallBuilder::AddNext(void* pointer) {
  slots_.push_back({SlotKind::kPointer, sizeof(void*), {.pointer = pointer}});
}
