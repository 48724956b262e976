#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tesselc {

// Finds what a misspelt name was probably meant to be: of the names offered, the nearest by letters
// changed, added, left out or swapped, where case counts little; none that is too far away.
class SimilarName {
 public:
  explicit SimilarName(std::string_view wanted);
  void Offer(std::string_view name) { Offer(name, name); }
  // A name that may have been meant by another: GetSize by Size.
  void Offer(std::string_view name, std::string_view alias);
  // Empty when nothing is near.
  const std::string& Best() const { return best_; }
  // "did you mean 'Size'?" for a diagnostic's notes; nothing when nothing is near.
  std::vector<std::string> Notes() const;

 private:
  std::string wanted_;
  std::string best_;
  int distance_;
};

}  // namespace tesselc
