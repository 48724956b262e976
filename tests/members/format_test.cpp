// Format against the C library's printf, and the calls that would be undefined in C.
#include <cstdio>
#include <limits>

#include "text_fixture.h"

namespace vela::testing {
namespace {

template <class... Args>
std::string Formatted(const std::string& format, const Args&... args) {
  const ObjectRef s = StringOf("before");
  const Result result = Call(s, "Format", format, args...);
  return result.status == 0 ? TextOf(s) : "status " + std::to_string(result.status);
}

template <class T>
std::string Printed(const std::string& format, T value) {
  char buffer[1000];
  std::snprintf(buffer, sizeof buffer, format.c_str(), value);
  return buffer;
}

const char* const kFlags[] = {"", "-", "+", " ", "#", "0", "-+", "+0", "# ", "-0", "#0", " +#0-"};
const char* const kSizes[] = {"", "1", "12", ".0", ".1", ".5", ".20", "15.3", "30.12"};

// Whether the C standard gives the flags a meaning with the conversion; where it does not, the C
// libraries differ.
bool IsDefined(const std::string& flags, const std::string& type) {
  const bool is_signed = type.ends_with('d') || type.ends_with('i');
#if defined(_WIN32)
  // This C library gives "" for %#.0o of 0, where the standard asks for "0".
  if (type.ends_with('o') && flags.find('#') != std::string::npos) return false;
#endif
  if (!is_signed && flags.find_first_of("+ ") != std::string::npos) return false;
  return flags.find('#') == std::string::npos || (!is_signed && !type.ends_with('u'));
}

TEST(Format, IntegersAsPrintfDoes) {
  for (const char* flags : kFlags) {
    for (const char* sizes : kSizes) {
      for (const char* type : {"d", "i", "u", "o", "x", "X", "hd", "hhu", "hhd", "hx"}) {
        if (!IsDefined(flags, type)) continue;
        const std::string format = std::string("%") + flags + sizes + type;
        for (const int value : {0, 1, -1, 7, 255, 300, -32769, std::numeric_limits<int>::max(),
                                std::numeric_limits<int>::min()}) {
          EXPECT_EQ(Formatted(format, value), Printed(format, value)) << format;
        }
      }
      for (const char* type : {"lld", "llu", "llx", "llo"}) {
        if (!IsDefined(flags, type)) continue;
        const std::string format = std::string("%") + flags + sizes + type;
        for (const auto value : {std::int64_t{-1}, std::numeric_limits<std::int64_t>::min()}) {
          EXPECT_EQ(Formatted(format, ScalarOf(value)), Printed(format, value)) << format;
        }
      }
    }
  }
  EXPECT_EQ(Formatted("%I64d|%jd|%zd|%td", ScalarOf(std::int64_t{1} << 40), 2, 3, 4),
            "1099511627776|2|3|4");
  EXPECT_EQ(Formatted("%lx", -1), "ffffffff") << "l is 32 bits, on every platform";
  EXPECT_EQ(Formatted("%lld", 5), "5");
}

// Where rounding carries into another digit, some C libraries forget the zeros that # asks for.
bool CarriesInAlternateForm(const std::string& format, double value) {
  const bool is_general = format.back() == 'g' || format.back() == 'G';
  return is_general && format.find('#') != std::string::npos &&
         (value == 999999.5 || value == 99999.95);
}

TEST(Format, RealsAsPrintfDoes) {
  const double inf = std::numeric_limits<double>::infinity();
  const double values[] = {0.0,  -0.0,  1.0,    -1.5, 0.1, 123456.789, 1e-5, 99999.95, 1e15,
                           1e16, 1e300, 5e-324, -inf, inf, 0.5,        2.5,  999999.5, 1e100};
  for (const char* flags : kFlags) {
    for (const char* sizes : kSizes) {
      for (const char type : {'f', 'F', 'e', 'E', 'g', 'G'}) {
        const std::string format = std::string("%") + flags + sizes + type;
        for (const double value : values) {
          if (CarriesInAlternateForm(format, value)) continue;
          EXPECT_EQ(Formatted(format, value), Printed(format, value)) << format << " " << value;
        }
      }
    }
  }
  EXPECT_EQ(Formatted("%f %E", std::numeric_limits<double>::quiet_NaN(),
                      -std::numeric_limits<double>::quiet_NaN()),
            "nan NAN");
  EXPECT_EQ(Formatted("%#g", 999999.5), "1.00000e+06");
  EXPECT_EQ(Formatted("%a %A", 1.5, -0.5), "0x1.8p+0 -0X1P-1");
  EXPECT_EQ(Formatted("%Lf", 1.0), "1.000000");
  EXPECT_EQ(Formatted("%.2f", ScalarOf(1.25f)), "1.25");
}

TEST(Format, TextsCharactersAndLiterals) {
  EXPECT_EQ(Formatted("%s|%5s|%-5s|%.2s|%5.1s|", "ab", "ab", "ab", "abc", "xyz"),
            "ab|   ab|ab   |ab|    x|");
  EXPECT_EQ(Formatted("%c%3c%-3c|", 'a', 'b', static_cast<int>('c')), "a  bc  |");
  EXPECT_EQ(Formatted("100%% %d", 5), "100% 5");
  EXPECT_EQ(Formatted("%s", StringOf("text")), "text");
  EXPECT_EQ(Formatted("%*d|%-*d|%*d", 5, 42, 5, 42, -5, 42), "   42|42   |42   ");
  EXPECT_EQ(Formatted("%.*f|%.*f", 2, 1.0, -1, 1.0), "1.00|1.000000");
  EXPECT_EQ(Formatted("left over", 1, 2), "left over");
  const ObjectRef array = ArrayOf({"a", "b"});
  EXPECT_EQ(Formatted("%s", Part{array, MSOINDICES::Element(1)}), "b");
  EXPECT_EQ(Formatted("%.3s", Null{}), "status 288");
  EXPECT_EQ(Formatted("%p", Null{}), "0x0");
}

TEST(Format, RefusesWhatCLeavesUndefined) {
  const ObjectRef wide = ScalarOf(std::int64_t{1} << 40);
  const std::string refused = "status 288";
  EXPECT_EQ(Formatted("%d"), refused);
  EXPECT_EQ(Formatted("%d %d", 1), refused);
  EXPECT_EQ(Formatted("%*d", 1), refused);
  EXPECT_EQ(Formatted("%n", 1), refused);
  EXPECT_EQ(Formatted("%s", 1), refused);
  EXPECT_EQ(Formatted("%s", 1.5), refused);
  EXPECT_EQ(Formatted("%d", "text"), refused);
  EXPECT_EQ(Formatted("%d", 1.5), refused);
  EXPECT_EQ(Formatted("%f", 1), refused);
  EXPECT_EQ(Formatted("%*s", 1.0, "x"), refused);
  EXPECT_EQ(Formatted("%d", wide), refused) << "more than the conversion holds";
  EXPECT_EQ(Formatted("%x", ScalarOf(std::uint64_t{0xFFFFFFFF})), "ffffffff");
  EXPECT_EQ(Formatted("%ls", "x"), refused);
  for (const char* format : {"%", "%5", "%.", "%-", "%ll", "%y", "%'d", "%1$d", "%S", "%C"}) {
    EXPECT_EQ(Formatted(format, 1), refused) << format;
  }
  EXPECT_EQ(Formatted("%99999999999999999999d", 1), refused);
  EXPECT_EQ(Formatted("%.99999999999d", 1), refused);
  EXPECT_EQ(Formatted("%*d", std::numeric_limits<int>::min(), 1), refused);

  const ObjectRef s = StringOf("kept");
  EXPECT_EQ(Call(s, "Format", "%d and %s", 1).status, status::kFormatFailed);
  EXPECT_EQ(TextOf(s), "kept");
  EXPECT_EQ(Call(s, "Format", "%d", VectorOf<int>({1})).status, status::kBadArguments);
  EXPECT_EQ(Call(s, "Format", 5).status, status::kFailed);
}

}  // namespace
}  // namespace vela::testing
