#include "kernel/convert.h"

#include <cmath>
#include <concepts>
#include <cstdint>
#include <cstring>

#include "kernel/dispatch.h"
#include "kernel/line_start.h"
#include "kernel/missing.h"

#ifndef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernel/convert.cpp"
#endif
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "kernel/load_doubles-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {
namespace {

// ConvertElement has no branch, so the compiler makes vector code of this for each target.
template <class From, class To>
void ConvertRun(const From* HWY_RESTRICT source, To* HWY_RESTRICT target, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) target[i] = ConvertElement<To>(source[i]);
}

// The instruction set has saturating steps for this one, which the compiler does not find.
template <>
void ConvertRun(const double* HWY_RESTRICT source, std::int32_t* HWY_RESTRICT target,
                std::size_t count) {
  namespace hn = hwy::HWY_NAMESPACE;
  const hn::ScalableTag<double> d;
  const hn::Rebind<std::int32_t, decltype(d)> di;
  std::size_t i = 0;
  for (; i + hn::Lanes(d) <= count; i += hn::Lanes(d)) {
    const auto value = hn::LoadU(d, source + i);
    const auto number = hn::IfThenZeroElse(hn::IsNaN(value), value);
    hn::StoreU(hn::DemoteTo(di, number), di, target + i);
  }
  for (; i < count; ++i) target[i] = ConvertElement<std::int32_t>(source[i]);
}

template <class From, class To, class Run>
void RunAligned(const From* source, To* target, std::size_t count, Run run) {
  const std::size_t lead = ElementsBeforeLine(target, count);
  run(source, target, lead);
  run(source + lead, target + lead, count - lead);
}

template <class From, class To>
void ConvertLoop(const From* source, void* target, std::size_t count) {
  RunAligned(source, static_cast<To*>(target), count, ConvertRun<From, To>);
}

// As ConvertRun, with a NaN stored as the missing value is. The compiler would branch on every
// element.
template <class From, class To>
void ConvertNumbers(const From* HWY_RESTRICT source, To* HWY_RESTRICT target, std::size_t count) {
  namespace hn = hwy::HWY_NAMESPACE;
  const hn::ScalableTag<double> d;
  const auto missing = hn::Set(d, kMissing);
  std::size_t i = 0;
  for (; i + hn::Lanes(d) <= count; i += hn::Lanes(d)) {
    const auto values = LoadDoubles(d, source + i);
    const auto numbers = hn::IfThenElse(hn::IsNaN(values), missing, values);
    if constexpr (std::same_as<To, double>) {
      hn::StoreU(numbers, d, target + i);
    } else {
      const hn::Rebind<To, decltype(d)> to;
      hn::StoreU(hn::DemoteTo(to, numbers), to, target + i);
    }
  }
  for (; i < count; ++i) {
    target[i] = ConvertElement<To>(std::isnan(source[i]) ? kMissing : double{source[i]});
  }
}

void WidenWithoutNan(const float* source, double* target, std::size_t count) {
  RunAligned(source, target, count, ConvertNumbers<float, double>);
}

void NarrowWithoutNan(const double* source, float* target, std::size_t count) {
  RunAligned(source, target, count, ConvertNumbers<double, float>);
}

}  // namespace
}  // namespace vela::kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vela::kernel {

void ConvertWithoutNan(std::span<const float> source, std::span<double> target) {
  VELA_KERNEL_DISPATCH(WidenWithoutNan)(source.data(), target.data(), source.size());
}

void ConvertWithoutNan(std::span<const double> source, std::span<float> target) {
  VELA_KERNEL_DISPATCH(NarrowWithoutNan)(source.data(), target.data(), source.size());
}

namespace detail {

void MoveBytes(const void* source, void* target, std::size_t size) {
  if (size > 0) std::memmove(target, source, size);
}

namespace {

template <class From, class... To>
auto LoopTo(std::size_t type, TypeList<To...> /*targets*/) {
  static constexpr PerInstructionSet<void(const From*, void*, std::size_t)> kLoops[] = {
      VELA_KERNEL_FUNCTIONS(ConvertLoop<From, To>)...};
  return kLoops[type];
}

}  // namespace

template <Element From>
void ConvertTo(std::size_t type, const From* source, void* target, std::size_t count) {
  LoopTo<From>(type, SimpleTypes())(source, target, count);
}

#define VELA_KERNEL_INSTANTIATE(T) \
  template void ConvertTo<T>(std::size_t, const T*, void*, std::size_t);
VELA_KERNEL_FOR_SIMPLE_TYPES(VELA_KERNEL_INSTANTIATE)
#undef VELA_KERNEL_INSTANTIATE

}  // namespace detail
}  // namespace vela::kernel
#endif
