#include "text/line_reader.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <emmintrin.h>

#include "text/utf8_character.h"

namespace vela::text {
namespace {

constexpr std::size_t kBufferBytes = std::size_t{1} << 19;
// Read at a time: little enough to stay in the nearer caches until the lines are taken.
constexpr std::size_t kReadBytes = std::size_t{1} << 17;
static_assert(kBufferBytes > 2 * (LineReader::kMostBytes + 4));

constexpr bool IsLineEnd(char ch) { return ch == '\n' || ch == '\r'; }

// A bit for each of sixteen bytes, the first in the lowest: whether it is CR or LF.
std::uint64_t LineEnds(const char* text) {
  const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text));
  const __m128i found = _mm_or_si128(_mm_cmpeq_epi8(bytes, _mm_set1_epi8('\n')),
                                     _mm_cmpeq_epi8(bytes, _mm_set1_epi8('\r')));
  return static_cast<std::uint64_t>(_mm_movemask_epi8(found));
}

// The first CR or LF in [at, end), or end. Lines differ in length: looking at many bytes at once
// spares a guess at how many looks a line takes.
std::size_t FindLineEnd(const char* text, std::size_t at, std::size_t end) {
  constexpr std::size_t kVector = sizeof(__m128i);
  for (; at + 4 * kVector <= end; at += 4 * kVector) {
    const char* const from = text + at;
    const std::uint64_t ends = LineEnds(from) | LineEnds(from + kVector) << 16 |
                               LineEnds(from + 2 * kVector) << 32 |
                               LineEnds(from + 3 * kVector) << 48;
    if (ends != 0) return at + static_cast<std::size_t>(std::countr_zero(ends));
  }
  while (at < end && !IsLineEnd(text[at])) ++at;
  return at;
}

constexpr std::size_t Utf8Bytes(char32_t code_point) {
  return code_point < 0x80 ? 1 : code_point < 0x800 ? 2 : code_point < 0x10000 ? 3 : 4;
}

constexpr bool IsHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
constexpr bool IsLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

// The first character of UTF-16 that has a byte at least, and the bytes it takes.
struct Utf16Character {
  char32_t code_point;
  std::size_t bytes;
};

char32_t UnitOf(const char* bytes, bool is_big) {
  const auto first = static_cast<unsigned char>(bytes[0]);
  const auto second = static_cast<unsigned char>(bytes[1]);
  return is_big ? char32_t{first} << 8 | second : char32_t{second} << 8 | first;
}

Utf16Character FirstOf(std::string_view bytes, bool is_big) {
  if (bytes.size() < 2) return {U'\uFFFD', 1};
  const char32_t unit = UnitOf(bytes.data(), is_big);
  if (!IsHighSurrogate(unit)) return {IsLowSurrogate(unit) ? U'\uFFFD' : unit, 2};
  if (bytes.size() < 4) return {U'\uFFFD', 2};
  const char32_t low = UnitOf(bytes.data() + 2, is_big);
  if (!IsLowSurrogate(low)) return {U'\uFFFD', 2};
  return {0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00), 4};
}

}  // namespace

void LineReader::Start(ByteSource& source, std::int64_t position) {
  if (buffer_ == nullptr) buffer_ = std::make_unique_for_overwrite<char[]>(kBufferBytes);
  source_ = &source;
  offset_ = position;
  begin_ = filled_ = 0;
  limit_ = source.GetEnd();
  told_end_ = false;
}

// Reads what there is room for; false when there is nothing more.
bool LineReader::Fill() {
  const std::size_t ahead = filled_ - begin_;
  if (begin_ != 0) std::memmove(buffer_.get(), buffer_.get() + begin_, ahead);
  offset_ += static_cast<std::int64_t>(begin_);
  begin_ = 0;
  filled_ = ahead;
  const std::int64_t from = offset_ + static_cast<std::int64_t>(ahead);
  if (from >= limit_) return false;
  const std::size_t room = static_cast<std::size_t>(std::min<std::int64_t>(
      limit_ - from, static_cast<std::int64_t>(std::min(kReadBytes, kBufferBytes - ahead))));
  const std::size_t read = room == 0 ? 0 : source_->ReadAt(from, buffer_.get() + filled_, room);
  if (read == 0) limit_ = from;  // cut short
  filled_ += read;
  return read != 0;
}

// Tries to have so many bytes ahead.
bool LineReader::Ensure(std::size_t bytes) {
  while (filled_ - begin_ < bytes) {
    if (!Fill()) return false;
  }
  return true;
}

void LineReader::SkipMark() {
  Ensure(kMostMarkBytes);
  const std::string_view mark = MarkOf(encoding_);
  if (Available().starts_with(mark)) begin_ += mark.size();
}

