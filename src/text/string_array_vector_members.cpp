// The general vector members, on texts.
#include <algorithm>
#include <numeric>
#include <utility>

#include "kernel/reorder.h"
#include "text/operand_text.h"
#include "text/string_array.h"
#include "text/text_groups.h"
#include "text/text_sort.h"
#include "text/vector_result.h"

using vela::VectorArgument;
using vela::member::Arguments;
using vela::member::AtLeast;
using vela::member::Between;
using vela::member::Exactly;
using vela::member::Fail;
using vela::member::NoArguments;
using vela::member::Run;

namespace {

using Texts = TCVectorString::Texts;

// Texts into a vector of any type; as numbers into a numeric one.
void StoreTexts(const VectorArgument& target, Texts&& texts) {
  if (auto* strings = dynamic_cast<TCVectorString*>(target.vector)) {
    strings->StoreRow(target.row, std::move(texts));
    return;
  }
  std::vector<double> numbers(texts.size());
  std::transform(texts.begin(), texts.end(), numbers.begin(), vela::text::NumberOf);
  vela::text::StoreNumbers(target, numbers);
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

bool IsEmptyText(const CStringUTF8& text) { return text.IsEmpty(); }

}  // namespace

int TCVectorString::Append(CTCall* call) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    RefuseOneRowOfMany(args, status::kNotOnOneRow);
    const int row = Row(args);
    AppendRow(row, vela::text::ElementTexts(vela::RequiredVector(args, 0)));
    args.Return(1);
  });
}

int TCVectorString::Sort(CTCall* call) {
  return Run(call, Exactly(4), [&](Arguments& args) {
    Texts& texts = Acted(args);
    const bool ascending = (args.Int(0) & 1) != 0;
    const bool empty_first = (args.Int(1) != 0) == ascending;
    const VectorArgument indices = vela::OptionalVector(args, 2);
    args.Dword(3);
    if (indices && !vela::text::IsVectorOf<unsigned>(indices)) return args.Return(0);
    const std::vector<unsigned> order = vela::text::SortedOrder(texts, ascending, empty_first);
    if (indices) vela::text::StoreElements<unsigned>(indices, order);
    Texts sorted;
    sorted.reserve(texts.size());
    for (const unsigned from : order) sorted.push_back(std::move(texts[from]));
    texts = std::move(sorted);
    SetModify(1);
    args.Return(1);
  });
}

int TCVectorString::Reorder(CTCall* call) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    Texts& texts = Acted(args);
    const VectorArgument order = vela::OptionalVector(args, 0);
    if (!vela::text::IsVectorOf<unsigned>(order)) return args.Return(0);
    if (texts.size() < 2) return args.Return(1);
    const vela::RowElements elements(order);
    const bool done = vela::kernel::Reorder<CStringUTF8>(texts, elements.Run().As<unsigned>());
    SetModify(1);
    args.Return(done ? 1 : 0);
  });
}

int TCVectorString::Wrap(CTCall* call) {
  return Run(call, Between(0, 1), [&](Arguments& args) {
    if (args.Count() == 0) Fail(status::kFailed);
    RefuseOneRowOfMany(args, status::kNotOnOneRow);
    Texts& texts = Acted(args);
    const int shift = args.Int(0);
    if (texts.size() > 1) {
      const auto size = static_cast<std::int64_t>(texts.size());
      const std::int64_t to_front = (shift % size + size) % size;
      std::rotate(texts.begin(), texts.begin() + to_front, texts.end());
      SetModify(1);
    }
    args.Return(1);
  });
}

int TCVectorString::GetSubVector(CTCall* call) {
  return Run(call, Between(2, 3), [&](Arguments& args) {
    const Texts& texts = Acted(args);
    const VectorArgument target = vela::RequiredVector(args, 0);
    const int lower = args.Int(1);
    int upper = args.Count() == 3 ? args.Int(2) : -1;
    const int last = static_cast<int>(texts.size()) - 1;
    if (upper == -1 || upper > last) upper = last;
    if (lower < 0 || upper < 0 || lower > upper) return args.Return(-1);
    StoreTexts(target, Texts(texts.begin() + lower, texts.begin() + upper + 1));
    args.Return(0);
  });
}

int TCVectorString::SetSubVector(CTCall* call) {
  return Run(call, Between(2, 3), [&](Arguments& args) {
    Texts& texts = Acted(args);
    const Texts source = vela::text::ElementTexts(vela::RequiredVector(args, 0));
    const int offset = args.Int(1);
    const int asked = args.Count() == 3 ? args.Int(2) : -1;
    const int size = static_cast<int>(texts.size());
    if (offset < 0 || offset >= size) return args.Return(-1);
    const int available = static_cast<int>(source.size());
    const int count = asked < 0 ? std::min(available, size - offset) : asked;
    if (count > available || count > size - offset) return args.Return(-1);
    std::copy_n(source.begin(), count, texts.begin() + offset);
    SetModify(1);
    args.Return(0);
  });
}

