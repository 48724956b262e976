// The list operations on numbers.
#include <algorithm>
#include <array>
#include <vector>

#include "frame/container/container_arguments.h"
#include "kernel/absent.h"
#include "kernel/compact.h"
#include "kernel/complex_sort.h"
#include "kernel/reorder.h"
#include "kernel/rotate.h"
#include "kernel/sort.h"
#include "vector/vector_base.h"

using vela::AnyElement;
using vela::ElementSpan;
using vela::Layer;
using vela::LayerElements;
using vela::SimpleElement;
using vela::WithElements;
using vela::WithWords;
using vela::kernel::IndexRun;
using vela::member::Arguments;
using vela::member::Check;
namespace kernel = vela::kernel;

namespace {

// Where missing values go when a row is sorted. Those of the host's data take part as the numbers
// that they are.
enum class MissingPlace { kFront, kBack, kSorted };

// Calls sort(values, indices) for what takes part in the order; missing values go to their end.
// indices, when not empty, follow the elements.
template <class T, class SortRest>
void SortAround(std::span<T> values, std::span<std::uint32_t> indices, MissingPlace place,
                SortRest sort) {
  if (place == MissingPlace::kSorted) return sort(values, indices);
  const bool missing_first = place == MissingPlace::kFront;
  const std::size_t missing =
      kernel::PartitionMissing(values, indices, missing_first, kernel::IsMissing<T>);
  const std::size_t start = missing_first ? missing : 0;
  values = values.subspan(start, values.size() - missing);
  if (!indices.empty()) indices = indices.subspan(start, values.size());
  sort(values, indices);
}

// All memory is there before anything moves, so that nothing has changed when there is too little.
template <SimpleElement T>
void SortNumbers(std::span<T> values, std::span<std::uint32_t> indices, bool ascending,
                 MissingPlace place) {
  if (indices.empty()) {
    return SortAround(values, indices, place,
                      [&](auto rest, auto) { kernel::Sort<T>(rest, ascending); });
  }
  const kernel::SortScratch scratch(values.size());
  SortAround(values, indices, place, [&](auto rest, auto rest_indices) {
    kernel::SortWithIndices<T>(rest, rest_indices, ascending, scratch);
  });
}

template <vela::ComplexElement T>
void SortNumbers(std::span<T> values, std::span<std::uint32_t> indices, bool ascending,
                 MissingPlace place) {
  std::vector<T> sorted(values.begin(), values.end());
  std::vector<std::uint32_t> sorted_indices(indices.begin(), indices.end());
  SortAround(
      std::span(sorted), std::span(sorted_indices), place,
      [&](auto rest, auto rest_indices) { kernel::SortComplex(rest, rest_indices, ascending); });
  std::copy(sorted.begin(), sorted.end(), values.begin());
  std::copy(sorted_indices.begin(), sorted_indices.end(), indices.begin());
}

// Points have no order and stay.
template <vela::PointElement T>
void SortNumbers(std::span<T>, std::span<std::uint32_t>, bool, MissingPlace) {}

// By which elements count as the same.
template <class T>
auto Identity(const T& element) {
  if constexpr (SimpleElement<T>) {
    return std::array{kernel::IdentityBits(element)};
  } else if constexpr (vela::ComplexElement<T>) {
    return std::array{kernel::IdentityBits(element.m_re), kernel::IdentityBits(element.m_im)};
  } else {
    std::array<std::uint64_t, T::kDimensions> bits;
    for (std::size_t i = 0; i < bits.size(); ++i) bits[i] = kernel::IdentityBits(element[i]);
    return bits;
  }
}

// Appends the candidates that are marked, converted already.
template <class T>
void AppendMarked(const Layer& row, std::span<const T> candidates, const std::vector<bool>& marks) {
  const std::size_t size = row.Size();
  const auto count = static_cast<std::size_t>(std::count(marks.begin(), marks.end(), true));
  row.Resize(size + count);
  const LayerElements elements(row);
  std::span<T> free = elements.As<T>().subspan(size);
  for (std::size_t i = 0; !free.empty(); ++i) {
    if (!marks[i]) continue;
    free.front() = candidates[i];
    free = free.subspan(1);
  }
  elements.Commit();
}

}  // namespace

void TCAllVectorNonTemplBase::SetElement(int row, std::size_t index, Arguments& args,
                                         unsigned arg) {
  const AnyElement value = vela::ElementArgument(args, arg, GetInternalDataTypeID());
  if (index >= RowSize(row)) Check(GrowLayer(row, static_cast<std::int64_t>(index) + 1));
  Check(StoreElements(row, index, value.Span()));
  AnnounceChange(row);
}

