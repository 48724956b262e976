#include "host/call_frame.h"

#include <cmath>
#include <cstring>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <optional>

#include "frame/interface/missing_value.h"
#include "special_values.h"
#include "test_objects.h"

namespace {

using vela::host::CallFrame;

constexpr int kIntMin = std::numeric_limits<int>::min();
constexpr int kIntMax = std::numeric_limits<int>::max();
constexpr unsigned kUintMax = std::numeric_limits<unsigned>::max();

bool SameDouble(double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); }

// What every getter makes of one argument; no text stands for status 3.
struct Conversion {
  const char* name;
  std::function<void(CallFrame&)> add;
  unsigned type_id;
  int as_int;
  unsigned as_unsigned;
  double as_double;
  std::optional<const char*> as_text;
};

class CallFrameConversion : public testing::TestWithParam<Conversion> {};

TEST_P(CallFrameConversion, EveryGetter) {
  const Conversion& expected = GetParam();
  CallFrame frame;
  expected.add(frame);
  EXPECT_EQ(frame.GetTypeID(0), expected.type_id);

  int integer = 77;
  EXPECT_EQ(frame.GetInt(0, integer), 0);
  EXPECT_EQ(integer, expected.as_int);
  unsigned natural = 77;
  EXPECT_EQ(frame.GetUINT(0, natural), 0);
  EXPECT_EQ(natural, expected.as_unsigned);
  DWORD word = 77;
  EXPECT_EQ(frame.GetDWORD(0, word), 0);
  EXPECT_EQ(word, expected.as_unsigned);
  double real = 77;
  EXPECT_EQ(frame.GetDouble(0, real), 0);
  EXPECT_TRUE(SameDouble(real, expected.as_double)) << real;
  OneTCcomplex complex;
  EXPECT_EQ(frame.GetComplex(0, complex), 0);
  EXPECT_TRUE(SameDouble(complex.m_re, expected.as_double)) << complex.m_re;

  CStringUTF8 text = "untouched";
  EXPECT_EQ(frame.GetString(0, text), expected.as_text ? 0 : status::kBadArguments);
  EXPECT_STREQ(text, expected.as_text.value_or("untouched"));
}

NumberObject& Number(double value, unsigned type) {
  static std::vector<std::unique_ptr<NumberObject>> kept;
  return *kept.emplace_back(std::make_unique<NumberObject>(value, type));
}

std::function<void(CallFrame&)> Object(double value, unsigned type) {
  return [=](CallFrame& frame) { frame.AddObject(&Number(value, type)); };
}

TextObject& Text(const char* text) {
  static std::vector<std::unique_ptr<TextObject>> kept;
  return *kept.emplace_back(std::make_unique<TextObject>(text));
}

