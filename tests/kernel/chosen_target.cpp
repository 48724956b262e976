// Runs the tests with the kernels of one instruction set, named in VELA_KERNEL_TARGET as Highway
// names it, instead of the best that the machine has. Windows has one set only.
#ifndef _WIN32
#include <cstdlib>
#include <hwy/targets.h>
#include <string_view>

#include "gtest/gtest.h"

namespace {

std::int64_t TargetNamed(std::string_view name) {
  for (std::int64_t targets = hwy::SupportedTargets(); targets != 0; targets &= targets - 1) {
    const std::int64_t target = targets & -targets;
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
    if (target == 0) GTEST_SKIP() << "this machine has no " << name;
    hwy::SetSupportedTargetsForTest(target);
    hwy::GetChosenTarget().Update(target);
  }
};

const auto* const environment = ::testing::AddGlobalTestEnvironment(new ChosenTarget);

}  // namespace

#endif
