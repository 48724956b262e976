// A contiguous run of elements of any type, and its conversion to another.
#pragma once

#include <cstring>
#include <span>
#include <vector>

#include "frame/element_types.h"
#include "frame/element_value.h"
#include "kernel/parallel_copy.h"

namespace vela {

// Borrowed memory with its element type. An empty type id stands for no numeric elements.
struct ElementRun {
  unsigned type_id = kTypeNone;
  const void* data = nullptr;
  std::size_t size = 0;

  ElementRun() = default;
  template <class T>
  explicit ElementRun(std::span<T> elements)
      : type_id(kElement<std::remove_const_t<T>>.type_id),
        data(elements.data()),
        size(elements.size()) {}

  // The elements, when they are of type T; else an empty span.
  template <class T>
  std::span<const T> As() const {
    if (type_id != kElement<T>.type_id) return {};
    return {static_cast<const T*>(data), size};
  }

  ElementRun Part(std::size_t offset, std::size_t count) const {
    ElementRun part = *this;
    part.data = WithElementType(
        type_id, [&]<class T>() -> const void* { return static_cast<const T*>(data) + offset; });
    part.size = count;
    return part;
  }
};

// Converts every element into to, which has the run's size and shares no memory with it unless the
// types are equal. Runs of the simple types go through the conversion kernels.
template <class To>
void ConvertRun(const ElementRun& run, std::span<To> to) {
  if (run.size == 0) return;
  WithElementType(run.type_id, [&]<class From>() {
    const std::span<const From> from = run.As<From>();
    if constexpr (std::is_same_v<From, To>) {
      std::memmove(static_cast<void*>(to.data()), from.data(), from.size_bytes());
    } else if constexpr (SimpleElement<To> && SimpleElement<From>) {
      kernel::Convert<To, From>(from, to);
    } else {
      for (std::size_t i = 0; i < from.size(); ++i) to[i] = ConvertValue<To>(from[i]);
    }
  });
}

// As ConvertRun, on worker threads where the parallel element copy finds that worth while. The
// elements may not overlap, except that equal types may.
template <class To>
void CopyRun(const ElementRun& run, std::span<To> to) {
  WithElementType(run.type_id, [&]<class From>() {
    if constexpr (SimpleElement<To> && SimpleElement<From> && !std::is_same_v<From, To>) {
      kernel::ParallelConvert<To, From>(run.As<From>(), to, 0);
    } else {
      ConvertRun<To>(run, to);
    }
  });
}

// The run's elements as To: the run itself when it is of that type, else a converted copy.
template <class To>
class ElementsAs {
 public:
  explicit ElementsAs(const ElementRun& run) : elements_(run.As<To>()) {
    if (run.type_id == kElement<To>.type_id || run.size == 0) return;
    copy_.resize(run.size);
    ConvertRun<To>(run, copy_);
    elements_ = copy_;
  }
  std::span<const To> Span() const { return elements_; }

 private:
  std::vector<To> copy_;
  std::span<const To> elements_;
};

}  // namespace vela
