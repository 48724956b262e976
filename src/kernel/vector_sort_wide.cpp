#include "kernel/vector_sort.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernel/vector_sort_wide.cpp"
#include <hwy/foreach_target.h>

#include "kernel/vector_sort-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {

void SortSigned64(std::int64_t* keys, std::size_t n) { SortKeys(keys, n); }
void SortUnsigned64(std::uint64_t* keys, std::size_t n) { SortKeys(keys, n); }

}  // namespace vela::kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

#ifdef HWY_COMPILE_ONLY_STATIC
#include <bit>
#include <cstring>

// The seed for choosing pivots, which comes from Highway's compiled library where there is one.
void hwy::Sorter::Fill24Bytes(const void* heap, size_t num, void* bytes) {
  const std::uint64_t seed[3] = {std::bit_cast<std::uintptr_t>(heap), num, 0x9E3779B97F4A7C15};
  std::memcpy(bytes, seed, sizeof(seed));
}
#endif

namespace vela::kernel {

HWY_EXPORT(SortSigned64);
HWY_EXPORT(SortUnsigned64);

void VectorSort(std::int64_t* keys, std::size_t n) { HWY_DYNAMIC_DISPATCH(SortSigned64)(keys, n); }

void VectorSort(std::uint64_t* keys, std::size_t n) {
  HWY_DYNAMIC_DISPATCH(SortUnsigned64)(keys, n);
}

}  // namespace vela::kernel
#endif
