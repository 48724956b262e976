#include <cstdlib>

#include "frame/interface/operations.h"
#include "member_fixture.h"
#include "platform/automation.h"

namespace vela::testing {
namespace {

constexpr int kMost = 0x7FFFFFFF;

ObjectRef VariantOf(const ObjectRef& source) {
  const ObjectRef variant = Make(kTypeVariant);
  const tagMSOOBJVECT operand(source.Get(), source->GetTypeID());
  EXPECT_EQ(variant->Operate2(nullptr, operation::kAssign, operand, 0), status::kOk);
  return variant;
}

template <class T>
ObjectRef VariantOf(T value) {
  return VariantOf(ScalarOf<T>(value));
}

ObjectRef ArrayOfVariants(int count1, int count2 = 0) {
  const ObjectRef array = Make(kTypeVariant);
  EXPECT_EQ(Call(array, "CreateAsArray", VT_VARIANT, count1, count2, 0, 0).Int(), 1);
  return array;
}

std::string TextIn(const ObjectRef& object) {
  CStringUTF8 text;
  EXPECT_EQ(object->GetString(nullptr, text), status::kOk);
  return std::string(text.View());
}

int Operate(const ObjectRef& x, unsigned code, const ObjectRef& y) {
  return x->Operate2(nullptr, code, tagMSOOBJVECT(y.Get(), y->GetTypeID()), 0);
}

TEST(Variant, TakesTheTypeOfWhatItIsGiven) {
  const struct {
    ObjectRef source;
    int type;
    const char* text;
  } cases[] = {{ScalarOf<char>(-3), VT_I1, "-3"},
               {ScalarOf<unsigned short>(65535), VT_UI2, "65535"},
               {ScalarOf<int>(7), VT_I4, "7"},
               {ScalarOf<std::uint64_t>(~0ull), VT_UI8, "18446744073709551615"},
               {ScalarOf<float>(0.1f), VT_R4, "0.1"},
               {ScalarOf<double>(kMissingValue), VT_R8, "NANUM"},
               {ScalarOf(OneTCcomplex(1, -2)), VT_ARRAY | VT_R8, "{1, -2}"},
               {VectorOf<int>({1, 2}), VT_ARRAY | VT_I4, "{1, 2}"},
               {VectorOf<double>({}), VT_ARRAY | VT_R8, "{}"},
               {VectorOf<OneTCcomplex>({{1, 2}}), VT_ARRAY | VT_VARIANT, "{{1, 2}}"}};
  for (const auto& c : cases) {
    const ObjectRef variant = VariantOf(c.source);
    EXPECT_EQ(Call(variant, "vt").Int(), c.type) << c.text;
    EXPECT_EQ(TextIn(variant), c.text);
    // And back.
    const ObjectRef back = Make(c.source->GetTypeID());
    EXPECT_EQ(Operate(back, operation::kAssign, variant), status::kOk) << c.text;
    EXPECT_EQ(TextIn(VariantOf(back)), c.text);
  }
}

TEST(Variant, ArraysOfVariants) {
  const ObjectRef array = ArrayOfVariants(2, 3);
  const ObjectRef out = Make(kTypeVariant);
  for (int i = 0; i < 6; ++i) {
    EXPECT_EQ(Call(array, "SetOneVariantInArray", i, i % 2, i / 2).Int(), 1);
  }
  EXPECT_EQ(TextIn(array), "{{0, 2, 4}, {1, 3, 5}}");
  EXPECT_EQ(Call(array, "SetOneVariantInArray", "x", 1, 2).Int(), 1);
  EXPECT_EQ(Call(array, "GetSubVariant", 5, out).Int(), 1);
  EXPECT_EQ(TextIn(out), "x");
  const struct {
    int index1, index2, result;
  } cases[] = {{2, 0, 0}, {0, 3, 0}, {kMost, kMost, 0}, {1, 1, 1}};
  for (const auto& c : cases) {
    EXPECT_EQ(Call(array, "SetOneVariantInArray", out, c.index1, c.index2).Int(), c.result);
  }
  EXPECT_EQ(Call(array, "SetOneVariantInArray", out, -1, 0).status, status::kBadValue);
  EXPECT_EQ(Call(array, "SetOneVariantInArray", Null(), 0, 0).status, status::kBadValue);
  EXPECT_EQ(Call(array, "GetSubVariant", 6, out).Int(), 0);
  EXPECT_EQ(Call(array, "GetSubVariant", -1, out).status, status::kBadValue);
  // An array may go into itself, and one of its elements may take its place.
  EXPECT_EQ(Call(array, "SetOneVariantInArray", array, 0, 0).Int(), 1);
  EXPECT_EQ(Call(array, "GetSubVariant", 0, array).Int(), 1);
  EXPECT_EQ(TextIn(array), "{{0, 2, 4}, {1, \"x\", \"x\"}}");
  EXPECT_EQ(Call(ArrayOfVariants(2), "SetOneVariantInArray", 1, 0, 1).Int(), 0);

  const ObjectRef malformed = VariantOf(1);
  malformed->GetVariantAddress(nullptr)->vt = 15;  // no automation type
  EXPECT_EQ(Call(array, "SetOneVariantInArray", malformed, 1, 0).status, status::kAutomationFailed);
  EXPECT_EQ(Call(array, "GetSubVariant", 1, out).Int(), 1);
  EXPECT_EQ(out->GetVariantAddress(nullptr)->vt, VT_ERROR);
  EXPECT_EQ(out->GetVariantAddress(nullptr)->scode, DISP_E_BADVARTYPE);
}

TEST(Variant, NestsNoDeeperThanTheStackAllows) {
  ObjectRef array = ArrayOfVariants(1);
  int depth = 1;
  for (int code = 0; code == 0 && depth < 1000; ++depth) {
    const ObjectRef outer = ArrayOfVariants(1);
    code = Call(outer, "SetOneVariantInArray", array, 0, 0).status;
    array = outer;
  }
  EXPECT_EQ(depth, 101);
}

TEST(Variant, CreatesArraysAndTellsTheirSizes) {
  const struct {
    int type, count1, count2, lower1, lower2, created, size1;
  } cases[] = {{VT_R8, 5, 0, 1, 0, 1, 5},
               {VT_I4, 4, 3, -2, 7, 1, 4},
               {VT_BSTR, 0, 0, 0, 0, 1, 0},
               {VT_R8, 5, 0, -5, 0, 1, 0},  // the upper bound is -1
               {VT_R8, 2, -1, 0, 0, 1, 2},
               {VT_R8, -1, 0, 0, 0, 0, 0},
               {VT_R8, kMost, kMost, 0, 0, 0, 0},
               {VT_UI1, 2, 0, kMost, 0, 0, 0},
               {VT_EMPTY, 1, 0, 0, 0, 0, 0},
               {VT_NULL, 1, 0, 0, 0, 0, 0},
               {-1, 1, 0, 0, 0, 0, 0},
               {VT_ARRAY | VT_I4, 1, 0, 0, 0, 0, 0},
               {0x10003, 1, 0, 0, 0, 0, 0}};
  for (const auto& c : cases) {
    const ObjectRef v = VariantOf(3);
    EXPECT_EQ(Call(v, "CreateAsArray", c.type, c.count1, c.count2, c.lower1, c.lower2).Int(),
              c.created);
    EXPECT_EQ(Call(v, "vt").Int(), c.created ? VT_ARRAY | c.type : VT_EMPTY);
    if (!c.created) {
      EXPECT_EQ(Call(v, "GetSize", 1).status, status::kBadValue);
      continue;
    }
    EXPECT_EQ(Call(v, "GetNumDimensions").Int(), c.count2 > 0 ? 2 : 1);
    EXPECT_EQ(Call(v, "GetSize", 1).Int(), c.size1);
    EXPECT_EQ(Call(v, "GetSize", 0).status, status::kBadValue);
    EXPECT_EQ(Call(v, "GetSize", 3).status, status::kBadValue);
  }
  EXPECT_EQ(Call(VariantOf(1), "CreateAsArray", VT_R8, 1, 0, 0).status, status::kBadArguments);
}

TEST(Variant, AddressesOneOfSeveral) {
  const ObjectRef values = Make(kTypeVariant, 3);
  const MSOINDICES last = MSOINDICES::Object(2), outside = MSOINDICES::Object(3);
  EXPECT_EQ(CallAt(values, last, "SetHWND", -1).status, status::kOk);
  EXPECT_EQ(CallAt(values, last, "vt").Int(), VT_UI8);
  EXPECT_EQ(values->GetVariantAddress(&last)->ullVal, ~0ull);
  EXPECT_EQ(Call(values, "vt").Int(), VT_EMPTY);
  EXPECT_EQ(CallAt(values, outside, "vt").status, status::kUnresolved);
  EXPECT_EQ(Call(values, "vt", 1).status, status::kUnsupported) << "it cannot be set";
}

TEST(Variant, OperatesAndCompares) {
  const ObjectRef x = VariantOf(6), y = VariantOf(4);
  EXPECT_EQ(Operate(x, operation::kSubtract, y), status::kOk);
  EXPECT_EQ(TextIn(x), "2");
  EXPECT_EQ(Operate(x, operation::kMultiply, x), status::kOk) << "aliased";
  EXPECT_EQ(Operate(x, operation::kDivide, VariantOf(8.0)), status::kOk);
  EXPECT_EQ(TextIn(x), "0.5");
  EXPECT_EQ(Operate(x, operation::kPower, y), status::kFailed);
  EXPECT_EQ(Operate(x, operation::kAdd, VariantOf(VectorOf<int>({1}))), status::kAutomationFailed);
  EXPECT_EQ(TextIn(x), "0.5") << "a failure leaves it";
  const auto holds = [](const ObjectRef& left, unsigned op, const ObjectRef& right) {
    unsigned flags = 1;
    const tagMSOOBJVECT operand(right.Get(), right->GetTypeID());
    const int code = left->CompareVals(nullptr, op, operand, &flags);
    EXPECT_EQ(flags & 1, 1u) << "the other flags stay";
    return code != 0 ? code : static_cast<int>((flags & operation::kCompareTrue) != 0);
  };
  EXPECT_EQ(holds(y, operation::kEqual, VariantOf(4)), 1);
  EXPECT_EQ(holds(y, operation::kEqual, VariantOf(4.0)), 0) << "another type";
  EXPECT_EQ(holds(y, operation::kNotEqual, VariantOf(4.0)), 1);
  EXPECT_EQ(holds(y, operation::kLess, VariantOf(4.5)), 1);
  EXPECT_EQ(holds(y, operation::kGreaterOrEqual, VariantOf(4)), 1);
  EXPECT_EQ(holds(y, operation::kGreater, VariantOf(5)), 0);
  EXPECT_EQ(holds(VariantOf(VectorOf<int>({1})), operation::kLess, y), status::kAutomationFailed);
  EXPECT_EQ(holds(y, 70, y), status::kFailed);
}

#if !defined(_WIN32)
// In a process of its own: a lookup that has failed is not tried again.
TEST(VariantDeathTest, WithoutAutomationNothingIsComputed) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto compute = [] {
    host::Library library;  // not configured, which would initialise automation
    if (!library.Load()) std::exit(1);
    const ObjectRef x(library.Create(kTypeVariant)), y(library.Create(kTypeVariant));
    x->SetNumericValue(nullptr, 2.0);
    y->SetNumericValue(nullptr, 3.0);
    const tagMSOOBJVECT operand(y.Get(), kTypeVariant);
    unsigned flags = 0;
    const bool fails =
        x->CompareVals(nullptr, operation::kLess, operand, &flags) == status::kAutomationFailed;
    OleInitialize(nullptr);
    const bool still =
        x->Operate2(nullptr, operation::kAdd, operand, 0) == status::kAutomationFailed;
    const bool assigns = x->Operate2(nullptr, operation::kAssign, operand, 0) == status::kOk;
    std::exit(fails && still && assigns ? 0 : 2);
  };
  EXPECT_EXIT(compute(), ::testing::ExitedWithCode(0), "");
}
#endif

}  // namespace
}  // namespace vela::testing
