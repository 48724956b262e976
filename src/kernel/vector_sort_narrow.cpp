// Some AVX-512 processors compress lanes into memory so slowly that the sort takes several times as
// long as with AVX2.
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

}  // namespace vela::kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vela::kernel {

HWY_EXPORT(SortSigned16);
HWY_EXPORT(SortUnsigned16);

void VectorSort(std::int16_t* keys, std::size_t n) { HWY_DYNAMIC_DISPATCH(SortSigned16)(keys, n); }

void VectorSort(std::uint16_t* keys, std::size_t n) {
  HWY_DYNAMIC_DISPATCH(SortUnsigned16)(keys, n);
}

}  // namespace vela::kernel
#endif