const Conversion kConversions[] = {
    {"Int", [](CallFrame& f) { f.AddInt(5); }, 8, 5, 5, 5, "5"},
    {"NegativeInt", [](CallFrame& f) { f.AddInt(-1); }, 8, -1, kUintMax, -1, "-1"},
    {"SmallestInt", [](CallFrame& f) { f.AddInt(kIntMin); }, 8, kIntMin, 0x80000000u, -2147483648.0,
     "-2147483648"},
    {"Char", [](CallFrame& f) { f.AddChar('A'); }, 3, 65, 65, 65, "A"},
    {"Int64", [](CallFrame& f) { f.AddInt64(std::int64_t{1} << 40); }, 187, kIntMax, kUintMax,
     1099511627776.0, "1099511627776"},
    {"NegativeInt64", [](CallFrame& f) { f.AddInt64(-(std::int64_t{1} << 40)); }, 187, kIntMin, 0,
     -1099511627776.0, "-1099511627776"},
    {"Unsigned64", [](CallFrame& f) { f.AddUnsigned64(~std::uint64_t{0}); }, 188, kIntMax, kUintMax,
     18446744073709551616.0, "18446744073709551615"},
    {"Double", [](CallFrame& f) { f.AddDouble(2.9); }, 11, 2, 2, 2.9, "2.9"},
    {"NegativeDouble", [](CallFrame& f) { f.AddDouble(-2.9); }, 11, -2, 0, -2.9, "-2.9"},
    {"HugeDouble", [](CallFrame& f) { f.AddDouble(1e300); }, 11, kIntMax, kUintMax, 1e300,
     "1e+300"},
    {"MinusInfinity", [](CallFrame& f) { f.AddDouble(-kInf); }, 11, kIntMin, 0, -kInf, "-inf"},
    {"NaN", [](CallFrame& f) { f.AddDouble(-kNaN); }, 11, 0, 0, kNaN, "nan"},
    {"Missing", [](CallFrame& f) { f.AddDouble(kMissingValue); }, 11, 0, 0, kMissingValue, "NANUM"},
    {"Complex",
     [](CallFrame& f) {
       f.AddComplex({2.5, -1});
     },
     12, 2, 2, 2.5, "2.500000-1.000000i"},
    {"HexText", [](CallFrame& f) { f.AddText(" 0x1F "); }, 33, 31, 31, 31, " 0x1F "},
    {"UnreadableText", [](CallFrame& f) { f.AddText("12 apples"); }, 33, 0, 0, kMissingValue,
     "12 apples"},
    {"Null", [](CallFrame& f) { f.AddNull(); }, 0, 0, 0, 0, std::nullopt},
    {"NullText", [](CallFrame& f) { f.AddText(nullptr); }, 0, 0, 0, 0, std::nullopt},
    {"NullObject", [](CallFrame& f) { f.AddObject(nullptr); }, 0, 0, 0, 0, std::nullopt},
    {"DoubleObject", Object(3e9, 11), 11, kIntMax, 3000000000u, 3e9, "double"},
    {"IntObject", Object(-1, 8), 8, -1, kUintMax, -1, "int"},
    {"UnsignedObject", Object(4294967295.0, 9), 9, kIntMax, kUintMax, 4294967295.0, "unsigned int"},
    {"Unsigned64Object", Object(1.8e19, 188), 188, kIntMax, kUintMax, 1.8e19, "unsigned __int64"},
    {"CharObject", Object('x', 3), 3, 'x', 'x', 'x', "x"},
    {"StringObject", [](CallFrame& f) { f.AddObject(&Text("-7.5")); }, 27, -7, 0, -7.5, "-7.5"},
};

INSTANTIATE_TEST_SUITE_P(Table, CallFrameConversion, testing::ValuesIn(kConversions),
                         [](const auto& row) { return row.param.name; });

TEST(CallFrame, MissingArgumentIsRefusedAndLeavesTheOutput) {
  CallFrame frame;
  frame.AddInt(1);
  for (const unsigned arg : {1u, 8u, kUintMax}) {
    int integer = 77;
    double real = 77;
    CStringUTF8 text = "untouched";
    tagMSOOBJVECT object;
    void* buffer = nullptr;
    PointInt point;
    EXPECT_EQ(frame.GetTypeID(arg), 0u);
    EXPECT_EQ(frame.GetInt(arg, integer), status::kBadArguments);
    EXPECT_EQ(frame.GetDouble(arg, real), status::kBadArguments);
    EXPECT_EQ(frame.GetString(arg, text), status::kBadArguments);
    EXPECT_EQ(frame.GetPointInt(arg, point), status::kBadArguments);
    EXPECT_EQ(frame.GetArgumentObject(static_cast<int>(arg), object), status::kBadArguments);
    EXPECT_EQ(frame.GetBuffer(arg, &buffer, 0), status::kBadArguments);
    EXPECT_EQ(frame.ReleaseBuffer(arg), status::kBadArguments);
    EXPECT_EQ(frame.SetInt(arg, 1), status::kBadArguments);
    EXPECT_EQ(frame.SetComplex(static_cast<int>(arg), {}), status::kBadArguments);
    EXPECT_EQ(integer, 77);
    EXPECT_EQ(real, 77);
    EXPECT_STREQ(text, "untouched");
  }
}

