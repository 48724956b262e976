// The members of "StringArray" that other vectors do not have.
#include <algorithm>
#include <iterator>
#include <stdexcept>

#include "text/string_array.h"
#include "text/text_groups.h"
#include "text/vector_result.h"

using vela::VectorArgument;
using vela::member::Arguments;
using vela::member::Between;
using vela::member::Exactly;
using vela::member::Fail;
using vela::member::Run;
using vela::text::TextGroups;

namespace {

using Texts = TCVectorString::Texts;

void RequireRoom(std::size_t size) {
  if (size > TCVectorString::kMostElements) throw std::length_error("vector too long");
}

// Removes the elements at the indices, largest first; false at the first that is outside.
bool RemoveAtIndices(Texts& texts, std::vector<int> indices) {
  std::sort(indices.begin(), indices.end(), std::greater<>());
  // What lies behind the index that is dealt with, last element first: removing there is popping.
  // With its memory at hand nothing below can fail half way.
  Texts behind;
  behind.reserve(texts.size());
  bool all_inside = true;
  for (auto index = indices.begin(); index != indices.end(); ++index) {
    if (*index >= 0) {
      const auto at = static_cast<std::size_t>(*index);
      while (texts.size() > at) {
        behind.push_back(std::move(texts.back()));
        texts.pop_back();
      }
    }
    all_inside = *index >= 0 && !behind.empty() && static_cast<std::size_t>(*index) == texts.size();
    if (!all_inside) break;
    behind.pop_back();
  }
  texts.insert(texts.end(), std::make_move_iterator(behind.rbegin()),
               std::make_move_iterator(behind.rend()));
  return all_inside;
}

Texts InUpperCase(Texts texts) {
  for (CStringUTF8& text : texts) text.MakeUpper();
  return texts;
}

struct Grouping {
  std::vector<int> group_of;     // each element's group
  std::vector<unsigned> firsts;  // each group's first element
  std::vector<unsigned> counts;
};

Grouping GroupTexts(const Texts& texts) {
  Grouping grouping;
  grouping.group_of.reserve(texts.size());
  TextGroups groups;
  groups.AddAll(texts, [&](TextGroups::Membership text) {
    if (text.is_new) {
      grouping.firsts.push_back(static_cast<unsigned>(grouping.group_of.size()));
      grouping.counts.push_back(1);
    } else {
      ++grouping.counts[text.group];
    }
    grouping.group_of.push_back(static_cast<int>(text.group));
  });
  return grouping;
}

constexpr DWORD kRepeatedOnly = 0x10000;
constexpr DWORD kLastToFirst = 0x20000;

// The groups to report, in the order of the report.
std::vector<unsigned> ReportedGroups(const Grouping& grouping, DWORD control) {
  std::vector<unsigned> reported;
  for (unsigned group = 0; group < grouping.firsts.size(); ++group) {
    if ((control & kRepeatedOnly) == 0 || grouping.counts[group] > 1) reported.push_back(group);
  }
  if ((control & kLastToFirst) != 0) std::reverse(reported.begin(), reported.end());
  return reported;
}

void ReportGroups(const Grouping& grouping, const std::vector<unsigned>& reported,
                  const VectorArgument& map, const VectorArgument& firsts,
                  const VectorArgument& counts) {
  std::vector<int> place(grouping.firsts.size(), -1);
  std::vector<unsigned> reported_firsts, reported_counts;
  for (const unsigned group : reported) {
    place[group] = static_cast<int>(reported_firsts.size());
    reported_firsts.push_back(grouping.firsts[group]);
    reported_counts.push_back(grouping.counts[group]);
  }
  std::vector<int> places;
  places.reserve(grouping.group_of.size());
  for (const int group : grouping.group_of) places.push_back(place[static_cast<unsigned>(group)]);
  vela::text::StoreElements<int>(map, places);
  vela::text::StoreElements<unsigned>(firsts, reported_firsts);
  if (counts) vela::text::StoreElements<unsigned>(counts, reported_counts);
}

bool IsSameRow(const VectorArgument& a, const VectorArgument& b) {
  return a && a.vector == b.vector && a.row == b.row;
}

}  // namespace

