#pragma once

#include <atomic>
#include <string>
#include <string_view>

namespace tesselc {

// Standard output, buffered. Everything a script and the library print goes through one of these,
// so that it comes out in the order it was written; the buffer is flushed before anything is
// written to standard error, and when it holds more than a few kilobytes; on a terminal, at the end
// of each line. Once writing has failed, nothing more is written.
class Output {
 public:
  // Takes over the host's output until it is destroyed.
  Output();
  ~Output();
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;

  void Write(std::string_view text) {
    const Busy busy(*this);
    buffer_ += text;
    if (buffer_.size() >= kFlushAt || (by_line_ && text.find('\n') != text.npos)) Flush();
  }
  void Flush();
  // From a signal handler, right before the program ends: writes what is in the buffer, unless the
  // signal came in the middle of a change of it.
  void WriteInHaste() noexcept;
  // What went wrong with standard output so far, as the system names it; empty when nothing did.
  const std::string& failure() const { return failure_; }
  // To standard error, behind all that was written before.
  void WriteError(std::string_view text);

 private:
  // Marks a change of the buffer for a signal handler on this thread.
  class Busy {
   public:
    explicit Busy(Output& output) : output_(output) { Mark(true); }
    ~Busy() { Mark(false); }

   private:
    void Mark(bool is_busy) {
      output_.is_busy_ = is_busy;
      std::atomic_signal_fence(std::memory_order_seq_cst);
    }
    Output& output_;
  };

  static constexpr std::size_t kFlushAt = 16384;
  volatile bool is_busy_ = false;
  bool by_line_;
  std::string buffer_;
  std::string failure_;
};

}  // namespace tesselc
