#include "kernel/convert.h"

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

template <class From, class To>
void ConvertLoop(const From* source, To* target, std::size_t count) {
  const std::size_t lead = ElementsBeforeLine(target, count);
  ConvertRun(source, target, lead);
  ConvertRun(source + lead, target + lead, count - lead);
}

template <class From, class To>
void ConvertNumbers(const From* HWY_RESTRICT source, To* HWY_RESTRICT target, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    const bool is_nan = source[i] != source[i];
    target[i] = is_nan ? ConvertElement<To>(kMissing) : ConvertElement<To>(source[i]);
  }
}

template <class From, class To>
void ConvertNumbersLoop(const From* source, To* target, std::size_t count) {
  const std::size_t lead = ElementsBeforeLine(target, count);
  ConvertNumbers(source, target, lead);
  ConvertNumbers(source + lead, target + lead, count - lead);
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

void WidenWithoutNan(const float* source, double* target, std::size_t count) {
  ConvertNumbersLoop(source, target, count);
}

void NarrowWithoutNan(const double* source, float* target, std::size_t count) {
  ConvertNumbersLoop(source, target, count);
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
