#include <initializer_list>

#include "member_fixture.h"

namespace vela::testing {
namespace {

TEST(Factory, MakesTheTableAndNothingElse) {
  struct Case {
    unsigned type_word;
    bool exists;
  };
  std::vector<Case> cases;
  for (const unsigned word : std::initializer_list<unsigned>{
           13 | kFlagVector, 22, 22 | kFlagMatrixObject, 2, 2 | kFlagVector, 2 | kFlagDataset, 17,
           25, 19, 20, 27, 27 | kFlagVector, 28, 29, 42, 138}) {
    cases.push_back({word, true});
  }
  for (const unsigned word :
       std::initializer_list<unsigned>{0, 0x10000, 1, 7, 13, 13 | kFlagDataset, 21,
                                       22 | kFlagVector, 2 | kFlagMatrixObject, 189, 0xFFFF}) {
    cases.push_back({word, false});
  }
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
  EXPECT_EQ(power(2, 10), 1024);
  EXPECT_EQ(power(2, kMissingValue), kMissingValue);
  EXPECT_EQ(power(1e200, 2), kMissingValue);
}

}  // namespace
}  // namespace vela::testing
