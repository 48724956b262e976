#pragma once

#include <concepts>
#include <tuple>

#include "kernel/simple_types.h"

namespace vela::kernel {

namespace detail {
template <template <class> class F>
constexpr auto TupleOfEach() {
#define VELA_KERNEL_TUPLE_OF_ONE(T) std::tuple<F<T>>(),
  return std::tuple_cat(VELA_KERNEL_FOR_SIMPLE_TYPES(VELA_KERNEL_TUPLE_OF_ONE) std::tuple<>());
#undef VELA_KERNEL_TUPLE_OF_ONE
}
}  // namespace detail

/// A tuple with one F<T> for each of the ten simple element types T. F must give a different,
/// default-constructible type for each T, so that std::get<F<T>> finds its entry.
template <template <class> class F>
using PerElementType = decltype(detail::TupleOfEach<F>());

template <class T>
struct TypeTag {};

namespace detail {
template <class T, class Tuple>
inline constexpr bool kHolds = false;
template <class T, class... Ts>
inline constexpr bool kHolds<T, std::tuple<Ts...>> = (std::same_as<T, Ts> || ...);
}  // namespace detail

/// The ten simple element types.
template <class T>
concept Element = detail::kHolds<TypeTag<T>, PerElementType<TypeTag>>;

}  // namespace vela::kernel
