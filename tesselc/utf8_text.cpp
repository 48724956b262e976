#include "tesselc/utf8_text.h"

#include <algorithm>
#include <iterator>
#include <utf8.h>

namespace tesselc {

std::size_t Utf8SequenceLength(std::string_view text) {
  if (text.empty()) return 0;
  auto next = text.begin();
  try {
    utf8::next(next, text.end());
  } catch (const utf8::exception&) {
    return 0;
  }
  return static_cast<std::size_t>(std::distance(text.begin(), next));
}

char32_t Utf8CodePoint(std::string_view text) {
  return static_cast<char32_t>(utf8::unchecked::peek_next(text.begin()));
}

std::size_t DisplayWidth(std::string_view text) {
  struct Range {
    char32_t first, last;
  };
  static constexpr Range kCombining[] = {{0x300, 0x36F},   {0x483, 0x489},   {0x591, 0x5BD},
                                         {0x610, 0x61A},   {0x64B, 0x65F},   {0x1AB0, 0x1AFF},
                                         {0x1DC0, 0x1DFF}, {0x200B, 0x200F}, {0x20D0, 0x20FF},
                                         {0xFE00, 0xFE0F}, {0xFE20, 0xFE2F}};
  static constexpr Range kWide[] = {{0x1100, 0x115F},   {0x2E80, 0x303E},   {0x3041, 0x4DBF},
                                    {0x4E00, 0xA4CF},   {0xA960, 0xA97C},   {0xAC00, 0xD7A3},
                                    {0xF900, 0xFAFF},   {0xFE30, 0xFE6F},   {0xFF01, 0xFF60},
                                    {0xFFE0, 0xFFE6},   {0x1F300, 0x1F64F}, {0x1F680, 0x1F6FF},
                                    {0x1F900, 0x1F9FF}, {0x20000, 0x3FFFD}};
  if (Utf8SequenceLength(text) == 0) return 1;
  const char32_t point = Utf8CodePoint(text);
  const auto lies_in = [point](const Range& range) {
    return range.first <= point && point <= range.last;
  };
  if (std::ranges::any_of(kCombining, lies_in)) return 0;
  return std::ranges::any_of(kWide, lies_in) ? 2 : 1;
}

void AppendUtf8(char32_t code_point, std::string& text) {
  utf8::append(code_point, std::back_inserter(text));
}

}  // namespace tesselc