int TCVectorString::Add(CTCall* call) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    Texts& texts = Acted(args);
    RequireRoom(texts.size() + 1);
    texts.push_back(OptionalText(args, 0));
    SetModify(1);
    args.Return(static_cast<int>(texts.size()) - 1);
  });
}

int TCVectorString::SetAtGrow(CTCall* call) {
  return Run(call, Exactly(2), [&](Arguments& args) {
    Texts& texts = Acted(args);
    const int index = args.Int(0);
    if (index < 0) Fail(status::kBadIndex);
    const auto at = static_cast<std::size_t>(index);
    const CStringUTF8 text = OptionalText(args, 1);
    RequireRoom(at + 1);
    if (at >= texts.size()) texts.resize(at + 1);
    texts[at] = text;
    SetModify(1);
    args.Return(1);
  });
}

int TCVectorString::InsertAt(CTCall* call) {
  return Run(call, Exactly(3), [&](Arguments& args) {
    Texts& texts = Acted(args);
    const int index = args.Int(0);
    const CStringUTF8 text = OptionalText(args, 1);
    const int count = args.Int(2);
    if (index < 0 || count < 1) Fail(status::kOutOfRange);
    const auto at = static_cast<std::size_t>(index);
    const std::size_t size = std::max(at, texts.size()) + static_cast<std::size_t>(count);
    RequireRoom(size);
    // All the memory at once, so that nothing is half done when there is none; with a margin, so
    // that adding at the end again and again does not copy everything each time.
    if (size > texts.capacity()) texts.reserve(std::max(size, texts.size() + texts.size() / 2));
    if (at > texts.size()) texts.resize(at);
    texts.insert(texts.begin() + index, static_cast<std::size_t>(count), text);
    SetModify(1);
    args.Return(1);
  });
}

int TCVectorString::RemoveAt(CTCall* call) {
  return Run(call, Between(1, 2), [&](Arguments& args) {
    Texts& texts = Acted(args);
    const bool by_indices = (args.TypeId(0) & kFlagAnyVector) != 0;
    if (by_indices) {
      const VectorArgument indices = vela::RequiredVector(args, 0);
      if (!vela::text::IsVectorOf<int>(indices)) return args.Return(-1);
      const vela::RowElements elements(indices);
      const std::span<const int> values = elements.Run().As<int>();
      const bool done = RemoveAtIndices(texts, {values.begin(), values.end()});
      SetModify(1);
      return args.Return(done ? 1 : 0);
    }
    if (args.Count() != 2) Fail(status::kBadArguments);
    const int index = args.Int(0);
    const int count = args.Int(1);
    const auto size = static_cast<std::int64_t>(texts.size());
    if (index < 0 || index >= size || count < 1 || count > size - index) Fail(status::kOutOfRange);
    texts.erase(texts.begin() + index, texts.begin() + index + count);
    SetModify(1);
    args.Return(1);
  });
}

int TCVectorString::FindDuplicates(CTCall* call) {
  return Run(call, Exactly(5), [&](Arguments& args) {
    const Texts& texts = Acted(args);
    const VectorArgument map = vela::OptionalVector(args, 0);
    const VectorArgument firsts = vela::OptionalVector(args, 1);
    const bool case_sensitive = args.Int(2) != 0;
    const VectorArgument counts = vela::OptionalVector(args, 3);
    const DWORD control = args.Dword(4);
    const bool usable = vela::text::IsVectorOf<int>(map) &&
                        vela::text::IsVectorOf<unsigned>(firsts) &&
                        (!counts || vela::text::IsVectorOf<unsigned>(counts));
    if (!usable) return args.Return(-1);
    if (IsSameRow(firsts, counts)) Fail(status::kBadArguments);
    const Grouping grouping = case_sensitive ? GroupTexts(texts) : GroupTexts(InUpperCase(texts));
    const std::vector<unsigned> reported = ReportedGroups(grouping, control);
    ReportGroups(grouping, reported, map, firsts, counts);
    args.Return(static_cast<int>(reported.size()));
  });
}
