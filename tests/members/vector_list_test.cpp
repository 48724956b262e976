// The vector as a list of elements: Add, SetAtGrow, InsertAt, RemoveAt, InsertValue.
#include <cmath>
#include <limits>

#include "frame/element_value.h"
#include "member_fixture.h"

namespace vela::testing {
namespace {

using Doubles = std::vector<double>;

TEST(List, AddEveryElementType) {
  ForEachElementType([]<class T>() {
    const ObjectRef v = Make(kElement<T>.type_id | kFlagVector);
    const ObjectRef value = ScalarOf<T>(ConvertValue<T>(7.5));
    EXPECT_EQ(Call(v, "Add", value).Int(), 0);
    EXPECT_EQ(Call(v, "Add", value).Int(), 1);
    EXPECT_EQ(Call(v, "SetAtGrow", 4, value).Int(), 1);
    EXPECT_EQ(Call(v, "InsertAt", 1, value, 2).Int(), 1);
    const std::vector<T> values = ValuesOf<T>(v);
    ASSERT_EQ(values.size(), 7u) << kElement<T>.name;
    for (const std::size_t i : {0, 1, 2, 3, 6}) {
      EXPECT_TRUE(values[i] == ConvertValue<T>(7.5)) << kElement<T>.name << i;
    }
    EXPECT_TRUE(values[4] == T{} && values[5] == T{}) << kElement<T>.name;
  });
}

TEST(List, ValuesAreStoredAsElements) {
  const ObjectRef bytes = Make(kTypeUnsignedChar | kFlagVector);
  for (const double value : {1e300, -1.0, 3.9, std::nan(""), kMissingValue}) {
    Call(bytes, "Add", value);
  }
  Call(bytes, "Add", "12");
  Call(bytes, "Add", 'a');
  EXPECT_EQ(ValuesOf<unsigned char>(bytes), (std::vector<unsigned char>{255, 0, 3, 0, 0, 12, 97}));
  // 64-bit integers keep every digit.
  const std::int64_t large = (std::int64_t{1} << 62) + 1;
  const ObjectRef longs = Make(kTypeInt64 | kFlagVector);
  Call(longs, "Add", ScalarOf<std::int64_t>(large));
  Call(longs, "Add", ScalarOf<std::uint64_t>(~std::uint64_t{0}));
  Call(longs, "Add", ScalarOf<std::int64_t>(-large));
  EXPECT_EQ(ValuesOf<std::int64_t>(longs),
            (std::vector<std::int64_t>{large, std::numeric_limits<std::int64_t>::max(), -large}));
}

// Adding one at a time must not copy the row each time.
TEST(List, AddIsLinearOverall) {
  const ObjectRef v = Make(kTypeDouble | kFlagVector);
  constexpr int kCount = 300000;
  for (int i = 0; i < kCount; ++i) ASSERT_EQ(Call(v, "Add", i).Int(), i);
  EXPECT_EQ(Call(v, "GetSize").Int(), kCount);
  EXPECT_EQ(ValuesOf<double>(v)[kCount - 1], kCount - 1);
}

TEST(List, InsertAndSetBounds) {
  const struct {
    const char* member;
    int index, count;  // count 0: not passed
    int status;
    Doubles values;
  } cases[] = {
      {"SetAtGrow", -1, 0, status::kBadIndex, {1, 2, 3}},
      {"SetAtGrow", 1, 0, 0, {1, 9, 3}},
      {"SetAtGrow", 3, 0, 0, {1, 2, 3, 9}},
      {"SetAtGrow", 5, 0, 0, {1, 2, 3, 0, 0, 9}},
      {"SetAtGrow", std::numeric_limits<int>::max(), 0, status::kCannotResize, {1, 2, 3}},
      {"InsertAt", 0, 2, 0, {9, 9, 1, 2, 3}},
      {"InsertAt", 2, 1, 0, {1, 2, 9, 3}},
      {"InsertAt", 3, 1, 0, {1, 2, 3, 9}},
      {"InsertAt", 5, 2, 0, {1, 2, 3, 0, 0, 9, 9}},
      {"InsertAt", -1, 2, status::kOutOfRange, {1, 2, 3}},
      {"InsertAt", 1, -3, status::kOutOfRange, {1, 2, 3}},
      {"InsertAt", 1, std::numeric_limits<int>::min(), status::kOutOfRange, {1, 2, 3}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.member) + " " + std::to_string(c.index));
    const ObjectRef v = VectorOf<double>({1, 2, 3});
    const Result result =
        c.count == 0 ? Call(v, c.member, c.index, 9.0) : Call(v, c.member, c.index, 9.0, c.count);
    EXPECT_EQ(result.status, c.status);
    EXPECT_EQ(result.kind == CallFrame::ResultKind::kInt && result.integer == 1, c.status == 0);
    EXPECT_EQ(ValuesOf<double>(v), c.values);
  }
  const ObjectRef v = VectorOf<double>({1, 2, 3});
  EXPECT_EQ(Call(v, "InsertAt", 1, 9.0, 0).status, status::kOutOfRange);
  EXPECT_EQ(Call(v, "InsertAt", 1, 9.0).status, status::kBadArguments);
}

TEST(List, InsertValue) {
  const ObjectRef v = VectorOf<int>({1, 2});
  EXPECT_EQ(Call(v, "InsertValue", 7.9, 1).Int(), 1);
  EXPECT_EQ(Call(v, "InsertValue", 8, 3, 2).Int(), 1);
  EXPECT_EQ(Call(v, "InsertValue", 8, 6).Int(), 0);
  EXPECT_EQ(Call(v, "InsertValue", 8, -1).Int(), 0);
  EXPECT_EQ(Call(v, "InsertValue", 8, 0, 0).status, status::kOutOfRange);
  EXPECT_EQ(Call(v, "InsertValue", 8, 0, -5).status, status::kOutOfRange);
  EXPECT_EQ(ValuesOf<int>(v), (std::vector<int>{1, 7, 2, 8, 8}));
}

TEST(List, RemoveRun) {
  const struct {
    int index, count, status;
    Doubles values;
  } cases[] = {
      {0, 1, 0, {1, 2, 3, 4}},
      {1, 3, 0, {0, 4}},
      {4, 1, 0, {0, 1, 2, 3}},
      {0, 5, 0, {}},
      {2, 0, status::kOutOfRange, {0, 1, 2, 3, 4}},
      {5, 1, status::kOutOfRange, {0, 1, 2, 3, 4}},
      {-1, 1, status::kOutOfRange, {0, 1, 2, 3, 4}},
      {3, 3, status::kOutOfRange, {0, 1, 2, 3, 4}},
      {3, std::numeric_limits<int>::max(), status::kOutOfRange, {0, 1, 2, 3, 4}},
      {3, -1, status::kOutOfRange, {0, 1, 2, 3, 4}},
  };
  for (const auto& c : cases) {
    const ObjectRef v = VectorOf<double>({0, 1, 2, 3, 4});
    EXPECT_EQ(Call(v, "RemoveAt", c.index, c.count).status, c.status);
    EXPECT_EQ(ValuesOf<double>(v), c.values);
  }
}

TEST(List, RemovePositions) {
  const struct {
    std::vector<int> positions;
    int result;
    Doubles values;
  } cases[] = {
      {{}, 1, {0, 1, 2, 3, 4}},  {{1, 3, 3}, 1, {0, 2}},   {{0, 9}, 0, {0, 1, 2, 3, 4}},
      {{4, 0}, 1, {1, 2, 3}},    {{2, 2, 2}, 1, {0, 1}},   {{3, 3, 3}, 0, {0, 1, 2}},
      {{3, 4, 3}, 0, {0, 1, 2}}, {{2, 3, 2}, 1, {0, 1}},   {{-1, 2}, 0, {0, 1, 3, 4}},
      {{0, 0, 0, 0, 0}, 1, {}},  {{0, 1, 2, 3, 4}, 1, {}},
  };
  for (const auto& c : cases) {
    const ObjectRef v = VectorOf<double>({0, 1, 2, 3, 4});
    EXPECT_EQ(Call(v, "RemoveAt", VectorOf<int>(c.positions)).Int(), c.result);
    EXPECT_EQ(ValuesOf<double>(v), c.values);
  }
  const ObjectRef v = VectorOf<int>({2, 0, 7});
  EXPECT_EQ(Call(v, "RemoveAt", VectorOf<unsigned>({0})).Int(), -1);
  EXPECT_EQ(Call(v, "RemoveAt", 0).status, status::kBadArguments);
  EXPECT_EQ(Call(v, "RemoveAt", Null{}).status, status::kBadArguments);
  EXPECT_EQ(ValuesOf<int>(v), (std::vector<int>{2, 0, 7}));
}

}  // namespace
}  // namespace vela::testing
