// Reads a file line by line at memory speed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "text/text_encoding.h"

namespace vela::text {

// What lines are read from.
class ByteSource {
 public:
  virtual ~ByteSource() = default;
  // Copies up to size bytes from an offset on; returns how many, 0 at the end and on failure.
  virtual std::size_t ReadAt(std::int64_t offset, void* data, std::size_t size) = 0;
  // Where the end is now; the largest number when that is not known.
  virtual std::int64_t GetEnd() = 0;
};

// Lines end with LF, CR LF or a lone CR; a last line without an end is a line. At most kMostBytes
// of a line come at a time, as UTF-8: a longer line comes in pieces, of which the last one has the
// end. A line end that is kept is never divided.
//
// The reader keeps one buffer of a little over a megabyte, whatever the size of the file. Blocks
// are copied rather than mapped: a file cut short meanwhile is an ordinary end, where reading on in
// a mapping would end the process.
class LineReader {
 public:
  static constexpr std::size_t kMostBytes = 204160;

  // kBytes passes lines as they are. In the other encodings what is invalid becomes U+FFFD, and a
  // mark at the beginning of the file is skipped.
  void SetEncoding(TextEncoding encoding) { encoding_ = encoding; }
  TextEncoding Encoding() const { return encoding_; }

  // Reads on at a position of a source that stays until Stop. Throws std::bad_alloc.
  void Start(ByteSource& source, std::int64_t position);
  void Stop() { source_ = nullptr; }
  bool IsActive() const { return source_ != nullptr; }

  // The position of what the next call reads. Only while active.
  std::int64_t Position() const { return offset_ + static_cast<std::int64_t>(begin_); }

  // The next line, valid until the next call and followed by CStringUTF8::kPadding readable bytes;
  // false at the end of the file, which is where it was when reading started. A call after that
  // looks for the end again, so that a file that grows can be followed. Throws std::bad_alloc.
  bool Next(bool keeps_end, std::string_view& line) {
    return TakeIndexed(keeps_end, line) || TakeNext(keeps_end, line);
  }

 private:
  // A run of bytes in the buffer: content, then a line end of 0, 1 or 2 characters.
  struct Run {
    std::size_t content;
    std::size_t end;
  };

  bool TakeIndexed(bool keeps_end, std::string_view& line);
  bool TakeNext(bool keeps_end, std::string_view& line);
  std::string_view Available() const { return {buffer_.get() + begin_, filled_ - begin_}; }
  void DropTaken();
  bool Fill();
  bool Ensure(std::size_t bytes);
  void SkipMark();
  void IndexMore();
  // Passes over the line ends that are behind; whether one ahead is known.
  bool SkipTakenEnds() {
    while (next_end_ != last_end_ && *next_end_ < begin_) ++next_end_;
    return next_end_ != last_end_;
  }
  std::size_t FindLineEnd(std::size_t most);
  Run FindLine();
  std::size_t LineEndAt(std::size_t at);
  std::string_view TakeUtf8(Run run, bool keeps_end);
  std::string_view TakeUtf16(bool keeps_end);
  std::string_view Converted();

  ByteSource* source_ = nullptr;
  TextEncoding encoding_ = TextEncoding::kBytes;
  std::unique_ptr<char[]> buffer_;
  // The buffer holds the bytes of the file from offset_ on; those from begin_ to filled_ are ahead.
  std::int64_t offset_ = 0;
  std::size_t begin_ = 0;
  std::size_t filled_ = 0;
  // Where there is CR or LF in the buffer up to indexed_. Those before next_end_, and those before
  // begin_, are behind.
  std::unique_ptr<std::uint32_t[]> ends_;
  std::uint32_t* next_end_ = nullptr;
  std::uint32_t* last_end_ = nullptr;
  std::size_t indexed_ = 0;
  std::int64_t limit_ = 0;      // the end, as last seen
  std::size_t read_bytes_ = 0;  // to read next
  bool told_end_ = false;
  std::string converted_;
};

// A line of bytes whose end is known, as of nearly all.
inline bool LineReader::TakeIndexed(bool keeps_end, std::string_view& line) {
  if (encoding_ != TextEncoding::kBytes || !SkipTakenEnds()) return false;
  constexpr std::size_t kMostEnd = 2;
  const char* const text = buffer_.get() + begin_;
  const std::size_t content = *next_end_ - begin_;
  if (content + kMostEnd > kMostBytes || *next_end_ + kMostEnd > filled_) return false;
  const std::size_t end = text[content] == '\r' && text[content + 1] == '\n' ? 2 : 1;
  line = {text, content + (keeps_end ? end : 0)};
  begin_ += content + end;
  ++next_end_;
  return true;
}

}  // namespace vela::text
