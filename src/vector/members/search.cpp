// Finding and replacing elements by value.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <optional>

#include "frame/container/container_arguments.h"
#include "frame/element_value.h"
#include "frame/interface/missing_value.h"
#include "kernel/find.h"
#include "kernel/find_complex.h"
#include "vector/position_range.h"
#include "vector/vector_base.h"

using vela::ComplexElement;
using vela::Layer;
using vela::LayerElements;
using vela::SimpleElement;
using vela::member::Arguments;
using vela::member::AtLeast;
using vela::member::Between;
using vela::member::Check;
using vela::member::Fail;
using vela::member::Run;
namespace kernel = vela::kernel;

namespace {

template <class T>
concept Searchable = SimpleElement<T> || ComplexElement<T>;

// What Find and Replace look for: elements within a tolerance of value, or, with an upper value
// that is not missing, from value to upper. Real elements are compared as doubles.
template <class T>
struct Wanted {
  using Number = std::conditional_t<ComplexElement<T>, OneTCcomplex, double>;
  Number value;
  Number upper = kMissingValue;
  double tolerance = 0;

  std::size_t Find(std::span<const T> x, kernel::FindScope scope,
                   std::span<std::uint32_t> found) const {
    if (!kernel::IsMissing(upper)) return kernel::FindInRange(x, value, upper, scope, found);
    return kernel::FindEqual(x, value, tolerance, scope, found);
  }
};

template <class T>
typename Wanted<T>::Number WantedValue(Arguments& args, unsigned arg) {
  if constexpr (ComplexElement<T>) {
    return args.Complex(arg);
  } else {
    return args.Double(arg);
  }
}

// 10 to the power -digits, which is the nearest double to that number.
double Tolerance(int digits) { return digits >= 1 ? std::pow(10.0, -digits) : 0; }

// The arguments value, upper and precision of both forms of Find, of which the last two may be
// absent.
template <class T>
Wanted<T> WantedArguments(Arguments& args) {
  Wanted<T> wanted;
  wanted.value = WantedValue<T>(args, 1);
  if (args.Count() > 2) wanted.upper = WantedValue<T>(args, 2);
  if (args.Count() > 3) wanted.tolerance = Tolerance(args.Int(3));
  return wanted;
}

// Find(uint start, value, upper = NANUM, int precision = 0): the first match at start or behind it,
// or -1.
template <class T>
int FindFirst(Arguments& args, std::span<const T> x) {
  if (args.Count() < 2 || args.Count() > 4) Fail(status::kBadArguments);
  const Wanted<T> wanted = WantedArguments<T>(args);
  std::array<std::uint32_t, 1> found;
  kernel::FindScope scope;
  scope.start = args.Unsigned(0);
  scope.first_only = true;
  return wanted.Find(x, scope, found) > 0 ? static_cast<int>(found[0]) : -1;
}

// Makes found the positions of the elements wanted; how many. A block at a time, so that memory
// reserved for the worst case is used only as far as there are positions.
template <class T>
std::size_t StorePositions(std::span<const T> x, const Wanted<T>& wanted, kernel::FindScope scope,
                           const Layer& found) {
  TCAllTensorsBase& positions = *found.container;
  const std::size_t end = std::min(scope.end, x.size());
  Check(positions.ReserveLayer(found.number, static_cast<std::int64_t>(end - scope.start)));
  std::array<std::uint32_t, 4096> block;
  std::size_t count = 0;
  for (; scope.start < end && !(scope.first_only && count > 0); scope.start = scope.end) {
    scope.end = std::min(end, scope.start + block.size());
    const std::span<const unsigned> matches = std::span(block).first(wanted.Find(x, scope, block));
    if (matches.empty()) continue;
    const std::size_t size = count + matches.size();
    if (size > found.Size()) {
      Check(positions.GrowLayer(found.number, static_cast<std::int64_t>(size)));
    }
    Check(positions.StoreElements(found.number, count, vela::ConstElementSpan(matches)));
    count = size;
  }
  found.Resize(count);
  found.AnnounceChange();
  return count;
}

// Find(vector<uint>& found, value, upper, int precision, int start, int end, DWORD firstOnly): the
// positions of the matches among the elements start .. end, an end of -1 or beyond the last meaning
// the last; how many. NULL for found counts. -1 for a range without elements and for a found of
// another type.
template <class T>
int FindAll(Arguments& args, const Layer& row, std::span<const T> x) {
  if (args.Count() != 7) Fail(status::kBadArguments);
  if (!args.IsNull(0) && !vela::IsVectorOf(args, 0, kTypeUnsignedInt)) return -1;
  const Layer found = vela::OptionalVector(args, 0);
  const Wanted<T> wanted = WantedArguments<T>(args);
  const auto range = vela::PositionsBetween(args.Int(4), args.Int(5), x.size());
  const kernel::FindScope scope{range.begin, range.end, (args.Dword(6) & 1) != 0};
  if (range.IsEmpty()) return -1;
  if (!found) return static_cast<int>(wanted.Find(x, scope, {}));

  // The positions may replace the very elements that are searched.
  std::optional<vela::LayerValues<T>> copy;
  if (found == row) x = copy.emplace(row, true).Span();
  return static_cast<int>(StorePositions(x, wanted, scope, found));
}

// Overwrites the elements wanted; how many. Found a block at a time, so that no memory is needed.
template <class T>
std::size_t ReplaceElements(std::span<T> x, const Wanted<T>& wanted, const T& with) {
  std::array<std::uint32_t, 1024> found;
  std::size_t replaced = 0;
  for (std::size_t begin = 0; begin < x.size(); begin += found.size()) {
    const std::span<T> block = x.subspan(begin, std::min(found.size(), x.size() - begin));
    const std::size_t count = wanted.Find(block, {}, found);
    for (std::size_t i = 0; i < count; ++i) block[found[i]] = with;
    replaced += count;
  }
  return replaced;
}

}  // namespace

// See FindAll and FindFirst, which an unsigned int as the first argument selects. Points have no
// order and no distance here: status 12291.
int TCAllVectorNonTemplBase::Find(CTCall* call) {
  return Run(call, AtLeast(1), [&](Arguments& args) {
    const Layer row = AddressedNumbers(args);
    const LayerElements elements(row);
    args.Return(vela::WithElements(
        elements.Span(), [&]<class T>(std::span<T> x) requires Searchable<T> {
          return args.TypeId(0) == kTypeUnsignedInt ? FindFirst<T>(args, x)
                                                    : FindAll<T>(args, row, x);
        }));
  });
}

// Replace(old, new, double tolerance = 0): replaces the elements within the tolerance of old; how
// many. A missing old replaces the missing elements. Points: status 12291.
int TCAllVectorNonTemplBase::Replace(CTCall* call) {
  return Run(call, Between(2, 3), [&](Arguments& args) {
    const LayerElements elements = AddressedElements(args);
    const std::size_t replaced = vela::WithElements(
        elements.Span(), [&]<class T>(std::span<T> x) requires Searchable<T> {
          Wanted<T> wanted;
          wanted.value = WantedValue<T>(args, 0);
          if (args.Count() == 3) wanted.tolerance = args.Double(2);
          vela::AnyElement with = vela::ElementArgument(args, 1, vela::kElement<T>.type_id);
          return ReplaceElements<T>(x, wanted, with.As<T>());
        });
    elements.Commit();
    args.Return(static_cast<int>(replaced));
  });
}
