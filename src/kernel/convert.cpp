#include "kernel/convert.h"

#include <cmath>
#include <cstdint>
#include <cstring>

#include "kernel/line_start.h"
#include "kernel/missing.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernel/convert.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

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

template <class From, class To, void kRun(const From*, To*, std::size_t) = ConvertRun<From, To>>
void ConvertLoop(const From* source, To* target, std::size_t count) {
  const std::size_t lead = ElementsBeforeLine(target, count);
  kRun(source, target, lead);
  kRun(source + lead, target + lead, count - lead);
}

template <class From>
using Table = typename detail::ConversionsFrom<From>::Table;
using AllTables = PerElementType<Table>;

template <class From, class... To>
constexpr Table<From> MakeTable(std::tuple<TypeTag<To>...> /*targets*/) {
  return {&ConvertLoop<From, To>...};
}

template <class... From>
constexpr AllTables MakeTables(std::tuple<TypeTag<From>...> types) {
  return {MakeTable<From>(types)...};
}

const AllTables& Tables() {
  static constexpr AllTables kTables = MakeTables(PerElementType<TypeTag>());
  return kTables;
}

}  // namespace

namespace hn = hwy::HWY_NAMESPACE;

// Doubles as vectors, and as many floats.
using Doubles = hn::ScalableTag<double>;
using Floats = hn::Rebind<float, Doubles>;

HWY_INLINE hn::Vec<Doubles> WithoutNan(hn::Vec<Doubles> values) {
  return hn::IfThenElse(hn::IsNaN(values), hn::Set(Doubles(), kMissing), values);
}

// The compiler would branch on every element.
void WidenNumbers(const float* HWY_RESTRICT source, double* HWY_RESTRICT target,
                  std::size_t count) {
  const std::size_t lanes = hn::Lanes(Doubles());
  std::size_t i = 0;
  for (; i + lanes <= count; i += lanes) {
    const auto values = hn::PromoteTo(Doubles(), hn::LoadU(Floats(), source + i));
    hn::StoreU(WithoutNan(values), Doubles(), target + i);
  }
  for (; i < count; ++i) target[i] = std::isnan(source[i]) ? kMissing : double{source[i]};
}

void NarrowNumbers(const double* HWY_RESTRICT source, float* HWY_RESTRICT target,
                   std::size_t count) {
  const std::size_t lanes = hn::Lanes(Doubles());
  std::size_t i = 0;
  for (; i + lanes <= count; i += lanes) {
    const auto values = WithoutNan(hn::LoadU(Doubles(), source + i));
    hn::StoreU(hn::DemoteTo(Floats(), values), Floats(), target + i);
  }
  for (; i < count; ++i) {
    target[i] = static_cast<float>(std::isnan(source[i]) ? kMissing : source[i]);
  }
}

void WidenWithoutNan(const float* source, double* target, std::size_t count) {
  ConvertLoop<float, double, WidenNumbers>(source, target, count);
}

void NarrowWithoutNan(const double* source, float* target, std::size_t count) {
  ConvertLoop<double, float, NarrowNumbers>(source, target, count);
}

}  // namespace vela::kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vela::kernel {

HWY_EXPORT(WidenWithoutNan);
HWY_EXPORT(NarrowWithoutNan);

void ConvertWithoutNan(std::span<const float> source, std::span<double> target) {
  HWY_DYNAMIC_DISPATCH(WidenWithoutNan)(source.data(), target.data(), source.size());
}

void ConvertWithoutNan(std::span<const double> source, std::span<float> target) {
  HWY_DYNAMIC_DISPATCH(NarrowWithoutNan)(source.data(), target.data(), source.size());
}

}  // namespace vela::kernel

namespace vela::kernel::detail {

HWY_EXPORT(Tables);

void MoveBytes(const void* source, void* target, std::size_t size) {
  if (size > 0) std::memmove(target, source, size);
}

template <Element From>
const typename ConversionsFrom<From>::Table& Conversions() {
  return std::get<typename ConversionsFrom<From>::Table>(HWY_DYNAMIC_DISPATCH(Tables)());
}

#define VELA_KERNEL_INSTANTIATE(T) \
  template const typename ConversionsFrom<T>::Table& Conversions<T>();
VELA_KERNEL_FOR_SIMPLE_TYPES(VELA_KERNEL_INSTANTIATE)
#undef VELA_KERNEL_INSTANTIATE

}  // namespace vela::kernel::detail
#endif
