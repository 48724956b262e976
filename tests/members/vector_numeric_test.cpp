// Sums, extremes, differences, counts and averages.
#include <algorithm>

#include "vector_fixture.h"

namespace vela::testing {
namespace {

TEST(Sum, StoresByTheTypeOfTheReference) {
  const struct {
    unsigned elements, reference;
    bool stored;
  } cases[] = {
      {kTypeChar, kTypeChar, true},       {kTypeChar, kTypeShort, true},
      {kTypeChar, kTypeDouble, true},     {kTypeChar, kTypeComplex, true},
      {kTypeInt, kTypeInt, true},         {kTypeInt, kTypeShort, false},
      {kTypeDouble, kTypeDouble, true},   {kTypeDouble, kTypeFloat, false},
      {kTypeDouble, kTypeInt64, true},    {kTypeFloat, kTypeFloat, true},
      {kTypeInt64, kTypeInt64, true},     {kTypeInt64, kTypeDouble, false},
      {kTypeComplex, kTypeComplex, true}, {kTypeComplex, kTypeDouble, false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::to_string(c.elements) + " into " + std::to_string(c.reference));
    const ObjectRef v = Make(c.elements | kFlagVector);
    Call(v, "Append", VectorOf<double>({120, 100, 20}));
    const ObjectRef total = Make(c.reference);
    EXPECT_EQ(Call(v, "Sum", total).status, c.stored ? 0 : status::kNotContiguous);
    double stored = -1;
    total->GetDouble(nullptr, stored);
    EXPECT_EQ(stored, !c.stored ? 0 : c.reference == kTypeChar ? 127 : 240) << "saturated";
  }
  EXPECT_EQ(Call(VectorOf<PointDouble>({}), "Sum", Make(kTypeComplex)).status,
            status::kUnsupported);
  const ObjectRef whole = Make(kTypeInt);
  Call(VectorOf<int>({kMaxInt, kMaxInt}), "Sum", whole);
  EXPECT_EQ(ValueOf<int>(whole), kMaxInt);
  EXPECT_EQ(Call(VectorOf<int>({1}), "Sum", 5).status, status::kBadArguments) << "no reference";
  EXPECT_EQ(Call(VectorOf<double>({1}), "Sum", 5).status, status::kNotContiguous);
}

TEST(Sum, ComplexBothParts) {
  const ObjectRef v = VectorOf<OneTCcomplex>({{1, 2}, {kM, 100}, {100, kM}, {3, -5}});
  const ObjectRef total = Make(kTypeComplex);
  EXPECT_EQ(Call(v, "Sum", total).Int(), 0);
  EXPECT_EQ(ValueOf<OneTCcomplex>(total), OneTCcomplex(4, -3));
  EXPECT_EQ(Call(v, "Product", total, 1).Int(), 0);
  EXPECT_EQ(ValueOf<OneTCcomplex>(total), OneTCcomplex(13, 1));
}

TEST(Product, StoresInThreeTypesOnly) {
  const ObjectRef all = ScalarOf(7.0);
  for (const auto& [skip_missing, value] : {std::pair{1, 6.0}, {0, 6 * kM}, {-1, 6.0}}) {
    Call(VectorOf<double>({2, kM, 3}), "Product", all, skip_missing);
    EXPECT_EQ(ValueOf<double>(all), value);
  }
  const DebugModeScope debug(1);
  Call(VectorOf<double>({1e200, 1e200, 0}), "Product", all, 1);
  EXPECT_EQ(ValueOf<double>(all), kM);
  const struct {
    unsigned reference;
    int status;
    double stored;
  } cases[] = {
      {kTypeChar, 0, 9},    {kTypeUnsignedInt, 0, 9}, {kTypeInt, 0, 30},  {kTypeFloat, 0, 9},
      {kTypeDouble, 0, 30}, {kTypeComplex, 0, 30},    {kTypeInt64, 0, 9},
  };
  for (const auto& c : cases) {
    const ObjectRef product = Make(c.reference);
    product->SetDouble(9);
    EXPECT_EQ(Call(VectorOf<char>({5, 6}), "Product", product, 1).status, c.status);
    double stored = -1;
    product->GetDouble(nullptr, stored);
    EXPECT_EQ(stored, c.stored) << c.reference;
  }
  EXPECT_EQ(Call(VectorOf<double>({5}), "Product", Make(kTypeInt), 1).status,
            status::kNotContiguous);
}

TEST(GetMinMax, FirstOfEqualExtremes) {
  const struct {
    Doubles x;
    double min, max;
    int min_at, max_at, count;
  } cases[] = {
      {{kM, 3, 1, 1, 5}, 1, 5, 2, 4, 4},
      {{}, kM, kM, -1, -1, 0},
      {{kM, kM}, kM, kM, -1, -1, 0},
      {{kNan, 1, 5}, kNan, kNan, 0, 0, 3},
  };
  for (const auto& c : cases) {
    const ObjectRef min = Make(kTypeDouble), max = Make(kTypeDouble);
    const ObjectRef min_at = ScalarOf(7u), max_at = ScalarOf(7u);
    const ObjectRef v = VectorOf<double>(c.x);
    EXPECT_EQ(Call(v, "GetMinMax", min, max, min_at, max_at).Int(), c.count);
    EXPECT_TRUE(Same(ValueOf<double>(min), c.min));
    EXPECT_TRUE(Same(ValueOf<double>(max), c.max));
    EXPECT_EQ(ValueOf<unsigned>(min_at), static_cast<unsigned>(c.min_at)) << "-1 is all bits set";
    EXPECT_EQ(ValueOf<unsigned>(max_at), static_cast<unsigned>(c.max_at));
    const ObjectRef at = ScalarOf(7);
    EXPECT_EQ(Call(v, "GetMinMax", min, max, Null{}, at).Int(), c.count);
    EXPECT_EQ(ValueOf<int>(at), c.max_at);
  }
}

TEST(GetMinMax, OtherTypesAndReferences) {
  ForEachElementType([]<class T>() {
    SCOPED_TRACE(kElement<T>.name);
    const ObjectRef v = ConvertedVector<T>({3, 1, 4, 1});
    const ObjectRef min = Make(kElement<T>.type_id), max = Make(kElement<T>.type_id);
    const ObjectRef at = Make(kTypeUnsignedInt);
    const Result result = Call(v, "GetMinMax", min, max, at, Null{});
    if constexpr (SimpleElement<T>) {
      EXPECT_EQ(result.Int(), 4);
      EXPECT_EQ(ValueOf<T>(min), T{1});
      EXPECT_EQ(ValueOf<T>(max), T{4});
      EXPECT_EQ(ValueOf<unsigned>(at), 1u);
    } else {
      EXPECT_EQ(result.status, status::kUnsupported);
    }
  });
  const ObjectRef wide = Make(kTypeDouble), narrow = Make(kTypeInt);
  const ObjectRef v = VectorOf<double>({1});
  EXPECT_EQ(Call(v, "GetMinMax", wide, narrow, Null{}, Null{}).status, status::kNotContiguous);
  EXPECT_EQ(Call(v, "GetMinMax", narrow, wide, Null{}, Null{}).status, status::kNotContiguous);
  // 64-bit integers exactly, or rounded to a double.
  constexpr std::int64_t kOdd = (std::int64_t{1} << 53) + 1;
  const ObjectRef least = Make(kTypeInt64);
  EXPECT_EQ(
      Call(VectorOf<std::int64_t>({-kOdd, 5}), "GetMinMax", least, wide, Null{}, Null{}).Int(), 2);
  EXPECT_EQ(ValueOf<std::int64_t>(least), -kOdd);
  EXPECT_EQ(ValueOf<double>(wide), 5);
  // No position is all bits set in an integer of any type.
  const ObjectRef byte = Make(kTypeUnsignedChar), whole = Make(kTypeUnsignedInt64);
  Call(VectorOf<double>({}), "GetMinMax", wide, wide, byte, whole);
  EXPECT_EQ(ValueOf<unsigned char>(byte), 0xFF);
  EXPECT_EQ(ValueOf<std::uint64_t>(whole), ~std::uint64_t{0});
}

TEST(Difference, OfNeighbours) {
  const struct {
    Doubles x;
    int result;
    Doubles differences;
  } cases[] = {
      {{}, 0, {9, 9, 9}},
      {{1}, 0, {9, 9, 9}},
      {{1, 4, 2}, 1, {3, -2}},
      {{kNan, 1, 2}, 1, {kNan, 1}},
      {{kInf, kInf, 1}, 1, {kNan, -kInf}},
      {{kM, 5, kM}, 1, {5 - kM, kM - 5}},  // a number like any other here
  };
  for (const auto& c : cases) {
    const ObjectRef result = VectorOf<double>({9, 9, 9});
    EXPECT_EQ(Call(VectorOf<double>(c.x), "Difference", result).Int(), c.result);
    ExpectValues(result, c.differences);
    const ObjectRef self = VectorOf<double>(c.x);
    EXPECT_EQ(Call(self, "Difference", self).Int(), c.result);
    ExpectValues(self, c.result == 1 ? c.differences : c.x);
  }
  const ObjectRef floats = VectorOf<float>({9});
  EXPECT_EQ(Call(VectorOf<double>({1, 2}), "Difference", floats).Int(), 0);
  EXPECT_EQ(AsDoubles(floats), (Doubles{9}));
  EXPECT_EQ(Call(VectorOf<double>({1, 2}), "Difference", 1.0).status, status::kBadArguments);
}

TEST(Difference, OtherTypesSaturate) {
  const ObjectRef bytes = Make(kTypeUnsignedChar | kFlagVector);
  Call(VectorOf<unsigned char>({7, 3, 255, 0}), "Difference", bytes);
  EXPECT_EQ(AsDoubles(bytes), (Doubles{0, 252, 0}));
  const ObjectRef ints = Make(kTypeInt | kFlagVector);
  Call(VectorOf<int>({kMinInt, kMaxInt, kMinInt}), "Difference", ints);
  EXPECT_EQ(AsDoubles(ints), (Doubles{double{kMaxInt}, double{kMinInt}}));
  const ObjectRef complex = Make(kTypeComplex | kFlagVector);
  Call(VectorOf<OneTCcomplex>({{1, 2}, {4, 8}}), "Difference", complex);
  EXPECT_EQ(ValuesOf<OneTCcomplex>(complex)[0], OneTCcomplex(3, 6));
}

TEST(FrequencyCount, BinsAndOptions) {
  const Doubles x = {0.5, 1.0, 2.0, -3, 7, kM, 0, kInf, -kInf};
  const struct {
    Doubles edges;
    int options;
    std::vector<int> counts;
  } cases[] = {
      {{0, 1, 2}, 0, {2, 1}},
      {{0, 1, 2}, 2, {2, 1, 3}},
      {{0, 1, 2}, 3, {2, 2, 1, 3}},
      {{0, 1, 2}, 4, {2, 1}},
      {{1}, 0, {}},
      {{1}, 3, {4, 4}},
      {{}, 3, {}},
  };
  for (const auto& c : cases) {
    const ObjectRef counts = VectorOf<int>({9, 9, 9, 9, 9, 9});
    EXPECT_EQ(
        Call(VectorOf<double>(x), "FrequencyCount", VectorOf<double>(c.edges), counts, c.options)
            .Int(),
        0);
    EXPECT_EQ(ValuesOf<int>(counts), c.counts) << c.edges.size() << ' ' << c.options;
  }
}

TEST(FrequencyCount, TypesAndRefusals) {
  ForEachElementType([]<class T>() {
    SCOPED_TRACE(kElement<T>.name);
    const ObjectRef counts = VectorOf<int>({9});
    const Result result = Call(ConvertedVector<T>({1, 3, 3, 8}), "FrequencyCount",
                               VectorOf<short>({0, 2, 4}), counts, 0);
    if (kElement<T>.type_id <= kTypeDouble) {
      EXPECT_EQ(result.Int(), 0);
      EXPECT_EQ(ValuesOf<int>(counts), (std::vector<int>{1, 2}));
    } else {
      EXPECT_EQ(result.status, status::kNotContiguous);
      EXPECT_EQ(ValuesOf<int>(counts), (std::vector<int>{9}));
    }
  });
  const ObjectRef ints = VectorOf<int>({1, 2});
  const ObjectRef edges = VectorOf<int>({0, 9});
  EXPECT_EQ(Call(ints, "FrequencyCount", edges, ints, 0).status, status::kBadArguments);
  EXPECT_EQ(Call(ints, "FrequencyCount", edges, edges, 0).status, status::kBadArguments);
  EXPECT_EQ(Call(ints, "FrequencyCount", edges, VectorOf<double>({}), 0).status,
            status::kBadArguments);
  EXPECT_EQ(AsDoubles(ints), (Doubles{1, 2}));
  EXPECT_EQ(AsDoubles(edges), (Doubles{0, 9}));
}

TEST(Average, WindowsShrinkAtBothEnds) {
  const Doubles seven = {1, 2, kM, 4, 10, 6, 7};
  const struct {
    Doubles x;
    int points;
    Doubles averages;
  } cases[] = {
      {seven, 1, seven},
      {seven, 2, {1, 1.5, 3, 7, 20.0 / 3, 23.0 / 3, 7}},
      {seven, 3, {1, 1.5, 3, 7, 20.0 / 3, 23.0 / 3, 7}},
      {seven, 4, {1, 1.5, 4.25, 5.5, 6.75, 23.0 / 3, 7}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.points);
    const ObjectRef target = VectorOf<double>({9});
    EXPECT_EQ(Call(target, "Average", VectorOf<double>(c.x), c.points, 5).Int(), 0);
    ExpectValues(target, c.averages);
    const ObjectRef self = VectorOf<double>(c.x);
    EXPECT_EQ(Call(self, "Average", self, c.points, 0).Int(), 0);
    ExpectValues(self, c.averages);
  }
}

TEST(Average, OnlyResizesForWideWindows) {
  for (const int points : {3, 4, kMaxInt}) {
    const ObjectRef target = VectorOf<double>({9});
    EXPECT_EQ(Call(target, "Average", VectorOf<double>({1, 2, 3}), points, 0).Int(), 0);
    ExpectValues(target, {9, 0, 0});
  }
  for (const int points : {0, -1, kMinInt}) {
    const ObjectRef target = VectorOf<double>({9});
    EXPECT_EQ(Call(target, "Average", VectorOf<double>({1, 2, 3}), points, 0).Int(), 0);
    ExpectValues(target, {9});
  }
  const ObjectRef ints = Make(kTypeInt | kFlagVector);
  EXPECT_EQ(Call(ints, "Average", VectorOf<float>({1, 2, 6, 8}), 3, 0).Int(), 0);
  EXPECT_EQ(AsDoubles(ints), (Doubles{1, 3, 5, 8}));
  EXPECT_EQ(Call(ints, "Average", ints, 3, 0).Int(), 0);
  EXPECT_EQ(AsDoubles(ints), (Doubles{1, 3, 5, 8}));
  EXPECT_EQ(Call(ints, "Average", 1, 3, 0).status, status::kBadArguments);
  EXPECT_EQ(Call(ints, "Average", ints, 3, ints).status, status::kBadArguments);
}

TEST(Abs, LeavesMissingNanAndZeros) {
  const ObjectRef v = VectorOf<double>({-1, kM, kNan, -0.0, 0.0, -kInf, 2});
  EXPECT_EQ(Call(v, "Abs").Int(), 0);
  ExpectValues(v, {1, kM, kNan, -0.0, 0.0, kInf, 2});
  EXPECT_EQ(Call(v, "Abs", 1).status, status::kBadArguments);
  const ObjectRef ints = VectorOf<int>({-7, kMinInt, 7});
  Call(ints, "Abs");
  EXPECT_EQ(ValuesOf<int>(ints), (std::vector<int>{7, kMaxInt, 7}));
  EXPECT_EQ(Call(VectorOf<OneTCcomplex>({{1, 2}}), "Abs").status, status::kUnsupported);
}

TEST(Numeric, RowsOfOneObject) {
  const ObjectRef rows = Make(kTypeDouble | kFlagVector, 2);
  const MSOINDICES second = MSOINDICES::Object(1);
  CallAt(rows, second, "CopyData", VectorOf<double>({4, -1, kM}));
  const ObjectRef total = Make(kTypeDouble);
  EXPECT_EQ(CallAt(rows, second, "Sum", total).Int(), 0);
  EXPECT_EQ(ValueOf<double>(total), 3);
  EXPECT_EQ(CallAt(rows, second, "Product", total, 1).Int(), 0);
  EXPECT_EQ(ValueOf<double>(total), -4);
  EXPECT_EQ(CallAt(rows, second, "GetMinMax", total, total, Null{}, Null{}).Int(), 2);
  EXPECT_EQ(CallAt(rows, second, "Sort", 1, 1, Null{}, 0).Int(), 1);
  ExpectValues(rows, {kM, -1, 4}, 1);
  // From one row into the other.
  EXPECT_EQ(CallAt(rows, second, "Difference", Part{rows, MSOINDICES::Object(0)}).Int(), 1);
  ExpectValues(rows, {-1 - kM, 5}, 0);
  EXPECT_EQ(CallAt(rows, MSOINDICES::Object(0), "Average", Part{rows, second}, 1, 0).Int(), 0);
  ExpectValues(rows, {kM, -1, 4}, 0);
  EXPECT_EQ(CallAt(rows, second, "Abs").status, status::kNotOnOneRow);
  ExpectValues(rows, {kM, -1, 4}, 1);
}

}  // namespace
}  // namespace vela::testing