TEST(CallFrame, ContainersAreNoNumbersButTheirElementsAre) {
  NumberObject vector({1, 2, 3}, kTypeDouble | kFlagVector);
  CallFrame frame;
  frame.AddObject(&vector);
  frame.AddObject(&vector, MSOINDICES::Element(2));
  frame.AddObject(&vector, MSOINDICES::Element(9));
  EXPECT_EQ(frame.GetTypeID(0), kTypeDouble | kFlagVector);
  EXPECT_EQ(frame.GetTypeID(1), unsigned{kTypeDouble});

  double value = 0;
  EXPECT_EQ(frame.GetDouble(0, value), status::kBadArguments);
  EXPECT_EQ(frame.GetDouble(1, value), 0);
  EXPECT_EQ(value, 3);
  EXPECT_EQ(frame.GetDouble(2, value), status::kUnresolved);

  EXPECT_EQ(frame.SetInt(1, 42), 0);
  EXPECT_THAT(vector.values(), testing::ElementsAre(1, 2, 42));
}

TEST(CallFrame, WritesBackOnlyByReference) {
  NumberObject number;
  TextObject text;
  CallFrame frame;
  frame.AddObject(&number);
  frame.AddObject(&text);
  frame.AddObject(&number, {}, false);
  frame.AddInt(1);
  frame.AddNull();

  EXPECT_EQ(frame.SetInt(0, -3), 0);
  EXPECT_EQ(number.values()[0], -3);
  EXPECT_EQ(frame.SetDouble(0, kMissingValue), 0);
  EXPECT_EQ(number.values()[0], kMissingValue);
  EXPECT_EQ(frame.SetComplex(0, {1.5, 2}), 0);
  EXPECT_EQ(number.values()[0], 1.5);
  EXPECT_EQ(frame.SetString(0, "8"), status::kBadArguments);

  EXPECT_EQ(frame.SetString(1, "text"), 0);
  EXPECT_EQ(text.text(), "text");
  EXPECT_EQ(frame.SetString(1, nullptr), 0);
  EXPECT_EQ(text.text(), "");
  EXPECT_EQ(frame.SetInt(1, 12), 0);
  EXPECT_EQ(text.text(), "12");
  EXPECT_EQ(frame.SetDouble(1, 0.25), 0);
  EXPECT_EQ(text.text(), "0.25");
  EXPECT_EQ(frame.SetComplex(1, {0, 2}), 0);
  EXPECT_EQ(text.text(), "2.000000i");

  for (const unsigned arg : {2u, 3u, 4u}) {
    EXPECT_EQ(frame.SetInt(arg, 9), status::kBadArguments) << arg;
    EXPECT_EQ(frame.SetString(arg, "9"), status::kBadArguments) << arg;
  }
  EXPECT_EQ(frame.SetComplex(-1, {}), status::kBadArguments);
  EXPECT_EQ(number.values()[0], 1.5);
}

TEST(CallFrame, ObjectsKeepWhatTheyAddress) {
  NumberObject number({1, 2}, kTypeDouble);
  CallFrame frame;
  frame.AddObject(&number, MSOINDICES::Object(1));
  frame.AddObject(&number, {}, false);
  frame.AddNull();
  frame.AddInt(3);

  tagMSOOBJVECT object;
  ASSERT_EQ(frame.GetArgumentObject(0, object), 0);
  EXPECT_EQ(object.object, &number);
  EXPECT_EQ(object.type_word, unsigned{kTypeDouble});
  EXPECT_EQ(object.indices.ObjectIndex(), 1);
  EXPECT_EQ(object.flags, std::uint32_t{tagMSOOBJVECT::kByReference});

  EXPECT_EQ(frame.GetArgumentReferenceTarget(0, object, 0), 0);
  EXPECT_EQ(frame.GetArgumentReferenceTarget(1, object, 0), status::kBadArguments);
  EXPECT_EQ(frame.GetArgumentReferenceTarget(1, object, 1), 0);
  EXPECT_EQ(object.flags, 0u);

  EXPECT_EQ(frame.GetArgumentObject(2, object), 0);
  EXPECT_EQ(object.object, nullptr);
  EXPECT_EQ(frame.GetArgumentObject(3, object), status::kBadArguments);
  EXPECT_EQ(frame.GetArgumentObject(-1, object), status::kBadArguments);
}

