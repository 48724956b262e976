#include <cmath>
#include <limits>

#include "member_fixture.h"

namespace vela::testing {
namespace {

TEST(Scalar, RoundDoubleKeepsTheUnsignedAsymmetry) {
  const ObjectRef unsigned_int = Make(kTypeUnsignedInt);
  EXPECT_EQ(static_cast<unsigned>(unsigned_int->RoundDouble(5e9)), 0xFFFFFFFFu);
  EXPECT_EQ(static_cast<unsigned>(unsigned_int->RoundDouble(3e9)), 0x80000000u);
  EXPECT_EQ(unsigned_int->RoundDouble(-2.7), -2);
  EXPECT_EQ(Make(kTypeInt)->RoundDouble(5e9), INT32_MAX);
}

TEST(Scalar, EveryElementTypeStoresEveryOther) {
  ForEachElementType([]<class T>() {
    if constexpr (SimpleElement<T>) {
      const ObjectRef scalar = Make(kElement<T>.type_id);
      SCOPED_TRACE(kElement<T>.name);
      EXPECT_EQ(scalar->SetNumericValue(nullptr, 100), 0);
      EXPECT_EQ(ValueOf<T>(scalar), T{100});
      double real = 0;
      EXPECT_EQ(scalar->GetNumericValue(nullptr, real), 0);
      EXPECT_EQ(real, 100);
      std::uint64_t wide = 0;
      EXPECT_EQ(scalar->GetIntegralValue(nullptr, wide), 0);
      EXPECT_EQ(wide, 100u);
      EXPECT_EQ(scalar->SetNumericValue(nullptr, OneTCcomplex(7, 9)), 0);
      EXPECT_EQ(ValueOf<T>(scalar), T{7});
      EXPECT_EQ(TextOf(scalar), "7");
      if constexpr (IntegerElement<T>) {
        EXPECT_EQ(scalar->SetDouble(1e300), 1);
        EXPECT_EQ(ValueOf<T>(scalar), std::numeric_limits<T>::max());
        EXPECT_EQ(scalar->SetDouble(kMissingValue), 1);
        EXPECT_EQ(ValueOf<T>(scalar), T{0});
      }
    }
  });
}

TEST(Scalar, ArraysAddressElementsAndRefuseOthers) {
  const ObjectRef array = Make(kTypeInt, 10);
  EXPECT_EQ(array->GetArraySize(), 10);
  const MSOINDICES third = MSOINDICES::Object(3);
  ASSERT_EQ(array->SetNumericValue(&third, 5), 0);
  int value = 0;
  ASSERT_EQ(array->GetNumericValue(&third, value), 0);
  EXPECT_EQ(value, 5);
  for (const MSOINDICES& bad :
       {MSOINDICES::Object(10), MSOINDICES::Object(-1), MSOINDICES{5, 0, 0, 0}}) {
    EXPECT_EQ(array->GetNumericValue(&bad, value), status::kUnresolved);
    EXPECT_EQ(array->SetNumericValue(&bad, 1), status::kUnresolved);
  }
  EXPECT_EQ(Make(kTypeInt, 0)->GetArraySize(), 1);
  EXPECT_EQ(array->ResetValue(), 0);
  ASSERT_EQ(array->GetNumericValue(&third, value), 0);
  EXPECT_EQ(value, 0);
}

TEST(Scalar, DebugModeFillsNewStorage) {
  const DebugModeScope debug(1);
  EXPECT_EQ(ValueOf<int>(Make(kTypeInt, 2)), static_cast<int>(0xCCCCCCCC));
  const ObjectRef vector = Make(kTypeShort | kFlagVector);
  ASSERT_EQ(Call(vector, "SetSize", 2).Int(), 1);
  EXPECT_EQ(ValuesOf<short>(vector), std::vector<short>(2, static_cast<short>(0xCCCC)));
}

TEST(Scalar, ExternalDataIsReadAndWrittenInPlace) {
  const ObjectRef scalar = Make(kTypeDouble, 4);
  double elsewhere = 2.5;
  ASSERT_EQ(scalar->SetExternalData(&elsewhere), 0);
  EXPECT_EQ(ValueOf<double>(scalar), 2.5);
  EXPECT_EQ(scalar->GetArraySize(), 1);
  ASSERT_EQ(scalar->SetDouble(4), 1);
  EXPECT_EQ(elsewhere, 4);
  ASSERT_EQ(scalar->SetExternalData(nullptr), 0);
  EXPECT_EQ(scalar->GetArraySize(), 4);
}

TEST(BitField, WritesBackSaturatingAndLeavesOtherBits) {
  const ObjectRef field = Make(kTypeUnsignedInt | kFlagBitField, 3);
  EXPECT_EQ(field->SetNumericValue(nullptr, 1), status::kUnresolved) << "no word yet";
  std::uint32_t word = 0xFFFF0000;
  ASSERT_EQ(field->SetMemberMemory(&word, 4), 0);
  const struct {
    int value;
    unsigned stored;
  } cases[] = {{5, 5}, {9, 7}, {0, 0}, {8, 7}};
  for (const auto& c : cases) {
    EXPECT_EQ(field->SetComplex(OneTCcomplex(c.value)), 1);
    EXPECT_EQ(word, 0xFFFF0000u | (c.stored << 4)) << c.value;
    EXPECT_EQ(ValueOf<unsigned>(field), c.stored);
  }
  std::uint32_t whole = 0;
  const ObjectRef wide = Make(kTypeInt | kFlagBitField, 32);
  ASSERT_EQ(wide->SetMemberMemory(&whole, 0), 0);
  EXPECT_EQ(wide->SetNumericValue(nullptr, 77), 0);
  EXPECT_EQ(whole, 77u);
  const ObjectRef narrow = Make(kTypeInt | kFlagBitField, 3);
  ASSERT_EQ(narrow->SetMemberMemory(&whole, 0), 0);
  EXPECT_EQ(narrow->SetNumericValue(nullptr, -1), 0);
  EXPECT_EQ(ValueOf<int>(narrow), 7) << "a negative value has bits outside the mask";
  EXPECT_EQ(Make(kTypeInt | kFlagBitField, 0)->ResetValue(), status::kUnresolved);
}

TEST(BitField, ANegativeValueOfAFullWidthFieldKeepsItsBits) {
  std::uint32_t word = 0;
  const ObjectRef whole = Make(kTypeInt | kFlagBitField, 32);
  ASSERT_EQ(whole->SetMemberMemory(&word, 0), 0);
  EXPECT_EQ(whole->SetNumericValue(nullptr, -5), 0);
  EXPECT_EQ(ValueOf<int>(whole), -5);
  EXPECT_EQ(word, 0xFFFFFFFBu);
  const ObjectRef half = Make(kTypeShort | kFlagBitField, 16);
  ASSERT_EQ(half->SetMemberMemory(&word, 8), 0);
  EXPECT_EQ(half->SetNumericValue(nullptr, -2), 0);
  EXPECT_EQ(ValueOf<short>(half), -2);
  EXPECT_EQ(word, 0xFFFFFEFBu);
}

TEST(BitField, ACopyLeavesTheStructureAlone) {
  const ObjectRef field = Make(kTypeUnsignedInt | kFlagBitField, 3);
  std::uint32_t word = 0xF0;
  ASSERT_EQ(field->SetMemberMemory(&word, 0), 0);
  ASSERT_EQ(field->SetNumericValue(nullptr, 2), 0);
  const ObjectRef copy(field->CreateCopy());
  EXPECT_EQ(copy->Operate2(nullptr, operation::kAdd | operation::kPlainOperand,
                           tagMSOOBJVECT::Plain(OneTCcomplex(3), kTypeInt), 0),
            0);
  EXPECT_EQ(ValueOf<unsigned>(copy), 5u);
  EXPECT_EQ(copy->SetNumericValue(nullptr, 9), 0);
  EXPECT_EQ(ValueOf<unsigned>(copy), 7u) << "a copy is as narrow as the original";
  EXPECT_EQ(ValueOf<unsigned>(field), 2u);
  EXPECT_EQ(word, 0xF2u);
}

TEST(Scalar, OperatorsFollowTheElementRules) {
  const ObjectRef x = ScalarOf(1.0);
  const auto operate = [&](double left, unsigned code, double right) {
    x->SetDouble(left);
    EXPECT_EQ(x->Operate2(nullptr, code | operation::kPlainOperand,
                          tagMSOOBJVECT::Plain(OneTCcomplex(right), kTypeDouble), 0),
              0);
    return ValueOf<double>(x);
  };
  EXPECT_EQ(operate(1, operation::kDivide, 0), kMissingValue);
  EXPECT_EQ(operate(kMissingValue, operation::kAdd, 1), kMissingValue);
  EXPECT_EQ(operate(std::nan(""), operation::kAdd, 1), kMissingValue);
  EXPECT_EQ(operate(2, operation::kPower, 10), 1024);
  EXPECT_EQ(operate(1e300, operation::kMultiply, 1e10), std::numeric_limits<double>::infinity());
  {
    const DebugModeScope debug(1);
    EXPECT_EQ(operate(1e300, operation::kMultiply, 1e10), kMissingValue);
  }
  EXPECT_EQ(x->Operate2(nullptr, 6, tagMSOOBJVECT::Plain(1.0, kTypeDouble), 0), status::kFailed);
  // A float cannot be missing, but its operand can: the result is what storing a missing value
  // gives.
  for (const ObjectRef& missing : {ScalarOf(kMissingValue), ObjectRef()}) {
    const ObjectRef real = ScalarOf(2.0f);
    const tagMSOOBJVECT operand = missing ? tagMSOOBJVECT(missing.Get(), missing->GetTypeID())
                                          : tagMSOOBJVECT::Plain(kMissingValue, kTypeDouble);
    EXPECT_EQ(real->Operate2(nullptr, operation::kAdd, operand, 0), 0);
    EXPECT_EQ(ValueOf<float>(real), 0);
    EXPECT_TRUE(std::signbit(ValueOf<float>(real)));
  }
}

// 2^53 + 1 is the first integer that a double cannot hold.
TEST(Scalar, SixtyFourBitsPassExactly) {
  constexpr std::int64_t kOdd = 9007199254740993;
  constexpr std::uint64_t kHigh = 0xFFFFFFFFFFFFFFFE;
  const ObjectRef x = ScalarOf(std::int64_t{1});
  const auto operate = [&](unsigned code, const tagMSOOBJVECT& operand) {
    EXPECT_EQ(x->Operate2(nullptr, code | operation::kPlainOperand, operand, 0), 0);
    return ValueOf<std::int64_t>(x);
  };
  EXPECT_EQ(operate(operation::kAdd, tagMSOOBJVECT::Plain(kOdd)), kOdd + 1);
  EXPECT_EQ(operate(operation::kAssign, tagMSOOBJVECT::Plain(kOdd)), kOdd);
  EXPECT_EQ(operate(operation::kDivide, tagMSOOBJVECT::Plain(kOdd)), 1);
  EXPECT_EQ(operate(operation::kAssign, tagMSOOBJVECT::Plain(kHigh)), INT64_MAX);
  const ObjectRef y = ScalarOf(std::uint64_t{0});
  EXPECT_EQ(y->Operate2(nullptr, operation::kAssign, tagMSOOBJVECT::Plain(kHigh), 0), 0);
  EXPECT_EQ(ValueOf<std::uint64_t>(y), kHigh);
  EXPECT_EQ(TextOf(y), "18446744073709551614");
  EXPECT_EQ(y->SetString(nullptr, " 18446744073709551615\n"), 0);
  EXPECT_EQ(ValueOf<std::uint64_t>(y), UINT64_MAX);
  EXPECT_EQ(x->SetString(nullptr, "-9007199254740993"), 0);
  EXPECT_EQ(ValueOf<std::int64_t>(x), -kOdd);
  EXPECT_EQ(x->SetString(nullptr, "1e300"), 0);
  EXPECT_EQ(ValueOf<std::int64_t>(x), INT64_MAX);
}

}  // namespace
}  // namespace vela::testing
