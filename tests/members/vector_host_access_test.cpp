// What the host does with a vector without calling members: elements, texts, lent buffers, memory
// images, and the exported functions that take vectors.
#include <cstring>
#include <utility>

#include "host/output.h"
#include "vector/source_range.h"
#include "vector_fixture.h"

namespace vela::testing {
namespace {

TEST(VectorAccess, EveryOverloadOfEveryType) {
  ForEachElementType([]<class T>() {
    const ObjectRef v = ConvertedVector<T>({1, 2, 3});
    const MSOINDICES at = MSOINDICES::Element(1);
    SCOPED_TRACE(kElement<T>.name);
    ForEachElementType([&]<class U>() {
      const U five = ConvertValue<U>(5.0);
      EXPECT_EQ(v->SetNumericValue(&at, five), 0);
      U value{};
      if constexpr (PointElement<U>) {
        EXPECT_EQ(v->GetPointValue(&at, value), 0);
      } else {
        EXPECT_EQ(v->GetNumericValue(&at, value), 0);
      }
      EXPECT_TRUE(value == five) << kElement<U>.name;
      if constexpr (IntegerElement<U>) {
        U whole{};
        EXPECT_EQ(v->GetIntegralValue(&at, whole), 0);
        EXPECT_EQ(whole, five);
      }
      if constexpr (FloatingElement<U>) {
        U real{};
        EXPECT_EQ(v->GetFloatingValue(&at, real), 0);
        EXPECT_EQ(real, five);
      }
    });
    EXPECT_EQ(AsDoubles(v), (Doubles{1, 5, 3}));
    EXPECT_EQ(v->GetRuntimeClass()->m_lpszClassName,
              std::string("TCVectorBase<") + kElement<T>.display_name + '>');
    int whole = 0;
    double real = 0;
    OneTCcomplex complex;
    EXPECT_EQ(v->SetInt(&at, 6), 0);
    EXPECT_EQ(v->GetInt(&at, whole), 0);
    EXPECT_EQ(whole, 6);
    EXPECT_EQ(v->SetDouble(&at, 7), 0);
    EXPECT_EQ(v->GetDouble(&at, real), 0);
    EXPECT_EQ(real, 7);
    EXPECT_EQ(v->SetComplexValue(&at, OneTCcomplex(8, 0)), 0);
    EXPECT_EQ(v->GetComplexValue(&at, complex), 0);
    EXPECT_EQ(complex, OneTCcomplex(8, 0));
    EXPECT_EQ(v->SetComplex(&at, OneTCcomplex(9, 0)), 0);
    EXPECT_EQ(v->SetString(&at, " 0x0A "), 0);
    EXPECT_EQ(v->GetDouble(&at, real), 0);
    EXPECT_EQ(real, 10);
    // Without indices: the first element, and 1 for success.
    EXPECT_EQ(v->SetDouble(4), 1);
    EXPECT_EQ(v->GetDouble(real), 1);
    EXPECT_EQ(v->GetInt(whole), 1);
    EXPECT_EQ(whole, 4);
    auto* const element = static_cast<T*>(v->GetArrayElement(nullptr, 2));
    ASSERT_NE(element, nullptr);
    EXPECT_TRUE(*element == ConvertValue<T>(3.0));
    EXPECT_EQ(v->GetArrayElement(nullptr, 3), nullptr);
    EXPECT_EQ(v->GetArrayElement(nullptr, -1), nullptr);
  });
}

TEST(VectorAccess, PlacesThatDoNotExist) {
  const ObjectRef v = Make(kTypeDouble | kFlagVector, 2);
  CallAt(v, MSOINDICES::Object(1), "SetSize", 2);
  const struct {
    MSOINDICES at;
    int status;
  } places[] = {
      {MSOINDICES::Object(1).WithElement(1), status::kOk},
      {MSOINDICES::Object(1).WithElement(2), status::kOutOfRange},
      {MSOINDICES::Object(1).WithElement(-1), status::kNegativeElement},
      {MSOINDICES::Object(0).WithElement(0), status::kOutOfRange},
      {MSOINDICES::Object(2).WithElement(0), status::kOutOfRange},
      {MSOINDICES::Object(-1).WithElement(0), status::kUnresolved},
      {MSOINDICES{5, 0, 0, 0}, status::kUnresolved},
  };
  for (const auto& place : places) {
    double value = 0;
    char bytes[sizeof(double)];
    EXPECT_EQ(v->GetDouble(&place.at, value), place.status);
    EXPECT_EQ(v->SetDouble(&place.at, 1), place.status);
    EXPECT_EQ(v->GetValueToBuffer(bytes, sizeof bytes, &place.at), place.status);
    EXPECT_EQ(v->IsValidElement(&place.at), place.status == 0);
  }
  char bytes[4];
  EXPECT_EQ(v->GetValueToBuffer(bytes, sizeof bytes, &places[0].at), status::kBadArguments);
  EXPECT_EQ(v->GetArraySize(), 2);
}

TEST(VectorText, DisplayOfElementsAndOfTheWhole) {
  const auto display = [](const ObjectRef& v, int index) {
    CStringUTF8 text;
    EXPECT_EQ(v->GetDisplayElement(text, index), 0);
    return std::string(text.View());
  };
  const ObjectRef doubles = VectorOf<double>({1.0 / 3, kM, -2e10, 1e300});
  EXPECT_EQ(display(doubles, 0), "0.3333333333333333");
  EXPECT_EQ(display(doubles, 1), "NANUM");
  EXPECT_EQ(display(doubles, -1), "double(4)");
  EXPECT_EQ(display(doubles, 4), "Error: Value cannot be determined");
  EXPECT_EQ(display(doubles, -2), "Error: Value cannot be determined");
  EXPECT_EQ(display(VectorOf<float>({static_cast<float>(kM)}), 0), "-0");
  EXPECT_EQ(display(VectorOf<char>({-5}), 0), "-5");
  EXPECT_EQ(display(VectorOf<unsigned char>({200}), -1), "unsigned char(1)");
  const ObjectRef longs = VectorOf<std::int64_t>({(std::int64_t{1} << 62) + 1});
  EXPECT_EQ(display(longs, 0), "4.611686018427388e+18");
  EXPECT_EQ(display(VectorOf<std::uint64_t>({}), -1), "unsigned __int64(0)");
  EXPECT_EQ(display(VectorOf<OneTCcomplex>({{1, 2}}), -1), "complex(1)");
  const ObjectRef points = VectorOf<PointInt>({PointInt{{1, -2}}});
  EXPECT_EQ(display(points, 0), "(1, -2)");
  EXPECT_EQ(display(points, -1), "{Vector <point>}");
  const ObjectRef fpoints = VectorOf<PointDouble>({PointDouble{{1, 2.5}}});
  EXPECT_EQ(display(fpoints, 0), "(1.000000, 2.500000)");
  EXPECT_EQ(display(fpoints, -1), "{Vector <fpoint>}");
  EXPECT_EQ(display(VectorOf<Point3D>({Point3D{{1, 2, 3}}}), 0), "(1.000000, 2.000000, 3.000000)");
  int rows = 0, cols = 0;
  EXPECT_EQ(doubles->GetDisplaySize(rows, cols), 0);
  EXPECT_EQ(rows * 10 + cols, 41);
}

// Collects what the library shows as script messages.
class Messages {
 public:
  Messages() {
    host::SetOutputSink([this](host::OutputTarget target, std::string_view text, unsigned) {
      if (target == host::OutputTarget::kScriptMessage) text_ += text;
    });
  }
  ~Messages() { host::SetOutputSink({}); }
  // What was shown since the last call.
  std::string Take() { return std::exchange(text_, {}); }

