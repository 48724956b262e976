#include "kernel/pattern.h"

#include <algorithm>
#include <limits>

#include "kernel/convert.h"
#include "kernel/sequence.h"

namespace vela::kernel {

std::optional<std::int32_t> PatternSize(const Pattern& pattern, double to) {
  const std::optional<std::int32_t> levels = SequenceCount(pattern.from, to, pattern.step);
  if (!levels) return std::nullopt;
  constexpr std::int64_t kLimit = std::numeric_limits<std::int32_t>::max();
  const std::int64_t block = std::int64_t{*levels} * pattern.repeat_each;
  if (block > kLimit || block * pattern.repeat_total > kLimit) return std::nullopt;
  return static_cast<std::int32_t>(block * pattern.repeat_total);
}

template <Element T>
std::size_t FillPattern(std::span<T> x, const Pattern& pattern, std::uint32_t size) {
  const auto each = static_cast<std::uint32_t>(pattern.repeat_each);
  const auto total = static_cast<std::uint32_t>(pattern.repeat_total);
  const std::uint32_t levels = size / each / total;
  const std::size_t length = std::size_t{levels} * each * total;
  const std::span<T> target = x.first(std::min(length, x.size()));

  const std::span<T> block = target.first(std::min(std::size_t{levels} * each, target.size()));
  for (std::size_t begin = 0; begin < block.size(); begin += each) {
    const auto level = static_cast<double>(begin / each);
    const std::span<T> run =
        block.subspan(begin, std::min<std::size_t>(each, block.size() - begin));
    std::ranges::fill(run, ConvertElement<T>(pattern.from + level * pattern.step));
  }
  for (std::size_t begin = block.size(); begin < target.size(); begin += block.size()) {
    const std::size_t part = std::min(block.size(), target.size() - begin);
    std::copy_n(block.begin(), part, target.begin() + static_cast<std::ptrdiff_t>(begin));
  }
  return target.size();
}

#define VELA_KERNEL_INSTANTIATE(T) \
  template std::size_t FillPattern(std::span<T>, const Pattern&, std::uint32_t);
VELA_KERNEL_FOR_SIMPLE_TYPES(VELA_KERNEL_INSTANTIATE)
#undef VELA_KERNEL_INSTANTIATE

}  // namespace vela::kernel
