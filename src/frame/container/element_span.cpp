#include "frame/container/element_span.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>

#include "frame/element_value.h"
#include "kernel/parallel_copy.h"

namespace vela {

ElementMemory::ElementMemory(unsigned type_id, std::size_t count)
    : type_id_(type_id), count_(count) {
  constexpr auto kMostBytes = static_cast<std::size_t>(std::numeric_limits<std::ptrdiff_t>::max());
  if (count > kMostBytes / sizeof(Point3D)) throw std::bad_alloc();
  bytes_ = std::make_unique_for_overwrite<std::byte[]>(count * ElementWidth(type_id));
}

void ConvertElements(const ConstElementSpan& from, const ElementSpan& to) {
  if (from.size == 0) return;
  if (from.type_id == to.type_id) {
    std::memmove(to.data, from.data, from.Bytes().size());
    return;
  }
  VisitElementType(to.type_id, [&]<class To>() {
    VisitElementType(from.type_id, [&]<class From>() {
      const std::span<const From> source = from.As<From>();
      const std::span<To> target = to.As<To>();
      if constexpr (SimpleElement<To> && SimpleElement<From>) {
        kernel::Convert<To, From>(source, target);
      } else if constexpr (!std::is_same_v<To, From>) {
        for (std::size_t i = 0; i < source.size(); ++i) target[i] = ConvertValue<To>(source[i]);
      }
    });
  });
}

void CopyElements(const ConstElementSpan& from, const ElementSpan& to) {
  const auto is_simple = [](unsigned type_id) {
    return WithElementType(type_id, []<class T>() { return SimpleElement<T>; });
  };
  if (from.type_id == to.type_id || !is_simple(from.type_id) || !is_simple(to.type_id)) {
    return ConvertElements(from, to);
  }
  kernel::RunOverThreads(from.size, 0, [&](std::size_t begin, std::size_t end) {
    ConvertElements(from.Part(begin, end - begin), to.Part(begin, end - begin));
  });
}

void RepeatElements(const ElementSpan& elements, std::size_t count) {
  while (count < elements.size) {
    const std::size_t part = std::min(count, elements.size - count);
    ConvertElements(elements.Part(0, part), elements.Part(count, part));
    count += part;
  }
}

void FillElements(const ElementSpan& to, const ConstElementSpan& value) {
  if (to.size == 0) return;
  ConvertElements(value, to.Part(0, 1));
  RepeatElements(to, 1);
}

}  // namespace vela
