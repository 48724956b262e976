// What an object that overrides only the core operations can do.
#include "frame/interface/script_object.h"

#include <cstring>
#include <gtest/gtest.h>
#include <limits>

#include "frame/interface/host_services.h"
#include "frame/interface/missing_value.h"
#include "host/call_frame.h"
#include "platform/automation.h"
#include "test_objects.h"

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

template <class T>
void ExpectReads(CScriptVelaObject& object, T expected) {
  T value = 7, again = 7;
  EXPECT_EQ(object.GetNumericValue(nullptr, value), 0);
  EXPECT_EQ(object.GetIntegralValue(nullptr, again), 0);
  EXPECT_EQ(value, expected);
  EXPECT_EQ(again, expected);
}

TEST(ScriptObject, ReadsTruncateAndSaturate) {
  for (const auto& [stored, expected] : {std::pair{100.9, 100}, {-0.9, 0}, {kNaN, 0}}) {
    NumberObject number(stored);
    ExpectReads(number, static_cast<char>(expected));
    ExpectReads(number, static_cast<short>(expected));
    ExpectReads(number, static_cast<unsigned>(expected));
    ExpectReads(number, std::int64_t{expected});
  }
  NumberObject huge(1e300);
  ExpectReads(huge, static_cast<unsigned char>(255));
  ExpectReads(huge, ~std::uint64_t{0});
  for (const auto& [stored, expected] : {std::pair{3e9, 2147483647}, {-3e9, -2147483647 - 1}}) {
    NumberObject number(stored);
    CScriptVelaObject& object = number;
    int value = 77;
    EXPECT_EQ(object.GetInt(value), 1);
    EXPECT_EQ(value, expected);
    EXPECT_EQ(object.GetInt(nullptr, value), 0);
    EXPECT_EQ(value, expected);
    EXPECT_EQ(object.RoundDouble(stored), expected);
  }
  const MSOINDICES outside = MSOINDICES::Object(3);
  NumberObject number;
  int value = 77;
  EXPECT_EQ(static_cast<CScriptVelaObject&>(number).GetInt(&outside, value), status::kUnresolved);
  EXPECT_EQ(value, 77);
}

TEST(ScriptObject, EverySetterReachesTheCore) {
  NumberObject number;
  CScriptVelaObject& object = number;
  const auto stored = [&] { return number.values()[0]; };
  EXPECT_EQ(object.SetInt(5), 1);
  EXPECT_EQ(stored(), 5);
  EXPECT_EQ(object.SetNumericValue(nullptr, std::uint64_t{1} << 63), 0);
  EXPECT_EQ(stored(), 0x1p63);
  EXPECT_EQ(object.SetComplex(OneTCcomplex(1.5, 9)), 1);
  EXPECT_EQ(stored(), 1.5);
  EXPECT_EQ(object.SetComplexValue(nullptr, {2.5, 9}), 0);
  EXPECT_EQ(stored(), 2.5);
  EXPECT_EQ(object.SetValueFromINT64(-4), 0);
  EXPECT_EQ(stored(), -4);
  OneTCcomplex complex;
  EXPECT_EQ(object.GetNumeric(nullptr, complex), 0);
  EXPECT_EQ(complex, OneTCcomplex(-4, 0));
  float real = 0;
  EXPECT_EQ(object.GetFloatingValue(real), 1);
  EXPECT_EQ(real, -4);

  PointObject point({1, 2, 3});
  EXPECT_EQ(static_cast<CScriptVelaObject&>(point).SetNumericValue(nullptr, PointInt{7, 8}), 0);
  EXPECT_EQ(point.value(), (Point3D{7, 8, 0}));
}

TEST(ScriptObject, DefaultsRefuse) {
  CScriptVelaObject object;
  object.InitTypeIDs(kTypeFile);
  int integer = 77;
  double real = 77;
  void* buffer = nullptr;
  PointInt point;
  EXPECT_EQ(object.GetDouble(real), 0);
  EXPECT_EQ(object.GetDouble(nullptr, real), status::kUnsupported);
  EXPECT_EQ(object.GetInt(integer), 0);
  EXPECT_EQ(object.SetInt(1), 0);
  EXPECT_EQ(object.SetString("x"), 0);
  EXPECT_EQ(object.SetString(nullptr, "x"), status::kUnsupported);
  EXPECT_EQ(object.GetPoint(point), 0);
  EXPECT_EQ(object.GetBufferMSO(nullptr, &buffer), status::kUnsupported);
  EXPECT_EQ(object.GetBufferSize(nullptr), 0u);
  EXPECT_EQ(object.Operate2(nullptr, 1, {}, 0), status::kUnsupported);
  EXPECT_EQ(object.ResetValue(), status::kUnsupported);
  EXPECT_EQ(object.CreateCopy(), nullptr);
  EXPECT_EQ(object.GetActualObject(), &object);
  EXPECT_EQ(integer, 77);
  EXPECT_EQ(real, 77);
  CStringUTF8 text;
  EXPECT_EQ(object.GetString(text), 1);
  EXPECT_STREQ(text, "file");
}