 private:
  std::string text_;
};

TEST(LentBuffer, GuardedInDebugMode) {
  Messages messages;
  const ObjectRef v = VectorOf<short>({1, 2, 3});
  void* buffer = nullptr;
  {
    const DebugModeScope debug(1);
    ASSERT_EQ(v->GetBufferMSO(nullptr, &buffer), 0);
    auto* const bytes = static_cast<unsigned char*>(buffer);
    EXPECT_EQ(bytes[6], 0xCC);
    EXPECT_EQ(bytes[7], 0xCC);
    static_cast<short*>(buffer)[1] = 20;
    EXPECT_EQ(v->ReleaseBufferMSO(nullptr, buffer), 0);
    EXPECT_EQ(messages.Take(), "");
    EXPECT_EQ(ValuesOf<short>(v), (std::vector<short>{1, 20, 3}));

    for (const int beyond : {6, 7}) {
      ASSERT_EQ(v->GetBufferMSO(nullptr, &buffer), 0);
      static_cast<unsigned char*>(buffer)[beyond] = 0;
      static_cast<short*>(buffer)[0] = static_cast<short>(beyond);
      EXPECT_EQ(v->ReleaseBufferMSO(nullptr, buffer), 0);
      EXPECT_EQ(messages.Take(), "An Object has written beyond the requested size of 6 bytes\n");
      EXPECT_EQ(ValuesOf<short>(v)[0], beyond) << "the release goes on";
    }
    // Resized while it was lent: what still fits comes back.
    ASSERT_EQ(v->GetBufferMSO(nullptr, &buffer), 0);
    static_cast<short*>(buffer)[1] = 30;
    Call(v, "SetSize", 2);
    EXPECT_EQ(v->ReleaseBufferMSO(nullptr, buffer), 0);
    EXPECT_EQ(ValuesOf<short>(v), (std::vector<short>{7, 30}));
    ASSERT_EQ(v->GetBufferMSO(nullptr, &buffer), 0);
    static_cast<short*>(buffer)[0] = 8;
    Call(v, "SetSize", 4);
    for (const int i : {2, 3}) {
      const MSOINDICES at = MSOINDICES::Element(i);
      EXPECT_EQ(v->SetNumericValue(&at, i), 0);
    }
    EXPECT_EQ(v->ReleaseBufferMSO(nullptr, buffer), 0);
    EXPECT_EQ(ValuesOf<short>(v), (std::vector<short>{8, 30, 2, 3})) << "what is new stays";
    // An empty vector still lends its guard.
    const ObjectRef empty = Make(kTypeInt | kFlagVector);
    ASSERT_EQ(empty->GetBufferMSO(nullptr, &buffer), 0);
    static_cast<unsigned char*>(buffer)[0] = 1;
    EXPECT_EQ(empty->ReleaseBufferMSO(nullptr, buffer), 0);
    EXPECT_EQ(messages.Take(), "An Object has written beyond the requested size of 0 bytes\n");
    ASSERT_EQ(v->GetBufferMSO(nullptr, &buffer), 0);
    static_cast<unsigned char*>(buffer)[4] = 0;
  }
  EXPECT_EQ(v->ReleaseBufferMSO(nullptr, buffer), 0);
  EXPECT_EQ(messages.Take(), "") << "debug mode is over";

  // Outside debug mode the vector lends its own storage.
  ASSERT_EQ(v->GetBufferMSO(nullptr, &buffer), 0);
  EXPECT_EQ(buffer, v->GetArrayElement(nullptr, 0));
  EXPECT_EQ(v->ReleaseBufferMSO(nullptr, buffer), 0);
  const MSOINDICES bad = MSOINDICES::Object(3);
  EXPECT_EQ(v->GetBufferMSO(&bad, &buffer), status::kOutOfRange);
  EXPECT_EQ(v->GetBufferSize(nullptr), 8u);

  // As another type: a converted copy, which comes back converted.
  ASSERT_EQ(v->GetBufferMSOEx(nullptr, kTypeDouble, &buffer), 0);
  EXPECT_EQ(static_cast<double*>(buffer)[0], 8);
  static_cast<double*>(buffer)[1] = 1e9;
  EXPECT_EQ(v->ReleaseBufferMSO(nullptr, buffer), 0);
  EXPECT_EQ(ValuesOf<short>(v)[1], 32767);
  EXPECT_EQ(v->GetBufferMSOEx(nullptr, kTypeString, &buffer), status::kUnsupported);
  EXPECT_EQ(v->GetBufferMSOEx(nullptr, kTypeShort, nullptr), status::kBadArguments);
}

TEST(RuntimeClass, NamesTheClass) {
  const struct {
    unsigned type_word;
    const char* name;
  } cases[] = {{kTypeVectorBase, "TCAllVectorNonTemplBase"},
               {kTypeMatrixBase, "TCAllMatrixNonTemplBase"},
               {kTypeDouble, "TCNumericBase<double>"},
               {kTypeFloat | kFlagDataset, "TCOVectorBase<float>"},
               {kTypeComplex | kFlagDataset, "TCOlccomplexVector"},
               {kTypeInt | kFlagCurve, "TCCurve<int>"},
               {kTypeCategorical, "tcCategoricalData<int>"},
               {kTypeDouble | kFlagMatrixObject, "TCOMatrixBase<double>"}};
  for (const auto& c : cases) {
    EXPECT_STREQ(Make(c.type_word)->GetRuntimeClass()->m_lpszClassName, c.name);
  }
}

TEST(MemoryImage, FillsFromAnyAddress) {
  ForEachElementType([]<class T>() {
    SCOPED_TRACE(kElement<T>.name);
    const std::vector<T> elements = {ConvertValue<T>(1.5), ConvertValue<T>(-2.0)};
    std::vector<unsigned char> image(2 * sizeof(T) + 1);
    std::memcpy(image.data() + 1, elements.data(), 2 * sizeof(T));
    const ObjectRef v = ConvertedVector<T>({7});
    EXPECT_EQ(v->InitalizeFromMemory(image.data() + 1, 2), 0);
    EXPECT_TRUE(ValuesOf<T>(v) == elements);
    EXPECT_NE(v->InitalizeFromMemory(image.data(), -1), 0);
    EXPECT_NE(v->InitalizeFromMemory(nullptr, 1), 0);
    EXPECT_TRUE(ValuesOf<T>(v) == elements);
    void* address = nullptr;
    EXPECT_EQ(v->GetExternalData(&address), 0);
    EXPECT_EQ(std::memcmp(address, elements.data(), 2 * sizeof(T)), 0);
    const ObjectRef copy(v->CreateCopy());
    EXPECT_EQ(v->ResetValue(), 0);
    EXPECT_EQ(Call(v, "GetSize").Int(), 0);
    EXPECT_TRUE(ValuesOf<T>(copy) == elements) << "a copy has elements of its own";
    EXPECT_EQ(v->InitalizeFromMemory(nullptr, 0), 0);
  });
}

TEST(Exports, MinMaxWithoutACall) {
  const auto min_max =
      reinterpret_cast<decltype(&TCAllVectorsBase_GetMinMax)>(TheLibrary().GetExports().min_max);
  const ObjectRef rows = Make(kTypeDouble | kFlagVector, 2);
  CallAt(rows, MSOINDICES::Object(1), "CopyData", VectorOf<double>({kM, 3, 1, 1, 5}));
  const MSOINDICES second = MSOINDICES::Object(1), none = MSOINDICES::Object(2);
  double min = 0, max = 0;
  unsigned min_at = 0, max_at = 0;
  EXPECT_EQ(min_max(rows.Get(), &second, &min, &max, &min_at, &max_at), 4);
  EXPECT_EQ(min, 1);
  EXPECT_EQ(max, 5);
  EXPECT_EQ(min_at, 2u);
  EXPECT_EQ(max_at, 4u);
  EXPECT_EQ(min_max(rows.Get(), &second, nullptr, nullptr, nullptr, nullptr), 4);
  EXPECT_EQ(min_max(rows.Get(), nullptr, &min, &max, &min_at, &max_at), 0);
  EXPECT_EQ(min, kM);
  EXPECT_EQ(max_at, ~0u);
  EXPECT_EQ(min_max(rows.Get(), &none, &min, &max, nullptr, nullptr), -1);
  EXPECT_EQ(min_max(ScalarOf(1.0).Get(), nullptr, &min, &max, nullptr, nullptr), -1);
  EXPECT_EQ(min_max(nullptr, nullptr, &min, &max, nullptr, nullptr), -1);
}

TEST(Exports, RangesThatAreGoneAreRemoved) {
  const auto check =
      reinterpret_cast<decltype(&VectorSourceDataRangeHolder_CheckRemoveValidRangePtr)>(
          TheLibrary().GetExports().check_remove_range);
  const struct {
    int row, lower, upper;
    bool valid;
  } ranges[] = {
      {0, 0, 2, true},  {0, 1, 1, true},  {0, 0, 3, false},  {0, -1, 1, false},
      {0, 2, 1, false}, {1, 0, 0, false}, {-1, 0, 0, false}, {0, kMaxInt, kMaxInt, false},
  };
  for (const auto& range : ranges) {
    for (const int fate : {0, 1, 2}) {
      ObjectRef v = VectorOf<double>({1, 2, 3});
      auto* holder = new VectorSourceDataRangeHolder{v.Get(), v->GetCreationID(), range.row,
                                                     range.lower, range.upper};
      if (fate == 1) v = ObjectRef();               // the source dies
      if (fate == 2) ++holder->source_creation_id;  // another object at its address
      const bool valid = range.valid && fate == 0;
      EXPECT_EQ(check(&holder), valid ? 1 : 0);
      EXPECT_EQ(holder != nullptr, valid);
      delete holder;
    }
  }
  VectorSourceDataRangeHolder* none = nullptr;
  EXPECT_EQ(check(&none), 0);
  EXPECT_EQ(check(nullptr), 0);
}

}  // namespace
}  // namespace vela::testing
