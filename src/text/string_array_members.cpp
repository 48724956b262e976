// The members of "StringArray" that other vectors do not have.
#include <algorithm>
#include <utility>
#include <vector>

#include "frame/container/container_arguments.h"
#include "text/string_array.h"
#include "text/text_groups.h"
#include "vector/position_range.h"

using vela::Layer;
using vela::member::Arguments;
using vela::member::Between;
using vela::member::Exactly;
using vela::member::Fail;
using vela::member::Run;
using vela::text::TextGroups;

namespace {

using Texts = TCVectorString::Texts;

template <class T>
void StoreNumbers(const Layer& target, const std::vector<T>& numbers) {
  vela::StoreResult(target, vela::ConstElementSpan(std::span(numbers)));
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

void ReportGroups(const Grouping& grouping, const std::vector<unsigned>& reported, const Layer& map,
                  const Layer& firsts, const Layer& counts) {
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
  StoreNumbers<int>(map, places);
  StoreNumbers<unsigned>(firsts, reported_firsts);
  if (counts) StoreNumbers<unsigned>(counts, reported_counts);
}

// Compares whole elements with one text, without regard to case unless told otherwise.
class Equals {
 public:
  Equals(CStringUTF8 text, bool case_sensitive)
      : text_(std::move(text)), case_sensitive_(case_sensitive) {}
  bool operator()(const CStringUTF8& other) const {
    return case_sensitive_ ? other == text_ : other.CompareNoCase(text_) == 0;
  }

 private:
  CStringUTF8 text_;
  bool case_sensitive_;
};

// A real number is the tolerance of the form for numeric vectors, without meaning for texts.
bool IsCaseSensitive(Arguments& args, unsigned arg) {
  return args.Count() <= arg || args.TypeId(arg) == kTypeDouble || args.Int(arg) != 0;
}

}  // namespace

int TCVectorString::Find(CTCall* call) {
  return Run(call, Between(2, 7), [&](Arguments& args) {
    const Texts& texts = Acted(args);
    const Layer found = vela::OptionalVector(args, 0);
    // The form of numeric vectors has an upper value and a precision where texts have one argument.
    const bool is_numeric_form = args.Count() == 7;
    const Equals equals(args.Text(1), is_numeric_form || IsCaseSensitive(args, 2));
    const unsigned rest = is_numeric_form ? 4 : 3;
    const int start = args.Count() > rest ? args.Int(rest) : 0;
    const int end = args.Count() > rest + 1 ? args.Int(rest + 1) : -1;
    const bool first_only = args.Count() > rest + 2 && (args.Dword(rest + 2) & 1) != 0;
    if (found && found.TypeId() != kTypeUnsignedInt) return args.Return(-1);
    const auto range = vela::PositionsBetween(start, end, texts.size());
    if (range.IsEmpty()) return args.Return(-1);
    std::vector<unsigned> places;
    for (std::size_t i = range.begin; i < range.end; ++i) {
      if (!equals(texts[i])) continue;
      places.push_back(static_cast<unsigned>(i));
      if (first_only) break;
    }
    if (found) StoreNumbers<unsigned>(found, places);
    args.Return(static_cast<int>(places.size()));
  });
}

int TCVectorString::Replace(CTCall* call) {
  return Run(call, Between(2, 3), [&](Arguments& args) {
    const int row = Row(args);
    const Equals equals(args.Text(0), IsCaseSensitive(args, 2));
    const CStringUTF8 by = args.Text(1);
    int count = 0;
    for (CStringUTF8& text : rows_[row]) {
      if (!equals(text)) continue;
      text = by;
      ++count;
    }
    AnnounceChange(row);
    args.Return(count);
  });
}

int TCVectorString::FindDuplicates(CTCall* call) {
  return Run(call, Exactly(5), [&](Arguments& args) {
    const Texts& texts = Acted(args);
    const Layer map = vela::OptionalVector(args, 0);
    const Layer firsts = vela::OptionalVector(args, 1);
    const bool case_sensitive = args.Int(2) != 0;
    const Layer counts = vela::OptionalVector(args, 3);
    const DWORD control = args.Dword(4);
    const bool usable = map && map.TypeId() == kTypeInt &&  //
                        firsts && firsts.TypeId() == kTypeUnsignedInt &&
                        (!counts || counts.TypeId() == kTypeUnsignedInt);
    if (!usable) return args.Return(-1);
    vela::RefuseSameLayer(counts, firsts);
    const Grouping grouping = case_sensitive ? GroupTexts(texts) : GroupTexts(InUpperCase(texts));
    const std::vector<unsigned> reported = ReportedGroups(grouping, control);
    ReportGroups(grouping, reported, map, firsts, counts);
    args.Return(static_cast<int>(reported.size()));
  });
}
