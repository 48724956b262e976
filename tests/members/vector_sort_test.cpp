// Sort: both orders, missing values at either end, and the permutation.
#include "vector_fixture.h"

namespace vela::testing {
namespace {

TEST(Sort, MissingValuesGoToTheAskedEnd) {
  const struct {
    Doubles x;
    int order, missing_small;
    Doubles sorted;
    Indices indices;
  } cases[] = {
      {{3, kM, 1}, 1, 1, {kM, 1, 3}, {1, 2, 0}},
      {{3, kM, 1}, 1, 0, {1, 3, kM}, {2, 0, 1}},
      {{3, kM, 1}, 0, 1, {3, 1, kM}, {0, 2, 1}},
      {{3, kM, 1}, 0, 0, {kM, 3, 1}, {1, 0, 2}},
      {{3, kM, 1}, 3, 2, {kM, 1, 3}, {1, 2, 0}},  // bit 0 of order; any number but 0
      {{3, kM, 1}, -2, 1, {3, 1, kM}, {0, 2, 1}},
      {{}, 1, 1, {}, {}},
      {{2, 1, 2, 1}, 1, 1, {1, 1, 2, 2}, {1, 3, 0, 2}},
      {{2, 1, 2, 1}, 0, 1, {2, 2, 1, 1}, {0, 2, 1, 3}},
      // NaN comes last in either order, before missing values at that end.
      {{kNan, 2, kInf, -kInf, kM}, 1, 0, {-kInf, 2, kInf, kNan, kM}, {3, 1, 2, 0, 4}},
      {{kNan, 2, kInf, -kInf, kM}, 0, 1, {kInf, 2, -kInf, kNan, kM}, {2, 1, 3, 0, 4}},
      {{kM, kNan, 2, kNan, kInf}, 1, 1, {kM, 2, kInf, kNan, kNan}, {0, 2, 4, 1, 3}},
  };
  for (const auto& c : cases) {
    const ObjectRef plain = VectorOf<double>(c.x);
    EXPECT_EQ(Call(plain, "Sort", c.order, c.missing_small, Null{}, 0).Int(), 1);
    ExpectValues(plain, c.sorted);
    const ObjectRef v = VectorOf<double>(c.x);
    const ObjectRef indices = VectorOf<unsigned>({77, 77});
    EXPECT_EQ(Call(v, "Sort", c.order, c.missing_small, indices, 3).Int(), 1);
    ExpectValues(v, c.sorted);
    EXPECT_EQ(ValuesOf<unsigned>(indices), c.indices);
  }
}

TEST(Sort, EveryElementType) {
  ForEachElementType([]<class T>() {
    SCOPED_TRACE(kElement<T>.name);
    const ObjectRef v = ConvertedVector<T>({3, 1, 2}), plain = ConvertedVector<T>({3, 1, 2});
    const ObjectRef indices = Make(kTypeUnsignedInt | kFlagVector);
    ASSERT_EQ(Call(v, "Sort", 1, 1, indices, 0).Int(), 1);
    ASSERT_EQ(Call(plain, "Sort", 1, 1, Null{}, 0).Int(), 1);
    // Points have no order.
    const bool sorts = !PointElement<T>;
    EXPECT_EQ(AsDoubles(v), sorts ? (Doubles{1, 2, 3}) : (Doubles{3, 1, 2}));
    EXPECT_EQ(AsDoubles(plain), AsDoubles(v));
    EXPECT_EQ(ValuesOf<unsigned>(indices), sorts ? (Indices{1, 2, 0}) : (Indices{0, 1, 2}));
  });
}

TEST(Sort, ComplexByModulusThenPhase) {
  const OneTCcomplex five(3, 4), one(0, 1), two(-2, 0), lost(kM, 1), nan(kNan, 0);
  const struct {
    int order, missing_small;
    std::vector<OneTCcomplex> sorted;
  } cases[] = {
      {1, 1, {lost, one, two, five, nan}},
      {1, 0, {one, two, five, nan, lost}},
      {0, 1, {five, two, one, nan, lost}},
  };
  for (const auto& c : cases) {
    const ObjectRef v = VectorOf<OneTCcomplex>({five, nan, lost, two, one});
    EXPECT_EQ(Call(v, "Sort", c.order, c.missing_small, Null{}, 0).Int(), 1);
    const auto values = ValuesOf<OneTCcomplex>(v);
    const ObjectRef with_indices = VectorOf<OneTCcomplex>({five, nan, lost, two, one});
    const ObjectRef indices = Make(kTypeUnsignedInt | kFlagVector);
    EXPECT_EQ(Call(with_indices, "Sort", c.order, c.missing_small, indices, 0).Int(), 1);
    EXPECT_EQ(AsDoubles(with_indices).size(), 5u);
    for (std::size_t i = 0; i < c.sorted.size(); ++i) {
      EXPECT_TRUE(Same(ValuesOf<OneTCcomplex>(with_indices)[i].m_re, values[i].m_re)) << i;
      EXPECT_TRUE(Same(values[i].m_re, c.sorted[i].m_re)) << i;
      EXPECT_TRUE(Same(values[i].m_im, c.sorted[i].m_im)) << i;
    }
  }
}

TEST(Sort, IndicesMustBeUnsignedInts) {
  const ObjectRef v = VectorOf<double>({2, 1});
  const ObjectRef ints = VectorOf<int>({5});
  EXPECT_EQ(Call(v, "Sort", 1, 1, ints, 0).Int(), 0);
  EXPECT_EQ(Call(v, "Sort", 1, 1, 5, 0).status, status::kBadArguments);
  ExpectValues(v, {2, 1});
  EXPECT_EQ(AsDoubles(ints), (Doubles{5}));
  const ObjectRef self = VectorOf<unsigned>({2, 1, 3});
  EXPECT_EQ(Call(self, "Sort", 1, 1, self, 0).status, status::kBadArguments);
  EXPECT_EQ(ValuesOf<unsigned>(self), (Indices{2, 1, 3}));
  // Another row of the same object is another vector.
  const ObjectRef rows = Make(kTypeUnsignedInt | kFlagVector, 2);
  CallAt(rows, MSOINDICES::Object(0), "CopyData", self);
  EXPECT_EQ(Call(rows, "Sort", 1, 1, Part{rows, MSOINDICES::Object(1)}, 0).Int(), 1);
  EXPECT_EQ(ValuesOf<unsigned>(rows, 0), (Indices{1, 2, 3}));
  EXPECT_EQ(ValuesOf<unsigned>(rows, 1), (Indices{1, 0, 2}));
}

}  // namespace
}  // namespace vela::testing
