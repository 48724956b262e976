#include <gtest/gtest.h>
#include <limits>
#include <string>

#include "host/call_frame.h"
#include "test_objects.h"

namespace {

using vela::host::CallFrame;
using SlotKind = CTCExternalCallBuilder::SlotKind;

TEST(ExternalCall, MarshalsNumbersAndTexts) {
  NumberObject real(2.5, kTypeFloat);
  NumberObject integer(-4, kTypeShort);
  NumberObject natural(5e18, kTypeUnsignedInt64);
  TextObject text("object text");
  CallFrame frame;
  frame.AddText("%d and the rest");
  frame.AddChar('c');
  frame.AddInt(-1);
  frame.AddInt64(std::int64_t{1} << 40);
  frame.AddUnsigned64(~std::uint64_t{0});
  frame.AddDouble(0.5);
  frame.AddNull();
  frame.AddObject(&real);
  frame.AddObject(&integer);
  frame.AddObject(&natural);
  frame.AddObject(&text);

  CTCExternalCallBuilder builder;
  ASSERT_EQ(frame.BeginGetValuesForExternalCall(builder, 1, 10, 0), 0);
  ASSERT_EQ(builder.GetCount(), 10u);
  const auto* slots = builder.GetArgValuesBuffer();

  const auto expect_integer = [&](int i, SlotKind kind, int width, std::int64_t value) {
    EXPECT_EQ(slots[i].kind, kind) << i;
    EXPECT_EQ(slots[i].width, width) << i;
    EXPECT_EQ(slots[i].integer, value) << i;
  };
  expect_integer(0, SlotKind::kInteger, 1, 'c');
  expect_integer(1, SlotKind::kInteger, 4, -1);
  expect_integer(2, SlotKind::kInteger, 8, std::int64_t{1} << 40);
  expect_integer(3, SlotKind::kUnsigned, 8, -1);
  EXPECT_EQ(slots[4].kind, SlotKind::kDouble);
  EXPECT_EQ(slots[4].real, 0.5);
  EXPECT_EQ(slots[5].kind, SlotKind::kPointer);
  EXPECT_EQ(slots[5].pointer, nullptr);
  EXPECT_EQ(slots[6].kind, SlotKind::kDouble);
  EXPECT_EQ(slots[6].width, 4);
  EXPECT_EQ(slots[6].real, 2.5);
  expect_integer(7, SlotKind::kInteger, 2, -4);
  expect_integer(8, SlotKind::kUnsigned, 8, 5000000000000000000);
  EXPECT_EQ(slots[9].kind, SlotKind::kText);
  EXPECT_STREQ(slots[9].text, "object text");

  EXPECT_EQ(frame.EndGetValuesForExternalCall(builder, 1, 10, 0), 0);
  EXPECT_EQ(text.ended, 1);
}

TEST(ExternalCall, KeepsTextsAliveWhileItGrows) {
  CTCExternalCallBuilder builder;
  for (int i = 0; i < 100; ++i) builder.AddNext(CStringUTF8(std::to_string(i).c_str()));
  for (int i = 0; i < 100; ++i) {
    EXPECT_STREQ(builder.GetArgValuesBuffer()[i].text, std::to_string(i).c_str());
  }
}

TEST(ExternalCall, RefusesWhatHasNoNativeFormAndReleasesTheRest) {
  NumberObject vector({1, 2}, kTypeDouble | kFlagVector);
  PointObject point({1, 2, 3});
  CScriptVelaObject* const containers[] = {&vector, &point};
  for (CScriptVelaObject* object : containers) {
    TextObject text("locked");
    CallFrame frame;
    frame.AddObject(&text);
    frame.AddObject(object);
    CTCExternalCallBuilder builder;
    EXPECT_EQ(frame.BeginGetValuesForExternalCall(builder, 0, 2, 0), status::kBadArguments);
    EXPECT_EQ(text.ended, 1);
  }
}

TEST(ExternalCall, RefusesArgumentsThatAreNotThere) {
  constexpr unsigned kMost = std::numeric_limits<unsigned>::max();
  CallFrame frame;
  frame.AddInt(1);
  frame.AddInt(2);
  CTCExternalCallBuilder builder;
  EXPECT_EQ(frame.BeginGetValuesForExternalCall(builder, 1, 2, 0), status::kBadArguments);
  EXPECT_EQ(frame.BeginGetValuesForExternalCall(builder, 3, 0, 0), status::kBadArguments);
  EXPECT_EQ(frame.BeginGetValuesForExternalCall(builder, 1, kMost, 0), status::kBadArguments);
  EXPECT_EQ(frame.BeginGetValuesForExternalCall(builder, 2, 0, 0), 0);
  EXPECT_EQ(builder.GetCount(), 0u);
}

}  // namespace
