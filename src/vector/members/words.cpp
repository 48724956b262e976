// Exchange of the elements with the host as one text.
#include <algorithm>
#include <string>
#include <string_view>

#include "frame/library_state.h"
#include "vector/vector_base.h"

using vela::member::Arguments;
using vela::member::Check;
using vela::member::Exactly;
using vela::member::Fail;
using vela::member::Run;

namespace {

// Texts that stand for elements read back as what they were.
bool ExchangesText(unsigned type_id) {
  return !vela::WithElementType(
      type_id, []<class T>() { return vela::ComplexElement<T> || vela::PointElement<T>; });
}

constexpr std::string_view kSeparators = " \t\r\n\v\f,;";

// Calls use(word) for each run of characters other than separators; how many.
template <class Use>
std::int64_t ForEachWord(std::string_view text, Use use) {
  std::int64_t count = 0;
  for (std::size_t begin = text.find_first_not_of(kSeparators); begin != text.npos;) {
    const std::size_t end = std::min(text.find_first_of(kSeparators, begin), text.size());
    use(count++, text.substr(begin, end - begin));
    begin = text.find_first_not_of(kSeparators, end);
  }
  return count;
}

}  // namespace

// GetParleyVectorValue(string text): the row becomes the words of the text, each read as the text
// of an element (unreadable numbers are missing); white space, commas and semicolons part them. How
// many. Status 1 while the host has set no context, 12291 for elements that no word can stand for.
int TCAllVectorNonTemplBase::GetParleyVectorValue(CTCall* call) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    if (!vela::HasHostContext()) Fail(status::kFailed);
    const int row = Row(args);
    if (!ExchangesText(GetInternalDataTypeID())) Fail(status::kUnsupported);
    const CStringUTF8 text = args.Text(0);
    const std::int64_t count = ForEachWord(text.View(), [](std::int64_t, std::string_view) {});
    Check(RawResize(row, count));
    ForEachWord(text.View(), [&](std::int64_t i, std::string_view word) {
      const MSOINDICES at = MSOINDICES::Object(row).WithElement(static_cast<int>(i));
      Check(SetString(&at, std::string(word).c_str()));
    });
    AnnounceChange(row);
    args.Return(static_cast<int>(count));
  });
}

// SetParleyVectorValue(string& text): the text becomes the elements' texts with a space between
// them; how many. Statuses as above.
int TCAllVectorNonTemplBase::SetParleyVectorValue(CTCall* call) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    if (!vela::HasHostContext()) Fail(status::kFailed);
    const int row = Row(args);
    if (!ExchangesText(GetInternalDataTypeID())) Fail(status::kUnsupported);
    const int count = static_cast<int>(RowSize(row));
    CStringUTF8 text;
    CStringUTF8 element;
    for (int i = 0; i < count; ++i) {
      const MSOINDICES at = MSOINDICES::Object(row).WithElement(i);
      Check(GetString(&at, element));
      if (i > 0) text += ' ';
      text += element.View();
    }
    args.Set(0, text.c_str());
    args.Return(count);
  });
}