void TCAllVectorNonTemplBase::InsertElements(int row, std::size_t index, std::size_t count,
                                             Arguments& args, unsigned arg) {
  const AnyElement value = vela::ElementArgument(args, arg, GetInternalDataTypeID());
  const std::size_t size = RowSize(row);
  Check(RawResize(row, static_cast<std::int64_t>(std::max(size, index) + count)));
  const LayerElements elements({this, row});
  const ElementSpan& all = elements.Span();
  if (index < size) {
    const std::size_t behind = size - index;
    vela::ConvertElements(all.Part(index, behind), all.Part(index + count, behind));
  }
  vela::FillElements(all.Part(index, count), value.Span());
  elements.Commit();
}

void TCAllVectorNonTemplBase::RemoveElements(int row, std::span<const IndexRun> runs) {
  const LayerElements elements({this, row});
  std::size_t kept = elements.Span().size;
  WithWords(elements.Span(),
            [&]<class T>(std::span<T> words) { kept = kernel::RemoveRuns(words, runs); });
  elements.Commit();
  Check(RawResize(row, static_cast<std::int64_t>(kept)));
}

void TCAllVectorNonTemplBase::RemoveRange(int row, std::size_t begin, std::size_t end) {
  const IndexRun run{static_cast<std::uint32_t>(begin), static_cast<std::uint32_t>(end)};
  RemoveElements(row, std::span(&run, 1));
}

void TCAllVectorNonTemplBase::CopyElements(int row, std::size_t offset, std::size_t count,
                                           const Layer& target) {
  const LayerElements elements({this, row});
  Check(target.container->StoreElements(target.number, 0, elements.Span().Part(offset, count)));
  target.AnnounceChange();
}

void TCAllVectorNonTemplBase::AssignCopy(int row, const Layer& source) {
  vela::StoreResult({this, row}, LayerElements(source).Span());
}

void TCAllVectorNonTemplBase::OverwriteElements(int row, std::size_t offset, const Layer& source,
                                                std::size_t count) {
  const LayerElements elements(source);
  Check(StoreElements(row, offset, elements.Span().Part(0, count)));
  AnnounceChange(row);
}

bool TCAllVectorNonTemplBase::ReorderElements(int row, std::span<const unsigned> order) {
  const LayerElements elements({this, row});
  bool ordered = false;
  WithWords(elements.Span(),
            [&]<class T>(std::span<T> words) { ordered = kernel::Reorder(words, order); });
  elements.Commit();
  return ordered;
}

void TCAllVectorNonTemplBase::RotateElements(int row, std::int64_t shift) {
  const LayerElements elements({this, row});
  WithWords(elements.Span(), [&]<class T>(std::span<T> words) { kernel::Rotate(words, shift); });
  elements.Commit();
}

void TCAllVectorNonTemplBase::SortElements(int row, bool ascending, bool missing_first,
                                           std::span<unsigned> positions) {
  const MissingPlace place = SourceOf(row) != nullptr ? MissingPlace::kSorted
                             : missing_first          ? MissingPlace::kFront
                                                      : MissingPlace::kBack;
  const LayerElements elements({this, row});
  WithElements(elements.Span(), [&]<class T>(std::span<T> values) {
    SortNumbers(values, positions, ascending, place);
  });
  elements.Commit();
}

std::size_t TCAllVectorNonTemplBase::CountLeadingMissing(int row, std::size_t first) {
  const LayerElements elements({this, row});
  return WithElements(elements.Span().From(first),
                      []<class T>(std::span<T> x) { return kernel::CountLeadingMissing<T>(x); });
}

std::size_t TCAllVectorNonTemplBase::CountTrailingMissing(int row, std::size_t first) {
  const LayerElements elements({this, row});
  return WithElements(elements.Span().From(first),
                      []<class T>(std::span<T> x) { return kernel::CountTrailingMissing<T>(x); });
}

void TCAllVectorNonTemplBase::RemoveMissing(int row, std::size_t first) {
  const LayerElements elements({this, row});
  const std::size_t kept =
      first + WithElements(elements.Span().From(first),
                           []<class T>(std::span<T> x) { return kernel::RemoveMissing<T>(x); });
  if (kept == elements.Span().size) return;
  elements.Commit();
  Check(RawResize(row, static_cast<std::int64_t>(kept)));
}

std::size_t TCAllVectorNonTemplBase::AppendAbsent(int row, const Layer& source) {
  const Layer own{this, row};
  std::size_t count = 0;
  vela::VisitElementType(GetInternalDataTypeID(), [&]<class T>() {
    const vela::LayerValues<T> candidates(source);
    const std::vector<bool> absent =
        kernel::MarkAbsent<T>(LayerElements(own).As<T>(), candidates.Span(), Identity<T>);
    AppendMarked<T>(own, candidates.Span(), absent);
    count = static_cast<std::size_t>(std::count(absent.begin(), absent.end(), true));
  });
  return count;
}