TEST(ScriptObject, TypesByWordAndIndex) {
  NumberObject scalars({1, 2}, kTypeInt);
  NumberObject vector({1, 2}, kTypeInt | kFlagVector);
  const MSOINDICES last = MSOINDICES::Object(1), outside = MSOINDICES::Object(2);
  const MSOINDICES negative = MSOINDICES::Object(-1), element = MSOINDICES::Element(1);
  EXPECT_EQ(scalars.GetTypeIDCheckIndex(&last), unsigned{kTypeInt});
  EXPECT_EQ(scalars.GetTypeIDCheckIndex(&outside), 0u);
  EXPECT_EQ(scalars.GetTypeIDCheckIndex(&negative), 0u);
  EXPECT_TRUE(scalars.IsValidElement(&last));
  EXPECT_FALSE(scalars.IsValidElement(&outside));
  EXPECT_EQ(vector.GetTypeIDCheckIndex(nullptr), kTypeInt | kFlagVector);
  EXPECT_EQ(vector.GetTypeIDCheckIndex(&element), unsigned{kTypeInt});
  EXPECT_EQ(vector.GetTypeBitID(), unsigned{kFlagVector});
  EXPECT_STREQ(vector.GetDataTypeName(), "int");
  EXPECT_STREQ(vector.GetTCTypeName(), "vector");
  EXPECT_TRUE(vector.IsSameID(&vector));
  EXPECT_FALSE(vector.IsSameID(&scalars));
  EXPECT_FALSE(vector.IsSameID(nullptr));
}

TEST(ScriptObject, PlainScalarsLendTheirStorage) {
  NumberObject numbers({1, 2, 3}, kTypeDouble);
  const MSOINDICES second = MSOINDICES::Object(1), outside = MSOINDICES::Object(3);
  CScriptVelaObject& object = numbers;
  void* buffer = nullptr;
  EXPECT_EQ(object.GetBufferMSO(&second, &buffer), 0);
  EXPECT_EQ(buffer, &numbers.values()[1]);
  EXPECT_EQ(object.GetBufferSize(&second), 2 * sizeof(double));
  EXPECT_EQ(object.GetBufferMSO(&outside, &buffer), status::kUnsupported);
  EXPECT_EQ(object.GetBufferMSOEx(nullptr, kTypeInt, &buffer), status::kUnsupported);
  double value = 0;
  EXPECT_EQ(object.GetValueToBuffer(&value, sizeof value - 1, &second), status::kBadArguments);
  EXPECT_EQ(object.GetValueToBuffer(&value, sizeof value, &second), 0);
  EXPECT_EQ(value, 2);

  tagMSOOBJVECT argument(&object, kTypeDouble, 2);
  EXPECT_EQ(MSGetBuffer(argument), &numbers.values()[2]);
  MSReleaseBuffer(argument);
  TextObject text("abc");
  tagMSOOBJVECT locked(&text, kTypeString);
  MSGetBuffer(locked);
  EXPECT_EQ(text.locks, 1);
  MSReleaseBuffer(locked);
  MSReleaseBuffer(locked);
  EXPECT_EQ(text.locks, 0);
  tagMSOOBJVECT nothing;
  EXPECT_EQ(MSGetBuffer(nothing), nullptr);
}

