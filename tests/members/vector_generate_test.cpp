// Generated values, the cyclic shift, and complex vectors in parts.
#include <algorithm>

#include "vector_fixture.h"

namespace vela::testing {
namespace {

TEST(Data, SequencesEndWhereTheyShould) {
  const struct {
    double from, to, increment;
    int result;
    Doubles values;
  } cases[] = {
      {0, 1, 0.25, 1, {0, 0.25, 0.5, 0.75, 1}},
      {0, 1, 0, 0, {9, 9}},
      {3, 1, -1, 1, {3, 2, 1}},
      {1, 3, -1, 0, {}},
      {0, -kInf, 1, 0, {}},
      {-1, kM, 1, 1, {-1}},  // an end point that is missing as an element goes
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::to_string(c.from) + " " + std::to_string(c.to));
    const ObjectRef v = VectorOf<double>({9, 9});
    EXPECT_EQ(Call(v, "Data", c.from, c.to, c.increment).Int(), c.result);
    ExpectValues(v, c.values);
  }
  const ObjectRef v = VectorOf<double>({9, 9});
  for (const double to : {1e300, 3e9, kInf}) {
    EXPECT_EQ(Call(v, "Data", 0.0, to, 1.0).status, status::kCannotResize);
  }
  ExpectValues(v, {9, 9});
}

TEST(Data, StoresAsElements) {
  ForEachElementType([]<class T>() {
    const ObjectRef v = Make(kElement<T>.type_id | kFlagVector);
    EXPECT_EQ(Call(v, "Data", 1.0, 4.0, 1.5).Int(), 1);
    const std::vector<T> expected = {ConvertValue<T>(1.0), ConvertValue<T>(2.5),
                                     ConvertValue<T>(4.0)};
    EXPECT_TRUE(ValuesOf<T>(v) == expected) << kElement<T>.name;
    EXPECT_EQ(Call(v, "Pattern", 1.0, 2.0, 1.0, 2, 1, 1, -1).Int(), 1);
    EXPECT_EQ(AsDoubles(v).back(), 2) << kElement<T>.name;
  });
}

TEST(Pattern, LevelsRepeatsOffsetAndCount) {
  const Doubles twelve = {1, 1, 2, 2, 3, 3, 1, 1, 2, 2, 3, 3};
  const struct {
    double from, to, step;
    int each, total, offset, count, result;
    Doubles values;
  } cases[] = {
      {1, 3, 1, 2, 2, -1, -1, 1, twelve},
      {1, 3, 1, 2, 2, -1, 3, 1, {1, 1, 2}},
      {1, 3, 1, 2, 2, -5, 0, 1, {}},
      {1, 2, 1, 1, 1, -1, 4, 1, {1, 2, 9, 0}},  // what the pattern does not reach stays
      {1, 2, 1, 1, 2, 2, -1, 1, {9, 9, 1, 2, 1, 2}},
      {1, 2, 1, 1, 1, 1, 1, 1, {9, 1, 9}},
      {1, 2, 1, 0, 1, -1, -1, 0, {9, 9, 9}},
      {2, 1, 1, 1, 1, -1, -1, 1, {}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::to_string(c.offset) + " " + std::to_string(c.count));
    const ObjectRef v = VectorOf<double>({9, 9, 9});
    EXPECT_EQ(Call(v, "Pattern", c.from, c.to, c.step, c.each, c.total, c.offset, c.count).Int(),
              c.result);
    ExpectValues(v, c.values);
  }
  const ObjectRef twenty = Make(kTypeDouble | kFlagVector);
  Call(twenty, "SetSize", 20);
  // Sizes that no vector can have.
  EXPECT_EQ(Call(twenty, "Pattern", 1.0, 2.0, 1.0, kMaxInt, kMaxInt, -1, -1).status,
            status::kCannotResize);
  EXPECT_EQ(Call(twenty, "Pattern", 1.0, 2.0, 1.0, 1, 1, kMaxInt, kMaxInt).status,
            status::kCannotResize);
  EXPECT_EQ(Call(twenty, "GetSize").Int(), 20);
}

TEST(Random, SeedsRepeatAndDiffer) {
  for (const char* name : {"Uniform", "Normal"}) {
    const ObjectRef a = Make(kTypeDouble | kFlagVector), b = VectorOf<double>({9});
    EXPECT_EQ(Call(a, name, 1000, 7).Int(), 1);
    EXPECT_EQ(Call(b, name, 1000, 7).Int(), 1);
    EXPECT_EQ(ValuesOf<double>(a), ValuesOf<double>(b)) << name;
    Call(b, name, 1000, 8);
    EXPECT_NE(ValuesOf<double>(a)[0], ValuesOf<double>(b)[0]) << name;
    EXPECT_EQ(Call(b, name, 0, 8).Int(), 1);
    EXPECT_EQ(Call(b, name, -5, 8).Int(), 1);
    EXPECT_EQ(ValuesOf<double>(b).size(), 1000u) << "a count below 1 does nothing";
    const Doubles values = ValuesOf<double>(a);
    EXPECT_EQ(*std::min_element(values.begin(), values.end()) < 0, name[0] == 'N') << name;
    EXPECT_EQ(Call(b, name, 5).status, status::kBadArguments);
    EXPECT_EQ(Call(b, name, 1, 2, 3, 4).status, status::kBadArguments);
  }
  const ObjectRef v = VectorOf<double>({9});
  EXPECT_EQ(Call(v, "Normal", 1, 2, 3).status, status::kBadArguments);
  EXPECT_EQ(Call(v, "Uniform", 3, v).status, status::kBadArguments);
  ExpectValues(v, {9});
  // A seed is a number of any type.
  const ObjectRef by_int = Make(kTypeDouble | kFlagVector);
  Call(by_int, "Uniform", 3, 2);
  EXPECT_EQ(Call(v, "Uniform", 3, ScalarOf<short>(2)).Int(), 1);
  EXPECT_EQ(ValuesOf<double>(v), ValuesOf<double>(by_int));
  // The last of these is so near to 1 that a float would round it there.
  const ObjectRef floats = Make(kTypeFloat | kFlagVector);
  EXPECT_EQ(Call(floats, "Uniform", 132'054, 16).Int(), 1);
  EXPECT_EQ(ValuesOf<float>(floats).back(), std::nextafter(1.0f, 0.0f));
  // The values do not depend on the blocks in which other element types are filled.
  const ObjectRef complex = Make(kTypeComplex | kFlagVector),
                  real = Make(kTypeDouble | kFlagVector);
  Call(complex, "Normal", 1500, 3);
  Call(real, "Normal", 1500, 3);
  EXPECT_EQ(AsDoubles(complex), ValuesOf<double>(real));
}

TEST(Random, DrawsFromASource) {
  const ObjectRef source = VectorOf<short>({10, 20, 30});
  const ObjectRef v = VectorOf<double>({1, 2});
  EXPECT_EQ(Call(v, "Uniform", 3000, source, 1).Int(), 1);
  const Doubles values = ValuesOf<double>(v);
  ASSERT_EQ(values.size(), 3001u);
  EXPECT_EQ(values[0], 1);
  std::ptrdiff_t drawn = 0;
  for (const int value : {10, 20, 30}) {
    const auto count = std::count(values.begin() + 1, values.end(), value);
    EXPECT_NEAR(static_cast<double>(count), 1000, 200);
    drawn += count;
  }
  EXPECT_EQ(drawn, 3000);

  EXPECT_EQ(Call(v, "Uniform", 2, source, -1).Int(), 1);
  EXPECT_EQ(Call(v, "GetSize").Int(), 2);
  EXPECT_EQ(Call(v, "Uniform", 1, source, 0).Int(), 1);
  EXPECT_EQ(Call(v, "GetSize").Int(), 2) << "never shrinks with an offset";
  EXPECT_EQ(Call(v, "Uniform", -1, source, -1).Int(), 0);
  EXPECT_EQ(Call(v, "GetSize").Int(), 2);
  EXPECT_EQ(Call(v, "Uniform", 1, VectorOf<double>({}), -1).Int(), 0);
  EXPECT_EQ(Call(v, "Uniform", 1, 2, 3).status, status::kBadArguments);
  EXPECT_EQ(Call(v, "Uniform", kMaxInt, source, kMaxInt).status, status::kCannotResize);
  const ObjectRef self = VectorOf<double>({4, 4});
  EXPECT_EQ(Call(self, "Uniform", 5, self, -1).Int(), 1);
  ExpectValues(self, {4, 4, 4, 4, 4});
}

TEST(Wrap, TurnsAround) {
  const struct {
    int shift;
    Doubles values;
  } cases[] = {{1, {2, 3, 4, 1}}, {-1, {4, 1, 2, 3}}, {kMinInt, {1, 2, 3, 4}}};
  for (const auto& c : cases) {
    ForEachElementType([&]<class T>() {
      const ObjectRef v = ConvertedVector<T>({1, 2, 3, 4});
      EXPECT_EQ(Call(v, "Wrap", c.shift).Int(), 1);
      EXPECT_EQ(AsDoubles(v), c.values) << kElement<T>.name << c.shift;
    });
  }
  EXPECT_EQ(Call(VectorOf<double>({}), "Wrap", 3).Int(), 1);
  const ObjectRef v = VectorOf<double>({1, 2});
  EXPECT_EQ(Call(v, "Wrap").status, status::kFailed);
  EXPECT_EQ(Call(v, "Wrap", 1, 2).status, status::kBadArguments);
  ExpectValues(v, {1, 2});
}

TEST(Generators, NotOnOneRowOfSeveral) {
  const ObjectRef rows = Make(kTypeDouble | kFlagVector, 2);
  const MSOINDICES second = MSOINDICES::Object(1);
  const ObjectRef source = VectorOf<double>({1});
  EXPECT_EQ(CallAt(rows, second, "Data", 1, 2, 1).status, status::kNotOnRow);
  EXPECT_EQ(CallAt(rows, second, "Pattern", 1, 2, 1, 1, 1, -1, -1).status, status::kNotOnRow);
  EXPECT_EQ(CallAt(rows, second, "Uniform", 1, 2).status, status::kNotOnRow);
  EXPECT_EQ(CallAt(rows, second, "Uniform", 1, source, -1).status, status::kNotOnRow);
  EXPECT_EQ(CallAt(rows, second, "Normal", 1, 2).status, status::kNotOnRow);
  EXPECT_EQ(CallAt(rows, second, "Wrap", 1).status, status::kNotOnOneRow);
  EXPECT_EQ(CallAt(rows, second, "Append", source).status, status::kNotOnOneRow);
  EXPECT_EQ(CallAt(rows, second, "GetSize").Int(), 0);
  EXPECT_EQ(Call(rows, "Data", 1, 2, 1).Int(), 1) << "as a whole: the first row";
  ExpectValues(rows, {1, 2}, 0);
  for (const char* name : {"Data", "Pattern"}) {
    for (const int extra : {0, 1}) {
      const Result result = extra == 0 ? Call(rows, name, 1, 2) : Call(rows, name, 1, 2, 3, 4);
      EXPECT_EQ(result.status, status::kBadArguments) << name;
    }
  }
}

TEST(ComplexParts, ThereAndBack) {
  const ObjectRef z = VectorOf<OneTCcomplex>({{3, 4}, {-1, 0}, {kM, 1}, {1, kM}, {kNan, 1}});
  const struct {
    const char* name;
    Doubles parts;
  } cases[] = {
      {"GetReal", {3, -1, kM, 1, kNan}},
      {"GetImaginary", {4, 0, 1, kM, 1}},
      {"GetAmplitude", {5, 1, kM, kM, kNan}},
      {"GetPhase", {std::atan2(4.0, 3.0), std::acos(-1.0), kM, kM, kNan}},
  };
  for (const auto& c : cases) {
    const ObjectRef parts = VectorOf<double>({9});
    EXPECT_EQ(Call(z, c.name, parts).Int(), 0) << c.name;
    ExpectValues(parts, c.parts);
    EXPECT_EQ(Call(z, c.name, VectorOf<float>({9})).Int(), -1) << c.name;
    EXPECT_EQ(Call(z, c.name, Null{}).status, status::kBadArguments);
    EXPECT_EQ(Call(parts, c.name, parts).status, status::kUnsupported) << c.name;
  }
  EXPECT_EQ(Call(z, "Conjugate").Int(), 0);
  const auto conjugates = ValuesOf<OneTCcomplex>(z);
  EXPECT_EQ(conjugates[0], OneTCcomplex(3, -4));
  EXPECT_TRUE(Same(conjugates[1].m_im, -0.0));
  EXPECT_EQ(conjugates[3].m_im, kM) << "missing, not its negative";

  const ObjectRef re = VectorOf<double>({1, kM, kNan}), im = VectorOf<int>({4, 5, 6});
  EXPECT_EQ(Call(z, "MakeComplex", re, im).Int(), 0);
  EXPECT_EQ(Call(z, "GetSize").Int(), 3);
  EXPECT_EQ(ValuesOf<OneTCcomplex>(z)[0], OneTCcomplex(1, 4));
  EXPECT_EQ(ValuesOf<OneTCcomplex>(z)[1], OneTCcomplex(kM, 5));
  EXPECT_EQ(Call(z, "MakeComplex", re, VectorOf<int>({4, 5})).Int(), -1);
  EXPECT_EQ(Call(z, "MakeComplex", re, z).Int(), -1);
  EXPECT_EQ(Call(z, "GetSize").Int(), 3);
  EXPECT_EQ(Call(re, "MakeComplex", re, re).status, status::kUnsupported);
  EXPECT_EQ(Call(re, "Conjugate").status, status::kUnsupported);
}

}  // namespace
}  // namespace vela::testing
