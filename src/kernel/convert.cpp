#include "kernel/convert.h"

#include <cmath>
#include <concepts>
#include <cstdint>
#include <cstring>

#include "kernel/line_start.h"
#include "kernel/missing.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernel/convert.cpp"
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
  ConvertLoop<float, double, ConvertNumbers<float, double>>(source, target, count);
}

void NarrowWithoutNan(const double* source, float* target, std::size_t count) {
  ConvertLoop<double, float, ConvertNumbers<double, float>>(source, target, count);
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
