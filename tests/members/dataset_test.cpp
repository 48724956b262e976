// Vectors that are attached to columns of the host.
#include <memory>

#include "frame/interface/data_source.h"
#include "host/data/worksheets.h"
#include "vector_fixture.h"

namespace vela::testing {
namespace {

using host::Worksheets;

unsigned Dataset(unsigned type_id) { return type_id | kFlagDataset; }

// A column of another making: every other element of a buffer, and no room for more.
class Strided final : public VeData {
 public:
  explicit Strided(Doubles values) : values_(std::move(values)) {}
  CStringUTF8 GetName() const override { return "strided"; }
  unsigned GetElementType() const override { return kTypeDouble; }
  std::int64_t GetSize() const override { return static_cast<std::int64_t>(values_.size() / 2); }
  bool SetSize(std::int64_t) override { return false; }
  void ReadNumbers(std::int64_t first, std::int64_t count, double* to) override {
    for (std::int64_t i = 0; i < count; ++i) to[i] = At(first + i);
  }
  bool WriteNumbers(std::int64_t first, std::int64_t count, const double* from) override {
    for (std::int64_t i = 0; i < count; ++i) At(first + i) = from[i];
    return true;
  }
  void OnChange(std::int64_t, std::int64_t) override { ++changes; }
  int changes = 0;

 private:
  double& At(std::int64_t row) { return values_[static_cast<std::size_t>(2 * row)]; }
  Doubles values_;
};

// A host that has one column under any name.
class OneColumn final : public VeDataSources {
 public:
  explicit OneColumn(VeData* column) : column_(column) { Install(this); }
  ~OneColumn() override { Install(nullptr); }
  VeData* FindData(const char*, const char*) override { return column_; }
  VeData* FindData(const char*, int) override { return column_; }
  VeData* CreateData(const char*, const char*, unsigned, std::int64_t) override { return nullptr; }

 private:
  VeData* column_;
};

class DatasetTest : public ::testing::Test {
 protected:
  ~DatasetTest() override { Worksheets::Close("b"); }

