#pragma once

#include <array>
#include <bit>
#include <cmath>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>
#include <span>
#include <type_traits>
#include <vector>

namespace vela::kernel {

/// The bits by which a number is recognised: equal numbers have equal bits, so the two zeros do,
/// and so do all NaNs.
template <class T>
requires std::is_arithmetic_v<T> std::uint64_t IdentityBits(T value) {
  if constexpr (std::floating_point<T>) {
    const double number = value;
    if (number == 0) return 0;
    if (std::isnan(number)) return ~std::uint64_t{0};
    return std::bit_cast<std::uint64_t>(number);
  } else {
    return static_cast<std::uint64_t>(value);
  }
}

namespace detail {

template <std::size_t N>
std::uint32_t HashBits(const std::array<std::uint64_t, N>& bits) {
  std::uint64_t hash = 0;
  for (const std::uint64_t word : bits) {
    hash = (hash ^ word) * 0x9E3779B97F4A7C15u;
    hash = (hash ^ (hash >> 32)) * 0xD6E8FEB86659FD93u;
    hash ^= hash >> 29;
  }
  return static_cast<std::uint32_t>(hash >> 32 ^ hash);
}

struct FreeMemory {
  void operator()(void* memory) const { std::free(memory); }
};

}  // namespace detail

/// Marks every candidate that is neither among `present` nor earlier among the candidates. Elements
/// are the same when identity(element), an array of 64-bit words, is. Both spans together hold less
/// than 2^32 - 1 elements. Expected linear time; scratch 6 bytes for each element of both, of which
/// repeated elements touch nothing, and a bit for each candidate. Throws std::bad_alloc.
template <class T, class Identity>
std::vector<bool> MarkAbsent(std::span<const T> present, std::span<const T> candidates,
                             Identity identity) {
  std::vector<bool> absent(candidates.size());
  if (candidates.empty()) return absent;
  const std::uint64_t total = std::uint64_t{present.size()} + candidates.size();
  const std::uint64_t slots = total + total / 2 + 1;

  // An open-addressing table of positions in the two spans, one after the other, each plus 1; zero
  // pages that are never used are never touched.
  const std::unique_ptr<std::uint32_t, detail::FreeMemory> table(
      static_cast<std::uint32_t*>(std::calloc(slots, sizeof(std::uint32_t))));
  if (table == nullptr) throw std::bad_alloc();
  const auto element = [&](std::uint64_t position) -> const T& {
    return position < present.size() ? present[position] : candidates[position - present.size()];
  };
  const auto insert = [&](std::uint64_t position) {
    const auto bits = identity(element(position));
    std::uint64_t slot = detail::HashBits(bits) * slots >> 32;
    while (const std::uint32_t held = table.get()[slot]) {
      if (identity(element(held - 1)) == bits) return false;
      if (++slot == slots) slot = 0;
    }
    table.get()[slot] = static_cast<std::uint32_t>(position + 1);
    return true;
  };
  for (std::uint64_t i = 0; i < present.size(); ++i) insert(i);
  for (std::size_t i = 0; i < candidates.size(); ++i) absent[i] = insert(present.size() + i);
  return absent;
}

}  // namespace vela::kernel
