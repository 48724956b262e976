#include "tesselc/run/printf_format.h"

#include <cctype>
#include <cinttypes>
#include <cstdio>

#include "frame/interface/status.h"
#include "tesselc/run/script_error.h"

namespace tesselc {
namespace {

constexpr std::int64_t kMaxWidth = 1'000'000;

class Formatter {
 public:
  Formatter(std::string_view format, const std::vector<FormatArgument>& arguments,
            const SourceRange& where)
      : format_(format), arguments_(arguments), where_(where) {}

  std::string Run() {
    while (position_ < format_.size()) {
      const std::size_t percent = format_.find('%', position_);
      text_ += format_.substr(position_, percent - position_);
      if (percent == std::string_view::npos) break;
      start_ = percent;
      position_ = percent + 1;
      Convert();
    }
    return std::move(text_);
  }

 private:
  [[noreturn]] void Fail(const std::string& what) const {
    const std::string conversion(format_.substr(start_, position_ - start_));
    throw ScriptError(where_, status::kFormatFailed, "printf: '" + conversion + "' " + what);
  }

  char Peek() const {
    if (position_ >= format_.size()) Fail("is incomplete");
    return format_[position_];
  }

  void Convert() {
    if (Peek() == '%') {
      text_ += '%';
      ++position_;
      return;
    }
    std::string spec = "%";
    while (std::string_view("-+ #0").find(Peek()) != std::string_view::npos) {
      // A repeated flag says nothing new, and must not fill the directive.
      if (spec.find(Peek()) == std::string::npos) spec += Peek();
      ++position_;
    }
    ReadNumber(spec, true);
    if (Peek() == '.') {
      spec += '.';
      ++position_;
      ReadNumber(spec, false);
    }
    const bool wide = ReadLength();
    const char conversion = Peek();
    ++position_;
    Write(spec, conversion, wide);
  }

  // A width or precision: digits, or * for an argument.
  void ReadNumber(std::string& spec, bool is_width) {
    std::int64_t number = 0;
    if (Peek() == '*') {
      ++position_;
      number = Take(FormatArgument::Kind::kInt, "takes an int for its *").integer;
      if (number < 0 && !is_width) {  // as if there were no precision
        spec.pop_back();
        return;
      }
    } else {
      if (!std::isdigit(static_cast<unsigned char>(Peek()))) return;
      while (std::isdigit(static_cast<unsigned char>(Peek()))) {
        if (number <= kMaxWidth) number = number * 10 + (Peek() - '0');
        ++position_;
      }
    }
    if (number > kMaxWidth || number < -kMaxWidth) Fail("is too wide");
    spec += std::to_string(number);
  }

  // Whether the length asks for 64 bits. "l" is either, because it is on one platform or another.
  bool ReadLength() {
    const std::size_t start = position_;
    if (format_.substr(position_, 3) == "I64") {
      position_ += 3;
      return true;
    }
    while (std::string_view("hlLjztq").find(Peek()) != std::string_view::npos) ++position_;
    const std::string_view length = format_.substr(start, position_ - start);
    return !length.empty() && length[0] != 'h';
  }

  const FormatArgument& Take(FormatArgument::Kind kind, const char* what) {
    if (next_ >= arguments_.size()) Fail("has no argument");
    const FormatArgument& argument = arguments_[next_++];
    if (argument.kind != kind) Fail(what);
    return argument;
  }

  void Write(std::string& spec, char conversion, bool wide) {
    switch (conversion) {
      case 'd':
      case 'i':
      case 'u':
      case 'x':
      case 'X':
      case 'o':
        return WriteInteger(spec, conversion, wide);
      case 'c':
        Print(spec + "c", static_cast<int>(static_cast<unsigned char>(
                              Take(FormatArgument::Kind::kInt, "takes a character").integer)));
        return;
      case 'e':
      case 'E':
      case 'f':
      case 'F':
      case 'g':
      case 'G':
      case 'a':
      case 'A':
        Print(spec + conversion, Take(FormatArgument::Kind::kDouble, "takes a double").real);
        return;
      case 's':
        Print(spec + "s", Take(FormatArgument::Kind::kText, "takes a text").text.c_str());
        return;
      default:
        Fail("is not a conversion that can be used here");
    }
  }

  void WriteInteger(const std::string& spec, char conversion, bool wide) {
    if (next_ >= arguments_.size()) Fail("has no argument");
    const FormatArgument& argument = arguments_[next_++];
    if (argument.kind == FormatArgument::Kind::kInt64) {
      if (!wide) Fail("takes an int, not a 64-bit integer (use ll)");
    } else if (argument.kind != FormatArgument::Kind::kInt) {
      Fail("takes an integer");
    }
    std::int64_t value = argument.integer;
    if (argument.kind == FormatArgument::Kind::kInt) {
      // The argument is 32 bits wide, and its sign is what the conversion makes of it.
      value = conversion == 'd' || conversion == 'i'
                  ? static_cast<std::int64_t>(static_cast<std::int32_t>(value))
                  : static_cast<std::int64_t>(static_cast<std::uint32_t>(value));
    }
    const char letter[] = {conversion, 0};
    Print(spec + "ll" + letter, static_cast<long long>(value));
  }

  template <class T>
  void Print(const std::string& spec, T value) {
    // The directive was put together here, from checked pieces, for a value of this type.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    char buffer[128];
    const int length = std::snprintf(buffer, sizeof buffer, spec.c_str(), value);
    if (length < 0) Fail("cannot be formatted");
    const auto size = static_cast<std::size_t>(length);
    if (size < sizeof buffer) {
      text_.append(buffer, size);
      return;
    }
    const std::size_t before = text_.size();
    text_.resize(before + size + 1);
    std::snprintf(text_.data() + before, size + 1, spec.c_str(), value);
    text_.pop_back();
#pragma GCC diagnostic pop
  }

  std::string_view format_;
  const std::vector<FormatArgument>& arguments_;
  SourceRange where_;
  std::size_t position_ = 0;
  std::size_t start_ = 0;  // of the conversion under way
  std::size_t next_ = 0;
  std::string text_;
};

}  // namespace

std::string FormatPrintf(std::string_view format, const std::vector<FormatArgument>& arguments,
                         const SourceRange& where) {
  return Formatter(format, arguments, where).Run();
}

}  // namespace tesselc
