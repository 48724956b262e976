#include "text/line_reader.h"

#include <algorithm>
#include <cstring>

#include "frame/interface/string_utf8.h"
#include "kernel/line_ends.h"
#include "text/utf8_character.h"

namespace vela::text {
namespace {

// Read at a time: little at first, as a script may want one line only, then twice as much each
// time. Where the system keeps a file in large pieces, it copies large blocks faster.
constexpr std::size_t kFirstRead = std::size_t{1} << 15;
constexpr std::size_t kLargestRead = std::size_t{1} << 20;
constexpr std::size_t kBufferBytes = kLargestRead + (std::size_t{1} << 18);
static_assert(kBufferBytes >= kLargestRead + LineReader::kMostBytes + 4);
constexpr std::size_t kPadding = CStringUTF8::kPadding;
// Line ends are looked for in so many bytes at a time.
constexpr std::size_t kIndexedBytes = std::size_t{1} << 13;

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
  if (buffer_ == nullptr) {
    buffer_ = std::make_unique_for_overwrite<char[]>(kBufferBytes + kPadding);
    ends_ = std::make_unique_for_overwrite<std::uint32_t[]>(kIndexedBytes + kernel::kLineEndsSlack);
  }
  source_ = &source;
  offset_ = position;
  begin_ = filled_ = indexed_ = 0;
  next_end_ = last_end_ = ends_.get();
  limit_ = source.GetEnd();
  read_bytes_ = kFirstRead;
  told_end_ = false;
}

// What is ahead comes to the front of the buffer.
void LineReader::DropTaken() {
  if (begin_ == 0) return;
  std::memmove(buffer_.get(), buffer_.get() + begin_, filled_ - begin_);
  SkipTakenEnds();
  for (std::uint32_t* end = next_end_; end != last_end_; ++end) {
    *end -= static_cast<std::uint32_t>(begin_);
  }
  indexed_ = std::max(indexed_, begin_) - begin_;
  offset_ += static_cast<std::int64_t>(begin_);
  filled_ -= begin_;
  begin_ = 0;
}

// Reads what there is room for; false when there is nothing more.
bool LineReader::Fill() {
  DropTaken();
  const std::size_t ahead = filled_;
  const std::int64_t from = offset_ + static_cast<std::int64_t>(ahead);
  if (from >= limit_) return false;
  const std::size_t room = static_cast<std::size_t>(std::min<std::int64_t>(
      limit_ - from, static_cast<std::int64_t>(std::min(read_bytes_, kBufferBytes - ahead))));
  const std::size_t read = room == 0 ? 0 : source_->ReadAt(from, buffer_.get() + filled_, room);
  if (read == 0) limit_ = from;  // cut short
  read_bytes_ = std::min(2 * read_bytes_, kLargestRead);
  filled_ += read;
  std::memset(buffer_.get() + filled_, 0, kPadding);  // nothing of other files goes into strings
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

void LineReader::IndexMore() {
  const std::size_t from = std::max(indexed_, begin_);
  const std::size_t size = std::min(filled_ - from, kIndexedBytes);
  next_end_ = ends_.get();
  last_end_ = kernel::FindLineEnds({buffer_.get() + from, size}, static_cast<std::uint32_t>(from),
                                   next_end_);
  indexed_ = from + size;
}

// How many of the bytes ahead, up to most, come before a line end.
std::size_t LineReader::FindLineEnd(std::size_t most) {
  for (;; IndexMore()) {
    if (SkipTakenEnds()) return std::min(*next_end_ - begin_, most);
    if (indexed_ >= begin_ + most) return most;
  }
}

// The line ahead, of bytes, or as much of it as is given at a time.
LineReader::Run LineReader::FindLine() {
  for (;;) {
    const std::size_t most = std::min(filled_ - begin_, kMostBytes);
    const std::size_t content = FindLineEnd(most);
    if (content < most || most == kMostBytes || !Fill()) return {content, LineEndAt(content)};
  }
}

bool LineReader::TakeNext(bool keeps_end, std::string_view& line) {
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
  return Converted();
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
  return Converted();
}

std::string_view LineReader::Converted() {
  const std::size_t size = converted_.size();
  converted_.append(kPadding, '\0');
  return {converted_.data(), size};
}

}  // namespace vela::text
