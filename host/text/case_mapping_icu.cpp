#if !defined(_WIN32)

#include <algorithm>
#include <limits>
#include <memory>
#include <new>
#include <stdexcept>
#include <unicode/ucasemap.h>
#include <unicode/uchar.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>

#include "host/text/case_mapping.h"

namespace vela::host {
namespace {

struct CloseCaseMap {
  void operator()(UCaseMap* map) const { ucasemap_close(map); }
};

// The mapping of no language in particular; never written to, so that threads share it.
const UCaseMap* RootCaseMap() {
  static const std::unique_ptr<UCaseMap, CloseCaseMap> map = [] {
    UErrorCode error = U_ZERO_ERROR;
    std::unique_ptr<UCaseMap, CloseCaseMap> root(ucasemap_open("", 0, &error));
    if (U_FAILURE(error)) throw std::bad_alloc();
    return root;
  }();
  return map.get();
}

}  // namespace

void AppendMappedCase(std::string_view valid, LetterCase letter_case, std::string& to) {
  const auto convert =
      letter_case == LetterCase::kUpper ? ucasemap_utf8ToUpper : ucasemap_utf8ToLower;
  const std::size_t start = to.size();
  // Few texts grow by more than this.
  std::size_t room = valid.size() + valid.size() / 16 + 16;
  for (;;) {
    room = std::min<std::size_t>(room, std::numeric_limits<std::int32_t>::max());
    to.resize(start + room);
    UErrorCode error = U_ZERO_ERROR;
    const std::int32_t needed =
        convert(RootCaseMap(), to.data() + start, static_cast<std::int32_t>(room), valid.data(),
                static_cast<std::int32_t>(valid.size()), &error);
    if (error == U_BUFFER_OVERFLOW_ERROR) {
      room = static_cast<std::size_t>(needed);
      continue;
    }
    if (error == U_INDEX_OUTOFBOUNDS_ERROR) throw std::length_error("text is too long");
    if (U_FAILURE(error)) throw std::bad_alloc();
    to.resize(start + static_cast<std::size_t>(needed));
    return;
  }
}

Folded FoldCodePoint(char32_t character) {
  // Few characters have case, and to ask takes less time than to fold.
  if (!u_hasBinaryProperty(static_cast<UChar32>(character), UCHAR_CASED)) return {{character}, 1};
  UChar units[2];
  std::int32_t unit_count = 0;
  U16_APPEND_UNSAFE(units, unit_count, static_cast<UChar32>(character));
  UChar folded_units[8];
  UErrorCode error = U_ZERO_ERROR;
  const std::int32_t folded_count =
      u_strFoldCase(folded_units, 8, units, unit_count, U_FOLD_CASE_DEFAULT, &error);
  Folded folded{{character}, 1};
  if (U_FAILURE(error)) return folded;
  folded.count = 0;
  for (std::int32_t i = 0; i < folded_count && folded.count < 3;) {
    UChar32 code_point;
    U16_NEXT(folded_units, i, folded_count, code_point);
    folded.characters[static_cast<std::size_t>(folded.count++)] = static_cast<char32_t>(code_point);
  }
  return folded;
}

}  // namespace vela::host

#endif
