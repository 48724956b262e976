#include <array>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "host/call_frame.h"
#include "test_objects.h"

namespace {

using vela::host::CallFrame;

class Base : public TesselCObject {
 public:
  int First(CTCall* call) { return call->SetReturnInt(1); }
  int Second(CTCall* call) { return call->SetReturnInt(2); }
  int GetValue(CTCall* call) { return call->SetReturnDouble(value); }
  int SetValue(CTCall* call) { return call->GetDouble(0, value); }

  const CClassMember* FindMember(const char* name, unsigned hash, CTypeBase** owner,
                                 unsigned flags) override {
    if (const auto* row = FindMemberInTable(name, hash, table, owner, flags)) return row;
    return TesselCObject::FindMember(name, hash, owner, flags);
  }

  double value = 0;
  static const CClassMember table[];
};

template <class Class>
MemberHandler Handler(int (Class::*method)(CTCall*)) {
  return static_cast<MemberHandler>(method);
}

const CClassMember Base::table[] = {
    {"Shared", Handler(&Base::First)},
    {"OnlyBase", Handler(&Base::First)},
    {"value", Handler(&Base::GetValue), Handler(&Base::SetValue)},
    {"Shared", Handler(&Base::Second)},
    {},
};

class Derived : public Base {
 public:
  int Third(CTCall* call) { return call->SetReturnInt(3); }
  const CClassMember* FindMember(const char* name, unsigned hash, CTypeBase** owner,
                                 unsigned flags) override {
    if (const auto* row = FindMemberInTable(name, hash, own_table, owner, flags)) return row;
    return Base::FindMember(name, hash, owner, flags);
  }
  static const CClassMember own_table[];
};

const CClassMember Derived::own_table[] = {{"Shared", Handler(&Derived::Third)}, {}};

const CClassMember* Find(CTypeBase& object, const char* name, unsigned hash = 0) {
  CTypeBase* owner = nullptr;
  const CClassMember* const row = object.FindMember(name, hash, &owner, 0);
  EXPECT_EQ(owner, row ? &object : nullptr) << name;
  return row;
}

std::int64_t Call(CTypeBase& object, const char* name) {
  CallFrame frame;
  const CClassMember* const row = Find(object, name, CTypeBase::HashMemberName(name));
  EXPECT_NE(row, nullptr) << name;
  EXPECT_EQ(object.DoMethod(row->GetHandler(), &frame), 0);
  return frame.ResultInt();
}

TEST(MemberTable, OwnTableHidesBaseAndFirstRowHidesLater) {
  Base base;
  Derived derived;
  EXPECT_EQ(Call(base, "Shared"), 1);
  EXPECT_EQ(Call(derived, "Shared"), 3);
  EXPECT_EQ(Call(derived, "OnlyBase"), 1);
}

TEST(MemberTable, NamesMatchExactly) {
  Derived object;
  for (const char* name : {"shared", "SHARED", "Share", "Shared ", "", "Unknown"}) {
    EXPECT_EQ(Find(object, name), nullptr) << name;
    EXPECT_EQ(Find(object, name, CTypeBase::HashMemberName(name)), nullptr) << name;
  }
  CTypeBase* owner = &object;
  EXPECT_EQ(object.FindMember(nullptr, 0, &owner, 0), nullptr);
  EXPECT_EQ(owner, nullptr);
  EXPECT_NE(object.FindMember("Shared", 0, nullptr, 0), nullptr);
}

TEST(MemberTable, PropertiesHaveBothHandlers) {
  Derived object;
  const CClassMember* const row = Find(object, "value");
  ASSERT_NE(row, nullptr);
  EXPECT_TRUE(row->IsProperty());
  EXPECT_FALSE(Find(object, "OnlyBase")->IsProperty());

  CallFrame frame;
  frame.AddDouble(2.5);
  EXPECT_EQ(object.DoPropertySet(row->GetSetter(), &frame), 0);
  frame.Reset();
  EXPECT_EQ(object.DoPropertyGet(row->GetHandler(), &frame), 0);
  EXPECT_EQ(frame.ResultDouble(), 2.5);
  EXPECT_EQ(object.DoPropertyGet(nullptr, &frame), status::kFailed);
  EXPECT_EQ(object.DoMethod(Handler(&CTypeBase::NotSupported), &frame), status::kUnsupported);
}

// A class whose table the test makes, as large tables and tables on the heap are made.
class Dynamic : public TesselCObject {
 public:
  explicit Dynamic(const CClassMember* table) : table_(table) {}
  const CClassMember* FindMember(const char* name, unsigned hash, CTypeBase** owner,
                                 unsigned flags) override {
    return FindMemberInTable(name, hash, table_, owner, flags);
  }

 private:
  const CClassMember* table_;
};

struct LargeTable {
  std::vector<std::string> names;
  std::unique_ptr<CClassMember[]> rows;
};

LargeTable MakeLargeTable(int size) {
  LargeTable table;
  for (int i = 0; i < size; ++i) table.names.push_back("Member" + std::to_string(i));
  table.rows = std::make_unique<CClassMember[]>(table.names.size() + 1);
  for (std::size_t i = 0; i < table.names.size(); ++i) {
    table.rows[i] = CClassMember(table.names[i].c_str(), Handler(&Base::First));
  }
  return table;
}

TEST(MemberTable, EveryRowOfAnySizeIsFound) {
  for (const int size : {0, 1, 2, 3, 64, 79, 1000}) {
    const LargeTable table = MakeLargeTable(size);
    Dynamic object(table.rows.get());
    for (std::size_t i = 0; i < table.names.size(); ++i) {
      ASSERT_EQ(object.FindMember(table.names[i].c_str(), 0, nullptr, 0), &table.rows[i]);
    }
    EXPECT_EQ(object.FindMember("Member", 0, nullptr, 0), nullptr);
  }
  Dynamic without_table(nullptr);
  EXPECT_EQ(without_table.FindMember("Member", 0, nullptr, 0), nullptr);
}

TEST(MemberTable, CopiesOfSearchedTablesAreIndependent) {
  LargeTable table = MakeLargeTable(10);
  Dynamic object(table.rows.get());
  ASSERT_NE(object.FindMember("Member3", 0, nullptr, 0), nullptr);

  std::vector<CClassMember> copy(table.rows.get(), table.rows.get() + 11);
  Dynamic of_copy(copy.data());
  EXPECT_EQ(of_copy.FindMember("Member3", 0, nullptr, 0), &copy[3]);

  // Assigning over the first row starts a new table in the same place.
  copy[0] = CClassMember("Renamed", Handler(&Base::Second));
  EXPECT_EQ(of_copy.FindMember("Renamed", 0, nullptr, 0), &copy[0]);
  EXPECT_EQ(of_copy.FindMember("Member0", 0, nullptr, 0), nullptr);
  EXPECT_EQ(object.FindMember("Member0", 0, nullptr, 0), &table.rows[0]);
}

TEST(MemberTable, ThreadsMayRaceForTheFirstLookup) {
  for (int round = 0; round < 50; ++round) {
    const LargeTable table = MakeLargeTable(40);
    Dynamic object(table.rows.get());
    std::array<const CClassMember*, 4> found{};
    std::vector<std::thread> threads;
    for (auto& result : found) {
      threads.emplace_back([&] { result = object.FindMember("Member39", 0, nullptr, 0); });
    }
    for (std::thread& thread : threads) thread.join();
    for (const auto* result : found) EXPECT_EQ(result, &table.rows[39]);
  }
}

}  // namespace
