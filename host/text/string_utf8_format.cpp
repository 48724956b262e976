// printf-style formatting.
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <locale.h>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>

#include "frame/interface/string_utf8.h"
#include "host/text/text_buffer.h"

namespace text_buffer = vela::host::text_buffer;

namespace {

// The calling thread's numbers have a "." while this lives.
class PointLocale {
 public:
#if defined(_WIN32)
  PointLocale() {
    // Changing the locale is slow here, and next to never needed.
    if (std::strcmp(localeconv()->decimal_point, ".") == 0) return;
    scope_ = _configthreadlocale(_ENABLE_PER_THREAD_LOCALE);
    former_ = setlocale(LC_NUMERIC, nullptr);
    setlocale(LC_NUMERIC, "C");
    changed_ = true;
  }
  ~PointLocale() {
    if (!changed_) return;
    setlocale(LC_NUMERIC, former_.c_str());
    _configthreadlocale(scope_);
  }
#else
  PointLocale() {
    // UTF-8 for what formats wide text. Kept for the life of the process.
    static const locale_t point = newlocale(LC_ALL_MASK, "C.UTF-8", locale_t{});
    if (point != locale_t{}) former_ = uselocale(point);
  }
  ~PointLocale() {
    if (former_ != locale_t{}) uselocale(former_);
  }
#endif
  PointLocale(const PointLocale&) = delete;
  PointLocale& operator=(const PointLocale&) = delete;

 private:
#if defined(_WIN32)
  std::string former_;
  int scope_ = 0;
  bool changed_ = false;
#else
  locale_t former_ = {};
#endif
};

// Formats what fits into [buffer, buffer + size) and returns the length of the whole.
__attribute__((format(gnu_printf, 3, 0))) int FormatInto(char* buffer, std::size_t size,
                                                         const char* format,
                                                         std::va_list arguments) {
  std::va_list copy;
  va_copy(copy, arguments);
  errno = 0;
  const int length = std::vsnprintf(buffer, size, format, copy);
  va_end(copy);
  if (length >= 0) return length;
  if (errno == EOVERFLOW) throw std::length_error("text is too long");
  if (errno == ENOMEM) throw std::bad_alloc();
  throw std::invalid_argument("text cannot be formatted");
}

}  // namespace

void CStringUTF8::Format(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  try {
    FormatV(format, arguments);
  } catch (...) {
    va_end(arguments);
    throw;
  }
  va_end(arguments);
}

void CStringUTF8::FormatV(const char* format, std::va_list arguments) {
  if (format == nullptr) {
    Empty();
    return;
  }
  const PointLocale point;
  // The format and the arguments may be part of this text, so the result is made elsewhere.
  char small[512];
  const int length = FormatInto(small, sizeof small, format, arguments);
  if (static_cast<std::size_t>(length) < sizeof small) {
    *this = std::string_view(small, static_cast<std::size_t>(length));
    return;
  }
  CStringUTF8 result;
  const auto room = static_cast<std::size_t>(length) + 1;
  FormatInto(result.GetBuffer(length), room, format, arguments);
  result.ReleaseBuffer(length);
  text_buffer::Adopt(data_, std::exchange(result.data_, text_buffer::Empty()));
}
