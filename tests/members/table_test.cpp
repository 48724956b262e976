// The member tables, their chains, and that no member can be crashed by the shape of its call.
#include <filesystem>
#include <functional>
#include <map>
#include <set>

#include "member_fixture.h"

namespace vela::testing {
namespace {

const std::vector<const char*> kVectorNames = {"SetSize",
                                               "GetSize",
                                               "Append",
                                               "Sort",
                                               "Reorder",
                                               "Sum",
                                               "GetMinMax",
                                               "Difference",
                                               "FrequencyCount",
                                               "GetBytes",
                                               "SetBytes",
                                               "GetParleyVectorValue",
                                               "SetParleyVectorValue",
                                               "GetInternalDataType",
                                               "Data",
                                               "Uniform",
                                               "Normal",
                                               "Wrap",
                                               "IsValid",
                                               "GetSubVector",
                                               "SetSubVector",
                                               "SetUpperBound",
                                               "SetLowerBound",
                                               "GetDataAsOneDimensionalArray",
                                               "GetAs1DArray",
                                               "Find",
                                               "GetAs2DArray",
                                               "Average",
                                               "GetReal",
                                               "GetImaginary",
                                               "GetAmplitude",
                                               "GetPhase",
                                               "Conjugate",
                                               "MakeComplex",
                                               "GetUpperBound",
                                               "GetLowerBound",
                                               "RemoveAll",
                                               "GetSourceRange",
                                               "HasX",
                                               "AttachX",
                                               "GetRectPoints",
                                               "GetName",
                                               "Update",
                                               "TrimLeft",
                                               "TrimRight",
                                               "Trim",
                                               "CopyX",
                                               "CopyData",
                                               "Replace",
                                               "UpdateRowColRanges",
                                               "InsertValue",
                                               "GetSourceDataRange",
                                               "GetOutputComment",
                                               "SetOutputComment",
                                               "Abs",
                                               "CopySourceDataRange",
                                               "Pattern",
                                               "Merge",
                                               "Product"};
const std::vector<const char*> kTypedVectorNames = {"GetDataAsOneDimensionalArrayOfVariants", "Add",
                                                    "SetAtGrow", "InsertAt", "RemoveAt"};
const std::vector<const char*> kStringNames = {
    "Delete",         "Write",         "WriteLine",
    "Format",         "GetLength",     "TrimLeft",
    "TrimRight",      "Left",          "Right",
    "CompareNoCase",  "Compare",       "Find",
    "ReverseFind",    "Insert",        "MakeLower",
    "MakeUpper",      "Mid",           "GetAt",
    "SetAt",          "GetToken",      "GetNumTokens",
    "GetTokens",      "SetTokens",     "FindToken",
    "MakeValidCName", "IsEmpty",       "Empty",
    "SpanIncluding",  "SpanExcluding", "Replace",
    "Remove",         "FindOneOf",     "GetBufferSetLength",
    "GetBuffer",      "ReleaseBuffer", "FreeExtra",
    "LockBuffer",     "UnlockBuffer",  "Match",
    "IsPath",         "IsFile",        "GetBytes",
    "SetBytes",       "Count",         "SetUTF16",
    "Shorten"};
const std::vector<const char*> kFileNames = {
    "Open",      "Close",       "Seek",        "SeekToBegin",  "SeekToEnd",
    "Write",     "Read",        "GetPosition", "GetLastError", "Rename",
    "Remove",    "Flush",       "GetHandle",   "ReadInt",      "WriteInt",
    "ReadFloat", "WriteFloat",  "IsOpen",      "GetLength",    "SetWriteEncoding",
    "WriteBOM",  "DetectEncode"};
const std::vector<const char*> kStdioNames = {
    "Open",           "Close", "Seek",        "SeekToBegin",  "SeekToEnd",
    "Write",          "Read",  "GetPosition", "GetLastError", "Rename",
    "Remove",         "Flush", "WriteString", "ReadString",   "CheckUniCodeBOM",
    "SetUniCodeType", "Scan"};
const std::vector<const char*> kDatasetNames = {
    "Attach",  "Detach",   "SetText",   "GetText", "GetStringArray", "PutStringArray",
    "GetMask", "SetMask",  "GetName",   "Append",  "Update",         "Create",
    "Destroy", "TrimLeft", "TrimRight", "GetSize", "PushUndo"};
const std::vector<const char*> kCurveNames = {"HasX",          "AttachX",    "Attach",       "Sort",
                                              "GetRectPoints", "SetXBounds", "ConstructInit"};
const std::vector<const char*> kMatrixNames = {"SetSize",
                                               "GetNumRows",
                                               "GetNumCols",
                                               "ApplyFilter",
                                               "MedianFilter",
                                               "FlipHorizontal",
                                               "Rotate",
                                               "FlipVertical",
                                               "ReplaceGreaterThan",
                                               "ReplaceLessThan",
                                               "SetColumn",
                                               "GetColumn",
                                               "SetRow",
                                               "GetRow",
                                               "Reorder",
                                               "Transpose",
                                               "GetAsVector",
                                               "SetByVector",
                                               "DotMultiply",
                                               "DotDivide",
                                               "DotPower",
                                               "Sort",
                                               "GetMax",
                                               "GetMin",
                                               "GetMedian",
                                               "GetMean",
                                               "RemoveEmptyRows",
                                               "Shrink",
                                               "GetSubMatrix",
                                               "SetSubMatrix",
                                               "CopyTo",
                                               "CopyFrom",
                                               "ImDilate",
                                               "ImErode",
                                               "ImOpen",
                                               "ImClose",
                                               "Replace",
                                               "CopyFromWks",
                                               "GetReal",
                                               "GetImaginary",
                                               "GetPhase",
                                               "GetAmplitude",
                                               "Inverse",
                                               "Conjugate",
                                               "MakeComplex",
                                               "SumColumns",
                                               "Concatenate",
                                               "FFTShift",
                                               "IFFTShift",
                                               "FreqFilter",
                                               "DuplicateBlock",
                                               "GetLowerTriangular",
                                               "GetUpperTriangular",
                                               "MakeIdentity",
                                               "CastToInteger",
                                               "CastToDouble",
                                               "GetDiagonal",
                                               "SetDiagonal",
                                               "Ceil",
                                               "Floor",
                                               "Fix",
                                               "Round",
                                               "AllNonZero",
                                               "AnyNonZero",
                                               "Cross",
                                               "Difference",
                                               "CumulativeSum",
                                               "CumulativeProduct",
                                               "Padding",
                                               "GetAs2DArray",
                                               "SetByArrayInVariant",
                                               "PutRecordset",
                                               "NANtoValue",
                                               "Wrap",
                                               "Find",
                                               "GetSourceDim",
                                               "ReorderRowWise",
                                               "ReorderColWise",
                                               "GetInternalDataType"};
const std::vector<const char*> kMatrixObjectNames = {"Attach",
                                                     "Detach",
                                                     "GetXMin",
                                                     "GetYMin",
                                                     "GetXMax",
                                                     "GetYMax",
                                                     "SetXMin",
                                                     "SetYMin",
                                                     "SetXMax",
                                                     "SetYMax",
                                                     "IsValid",
                                                     "Update",
                                                     "GetXValue",
                                                     "GetYValue",
                                                     "SetCellValue",
                                                     "GetCellValue",
                                                     "SetZRangeUpdate",
                                                     "SetZRange",
                                                     "GetZRange",
                                                     "GetName",
                                                     "ImageLinesProfile",
                                                     "GetInterpolatedValue"};

const CClassMember* FindRow(const ObjectRef& object, const char* name) {
  CTypeBase* owner = nullptr;
  return object->FindMember(name, 0, &owner, 0);
}

struct Chain {
  unsigned type_word;
  std::vector<std::vector<const char*>> tables;
};

std::vector<Chain> Chains() {
  std::vector<Chain> chains = {
      {kTypeString, {kStringNames}},
      {kTypeString | kFlagVector,
       {{"Add", "SetAtGrow", "InsertAt", "RemoveAt", "FindDuplicates"}, kVectorNames}},
      {kTypeVariant,
       {{"vt", "GetSubVariant", "CreateAsArray", "SetOneVariantInArray", "GetNumDimensions",
         "GetSize", "SetHWND"}}},
      {kTypeComplex, {{"Conjugate", "m_re", "m_im", "GetPhase", "GetAmplitude"}}},
      {kTypeFile, {kFileNames}},
      {kTypeStdioFile, {kStdioNames, kFileNames}},
      {kTypeVectorBase, {kVectorNames}},
      {kTypeComplex | kFlagDataset,
       {{"Attach", "Create"}, kDatasetNames, kTypedVectorNames, kVectorNames}},
      {kTypeCategorical,
       {{"Attach", "Map", "Group"}, kDatasetNames, kTypedVectorNames, kVectorNames}},
      {kTypeMatrixBase, {kMatrixNames}},
      {kTypePicture,
       {{"CreateFromBitmap", "CreateFromMetafile", "CreateFromEnhMetafile", "CreateFromIcon",
         "Render", "Load", "GetWidth", "GetHeight"}}},
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
    if constexpr (PointElement<T>) chains.push_back({id, {{"x", "y", "z"}}});
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
      for (const char* name : table) {
        // A name of an earlier table hides this row, and breaks the run of adjacent rows.
        const bool hidden = !seen.insert(name).second;
        const CClassMember* row = FindRow(object, name);
        ASSERT_NE(row, nullptr) << name;
        EXPECT_STREQ(row->GetName(), name);
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
      for (const char* name : table) {
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

// Every member of every table, on every kind of object, with calls of every wrong shape.
TEST(Tables, NoCallShapeCrashes) {
  // Some of the calls open files by odd names.
  const auto folder = std::filesystem::temp_directory_path() / "vela_call_shapes";
  std::filesystem::create_directories(folder);
  const auto before = std::filesystem::current_path();
  std::filesystem::current_path(folder);
  const ObjectRef target = VectorOf<double>({1, 2, 3});
  const std::vector<std::function<void(CallFrame&)>> shapes = {
      [](CallFrame&) {},
      [](CallFrame& f) { f.AddNull(); },
      [](CallFrame& f) {
        for (int i = 0; i < 12; ++i) f.AddInt(i - 3);
      },
      [](CallFrame& f) {
        for (int i = 0; i < 4; ++i) f.AddNull();
      },
      [](CallFrame& f) { f.AddText("text"); },
      [](CallFrame& f) {
        f.AddText("a");
        f.AddText("b");
        f.AddInt(-5);
      },
      [](CallFrame& f) {
        f.AddInt(INT32_MIN);
        f.AddInt(INT32_MAX);
      },
      [](CallFrame& f) {
        f.AddDouble(1e300);
        f.AddDouble(-1e300);
        f.AddDouble(std::nan(""));
      },
      [&](CallFrame& f) { f.AddObject(target.Get()); },
      [&](CallFrame& f) {
        f.AddObject(target.Get());
        f.AddObject(target.Get());
        f.AddInt(1);
      },
      [&](CallFrame& f) {
        f.AddObject(target.Get());
        f.AddInt(-1);
        f.AddInt(INT32_MAX);
      },
      [&](CallFrame& f) {
        f.AddObject(target.Get());
        for (int i = 0; i < 6; ++i) f.AddDouble(i);
      },
      [&](CallFrame& f) {
        f.AddInt(1);
        f.AddInt(1);
        f.AddObject(target.Get());
        f.AddInt(0);
      },
  };
  const MSOINDICES places[] = {
      {}, MSOINDICES::Object(0), MSOINDICES::Object(99), MSOINDICES::Object(-7), {6, 1, 1, 1}};
  for (const Chain& chain : Chains()) {
    for (const auto& table : chain.tables) {
      for (const char* name : table) {
        const ObjectRef object = Make(chain.type_word, 2);
        CTypeBase* owner = nullptr;
        const CClassMember* row = object->FindMember(name, 0, &owner, 0);
        ASSERT_NE(row, nullptr);
        owner->DoMethod(row->GetHandler(), nullptr);
        if (row->IsProperty()) {
          EXPECT_NE(owner->DoMethod(row->GetHandler(), nullptr), 0);
        }
        for (const auto& shape : shapes) {
          for (const MSOINDICES& place : places) {
            CallFrame frame;
            frame.GetIndeces() = place;
            shape(frame);
            owner->DoMethod(row->GetHandler(), &frame);
          }
        }
      }
    }
  }
  std::filesystem::current_path(before);
  std::filesystem::remove_all(folder);
  SUCCEED() << "reaching here without a sanitizer report is the result";
}

}  // namespace
}  // namespace vela::testing
