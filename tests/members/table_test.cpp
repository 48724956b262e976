// The member tables and their chains.
#include <set>

#include "member_fixture.h"
#include "member_names.h"

namespace vela::testing {
namespace {

const CClassMember* FindRow(const ObjectRef& object, const std::string& name) {
  CTypeBase* owner = nullptr;
  return object->FindMember(name.c_str(), 0, &owner, 0);
}

struct Chain {
  unsigned type_word;
  std::vector<Names> tables;
};

std::vector<Chain> Chains() {
  std::vector<Chain> chains = {
      {kTypeString, {kStringNames}},
      {kTypeString | kFlagVector, {kStringArrayNames, kVectorNames}},
      {kTypeVariant, {kVariantNames}},
      {kTypeComplex, {kComplexNames}},
      {kTypeFile, {kFileNames}},
      {kTypeStdioFile, {kStdioNames, kFileNames}},
      {kTypeVectorBase, {kVectorNames}},
      {kTypeComplex | kFlagDataset,
       {kComplexDatasetNames, kDatasetNames, kTypedVectorNames, kVectorNames}},
      {kTypeCategorical, {kCategoricalNames, kDatasetNames, kTypedVectorNames, kVectorNames}},
      {kTypeMatrixBase, {kMatrixNames}},
      {kTypePicture, {kPictureNames}},
  };
  ForEachElementType([&]<class T>() {
    const unsigned id = kElement<T>.type_id;
    chains.push_back({id | kFlagVector, {kTypedVectorNames, kVectorNames}});
    if constexpr (DatasetElement<T>) {
      chains.push_back({id | kFlagMatrixObject, {kMatrixObjectNames, kMatrixNames}});
      if constexpr (!ComplexElement<T>) {
        chains.push_back({id | kFlagDataset, {kDatasetNames, kTypedVectorNames, kVectorNames}});
        chains.push_back(
            {id | kFlagCurve, {kCurveNames, kDatasetNames, kTypedVectorNames, kVectorNames}});
      }
    }
    if constexpr (PointElement<T>) chains.push_back({id, {kPointNames}});
  });
  return chains;
}

TEST(Tables, EveryChainHoldsItsRowsInOrder) {
  for (const Chain& chain : Chains()) {
    SCOPED_TRACE(chain.type_word);
    const ObjectRef object = Make(chain.type_word);
    ASSERT_TRUE(object);
    std::set<std::string> seen;
    for (const auto& table : chain.tables) {
      const CClassMember* previous = nullptr;
      for (const std::string& name : table) {
        // A name of an earlier table hides this row, and breaks the run of adjacent rows.
        const bool hidden = !seen.insert(name).second;
        const CClassMember* row = FindRow(object, name);
        ASSERT_NE(row, nullptr) << name;
        EXPECT_EQ(row->GetName(), name);
        if (hidden) {
          previous = nullptr;
          continue;
        }
        if (previous != nullptr) {
          EXPECT_EQ(row, previous + 1) << name;
        }
        previous = row;
      }
    }
    for (const char* unknown : {"", "getsize", "GetSize ", "NoSuchMember", "SetSize\n"}) {
      EXPECT_EQ(FindRow(object, unknown), nullptr) << unknown;
    }
  }
}

TEST(Tables, PropertiesAreTheNamedOnes) {
  const std::set<std::string> properties = {"vt", "m_re", "m_im", "x", "y"};
  for (const Chain& chain : Chains()) {
    const ObjectRef object = Make(chain.type_word);
    for (const auto& table : chain.tables) {
      for (const std::string& name : table) {
        EXPECT_EQ(FindRow(object, name)->IsProperty(), properties.contains(name)) << name;
      }
    }
  }
}

TEST(Tables, OwnRowHidesTheBaseRow) {
  const ObjectRef dataset = Make(kTypeDouble | kFlagDataset);
  const ObjectRef vector = Make(kTypeDouble | kFlagVector);
  EXPECT_NE(FindRow(dataset, "GetSize"), FindRow(vector, "GetSize"));
  EXPECT_EQ(FindRow(dataset, "Sum"), FindRow(vector, "Sum"));
}

}  // namespace
}  // namespace vela::testing
