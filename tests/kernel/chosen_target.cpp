// The instruction set that VELA_KERNEL_TARGET names is the one the tests run with.
#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>

#include "kernel/instruction_set.h"

namespace vela::kernel {
namespace {

class ChosenTarget : public ::testing::Environment {
 public:
  void SetUp() override {
    const char* const name = std::getenv("VELA_KERNEL_TARGET");
    if (name == nullptr) return;
    const auto has_name = [&](InstructionSet set) { return name == InstructionSetName(set); };
    ASSERT_TRUE(std::ranges::any_of(kAllInstructionSets, has_name)) << "there is no " << name;
    if (!has_name(CurrentInstructionSet())) GTEST_SKIP() << "this machine has no " << name;
  }
};

const auto* const environment = ::testing::AddGlobalTestEnvironment(new ChosenTarget);

}  // namespace
}  // namespace vela::kernel
