#pragma once

#include <string>
#include <utility>
#include <vector>

#include "tesselc/source.h"

namespace tesselc {

// A mistake that shows only while the script runs. A script catches it as its status.
class ScriptError {
 public:
  ScriptError(SourceRange where, int status, std::string message,
              std::vector<std::string> notes = {})
      : where_(where), status_(status), message_(std::move(message)), notes_(std::move(notes)) {}

  const SourceRange& where() const { return where_; }
  int status() const { return status_; }
  const std::string& message() const { return message_; }
  const std::vector<std::string>& notes() const { return notes_; }

  struct Call {
    std::string function;
    SourceRange where;
  };
  // Told of every call that the error leaves, the innermost first.
  void AddCall(const std::string& function, const SourceRange& where) {
    if (calls_.size() == kKeptCalls) {
      ++skipped_calls_;
      calls_.pop_back();
    }
    calls_.push_back({function, where});
  }
  // The innermost calls and the outermost one, and how many between them are not kept.
  const std::vector<Call>& calls() const { return calls_; }
  std::size_t skipped_calls() const { return skipped_calls_; }

 private:
  static constexpr std::size_t kKeptCalls = 10;
  SourceRange where_;
  int status_;
  std::string message_;
  std::vector<std::string> notes_;
  std::vector<Call> calls_;
  std::size_t skipped_calls_ = 0;
};

// Thrown by exit(): ends the script, past every catch.
struct ExitRequest {
  int code;
};

// "index 5 is outside 0 .. 2", or "... : it has no elements".
[[noreturn]] void ThrowIndexError(const SourceRange& where, std::int64_t index, std::int64_t count);

}  // namespace tesselc
