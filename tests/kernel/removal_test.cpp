#include "kernel/removal.h"

#include <gtest/gtest.h>
#include <numeric>
#include <random>

#include "kernel/absent.h"

namespace vela::kernel {
namespace {

// One erase at a time, from the largest position down.
bool RemoveOneByOne(std::vector<int>& values, const std::vector<std::int32_t>& ascending) {
  for (std::size_t k = ascending.size(); k-- > 0;) {
    if (ascending[k] < 0 || ascending[k] >= static_cast<std::int32_t>(values.size())) return false;
    values.erase(values.begin() + ascending[k]);
  }
  return true;
}

TEST(Removal, AgreesWithOneAtATime) {
  std::mt19937 random(1);
  for (int round = 0; round < 3000; ++round) {
    const int size = static_cast<int>(random() % 20);
    std::vector<int> values(static_cast<std::size_t>(size));
    std::iota(values.begin(), values.end(), 0);
    std::vector<std::int32_t> positions(random() % 12);
    for (std::int32_t& position : positions) {
      position = static_cast<std::int32_t>(random() % static_cast<unsigned>(size + 2)) -
                 static_cast<std::int32_t>(random() % 40 == 0);
    }
    std::sort(positions.begin(), positions.end());

    std::vector<int> expected = values;
    const bool complete = RemoveOneByOne(expected, positions);
    const Removal removal = PlanRemoval(positions, values.size());
    EXPECT_EQ(removal.complete, complete);
    EXPECT_EQ(removal.count, values.size() - expected.size());
    values.resize(RemoveRuns<int>(values, removal.runs));
    EXPECT_EQ(values, expected);
  }
}

TEST(MarkAbsent, AgreesWithALinearSearch) {
  std::mt19937 random(2);
  for (int round = 0; round < 500; ++round) {
    std::vector<int> present(random() % 40), candidates(random() % 40);
    const unsigned range = 1 + random() % 60;
    for (int& value : present) value = static_cast<int>(random() % range);
    for (int& value : candidates) value = static_cast<int>(random() % range);
    const std::vector<bool> absent = MarkAbsent<int>(
        present, candidates, [](int value) { return std::array{IdentityBits(value)}; });
    std::vector<int> seen = present;
    for (std::size_t i = 0; i < candidates.size(); ++i) {
      const bool is_new = std::find(seen.begin(), seen.end(), candidates[i]) == seen.end();
      EXPECT_EQ(absent[i], is_new);
      if (is_new) seen.push_back(candidates[i]);
    }
  }
}

}  // namespace
}  // namespace vela::kernel