TEST(CallFrame, ReferencesAndPointersStandForTheirTarget) {
  NumberObject vector({1, 2}, kTypeInt | kFlagVector);
  ReferenceObject reference(&vector, MSOINDICES::Element(1));
  ReferenceObject pointer(&vector, {}, kTypePointer);
  ReferenceObject null_pointer(nullptr, {}, kTypePointer);
  ReferenceObject dangling(nullptr, {});
  CallFrame frame;
  for (ReferenceObject* object : {&reference, &pointer, &null_pointer, &dangling}) {
    frame.AddObject(object);
  }

  EXPECT_EQ(frame.GetTypeID(0), unsigned{kTypeInt});
  EXPECT_EQ(frame.GetTypeID(1), kTypeInt | kFlagVector);
  int value = 0;
  EXPECT_EQ(frame.GetInt(0, value), 0);
  EXPECT_EQ(value, 2);
  EXPECT_EQ(frame.SetInt(0, 7), 0);
  EXPECT_EQ(vector.values()[1], 7);

  tagMSOOBJVECT object;
  EXPECT_EQ(frame.GetArgumentObject(0, object), 0);
  EXPECT_EQ(object.object, &vector);
  EXPECT_EQ(object.indices.element, 1);
  EXPECT_EQ(frame.GetArgumentObject(2, object), 0);
  EXPECT_EQ(object.object, nullptr);

  void* buffer = nullptr;
  CStringUTF8 text;
  EXPECT_EQ(frame.GetArgumentObject(3, object), status::kUnresolved);
  EXPECT_EQ(frame.GetInt(3, value), status::kUnresolved);
  EXPECT_EQ(frame.GetString(3, text), status::kUnresolved);
  EXPECT_EQ(frame.GetBuffer(3, &buffer, 0), status::kUnresolved);
  EXPECT_EQ(frame.SetInt(3, 1), status::kUnresolved);
}

TEST(CallFrame, PointsComeFromPointsAndNumbers) {
  PointObject object({1.9, -3e10, 5});
  CallFrame frame;
  frame.AddObject(&object);
  frame.AddComplex({2.5, -7});
  frame.AddInt(4);

  PointInt pi;
  PointDouble pd;
  Point3D p3;
  EXPECT_EQ(frame.GetPointInt(0, pi), 0);
  EXPECT_EQ(pi, (PointInt{1, kIntMin}));
  EXPECT_EQ(frame.GetPointDouble(0, pd), 0);
  EXPECT_EQ(pd, (PointDouble{1.9, -3e10}));
  EXPECT_EQ(frame.GetPoint3D(0, p3), 0);
  EXPECT_EQ(p3, (Point3D{1.9, -3e10, 5}));
  EXPECT_EQ(frame.GetPointInt(1, pi), 0);
  EXPECT_EQ(pi, (PointInt{2, -7}));
  EXPECT_EQ(frame.GetPoint3D(2, p3), 0);
  EXPECT_EQ(p3, (Point3D{4, 0, 0}));
}

