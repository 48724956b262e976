#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <type_traits>

namespace vela::kernel {

namespace detail {
void RotateBytes(std::byte* data, std::size_t left, std::size_t right);
}  // namespace detail

/// Rotates x towards its front: element i becomes the old element (shift + i) mod n, for any shift,
/// negative ones included. Fewer than two elements stay as they are. Works in place with a few
/// kilobytes of stack and moves each element about once; never fails.
template <class T>
requires std::is_trivially_copyable_v<T>
void Rotate(std::span<T> x, std::int64_t shift) {
  if (x.size() < 2) return;
  const auto count = static_cast<std::int64_t>(x.size());
  const std::int64_t remainder = shift % count;
  const auto front = static_cast<std::size_t>(remainder < 0 ? remainder + count : remainder);
  detail::RotateBytes(reinterpret_cast<std::byte*>(x.data()), front * sizeof(T),
                      (x.size() - front) * sizeof(T));
}

}  // namespace vela::kernel
