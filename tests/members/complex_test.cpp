#include <numbers>

#include "member_fixture.h"

namespace vela::testing {
namespace {

TEST(Complex, MembersReadTheAddressedElement) {
  const ObjectRef z = Make(kTypeComplex, 3);
  const MSOINDICES second = MSOINDICES::Object(1);
  EXPECT_EQ(CallAt(z, second, "m_re", 3.0).status, 0);
  EXPECT_EQ(CallAt(z, second, "m_im", -4.0).status, 0);
  EXPECT_EQ(CallAt(z, second, "m_im").real, -4);
  EXPECT_EQ(CallAt(z, second, "GetAmplitude").real, 5);
  const Result conjugate = CallAt(z, second, "Conjugate");
  EXPECT_EQ(conjugate.complex.m_re, 3);
  EXPECT_EQ(conjugate.complex.m_im, 4);
  EXPECT_EQ(CallAt(z, second, "m_im").real, -4) << "Conjugate leaves the object";
  EXPECT_EQ(Call(z, "m_re").real, 0) << "element 0 is another";
  EXPECT_EQ(CallAt(z, MSOINDICES::Object(3), "GetPhase").status, status::kUnresolved);
}

TEST(Complex, PhaseAndMissingParts) {
  const struct {
    OneTCcomplex value;
    double phase;
  } cases[] = {{{-1, 0}, std::numbers::pi},
               {{-1, -0.0}, std::numbers::pi},
               {{kMissingValue, 1}, kMissingValue},
               {{1, kMissingValue}, kMissingValue},
               {{0, 2}, std::numbers::pi / 2}};
  for (const auto& c : cases) {
    EXPECT_EQ(Call(ScalarOf(c.value), "GetPhase").real, c.phase);
    const bool is_missing = c.phase == kMissingValue;
    EXPECT_EQ(Call(ScalarOf(c.value), "GetAmplitude").real == kMissingValue, is_missing);
  }
}

TEST(Complex, WrongArgumentCounts) {
  const ObjectRef z = Make(kTypeComplex);
  EXPECT_EQ(Call(z, "Conjugate", 1).status, status::kFailed);
  EXPECT_EQ(Call(z, "GetPhase", 1).status, status::kBadArguments);
  EXPECT_EQ(Call(z, "GetAmplitude", 1).status, status::kBadArguments);

  CTypeBase* owner = nullptr;
  const CClassMember* row = z->FindMember("m_re", 0, &owner, 0);
  ASSERT_NE(row, nullptr);
  CallFrame frame;
  frame.AddInt(1);
  EXPECT_EQ(owner->DoPropertyGet(row->GetHandler(), &frame), status::kFailed);
  EXPECT_EQ(owner->DoPropertySet(row->GetSetter(), nullptr), status::kOk);
  EXPECT_EQ(owner->DoPropertyGet(row->GetHandler(), nullptr), status::kFailed);
}

TEST(Complex, OperatorsPropagateMissing) {
  const ObjectRef x = ScalarOf(OneTCcomplex(1, 2));
  const auto apply = [&](unsigned code, OneTCcomplex y) {
    return x->Operate2(nullptr, code, tagMSOOBJVECT::Plain(y, kTypeComplex), 0);
  };
  EXPECT_EQ(apply(operation::kMultiply, {0, 1}), 0);
  EXPECT_EQ(TextOf(x), "-2.000000+1.000000i");
  EXPECT_EQ(apply(operation::kPower, {2, 0}), 0);
  EXPECT_EQ(TextOf(x), "3.000000-4.000000i");
  EXPECT_EQ(apply(operation::kDivide, {0, 0}), 0);
  EXPECT_EQ(TextOf(x), "NANUM");
}

TEST(Point, MembersAndConversions) {
  const ObjectRef p = Make(kTypePointInt);
  EXPECT_EQ(Call(p, "x", 3.9).status, 0);
  EXPECT_EQ(Call(p, "y", -7).status, 0);
  EXPECT_EQ(Call(p, "x").integer, 3);
  EXPECT_EQ(Call(p, "z").status, status::kUnsupported);
  EXPECT_EQ(TextOf(p), "(3, -7)");
  EXPECT_EQ(Call(p, "GetSize").status, kNoSuchMember);
  const ObjectRef q = Make(kTypePoint3D);
  EXPECT_EQ(Call(q, "z", 1.5).real, 1.5);
  EXPECT_EQ(TextOf(q), "(0.000000, 0.000000, 1.500000)");
}

}  // namespace
}  // namespace vela::testing
