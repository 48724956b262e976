// Formats any arguments by any format, which works or is refused; and single conversions with an
// argument that fits them, which give what the C library gives.
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fuzzer/FuzzedDataProvider.h>
#include <stdexcept>
#include <string>

#include "fuzz/require.h"
#include "text/format.h"

namespace {

using Builder = CTCExternalCallBuilder;

constexpr std::int64_t kIntegers[] = {0,
                                      1,
                                      -1,
                                      127,
                                      255,
                                      -32768,
                                      65535,
                                      2147483647,
                                      -2147483648LL,
                                      4294967295LL,
                                      4294967296LL,
                                      INT64_MAX,
                                      INT64_MIN};

std::string Formatted(const std::string& format, const Builder& arguments, bool& is_refused) {
  is_refused = false;
  try {
    return vela::text::Format(format, {arguments.GetArgValuesBuffer(), arguments.GetCount()});
  } catch (const std::invalid_argument&) {
    is_refused = true;
    return {};
  }
}

void AddAny(FuzzedDataProvider& input, Builder& builder) {
  switch (input.ConsumeIntegralInRange(0, 5)) {
    case 0:
      return builder.AddNext(input.PickValueInArray(kIntegers), 4);
    case 1:
      return builder.AddNext(std::int64_t{input.ConsumeIntegral<std::int16_t>()}, 4);
    case 2:
      return builder.AddNext(input.ConsumeIntegral<std::uint64_t>(), 8);
    case 3:
      return builder.AddNext(input.ConsumeFloatingPoint<double>(), 8);
    case 4:
      return builder.AddNext(CStringUTF8(input.ConsumeRandomLengthString(20).c_str()));
    default:
      return builder.AddNext(input.ConsumeBool() ? &builder : nullptr);
  }
}

// A huge width takes megabytes and teaches nothing.
bool HasHugeSize(const std::string& format) {
  std::size_t digits = 0;
  for (const char ch : format) {
    digits = ch >= '0' && ch <= '9' ? digits + 1 : 0;
    if (digits > 4) return true;
  }
  return false;
}

void FormatAnything(FuzzedDataProvider& input) {
  Builder builder;
  for (int i = input.ConsumeIntegralInRange(0, 6); i > 0; --i) AddAny(input, builder);
  const std::string format = input.ConsumeRemainingBytesAsString();
  if (HasHugeSize(format)) return;
  bool is_refused = false;
  const std::string text = Formatted(format, builder, is_refused);
  if (!is_refused && format.find('%') == format.npos) REQUIRE(text == format);
}

// A conversion whose meaning the C standard gives, without its letter.
std::string AnyFlags(FuzzedDataProvider& input, bool is_signed, bool is_alternate) {
  std::string flags;
  if (input.ConsumeBool()) flags += '-';
  if (input.ConsumeBool()) flags += '0';
  if (is_signed && input.ConsumeBool()) flags += '+';
  if (is_signed && input.ConsumeBool()) flags += ' ';
  if (is_alternate && input.ConsumeBool()) flags += '#';
  return flags;
}

std::string AnySizes(FuzzedDataProvider& input) {
  std::string sizes;
  if (input.ConsumeBool()) sizes += std::to_string(input.ConsumeIntegralInRange(1, 400));
  if (input.ConsumeBool()) sizes += "." + std::to_string(input.ConsumeIntegralInRange(0, 400));
  return sizes;
}

template <class T>
void CompareWithC(const std::string& format, const Builder& builder, const char* c_format,
                  T value) {
  std::array<char, 2048> expected;
  REQUIRE(std::snprintf(expected.data(), expected.size(), c_format, value) <
          static_cast<int>(expected.size()));
  bool is_refused = false;
  const std::string text = Formatted(format, builder, is_refused);
  REQUIRE(!is_refused);
  REQUIRE(text == expected.data());
}

void CompareInteger(FuzzedDataProvider& input) {
  const char letter = input.PickValueInArray({'d', 'i', 'u', 'o', 'x', 'X'});
  const bool is_signed = letter == 'd' || letter == 'i';
  const bool is_alternate = letter == 'o' || letter == 'x' || letter == 'X';
  const std::string begin = "%" + AnyFlags(input, is_signed, is_alternate) + AnySizes(input);
  const bool is_wide = input.ConsumeBool();
  const std::string length = is_wide ? "ll" : input.PickValueInArray<std::string>({"", "h", "hh"});
  const std::string format = begin + length + letter;
  const std::int64_t any = input.ConsumeBool() ? input.PickValueInArray(kIntegers)
                                               : input.ConsumeIntegral<std::int64_t>();
  const std::int64_t value = is_wide ? any : static_cast<std::int32_t>(any);
  Builder builder;
  builder.AddNext(value, is_wide ? 8 : 4);
  if (is_wide) return CompareWithC(format, builder, format.c_str(), static_cast<long long>(value));
  CompareWithC(format, builder, format.c_str(), static_cast<int>(value));
}

void CompareReal(FuzzedDataProvider& input) {
  const char letter = input.PickValueInArray({'f', 'F', 'e', 'E', 'g', 'G'});
  const std::string format = "%" + AnyFlags(input, true, true) + AnySizes(input) + letter;
  const auto bits = input.ConsumeIntegral<std::uint64_t>();
  double value;
  std::memcpy(&value, &bits, sizeof value);
  if (std::isnan(value)) return;  // printed without its sign
  Builder builder;
  builder.AddNext(value, 8);
  CompareWithC(format, builder, format.c_str(), value);
}

void CompareText(FuzzedDataProvider& input) {
  const std::string begin = "%" + std::string(input.ConsumeBool() ? "-" : "");
  Builder builder;
  if (input.ConsumeBool()) {
    const char ch = static_cast<char>(input.ConsumeIntegralInRange(1, 127));
    builder.AddNext(std::int64_t{ch}, 1);
    const std::string format = begin + std::to_string(input.ConsumeIntegralInRange(1, 99)) + "c";
    return CompareWithC(format, builder, format.c_str(), ch);
  }
  const std::string format = begin + AnySizes(input) + "s";
  const std::string text = input.ConsumeRandomLengthString(500);
  builder.AddNext(CStringUTF8(text.c_str()));
  CompareWithC(format, builder, format.c_str(), text.c_str());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider input(data, size);
  switch (input.ConsumeIntegralInRange(0, 4)) {
    case 0:
      CompareInteger(input);
      break;
    case 1:
      CompareReal(input);
      break;
    case 2:
      CompareText(input);
      break;
    default:
      FormatAnything(input);
  }
  return 0;
}
