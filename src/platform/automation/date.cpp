#include "platform/automation/date.h"

#if !defined(_WIN32)

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <optional>
#include <vector>

#include "platform/automation/text_scanner.h"

namespace vela::platform {
namespace {

using std::chrono::sys_days;
using std::chrono::year_month_day;

constexpr sys_days kDayZero = std::chrono::year(1899) / 12 / 30;
constexpr int kSecondsPerDay = 86400;

std::optional<year_month_day> MakeDate(int year, int month, int day) {
  // The first half of a century of two digits is the present one.
  if (year < 50) year += 2000;
  if (year < 100) year += 1900;
  if (year > 9999 || month > 12 || day > 31) return std::nullopt;
  const year_month_day date = std::chrono::year(year) / month / day;
  return date.ok() ? std::optional(date) : std::nullopt;
}

int ThisYear() {
  const auto today = std::chrono::floor<std::chrono::days>(std::chrono::system_clock::now());
  return static_cast<int>(year_month_day(today).year());
}

// The 1-based position of word among names, whole or by its first three letters; 0 if none.
template <std::size_t count>
int PositionOf(std::u16string_view word, const std::array<std::string_view, count>& names) {
  std::string lower;
  for (const char16_t c : word) lower += static_cast<char>(c | 0x20);
  for (std::size_t i = 0; i < count; ++i) {
    if (lower == names[i] || lower == names[i].substr(0, 3)) return static_cast<int>(i) + 1;
  }
  return 0;
}

int MonthOf(std::u16string_view word) {
  return PositionOf<12>(word, {"january", "february", "march", "april", "may", "june", "july",
                               "august", "september", "october", "november", "december"});
}

bool IsWeekday(std::u16string_view word) {
  return PositionOf<7>(word, {"sunday", "monday", "tuesday", "wednesday", "thursday", "friday",
                              "saturday"}) != 0;
}

enum class HalfDay { kNone, kMorning, kAfternoon };

HalfDay HalfDayOf(std::u16string_view word) {
  if (word.empty() || word.size() > 2 || (word.size() == 2 && (word[1] | 0x20) != u'm'))
    return HalfDay::kNone;
  if ((word[0] | 0x20) == u'a') return HalfDay::kMorning;
  return (word[0] | 0x20) == u'p' ? HalfDay::kAfternoon : HalfDay::kNone;
}

class DateReader {
 public:
  explicit DateReader(std::u16string_view text) : text_(text) {}

  HRESULT Read(double& days) {
    if (!ReadFields()) return DISP_E_TYPEMISMATCH;
    double whole = 0;
    if (!fields_.empty() || month_ != 0) {
      const auto date = Date();
      if (!date) return DISP_E_TYPEMISMATCH;
      whole = static_cast<double>((sys_days(*date) - kDayZero).count());
      if (!IsDate(whole)) return DISP_E_TYPEMISMATCH;
    } else if (time_.empty() || weekday_) {
      return DISP_E_TYPEMISMATCH;
    }
    const auto time = TimeOfDay();
    if (!time) return DISP_E_TYPEMISMATCH;
    days = whole < 0 ? whole - *time : whole + *time;
    return S_OK;
  }

 private:
  bool ReadFields() {
    // What joins two fields of a date must stand between two of them.
    bool joined = false;
    for (;;) {
      while (text_.TakeSpace() || text_.Take(u',')) {
      }
      if (text_.at_end()) return !joined;
      const char16_t c = text_.next();
      if (c == u'/' || c == u'-') {
        if (joined || (fields_.empty() && month_ == 0)) return false;
        joined = true;
        text_.Skip();
        continue;
      }
      joined = false;
      if (IsDigit(c) ? !ReadNumber() : !IsLetter(c) || !ReadWord()) return false;
    }
  }

  bool ReadNumber() {
    const int number = Value();
    if (IsTimeSeparator(text_.next())) return ReadTime(number);
    TextScanner ahead = text_;
    ahead.TakeSpace();
    const HalfDay half = HalfDayOf(ahead.TakeWhile(IsLetter));
    if (half != HalfDay::kNone) {
      text_ = ahead;
      return SetTime({number}, half);
    }
    fields_.push_back(number);
    return fields_.size() <= 3;
  }

