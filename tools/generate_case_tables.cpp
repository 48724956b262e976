// Writes host/text/case_tables.h, the case mappings of every code point as ICU has them, to the
// standard output:
//   g++ -std=c++20 tools/generate_case_tables.cpp -licuuc -o generate_case_tables
//   ./generate_case_tables | clang-format --assume-filename=host/text/case_tables.h
#include <cstdint>
#include <cstdio>
#include <functional>
#include <string>
#include <unicode/uchar.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>
#include <vector>

namespace {

constexpr std::uint32_t kCodePoints = 0x110000;

using Mapping = std::function<std::int32_t(UChar* to, const UChar* from, std::int32_t length)>;

std::u32string Map(std::uint32_t code_point, const Mapping& mapping) {
  UChar units[2];
  std::int32_t length = 0;
  U16_APPEND_UNSAFE(units, length, static_cast<UChar32>(code_point));
  UChar to[8];
  const std::int32_t count = mapping(to, units, length);
  std::u32string mapped;
  for (std::int32_t i = 0; i < count;) {
    UChar32 c;
    U16_NEXT(to, i, count, c);
    mapped += static_cast<char32_t>(c);
  }
  return mapped;
}

struct Range {
  std::uint32_t first, last, step;
  std::int64_t difference;
};

// Code points one or two apart that differ from their mappings by the same amount share a range.
void Extend(std::vector<Range>& ranges, std::uint32_t code_point, std::int64_t difference) {
  if (!ranges.empty() && ranges.back().difference == difference) {
    Range& range = ranges.back();
    const std::uint32_t distance = code_point - range.last;
    const bool single = range.first == range.last;
    if (single ? distance <= 2 : distance == range.step) {
      range.step = distance;
      range.last = code_point;
      return;
    }
  }
  ranges.push_back({code_point, code_point, 1, difference});
}

void PrintMapping(const char* name, const Mapping& mapping) {
  std::vector<Range> ranges;
  std::string expansions;
  for (std::uint32_t c = 0x80; c < kCodePoints; ++c) {
    if (U_IS_SURROGATE(c)) continue;
    const std::u32string mapped = Map(c, mapping);
    if (mapped.size() == 1) {
      if (mapped[0] != c) Extend(ranges, c, std::int64_t{mapped[0]} - c);
      continue;
    }
    char line[64];
    std::snprintf(line, sizeof line, "{0x%X, {0x%X, 0x%X, 0x%X}},\n", c,
                  static_cast<unsigned>(mapped[0]), static_cast<unsigned>(mapped[1]),
                  mapped.size() > 2 ? static_cast<unsigned>(mapped[2]) : 0u);
    expansions += line;
  }
  std::printf("inline constexpr Range k%sRanges[] = {\n", name);
  for (const Range& r : ranges) {
    std::printf("{0x%X, 0x%X, %u, %lld},\n", r.first, r.last, r.step,
                static_cast<long long>(r.difference));
  }
  std::printf("};\n\ninline constexpr Expansion k%sExpansions[] = {\n%s};\n\n", name,
              expansions.c_str());
}

void PrintProperty(const char* name, UProperty property) {
  std::printf("inline constexpr Span k%s[] = {\n", name);
  for (std::uint32_t c = 0; c < kCodePoints; ++c) {
    if (!u_hasBinaryProperty(static_cast<UChar32>(c), property)) continue;
    const std::uint32_t first = c;
    while (c + 1 < kCodePoints && u_hasBinaryProperty(static_cast<UChar32>(c + 1), property)) ++c;
    std::printf("{0x%X, 0x%X},\n", first, c);
  }
  std::printf("};\n\n");
}

}  // namespace

int main() {
  std::printf(
      "// Made by tools/generate_case_tables.cpp from Unicode %s; do not edit.\n"
      "#pragma once\n\n#include <cstdint>\n\n"
      "namespace vela::host::case_tables {\n\n"
      "// Every step-th code point of first .. last maps to itself plus the difference.\n"
      "struct Range {\n  char32_t first;\n  char32_t last;\n  std::uint32_t step;\n"
      "  std::int32_t difference;\n};\n\n"
      "// One code point that becomes two, or three; it is in no range.\n"
      "struct Expansion {\n  char32_t first;\n  char32_t to[3];\n};\n\n"
      "// Code points with a property.\n"
      "struct Span {\n  char32_t first;\n  char32_t last;\n};\n\n",
      U_UNICODE_VERSION);
  UErrorCode error = U_ZERO_ERROR;
  PrintMapping("Upper", [&](UChar* to, const UChar* from, std::int32_t length) {
    return u_strToUpper(to, 8, from, length, "", &error);
  });
  PrintMapping("Lower", [&](UChar* to, const UChar* from, std::int32_t length) {
    return u_strToLower(to, 8, from, length, "", &error);
  });
  PrintMapping("Fold", [&](UChar* to, const UChar* from, std::int32_t length) {
    return u_strFoldCase(to, 8, from, length, U_FOLD_CASE_DEFAULT, &error);
  });
  PrintProperty("Cased", UCHAR_CASED);
  PrintProperty("CaseIgnorable", UCHAR_CASE_IGNORABLE);
  std::printf("}  // namespace vela::host::case_tables\n");
  return U_FAILURE(error) ? 1 : 0;
}
