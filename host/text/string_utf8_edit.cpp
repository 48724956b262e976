// Changes to a text.
#include <algorithm>
#include <cstring>
#include <limits>
#include <span>
#include <vector>

#include "frame/interface/string_utf8.h"
#include "host/text/case_mapping.h"
#include "host/text/characters.h"
#include "host/text/memory_search.h"
#include "host/text/string_utf8_detail.h"
#include "host/text/text_buffer.h"

namespace text_buffer = vela::host::text_buffer;
using vela::host::ByteSearch;
using vela::host::CharacterReader;
using vela::host::CharacterSet;
using vela::host::ClipIndex;
using vela::host::LetterCase;
using vela::host::ViewOf;

namespace {

// Bytes of the leading characters for which drop(character) holds.
template <typename Drop>
std::size_t LeadingBytes(std::string_view text, Drop drop) {
  CharacterReader reader(text);
  while (!reader.AtEnd()) {
    const std::size_t position = reader.Position();
    if (!drop(reader.Next())) return position;
  }
  return text.size();
}

template <typename Drop>
std::size_t TrailingBytes(std::string_view text, Drop drop) {
  std::string_view rest = text;
  std::size_t size = 0;
  while (!rest.empty() && drop(vela::host::LastCharacter(rest, &size))) rest.remove_suffix(size);
  return text.size() - rest.size();
}

void RemoveLeading(char*& data, std::size_t bytes) {
  text_buffer::Splice(data, 0, static_cast<std::int64_t>(bytes), {});
}

void RemoveTrailing(char*& data, std::size_t bytes) {
  const auto count = static_cast<std::int64_t>(bytes);
  text_buffer::Splice(data, text_buffer::HeaderOf(data).length - count, count, {});
}

void TrimLeading(char*& data, std::string_view set) {
  const CharacterSet drop(set);
  const std::string_view text = text_buffer::View(data);
  RemoveLeading(data, LeadingBytes(text, [&](char32_t c) { return drop.Contains(c); }));
}

void TrimTrailing(char*& data, std::string_view set) {
  const CharacterSet drop(set);
  const std::string_view text = text_buffer::View(data);
  RemoveTrailing(data, TrailingBytes(text, [&](char32_t c) { return drop.Contains(c); }));
}

// Where the matches begin, none of which overlap.
std::vector<std::uint32_t> FindMatches(std::string_view text, std::string_view old_text) {
  const ByteSearch search(old_text);
  std::vector<std::uint32_t> matches;
  for (std::size_t at = 0; (at = search.FindIn(text, at)) != std::string_view::npos;) {
    matches.push_back(static_cast<std::uint32_t>(at));
    at += old_text.size();
  }
  return matches;
}

// Copies text to the given memory with every match replaced.
void CopyReplaced(char* to, std::string_view text, std::span<const std::uint32_t> matches,
                  std::size_t old_size, std::string_view new_text) {
  std::size_t from = 0;
  for (const std::uint32_t match : matches) {
    to = std::copy_n(text.data() + from, match - from, to);
    to = std::copy_n(new_text.data(), new_text.size(), to);
    from = match + old_size;
  }
  std::copy(text.data() + from, text.data() + text.size(), to);
}

void MapCaseOf(char*& data, LetterCase letter_case) {
  const std::string_view text = text_buffer::View(data);
  if (text.empty()) return;
  if (vela::host::IsAscii(text)) {
    text_buffer::Reserve(data, static_cast<std::int64_t>(text.size()));
    vela::host::MapAsciiCase(data, text.size(), letter_case);
    return;
  }
  text_buffer::Assign(data, vela::host::MapCase(text, letter_case));
}

}  // namespace

int CStringUTF8::Insert(int index, char ch) { return Insert(index, std::string_view(&ch, 1)); }

int CStringUTF8::Insert(int index, std::string_view text) {
  text_buffer::Splice(data_, ClipIndex(index, GetLength()), 0, text);
  return GetLength();
}

int CStringUTF8::Delete(int index, int count) {
  const int from = ClipIndex(index, GetLength());
  text_buffer::Splice(data_, from, std::clamp(count, 0, GetLength() - from), {});
  return GetLength();
}

int CStringUTF8::Replace(char old_ch, char new_ch) {
  const int count = Count(old_ch);
  if (count == 0 || old_ch == new_ch) return count;
  text_buffer::Reserve(data_, GetLength());
  std::replace(data_, data_ + GetLength(), old_ch, new_ch);
  return count;
}

int CStringUTF8::Replace(std::string_view old_text, std::string_view new_text) {
  if (old_text.empty()) return 0;
  const std::string_view text = View();
  const std::vector<std::uint32_t> matches = FindMatches(text, old_text);
  const auto count = static_cast<std::int64_t>(matches.size());
  if (count == 0) return 0;
  std::int64_t growth =
      static_cast<std::int64_t>(new_text.size()) - static_cast<std::int64_t>(old_text.size());
  if (__builtin_mul_overflow(growth, count, &growth)) {
    growth = std::numeric_limits<std::int32_t>::max();
  }
  const std::int64_t length = GetLength() + growth;
  char* const fresh = text_buffer::Allocate(length, length);
  CopyReplaced(fresh, text, matches, old_text.size(), new_text);
  text_buffer::Adopt(data_, fresh);
  return static_cast<int>(count);
}

int CStringUTF8::Remove(char ch) {
  const int count = Count(ch);
  if (count == 0) return 0;
  text_buffer::Reserve(data_, GetLength());
  const char* const end = std::remove(data_, data_ + GetLength(), ch);
  text_buffer::SetLength(data_, end - data_);
  return count;
}

CStringUTF8& CStringUTF8::operator+=(std::string_view text) {
  text_buffer::Splice(data_, GetLength(), 0, text);
  return *this;
}

CStringUTF8& CStringUTF8::operator+=(char ch) { return *this += std::string_view(&ch, 1); }

void CStringUTF8::TrimLeft() {
  RemoveLeading(data_, LeadingBytes(View(), vela::host::IsWhiteSpace));
}

void CStringUTF8::TrimLeft(char ch) { TrimLeading(data_, std::string_view(&ch, 1)); }

void CStringUTF8::TrimLeft(const char* set) { TrimLeading(data_, ViewOf(set)); }

void CStringUTF8::TrimLeft(const CStringUTF8& set) { TrimLeading(data_, set.View()); }

void CStringUTF8::TrimRight() {
  RemoveTrailing(data_, TrailingBytes(View(), vela::host::IsWhiteSpace));
}

void CStringUTF8::TrimRight(char ch) { TrimTrailing(data_, std::string_view(&ch, 1)); }

void CStringUTF8::TrimRight(const char* set) { TrimTrailing(data_, ViewOf(set)); }

void CStringUTF8::TrimRight(const CStringUTF8& set) { TrimTrailing(data_, set.View()); }

void CStringUTF8::MakeUpper() { MapCaseOf(data_, LetterCase::kUpper); }

void CStringUTF8::MakeLower() { MapCaseOf(data_, LetterCase::kLower); }
