// What the readers of numbers and dates in text share.
#pragma once

#if !defined(_WIN32)

#include <string_view>

namespace vela::platform {

constexpr bool IsDigit(char16_t c) { return c >= u'0' && c <= u'9'; }
constexpr bool IsLetter(char16_t c) { return (c | 0x20) >= u'a' && (c | 0x20) <= u'z'; }
constexpr bool IsSpace(char16_t c) {
  return c == u' ' || (c >= u'\t' && c <= u'\r') || c == 0x85 || c == 0xA0 || c == 0x1680 ||
         (c >= 0x2000 && c <= 0x200A) || c == 0x2028 || c == 0x2029 || c == 0x202F || c == 0x205F ||
         c == 0x3000;
}

class TextScanner {
 public:
  explicit TextScanner(std::u16string_view text) : rest_(text) {}

  bool at_end() const { return rest_.empty(); }
  // 0 at the end.
  char16_t next() const { return rest_.empty() ? u'\0' : rest_.front(); }
  void Skip() { rest_.remove_prefix(1); }
  bool Take(char16_t c) {
    if (rest_.empty() || rest_.front() != c) return false;
    Skip();
    return true;
  }
  // Either case of an ASCII letter.
  bool TakeLetter(char16_t lower) {
    return Take(lower) || Take(static_cast<char16_t>(lower - u'a' + u'A'));
  }
  bool TakeSpace() {
    const std::size_t before = rest_.size();
    while (!rest_.empty() && IsSpace(rest_.front())) Skip();
    return rest_.size() != before;
  }
  // The longest prefix of units of which belongs is true.
  template <typename Predicate>
  std::u16string_view TakeWhile(Predicate belongs) {
    std::size_t length = 0;
    while (length < rest_.size() && belongs(rest_[length])) ++length;
    const std::u16string_view taken = rest_.substr(0, length);
    rest_.remove_prefix(length);
    return taken;
  }

 private:
  std::u16string_view rest_;
};

}  // namespace vela::platform

#endif