TEST(ScriptObject, TravelsAsAutomationValue) {
  const struct {
    unsigned type;
    double value;
    WORD carrier;
  } rows[] = {
      {kTypeChar, -5, VT_I1},
      {kTypeUnsignedShort, 65535, VT_UI2},
      {kTypeInt, -7, VT_I4},
      {kTypeFloat, 0.5, VT_R4},
      {kTypeDouble, 1e300, VT_R8},
      {kTypeInt64, -9e15, VT_I8},
      {kTypeUnsignedInt64, 1e19, VT_UI8},
  };
  VARIANT variant;
  VariantInit(&variant);
  for (const auto& row : rows) {
    NumberObject source(row.value, row.type), target(0, row.type);
    ASSERT_EQ(source.GetIntoVariant(nullptr, &variant), 0) << row.type;
    EXPECT_EQ(variant.vt, row.carrier);
    EXPECT_EQ(target.SetFromVariant(nullptr, &variant), 0) << row.type;
    EXPECT_EQ(target.values()[0], row.value);
  }
  TextObject source("gr\xC3\xBC\xC3\x9F \xF0\x9F\x98\x80"), target;
  ASSERT_EQ(source.GetIntoVariant(nullptr, &variant), 0);
  EXPECT_EQ(variant.vt, VT_BSTR);
  EXPECT_EQ(SysStringLen(variant.bstrVal), 7u);
  EXPECT_EQ(target.SetFromVariant(nullptr, &variant), 0);
  EXPECT_EQ(target.text(), source.text());
  NumberObject number;
  EXPECT_EQ(number.SetFromVariant(nullptr, &variant), 0);
  EXPECT_EQ(number.values()[0], kMissingValue);
  EXPECT_EQ(number.GetIntoVariant(nullptr, nullptr), status::kBadArguments);
  VariantClear(&variant);
}

TEST(ScriptObject, DisplaysOneElementPerLine) {
  NumberObject numbers({1, 2}, kTypeDouble);
  int rows = 0, cols = 0;
  EXPECT_EQ(numbers.GetDisplaySize(rows, cols), 0);
  EXPECT_EQ(rows, 2);
  EXPECT_EQ(cols, 1);
  CStringUTF8 text;
  EXPECT_EQ(numbers.GetDisplayElement(text, -1), 0);
  EXPECT_EQ(numbers.GetDisplayElement(text, 1), 0);
  EXPECT_EQ(numbers.GetDisplayElement(text, 2), status::kOutOfRange);
  EXPECT_EQ(numbers.GetDisplayElement(text, -2), status::kOutOfRange);
}

TEST(TesselObject, DisplayTextIsCutBetweenCharacters) {
  class Named : public TesselCObject {
   public:
    using TesselCObject::GetString;
    int GetString(const MSOINDICES*, CStringUTF8& text) override {
      text = "a\xC3\xA9z";
      return status::kOk;
    }
  } object;
  const struct {
    int size;
    const char* text;
  } rows[] = {{1, ""}, {2, "a"}, {3, "a"}, {4, "a\xC3\xA9"}, {5, "a\xC3\xA9z"}, {9, "a\xC3\xA9z"}};
  for (const auto& row : rows) {
    char buffer[9];
    std::memset(buffer, '?', sizeof buffer);
    EXPECT_EQ(object.GetString(buffer, row.size), 0);
    EXPECT_STREQ(buffer, row.text);
  }
  char buffer[1];
  EXPECT_EQ(object.GetString(buffer, 0), status::kBadArguments);
}

TEST(TesselObject, ReadsItsArguments) {
  class Reader : public TesselCObject {
   public:
    using TesselCObject::GetArgObjectPtr;
    using TesselCObject::GetBuffer;
    using TesselCObject::ReleaseBuffer;
  } reader;
  NumberObject vector({1}, kTypeInt | kFlagVector);
  vela::host::CallFrame frame;
  frame.AddObject(&vector);
  frame.AddText("abc");
  EXPECT_EQ(reader.GetArgObjectPtr(&frame, 0, kTypeInt, kFlagVector), &vector);
  EXPECT_EQ(reader.GetArgObjectPtr(&frame, 0, kTypeInt, 0), &vector);
  EXPECT_EQ(reader.GetArgObjectPtr(&frame, 0, kTypeInt, kFlagMatrix), nullptr);
  EXPECT_EQ(reader.GetArgObjectPtr(&frame, 0, kTypeDouble, kFlagVector), nullptr);
  EXPECT_EQ(reader.GetArgObjectPtr(&frame, 1, kTypePointer, 0), nullptr);
  EXPECT_STREQ(static_cast<char*>(reader.GetBuffer(&frame, 1, 4)), "abc");
  EXPECT_EQ(reader.GetBuffer(&frame, 1, 5), nullptr);
  EXPECT_EQ(reader.GetBuffer(&frame, 1, 0xFFFFFFFFu), nullptr);
  EXPECT_EQ(reader.GetBuffer(nullptr, 1, 0), nullptr);
  reader.ReleaseBuffer(&frame, 1);
  reader.ReleaseBuffer(&frame, -1);
}

