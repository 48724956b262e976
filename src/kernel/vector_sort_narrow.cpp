// Some AVX-512 processors compress 32-bit lanes to memory so slowly that the sort takes several
// times as long as with AVX2. The library's 64-bit sort does not use that instruction.
#define HWY_DISABLED_TARGETS (HWY_AVX3 | HWY_AVX3_DL)

#include "kernel/vector_sort.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernel/vector_sort_narrow.cpp"
#include <hwy/foreach_target.h>

#include "kernel/vector_sort-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {

void SortSigned16(std::int16_t* keys, std::size_t n) { SortKeys(keys, n); }
void SortUnsigned16(std::uint16_t* keys, std::size_t n) { SortKeys(keys, n); }
void SortSigned32(std::int32_t* keys, std::size_t n) { SortKeys(keys, n); }
void SortUnsigned32(std::uint32_t* keys, std::size_t n) { SortKeys(keys, n); }

}  // namespace vela::kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vela::kernel {

HWY_EXPORT(SortSigned16);
HWY_EXPORT(SortUnsigned16);
HWY_EXPORT(SortSigned32);
HWY_EXPORT(SortUnsigned32);

void VectorSort(std::int16_t* keys, std::size_t n) { HWY_DYNAMIC_DISPATCH(SortSigned16)(keys, n); }

void VectorSort(std::uint16_t* keys, std::size_t n) {
  HWY_DYNAMIC_DISPATCH(SortUnsigned16)(keys, n);
}

void VectorSort(std::int32_t* keys, std::size_t n) { HWY_DYNAMIC_DISPATCH(SortSigned32)(keys, n); }

void VectorSort(std::uint32_t* keys, std::size_t n) {
  HWY_DYNAMIC_DISPATCH(SortUnsigned32)(keys, n);
}

}  // namespace vela::kernel
#endif
