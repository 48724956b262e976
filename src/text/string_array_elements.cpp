// The list operations on texts.
#include <algorithm>
#include <stdexcept>
#include <utility>

#include "frame/container/container_arguments.h"
#include "frame/interface/automation_values.h"
#include "kernel/reorder.h"
#include "text/operand_text.h"
#include "text/string_array.h"
#include "text/text_groups.h"
#include "text/text_sort.h"

using vela::Layer;
using vela::kernel::IndexRun;
using vela::member::Arguments;
using vela::member::Check;

namespace {

using Texts = TCVectorString::Texts;

// The argument as text; NULL is the empty one.
CStringUTF8 TextArgument(Arguments& args, unsigned arg) {
  return args.IsNull(arg) ? CStringUTF8() : args.Text(arg);
}

// All the memory at once, so that nothing is half done when there is none; with a margin, so that
// adding at the end again and again does not copy everything each time.
void MakeRoom(Texts& texts, std::size_t size) {
  if (size > TCVectorString::kMostElements) throw std::length_error("vector too long");
  if (size > texts.capacity()) texts.reserve(std::max(size, texts.size() + texts.size() / 2));
}

auto Place(Texts& texts, std::size_t index) {
  return texts.begin() + static_cast<std::ptrdiff_t>(index);
}

bool IsEmptyText(const CStringUTF8& text) { return text.IsEmpty(); }

}  // namespace

void TCVectorString::SetElement(int row, std::size_t index, Arguments& args, unsigned arg) {
  Texts& texts = rows_[row];
  CStringUTF8 text = TextArgument(args, arg);
  if (index >= texts.size()) {
    MakeRoom(texts, index + 1);
    texts.resize(index + 1);
  }
  texts[index] = std::move(text);
  AnnounceChange(row);
}

void TCVectorString::InsertElements(int row, std::size_t index, std::size_t count, Arguments& args,
                                    unsigned arg) {
  Texts& texts = rows_[row];
  const CStringUTF8 text = TextArgument(args, arg);
  MakeRoom(texts, std::max(index, texts.size()) + count);
  if (index > texts.size()) texts.resize(index);
  texts.insert(Place(texts, index), count, text);
  AnnounceChange(row);
}

void TCVectorString::RemoveElements(int row, std::span<const IndexRun> runs) {
  if (runs.empty()) return;
  Texts& texts = rows_[row];
  auto kept = Place(texts, runs.front().begin);
  for (std::size_t k = 0; k < runs.size(); ++k) {
    const std::size_t end = k + 1 < runs.size() ? runs[k + 1].begin : texts.size();
    kept = std::move(Place(texts, runs[k].end), Place(texts, end), kept);
  }
  texts.erase(kept, texts.end());
  AnnounceChange(row);
}

void TCVectorString::CopyElements(int row, std::size_t offset, std::size_t count,
                                  const Layer& target) {
  if (auto* strings = dynamic_cast<TCVectorString*>(target.container)) {
    const auto first = Place(rows_[row], offset);
    return strings->StoreRow(target.number,
                             Texts(first, first + static_cast<std::ptrdiff_t>(count)));
  }
  const vela::ElementMemory numbers(kTypeDouble, count);
  Check(ReadElements(row, offset, numbers.Span()));
  vela::StoreResult(target, numbers.Span());
}

void TCVectorString::AssignCopy(int row, const Layer& source) {
  StoreRow(row, vela::text::ElementTexts(source));
}

void TCVectorString::OverwriteElements(int row, std::size_t offset, const Layer& source,
                                       std::size_t count) {
  const Texts texts = vela::text::ElementTexts(source);
  std::copy_n(texts.begin(), count, Place(rows_[row], offset));
  AnnounceChange(row);
}

bool TCVectorString::ReorderElements(int row, std::span<const unsigned> order) {
  const bool ordered = vela::kernel::Reorder<CStringUTF8>(rows_[row], order);
  AnnounceChange(row);
  return ordered;
}

void TCVectorString::RotateElements(int row, std::int64_t shift) {
  Texts& texts = rows_[row];
  if (texts.size() < 2) return;
  const auto size = static_cast<std::int64_t>(texts.size());
  std::rotate(texts.begin(), texts.begin() + (shift % size + size) % size, texts.end());
  AnnounceChange(row);
}

void TCVectorString::SortElements(int row, bool ascending, bool missing_first,
                                  std::span<unsigned> positions) {
  Texts& texts = rows_[row];
  const std::vector<unsigned> order = vela::text::SortedOrder(texts, ascending, missing_first);
  Texts sorted;
  sorted.reserve(texts.size());
  for (const unsigned from : order) sorted.push_back(std::move(texts[from]));
  texts = std::move(sorted);
  if (!positions.empty()) std::copy(order.begin(), order.end(), positions.begin());
  AnnounceChange(row);
}

std::size_t TCVectorString::CountLeadingMissing(int row, std::size_t first) {
  const Texts& texts = rows_[row];
  const auto begin = texts.begin() + static_cast<std::ptrdiff_t>(first);
  return static_cast<std::size_t>(std::find_if_not(begin, texts.end(), IsEmptyText) - begin);
}

std::size_t TCVectorString::CountTrailingMissing(int row, std::size_t first) {
  const Texts& texts = rows_[row];
  const auto end = texts.rend() - static_cast<std::ptrdiff_t>(first);
  return static_cast<std::size_t>(std::find_if_not(texts.rbegin(), end, IsEmptyText) -
                                  texts.rbegin());
}

void TCVectorString::RemoveMissing(int row, std::size_t first) {
  Texts& texts = rows_[row];
  texts.erase(std::remove_if(Place(texts, first), texts.end(), IsEmptyText), texts.end());
  AnnounceChange(row);
}

std::size_t TCVectorString::AppendAbsent(int row, const Layer& source) {
  const Texts other = vela::text::ElementTexts(source);
  vela::text::TextGroups present;
  for (const CStringUTF8& text : rows_[row]) present.Add(text.View());
  Texts added;
  for (const CStringUTF8& text : other) {
    if (present.Add(text.View()).is_new) added.push_back(text);
  }
  const std::size_t count = added.size();
  AppendRow(row, std::move(added));
  return count;
}

CComVariant TCVectorString::AsArray(int row, const vela::ArrayLayout& layout) {
  return vela::MakeArray(VT_BSTR, RowSize(row), layout, [&](std::size_t i) {
    VARIANT value;
    VariantInit(&value);
    Check(VariantOfText(rows_[row][i].c_str(), value));
    return value;
  });
}
