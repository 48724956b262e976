#pragma once

#include <string>
#include <string_view>

namespace tesselc {

// Standard output, buffered. Everything a script and the library print goes through one of these,
// so that it comes out in the order it was written; the buffer is flushed before anything is
// written to standard error, and when it holds more than a few kilobytes. Once writing has failed,
// nothing more is written.
class Output {
 public:
  // Takes over the host's output until it is destroyed.
  Output();
  ~Output();
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;

  void Write(std::string_view text) {
    buffer_ += text;
    if (buffer_.size() >= kFlushAt) Flush();
  }
  void Flush();
  // What went wrong with standard output so far, as the system names it; empty when nothing did.
  const std::string& failure() const { return failure_; }
  // To standard error, behind all that was written before.
  void WriteError(std::string_view text);

 private:
  static constexpr std::size_t kFlushAt = 16384;
  std::string buffer_;
  std::string failure_;
};

}  // namespace tesselc