int TCVectorString::Find(CTCall* call) {
  return Run(call, Between(2, 7), [&](Arguments& args) {
    const Texts& texts = Acted(args);
    const VectorArgument found = vela::OptionalVector(args, 0);
    // The form of numeric vectors has an upper value and a precision where texts have one argument.
    const bool is_numeric_form = args.Count() == 7;
    const Equals equals(args.Text(1), is_numeric_form || IsCaseSensitive(args, 2));
    const unsigned rest = is_numeric_form ? 4 : 3;
    const int start = std::max(args.Count() > rest ? args.Int(rest) : 0, 0);
    int end = args.Count() > rest + 1 ? args.Int(rest + 1) : -1;
    const bool first_only = args.Count() > rest + 2 && (args.Dword(rest + 2) & 1) != 0;
    const int size = static_cast<int>(texts.size());
    if (end == -1 || end >= size) end = size - 1;
    if (found && !vela::text::IsVectorOf<unsigned>(found)) return args.Return(-1);
    if (start >= size || start > end) return args.Return(-1);
    std::vector<unsigned> places;
    for (int i = start; i <= end; ++i) {
      if (!equals(texts[static_cast<std::size_t>(i)])) continue;
      places.push_back(static_cast<unsigned>(i));
      if (first_only) break;
    }
    if (found) vela::text::StoreElements<unsigned>(found, places);
    args.Return(static_cast<int>(places.size()));
  });
}

int TCVectorString::GetUpperBound(CTCall* call) {
  return Run(call, NoArguments(),
             [&](Arguments& args) { args.Return(static_cast<int>(Acted(args).size()) - 1); });
}

int TCVectorString::GetLowerBound(CTCall* call) {
  return Run(call, NoArguments(), [&](Arguments& args) {
    Row(args);
    args.Return(0);
  });
}

int TCVectorString::TrimLeft(CTCall* call) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    Texts& texts = Acted(args);
    if (args.Int(0) == 0) return args.Return(0);
    if (texts.empty()) return args.Return(-1);
    const auto first = std::find_if_not(texts.begin(), texts.end(), IsEmptyText);
    const auto removed = static_cast<int>(first - texts.begin());
    texts.erase(texts.begin(), first);
    SetModify(1);
    args.Return(removed);
  });
}

int TCVectorString::TrimRight(CTCall* call) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    Texts& texts = Acted(args);
    if (args.Int(0) == 0) return args.Return(0);
    if (texts.empty()) return args.Return(-1);
    const auto last = std::find_if_not(texts.rbegin(), texts.rend(), IsEmptyText);
    const auto removed = static_cast<int>(last - texts.rbegin());
    texts.erase(last.base(), texts.end());
    SetModify(1);
    args.Return(removed);
  });
}

int TCVectorString::Trim(CTCall* call) {
  return Run(call, NoArguments(), [&](Arguments& args) {
    Texts& texts = Acted(args);
    if (texts.empty()) return args.Return(0);
    std::erase_if(texts, IsEmptyText);
    SetModify(1);
    args.Return(1);
  });
}

int TCVectorString::CopyData(CTCall* call) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    const int row = Row(args);
    StoreRow(row, vela::text::ElementTexts(vela::RequiredVector(args, 0)));
    args.Return(0);
  });
}

int TCVectorString::Replace(CTCall* call) {
  return Run(call, Between(2, 3), [&](Arguments& args) {
    Texts& texts = Acted(args);
    const Equals equals(args.Text(0), IsCaseSensitive(args, 2));
    const CStringUTF8 by = args.Text(1);
    int count = 0;
    for (CStringUTF8& text : texts) {
      if (!equals(text)) continue;
      text = by;
      ++count;
    }
    SetModify(1);
    args.Return(count);
  });
}

int TCVectorString::InsertValue(CTCall* call) {
  return Run(call, Between(2, 3), [&](Arguments& args) {
    Texts& texts = Acted(args);
    const CStringUTF8 text = args.Text(0);
    const int index = args.Int(1);
    const int count = args.Count() == 3 ? args.Int(2) : 1;
    if (index < 0 || static_cast<std::size_t>(index) > texts.size() || count < 0) {
      return args.Return(0);
    }
    const auto added = static_cast<std::size_t>(count);
    if (added > kMostElements - texts.size()) Fail(status::kCannotResize);
    texts.insert(texts.begin() + index, added, text);
    SetModify(1);
    args.Return(1);
  });
}

int TCVectorString::Merge(CTCall* call) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    const int row = Row(args);
    const Texts other = vela::text::ElementTexts(vela::RequiredVector(args, 0));
    vela::text::TextGroups present;
    for (const CStringUTF8& text : rows_[row]) present.Add(text.View());
    Texts added;
    for (const CStringUTF8& text : other) {
      if (present.Add(text.View()).is_new) added.push_back(text);
    }
    const int count = static_cast<int>(added.size());
    AppendRow(row, std::move(added));
    args.Return(count);
  });
}
