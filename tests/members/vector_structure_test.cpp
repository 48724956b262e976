// Size, order and pieces of vectors: everything but the members that look for values.
#include "vector_fixture.h"

namespace vela::testing {
namespace {

TEST(VectorSize, SetSizeKeepsWhatFits) {
  const ObjectRef v = VectorOf<double>({1, 2, 3});
  EXPECT_EQ(Call(v, "SetSize", 5).Int(), 1);
  ExpectValues(v, {1, 2, 3, 0, 0});
  EXPECT_EQ(Call(v, "SetSize", 2).Int(), 1);
  ExpectValues(v, {1, 2});
  EXPECT_EQ(Call(v, "GetSize").Int(), 2);
  EXPECT_EQ(Call(v, "RemoveAll").status, status::kOk);
  EXPECT_EQ(Call(v, "GetSize").Int(), 0);
  EXPECT_EQ(Call(v, "GetUpperBound").Int(), -1);
}

TEST(VectorSize, WrongCalls) {
  const ObjectRef v = VectorOf<double>({1, 2, 3});
  const ObjectRef matrix = Make(kTypeDouble | kFlagMatrixObject);
  EXPECT_EQ(Call(v, "SetSize").status, status::kFailed);
  EXPECT_EQ(Call(v, "SetSize", 1, 2).status, status::kBadArguments);
  EXPECT_EQ(Call(v, "SetSize", 1, 2, 3, 4).status, status::kBadArguments);
  EXPECT_EQ(Call(v, "SetSize", -1).status, status::kCannotResize);
  EXPECT_EQ(Call(v, "SetSize", kMinInt).status, status::kCannotResize);
  EXPECT_EQ(Call(v, "GetSize", 1).status, status::kBadArguments);
  EXPECT_EQ(Call(v, "RemoveAll", 1).status, status::kBadArguments);
  EXPECT_EQ(Call(v, "GetInternalDataType", 1).status, status::kBadArguments);
  // Forms that belong to other objects succeed and do nothing.
  EXPECT_EQ(Call(v, "SetSize", v, 2).status, status::kOk);
  EXPECT_EQ(Call(v, "SetSize", matrix, 2).status, status::kOk);
  ExpectValues(v, {1, 2, 3});
}

#if !defined(__SANITIZE_ADDRESS__)  // whose allocator ends the program instead of refusing
TEST(VectorSize, MoreThanThereIsMemory) {
  // 48 GiB of points, which a system that promises more than it has may grant.
  const ObjectRef points = VectorOf<Point3D>({Point3D{{1, 2, 3}}});
  const int status = Call(points, "SetSize", kMaxInt).status;
  EXPECT_TRUE(status == status::kOk || status == status::kCannotResize) << status;
  EXPECT_EQ(Call(points, "GetSize").Int(), status == status::kOk ? kMaxInt : 1);
}
#endif

TEST(VectorSize, RowsAreIndependent) {
  const ObjectRef rows = Make(kTypeInt | kFlagVector, 3);
  EXPECT_EQ(CallAt(rows, MSOINDICES::Object(1), "SetSize", 4).Int(), 1);
  EXPECT_EQ(CallAt(rows, MSOINDICES::Object(1), "GetSize").Int(), 4);
  EXPECT_EQ(CallAt(rows, MSOINDICES::Object(2), "GetSize").Int(), 0);
  EXPECT_EQ(CallAt(rows, MSOINDICES::Object(3), "SetSize", 4).status, status::kOutOfRange);
  EXPECT_EQ(CallAt(rows, MSOINDICES::Object(-1), "SetSize", 4).Int(), 0);
  EXPECT_EQ(CallAt(rows, MSOINDICES::Object(-1), "RemoveAll").status, -1);
  EXPECT_EQ(CallAt(rows, MSOINDICES{5, 0, 0, 0}, "SetSize", 4).status, status::kUnresolved);
  EXPECT_EQ(CallAt(rows, MSOINDICES{5, 0, 0, 0}, "GetSize").status, status::kUnresolved);
}

// Every member that acts on a row refuses one that does not exist, and a wrong number of arguments.
TEST(VectorStructure, UnsupportedMembersSaySo) {
  const ObjectRef v = VectorOf<double>({1, 2, 3});
  for (const char* name : {"SetUpperBound", "SetLowerBound", "IsValid"}) {
    EXPECT_EQ(Call(v, name, 1).status, status::kUnsupported) << name;
    EXPECT_EQ(Call(v, name).status, status::kUnsupported) << name;
  }
  const ObjectRef points = VectorOf<PointDouble>({PointDouble{{1, 2}}});
  for (const char* name : {"Find", "Replace", "GetAs2DArray"}) {
    EXPECT_EQ(Call(points, name, 1, 1).status, status::kUnsupported) << name;
  }
  EXPECT_EQ(Call(points, "GetAs1DArray", 1).status, status::kUnsupported);
}

TEST(GetSubVector, Bounds) {
  const ObjectRef v = VectorOf<double>({0, 1, 2, 3, 4, 5, 6, 7, 8, 9});
  const struct {
    int lower, upper, result;
    Doubles target;
  } cases[] = {
      {2, -1, 0, {2, 3, 4, 5, 6, 7, 8, 9}},
      {8, 10, 0, {8, 9}},
      {8, kMaxInt, 0, {8, 9}},
      {0, 0, 0, {0}},
      {10, -1, -1, {7, 7}},
      {-1, 4, -1, {7, 7}},
      {5, 4, -1, {7, 7}},
      {0, -2, -1, {7, 7}},
      {kMinInt, kMaxInt, -1, {7, 7}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::to_string(c.lower) + ".." + std::to_string(c.upper));
    const ObjectRef target = VectorOf<double>({7, 7});
    EXPECT_EQ(Call(v, "GetSubVector", target, c.lower, c.upper).Int(), c.result);
    ExpectValues(target, c.target);
  }
  const ObjectRef target = Make(kTypeDouble | kFlagVector);
  EXPECT_EQ(Call(v, "GetSubVector", target, 7).Int(), 0);
  ExpectValues(target, {7, 8, 9});
  const ObjectRef empty = Make(kTypeDouble | kFlagVector);
  EXPECT_EQ(Call(empty, "GetSubVector", target, 0, -1).Int(), -1);
  EXPECT_EQ(Call(v, "GetSubVector", 1, 2, 3).status, status::kBadArguments);
  EXPECT_EQ(Call(v, "GetSubVector", Null{}, 2, 3).status, status::kBadArguments);
}

TEST(SetSubVector, RunsThatFitAndThatDoNot) {
  const struct {
    int offset, count, result;
    Doubles values;
  } cases[] = {
      {1, -1, 0, {0, 10, 20, 30, 4}},    {3, -1, 0, {0, 1, 2, 10, 20}},
      {3, 2, 0, {0, 1, 2, 10, 20}},      {0, 3, 0, {10, 20, 30, 3, 4}},
      {3, 3, -1, {0, 1, 2, 3, 4}},       {0, 4, -1, {0, 1, 2, 3, 4}},
      {5, -1, -1, {0, 1, 2, 3, 4}},      {-1, 1, -1, {0, 1, 2, 3, 4}},
      {1, kMaxInt, -1, {0, 1, 2, 3, 4}}, {kMinInt, -1, -1, {0, 1, 2, 3, 4}},
  };
  for (const bool converted : {false, true}) {
    const ObjectRef source =
        converted ? VectorOf<short>({10, 20, 30}) : VectorOf<double>({10, 20, 30});
    for (const auto& c : cases) {
      SCOPED_TRACE(std::to_string(c.offset) + " " + std::to_string(c.count));
      const ObjectRef v = VectorOf<double>({0, 1, 2, 3, 4});
      EXPECT_EQ(Call(v, "SetSubVector", source, c.offset, c.count).Int(), c.result);
      ExpectValues(v, c.values);
    }
  }
  const ObjectRef v = VectorOf<double>({0, 1, 2});
  EXPECT_EQ(Call(v, "SetSubVector", VectorOf<int>({8, 9}), 2).Int(), 0);
  ExpectValues(v, {0, 1, 8});
}

TEST(SubVector, OfTheVectorItself) {
  const ObjectRef v = VectorOf<double>({0, 1, 2, 3, 4, 5});
  EXPECT_EQ(Call(v, "SetSubVector", v, 2).Int(), 0);
  ExpectValues(v, {0, 1, 0, 1, 2, 3});
  EXPECT_EQ(Call(v, "GetSubVector", v, 3, 4).Int(), 0);
  ExpectValues(v, {1, 2});
  EXPECT_EQ(Call(v, "CopyData", v).Int(), 0);
  ExpectValues(v, {1, 2});

  // Rows of one object.
  const ObjectRef rows = Make(kTypeDouble | kFlagVector, 2);
  EXPECT_EQ(CallAt(rows, MSOINDICES::Object(1), "CopyData", VectorOf<int>({4, 5, 6})).Int(), 0);
  EXPECT_EQ(
      CallAt(rows, MSOINDICES::Object(1), "GetSubVector", Part{rows, MSOINDICES::Object(0)}, 1, -1)
          .Int(),
      0);
  ExpectValues(rows, {5, 6}, 0);
  EXPECT_EQ(
      CallAt(rows, MSOINDICES::Object(0), "SetSubVector", Part{rows, MSOINDICES::Object(1)}, 1)
          .Int(),
      0);
  ExpectValues(rows, {5, 4}, 0);
  ExpectValues(rows, {4, 5, 6}, 1);
}

// Elements survive the way into a vector of any other type as an assigned element does.
TEST(SubVector, ConvertsBetweenAllTypes) {
  ForEachElementType([]<class From>() {
    ForEachElementType([]<class To>() {
      const std::vector<From> elements = {ConvertValue<From>(5.75), ConvertValue<From>(-3.0),
                                          ConvertValue<From>(300.0)};
      const ObjectRef source = VectorOf<From>(elements);
      const ObjectRef target = Make(kElement<To>.type_id | kFlagVector);
      EXPECT_EQ(Call(source, "GetSubVector", target, 1, 2).Int(), 0);
      const std::vector<To> expected = {ConvertValue<To>(elements[1]),
                                        ConvertValue<To>(elements[2])};
      EXPECT_EQ(
          std::memcmp(ValuesOf<To>(target).data(), expected.data(), expected.size() * sizeof(To)),
          0)
          << kElement<From>.name << " to " << kElement<To>.name;
    });
  });
}

TEST(SubVector, BetweenNumbersAndTexts) {
  const ObjectRef texts = Make(kTypeString | kFlagVector);
  if (!texts) GTEST_SKIP() << "no string arrays";
  EXPECT_EQ(Call(VectorOf<double>({1.5, kM, 3}), "GetSubVector", texts, 0, 1).Int(), 0);
  MSOINDICES at = MSOINDICES::Element(0);
  EXPECT_EQ(TextOf(texts, &at), "1.5");
  at = MSOINDICES::Element(1);
  EXPECT_EQ(TextOf(texts, &at), "NANUM");
  const ObjectRef v = VectorOf<double>({7, 8, 9});
  EXPECT_EQ(Call(v, "SetSubVector", texts, 1).Int(), 0);
  ExpectValues(v, {7, 1.5, kM});
}

TEST(Trim, MissingValuesGo) {
  const struct {
    Doubles values;
    int left, right, all;
    Doubles after_left, after_right, after_all;
  } cases[] = {
      {{}, -1, -1, 0, {}, {}, {}},
      {{kM, kM, kM}, 3, 3, 1, {}, {}, {}},
      {{kM, kM, 1, kM, 2, kM}, 2, 1, 1, {1, kM, 2, kM}, {kM, kM, 1, kM, 2}, {1, 2}},
      {{1, kM, 2}, 0, 0, 1, {1, kM, 2}, {1, kM, 2}, {1, 2}},
      {{kNan, kM, kNan}, 0, 0, 1, {kNan, kM, kNan}, {kNan, kM, kNan}, {kNan, kNan}},
  };
  for (const auto& c : cases) {
    const ObjectRef left = VectorOf<double>(c.values);
    EXPECT_EQ(Call(left, "TrimLeft", 0).Int(), 0);
    ExpectValues(left, c.values);
    EXPECT_EQ(Call(left, "TrimLeft", 1).Int(), c.left);
    ExpectValues(left, c.after_left);
    const ObjectRef right = VectorOf<double>(c.values);
    EXPECT_EQ(Call(right, "TrimRight", 0).Int(), 0);
    ExpectValues(right, c.values);
    EXPECT_EQ(Call(right, "TrimRight", 1).Int(), c.right);
    ExpectValues(right, c.after_right);
    const ObjectRef all = VectorOf<double>(c.values);
    EXPECT_EQ(Call(all, "Trim").Int(), c.all);
    ExpectValues(all, c.after_all);
  }
}

TEST(Trim, OtherElementTypes) {
  // A float cannot be missing, even one widened from the value; an integer neither.
  const ObjectRef floats = VectorOf<float>({static_cast<float>(kM), 0, 1});
  EXPECT_EQ(Call(floats, "TrimLeft", 1).Int(), 0);
  EXPECT_EQ(Call(floats, "Trim").Int(), 1);
  EXPECT_EQ(Call(floats, "GetSize").Int(), 3);
  // A complex value or a point is missing when one of its parts is.
  const ObjectRef complex =
      VectorOf<OneTCcomplex>({{kM, 1}, {1, 2}, {kM, kM}, {3, 0}, {3, kM}, {kM, 0}});
  EXPECT_EQ(Call(complex, "TrimLeft", 1).Int(), 1);
  EXPECT_EQ(Call(complex, "TrimRight", 1).Int(), 2);
  EXPECT_EQ(Call(complex, "Trim").Int(), 1);
  const auto values = ValuesOf<OneTCcomplex>(complex);
  ASSERT_EQ(values.size(), 2u);
  EXPECT_EQ(values[0].m_im, 2);
  EXPECT_EQ(values[1].m_re, 3);
  const ObjectRef points = VectorOf<Point3D>({Point3D{{1, kM, 1}}, Point3D{{1, 2, 3}}});
  EXPECT_EQ(Call(points, "TrimLeft", 1).Int(), 1);
  EXPECT_EQ(Call(points, "GetSize").Int(), 1);
}

TEST(Reorder, PermutationsAndOthers) {
  const struct {
    std::vector<unsigned> order;
    int result;
  } cases[] = {
      {{2, 0, 1}, 1}, {{0, 1, 2}, 1}, {{0, 0, 2}, 0},   {{0, 1, 3}, 0},
      {{0, 1}, 0},    {{}, 0},        {{~0u, 0, 1}, 0},
  };
  for (const auto& c : cases) {
    const ObjectRef v = VectorOf<double>({10, 11, 12});
    const ObjectRef order = VectorOf<unsigned>(c.order);
    EXPECT_EQ(Call(v, "Reorder", order).Int(), c.result);
    if (c.result == 0) continue;
    ExpectValues(v, {10.0 + c.order[0], 10.0 + c.order[1], 10.0 + c.order[2]});
  }
  const ObjectRef v = VectorOf<double>({10, 11, 12});
  EXPECT_EQ(Call(v, "Reorder", VectorOf<int>({2, 0, 1})).Int(), 0);
  EXPECT_EQ(Call(v, "Reorder", ScalarOf<unsigned>(1)).Int(), 0);
  EXPECT_EQ(Call(v, "Reorder", Null{}).Int(), 0);
  ExpectValues(v, {10, 11, 12});
  EXPECT_EQ(Call(VectorOf<double>({1}), "Reorder", VectorOf<unsigned>({})).status, status::kOk);

  const ObjectRef self = VectorOf<unsigned>({2, 0, 1});
  EXPECT_EQ(Call(self, "Reorder", self).Int(), 1);
  EXPECT_EQ(ValuesOf<unsigned>(self), (std::vector<unsigned>{1, 2, 0}));
}

TEST(Bytes, ThereAndBack) {
  ForEachElementType([]<class T>() {
    const std::vector<T> elements = {ConvertValue<T>(1.5), ConvertValue<T>(-2.0)};
    const ObjectRef v = VectorOf<T>(elements);
    for (const unsigned type_id : {kTypeUnsignedChar, kTypeChar}) {
      const ObjectRef bytes = Make(type_id | kFlagVector);
      EXPECT_EQ(Call(v, "GetBytes", bytes).status, status::kOk);
      EXPECT_EQ(Call(bytes, "GetSize").Int(), static_cast<int>(2 * sizeof(T)));
      // A part of an element behind the whole ones is left out.
      Call(bytes, "SetSize", static_cast<int>(3 * sizeof(T) - 1));
      const ObjectRef back = Make(kElement<T>.type_id | kFlagVector);
      EXPECT_EQ(Call(back, "SetBytes", bytes).status, status::kOk);
      EXPECT_EQ(Call(back, "GetSize").Int(), 2);
      EXPECT_TRUE(std::memcmp(ValuesOf<T>(back).data(), elements.data(), 2 * sizeof(T)) == 0)
          << kElement<T>.name;
    }
  });
}

TEST(Bytes, Refusals) {
  const ObjectRef v = VectorOf<double>({1, 2, 3});
  EXPECT_EQ(Call(v, "GetBytes", VectorOf<int>({})).status, status::kBadArguments);
  EXPECT_EQ(Call(v, "SetBytes", v).status, status::kBadArguments);
  EXPECT_EQ(Call(v, "GetBytes", Null{}).status, status::kBadArguments);
  const ObjectRef dataset = Make(kTypeDouble | kFlagDataset);
  const ObjectRef bytes = VectorOf<unsigned char>({1, 2, 3});
  EXPECT_EQ(Call(dataset, "GetBytes", bytes).status, status::kNotContiguous);
  EXPECT_EQ(Call(dataset, "SetBytes", bytes).status, status::kNotContiguous);
  EXPECT_EQ(Call(bytes, "GetBytes", bytes).status, status::kOk);
  EXPECT_EQ(Call(bytes, "SetBytes", bytes).status, status::kOk);
  EXPECT_EQ(ValuesOf<unsigned char>(bytes), (std::vector<unsigned char>{1, 2, 3}));
  EXPECT_EQ(Call(v, "SetBytes", bytes).status, status::kOk);
  EXPECT_EQ(Call(v, "GetSize").Int(), 0);
}

// A vector as its own argument acts as a copy of it would.
TEST(VectorItself, AsAnArgument) {
  const ObjectRef ints = VectorOf<int>({3, 1, 2, 9});
  EXPECT_EQ(Call(ints, "RemoveAt", ints).Int(), 0) << "there is no element 9";
  EXPECT_EQ(AsDoubles(ints), (Doubles{3, 1, 2, 9}));
  Call(ints, "SetSize", 3);
  Call(ints, "SetAtGrow", 3, 0);
  EXPECT_EQ(Call(ints, "RemoveAt", ints).Int(), 1);
  EXPECT_EQ(AsDoubles(ints), (Doubles{}));
  const ObjectRef edges = VectorOf<double>({1, 2, 4});
  const ObjectRef counts = Make(kTypeInt | kFlagVector);
  EXPECT_EQ(Call(edges, "FrequencyCount", edges, counts, 2).Int(), 0);
  EXPECT_EQ(AsDoubles(counts), (Doubles{1, 1, 1}));
  const ObjectRef bytes = VectorOf<unsigned char>({1, 2});
  EXPECT_EQ(Call(bytes, "Append", bytes).Int(), 1);
  EXPECT_EQ(Call(bytes, "GetBytes", bytes).Int(), 1);
  EXPECT_EQ(AsDoubles(bytes), (Doubles{1, 2, 1, 2}));
}

// Sizes that an int cannot hold, from members that add up two of them.
TEST(VectorSize, SumsOfSizesThatOverflow) {
  const ObjectRef bytes = VectorOf<unsigned char>({1, 2, 3});
  const ObjectRef source = VectorOf<unsigned char>({7});
  EXPECT_EQ(Call(bytes, "InsertAt", 2, 7, kMaxInt).status, status::kCannotResize);
  EXPECT_EQ(Call(bytes, "InsertAt", kMaxInt, 7, kMaxInt).status, status::kCannotResize);
  EXPECT_EQ(Call(bytes, "InsertValue", 7, 3, kMaxInt - 1).status, status::kCannotResize);
  EXPECT_EQ(Call(bytes, "Uniform", kMaxInt, source, 1).status, status::kCannotResize);
  EXPECT_EQ(Call(bytes, "SetSubVector", source, kMaxInt, kMaxInt).Int(), -1);
  EXPECT_EQ(Call(bytes, "RemoveAt", kMaxInt, kMaxInt).status, status::kOutOfRange);
  EXPECT_EQ(Call(bytes, "RemoveAt", 2, kMaxInt).status, status::kOutOfRange);
  EXPECT_EQ(AsDoubles(bytes), (Doubles{1, 2, 3}));
}

TEST(VectorText, CommentAndNameAndHostText) {
  const ObjectRef v = VectorOf<double>({1.5, kM, -2e10});
  const ObjectRef text = Make(kTypeString);
  EXPECT_EQ(Call(v, "GetOutputComment", text).status, status::kOk);
  EXPECT_EQ(TextOf(text), "");
  EXPECT_EQ(Call(v, "SetOutputComment", "grams \xC2\xB5").status, status::kOk);
  EXPECT_EQ(Call(v, "GetOutputComment", text).status, status::kOk);
  EXPECT_EQ(TextOf(text), "grams \xC2\xB5");
  EXPECT_EQ(Call(v, "GetName", text).status, status::kOk);
  EXPECT_EQ(TextOf(text), "");
  EXPECT_EQ(Call(v, "GetName", 1).status, status::kBadArguments);

  EXPECT_EQ(Call(v, "SetParleyVectorValue", text).Int(), 3);
  EXPECT_EQ(TextOf(text), "1.5 NANUM -20000000000");
  EXPECT_EQ(Call(v, "GetParleyVectorValue", " 1,2.5;\t0x10 what\n").Int(), 4);
  ExpectValues(v, {1, 2.5, 16, kM});
  EXPECT_EQ(Call(v, "GetParleyVectorValue", "").Int(), 0);
  ExpectValues(v, {});
  EXPECT_EQ(Call(VectorOf<OneTCcomplex>({}), "GetParleyVectorValue", "1").status,
            status::kUnsupported);
  TheLibrary().GetExports().create_object(0, nullptr, 0, factory_mode::kSetHostContext);
  EXPECT_EQ(Call(v, "GetParleyVectorValue", "1").status, status::kFailed);
  EXPECT_EQ(Call(v, "SetParleyVectorValue", text).status, status::kFailed);
  TheLibrary().Configure();
}

}  // namespace
}  // namespace vela::testing
