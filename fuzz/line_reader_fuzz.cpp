// Reads any bytes as lines, in every encoding: joined, the lines are the whole converted by a plain
// decoder, no piece is longer than the limit, and no byte is lost or read twice, even while the
// file grows or is cut.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "fuzz/require.h"
#include "text/line_reader.h"
#include "text/utf8_character.h"

namespace {

using vela::text::LineReader;
using vela::text::TextEncoding;

// Bytes that are handed out in short reads, as a file may, and of which only a part is there at
// first.
class ChangingSource final : public vela::text::ByteSource {
 public:
  ChangingSource(std::string_view bytes, std::size_t most) : bytes_(bytes), most_(most) {
    Resize(bytes.size());
  }
  void Resize(std::size_t end) { end_ = std::min(end, bytes_.size()); }
  std::size_t ReadAt(std::int64_t offset, void* data, std::size_t size) override {
    const std::size_t from = std::min(static_cast<std::size_t>(offset), end_);
    const std::size_t count = std::min({size, most_, end_ - from});
    std::memcpy(data, bytes_.data() + from, count);
    return count;
  }
  std::int64_t GetEnd() override { return static_cast<std::int64_t>(end_); }

 private:
  std::string_view bytes_;
  std::size_t most_;
  std::size_t end_ = 0;
};

std::string FromUtf8(std::string_view bytes) {
  std::string text;
  while (!bytes.empty()) {
    const std::size_t taken = vela::text::CharacterBytes(bytes);
    const bool is_valid = taken > 1 || static_cast<unsigned char>(bytes[0]) < 0x80;
    text += is_valid ? bytes.substr(0, taken) : vela::text::kReplacement;
    bytes.remove_prefix(taken);
  }
  return text;
}

std::string FromUtf16(std::string_view bytes, bool is_big) {
  std::string text;
  char32_t high = 0;  // a surrogate that waits for its second half
  const auto append = [&](char32_t code_point) { vela::text::AppendCodePoint(text, code_point); };
  std::size_t at = 0;
  for (; at + 1 < bytes.size(); at += 2) {
    const auto first = static_cast<unsigned char>(bytes[at]);
    const auto second = static_cast<unsigned char>(bytes[at + 1]);
    const char32_t unit = is_big ? first * 256u + second : second * 256u + first;
    const bool is_low = unit >= 0xDC00 && unit < 0xE000;
    if (high != 0 && is_low) {
      append(0x10000 + (high - 0xD800) * 0x400 + (unit - 0xDC00));
      high = 0;
      continue;
    }
    if (high != 0) append(0xFFFD);
    high = unit >= 0xD800 && unit < 0xDC00 ? unit : 0;
    if (high == 0) append(is_low ? char32_t{0xFFFD} : unit);
  }
  if (high != 0) append(0xFFFD);
  if (at < bytes.size()) append(0xFFFD);
  return text;
}

// The whole text, without its mark.
std::string Converted(std::string_view bytes, TextEncoding encoding) {
  if (encoding == TextEncoding::kBytes) return std::string(bytes);
  const std::string_view mark = vela::text::MarkOf(encoding);
  if (bytes.starts_with(mark)) bytes.remove_prefix(mark.size());
  return encoding == TextEncoding::kUtf8 ? FromUtf8(bytes)
                                         : FromUtf16(bytes, encoding == TextEncoding::kUtf16Big);
}

std::vector<std::string> PlainLines(std::string_view text) {
  std::vector<std::string> lines;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find_first_of("\r\n"), text.size());
    lines.emplace_back(text.substr(0, end));
    text.remove_prefix(end);
    if (!text.empty()) text.remove_prefix(text.starts_with("\r\n") ? 2 : 1);
  }
  return lines;
}

// Takes what is left into lines, up to the end.
void Read(LineReader& reader, bool keeps_end, std::vector<std::string>& lines) {
  std::int64_t position = reader.Position();
  for (std::string_view line; reader.Next(keeps_end, line);) {
    REQUIRE(line.size() <= LineReader::kMostBytes);
    REQUIRE(reader.Position() > position);
    position = reader.Position();
    lines.emplace_back(line);
  }
}

std::string Joined(const std::vector<std::string>& lines) {
  std::string joined;
  for (const std::string& line : lines) joined += line;
  return joined;
}

void ReadWhole(LineReader& reader, std::string_view bytes, TextEncoding encoding,
               std::size_t most) {
  const std::string expected = Converted(bytes, encoding);
  for (const bool keeps_end : {true, false}) {
    ChangingSource source(bytes, most);
    reader.SetEncoding(encoding);
    reader.Start(source, 0);
    std::vector<std::string> lines;
    Read(reader, keeps_end, lines);
    REQUIRE(reader.Position() == source.GetEnd());
    if (keeps_end) {
      REQUIRE(Joined(lines) == expected);
    } else if (const auto plain = PlainLines(expected);
               std::all_of(plain.begin(), plain.end(), [](const std::string& line) {
                 return line.size() < LineReader::kMostBytes;
               })) {
      REQUIRE(lines == plain);
    }
  }
}

// Starts at one size, goes on at another.
void ReadChanging(LineReader& reader, std::string_view bytes, std::size_t first, std::size_t then,
                  std::size_t lines) {
  ChangingSource source(bytes, bytes.size() + 1);
  source.Resize(first);
  reader.SetEncoding(TextEncoding::kBytes);
  reader.Start(source, 0);
  std::vector<std::string> read;
  for (std::string_view line; read.size() < lines && reader.Next(true, line);) {
    read.emplace_back(line);
  }
  source.Resize(then);
  Read(reader, true, read);
  Read(reader, true, read);
  const std::string joined = Joined(read);
  REQUIRE(bytes.starts_with(joined));
  if (then >= first) REQUIRE(joined.size() == then);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 3) return 0;
  // Now and then behind so much that the limit of a line, or the end of the first block, lies in
  // the bytes. That takes its time, so it is done for one encoding then.
  const std::size_t fillers[] = {LineReader::kMostBytes, std::size_t{1} << 15};
  const bool is_filled = data[0] % 128 == 0;
  std::string bytes;
  if (is_filled) bytes.assign(fillers[data[0] / 128] - data[1] % 64, 'x');
  const std::size_t most = data[1] % 4 == 0 ? 1 + bytes.size() / 2 + data[1] : std::size_t{1} << 20;
  bytes.append(reinterpret_cast<const char*>(data) + 3, size - 3);
  LineReader reader;  // one for all, as its large buffer takes most of the time
  for (unsigned encoding = 0; encoding < vela::text::kEncodings; ++encoding) {
    if (is_filled && encoding != data[2] % vela::text::kEncodings) continue;
    ReadWhole(reader, bytes, static_cast<TextEncoding>(encoding), most);
  }
  if (is_filled) return 0;
  const std::size_t part = bytes.size() * data[2] / 255;
  ReadChanging(reader, bytes, part, bytes.size(), data[0] / 64);
  ReadChanging(reader, bytes, bytes.size(), part, data[0] / 64);
  return 0;
}
