// Finding, replacing and merging elements by value.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <vector>

#include "kernel/absent.h"
#include "kernel/find.h"
#include "vector/element_argument.h"
#include "vector/typed_vector.h"

namespace vela {

// What Find and Replace look for: elements within a tolerance of value, or, with upper not missing,
// from value to upper. Real elements compare as doubles; complex ones by the modulus of the
// difference, and in a range by their own order.
template <class T>
struct Wanted {
  using Number = std::conditional_t<ComplexElement<T>, OneTCcomplex, double>;
  Number value;
  Number upper = kMissingValue;
  double tolerance = 0;
};

template <SimpleElement T>
std::size_t FindElements(std::span<const T> x, const Wanted<T>& wanted, kernel::FindScope scope,
                         std::span<std::uint32_t> found) {
  return wanted.upper == kMissingValue
             ? kernel::FindEqual<T>(x, wanted.value, wanted.tolerance, scope, found)
             : kernel::FindInRange<T>(x, wanted.value, wanted.upper, scope, found);
}

inline bool IsMissing(const OneTCcomplex& z) {
  return z.m_re == kMissingValue || z.m_im == kMissingValue;
}

inline bool Matches(const OneTCcomplex& z, const Wanted<OneTCcomplex>& wanted) {
  if (!IsMissing(wanted.upper)) {
    return !IsMissing(z) && z >= wanted.value && z <= wanted.upper;
  }
  if (IsMissing(z) || IsMissing(wanted.value)) return IsMissing(z) && IsMissing(wanted.value);
  return z == wanted.value ||
         (wanted.tolerance != 0 && (z - wanted.value).GetAmplitude() <= wanted.tolerance);
}

inline std::size_t FindElements(std::span<const OneTCcomplex> x, const Wanted<OneTCcomplex>& wanted,
                                kernel::FindScope scope, std::span<std::uint32_t> found) {
  std::size_t count = 0;
  const std::size_t end = std::min(scope.end, x.size());
  for (std::size_t i = scope.start; i < end && !(scope.first_only && count > 0); ++i) {
    if (!Matches(x[i], wanted)) continue;
    if (count < found.size()) found[count] = static_cast<std::uint32_t>(i);
    ++count;
  }
  return count;
}

// Overwrites the elements wanted; how many. Found a block at a time, so that no memory is needed.
template <class T>
std::size_t ReplaceElements(std::span<T> x, const Wanted<T>& wanted, const T& with) {
  std::array<std::uint32_t, 1024> found;
  std::size_t replaced = 0;
  for (std::size_t begin = 0; begin < x.size(); begin += found.size()) {
    const std::span<T> block = x.subspan(begin, std::min(found.size(), x.size() - begin));
    const std::size_t count = FindElements(std::span<const T>(block), wanted, {}, found);
    for (std::size_t i = 0; i < count; ++i) block[found[i]] = with;
    replaced += count;
  }
  return replaced;
}

template <class T>
typename Wanted<T>::Number WantedValue(member::Arguments& args, unsigned arg) {
  if constexpr (ComplexElement<T>) {
    return args.Complex(arg);
  } else {
    return args.Double(arg);
  }
}

// The arguments value, upper and precision of both forms of Find, of which the last two may be
// absent; the tolerance is 10 to the power -precision.
template <class T>
Wanted<T> WantedArguments(member::Arguments& args) {
  Wanted<T> wanted;
  wanted.value = WantedValue<T>(args, 1);
  if (args.Count() > 2) wanted.upper = WantedValue<T>(args, 2);
  const int digits = args.Count() > 3 ? args.Int(3) : 0;
  if (digits >= 1) wanted.tolerance = std::pow(10.0, -digits);
  return wanted;
}

// Find(uint start, value, upper = NANUM, int precision = 0): the first match at start or behind it,
// or -1.
template <class T>
int FindFirst(member::Arguments& args, std::span<const T> x) {
  if (args.Count() < 2 || args.Count() > 4) member::Fail(status::kBadArguments);
  const Wanted<T> wanted = WantedArguments<T>(args);
  std::array<std::uint32_t, 1> found;
  kernel::FindScope scope;
  scope.start = args.Unsigned(0);
  scope.first_only = true;
  return FindElements(x, wanted, scope, found) > 0 ? static_cast<int>(found[0]) : -1;
}

// Makes found the positions of the elements wanted; how many. A block at a time, so that memory
// reserved for the worst case is used only as far as there are positions.
template <class T>
std::size_t StorePositions(std::span<const T> x, const Wanted<T>& wanted, kernel::FindScope scope,
                           const VectorArgument& found) {
  TCAllVectorNonTemplBase& positions = *found.vector;
  const std::size_t end = std::min(scope.end, x.size());
  member::Check(positions.RawReserve(found.row, static_cast<std::int64_t>(end - scope.start)));
  std::array<std::uint32_t, 4096> block;
  std::size_t count = 0;
  for (; scope.start < end && !(scope.first_only && count > 0); scope.start = scope.end) {
    scope.end = std::min(end, scope.start + block.size());
    const std::span<const unsigned> matches =
        std::span(block).first(FindElements(x, wanted, scope, block));
    if (matches.empty()) continue;
    const std::size_t size = count + matches.size();
    if (size > found.Size()) {
      member::Check(positions.RawGrow(found.row, static_cast<std::int64_t>(size)));
    }
    member::Check(positions.StoreRun(found.row, count, ElementRun(matches)));
    count = size;
  }
  member::Check(positions.RawResize(found.row, static_cast<std::int64_t>(count)));
  return count;
}

// Find(vector<uint>& found, value, upper, int precision, int start, int end, DWORD firstOnly): the
// positions of the matches among the elements start .. end, an end of -1 or beyond the last meaning
// the last; how many. NULL for found counts. -1 for a range without elements and for a found of
// another type.
template <class T>
int FindAll(member::Arguments& args, std::span<const T> x) {
  if (args.Count() != 7) member::Fail(status::kBadArguments);
  if (!args.IsNull(0) && !IsVectorOf(args, 0, kTypeUnsignedInt)) return -1;
  const VectorArgument found = OptionalVector(args, 0);
  const Wanted<T> wanted = WantedArguments<T>(args);
  const auto last = static_cast<std::int64_t>(x.size()) - 1;
  const std::int64_t start = std::max(args.Int(4), 0);
  std::int64_t end = args.Int(5);
  if (end == -1 || end > last) end = last;
  const kernel::FindScope scope{static_cast<std::size_t>(start), static_cast<std::size_t>(end + 1),
                                (args.Dword(6) & 1) != 0};
  if (start > last || start > end) return -1;
  if (!found) return static_cast<int>(FindElements(x, wanted, scope, {}));

  // The positions may replace the very elements that are searched.
  std::vector<T> copy;
  if (x.data() == found.vector->ContiguousRun(found.row).data) {
    copy.assign(x.begin(), x.end());
    x = copy;
  }
  return static_cast<int>(StorePositions(x, wanted, scope, found));
}

// By which Merge tells elements apart.
template <class T>
auto Identity(const T& element) {
  if constexpr (SimpleElement<T>) {
    return std::array{kernel::IdentityBits(element)};
  } else if constexpr (ComplexElement<T>) {
    return std::array{kernel::IdentityBits(element.m_re), kernel::IdentityBits(element.m_im)};
  } else {
    std::array<std::uint64_t, T::kDimensions> bits;
    for (std::size_t i = 0; i < bits.size(); ++i) bits[i] = kernel::IdentityBits(element[i]);
    return bits;
  }
}

}  // namespace vela