TEST(Indices, AppendFillsObjectElementAndColumn) {
  MSOINDICES indices;
  EXPECT_EQ(Append_Indices(indices, 5), 0);
  EXPECT_EQ(indices.ObjectIndex(), 5);
  EXPECT_EQ(indices.ElementCount(), 0);
  EXPECT_EQ(Append_Indices(indices, 6), 0);
  EXPECT_EQ(indices.ElementCount(), 1);
  EXPECT_EQ(Append_Indices(indices, 7), 0);
  EXPECT_EQ(indices.ElementCount(), 2);
  EXPECT_EQ(indices.index, 5);
  EXPECT_EQ(indices.element, 6);
  EXPECT_EQ(indices.column, 7);
  EXPECT_EQ(Append_Indices(indices, 8), 1);
  MSOINDICES malformed{3, 0, 0, 0};
  EXPECT_EQ(Append_Indices(malformed, 1), 1);

  const MSOINDICES row = MSOINDICES::Object(2);
  CMSOINDICESVectorIterator iterator(&row);
  iterator.SetIndex(9);
  EXPECT_EQ(iterator.Get().ObjectIndex(), 2);
  EXPECT_EQ(iterator.Get().element, 9);
  EXPECT_EQ(CMSOINDICESVectorIterator(nullptr).Get().kind, 0);
}

TEST(Indices, ObjectArgumentFromSeparateIndices) {
  CScriptVelaObject object;
  const tagMSOOBJVECT whole(&object, kTypeInt);
  EXPECT_EQ(whole.indices.kind, 0);
  const tagMSOOBJVECT cell(&object, kTypeInt, 1, 2, 3, std::uint32_t{tagMSOOBJVECT::kByReference});
  EXPECT_EQ(cell.indices.ObjectIndex(), 1);
  EXPECT_EQ(cell.indices.ElementCount(), 2);
  EXPECT_EQ(cell.indices.column, 3);
  EXPECT_EQ(cell.flags, std::uint32_t{tagMSOOBJVECT::kByReference});
  const tagMSOOBJVECT element(&object, kTypeInt, tagMSOOBJVECT::kNoIndex, 4);
  EXPECT_EQ(element.indices.ObjectKind(), MSOINDICES::kWhole);
  EXPECT_EQ(element.indices.element, 4);
}

TEST(Types, DescribedByTheirIds) {
  const struct {
    unsigned id;
    unsigned size;
    WORD variant_type;
    double smallest, largest;
  } rows[] = {
      {kTypeCharAlias, 1, VT_I1, -128, 127},
      {kTypeChar, 1, VT_I1, -128, 127},
      {kTypeUnsignedChar, 1, VT_UI1, 0, 255},
      {kTypeShort, 2, VT_I2, -32768, 32767},
      {kTypeUnsignedShort, 2, VT_UI2, 0, 65535},
      {kTypeInt, 4, VT_I4, -2147483648.0, 2147483647},
      {kTypeUnsignedInt, 4, VT_UI4, 0, 4294967295.0},
      {kTypeFloat, 4, VT_R4, -3.4028234663852886e38, 3.4028234663852886e38},
      {kTypeDouble, 8, VT_R8, -1.7976931348623157e308, 1.7976931348623157e308},
      {kTypeInt64, 8, VT_I8, -0x1p63, 0x1p63},
      {kTypeUnsignedInt64, 8, VT_UI8, 0, 0x1p64},
  };
  for (const auto& row : rows) {
    double smallest = 0, largest = 0;
    EXPECT_TRUE(GetDataTypeRange(row.id, smallest, largest));
    EXPECT_EQ(smallest, row.smallest) << row.id;
    EXPECT_EQ(largest, row.largest) << row.id;
    EXPECT_EQ(PLTTypeToSizeOf(row.id), row.size) << row.id;
    EXPECT_EQ(GetVariantTypeFromSimpleType(row.id), row.variant_type) << row.id;
    if (row.id != kTypeCharAlias) {
      EXPECT_EQ(GetVectorBasicTypeFromSafeArrayType(row.variant_type | VT_ARRAY), row.id);
    }
  }
  for (const unsigned id : {0u, 1u, 7u, 12u, 27u, 189u, ~0u}) {
    double value = 0;
    EXPECT_FALSE(GetDataTypeRange(id, value, value)) << id;
    EXPECT_EQ(GetVariantTypeFromSimpleType(id), VT_EMPTY) << id;
  }
  EXPECT_EQ(PLTTypeToSizeOf(kTypeComplex), 16u);
  EXPECT_EQ(PLTTypeToSizeOf(kTypePoint3D), 24u);
  EXPECT_EQ(PLTTypeToSizeOf(~0u), 0u);
  EXPECT_EQ(GetVectorBasicTypeFromSafeArrayType(VT_BSTR), unsigned{kTypeString});
  EXPECT_EQ(GetVectorBasicTypeFromSafeArrayType(VT_DISPATCH), 0u);
}

}  // namespace