  bool ReadTime(int hours) {
    std::vector<int> time = {hours};
    while (IsTimeSeparator(text_.next())) {
      text_.TakeWhile(IsTimeSeparator);
      if (!IsDigit(text_.next()) || time.size() == 3) return false;
      time.push_back(Value());
    }
    TextScanner ahead = text_;
    ahead.TakeSpace();
    const HalfDay half = HalfDayOf(ahead.TakeWhile(IsLetter));
    if (half != HalfDay::kNone) text_ = ahead;
    return SetTime(std::move(time), half);
  }

  bool SetTime(std::vector<int> time, HalfDay half) {
    if (!time_.empty()) return false;
    if (half == HalfDay::kMorning && time[0] == 12) time[0] = 0;
    if (half == HalfDay::kAfternoon && time[0] < 12) time[0] += 12;
    time_ = std::move(time);
    return true;
  }

  bool ReadWord() {
    const std::u16string_view word = text_.TakeWhile(IsLetter);
    if (IsWeekday(word) && fields_.empty() && month_ == 0) return weekday_ = true;
    const int month = MonthOf(word);
    if (month == 0 || month_ != 0) return false;
    month_ = month;
    return true;
  }

  // Digits as a number, which is more than any field holds where they are many.
  int Value() {
    int value = 0;
    for (const char16_t digit : text_.TakeWhile(IsDigit)) {
      value = std::min(value * 10 + (digit - u'0'), 100000);
    }
    return value;
  }

  static bool IsTimeSeparator(char16_t c) { return c == u':' || c == u'.'; }

  std::optional<year_month_day> Date() const {
    const auto& f = fields_;
    const auto first = [](std::initializer_list<std::optional<year_month_day>> candidates) {
      for (const auto& candidate : candidates) {
        if (candidate) return candidate;
      }
      return std::optional<year_month_day>();
    };
    if (month_ != 0) {
      if (f.size() == 1) {
        return first({MakeDate(ThisYear(), month_, f[0]), MakeDate(f[0], month_, 1)});
      }
      if (f.size() != 2) return std::nullopt;
      return first({MakeDate(f[1], month_, f[0]), MakeDate(f[0], month_, f[1])});
    }
    if (f.size() == 2) {
      return first({MakeDate(ThisYear(), f[0], f[1]), MakeDate(ThisYear(), f[1], f[0]),
                    MakeDate(f[1], f[0], 1), MakeDate(f[0], f[1], 1)});
    }
    if (f.size() != 3) return std::nullopt;
    return first(
        {MakeDate(f[2], f[0], f[1]), MakeDate(f[2], f[1], f[0]), MakeDate(f[0], f[1], f[2])});
  }

  std::optional<double> TimeOfDay() const {
    constexpr int kLimits[] = {24, 60, 60};
    int seconds = 0;
    for (std::size_t i = 0; i < 3; ++i) {
      const int value = i < time_.size() ? time_[i] : 0;
      if (value >= kLimits[i]) return std::nullopt;
      seconds = seconds * kLimits[i] + value;
    }
    return static_cast<double>(seconds) / kSecondsPerDay;
  }

  TextScanner text_;
  std::vector<int> fields_;
  std::vector<int> time_;
  int month_ = 0;
  bool weekday_ = false;
};

}  // namespace

HRESULT ParseDate(std::u16string_view text, double& days) { return DateReader(text).Read(days); }

HRESULT FormatDate(double days, std::string& text) {
  if (!IsDate(days)) return E_INVALIDARG;
  const double whole = std::trunc(days);
  const double fraction = std::fabs(days - whole);
  const auto rounded = static_cast<int>(std::lround(fraction * kSecondsPerDay));
  const sys_days day = kDayZero + std::chrono::days(static_cast<int>(whole)) +
                       std::chrono::days(rounded / kSecondsPerDay);
  const year_month_day date(day);
  const int year = static_cast<int>(date.year());
  if (year > 9999) return E_INVALIDARG;
  char buffer[40];
  text.clear();
  if (whole != 0) {
    std::snprintf(buffer, sizeof buffer, "%02u/%02u/%04d", static_cast<unsigned>(date.month()),
                  static_cast<unsigned>(date.day()), year);
    text = buffer;
  }
  if (whole == 0 || fraction != 0) {
    const int seconds = rounded % kSecondsPerDay;
    std::snprintf(buffer, sizeof buffer, "%s%02d:%02d:%02d", text.empty() ? "" : " ",
                  seconds / 3600, seconds / 60 % 60, seconds % 60);
    text += buffer;
  }
  return S_OK;
}

}  // namespace vela::platform

#endif