// See FindAll and FindFirst, which an unsigned int as the first argument selects. Points have no
// order and no distance here: status 12291.
template <class T>
int TCAllVectorsBase<T>::Find(CTCall* call) {
  using namespace vela::member;
  if constexpr (vela::PointElement<T>) {
    return status::kUnsupported;
  } else {
    return Run(call, AtLeast(1), [&](Arguments& args) {
      const RowAccess<T> access(*this, this->Row(args));
      args.Return(args.TypeId(0) == kTypeUnsignedInt ? vela::FindFirst<T>(args, access.Elements())
                                                     : vela::FindAll<T>(args, access.Elements()));
    });
  }
}

// Replace(old, new, double tolerance = 0): replaces the elements within the tolerance of old; how
// many. A missing old replaces the missing elements. Points: status 12291.
template <class T>
int TCAllVectorsBase<T>::Replace(CTCall* call) {
  using namespace vela::member;
  if constexpr (vela::PointElement<T>) {
    return status::kUnsupported;
  } else {
    return Run(call, Between(2, 3), [&](Arguments& args) {
      RowAccess<T> access(*this, this->Row(args));
      vela::Wanted<T> wanted;
      wanted.value = vela::WantedValue<T>(args, 0);
      if (args.Count() == 3) wanted.tolerance = args.Double(2);
      const T with = vela::ElementArgument<T>(args, 1);
      const std::size_t replaced = vela::ReplaceElements<T>(access.Elements(), wanted, with);
      Check(access.Commit());
      args.Return(static_cast<int>(replaced));
    });
  }
}

// Merge(vector other): appends the elements of other, converted, that the row does not have yet, in
// their order and each once; how many. All NaNs count as one value here, and so do the two zeros.
template <class T>
int TCAllVectorsBase<T>::Merge(CTCall* call) {
  using namespace vela::member;
  return Run(call, Exactly(1), [&](Arguments& args) {
    const int row = this->Row(args);
    const vela::VectorArgument other = vela::RequiredVector(args, 0);
    if (other.IsRow(this, row)) return args.Return(0);
    const vela::RowElements elements(other);
    const vela::ElementsAs<T> values(elements.Run());
    const std::span<const T> candidates = values.Span();
    const std::vector<bool> absent = vela::kernel::MarkAbsent<T>(
        RowAccess<T>(*this, row).Elements(), candidates, vela::Identity<T>);
    const std::size_t size = this->RowSize(row);
    const auto count = static_cast<std::size_t>(std::count(absent.begin(), absent.end(), true));
    Check(this->RawResize(row, static_cast<std::int64_t>(size + count)));
    RowAccess<T> access(*this, row);
    auto next = access.Elements().begin() + static_cast<std::ptrdiff_t>(size);
    for (std::size_t i = 0; i < candidates.size(); ++i) {
      if (absent[i]) *next++ = candidates[i];
    }
    Check(access.Commit());
    args.Return(static_cast<int>(count));
  });
}
