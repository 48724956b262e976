// Runs the tests with the kernels of one instruction set, named in VELA_KERNEL_TARGET as Highway
// names it, instead of the best that the machine has. Windows has one set only.
#ifndef _WIN32
#include <cstdlib>
#include <hwy/targets.h>
#include <string_view>

#include "gtest/gtest.h"

namespace {

// 0 when Highway knows no such target.
std::int64_t TargetNamed(std::string_view name) {
  constexpr int kTargetBits = 62;
  for (int bit = 0; bit < kTargetBits; ++bit) {
    const std::int64_t target = std::int64_t{1} << bit;
    if (name == hwy::TargetName(target)) return target;
  }
  return 0;
}

class ChosenTarget : public ::testing::Environment {
 public:
  void SetUp() override {
    const char* const name = std::getenv("VELA_KERNEL_TARGET");
    if (name == nullptr) return;
    const std::int64_t target = TargetNamed(name);
    ASSERT_NE(target, 0) << "there is no " << name;
    if ((hwy::SupportedTargets() & target) == 0) GTEST_SKIP() << "this machine has no " << name;
    hwy::SetSupportedTargetsForTest(target);
    hwy::GetChosenTarget().Update(target);
  }
};

const auto* const environment = ::testing::AddGlobalTestEnvironment(new ChosenTarget);

}  // namespace

#endif