  // A column of the book "b".
  static VeData& Column(const char* name, unsigned type_id, const Doubles& values) {
    VeData* const data = VeDataSources::Get().CreateData("b", name, type_id,
                                                         static_cast<std::int64_t>(values.size()));
    for (std::size_t i = 0; i < values.size(); ++i) {
      char text[VELAObj::kRealTextSize];
      VELAObj::RealToString(values[i], text, nullptr);
      data->SetText(static_cast<std::int64_t>(i), text);
    }
    return *data;
  }
  static ObjectRef Attached(const char* name, unsigned type_id = kTypeDouble) {
    ObjectRef dataset = Make(Dataset(type_id));
    EXPECT_EQ(Call(dataset, "Attach", "b", name).Int(), 1) << name;
    return dataset;
  }
};

TEST_F(DatasetTest, AttachesToColumnsWhoseValuesItHolds) {
  const struct {
    unsigned column;
    const char* held_by;  // char uchar short ushort int uint float double complex
  } kCases[] = {{kTypeChar, "101010110"},    {kTypeUnsignedChar, "011111110"},
                {kTypeShort, "001010110"},   {kTypeUnsignedShort, "000111110"},
                {kTypeInt, "000010010"},     {kTypeUnsignedInt, "000001010"},
                {kTypeFloat, "000000110"},   {kTypeDouble, "000000010"},
                {kTypeComplex, "000000001"}, {kTypeString, "000000010"},
                {kTypeVariant, "000000010"}};
  const unsigned elements[] = {kTypeChar,          kTypeUnsignedChar, kTypeShort,
                               kTypeUnsignedShort, kTypeInt,          kTypeUnsignedInt,
                               kTypeFloat,         kTypeDouble,       kTypeComplex};
  for (const auto& test : kCases) {
    VeData& column = Column("c", test.column, {1});
    for (std::size_t i = 0; i < std::size(elements); ++i) {
      const ObjectRef dataset = Make(Dataset(elements[i]));
      EXPECT_EQ(Call(dataset, "Attach", "b", "c").Int(), test.held_by[i] - '0')
          << test.column << " " << elements[i];
    }
    column.Remove();
  }
}

TEST_F(DatasetTest, NamesColumnsInEveryWay) {
  Column("x", kTypeDouble, {1, 2});
  Column("y", kTypeDouble, {3});
  const ObjectRef dataset = Attached("y"), name = Make(kTypeString), other = Make(Dataset(11));
  EXPECT_EQ(Call(dataset, "GetName", name).Int(), 0);
  EXPECT_EQ(TextOf(name), "[b]y");
  EXPECT_EQ(Call(other, "Attach", "[b]x").Int(), 1);
  EXPECT_EQ(Call(other, "Attach", dataset).Int(), 1);
  ExpectValues(other, {3});
  EXPECT_EQ(Call(other, "Attach", "b", 0).Int(), 1);
  // What cannot be found leaves the binding as it was.
  for (const char* wrong : {"", "x", "[b", "[b]z", "[c]x"}) {
    EXPECT_EQ(Call(other, "Attach", wrong).Int(), 0) << wrong;
  }
  for (const int wrong : {-1, 2}) EXPECT_EQ(Call(other, "Attach", "b", wrong).Int(), 0);
  EXPECT_EQ(Call(other, "Attach", VectorOf<double>({1})).Int(), 0);
  ExpectValues(other, {1, 2});
  EXPECT_EQ(CallAt(other, MSOINDICES::Object(1), "Detach").status, status::kOutOfRange);
  EXPECT_EQ(Call(other, "Detach").Int(), 1);
  EXPECT_EQ(Call(other, "Detach").Int(), 0);
  EXPECT_EQ(Call(other, "IsValid").Int(), 0);
  EXPECT_EQ(Call(other, "SetText", 0, "1").status, status::kFailed);
  EXPECT_EQ(Call(other, "SetSize", 3).status, status::kFailed);
}

// A column of doubles lends its buffer, one of ints is converted, and one of another making is
// read and written through the host's own functions.
TEST_F(DatasetTest, MembersDoAsOnPlainVectors) {
  const Doubles values = {3, 1, 4, 1, 5, 9};
  const struct {
    const char* member;
    int (*call)(const ObjectRef&);
    bool resizes;
  } kCases[] = {
      {"Sum",
       [](const ObjectRef& v) {
         const ObjectRef sum = Make(kTypeDouble);
         Call(v, "Sum", sum);
         return static_cast<int>(ValueOf<double>(sum));
       },
       false},
      {"Sort", [](const ObjectRef& v) { return Call(v, "Sort", 1, 1, Null(), 0).Int(); }, false},
      {"Reorder",
       [](const ObjectRef& v) {
         return Call(v, "Reorder", VectorOf<unsigned>({5, 4, 3, 2, 1, 0})).Int();
       },
       false},
      {"Wrap", [](const ObjectRef& v) { return Call(v, "Wrap", 2).Int(); }, false},
      {"Replace", [](const ObjectRef& v) { return Call(v, "Replace", 1, 7).Int(); }, false},
      {"SetSubVector", [](const ObjectRef& v) { return Call(v, "SetSubVector", v, 2).Int(); },
       false},
      {"Add", [](const ObjectRef& v) { return Call(v, "Add", 2).Int(); }, true},
      {"RemoveAt", [](const ObjectRef& v) { return Call(v, "RemoveAt", 1, 2).Int(); }, true},
      {"Append", [](const ObjectRef& v) { return Call(v, "Append", v).Int(); }, true},
      {"GetSubVector", [](const ObjectRef& v) { return Call(v, "GetSubVector", v, 1, 3).Int(); },
       true},
      {"Data", [](const ObjectRef& v) { return Call(v, "Data", 1, 9, 2).Int(); }, true},
      {"operator *=",
       [](const ObjectRef& v) {
         return v->Operate2(nullptr, operation::kMultiply, tagMSOOBJVECT(v.Get(), v->GetTypeID()),
                            0);
       },
       false},
  };
  for (const auto& test : kCases) {
    Column("double", kTypeDouble, values);
    Column("int", kTypeInt, values);
    const ObjectRef plain = VectorOf<double>(values);
    const int expected = test.call(plain);
    for (const char* name : {"double", "int"}) {
      const ObjectRef dataset = Attached(name);
      EXPECT_EQ(test.call(dataset), expected) << test.member << " " << name;
      ExpectValues(dataset, ValuesOf<double>(plain));
    }
    Worksheets::Close("b");
    if (test.resizes) continue;
    const VeRef<Strided> strided(new Strided({3, 0, 1, 0, 4, 0, 1, 0, 5, 0, 9, 0}));
    const OneColumn host(strided.Get());
    const ObjectRef dataset = Attached("strided");
    EXPECT_EQ(test.call(dataset), expected) << test.member;
    ExpectValues(dataset, ValuesOf<double>(plain));
    EXPECT_EQ(strided->changes > 0, test.member != std::string("Sum"));
    EXPECT_EQ(Call(dataset, "GetBytes", VectorOf<unsigned char>({})).status,
              status::kNotContiguous);
    EXPECT_EQ(Call(dataset, "SetSize", 9).status, status::kCannotResize);
  }
}

TEST_F(DatasetTest, SortsMissingValuesAsTheNumbersTheyAre) {
  Column("x", kTypeDouble, {2, kM, -1});
  const ObjectRef dataset = Attached("x");
  EXPECT_EQ(Call(dataset, "Sort", 1, 1, Null(), 0).Int(), 1);
  ExpectValues(dataset, {-1, kM, 2});
}

TEST_F(DatasetTest, TwoOnOneColumnAreOneRow) {
  Column("x", kTypeFloat, {1, 2, 3, 4});
  const ObjectRef floats = Attached("x", kTypeFloat), doubles = Attached("x");
  EXPECT_EQ(Call(floats, "GetSubVector", doubles, 1, 2).Int(), 0);
  ExpectValues(doubles, {2, 3});
  EXPECT_EQ(Call(doubles, "Append", floats).Int(), 1);
  ExpectValues(doubles, {2, 3, 2, 3});
  EXPECT_EQ(Call(floats, "Sort", 1, 1, doubles, 0).status, status::kBadArguments);
  EXPECT_EQ(Call(floats, "CopyData", doubles).Int(), 0);
  EXPECT_EQ(Call(floats, "Average", doubles, 1, 0).Int(), 0);
  EXPECT_EQ(Call(floats, "Merge", doubles).Int(), 0);
  ExpectValues(doubles, {2, 3, 2, 3});
}

TEST_F(DatasetTest, StaleBindingsAnswerSo) {
  Column("x", kTypeDouble, {1, 2, 3});
  Column("y", kTypeDouble, {1, 2, 3});
  for (const bool by_script : {true, false}) {
    const ObjectRef dataset = Attached(by_script ? "x" : "y"), text = Make(kTypeString);
    if (by_script) {
      const ObjectRef other = Attached("x");
      EXPECT_EQ(Call(other, "Destroy").Int(), 1);
      EXPECT_EQ(Call(other, "GetSize").Int(), 0);
    } else {
      EXPECT_TRUE(Worksheets::Close("b"));
    }
    const ObjectRef plain = VectorOf<double>({1}), total = Make(kTypeDouble);
    const int statuses[] = {
        Call(dataset, "GetSize").status,
        Call(dataset, "Sum", total).status,
        Call(dataset, "SetSize", 2).status,
        Call(dataset, "Append", plain).status,
        Call(plain, "Append", dataset).status,
        Call(plain, "CopyData", dataset).status,
        Call(dataset, "SetText", 0, "1").status,
        Call(dataset, "Update").status,
        Call(dataset, "GetName", text).status,
        Call(dataset, "PushUndo").status,
        Call(dataset, "SetLowerBound", 0).status,
        dataset->SetDouble(nullptr, 1),
        plain->Operate2(nullptr, operation::kAdd, {dataset.Get(), dataset->GetTypeID()}, 0),
        dataset->Operate2(nullptr, operation::kAssign, {plain.Get(), plain->GetTypeID()}, 0)};
    for (const int status : statuses) EXPECT_EQ(status, status::kNoRow);
    EXPECT_EQ(dataset->GetArrayElement(nullptr, 0), nullptr);
    EXPECT_EQ(Call(dataset, "IsValid").Int(), 0);
    const ObjectRef copy(dataset->CreateCopy());
    EXPECT_EQ(Call(copy, "GetSize").Int(), 0);
    EXPECT_EQ(Call(dataset, "Create", 2).Int(), 1);
    ExpectValues(dataset, {kM, kM});
  }
}

TEST_F(DatasetTest, FollowsWhatTheHostDoes) {
  VeData& column = Column("x", kTypeDouble, {1, 2, 3});
  const ObjectRef dataset = Attached("x");
  const MSOINDICES third = MSOINDICES::Element(2);
  double value = 0;
  EXPECT_TRUE(column.SetSize(2));
  EXPECT_EQ(dataset->GetDouble(&third, value), status::kOutOfRange);
  EXPECT_TRUE(column.SetSize(100000));
  EXPECT_EQ(Call(dataset, "GetSize").Int(), 100000);
  EXPECT_FALSE(column.SetSize(-1));
  EXPECT_FALSE(column.SetSize(std::int64_t{1} << 40));
  EXPECT_EQ(Call(dataset, "SetSize", -1).status, status::kCannotResize);
  EXPECT_EQ(Call(dataset, "SetUpperBound", 3).Int(), 1);
  EXPECT_EQ(Call(dataset, "SetLowerBound", 5).Int(), 0);
  EXPECT_EQ(Call(dataset, "SetLowerBound", 1).Int(), 1);
  EXPECT_EQ(Call(dataset, "GetLowerBound").Int(), 1);
  ExpectValues(dataset, {1, 2, kM, kM});
  EXPECT_EQ(Call(dataset, "TrimRight", 1).Int(), 2);
  EXPECT_EQ(Call(dataset, "SetUpperBound", -2).Int(), 0);
  // Assignment takes the bounds along.
  const ObjectRef plain = VectorOf<double>({});
  EXPECT_EQ(plain->Operate2(nullptr, operation::kAssign, {dataset.Get(), 0}, 0), 0);
  EXPECT_EQ(Call(plain, "GetLowerBound").Int(), 1);
  column.SetLowerBound(0);
  EXPECT_EQ(dataset->Operate2(nullptr, operation::kAssign, {plain.Get(), 0}, 0), 0);
  EXPECT_EQ(column.GetLowerBound(), 1);
  ExpectValues(dataset, {1, 2});
}

TEST_F(DatasetTest, KeepsTextsFromNumbers) {
  for (const unsigned type : {kTypeString, kTypeVariant}) {
    VeData& column = Column("t", type, {0, 0, 0});
    column.SetText(0, "b");
    column.SetText(1, " 2.5 ");
    column.SetText(2, "");
    const ObjectRef dataset = Attached("t"), text = Make(kTypeString);
    const ObjectRef texts = Make(kTypeString | kFlagVector);
    ExpectValues(dataset, {kM, 2.5, kM});
    EXPECT_EQ(Call(dataset, "Sort", 1, 1, Null(), 0).status, status::kUnsupported);
    EXPECT_EQ(Call(dataset, "Abs").status, status::kUnsupported);
    const MSOINDICES second = MSOINDICES::Element(1);
    EXPECT_EQ(dataset->SetDouble(&second, -0.125), 0);
    EXPECT_EQ(Call(dataset, "GetText", 0, text).Int(), 1);
    EXPECT_EQ(TextOf(text), "b");
    EXPECT_EQ(Call(dataset, "GetText", 2, text).Int(), 0);
    EXPECT_EQ(Call(dataset, "GetText", 3, text).status, status::kOutOfRange);
    EXPECT_EQ(Call(dataset, "SetText", -1, "x").status, status::kOutOfRange);
    EXPECT_EQ(Call(dataset, "GetStringArray", texts).Int(), 3);
    EXPECT_EQ(TextOf(texts, &second), "-0.125");
    const ObjectRef numbers = Make(Dataset(kTypeInt));
    EXPECT_EQ(Call(numbers, "Create", 0).Int(), 1);
    EXPECT_EQ(Call(numbers, "PutStringArray", texts).Int(), 3);
    EXPECT_EQ(ValuesOf<int>(numbers), (std::vector<int>{0, 0, 0}));
    EXPECT_EQ(Call(numbers, "GetStringArray", VectorOf<int>({})).status, status::kBadArguments);
    column.Remove();
  }
}

TEST_F(DatasetTest, MasksAndUndoes) {
  Column("x", kTypeInt, {1, 2, 3});
  const ObjectRef dataset = Attached("x", kTypeInt), mask = VectorOf<double>({kM, 1});
  EXPECT_EQ(Call(dataset, "SetMask", mask).Int(), 1);
  EXPECT_EQ(Call(dataset, "GetMask", mask).Int(), 1);
  ExpectValues(mask, {0, 1, 0});
  EXPECT_EQ(Call(dataset, "GetMask", dataset).status, status::kBadArguments);
  EXPECT_EQ(Call(dataset, "PushUndo").Int(), 1);
  EXPECT_EQ(Call(dataset, "RemoveAll").Int(), 1);
  EXPECT_EQ(Call(dataset, "GetMask", mask).Int(), 0);
  EXPECT_TRUE(Worksheets::Find("b")->Undo());
  EXPECT_FALSE(Worksheets::Find("b")->Undo());
  EXPECT_EQ(ValuesOf<int>(dataset), (std::vector<int>{1, 2, 3}));
  EXPECT_EQ(Call(dataset, "GetMask", mask).Int(), 1);
  // A copy has data of its own.
  const ObjectRef copy(dataset->CreateCopy()), name = Make(kTypeString);
  EXPECT_EQ(Call(copy, "RemoveAt", 0, 1).Int(), 1);
  EXPECT_EQ(Call(copy, "GetName", name).Int(), 0);
  EXPECT_EQ(TextOf(name), "");
  EXPECT_EQ(ValuesOf<int>(dataset).size(), 3u);
}

TEST_F(DatasetTest, CreatesColumns) {
  const ObjectRef dataset = Make(Dataset(kTypeComplex)), again = Make(Dataset(kTypeDouble));
  EXPECT_EQ(Call(dataset, "Create", "b", "z", 2).Int(), 1);
  EXPECT_EQ(Call(again, "Create", "b", "z").Int(), 0);
  EXPECT_EQ(Call(again, "Create", "b]", "z").Int(), 0);
  EXPECT_EQ(Call(again, "Create", "b", "").Int(), 0);
  EXPECT_EQ(Call(again, "Create", "b", "w", -1).status, status::kOutOfRange);
  Worksheets::Find("b")->SetModified(false);
  EXPECT_EQ(Call(dataset, "SetText", 1, "-1e3-2i").Int(), 1);
  EXPECT_TRUE(Worksheets::Find("b")->IsModified());
  EXPECT_EQ(ValuesOf<OneTCcomplex>(dataset)[1], OneTCcomplex(-1000, -2));
}

TEST_F(DatasetTest, CurvesKeepTheirPointsTogether) {
  Column("x", kTypeShort, {3, 1, 2, 1});
  Column("y", kTypeFloat, {30, 10, 20, 11});
  Column("m", kTypeDouble, {kM, 5});
  const ObjectRef curve = Make(kTypeFloat | kFlagCurve), x = VectorOf<double>({});
  EXPECT_EQ(Call(curve, "Sort", 1).status, status::kFailed);
  EXPECT_EQ(Call(curve, "Attach", "b", "y").Int(), 1);
  EXPECT_EQ(Call(curve, "HasX").Int(), 0);
  EXPECT_EQ(Call(curve, "CopyX", x).Int(), -1);
  EXPECT_EQ(TextOf(curve), "[b]y(1:0-3)");
  EXPECT_EQ(Call(curve, "Attach", "b", "y", "z").Int(), 0);
  EXPECT_EQ(Call(curve, "AttachX", "b", "x").Int(), 1);
  EXPECT_EQ(TextOf(curve), "[b]x, [b]y(1:0-3)");
  EXPECT_EQ(Call(curve, "Sort", 1).Int(), 1);
  EXPECT_EQ(Call(curve, "CopyX", x).Int(), 0);
  ExpectValues(x, {1, 1, 2, 3});
  EXPECT_EQ(ValuesOf<float>(curve), (std::vector<float>{10, 11, 20, 30}));
  const ObjectRef found = VectorOf<unsigned>({});
  EXPECT_EQ(Call(curve, "GetRectPoints", 1, 2, 10.5, 20, found).Int(), 2);
  EXPECT_EQ(ValuesOf<unsigned>(found), (Indices{1, 2}));
  EXPECT_EQ(Call(curve, "GetRectPoints", kNan, 2, 0, 20, curve).Int(), 0);
  EXPECT_EQ(Call(curve, "SetSize", 3).Int(), 1);
  EXPECT_EQ(Call(curve, "SetXBounds", 2, 9).Int(), 1);
  // A copy has X values of its own; points without both values stay.
  const ObjectRef other = Make(kTypeFloat | kFlagCurve);
  EXPECT_EQ(
      Call(other, "ConstructInit", VectorOf<double>({kM, 2, 1}), VectorOf<int>({7, 8, 9, 6})).Int(),
      1);
  const ObjectRef copy(other->CreateCopy());
  EXPECT_EQ(Call(copy, "Sort", 0).Int(), 1);
  EXPECT_EQ(ValuesOf<float>(copy), (std::vector<float>{8, 9, 7, 6}));
  EXPECT_EQ(ValuesOf<float>(other), (std::vector<float>{7, 8, 9, 6}));
  EXPECT_EQ(Call(curve, "Attach", other).Int(), 1);
  EXPECT_EQ(Call(curve, "HasX").Int(), 1);
  // X goes stale by itself.
  EXPECT_EQ(Call(curve, "Attach", "b", "y", "m").Int(), 1);
  EXPECT_EQ(Call(Attached("m"), "Destroy").Int(), 1);
  EXPECT_EQ(Call(curve, "Sort", 1).status, status::kNoRow);
  EXPECT_EQ(Call(curve, "HasX").Int(), 0);
  EXPECT_EQ(Call(curve, "GetSize").Int(), 3);
}

TEST_F(DatasetTest, VectorsKnowWhereTheyComeFrom) {
  Column("x", kTypeDouble, {1, 2, 3});
  const ObjectRef dataset = Attached("x"), text = Make(kTypeString);
  ObjectRef plain = VectorOf<double>({1});
  const ObjectRef lower = Make(kTypeInt), upper = Make(kTypeInt);
  EXPECT_EQ(Call(dataset, "GetSourceRange", text).Int(), 0);
  EXPECT_EQ(TextOf(text), "[b]x[1:3]");
  EXPECT_EQ(Call(plain, "GetSourceRange", text).Int(), 0);
  EXPECT_EQ(TextOf(text), "");
  EXPECT_EQ(Call(plain, "UpdateRowColRanges").status, status::kUnsupported);
  EXPECT_EQ(Call(plain, "AttachX", "b", "x").status, status::kUnsupported);
  EXPECT_EQ(Call(plain, "GetSourceDataRange", lower, upper).Int(), 0);
  EXPECT_EQ(Call(plain, "CopySourceDataRange", dataset).Int(), 0);
  const ObjectRef heir = VectorOf<double>({});
  EXPECT_EQ(Call(heir, "CopySourceDataRange", plain).Int(), 0);
  plain = {};
  EXPECT_EQ(Call(heir, "GetSourceDataRange", lower, upper).Int(), 1);
  EXPECT_EQ(ValueOf<int>(upper), 2);
  EXPECT_EQ(Call(dataset, "SetSize", 2).Int(), 1);
  EXPECT_EQ(Call(heir, "GetSourceDataRange", lower, upper).Int(), 0);
  EXPECT_EQ(ValueOf<int>(upper), -1);
}

}  // namespace
}  // namespace vela::testing
