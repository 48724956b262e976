// Reads any bytes as lines, in every encoding: the pieces keep to their limit, no byte is lost or
// read twice, and what is converted is valid UTF-8.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "text/line_reader.h"

namespace {

using vela::text::LineReader;
using vela::text::TextEncoding;

void Require(bool holds) {
  if (!holds) std::abort();
}

// The bytes several times over, so that lines grow beyond the limit and across blocks; handed out
// in short reads, as a file may.
class RepeatedSource final : public vela::text::ByteSource {
 public:
  RepeatedSource(std::string bytes, std::size_t most) : bytes_(std::move(bytes)), most_(most) {}
  std::size_t ReadAt(std::int64_t offset, void* data, std::size_t size) override {
    const std::size_t from = std::min(static_cast<std::size_t>(offset), bytes_.size());
    const std::size_t count = std::min({size, most_, bytes_.size() - from});
    std::memcpy(data, bytes_.data() + from, count);
    return count;
  }
  std::int64_t GetEnd() override { return static_cast<std::int64_t>(bytes_.size()); }
  const std::string& Bytes() const { return bytes_; }

 private:
  std::string bytes_;
  std::size_t most_;
};

void ReadAll(RepeatedSource& source, TextEncoding encoding, bool keeps_end) {
  LineReader reader;
  reader.SetEncoding(encoding);
  reader.Start(source, 0);
  std::string joined;
  std::string_view line;
  std::int64_t position = 0;
  while (reader.Next(keeps_end, line)) {
    Require(line.size() <= LineReader::kMostBytes);
    Require(reader.Position() > position);
    position = reader.Position();
    if (encoding == TextEncoding::kBytes) joined += line;
    if (encoding != TextEncoding::kBytes) {
      Require(vela::text::FindInvalidUtf8(line) == line.size());
    }
  }
  Require(reader.Position() == source.GetEnd());
  if (encoding == TextEncoding::kBytes && keeps_end) Require(joined == source.Bytes());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  const std::size_t repeats = data[0] % 16 == 0 ? 600'000 / size + 1 : 1;
  const std::size_t most = data[1] % 4 == 0 ? 4093 : std::size_t{1} << 20;
  std::string bytes;
  for (std::size_t i = 0; i < repeats; ++i) {
    bytes.append(reinterpret_cast<const char*>(data) + 2, size - 2);
  }
  RepeatedSource source(std::move(bytes), most);
  for (unsigned encoding = 0; encoding < vela::text::kEncodings; ++encoding) {
    ReadAll(source, static_cast<TextEncoding>(encoding), (data[0] & 0x80) != 0);
  }
  return 0;
}
