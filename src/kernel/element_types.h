#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>

/// Expands F(T) once for each of the eight simple element types that a matrix can have.
#define VELA_KERNEL_FOR_MATRIX_TYPES(F) \
  F(char)                               \
  F(unsigned char)                      \
  F(short)                              \
  F(unsigned short)                     \
  F(int)                                \
  F(unsigned int)                       \
  F(float)                              \
  F(double)

/// Expands F(T) once for each of the ten simple element types: the one list that every table and
/// every instantiation per type is made from.
#define VELA_KERNEL_FOR_SIMPLE_TYPES(F) \
  VELA_KERNEL_FOR_MATRIX_TYPES(F)       \
  F(std::int64_t)                       \
  F(std::uint64_t)

namespace vela::kernel {

template <class... T>
struct TypeList {
  static constexpr std::size_t kSize = sizeof...(T);
};

namespace detail {

// A list that begins with an entry of no type, as a comma stands before each of the macro's.
template <class None, class... T>
using Rest = TypeList<T...>;

template <class T, class List>
inline constexpr std::size_t kPosition = List::kSize;
template <class T, class... Ts>
inline constexpr std::size_t kPosition<T, TypeList<Ts...>> = [] {
  std::size_t position = 0;
  (void)((!std::same_as<T, Ts> && ++position) && ...);
  return position;
}();

}  // namespace detail

#define VELA_KERNEL_LIST_ENTRY(T) , T
using SimpleTypes = detail::Rest<void VELA_KERNEL_FOR_SIMPLE_TYPES(VELA_KERNEL_LIST_ENTRY)>;
#undef VELA_KERNEL_LIST_ENTRY

/// The place of T in the list of simple types; the length of the list when it is none of them.
template <class T>
inline constexpr std::size_t kTypePosition = detail::kPosition<T, SimpleTypes>;

/// The ten simple element types.
template <class T>
concept Element = kTypePosition<T> < SimpleTypes::kSize;

/// Calls f.operator()<T>() for each type of the list.
template <class... T, class F>
constexpr void ForEachType(TypeList<T...> /*types*/, F&& f) {
  (f.template operator()<T>(), ...);
}

}  // namespace vela::kernel
