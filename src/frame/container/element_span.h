// Elements of a type that is known only when the program runs.
#pragma once

#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <type_traits>

#include "frame/element_types.h"
#include "frame/member/arguments.h"
#include "kernel/word.h"

namespace vela {

namespace detail {

inline constexpr auto kElementWidths = [] {
  std::array<std::uint8_t, kLastTypeId + 1> widths{};
  ForEachElementType([&]<class T>() { widths[kElement<T>.type_id] = sizeof(T); });
  return widths;
}();

}  // namespace detail

// Bytes of one element of the type; 0 for an id that is no element type.
constexpr std::size_t ElementWidth(unsigned type_id) {
  return type_id <= kLastTypeId ? detail::kElementWidths[type_id] : 0;
}

// Borrowed memory with its element type. Type id kTypeNone stands for no such memory.
template <class Memory>
struct BasicElementSpan {
  template <class T>
  using Of = std::conditional_t<std::is_const_v<Memory>, const T, T>;

  unsigned type_id = kTypeNone;
  Memory* data = nullptr;
  std::size_t size = 0;

  BasicElementSpan() = default;
  BasicElementSpan(unsigned the_type_id, Memory* memory, std::size_t count)
      : type_id(the_type_id), data(memory), size(count) {}
  template <class T>
  requires(std::is_const_v<Memory> || !std::is_const_v<T>)  //
      explicit BasicElementSpan(std::span<T> elements)
      : type_id(kElement<std::remove_const_t<T>>.type_id),
        data(elements.data()),
        size(elements.size()) {}

  explicit operator bool() const { return type_id != kTypeNone; }
  operator BasicElementSpan<const void>() const { return {type_id, data, size}; }

  // The elements, which are of type T.
  template <class T>
  std::span<Of<T>> As() const {
    return {static_cast<Of<T>*>(data), size};
  }
  std::span<Of<std::byte>> Bytes() const {
    return {static_cast<Of<std::byte>*>(data), size * ElementWidth(type_id)};
  }
  BasicElementSpan Part(std::size_t offset, std::size_t count) const {
    return {type_id, static_cast<Of<std::byte>*>(data) + offset * ElementWidth(type_id), count};
  }
  BasicElementSpan From(std::size_t offset) const { return Part(offset, size - offset); }
};

using ElementSpan = BasicElementSpan<void>;
using ConstElementSpan = BasicElementSpan<const void>;

// Calls f with the elements as a std::span<T> and returns its result. What f does not accept is not
// supported: the handler ends with status 12291. f accepts doubles at least.
template <class Memory, class F>
auto WithElements(const BasicElementSpan<Memory>& x, F&& f) {
  using Span = BasicElementSpan<Memory>;
  using Result = decltype(f(std::span<typename Span::template Of<double>>()));
  constexpr auto accepts = []<class T>() {
    return std::is_invocable_v<F, std::span<typename Span::template Of<T>>>;
  };
  if constexpr (std::is_void_v<Result>) {
    bool accepted = false;
    VisitElementType(x.type_id, [&]<class T>() {
      if constexpr (accepts.template operator()<T>()) {
        f(x.template As<T>());
        accepted = true;
      }
    });
    if (!accepted) member::Fail(status::kUnsupported);
  } else {
    Result result{};
    WithElements(
        x, [&]<class T>(std::span<T> elements) requires(std::is_invocable_v<F, std::span<T>>) {
          result = f(elements);
        });
    return result;
  }
}

// Calls f with the elements as a std::span of words of their width, for what moves elements
// whatever they mean.
template <class Memory, class F>
void WithWords(const BasicElementSpan<Memory>& x, F&& f) {
  const auto with = [&]<std::size_t kWidth>() { f(x.template As<kernel::Word<kWidth>>()); };
  switch (ElementWidth(x.type_id)) {
    case 1:
      return with.template operator()<1>();
    case 2:
      return with.template operator()<2>();
    case 4:
      return with.template operator()<4>();
    case 8:
      return with.template operator()<8>();
    case sizeof(OneTCcomplex):
      return with.template operator()<sizeof(OneTCcomplex)>();
    case sizeof(Point3D):
      return with.template operator()<sizeof(Point3D)>();
    default:
      member::Fail(status::kUnsupported);
  }
}

// Memory for count elements of any type, its contents unspecified.
class ElementMemory {
 public:
  // Throws std::bad_alloc.
  ElementMemory(unsigned type_id, std::size_t count);
  ElementSpan Span() const { return {type_id_, bytes_.get(), count_}; }

 private:
  unsigned type_id_;
  std::size_t count_;
  std::unique_ptr<std::byte[]> bytes_;
};

// One element of any numeric type; zero to start with.
class AnyElement {
 public:
  explicit AnyElement(unsigned type_id) : type_id_(type_id) {}
  ElementSpan Span() { return {type_id_, bytes_, 1}; }
  ConstElementSpan Span() const { return {type_id_, bytes_, 1}; }
  template <class T>
  T& As() {
    return *reinterpret_cast<T*>(bytes_);
  }

 private:
  unsigned type_id_;
  alignas(double) std::byte bytes_[sizeof(Point3D)] = {};
};

// to[i] = from[i], converted as ConvertValue does; to has from's size. The memory may overlap only
// where the types are equal.
void ConvertElements(const ConstElementSpan& from, const ElementSpan& to);

// As ConvertElements, on worker threads where the parallel element copy finds that worth while.
void CopyElements(const ConstElementSpan& from, const ElementSpan& to);

// The first `count` elements, at least one, over and over, up to the end.
void RepeatElements(const ElementSpan& elements, std::size_t count);

// Makes every element of to the one value, converted.
void FillElements(const ElementSpan& to, const ConstElementSpan& value);

// Combines lambdas into one function that WithElements can pick from.
template <class... F>
struct Overloaded : F... {
  using F::operator()...;
};
template <class... F>
Overloaded(F...) -> Overloaded<F...>;

}  // namespace vela
