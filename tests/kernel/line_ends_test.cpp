#include "kernel/line_ends.h"

#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

namespace vela::kernel {
namespace {

std::vector<std::uint32_t> PlainEnds(std::string_view text, std::uint32_t first) {
  std::vector<std::uint32_t> ends;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\n' || text[i] == '\r') ends.push_back(first + static_cast<std::uint32_t>(i));
  }
  return ends;
}

// Also with nothing behind the text that may be read, and no room for more than is promised.
std::vector<std::uint32_t> Ends(std::string_view text, std::uint32_t first) {
  const std::vector<char> exact(text.begin(), text.end());
  std::vector<std::uint32_t> ends(text.size() + kLineEndsSlack);
  const auto* const last = FindLineEnds({exact.data(), exact.size()}, first, ends.data());
  ends.resize(static_cast<std::size_t>(last - ends.data()));
  return ends;
}

TEST(LineEnds, AreThoseOfAPlainLoop) {
  std::mt19937 random(20);
  const std::string_view characters = "\n\r\x0B\x8D\x8A x";
  for (const std::size_t size : {0, 1, 15, 16, 17, 63, 64, 65, 127, 128, 129, 1000}) {
    // From no line end to nothing else.
    for (const unsigned rarity : {1000, 40, 9, 3, 1}) {
      std::string text(size, 'a');
      for (char& ch : text) {
        if (random() % rarity == 0) ch = characters[random() % characters.size()];
      }
      EXPECT_EQ(Ends(text, 500), PlainEnds(text, 500)) << size << " " << rarity;
    }
    EXPECT_EQ(Ends(std::string(size, '\n'), 0), PlainEnds(std::string(size, '\n'), 0));
  }
}

}  // namespace
}  // namespace vela::kernel
