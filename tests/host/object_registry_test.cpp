#include <algorithm>
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <set>
#include <thread>
#include <vector>

#include "host/object_ref.h"
#include "test_objects.h"

namespace {

using vela::host::ObjectRef;

// Counts its own destructions, and holds a reference to itself on the way down.
class Witness : public CScriptVelaObject {
 public:
  explicit Witness(int& destroyed) : destroyed_(destroyed) {}
  ~Witness() override {
    AddRef();
    Release();
    ++destroyed_;
  }

 private:
  int& destroyed_;
};

TEST(ObjectRegistry, KnowsObjectsFromConstructionToDestruction) {
  const unsigned before = CScriptVelaObject::GetLiveObjectCount();
  const CScriptVelaObject* address = nullptr;
  {
    NumberObject object;
    address = &object;
    EXPECT_TRUE(CScriptVelaObject::IsInMap(address));
    EXPECT_TRUE(VELAObj::IsValid(address));
    EXPECT_EQ(CScriptVelaObject::GetLiveObjectCount(), before + 1);
  }
  EXPECT_FALSE(CScriptVelaObject::IsInMap(address));
  EXPECT_FALSE(CScriptVelaObject::IsInMap(nullptr));
  EXPECT_FALSE(VELAObj::IsValid(static_cast<const VELAObj*>(nullptr)));
  EXPECT_EQ(CScriptVelaObject::GetLiveObjectCount(), before);
}

TEST(ObjectRegistry, SurvivesAnyOrderOfRemoval) {
  const unsigned before = CScriptVelaObject::GetLiveObjectCount();
  std::mt19937 random(1);
  std::vector<std::unique_ptr<NumberObject>> live;
  std::vector<std::unique_ptr<NumberObject>> removed;
  for (int round = 0; round < 20000; ++round) {
    if (live.empty() || random() % 5 < 3) {
      live.push_back(std::make_unique<NumberObject>());
    } else {
      std::swap(live[random() % live.size()], live.back());
      CScriptVelaObject::RemoveFromMap(live.back().get());
      removed.push_back(std::move(live.back()));
      live.pop_back();
    }
  }
  const auto known = [](const auto& object) { return CScriptVelaObject::IsInMap(object.get()); };
  EXPECT_TRUE(std::ranges::all_of(live, known));
  EXPECT_TRUE(std::ranges::none_of(removed, known));
  EXPECT_EQ(CScriptVelaObject::GetLiveObjectCount(), before + live.size());
  removed.clear();
  live.clear();
  EXPECT_EQ(CScriptVelaObject::GetLiveObjectCount(), before);
}

TEST(ObjectRegistry, ThreadsShareItAndGetDistinctCreationIds) {
  constexpr int kThreads = 4;
  constexpr int kObjects = 2000;
  const unsigned before = CScriptVelaObject::GetLiveObjectCount();
  std::vector<std::vector<std::unique_ptr<NumberObject>>> objects(kThreads);
  std::vector<std::thread> threads;
  for (auto& own : objects) {
    threads.emplace_back([&own] {
      for (int i = 0; i < kObjects; ++i) {
        own.push_back(std::make_unique<NumberObject>());
        const NumberObject temporary;
        EXPECT_TRUE(CScriptVelaObject::IsInMap(&temporary));
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(CScriptVelaObject::GetLiveObjectCount(), before + kThreads * kObjects);
  std::set<std::uint64_t> ids;
  for (const auto& own : objects) {
    for (const auto& object : own) ids.insert(object->GetCreationID());
  }
  EXPECT_EQ(ids.size(), std::size_t{kThreads} * kObjects);
}

TEST(ReferenceCount, LastReferenceDestroysOnce) {
  int destroyed = 0;
  auto* object = new Witness(destroyed);
  EXPECT_FALSE(object->HasRef());
  EXPECT_EQ(object->AddRef(), 1);
  EXPECT_EQ(object->AddRef(), 2);
  EXPECT_EQ(object->Release(), 1);
  EXPECT_TRUE(object->HasRef());
  EXPECT_EQ(object->Release(), 0);
  EXPECT_EQ(destroyed, 1);

  EXPECT_EQ((new Witness(destroyed))->Release(), 0);
  EXPECT_EQ(destroyed, 2);
}

TEST(ReferenceCount, ObjectRefOwnsOneReference) {
  int destroyed = 0;
  {
    ObjectRef first(new Witness(destroyed));
    ObjectRef second = first;
    ObjectRef third = std::move(first);
    EXPECT_FALSE(first);
    EXPECT_EQ(second, third);
    third = third.Get() ? second : third;
    second = ObjectRef();
    EXPECT_EQ(destroyed, 0);
  }
  EXPECT_EQ(destroyed, 1);
}

}  // namespace
