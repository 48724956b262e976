// Find, Replace and Merge.
#include <algorithm>

#include "vector_fixture.h"

namespace vela::testing {
namespace {

TEST(Find, ValuesAndRanges) {
  const struct {
    Doubles x;
    double value, upper;
    int precision, start, end;
    unsigned first_only;
    int result;
    Indices found;
  } cases[] = {
      {{1, 2, 3, 2}, 2, kM, 0, 0, -1, 0, 2, {1, 3}},
      {{1, 2, 3, 2}, 2, kM, 0, 0, -1, 1, 1, {1}},
      {{1, 2, 3, 2}, 2, kM, 0, 0, -1, 2, 2, {1, 3}},
      {{1, 2, 3, 2}, 1.5, 2.5, 0, 0, -1, 0, 2, {1, 3}},
      {{1, 2, 3, 2}, 2, kM, 0, 2, -1, 0, 1, {3}},
      {{1, 2, 3, 2}, 2, kM, 0, 0, 2, 0, 1, {1}},
      {{1, 2, 3, 2}, 2, kM, 0, -7, 99, 0, 2, {1, 3}},
      {{1, 1.05, 1.2}, 1, kM, 1, 0, -1, 0, 2, {0, 1}},
      {{1, 1.05, 1.2}, 1, kM, -1, 0, -1, 0, 1, {0}},
      {{kM, 1, kM}, kM, kM, 0, 0, -1, 0, 2, {0, 2}},
      {{kM, 1, kNan}, -10, 10, 0, 0, -1, 0, 1, {1}},
  };
  for (const auto& c : cases) {
    const ObjectRef v = VectorOf<double>(c.x);
    const ObjectRef found = VectorOf<unsigned>({9, 9, 9, 9, 9, 9});
    EXPECT_EQ(
        Call(v, "Find", found, c.value, c.upper, c.precision, c.start, c.end, c.first_only).Int(),
        c.result);
    EXPECT_EQ(ValuesOf<unsigned>(found), c.found);
    EXPECT_EQ(
        Call(v, "Find", Null{}, c.value, c.upper, c.precision, c.start, c.end, c.first_only).Int(),
        c.result);
  }
}

TEST(Find, RangesWithoutElementsAndOtherTargets) {
  const ObjectRef v = VectorOf<double>({1, 2, 3});
  const ObjectRef found = VectorOf<unsigned>({9});
  const int kMax = std::numeric_limits<int>::max();
  const int kMin = std::numeric_limits<int>::min();
  const int ranges[][2] = {{3, -1}, {2, 1}, {kMax, -1}, {0, -2}, {0, kMin}, {kMax, kMax}};
  for (const auto& [start, end] : ranges) {
    EXPECT_EQ(Call(v, "Find", found, 2.0, kM, 0, start, end, 0).Int(), -1) << start << ' ' << end;
  }
  EXPECT_EQ(Call(VectorOf<double>({}), "Find", found, 2.0, kM, 0, 0, -1, 0).Int(), -1);
  EXPECT_EQ(ValuesOf<unsigned>(found), (Indices{9}));
  EXPECT_EQ(Call(v, "Find", VectorOf<int>({}), 2.0, kM, 0, 0, -1, 0).Int(), -1);
  EXPECT_EQ(Call(v, "Find", 5, 2.0, kM, 0, 0, -1, 0).Int(), -1);
  EXPECT_EQ(Call(v, "Find", found, 2.0, kM, kMax, kMin, kMax, ~0u).Int(), 1);
}

TEST(Find, FromAStartingPosition) {
  const ObjectRef v = VectorOf<double>({1, 2, 3, 2.001, kM});
  const auto first = [&](unsigned start, auto... rest) {
    return Call(v, "Find", ScalarOf<unsigned>(start), rest...).Int();
  };
  EXPECT_EQ(first(0, 2.0), 1);
  EXPECT_EQ(first(2, 2.0), -1);
  EXPECT_EQ(first(2, 2.0, kM, 2), 3);
  EXPECT_EQ(first(1, 2.5, 3.5), 2);
  EXPECT_EQ(first(0, kM), 4);
  EXPECT_EQ(first(5, 2.0), -1);
  EXPECT_EQ(first(~0u, 2.0), -1);
  EXPECT_EQ(Call(v, "Find", ScalarOf<unsigned>(0)).status, status::kBadArguments);
}

TEST(Find, PositionsIntoTheVectorItself) {
  const ObjectRef v = VectorOf<unsigned>({5, 7, 5, 5});
  EXPECT_EQ(Call(v, "Find", v, 5.0, kM, 0, 0, -1, 0).Int(), 3);
  EXPECT_EQ(ValuesOf<unsigned>(v), (Indices{0, 2, 3}));
}

TEST(Find, EveryElementType) {
  ForEachElementType([]<class T>() {
    if constexpr (!PointElement<T>) {
      const ObjectRef v = VectorOf<T>(
          {ConvertValue<T>(1.0), ConvertValue<T>(2.0), ConvertValue<T>(3.0), ConvertValue<T>(2.0)});
      const ObjectRef found = Make(kTypeUnsignedInt | kFlagVector);
      EXPECT_EQ(Call(v, "Find", found, 2.0, kM, 0, 0, -1, 0).Int(), 2) << kElement<T>.name;
      EXPECT_EQ(ValuesOf<unsigned>(found), (Indices{1, 3}));
      EXPECT_EQ(Call(v, "Find", found, 1.5, 3.0, 0, 0, -1, 1).Int(), 1) << kElement<T>.name;
      EXPECT_EQ(ValuesOf<unsigned>(found), (Indices{1}));
      EXPECT_EQ(Call(v, "Replace", 2.0, 9.0).Int(), 2) << kElement<T>.name;
      EXPECT_TRUE(ValuesOf<T>(v)[3] == ConvertValue<T>(9.0)) << kElement<T>.name;
    }
    const ObjectRef merged = ConvertedVector<T>({1, 2});
    EXPECT_EQ(Call(merged, "Merge", ConvertedVector<T>({2, 3, 3})).Int(), 1) << kElement<T>.name;
    EXPECT_EQ(AsDoubles(merged), (Doubles{1, 2, 3})) << kElement<T>.name;
  });
}

TEST(Find, ComplexByDistance) {
  const ObjectRef v = VectorOf<OneTCcomplex>({{1, 1}, {1, 1.05}, {kM, 0}, {-1, 1}});
  const ObjectRef found = Make(kTypeUnsignedInt | kFlagVector);
  EXPECT_EQ(Call(v, "Find", found, OneTCcomplex(1, 1), kM, 0, 0, -1, 0).Int(), 1);
  EXPECT_EQ(Call(v, "Find", found, OneTCcomplex(1, 1), kM, 1, 0, -1, 0).Int(), 2);
  EXPECT_EQ(Call(v, "Find", found, OneTCcomplex(0, kM), kM, 1, 0, -1, 0).Int(), 1);
  EXPECT_EQ(ValuesOf<unsigned>(found), (Indices{2}));
}

TEST(Replace, WithinATolerance) {
  const struct {
    double old, with;
    Doubles rest;  // the tolerance, when given
    int result;
    Doubles values;
  } cases[] = {
      {2, 9, {}, 2, {1, 9, kM, 2.5, 9}},    {2, 9, {0.5}, 3, {1, 9, kM, 9, 9}},
      {kM, 0, {}, 1, {1, 2, 0, 2.5, 2}},    {kM, 0, {1e300}, 1, {1, 2, 0, 2.5, 2}},
      {1, kM, {}, 1, {kM, 2, kM, 2.5, 2}},  {2, 9, {-1}, 0, {1, 2, kM, 2.5, 2}},
      {kNan, 9, {}, 0, {1, 2, kM, 2.5, 2}}, {2, 9, {kNan}, 0, {1, 2, kM, 2.5, 2}},
  };
  for (const auto& c : cases) {
    const ObjectRef v = VectorOf<double>({1, 2, kM, 2.5, 2});
    const Result result = c.rest.empty() ? Call(v, "Replace", c.old, c.with)
                                         : Call(v, "Replace", c.old, c.with, c.rest[0]);
    EXPECT_EQ(result.Int(), c.result);
    EXPECT_EQ(ValuesOf<double>(v), c.values);
  }
  const ObjectRef close = VectorOf<double>({2, std::nextafter(2.0, 3.0)});
  EXPECT_EQ(Call(close, "Replace", 2.0, 9.0).Int(), 1) << "exactly, without a tolerance";
  // Longer than a block, with matches at its seams.
  std::vector<int> values(5000, 1);
  values[1023] = values[1024] = values[4999] = 7;
  const ObjectRef v = VectorOf<int>(values);
  EXPECT_EQ(Call(v, "Replace", 7, 1).Int(), 3);
  EXPECT_EQ(Call(v, "Replace", 1, 2).Int(), 5000);
}

TEST(Merge, AppendsWhatIsNotThere) {
  const ObjectRef v = VectorOf<double>({1, kM, 0.0});
  EXPECT_EQ(Call(v, "Merge", VectorOf<double>({3, 1, -0.0, 2, 3, kM})).Int(), 2);
  EXPECT_EQ(ValuesOf<double>(v), (Doubles{1, kM, 0, 3, 2}));
  EXPECT_EQ(Call(v, "Merge", VectorOf<float>({2, 2.5f})).Int(), 1);
  EXPECT_EQ(Call(v, "Merge", VectorOf<double>({kNan, kNan})).Int(), 1);
  EXPECT_EQ(Call(v, "Merge", VectorOf<double>({kNan})).Int(), 0);
  EXPECT_EQ(Call(v, "Merge", v).Int(), 0);
  EXPECT_EQ(Call(v, "GetSize").Int(), 7);
  EXPECT_EQ(Call(v, "Merge", VectorOf<double>({})).Int(), 0);
  EXPECT_EQ(Call(v, "Merge", Null{}).status, status::kBadArguments);
  // Compared as the elements that they become.
  const ObjectRef ints = VectorOf<int>({1});
  EXPECT_EQ(Call(ints, "Merge", VectorOf<double>({1.5, 2.25, 2.75})).Int(), 1);
  EXPECT_EQ(ValuesOf<int>(ints), (std::vector<int>{1, 2}));
}

}  // namespace
}  // namespace vela::testing
