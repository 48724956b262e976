#include "tesselc/similar_name.h"

#include <algorithm>
#include <cctype>

namespace tesselc {
namespace {

constexpr std::size_t kLongestName = 64;  // longer ones are not looked at
// A letter of the other case costs less than another letter.
constexpr int kOtherCase = 1;
constexpr int kOtherLetter = 4;

int Cost(char a, char b) {
  if (a == b) return 0;
  const auto lower = [](char c) { return std::tolower(static_cast<unsigned char>(c)); };
  return lower(a) == lower(b) ? kOtherCase : kOtherLetter;
}

// The edit distance, with a swap of neighbours as one step.
int Distance(std::string_view a, std::string_view b) {
  std::vector<std::vector<int>> d(a.size() + 1, std::vector<int>(b.size() + 1));
  for (std::size_t i = 0; i <= a.size(); ++i) d[i][0] = kOtherLetter * static_cast<int>(i);
  for (std::size_t j = 0; j <= b.size(); ++j) d[0][j] = kOtherLetter * static_cast<int>(j);
  for (std::size_t i = 1; i <= a.size(); ++i) {
    for (std::size_t j = 1; j <= b.size(); ++j) {
      d[i][j] = std::min({d[i - 1][j] + kOtherLetter, d[i][j - 1] + kOtherLetter,
                          d[i - 1][j - 1] + Cost(a[i - 1], b[j - 1])});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) {
        d[i][j] = std::min(d[i][j], d[i - 2][j - 2] + kOtherLetter);
      }
    }
  }
  return d[a.size()][b.size()];
}

}  // namespace

SimilarName::SimilarName(std::string_view wanted)
    : wanted_(wanted),
      // A third of the letters may be wrong, and one in a short name.
      distance_(kOtherLetter * std::max(1, static_cast<int>(wanted.size()) / 3) + 1) {}

void SimilarName::Offer(std::string_view name, std::string_view alias) {
  if (wanted_.size() > kLongestName || alias.size() > kLongestName || alias.empty()) return;
  // All letters changed make no likely meaning.
  if (wanted_.size() < 2 && Cost(wanted_.empty() ? ' ' : wanted_[0], alias[0]) > kOtherCase) return;
  const int distance = Distance(wanted_, alias);
  if (distance >= distance_ || name == wanted_) return;
  distance_ = distance;
  best_ = name;
}

std::vector<std::string> SimilarName::Notes() const {
  if (best_.empty()) return {};
  return {"did you mean '" + best_ + "'?"};
}

}  // namespace tesselc
