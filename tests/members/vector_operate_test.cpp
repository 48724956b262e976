// Operators on vectors: every code on every operand form, sizes, and conversion between types.
#include <array>
#include <cstdint>

#include "vector/vector_base.h"
#include "vector_fixture.h"

namespace vela::testing {
namespace {

constexpr unsigned kCodes[] = {operation::kAssign,   operation::kAdd,    operation::kSubtract,
                               operation::kMultiply, operation::kDivide, operation::kPower};

int Operate(const ObjectRef& target, unsigned code, const ObjectRef& source, unsigned options = 0,
            const MSOINDICES& at = {}, const MSOINDICES& source_at = {}) {
  return target->Operate2(&at, code, tagMSOOBJVECT(source.Get(), source->GetTypeID(), source_at),
                          options);
}

int OperatePlain(const ObjectRef& target, unsigned code, const OneTCcomplex& value,
                 const MSOINDICES& at = {}) {
  return target->Operate2(&at, code | operation::kPlainOperand,
                          tagMSOOBJVECT::Plain(value, kTypeDouble), 0);
}

// Vector and scalar object, vector and plain value, element and element give what vector and vector
// give, whose rules the kernels keep.
TEST(Operate, EveryFormAgrees) {
  const Doubles special = {kM,   kNan, 0,    -0.0,  1,     -1,     2,       0.5,    -2.5,
                           1e10, 3e8,  kInf, -kInf, 1e300, -1e300, 1.7e308, 1e-300, 5e-324};
  for (const bool debug : {false, true}) {
    const DebugModeScope mode(debug ? 1 : 0);
    for (const unsigned code : kCodes) {
      for (const double y : special) {
        SCOPED_TRACE(std::to_string(code) + " with " + std::to_string(y));
        const ObjectRef with_vector = VectorOf<double>(special);
        const ObjectRef operands = VectorOf<double>(Doubles(special.size(), y));
        ASSERT_EQ(Operate(with_vector, code, operands), 0);
        const Doubles expected = ValuesOf<double>(with_vector);
        EXPECT_EQ(expected[0], code == operation::kAssign && y == y ? y : kM);
        const ObjectRef with_scalar = VectorOf<double>(special);
        ASSERT_EQ(Operate(with_scalar, code, ScalarOf(y)), 0);
        ExpectValues(with_scalar, expected);
        const ObjectRef with_plain = VectorOf<double>(special);
        ASSERT_EQ(OperatePlain(with_plain, code, y), 0);
        ExpectValues(with_plain, expected);
        const ObjectRef by_element = VectorOf<double>(special);
        for (int i = 0; i < static_cast<int>(special.size()); ++i) {
          const MSOINDICES at = MSOINDICES::Element(i);
          ASSERT_EQ(Operate(by_element, code, operands, 0, at, at), 0);
        }
        ExpectValues(by_element, expected);
      }
    }
  }
}

// Vectors of any two types combine as their elements do one by one, which read and convert on
// another path. The values are exact in every type.
TEST(Operate, EveryPairOfTypes) {
  const Doubles left = {7, 2, 100, 3, 1}, right = {2, 3, 1, 5, 0};
  ForEachElementType([&]<class T>() {
    ForEachElementType([&]<class U>() {
      for (const unsigned code : kCodes) {
        SCOPED_TRACE(std::string(kElement<T>.name) + " and " + kElement<U>.name + " " +
                     std::to_string(code));
        const ObjectRef x = ConvertedVector<T>(left), y = ConvertedVector<U>(right);
        const int status = Operate(x, code, y);
        if (PointElement<T> && code > operation::kSubtract) {
          EXPECT_EQ(status, status::kFailed);
          EXPECT_EQ(AsDoubles(x), left);
          continue;
        }
        ASSERT_EQ(status, 0);
        const ObjectRef by_element = ConvertedVector<T>(left);
        for (int i = 0; i < static_cast<int>(left.size()); ++i) {
          const MSOINDICES at = MSOINDICES::Element(i);
          ASSERT_EQ(Operate(by_element, code, y, 0, at, at), 0);
        }
        EXPECT_TRUE(ValuesOf<T>(x) == ValuesOf<T>(by_element));
        if (code == operation::kSubtract && std::is_signed_v<T>) {
          EXPECT_EQ(AsDoubles(x), (Doubles{5, -1, 99, -2, 1}));
        }
      }
    });
  });
}

TEST(Operate, Points) {
  const ObjectRef points = VectorOf<PointDouble>({PointDouble{{1, 2}}, PointDouble{{kM, 5}}});
  EXPECT_EQ(Operate(points, operation::kAdd,
                    VectorOf<PointDouble>({PointDouble{{10, 20}}, PointDouble{{1, 1}}})),
            0);
  EXPECT_EQ(ValuesOf<PointDouble>(points)[0], (PointDouble{{11, 22}}));
  EXPECT_EQ(ValuesOf<PointDouble>(points)[1], (PointDouble{{kM, 6}}));
  EXPECT_EQ(OperatePlain(points, operation::kMultiply, 2.0), status::kFailed);
}

TEST(Operate, OtherCodesAndPlaces) {
  const ObjectRef v = VectorOf<double>({1, 2});
  for (const unsigned code : {0u, 6u, 20u, 22u, 64u}) {
    EXPECT_EQ(Operate(v, code, v), status::kFailed) << code;
    EXPECT_EQ(OperatePlain(v, code, 1.0), status::kFailed) << code;
  }
  EXPECT_EQ(OperatePlain(v, 1, 5.0, MSOINDICES::Element(-1)), status::kNegativeElement);
  EXPECT_EQ(OperatePlain(v, 1, 5.0, MSOINDICES::Element(2)), status::kOutOfRange);
  EXPECT_EQ(OperatePlain(v, 1, 5.0, MSOINDICES::Object(1)), status::kOutOfRange);
  EXPECT_EQ(OperatePlain(v, 1, 5.0, MSOINDICES::Object(-1)), status::kUnresolved);
  EXPECT_NE(Operate(v, 2, v, 0, {}, MSOINDICES::Element(9)), 0);
  EXPECT_NE(Operate(v, 2, v, 0, {}, MSOINDICES::Object(1)), 0);
  ExpectValues(v, {1, 2});
  // The code is the low byte.
  EXPECT_EQ(OperatePlain(v, 0x500 | operation::kAdd, 1.0), 0);
  ExpectValues(v, {2, 3});
}

TEST(Operate, SizesAreTakenOnceAndThenFixed) {
  const ObjectRef v = VectorOf<double>({1, 2, 3, 4});
  EXPECT_EQ(Operate(v, operation::kAdd, VectorOf<double>({10, 20})), 0);
  ExpectValues(v, {11, 22});
  EXPECT_EQ(Operate(v, operation::kAdd, VectorOf<double>({1, 2, 3})), status::kFailed);
  EXPECT_EQ(Operate(v, operation::kAdd, VectorOf<double>({})), status::kFailed);
  ExpectValues(v, {11, 22});
  EXPECT_EQ(Operate(v, operation::kAssign, VectorOf<int>({1, 2, 3})), 0);
  ExpectValues(v, {1, 2, 3});

  const ObjectRef grown = Make(kTypeDouble | kFlagVector);
  EXPECT_EQ(Operate(grown, operation::kAdd, VectorOf<double>({5, kM})), 0);
  ExpectValues(grown, {5, kM});
  // A value for all elements fixes the size as well.
  const ObjectRef filled = VectorOf<double>({1, 2, 3, 4});
  EXPECT_EQ(OperatePlain(filled, operation::kAdd, 1.0), 0);
  EXPECT_EQ(Operate(filled, operation::kAdd, VectorOf<double>({1, 2, 3})), status::kFailed);
  ExpectValues(filled, {2, 3, 4, 5});
  const ObjectRef empty = Make(kTypeDouble | kFlagVector);
  EXPECT_EQ(OperatePlain(empty, operation::kAssign, 6.0), 0);
  ExpectValues(empty, {6});
  // A copy is as fixed as its original.
  const ObjectRef copy(filled->CreateCopy());
  EXPECT_EQ(Operate(copy, operation::kAdd, VectorOf<double>({1})), status::kFailed);
}

TEST(Operate, BroadcastAndAppend) {
  const ObjectRef v = VectorOf<double>({1, 2, 3});
  EXPECT_EQ(Operate(v, operation::kAdd, VectorOf<int>({10}), operation::kBroadcast), 0);
  ExpectValues(v, {11, 12, 13});
  EXPECT_EQ(Operate(v, operation::kAdd, VectorOf<int>({1, 2}), operation::kBroadcast),
            status::kFailed);
  EXPECT_EQ(Operate(v, operation::kAdd, VectorOf<int>({1, 2, 3}), operation::kBroadcast), 0);
  ExpectValues(v, {12, 14, 16});
  EXPECT_EQ(Operate(v, operation::kAssign, VectorOf<float>({7, 8}), operation::kAppend), 0);
  ExpectValues(v, {12, 14, 16, 7, 8});
  // One value fits a fixed size too.
  EXPECT_EQ(Operate(v, operation::kSubtract, VectorOf<double>({7}), operation::kBroadcast), 0);
  ExpectValues(v, {5, 7, 9, 0, 1});
  EXPECT_EQ(Operate(v, operation::kSubtract, VectorOf<double>({7})), status::kFailed);
  const ObjectRef short_one = VectorOf<double>({3});
  EXPECT_EQ(Operate(short_one, operation::kAdd, short_one, operation::kBroadcast), 0);
  ExpectValues(short_one, {6});
}

TEST(Operate, OnItself) {
  const ObjectRef v = VectorOf<double>({1, 2, kM});
  EXPECT_EQ(Operate(v, operation::kAdd, v), 0);
  ExpectValues(v, {2, 4, kM});
  EXPECT_EQ(Operate(v, operation::kDivide, v, 0, {}, MSOINDICES::Element(1)), 0);
  ExpectValues(v, {0.5, 1, kM});
  EXPECT_EQ(Operate(v, operation::kAssign, v), 0);
  ExpectValues(v, {0.5, 1, kM});
  EXPECT_EQ(Call(v, "Append", v).Int(), 1);
  ExpectValues(v, {0.5, 1, kM, 0.5, 1, kM});
  const ObjectRef rows = Make(kTypeDouble | kFlagVector, 2);
  const MSOINDICES first = MSOINDICES::Object(0), second = MSOINDICES::Object(1);
  EXPECT_EQ(Operate(rows, operation::kAssign, v, 0, second), 0);
  EXPECT_EQ(Operate(rows, operation::kAssign, rows, 0, first, second), 0);
  EXPECT_EQ(Operate(rows, operation::kSubtract, rows, 0, first, second), 0);
  ExpectValues(rows, {0, 0, kM, 0, 0, kM}, 0);
  ExpectValues(rows, {0.5, 1, kM, 0.5, 1, kM}, 1);
}

TEST(Operate, AssignedNansBecomeMissing) {
  const Doubles before = {kNan, 1, kM, kInf}, after = {kM, 1, kM, kInf};
  const ObjectRef v = Make(kTypeDouble | kFlagVector);
  EXPECT_EQ(Operate(v, operation::kAssign, VectorOf<double>(before)), 0);
  ExpectValues(v, after);
  const ObjectRef floats = Make(kTypeFloat | kFlagVector);
  EXPECT_EQ(Operate(floats, operation::kAssign, VectorOf<double>(before)), 0);
  EXPECT_EQ(AsDoubles(floats), (Doubles{-0.0, 1, -0.0, kInf}));
  EXPECT_EQ(Operate(v, operation::kAssign, VectorOf<float>({std::nanf(""), 2})), 0);
  ExpectValues(v, {kM, 2});
  const ObjectRef complex = Make(kTypeComplex | kFlagVector);
  EXPECT_EQ(Operate(complex, operation::kAssign, VectorOf<OneTCcomplex>({{kNan, 1}, {2, kNan}})),
            0);
  EXPECT_EQ(ValuesOf<OneTCcomplex>(complex)[0], OneTCcomplex(kM, 1));
  EXPECT_EQ(ValuesOf<OneTCcomplex>(complex)[1], OneTCcomplex(2, kM));
  // One missing part, of the element or of the operand, makes both parts of a result missing.
  EXPECT_EQ(Operate(complex, operation::kAdd, VectorOf<OneTCcomplex>({{1, 1}, {1, 1}})), 0);
  EXPECT_EQ(ValuesOf<OneTCcomplex>(complex)[0], OneTCcomplex(kM, kM));
  EXPECT_EQ(ValuesOf<OneTCcomplex>(complex)[1], OneTCcomplex(kM, kM));
  const ObjectRef whole = VectorOf<OneTCcomplex>({{1, 1}, {1, 1}});
  EXPECT_EQ(Operate(whole, operation::kAdd, VectorOf<OneTCcomplex>({{kM, 1}, {2, kM}})), 0);
  EXPECT_EQ(ValuesOf<OneTCcomplex>(whole)[0], OneTCcomplex(kM, kM));
  EXPECT_EQ(ValuesOf<OneTCcomplex>(whole)[1], OneTCcomplex(kM, kM));
  const ObjectRef appended = VectorOf<double>({1});
  EXPECT_EQ(Call(appended, "Append", VectorOf<double>(before)).Int(), 1);
  ExpectValues(appended, {1, kM, 1, kM, kInf});
  // A copy keeps what it copies.
  EXPECT_EQ(Call(v, "CopyData", VectorOf<double>(before)).Int(), 0);
  ExpectValues(v, before);
}

// Past the threshold of the worker threads, with a length that no thread count divides.
TEST(Operate, LongRunsInParallel) {
  constexpr int kSize = 30011;
  std::vector<int> whole;
  for (int i = 0; i < kSize; ++i) whole.push_back(i);
  const ObjectRef ints = VectorOf<int>(whole);
  for (const int parallel : {0, 1}) {
    VELAObj::SetParallelEnabled(parallel);
    const ObjectRef v = Make(kTypeDouble | kFlagVector);
    EXPECT_EQ(Call(v, "Append", ints).Int(), 1);
    EXPECT_EQ(Operate(v, operation::kAdd, v), 0);
    EXPECT_EQ(Operate(v, operation::kMultiply, ints), 0);
    const Doubles values = ValuesOf<double>(v);
    ASSERT_EQ(values.size(), std::size_t{kSize});
    int wrong = 0;
    for (int i = 0; i < kSize; ++i) {
      wrong += values[static_cast<std::size_t>(i)] != 2.0 * i * i ? 1 : 0;
    }
    EXPECT_EQ(wrong, 0);
  }
  VELAObj::SetParallelEnabled(0);
}

// Elements below the lower bound are missing, and no part of the data.
TEST(Operate, LowerBounds) {
  const auto with_lower = [](int size, int lower) {
    const ObjectRef v = VectorOf<double>(Doubles(static_cast<std::size_t>(size), -4));
    EXPECT_EQ(static_cast<TCAllVectorNonTemplBase*>(v.Get())->ResizeWithLowerBound(0, size, lower),
              0);
    return v;
  };
  const ObjectRef v = with_lower(5, 3);
  ExpectValues(v, {kM, kM, kM, -4, -4});
  EXPECT_EQ(Call(v, "GetLowerBound").Int(), 3);
  EXPECT_EQ(Call(v, "GetUpperBound").Int(), 4);
  EXPECT_EQ(Call(v, "GetSize").Int(), 5);
  EXPECT_EQ(OperatePlain(v, operation::kAssign, 7.0), 0);
  ExpectValues(v, {kM, kM, kM, 7, 7});
  EXPECT_EQ(Operate(v, operation::kAdd, VectorOf<double>({1, 2, 3, 4, 5})), status::kFailed);
  EXPECT_EQ(Operate(v, operation::kAdd, with_lower(5, 3)), 0);
  ExpectValues(v, {kM, kM, kM, 3, 3});
  EXPECT_EQ(Operate(v, operation::kAdd, v), 0);
  ExpectValues(v, {kM, kM, kM, 6, 6});
  const ObjectRef taker = VectorOf<double>({1, 2});
  EXPECT_EQ(Operate(taker, operation::kAssign, v), 0);
  EXPECT_EQ(Call(taker, "GetLowerBound").Int(), 3);
  ExpectValues(taker, {kM, kM, kM, 6, 6});
  EXPECT_EQ(Call(v, "TrimLeft", 1).Int(), 0);
  EXPECT_EQ(Call(with_lower(2, 2), "TrimLeft", 1).Int(), -1) << "no element from the bound on";
  EXPECT_EQ(Call(with_lower(2, 2), "TrimRight", 1).Int(), -1);
  const ObjectRef ints = VectorOf<int>({-1, -2, -3});
  auto& base = *static_cast<TCAllVectorNonTemplBase*>(ints.Get());
  EXPECT_EQ(base.ResizeWithLowerBound(0, 3, -1), status::kOutOfRange);
  EXPECT_EQ(base.ResizeWithLowerBound(0, -1, 1), status::kCannotResize);
  EXPECT_EQ(base.ResizeWithLowerBound(0, 3, 2), 0);
  EXPECT_EQ(Call(ints, "Abs").Int(), 0);
  EXPECT_EQ(ValuesOf<int>(ints), (std::vector<int>{0, 0, 3}));
  EXPECT_EQ(base.ResizeWithLowerBound(0, 2, 5), 0) << "a bound beyond the end";
  EXPECT_EQ(OperatePlain(ints, operation::kAdd, 1.0), 0);
  EXPECT_EQ(ValuesOf<int>(ints), (std::vector<int>{0, 0}));
}

}  // namespace
}  // namespace vela::testing
