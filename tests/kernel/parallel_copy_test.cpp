#include "kernel/parallel_copy.h"

#include <atomic>
#include <gtest/gtest.h>
#include <mutex>
#include <set>
#include <thread>
#include <vector>

#if defined(__linux__)
#include <pthread.h>
#endif

namespace vela::kernel {
namespace {

struct Outcome {
  std::vector<int> visits;  // of each element
  std::size_t runs = 0;
  std::set<std::thread::id> threads;
};

Outcome Record(std::size_t count, int threads) {
  Outcome outcome;
  outcome.visits.resize(count);
  std::mutex mutex;
  RunOverThreads(count, threads, [&](std::size_t begin, std::size_t end) {
    for (std::size_t i = begin; i < end; ++i) ++outcome.visits[i];
    const std::lock_guard lock(mutex);
    ++outcome.runs;
    outcome.threads.insert(std::this_thread::get_id());
  });
  return outcome;
}

TEST(RunOverThreadsTest, VisitsEveryElementOnce) {
  const struct {
    std::size_t count;
    int threads;
    std::size_t runs;
  } cases[] = {{0, 8, 1},     {1, 8, 1},        {9999, 8, 1},
               {10000, 1, 1}, {10000, 2, 1},    {10000, 3, 3},
               {10007, 8, 8}, {100001, 64, 64}, {10000, 2147483647, 256},
               {9999, -5, 1}, {9999, 0, 1}};
  for (const auto& c : cases) {
    const Outcome outcome = Record(c.count, c.threads);
    EXPECT_EQ(outcome.runs, c.runs) << c.count << " over " << c.threads;
    for (const int visits : outcome.visits) ASSERT_EQ(visits, 1);
    EXPECT_EQ(outcome.threads.contains(std::this_thread::get_id()), c.runs == 1);
  }
}

TEST(RunOverThreadsTest, ChoosesTheThreadsItself) {
  EXPECT_GE(DefaultThreadCount(), 1);
  const Outcome outcome = Record(20000, 0);
  EXPECT_LE(outcome.runs, static_cast<std::size_t>(DefaultThreadCount()));
  for (const int visits : outcome.visits) ASSERT_EQ(visits, 1);
}

#if defined(__linux__)
TEST(RunOverThreadsTest, DoesTheWorkOfThreadsThatCannotStart) {
  // No address space has room for stacks of this size.
  pthread_attr_t before;
  ASSERT_EQ(pthread_getattr_default_np(&before), 0);
  pthread_attr_t huge;
  pthread_attr_init(&huge);
  ASSERT_EQ(pthread_attr_setstacksize(&huge, std::size_t{1} << 46), 0);
  ASSERT_EQ(pthread_setattr_default_np(&huge), 0);
  const Outcome outcome = Record(20000, 4);
  pthread_setattr_default_np(&before);
  pthread_attr_destroy(&before);
  pthread_attr_destroy(&huge);
  EXPECT_EQ(outcome.runs, 4u);
  EXPECT_EQ(outcome.threads, std::set{std::this_thread::get_id()});
  for (const int visits : outcome.visits) ASSERT_EQ(visits, 1);
}
#endif

TEST(ParallelConvertTest, ConvertsEveryElement) {
  std::vector<double> source(30001);
  for (std::size_t i = 0; i < source.size(); ++i) source[i] = static_cast<double>(i) + 0.5;
  for (const int threads : {1, 3, 7}) {
    std::vector<int> target(source.size(), -1);
    ParallelConvert<int, double>(source, target, threads);
    for (std::size_t i = 0; i < target.size(); ++i) ASSERT_EQ(target[i], static_cast<int>(i));
  }
}

}  // namespace
}  // namespace vela::kernel
