// Shape, lines, blocks and rearrangement of matrices.
#include <functional>

#include "matrix_fixture.h"

namespace vela::testing {
namespace {

TEST(MatrixShape, SetSize) {
  const ObjectRef m = MatrixOf<double>({{1, 2, 3}, {4, 5, 6}});
  EXPECT_EQ(Call(m, "SetSize", 3, 2, 1).Int(), 1);
  ExpectRows(m, {{1, 2}, {4, 5}, {0, 0}});
  EXPECT_EQ(Call(m, "SetSize", 2, 3).Int(), 1);
  ExpectRows(m, {{1, 2, 4}, {5, 0, 0}});  // as they lie
  EXPECT_EQ(Call(m, "SetSize", 3, 3, 1).Int(), 1);
  ExpectRows(m, {{1, 2, 4}, {5, 0, 0}, {0, 0, 0}});
  EXPECT_EQ(Call(m, "SetSize", 2, 4, 1).Int(), 1);
  ExpectRows(m, {{1, 2, 4, 0}, {5, 0, 0, 0}});

  EXPECT_EQ(Call(m, "SetSize").status, status::kFailed);
  EXPECT_EQ(Call(m, "SetSize", 1, 2, 0, 4).status, status::kBadArguments);
  for (const int keep : {0, 1}) {
    EXPECT_EQ(Call(m, "SetSize", -1, -1, keep).status, status::kFailed);
    EXPECT_EQ(Call(m, "SetSize", 65536, 8192, keep).status, status::kTooLarge);
    EXPECT_EQ(Call(m, "SetSize", kMaxInt, kMaxInt, keep).status, status::kTooLarge);
  }
  ExpectRows(m, {{1, 2, 4, 0}, {5, 0, 0, 0}});
  EXPECT_EQ(Call(m, "SetSize", 0, 5).Int(), 1);
  EXPECT_EQ(Call(m, "GetNumCols").Int(), 5);
  EXPECT_EQ(Call(m, "FlipVertical").Int(), 1);
}

TEST(MatrixShape, Layers) {
  const ObjectRef m = Make(kTypeFloat | kFlagMatrix, 3);
  const auto at = MSOINDICES::Object;
  EXPECT_EQ(CallAt(m, at(1), "SetSize", 2, 2).Int(), 1);
  EXPECT_EQ(CallAt(m, at(2), "MakeIdentity", 1, 3).Int(), 0);
  EXPECT_EQ(CallAt(m, at(1), "GetNumRows").Int(), 2);
  EXPECT_EQ(CallAt(m, at(0), "GetNumRows").Int(), 0);
  ExpectRows(m, {{1, 0, 0}}, 2);
  EXPECT_EQ(CallAt(m, at(-1), "SetSize", 2, 2).Int(), 0);
  EXPECT_EQ(CallAt(m, at(3), "SetSize", 2, 2).status, status::kFailed);
  const struct {
    const char* member;
    int status;
  } cases[] = {{"GetNumRows", status::kFailed},
               {"GetNumCols", status::kFailed},
               {"GetMax", status::kNoData},
               {"GetMedian", status::kNoData},
               {"FlipVertical", -1},
               {"Transpose", -1}};
  for (const auto& c : cases) {
    for (const MSOINDICES& none : {at(-1), at(3), MSOINDICES{5, 0, 0, 0}}) {
      EXPECT_EQ(CallAt(m, none, c.member).status, c.status) << c.member;
    }
  }
  EXPECT_EQ(Call(m, "GetMax").status, status::kNoData);

  CStringUTF8 text;
  m->GetDisplayElement(text, 1);
  EXPECT_EQ(text.View(), "matrix(2, 2)[3]");
  m->GetDisplayElement(text, -1);
  EXPECT_EQ(text.View(), "matrix<Invalid>");
  EXPECT_EQ(TextOf(m), "float[0X0]");
  EXPECT_EQ(TextOf(Make(kTypeMatrixBase)), "matrixbase");
  EXPECT_EQ(Call(Make(kTypeMatrixBase), "GetNumRows").status, status::kUnsupported);

  const ObjectRef copy(m->CreateCopy());
  EXPECT_EQ(copy->GetArraySize(), 3);
  ExpectRows(copy, {{1, 0, 0}}, 2);
}

TEST(MatrixShape, HostOperations) {
  const ObjectRef m = MatrixOf<int>({{1, 2, 3}, {4, 5, 6}});
  const MSOINDICES cell = MSOINDICES{}.WithCell(1, 2);
  const MSOINDICES row = MSOINDICES::Element(1);
  double value = 0;
  EXPECT_EQ(m->GetDouble(&cell, value), 0);
  EXPECT_EQ(value, 6);
  EXPECT_EQ(m->SetDouble(&cell, 1e20), 0);
  EXPECT_EQ(*static_cast<int*>(m->GetArrayElement(&row, 2)), kMaxInt);
  EXPECT_EQ(m->GetArrayElement(&row, 3), nullptr);
  const struct {
    MSOINDICES at;
    int status;
  } outside[] = {{MSOINDICES{}.WithCell(2, 0), status::kOutOfRange},
                 {MSOINDICES{}.WithCell(0, 3), status::kOutOfRange},
                 {MSOINDICES{}.WithCell(-1, 0), status::kNegativeElement},
                 {row, status::kUnresolved},
                 {MSOINDICES::Object(1).WithCell(0, 0), status::kOutOfRange}};
  for (const auto& [at, status] : outside) EXPECT_EQ(m->GetDouble(&at, value), status);
  int upper = 0;
  EXPECT_EQ(m->GetUpperBound(nullptr, upper), 0);
  EXPECT_EQ(upper, 1);
  EXPECT_EQ(m->GetUpperBound(&row, upper), 0);
  EXPECT_EQ(upper, 2);
  EXPECT_EQ(m->InitalizeFromMemory(&value, 1), status::kBadArguments);
  EXPECT_EQ(m->SetMatrixDimension(1, 2, nullptr), 0);
  ExpectRows(m, {{1, 2}});
  const MSOINDICES layer = MSOINDICES::Object(7);
  EXPECT_EQ(m->SetMatrixDimension(1, 2, &layer), status::kFailed);

  // What external code holds keeps its size.
  for (const int debug_mode : {0, 1}) {
    const DebugModeScope scope(debug_mode);
    void* buffer = nullptr;
    EXPECT_EQ(m->GetBufferMSO(nullptr, &buffer), 0);
    EXPECT_EQ(Call(m, "SetSize", 5, 5).status, status::kFailed);
    static_cast<int*>(buffer)[1] = 9;
    EXPECT_EQ(m->ReleaseBufferMSO(nullptr, buffer), 0);
    ExpectRows(m, {{1, 9}});
  }
  // A buffer of another type holds the layer as well, and only its own release lets go of it.
  void* buffer = nullptr;
  void* converted = nullptr;
  EXPECT_EQ(m->GetBufferMSO(nullptr, &buffer), 0);
  EXPECT_EQ(m->GetBufferMSOEx(nullptr, kTypeFloat, &converted), 0);
  EXPECT_EQ(m->ReleaseBufferMSO(nullptr, converted), 0);
  EXPECT_EQ(Call(m, "SetSize", 5, 5).status, status::kFailed);
  EXPECT_EQ(Call(m, "Transpose").Int(), 1);  // the elements stay where they are
  ExpectRows(m, {{1}, {9}});
  EXPECT_EQ(m->ReleaseBufferMSO(nullptr, buffer), 0);
  EXPECT_EQ(Call(m, "SetSize", 5, 5).Int(), 1);
}

TEST(MatrixLines, ToAndFromVectors) {
  const ObjectRef m = MatrixOf<double>({{1, 2, 3}, {4, 5, 6}});
  const ObjectRef v = Make(kTypeInt | kFlagVector);
  const struct {
    const char* member;
    int argument;
    Doubles expected;
  } gets[] = {{"GetRow", 1, {4, 5, 6}},
              {"GetColumn", 2, {3, 6}},
              {"GetAsVector", 1, {1, 2, 3, 4, 5, 6}},
              {"GetAsVector", 2, {1, 4, 2, 5, 3, 6}}};
  for (const auto& c : gets) {
    EXPECT_EQ(Call(m, c.member, v, c.argument).Int(), 1);
    EXPECT_EQ(AsDoubles(v), c.expected) << c.member;
  }
  const struct {
    const char* member;
    int argument;
    Doubles values;
    Rows expected;
  } sets[] = {{"SetRow", 0, {7, 8}, {{7, 8, 3}, {4, 5, 6}}},
              {"SetColumn", 1, {7, 8, 9}, {{1, 7, 3}, {4, 8, 6}}},
              {"SetByVector", 1, {7, 8, 9, 10}, {{7, 8, 9}, {10, 5, 6}}},
              {"SetByVector", 0, {7, 8, 9}, {{7, 9, 3}, {8, 5, 6}}},
              {"SetByVector", 0, {1, 2, 3, 4, 5, 6, 7}, {{1, 3, 5}, {2, 4, 6}}}};
  for (const auto& c : sets) {
    const ObjectRef target = MatrixOf<float>({{1, 2, 3}, {4, 5, 6}});
    EXPECT_EQ(Call(target, c.member, ConvertedVector<short>(c.values), c.argument).Int(), 1);
    ExpectRows(target, c.expected);
  }
  for (const char* member : {"GetRow", "SetRow", "GetColumn", "SetColumn"}) {
    for (const int line : {-1, 3, kMaxInt, kMinInt}) {
      EXPECT_EQ(Call(m, member, v, line).status, status::kOutOfRange) << member;
    }
    EXPECT_EQ(Call(m, member, v).status, status::kBadArguments) << member;
    EXPECT_EQ(Call(m, member, m, 0).status, status::kBadArguments) << member;
  }
  EXPECT_EQ(Call(EmptyMatrix(), "GetAsVector", v, 1).Int(), 1);
  EXPECT_EQ(Call(v, "GetSize").Int(), 0);

  EXPECT_EQ(Call(m, "GetDiagonal", v, 1).Int(), 0);
  EXPECT_EQ(AsDoubles(v), (Doubles{2, 6}));
  EXPECT_EQ(Call(m, "GetDiagonal", v, 3).Int(), -1);
  EXPECT_EQ(Call(m, "SetDiagonal", v, kMinInt).Int(), -1);
  EXPECT_EQ(Call(m, "SetDiagonal", v, -1).Int(), 0);
  ExpectRows(m, {{1, 2, 3}, {2, 5, 6}});
}

TEST(MatrixBlocks, SubMatrices) {
  const Rows rows = {{1, 2, 3, 4}, {5, 6, 7, 8}, {9, 10, 11, 12}};
  const struct {
    int c1, c2, r1, r2, result;
    Rows expected;
  } cases[] = {{1, -1, 0, 1, 1, {{2, 3, 4}, {6, 7, 8}}},
               {2, 4, 2, 2, 1, {{11, 12, 0}}},  // a bound of exactly the count stands
               {2, 5, 2, 4, 1, {{11, 12}}},
               {0, 0, 2, 3, 1, {{9}, {0}}},
               {4, 4, 0, 0, 1, {{0}}},
               {3, 2, 0, 0, 0, {}},
               {-1, 2, 0, 0, 0, {}},
               {0, -2, 0, 0, 0, {}}};
  for (const auto& c : cases) {
    for (const bool same : {false, true}) {
      const ObjectRef m = MatrixOf<short>(rows);
      const ObjectRef target = same ? m : MatrixOf<double>({{-1, -1}});
      EXPECT_EQ(Call(m, "GetSubMatrix", target, c.c1, c.c2, c.r1, c.r2).Int(), c.result);
      ExpectRows(target, c.result == 1 ? c.expected : same ? rows : Rows{{-1, -1}});
    }
  }
  const ObjectRef m = MatrixOf<short>(rows);
  const ObjectRef part = EmptyMatrix();
  EXPECT_EQ(Call(m, "GetSubMatrix", part, VectorOf<int>({2, 0, 2}), 1).Int(), 1);
  ExpectRows(part, {rows[2], rows[0], rows[2]});
  EXPECT_EQ(Call(m, "GetSubMatrix", part, VectorOf<int>({3, 0}), 2).Int(), 1);
  ExpectRows(part, {{4, 1}, {8, 5}, {12, 9}});
  EXPECT_EQ(Call(m, "GetSubMatrix", part, VectorOf<int>({3}), 1).Int(), 0);
  EXPECT_EQ(Call(m, "GetSubMatrix", part, VectorOf<double>({1}), 1).Int(), -1);
  EXPECT_EQ(Call(m, "GetSubMatrix", Null(), 0, 0, 0, 0).status, status::kUnresolved);
  EXPECT_EQ(Call(m, "GetSubMatrix", part, 0, 0, 0).status, status::kBadArguments);
  EXPECT_EQ(Call(EmptyMatrix(), "GetSubMatrix", part, 0, 0, 0, 0).status, status::kNoData);

  EXPECT_EQ(Call(m, "SetSubMatrix", MatrixOf<double>({{-1, -2}, {-3, -4}}), 3, 2).Int(), 1);
  EXPECT_EQ(Call(m, "SetSubMatrix", m, 1, 1).Int(), 1);  // itself, as if from a copy
  ExpectRows(m, {{1, 2, 3, 4}, {5, 1, 2, 3}, {9, 5, 6, 7}});
  EXPECT_EQ(Call(m, "SetSubMatrix", m, 4, 0).Int(), 0);
}

TEST(MatrixBlocks, CopiesGrowTheirTarget) {
  const ObjectRef m = MatrixOf<int>({{1, 2}, {3, 4}});
  const ObjectRef target = MatrixOf<double>({{9}});
  EXPECT_EQ(Call(m, "CopyTo", target, 0, 1, -1, 7, 1, 2).Int(), 1);
  ExpectRows(target, {{9, 0, 0}, {0, 0, 2}, {0, 0, 4}});
  EXPECT_EQ(Call(m, "CopyFrom", m, 0, 0, -1, -1, 1, 1).Int(), 1);
  ExpectRows(m, {{1, 2, 0}, {3, 1, 2}, {0, 3, 4}});
  EXPECT_EQ(Call(m, "CopyTo", target, 3, 0, -1, -1, 0, 0).Int(), 0);
  EXPECT_EQ(Call(m, "CopyTo", target, 0, 0, 0, 0, -1, 0).Int(), 0);
  EXPECT_EQ(Call(m, "CopyTo", target, 0, 0, 0, 0, kMaxInt, kMaxInt).status, status::kTooLarge);
}

TEST(MatrixBlocks, Concatenate) {
  const ObjectRef a = MatrixOf<int>({{1, 2}});
  const ObjectRef b = MatrixOf<int>({{3, 4}});
  const ObjectRef result = EmptyMatrix(kTypeInt);
  EXPECT_EQ(Call(a, "Concatenate", 2, b, result).Int(), 0);
  ExpectRows(result, {{1, 2, 3, 4}});
  EXPECT_EQ(Call(a, "Concatenate", 1, b, b).Int(), 0);
  ExpectRows(b, {{1, 2}, {3, 4}});
  EXPECT_EQ(Call(a, "Concatenate", 1, a, a).Int(), 0);
  ExpectRows(a, {{1, 2}, {1, 2}});
  EXPECT_EQ(Call(a, "Concatenate", 3, b, result).Int(), -2);
  EXPECT_EQ(Call(a, "Concatenate", 1, result, result).Int(), -2);
  EXPECT_EQ(Call(a, "Concatenate", 1, EmptyMatrix(), result).Int(), -1);
}

TEST(MatrixBlocks, RowsOfMissingValues) {
  const Rows rows = {{1, 2}, {kM, 4}, {kNan, 6}, {kM, kM}};
  const ObjectRef removed = Make(kTypeUnsignedInt | kFlagVector);
  ObjectRef m = MatrixOf<double>(rows);
  EXPECT_EQ(Call(m, "RemoveEmptyRows", 1, removed).Int(), -2);
  ExpectRows(m, {{1, 2}, {kM, 4}, {kNan, 6}});
  EXPECT_EQ(ValuesOf<unsigned>(removed), (Indices{3}));
  m = MatrixOf<double>(rows);
  EXPECT_EQ(Call(m, "RemoveEmptyRows", 0, removed).Int(), -2);
  ExpectRows(m, {{1, 2}, {kNan, 6}});
  EXPECT_EQ(ValuesOf<unsigned>(removed), (Indices{1, 3}));
  EXPECT_EQ(Call(m, "RemoveEmptyRows", 0, removed).Int(), 0);
  EXPECT_EQ(Call(m, "RemoveEmptyRows", 0, VectorOf<int>({1})).Int(), -1);
  EXPECT_EQ(Call(MatrixOf<int>({{1}}), "RemoveEmptyRows", 0, removed).status, status::kUnsupported);
}

TEST(MatrixBlocks, ShrinkPadDuplicate) {
  ObjectRef m = MatrixOf<int>({{1, 2, 3}, {4, 6, 5}, {7, 8, 9}});
  EXPECT_EQ(Call(m, "Shrink", 2, 2, 1).Int(), 1);
  ExpectRows(m, {{3, 4}, {7, 9}});
  EXPECT_EQ(Call(m, "Shrink", kMaxInt, kMaxInt, 0).Int(), 1);
  ExpectRows(m, {{23}});
  EXPECT_EQ(Call(m, "Shrink", 0, 2, 1).Int(), 0);
  EXPECT_EQ(Call(m, "Shrink", 1, 1, 6).Int(), 0);
  EXPECT_EQ(Call(m, "Shrink", 1, 1, -1).Int(), 0);

  m = MatrixOf<short>({{1, 2}, {3, 4}});
  const ObjectRef padded = EmptyMatrix(kTypeShort);
  EXPECT_EQ(Call(m, "Padding", padded, 1, 1).Int(), 1);
  ExpectRows(padded, {{4, 3, 4, 3}, {2, 1, 2, 1}, {4, 3, 4, 3}, {2, 1, 2, 1}});
  EXPECT_EQ(Call(m, "Padding", padded, 2, 1).Int(), 0);
  EXPECT_EQ(Call(m, "Padding", padded, 1, 3).Int(), 0);
  EXPECT_EQ(Call(m, "Padding", padded, 0, 0).Int(), 0);
  EXPECT_EQ(Call(m, "Padding", padded, kMaxInt, 0).status, status::kTooLarge);
  EXPECT_EQ(Call(m, "Padding", EmptyMatrix(), 1, 0).status, status::kOtherElementType);
  EXPECT_EQ(Call(m, "DuplicateBlock", 0).Int(), 0);
  EXPECT_EQ(Call(m, "DuplicateBlock", 2).Int(), 1);
  ExpectRows(m, {{1, 2}, {3, 4}, {1, 2}, {3, 4}, {1, 2}, {3, 4}});
  EXPECT_EQ(Call(m, "Padding", m, 1, 0).Int(), 1);
  EXPECT_EQ(Call(m, "GetNumRows").Int(), 8);
}

TEST(MatrixTransforms, RearrangeElements) {
  const struct {
    const char* member;
    std::vector<int> arguments;
    int result;
    Rows expected;
  } cases[] = {{"FlipHorizontal", {}, 1, {{3, 2, 1}, {6, 5, 4}}},
               {"FlipVertical", {}, 1, {{4, 5, 6}, {1, 2, 3}}},
               {"Transpose", {}, 1, {{1, 4}, {2, 5}, {3, 6}}},
               {"Rotate", {90}, 1, {{3, 6}, {2, 5}, {1, 4}}},
               {"Rotate", {-90}, 1, {{4, 1}, {5, 2}, {6, 3}}},
               {"Rotate", {540}, 1, {{6, 5, 4}, {3, 2, 1}}},
               {"Rotate", {360}, 0, {{1, 2, 3}, {4, 5, 6}}},
               {"Rotate", {45}, 0, {{1, 2, 3}, {4, 5, 6}}},
               {"Rotate", {kMinInt}, 0, {{1, 2, 3}, {4, 5, 6}}},
               {"Reorder", {0}, 1, {{1, 3, 5}, {2, 4, 6}}},
               {"Reorder", {1}, 1, {{1, 4, 2}, {5, 3, 6}}},
               {"Wrap", {1, 1}, 1, {{5, 6, 4}, {2, 3, 1}}},
               {"Wrap", {kMinInt, -1}, 1, {{3, 1, 2}, {6, 4, 5}}},
               {"DuplicateBlock", {1}, 1, {{1, 2, 3}, {4, 5, 6}, {1, 2, 3}, {4, 5, 6}}},
               {"MakeIdentity", {2, -1}, 0, {{1, 0}, {0, 1}}},
               {"MakeIdentity", {3, 0}, -1, {{1, 2, 3}, {4, 5, 6}}}};
  for (const auto& c : cases) {
    ForEachElementType([&]<class T>() {
      if constexpr (DatasetElement<T>) {
        const ObjectRef m = MatrixOf<T>({{1, 2, 3}, {4, 5, 6}});
        const Result result = c.arguments.empty() ? Call(m, c.member)
                              : c.arguments.size() == 1
                                  ? Call(m, c.member, c.arguments[0])
                                  : Call(m, c.member, c.arguments[0], c.arguments[1]);
        EXPECT_EQ(result.Int(), c.result) << c.member << " " << kElement<T>.name;
        ExpectRows(m, c.expected);
      }
    });
  }
}

TEST(MatrixTransforms, IntoAResult) {
  const struct {
    const char* member;
    int argument;
    Rows expected;
  } cases[] = {{"FFTShift", 2, {{3, 1, 2}, {6, 4, 5}, {9, 7, 8}}},
               {"IFFTShift", 2, {{2, 3, 1}, {5, 6, 4}, {8, 9, 7}}},
               {"FFTShift", 1, {{7, 8, 9}, {1, 2, 3}, {4, 5, 6}}},
               {"FFTShift", -1, {{9, 7, 8}, {3, 1, 2}, {6, 4, 5}}},
               {"GetLowerTriangular", -1, {{0, 0, 0}, {4, 0, 0}, {7, 8, 0}}},
               {"GetUpperTriangular", 1, {{0, 2, 3}, {0, 0, 6}, {0, 0, 0}}},
               {"GetUpperTriangular", kMinInt, {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}}}};
  for (const auto& c : cases) {
    for (const bool same : {false, true}) {
      const ObjectRef m = MatrixOf<int>({{1, 2, 3}, {4, 5, 6}, {7, 8, 9}});
      const ObjectRef result = same ? m : MatrixOf<int>({{9, 9, 9, 9}});
      EXPECT_EQ(Call(m, c.member, result, c.argument).Int(), 0) << c.member;
      ExpectRows(result, c.expected);
    }
    EXPECT_EQ(Call(EmptyMatrix(), c.member, EmptyMatrix(kTypeFloat), c.argument).status,
              status::kNotContiguous);
    EXPECT_EQ(Call(EmptyMatrix(), c.member, EmptyMatrix(), c.argument).Int(), 0);
  }
  EXPECT_EQ(Call(EmptyMatrix(), "FFTShift", EmptyMatrix(), 3).Int(), -1);
}

TEST(MatrixTransforms, SortAndReorder) {
  const ObjectRef m = MatrixOf<double>({{3, kM}, {-2, 0.5}});
  EXPECT_EQ(Call(m, "Sort", 1).kind, CallFrame::ResultKind::kNone);
  ExpectRows(m, {{-2, kM}, {0.5, 3}});
  EXPECT_EQ(Call(m, "Sort", 0).status, 0);
  ExpectRows(m, {{3, 0.5}, {kM, -2}});
  EXPECT_EQ(Call(m, "ReorderRowWise", VectorOf<unsigned>({1, 0})).Int(), 1);
  ExpectRows(m, {{kM, -2}, {3, 0.5}});
  EXPECT_EQ(Call(m, "ReorderColWise", VectorOf<unsigned>({1, 0})).Int(), 1);
  ExpectRows(m, {{-2, kM}, {0.5, 3}});
  EXPECT_EQ(Call(m, "ReorderRowWise", VectorOf<int>({-1, 1})).Int(), 0);
  for (const Indices& order : {Indices{0, 0}, Indices{0}, Indices{0, 2}, Indices{0, ~0u}}) {
    EXPECT_EQ(Call(m, "ReorderRowWise", VectorOf<unsigned>(order)).Int(), 0);
    EXPECT_EQ(Call(m, "ReorderColWise", VectorOf<unsigned>(order)).Int(), 0);
  }
  ExpectRows(m, {{-2, kM}, {0.5, 3}});
}

// Which members tell the host that the matrix changed.
TEST(MatrixStructure, Announcements) {
  const ObjectRef v = VectorOf<double>({1, 2});
  const ObjectRef other = MatrixOf<double>({{1, 2}, {3, 5}});
  const ObjectRef element = MatrixOf<double>({{1}});
  const struct {
    const char* what;
    std::function<Result(const ObjectRef&)> call;
    bool announces;
  } cases[] = {
      {"SetRow", [&](auto& m) { return Call(m, "SetRow", v, 0); }, true},
      {"GetRow", [&](auto& m) { return Call(m, "GetRow", v, 0); }, false},
      {"Transpose", [](auto& m) { return Call(m, "Transpose"); }, true},
      {"Rotate", [](auto& m) { return Call(m, "Rotate", 90); }, true},
      {"Rotate 360", [](auto& m) { return Call(m, "Rotate", 360); }, false},
      {"Wrap", [](auto& m) { return Call(m, "Wrap", 1, 1); }, false},
      {"Sort", [](auto& m) { return Call(m, "Sort", 1); }, false},
      {"NANtoValue", [](auto& m) { return Call(m, "NANtoValue", 0.0); }, false},
      {"ImDilate", [&](auto& m) { return Call(m, "ImDilate", element); }, false},
      {"ApplyFilter", [&](auto& m) { return Call(m, "ApplyFilter", other, 2, 0); }, true},
      {"FreqFilter", [](auto& m) { return Call(m, "FreqFilter", 2, 2, 0, 0.5, 1, 1.0); }, true},
      {"FreqFilter 9", [](auto& m) { return Call(m, "FreqFilter", 2, 2, 9, 0.5, 1, 1.0); }, false},
      {"DotPower", [&](auto& m) { return Call(m, "DotPower", other); }, true},
      {"Inverse", [](auto& m) { return Call(m, "Inverse"); }, true},
      {"GetMax", [](auto& m) { return Call(m, "GetMax"); }, false},
      {"Padding", [&](auto& m) { return Call(other, "Padding", m, 1, 0); }, true},
  };
  for (const auto& c : cases) {
    const ObjectRef m = MatrixOf<double>({{1, 2}, {3, 4}});
    m->SetModify(0);
    EXPECT_EQ(c.call(m).status, 0) << c.what;
    EXPECT_EQ(m->IsModified() != 0, c.announces) << c.what;
  }
}

}  // namespace
}  // namespace vela::testing
