#include <cmath>
#include <limits>

#include "member_fixture.h"

namespace vela::testing {
namespace {

TEST(Factory, MakesTheTableAndNothingElse) {
  struct Case {
    unsigned type_word;
    bool exists;
  };
  std::vector<Case> cases = {{0, false},
                             {0x10000, false},
                             {1, false},
                             {7, false},
                             {13, false},
                             {13 | kFlagVector, true},
                             {13 | kFlagDataset, false},
                             {21, false},
                             {22, true},
                             {22 | kFlagVector, false},
                             {22 | kFlagMatrixObject, true},
                             {2, true},
                             {2 | kFlagVector, true},
                             {2 | kFlagDataset, true},
                             {2 | kFlagMatrixObject, false},
                             {17, true},
                             {25, true},
                             {19, true},
                             {20, true},
                             {27, true},
                             {27 | kFlagVector, true},
                             {28, true},
                             {29, true},
                             {42, true},
                             {138, true},
                             {189, false},
                             {0xFFFF, false}};
  ForEachElementType([&]<class T>() {
    const unsigned id = kElement<T>.type_id;
    cases.push_back({id, true});
    cases.push_back({id | kFlagVector, true});
    cases.push_back({id | kFlagDataset, DatasetElement<T>});
    cases.push_back({id | kFlagCurve, DatasetElement<T> && !ComplexElement<T>});
    cases.push_back({id | kFlagBitField, DatasetElement<T> && IntegerElement<T>});
    cases.push_back({id | kFlagMatrixObject, DatasetElement<T>});
  });
  for (const Case& c : cases) {
    const ObjectRef object = Make(c.type_word, 3);
    EXPECT_EQ(static_cast<bool>(object), c.exists) << std::hex << c.type_word;
    if (!object) continue;
    EXPECT_EQ(object->GetExternalData(nullptr), status::kBadArguments) << std::hex << c.type_word;
    EXPECT_EQ(object->GetBufferMSO(nullptr, nullptr), status::kBadArguments) << c.type_word;
    EXPECT_STRNE(object->GetRuntimeClass()->m_lpszClassName, "CPLBase") << c.type_word;
  }
}

TEST(Factory, TypeWordsJoinTheContainerFlag) {
  const std::pair<unsigned, unsigned> cases[] = {
      {kTypeDouble, kTypeDouble},
      {kTypeDouble | kFlagVector, kTypeDouble | kFlagVector},
      {kTypeInt | kFlagVector | kFlagDataset, kTypeInt | kFlagDataset},
      {kTypeInt | kFlagCurve, kTypeInt | kFlagCurve},
      {kTypeCategorical, kTypeCategorical | kFlagCategorical},
      {kTypeShort | kFlagBitField, kTypeShort | kFlagBitField},
      {kTypeDouble | kFlagMatrixObject, kTypeDouble | kFlagMatrixObject}};
  for (const auto& [asked, got] : cases) EXPECT_EQ(Make(asked, 1)->GetTypeID(), got);
}

TEST(Factory, ReportsThroughTheHooks) {
  static int reports;
  reports = 0;
  const auto& exports = TheLibrary().GetExports();
  // Configure installed the host's own hook first, so this one must not replace it.
  ErrorReportCallback second = [](ErrorReport*, void**) { ++reports; };
  EXPECT_EQ(
      exports.create_object(0, reinterpret_cast<void**>(second), 0, factory_mode::kSetErrorReport),
      0u);
  EXPECT_EQ(reports, 0);
  host::Library::TakeErrorReport();

  CallFrame frame;
  frame.AddInt(5);  // no vector to copy from
  const ObjectRef vector(TheLibrary().Create(kTypeDouble | kFlagVector, 0, &frame));
  ASSERT_TRUE(vector) << "the object is returned all the same";
  EXPECT_EQ(host::Library::TakeErrorReport(), status::kReportBadInitialiser);
}

TEST(Factory, InitialisesFromAnArgument) {
  const ObjectRef source = VectorOf<int>({1, 2, 3});
  CallFrame frame;
  frame.AddObject(source.Get());
  const ObjectRef copy(TheLibrary().Create(kTypeDouble | kFlagVector, 0, &frame));
  EXPECT_EQ(ValuesOf<double>(copy), (std::vector<double>{1, 2, 3}));
  CallFrame number;
  number.AddDouble(2.75);
  EXPECT_EQ(ValueOf<int>(ObjectRef(TheLibrary().Create(kTypeInt, 0, &number))), 2);
  EXPECT_EQ(ValueOf<double>(ObjectRef(TheLibrary().Create(kTypeDouble, 0, &number))), 2.75);
}

TEST(Factory, DestroysMultiDimensionalObjects) {
  const auto destroy = TheLibrary().GetExports().create_multi_dimensional;
  MDObjectRecord record{TheLibrary().Create(kTypeDouble)};
  const unsigned live = CScriptVelaObject::GetLiveObjectCount();
  EXPECT_EQ(destroy(0, &record), 0u);
  EXPECT_EQ(record.object, nullptr);
  EXPECT_EQ(CScriptVelaObject::GetLiveObjectCount(), live - 1);
  EXPECT_EQ(destroy(0, &record), 1u);
  EXPECT_EQ(destroy(0, nullptr), 1u);
}

TEST(Exports, SafePower) {
  const auto power = TheLibrary().GetExports().power;
  const struct {
    double x, y, expected;
  } cases[] = {{2, 10, 1024},
               {kMissingValue, 2, kMissingValue},
               {2, kMissingValue, kMissingValue},
               {-8, 1.0 / 3, kMissingValue},
               {0, -1, kMissingValue},
               {1e200, 2, kMissingValue},
               {1e-200, 2, 0},
               {0, 0, 1},
               {std::numeric_limits<double>::infinity(), 2, kMissingValue},
               {-2, 3, -8}};
  for (const auto& c : cases) EXPECT_EQ(power(c.x, c.y), c.expected) << c.x << "^" << c.y;
}

}  // namespace
}  // namespace vela::testing
