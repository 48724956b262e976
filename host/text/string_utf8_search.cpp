// Comparison and search.
#include "frame/interface/string_utf8.h"
#include "host/text/byte_scan.h"
#include "host/text/character_search.h"
#include "host/text/characters.h"
#include "host/text/memory_search.h"
#include "host/text/string_utf8_detail.h"

using vela::host::CaseMatters;
using vela::host::CharacterReader;
using vela::host::CharacterSet;
using vela::host::ToInt;
using vela::host::ViewOf;

namespace {

// Bytes of the leading run of characters that are in the set, or that are not.
std::size_t LeadingRun(std::string_view text, std::string_view characters, bool in_set) {
  const CharacterSet set(characters);
  CharacterReader reader(text);
  while (!reader.AtEnd()) {
    const std::size_t position = reader.Position();
    if (set.Contains(reader.Next()) != in_set) return position;
  }
  return text.size();
}

int FirstOf(std::string_view text, std::string_view characters) {
  const std::size_t run = LeadingRun(text, characters, false);
  return run == text.size() ? -1 : static_cast<int>(run);
}

}  // namespace

int CStringUTF8::Compare(const char* text) const { return View().compare(ViewOf(text)); }

int CStringUTF8::Compare(const CStringUTF8& text) const { return View().compare(text.View()); }

int CStringUTF8::CompareNoCase(const char* text) const {
  return vela::host::CompareFolded(View(), ViewOf(text));
}

int CStringUTF8::CompareNoCase(const CStringUTF8& text) const {
  return vela::host::CompareFolded(View(), text.View());
}

int CStringUTF8::Find(char ch, int start) const {
  if (start < 0 || start > GetLength()) return -1;
  return ToInt(View().find(ch, static_cast<std::size_t>(start)));
}

int CStringUTF8::Find(std::string_view sub, int start) const {
  if (start < 0 || start > GetLength()) return -1;
  return ToInt(vela::host::ByteSearch(sub).FindIn(View(), static_cast<std::size_t>(start)));
}

int CStringUTF8::FindNoCase(std::string_view sub, int start, int* matched) const {
  if (matched != nullptr) *matched = 0;
  if (start < 0 || start > GetLength()) return -1;
  const auto match =
      vela::host::FindCharacters(View(), sub, static_cast<std::size_t>(start), CaseMatters::kNo);
  if (matched != nullptr) *matched = static_cast<int>(match.size);
  return ToInt(match.position);
}

int CStringUTF8::ReverseFind(char ch) const { return ToInt(View().rfind(ch)); }

int CStringUTF8::FindOneOf(const char* set) const { return FirstOf(View(), ViewOf(set)); }

int CStringUTF8::FindOneOf(const CStringUTF8& set) const { return FirstOf(View(), set.View()); }

int CStringUTF8::Count(char ch) const {
  return static_cast<int>(vela::host::CountByte(View(), ch));
}

CStringUTF8 CStringUTF8::SpanIncluding(const char* set) const {
  return Left(static_cast<int>(LeadingRun(View(), ViewOf(set), true)));
}

CStringUTF8 CStringUTF8::SpanIncluding(const CStringUTF8& set) const {
  return Left(static_cast<int>(LeadingRun(View(), set.View(), true)));
}

CStringUTF8 CStringUTF8::SpanExcluding(const char* set) const {
  return Left(static_cast<int>(LeadingRun(View(), ViewOf(set), false)));
}

CStringUTF8 CStringUTF8::SpanExcluding(const CStringUTF8& set) const {
  return Left(static_cast<int>(LeadingRun(View(), set.View(), false)));
}
