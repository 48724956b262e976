// The operations that count in characters.
#include <algorithm>
#include <stdexcept>

#include "frame/interface/string_utf8.h"
#include "host/text/character_search.h"
#include "host/text/characters.h"
#include "host/text/memory_search.h"
#include "host/text/string_utf8_detail.h"
#include "host/text/text_buffer.h"

namespace text_buffer = vela::host::text_buffer;
using vela::host::CaseMatters;
using vela::host::CharacterReader;
using vela::host::CountCharacters;

namespace {

// Byte position of a character; below 0 is 0, past the end is the end.
std::size_t PositionOf(std::string_view text, int index) {
  return vela::host::PositionOfCharacter(text, static_cast<std::size_t>(std::max(index, 0)));
}

struct Bytes {
  std::size_t first;
  std::size_t count;
};

Bytes BytesOf(std::string_view text, int index, int count) {
  const std::size_t first = PositionOf(text, index);
  return {first, PositionOf(text.substr(first), count)};
}

// The bytes of one character that is there.
Bytes BytesOfOne(std::string_view text, int index) {
  const Bytes bytes = BytesOf(text, index, 1);
  if (index < 0 || bytes.count == 0) throw std::out_of_range("character index");
  return bytes;
}

void ReplaceBytes(char*& data, Bytes bytes, std::string_view by) {
  text_buffer::Splice(data, static_cast<std::int64_t>(bytes.first),
                      static_cast<std::int64_t>(bytes.count), by);
}

// Where a character that starts with the byte ch is, searching from a character's start.
std::size_t FindFirstByte(std::string_view text, char ch, std::size_t start) {
  if (static_cast<unsigned char>(ch) < 0x80) return text.find(ch, start);
  const std::string_view rest = text.substr(start);
  for (CharacterReader reader(rest); !reader.AtEnd(); reader.Next()) {
    if (rest[reader.Position()] == ch) return start + reader.Position();
  }
  return std::string_view::npos;
}

std::size_t FindLastFirstByte(std::string_view text, char ch) {
  std::size_t size = 0;
  for (; !text.empty(); text.remove_suffix(size)) {
    vela::host::LastCharacter(text, &size);
    if (text[text.size() - size] == ch) return text.size() - size;
  }
  return std::string_view::npos;
}

// The index of the character at a byte position, or -1.
int IndexOf(std::string_view text, std::size_t position) {
  if (position == std::string_view::npos) return -1;
  return static_cast<int>(CountCharacters(text.substr(0, position)));
}

}  // namespace

int CStringUTF8::CharGetLength() const { return static_cast<int>(CountCharacters(View())); }

int CStringUTF8::CharDelete(int index, int count) {
  ReplaceBytes(data_, BytesOf(View(), index, count), {});
  return CharGetLength();
}

CStringUTF8 CStringUTF8::CharLeft(int count) const { return CharMid(0, count); }

CStringUTF8 CStringUTF8::CharRight(int count) const {
  // Counted from the end: a short tail of a long text costs little.
  std::string_view rest = View();
  std::size_t size = 0;
  for (; count > 0 && !rest.empty(); --count) {
    vela::host::LastCharacter(rest, &size);
    rest.remove_suffix(size);
  }
  return Mid(static_cast<int>(rest.size()));
}

CStringUTF8 CStringUTF8::CharMid(int first) const {
  return Mid(static_cast<int>(PositionOf(View(), first)));
}

CStringUTF8 CStringUTF8::CharMid(int first, int count) const {
  const Bytes bytes = BytesOf(View(), first, count);
  return Mid(static_cast<int>(bytes.first), static_cast<int>(bytes.count));
}

int CStringUTF8::CharFind(char ch, int start) const {
  const std::string_view text = View();
  const std::size_t from = PositionOf(text, start);
  if (start < 0) return -1;
  const int index = IndexOf(text.substr(from), FindFirstByte(text.substr(from), ch, 0));
  return index < 0 ? -1 : start + index;
}

int CStringUTF8::CharFind(std::string_view sub, int start, bool case_sensitive) const {
  if (start < 0) return -1;
  const std::size_t from = PositionOf(View(), start);
  const std::string_view rest = View().substr(from);
  if (rest.empty() && CharGetLength() < start) return -1;
  // Valid text is found only between characters, so its bytes can be searched for.
  const bool by_bytes = case_sensitive && vela::host::IsValidUtf8(sub);
  const CaseMatters matters = case_sensitive ? CaseMatters::kYes : CaseMatters::kNo;
  const std::size_t found = by_bytes ? vela::host::ByteSearch(sub).FindIn(rest)
                                     : vela::host::FindCharacters(rest, sub, 0, matters).position;
  const int index = IndexOf(rest, found);
  return index < 0 ? -1 : start + index;
}

int CStringUTF8::CharReverseFind(char ch) const {
  const bool ascii = static_cast<unsigned char>(ch) < 0x80;
  return IndexOf(View(), ascii ? View().rfind(ch) : FindLastFirstByte(View(), ch));
}

int CStringUTF8::CharInsert(int index, char ch) {
  return CharInsert(index, std::string_view(&ch, 1));
}

int CStringUTF8::CharInsert(int index, std::string_view text) {
  ReplaceBytes(data_, {PositionOf(View(), index), 0}, text);
  return CharGetLength();
}

char CStringUTF8::CharGetAt(int index) const { return data_[BytesOfOne(View(), index).first]; }

CStringUTF8 CStringUTF8::CharTextAt(int index) const {
  const Bytes bytes = BytesOfOne(View(), index);
  return CStringUTF8(View().substr(bytes.first, bytes.count));
}

void CStringUTF8::CharSetAt(int index, char ch) { CharSetAt(index, std::string_view(&ch, 1)); }

void CStringUTF8::CharSetAt(int index, std::string_view text) {
  ReplaceBytes(data_, BytesOfOne(View(), index), text);
}
