#if !defined(_WIN32)

#include <cstdlib>
#include <limits>
#include <string>

#include "platform/automation.h"

namespace {

// The length lies in the second half, so that the text itself is aligned like a pointer.
struct Prefix {
  std::uint32_t padding;
  std::uint32_t bytes;
};

Prefix* PrefixOf(BSTR text) { return reinterpret_cast<Prefix*>(text) - 1; }

BSTR Allocate(const void* bytes, std::uint64_t size) {
  // A whole unit of zeros ends the text, at an odd size too.
  const std::uint64_t total = sizeof(Prefix) + size + 2 * sizeof(OLECHAR);
  if (total > std::numeric_limits<std::uint32_t>::max()) return nullptr;
  auto* prefix = static_cast<Prefix*>(std::malloc(total));
  if (prefix == nullptr) return nullptr;
  *prefix = {0, static_cast<std::uint32_t>(size)};
  char* text = reinterpret_cast<char*>(prefix + 1);
  if (bytes != nullptr) std::memcpy(text, bytes, size);
  std::memset(text + size, 0, 2 * sizeof(OLECHAR));
  return reinterpret_cast<BSTR>(text);
}

}  // namespace

BSTR SysAllocString(const OLECHAR* text) {
  if (text == nullptr) return nullptr;
  return Allocate(text, std::char_traits<OLECHAR>::length(text) * sizeof(OLECHAR));
}

BSTR SysAllocStringLen(const OLECHAR* text, UINT length) {
  return Allocate(text, std::uint64_t{length} * sizeof(OLECHAR));
}

BSTR SysAllocStringByteLen(const char* bytes, UINT size) { return Allocate(bytes, size); }

void SysFreeString(BSTR text) {
  if (text != nullptr) std::free(PrefixOf(text));
}

UINT SysStringByteLen(BSTR text) { return text == nullptr ? 0 : PrefixOf(text)->bytes; }

UINT SysStringLen(BSTR text) { return SysStringByteLen(text) / sizeof(OLECHAR); }

#endif
