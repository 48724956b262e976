#include "kernel/abs.h"

#include <limits>

#include "kernel/dispatch.h"
#include "kernel/missing.h"

#ifndef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernel/abs.cpp"
#endif
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "kernel/elementwise-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

template <class D, class V>
HWY_INLINE V AbsOf(D d, V v) {
  using T = hn::TFromD<D>;
  if constexpr (std::floating_point<T>) {
    auto negative = hn::Lt(v, hn::Zero(d));
    if constexpr (std::same_as<T, double>) {
      negative = hn::And(negative, hn::Ne(v, hn::Set(d, kMissing)));
    }
    return hn::Xor(v, hn::IfThenElseZero(negative, hn::SignBit(d)));
  } else {
    return hn::Abs(hn::Max(v, hn::Set(d, std::numeric_limits<T>::min() + 1)));
  }
}

template <class T>
void AbsLoop(T* x, std::size_t count) {
  auto* const lanes = reinterpret_cast<LaneOf<T>*>(x);
  ForEachVector(x, count, [=](auto d, std::size_t i) HWY_ATTR {
    hn::StoreU(AbsOf(d, hn::LoadU(d, lanes + i)), d, lanes + i);
  });
}

}  // namespace
}  // namespace vela::kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vela::kernel {

template <Element T>
void Abs(std::span<T> x) {
  if constexpr (std::numeric_limits<T>::is_signed) {
    VELA_KERNEL_DISPATCH(AbsLoop<T>)(x.data(), x.size());
  }
}

#define VELA_KERNEL_INSTANTIATE(T) template void Abs(std::span<T>);
VELA_KERNEL_FOR_SIMPLE_TYPES(VELA_KERNEL_INSTANTIATE)
#undef VELA_KERNEL_INSTANTIATE

}  // namespace vela::kernel
#endif
