#include "text/stream_scan.h"

#include <algorithm>

namespace vela::text {
namespace {

using platform::FileStream;

constexpr bool IsSpace(int ch) { return ch == ' ' || (ch >= '\t' && ch <= '\r'); }
constexpr bool IsDigit(int ch) { return ch >= '0' && ch <= '9'; }

void SkipSpace(FileStream& stream) {
  while (IsSpace(stream.Peek())) stream.Get();
}

template <class Accepts>
void Take(FileStream& stream, std::string& text, std::size_t most, const Accepts& accepts) {
  for (int ch; text.size() < most && (ch = stream.Peek()) != FileStream::kEnd && accepts(ch);) {
    text += static_cast<char>(stream.Get());
  }
}

void TakeOne(FileStream& stream, std::string& text, std::size_t most, char first, char second) {
  const std::size_t only = std::min(most, text.size() + 1);
  Take(stream, text, only, [&](int ch) { return ch == first || ch == second; });
}

// Takes nothing unless digits follow.
void TakeExponent(FileStream& stream, std::string& text, std::size_t most) {
  const std::int64_t position = stream.Position();
  std::string exponent;
  const std::size_t room = most - text.size();
  TakeOne(stream, exponent, room, 'e', 'E');
  if (exponent.empty()) return;
  TakeOne(stream, exponent, room, '+', '-');
  Take(stream, exponent, room, IsDigit);
  if (IsDigit(static_cast<unsigned char>(exponent.back()))) {
    text += exponent;
  } else {
    std::int64_t reached = 0;
    static_cast<void>(stream.Seek(position, platform::SeekFrom::kBegin, reached));
  }
}

std::string ScanWord(FileStream& stream, std::size_t most) {
  std::string text;
  SkipSpace(stream);
  Take(stream, text, most, [](int ch) { return !IsSpace(ch); });
  return text;
}

std::string ScanLine(FileStream& stream, std::size_t most) {
  std::string text;
  Take(stream, text, most, [](int ch) { return ch != '\n' && ch != '\r'; });
  const int end = stream.Peek();
  if (end != '\n' && end != '\r') return text;
  stream.Get();
  if (end == '\r' && stream.Peek() == '\n') stream.Get();
  return text;
}

std::string ScanNumber(FileStream& stream, std::size_t most) {
  std::string text;
  SkipSpace(stream);
  const std::int64_t position = stream.Position();
  TakeOne(stream, text, most, '+', '-');
  const std::size_t sign = text.size();
  Take(stream, text, most, IsDigit);
  std::size_t digits = text.size() - sign;
  const std::size_t before_point = text.size();
  TakeOne(stream, text, most, '.', '.');
  const std::size_t point = text.size();
  if (point != before_point) Take(stream, text, most, IsDigit);
  digits += text.size() - point;
  if (digits == 0) {
    std::int64_t reached = 0;
    static_cast<void>(stream.Seek(position, platform::SeekFrom::kBegin, reached));
    return {};
  }
  TakeExponent(stream, text, most);
  return text;
}

}  // namespace

std::string Scan(FileStream& stream, ScanMode mode, std::size_t most) {
  if (most == 0) return {};
  switch (mode) {
    case ScanMode::kWord:
      return ScanWord(stream, most);
    case ScanMode::kLine:
      return ScanLine(stream, most);
    case ScanMode::kNumber:
      return ScanNumber(stream, most);
  }
  return {};
}

}  // namespace vela::text