TEST(CallFrame, LendsBytesAndTakesThemBack) {
  const char literal[] = "abc";
  TextObject text("hello");
  NumberObject numbers({1, 2, 3}, kTypeDouble);
  CallFrame frame;
  frame.AddText(literal);
  frame.AddObject(&text);
  frame.AddObject(&numbers, MSOINDICES::Object(1));
  frame.AddInt(1);

  void* buffer = nullptr;
  EXPECT_EQ(frame.GetBuffer(0, &buffer, 5), status::kBadArguments);
  EXPECT_EQ(frame.GetBuffer(0, &buffer, -1), status::kBadArguments);
  EXPECT_EQ(frame.GetBuffer(0, nullptr, 0), status::kBadArguments);
  ASSERT_EQ(frame.GetBuffer(0, &buffer, 4), 0);
  EXPECT_EQ(frame.GetBufferBytes(0), 4u);
  std::memcpy(buffer, "xyz", 4);
  EXPECT_STREQ(literal, "abc");
  EXPECT_EQ(frame.ReleaseBuffer(0), 0);

  EXPECT_EQ(frame.GetBuffer(1, &buffer, 7), status::kBadArguments);
  EXPECT_EQ(text.locks, 0);
  ASSERT_EQ(frame.GetBuffer(1, &buffer, 6), 0);
  EXPECT_EQ(buffer, text.text().data());
  EXPECT_EQ(text.locks, 1);
  EXPECT_EQ(frame.ReleaseBuffer(1), 0);
  EXPECT_EQ(frame.ReleaseBuffer(1), 0);
  EXPECT_EQ(text.locks, 0);
  EXPECT_EQ(frame.GetBufferBytes(1), 0u);

  ASSERT_EQ(frame.GetBuffer(2, &buffer, 0), 0);
  EXPECT_EQ(buffer, &numbers.values()[1]);
  EXPECT_EQ(frame.GetBufferBytes(2), 2 * sizeof(double));
  EXPECT_EQ(frame.GetBuffer(3, &buffer, 0), status::kBadArguments);
}

TEST(CallFrame, ResultsOfEveryKind) {
  using Kind = CallFrame::ResultKind;
  CallFrame frame;
  EXPECT_EQ(frame.Kind(), Kind::kNone);
  EXPECT_EQ(frame.ResultInt(), 0);

  frame.SetReturnInt(~0ull);
  EXPECT_EQ(frame.Kind(), Kind::kUnsigned);
  EXPECT_EQ(frame.ResultInt(), -1);
  EXPECT_EQ(frame.ResultDouble(), 18446744073709551616.0);
  frame.SetReturnInt(4000000000u);
  EXPECT_EQ(frame.ResultInt(), 4000000000);

  frame.SetReturnDouble(-1e300);
  EXPECT_EQ(frame.ResultInt(), std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(frame.ResultDouble(), -1e300);

  char text[] = "copied";
  frame.SetReturnString(text);
  text[0] = 'X';
  EXPECT_EQ(frame.Kind(), Kind::kText);
  EXPECT_STREQ(frame.ResultText(), "copied");
  frame.SetReturnString(static_cast<const char*>(nullptr));
  EXPECT_STREQ(frame.ResultText(), "");

  EXPECT_EQ(frame.ResultMemory(), nullptr);
  frame.SetReturnMemoryPtr(text);
  EXPECT_EQ(frame.ResultMemory(), text);

  NumberObject object;
  frame.SetReturnObject(&object);
  EXPECT_EQ(frame.GetReturnObject(0), &object);
  EXPECT_EQ(frame.GetReturnObject(1), nullptr);
}

TEST(CallFrame, IsReusableWithAnyNumberOfArguments) {
  CallFrame frame;
  for (const int count : {20, 3, 9}) {
    frame.Reset();
    EXPECT_EQ(frame.GetNumOfArguments(), 0u);
    EXPECT_EQ(frame.Kind(), CallFrame::ResultKind::kNone);
    EXPECT_EQ(frame.GetReturnObject(0), nullptr);
    EXPECT_EQ(frame.GetIndeces().ObjectIndex(), 0);

    for (int i = 0; i < count; ++i) frame.AddInt(i * i);
    ASSERT_EQ(frame.GetNumOfArguments(), static_cast<unsigned>(count));
    for (int i = 0; i < count; ++i) {
      int value = -1;
      EXPECT_EQ(frame.GetInt(static_cast<unsigned>(i), value), 0);
      EXPECT_EQ(value, i * i);
    }
    NumberObject object;
    frame.SetIndeces(1, 4, 0, 0);
    frame.SetReturnObject(&object);
    frame.SetReturnInt(1);
    EXPECT_EQ(frame.GetIndeces().ObjectIndex(), 4);
  }
}

}  // namespace