// Characters of the line end behind so many bytes: 0, 1 or 2.
std::size_t LineReader::LineEndAt(std::size_t at) {
  if (!Ensure(at + 1)) return 0;
  const char ch = Available()[at];
  if (ch == '\n') return 1;
  if (ch != '\r') return 0;
  return Ensure(at + 2) && Available()[at + 1] == '\n' ? 2 : 1;
}

// The line ahead, of bytes, or as much of it as is given at a time.
LineReader::Run LineReader::FindLine() {
  for (std::size_t searched = 0;;) {
    const std::size_t most = std::min(filled_ - begin_, kMostBytes);
    searched = FindLineEnd(buffer_.get() + begin_, searched, most);
    if (searched < most || most == kMostBytes || !Fill()) return {searched, LineEndAt(searched)};
  }
}

// A line of bytes that lies in the buffer with its end, as nearly all do.
bool LineReader::NextInBuffer(bool keeps_end, std::string_view& line) {
  constexpr std::size_t kEndBytes = 2;
  const std::size_t ahead = filled_ - begin_;
  if (encoding_ != TextEncoding::kBytes || ahead <= kEndBytes) return false;
  const char* const text = buffer_.get() + begin_;
  const std::size_t most = std::min(ahead, kMostBytes) - kEndBytes;
  const std::size_t content = FindLineEnd(text, 0, most);
  if (content == most) return false;
  const std::size_t end = text[content] == '\r' && text[content + 1] == '\n' ? 2 : 1;
  line = {text, content + (keeps_end ? end : 0)};
  begin_ += content + end;
  return true;
}

bool LineReader::Next(bool keeps_end, std::string_view& line) {
  if (NextInBuffer(keeps_end, line)) return true;
  if (told_end_) limit_ = source_->GetEnd();
  if (Position() == 0 && encoding_ != TextEncoding::kBytes) SkipMark();
  told_end_ = !Ensure(1);
  if (told_end_) return false;
  switch (encoding_) {
    case TextEncoding::kUtf16Little:
    case TextEncoding::kUtf16Big:
      line = TakeUtf16(keeps_end);
      return true;
    case TextEncoding::kUtf8:
      line = TakeUtf8(FindLine(), keeps_end);
      return true;
    default:
      break;
  }
  Run run = FindLine();
  if (keeps_end && run.content + run.end > kMostBytes) run.end = 0;
  line = Available().substr(0, run.content + (keeps_end ? run.end : 0));
  begin_ += run.content + run.end;
  return true;
}

std::string_view LineReader::TakeUtf8(Run run, bool keeps_end) {
  if (run.content == kMostBytes && run.end == 0) {
    run.content = WholeCharacters(Available(), run.content);
  }
  const std::string_view content = Available().substr(0, run.content);
  std::size_t taken = FindInvalidUtf8(content);
  if (taken == content.size()) {
    if (keeps_end && run.content + run.end > kMostBytes) run.end = 0;
    begin_ += run.content + run.end;
    return {content.data(), run.content + (keeps_end ? run.end : 0)};
  }
  converted_ = content.substr(0, taken);
  while (taken < content.size()) {
    const std::string_view rest = content.substr(taken);
    const std::size_t bytes = CharacterBytes(rest);
    const bool is_invalid = bytes == 1 && static_cast<unsigned char>(rest[0]) >= 0x80;
    const std::string_view character = is_invalid ? kReplacement : rest.substr(0, bytes);
    if (converted_.size() + character.size() > kMostBytes) break;
    converted_ += character;
    taken += bytes;
  }
  const bool has_end =
      taken == content.size() && !(keeps_end && converted_.size() + run.end > kMostBytes);
  if (has_end && keeps_end) converted_ += Available().substr(taken, run.end);
  begin_ += taken + (has_end ? run.end : 0);
  return converted_;
}

std::string_view LineReader::TakeUtf16(bool keeps_end) {
  const bool is_big = encoding_ == TextEncoding::kUtf16Big;
  converted_.clear();
  while (Ensure(1)) {
    Ensure(4);
    const Utf16Character first = FirstOf(Available(), is_big);
    if (first.code_point == U'\r' || first.code_point == U'\n') {
      const std::string_view rest = Available().substr(first.bytes);
      const bool is_pair =
          first.code_point == U'\r' && rest.size() >= 2 && UnitOf(rest.data(), is_big) == U'\n';
      if (keeps_end) {
        if (converted_.size() + 1 + is_pair > kMostBytes) break;
        converted_ += static_cast<char>(first.code_point);
        if (is_pair) converted_ += '\n';
      }
      begin_ += is_pair ? 4 : 2;
      break;
    }
    if (converted_.size() + Utf8Bytes(first.code_point) > kMostBytes) break;
    AppendCodePoint(converted_, first.code_point);
    begin_ += first.bytes;
  }
  return converted_;
}

}  // namespace vela::text
