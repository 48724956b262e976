// Filters, statistics, arithmetic and operators of matrices: what the tests of the kernels do not
// show, and the arguments around them.
#include "frame/interface/operations.h"
#include "matrix_fixture.h"

namespace vela::testing {
namespace {

TEST(MatrixFilters, Correlation) {
  const ObjectRef ones = MatrixOf<double>({{1, 1, 1}, {1, 1, 1}, {1, 1, 1}});
  ObjectRef m = MatrixOf<double>({{9}});
  EXPECT_EQ(Call(m, "ApplyFilter", ones, 0, 1).Int(), 1);
  ExpectRows(m, {{1}});
  m = MatrixOf<unsigned char>({{100, 200}, {200, 7}});
  const ObjectRef zero_sum = MatrixOf<double>({{-1, 2}, {0, -1}});
  EXPECT_EQ(Call(m, "ApplyFilter", zero_sum, 2, 1).Int(), 1);
  ExpectRows(m, {{0, 100}, {0, 255}});
  EXPECT_EQ(Call(m, "ApplyFilter", MatrixOf<double>({{1, 2}}), 0, 0).Int(), 0);
  EXPECT_EQ(Call(m, "ApplyFilter", EmptyMatrix(), 0, 0).Int(), 0);
  for (const int mode : {1, 3, -1}) {  // a mirror of 5 needs more elements
    EXPECT_EQ(Call(m, "ApplyFilter", MatrixOf<double>(Rows(5, Doubles(5, 1))), mode, 0).Int(), 0);
  }
  EXPECT_EQ(Call(m, "ApplyFilter", Null(), 0, 0).status, status::kUnresolved);
  EXPECT_EQ(Call(m, "ApplyFilter", 5, 0, 0).status, status::kBadKernel);
  EXPECT_EQ(Call(m, "ApplyFilter", MatrixOf<float>({{1}}), 0, 0).status, status::kBadKernel);
  const ObjectRef itself = MatrixOf<double>({{1, 2}, {3, 4}});
  EXPECT_EQ(Call(itself, "ApplyFilter", itself, 0, 0).Int(), 1);
  ExpectRows(itself, {{4, 11}, {14, 30}});
}

TEST(MatrixFilters, Medians) {
  ObjectRef m = MatrixOf<double>({{1, 2, 3}, {4, 5, 6}, {7, 8, 900}});
  EXPECT_EQ(Call(m, "MedianFilter", 3, 2).Int(), 1);
  ExpectRows(m, {{2, 3, 3}, {4, 5, 6}, {7, 7, 8}});
  m = MatrixOf<int>({{16, 15, 14, 13}, {12, 11, 10, 9}, {8, 7, 6, 5}, {4, 3, 2, 1}});
  EXPECT_EQ(Call(m, "MedianFilter", 4, 0).Int(), 1);
  const MSOINDICES middle = MSOINDICES{}.WithCell(2, 2);
  double value = 0;
  EXPECT_EQ(m->GetDouble(&middle, value), 0);
  EXPECT_EQ(value, 9);  // of 1 .. 16 the mean of the 9th and 10th, 9.5, without its fraction
  EXPECT_EQ(Call(m, "MedianFilter", 2, 0).status, status::kWindowTooSmall);
  EXPECT_EQ(Call(m, "MedianFilter", kMinInt, 0).status, status::kWindowTooSmall);
  EXPECT_EQ(Call(m, "MedianFilter", 9, 1).Int(), 0);
  EXPECT_EQ(Call(m, "MedianFilter", 3, 5).Int(), 0);
  EXPECT_EQ(Call(MatrixOf<OneTCcomplex>({{1}}), "MedianFilter", 3, 0).status, status::kUnsupported);
}

TEST(MatrixFilters, Morphology) {
  const Rows rows = {{0, 0, 0, 0}, {0, 7, 3, 0}, {0, 0, 0, kM}};
  const ObjectRef square = VectorOf<double>({1, 1, 1, 1, 1, 1, 1, 1, 1});
  ObjectRef m = MatrixOf<double>(rows);
  EXPECT_EQ(Call(m, "ImDilate", square).Int(), 0);
  ExpectRows(m, {{7, 7, 7, 3}, {7, 7, 7, 3}, {7, 7, 7, 3}});
  const ObjectRef pair = MatrixOf<double>({{1, 1}});  // with the left neighbour
  const struct {
    const char* member;
    Rows expected;
  } cases[] = {{"ImErode", {{0, 0, 1, 2}}},
               {"ImDilate", {{1, 3, 3, 2}}},
               {"ImOpen", {{0, 1, 2, 2}}},
               {"ImClose", {{1, 1, 3, 2}}}};
  for (const auto& c : cases) {
    m = MatrixOf<float>({{0, 1, 3, 2}});
    EXPECT_EQ(Call(m, c.member, pair).Int(), 0);
    ExpectRows(m, c.expected);
  }
  m = MatrixOf<double>({{kM, kM}});
  EXPECT_EQ(Call(m, "ImErode", MatrixOf<double>({{1}})).Int(), 0);
  EXPECT_EQ(Call(m, "ImOpen", VectorOf<double>({1, 1})).Int(), 1);
  EXPECT_EQ(Call(m, "ImErode", EmptyMatrix()).Int(), 1);
  EXPECT_EQ(Call(m, "ImErode", MatrixOf<double>({{0}})).Int(), 1);
  EXPECT_EQ(Call(m, "ImErode", MatrixOf<float>({{1}})).Int(), 1);
  EXPECT_EQ(Call(m, "ImErode", Null()).Int(), 1);
  EXPECT_EQ(Call(m, "ImErode", 3).Int(), 1);
  ExpectRows(m, {{kM, kM}});
  EXPECT_EQ(Call(m, "ImDilate", m).Int(), 0);
  EXPECT_EQ(Call(MatrixOf<int>({{1}}), "ImErode", square).status, status::kUnsupported);
}

TEST(MatrixFilters, Frequencies) {
  const ObjectRef m = MatrixOf<float>({{1, 3, 1, 3}, {1, 3, 1, 3}});
  EXPECT_EQ(Call(m, "FreqFilter", 2, 4, 0, 0.5, 0, 1.0).Int(), 0);
  ExpectRows(m, {{2, 2, 2, 2}, {2, 2, 2, 2}});
  EXPECT_EQ(Call(m, "FreqFilter", 4, 2, 0, 1.0, 3, 1.0).Int(), 0);
  EXPECT_EQ(Call(m, "GetNumRows").Int(), 4);
  EXPECT_EQ(Call(m, "FreqFilter", 0, 2, 0, 0.5, 0, 1.0).Int(), -100);
  EXPECT_EQ(Call(m, "FreqFilter", 4, 2, 4, 0.5, 0, 1.0).Int(), 1);
  EXPECT_EQ(Call(m, "FreqFilter", 4, 2, 0, 1.5, 0, 1.0).Int(), 1);
  EXPECT_EQ(Call(MatrixOf<double>({{kM}}), "FreqFilter", 1, 1, 0, 0.5, 0, 1.0).Int(), 2);
}

TEST(MatrixReplace, ByRule) {
  ObjectRef m = MatrixOf<double>({{1, kM, 3}, {kNan, 5, 6}});
  EXPECT_EQ(Call(m, "ReplaceGreaterThan", 5.0, 9.0).Int(), 1);
  EXPECT_EQ(Call(m, "ReplaceLessThan", 1.0, -1.0).Int(), 1);
  ExpectRows(m, {{1, -1, 3}, {kNan, 5, 9}});
  EXPECT_EQ(Call(m, "NANtoValue", kNan).kind, CallFrame::ResultKind::kNone);
  ExpectRows(m, {{1, -1, 3}, {kM, 5, 9}});
  EXPECT_EQ(Call(m, "Replace", 1.0, 4.0, 0.0).Int(), 2);
  EXPECT_EQ(Call(m, "Replace", 0.0, 5.0, 7.0, 1).Int(), 2);
  ExpectRows(m, {{0, 7, 0}, {kM, 5, 7}});
  m = MatrixOf<unsigned char>({{1, 200}});
  EXPECT_EQ(Call(m, "ReplaceGreaterThan", 100.5, 1e9).Int(), 1);
  ExpectRows(m, {{1, 255}});

  const ObjectRef rows = Make(kTypeUnsignedInt | kFlagVector);
  const ObjectRef cols = Make(kTypeUnsignedInt | kFlagVector);
  m = MatrixOf<float>({{1, 2, 3}, {4, 2, 6}});
  EXPECT_EQ(Call(m, "Find", rows, cols, 2.0, 3.0).Int(), 3);
  EXPECT_EQ(ValuesOf<unsigned>(rows), (Indices{0, 0, 1}));
  EXPECT_EQ(ValuesOf<unsigned>(cols), (Indices{1, 2, 1}));
  EXPECT_EQ(Call(m, "Find", rows, rows, 2.0, 3.0).status, status::kBadArguments);
  EXPECT_EQ(Call(m, "Find", rows, VectorOf<int>({1}), 2.0, 3.0).Int(), -1);
}

TEST(MatrixStatistics, MissingAndNan) {
  const struct {
    Doubles values;
    double max, min, mean, median;
  } cases[] = {{{kM, 3, 7}, 7, 3, 5, 3},
               {{kM, kM}, kM, kM, kM, 0},
               {{kNan, 1}, kNan, kNan, kNan, kNan},
               {{1, kNan}, 1, 1, kNan, kNan},
               {{1, 2, kM}, 2, 1, 1.5, 1},
               {{kM, 5}, 5, 5, 5, 0}};
  for (const auto& c : cases) {
    const ObjectRef m = MatrixOf<double>({c.values});
    EXPECT_TRUE(Same(Call(m, "GetMax").real, c.max));
    EXPECT_TRUE(Same(Call(m, "GetMin").real, c.min));
    EXPECT_TRUE(Same(Call(m, "GetMean").real, c.mean));
    EXPECT_TRUE(Same(Call(m, "GetMedian").real, c.median)) << Call(m, "GetMedian").real;
  }
  EXPECT_EQ(Call(MatrixOf<OneTCcomplex>({{1}}), "GetMax").status, status::kUnsupported);

  const ObjectRef result = Make(kTypeInt | kFlagVector);
  const ObjectRef m = MatrixOf<double>({{0.5, 0.5}, {1, 0}});
  EXPECT_EQ(Call(m, "AllNonZero", result, 1, 0.5).Int(), 0);
  EXPECT_EQ(AsDoubles(result), (Doubles{1, 0}));
  EXPECT_EQ(Call(m, "AnyNonZero", result, 1, 0.5).Int(), 0);
  EXPECT_EQ(AsDoubles(result), (Doubles{1, 0}));
  EXPECT_EQ(Call(m, "AnyNonZero", result, 2, 0.5).Int(), 0);
  EXPECT_EQ(AsDoubles(result), (Doubles{0, 1}));
  EXPECT_EQ(Call(m, "AnyNonZero", result, 0, 0.5).Int(), -1);
  EXPECT_EQ(Call(m, "SumColumns", result).Int(), 0);
  EXPECT_EQ(AsDoubles(result), (Doubles{1, 0}));
}

int Operate(const ObjectRef& x, unsigned code, const ObjectRef& y) {
  return x->Operate2(nullptr, code, tagMSOOBJVECT(y.Get(), y->GetTypeID()), 0);
}

int Operate(const ObjectRef& x, unsigned code, double y) {
  return x->Operate2(nullptr, code, tagMSOOBJVECT::Plain(OneTCcomplex(y), kTypeDouble), 0);
}

TEST(MatrixArithmetic, Operators) {
  using namespace operation;
  const Rows a = {{1, 2}, {3, 4}};
  const Rows b = {{0, 1}, {1, kM}};
  const struct {
    unsigned code;
    Rows expected;
  } cases[] = {{kAdd, {{1, 3}, {4, kM}}},
               {kSubtract, {{1, 1}, {2, kM}}},
               {kMultiply, {{2, kM}, {4, kM}}},
               {kAssign, b}};
  for (const auto& c : cases) {
    const ObjectRef m = MatrixOf<double>(a);
    EXPECT_EQ(Operate(m, c.code, MatrixOf<double>(b)), 0);
    ExpectRows(m, c.expected);
  }
  const ObjectRef m = MatrixOf<double>(a);
  EXPECT_EQ(Operate(m, kDivide, MatrixOf<float>({{0, 1}, {1, 0}})), 0);
  ExpectRows(m, {{2, 1}, {4, 3}});
  EXPECT_EQ(Operate(m, kMultiply, m), 0);  // itself
  ExpectRows(m, {{8, 5}, {20, 13}});
  EXPECT_EQ(Operate(m, kPower, -1), 0);
  EXPECT_EQ(Operate(m, kMultiply, MatrixOf<double>({{8, 5}, {20, 13}})), 0);
  for (int i = 0; i < 4; ++i) EXPECT_NEAR(RowsOf(m)[i / 2][i % 2], i % 3 == 0, 1e-12);
  EXPECT_EQ(Operate(m, kMultiply, 2), 0);
  EXPECT_EQ(Operate(m, kAssign, 5), 0);
  ExpectRows(m, {{5, 5}, {5, 5}});

  const ObjectRef wide = MatrixOf<double>({{1, 2, 3}});
  const ObjectRef v = VectorOf<double>({1, 2, 3, 4, 5});
  for (const unsigned code : {kAdd, kSubtract, kMultiply, kDivide, kPower, 9u}) {
    EXPECT_EQ(Operate(m, code, wide), status::kFailed) << code;
    EXPECT_EQ(Operate(m, code, v), status::kFailed) << code;
  }
  EXPECT_EQ(Operate(m, kPower, 0.5), status::kFailed);
  EXPECT_EQ(Operate(m, kPower, kM), status::kFailed);
  EXPECT_EQ(Operate(m, kPower, -1), status::kFailed);  // singular
  EXPECT_EQ(Operate(m, kDivide, MatrixOf<double>({{5, 5}, {5, 5}})), status::kFailed);
  EXPECT_EQ(Operate(wide, kPower, 2), status::kFailed);
  ExpectRows(m, {{5, 5}, {5, 5}});

  const ObjectRef tall = EmptyMatrix(), flat = EmptyMatrix();
  EXPECT_EQ(Call(tall, "SetSize", 1518500250, 0).Int(), 1);
  EXPECT_EQ(Call(flat, "SetSize", 0, 1518500250).Int(), 1);
  EXPECT_EQ(Operate(tall, kMultiply, flat), status::kTooLarge);

  EXPECT_EQ(Operate(m, kAssign, v), 0);
  ExpectRows(m, {{1, 2}, {3, 4}});
  const ObjectRef empty = EmptyMatrix(kTypeInt);
  EXPECT_EQ(Operate(empty, kAssign, v), 0);
  ExpectRows(empty, {{1, 2, 3, 4, 5}});
  EXPECT_EQ(Operate(v, kAssign, m), 0);
  ExpectValues(v, {1, 2, 3, 4});
  EXPECT_EQ(Operate(v, kAdd, m), status::kFailed);

  const ObjectRef bytes = MatrixOf<unsigned char>({{200, 2}, {0, 3}});
  EXPECT_EQ(Operate(bytes, kMultiply, bytes), 0);
  ExpectRows(bytes, {{64, 150}, {0, 9}});  // wraps
  EXPECT_EQ(Operate(bytes, kPower, 2), 0);
  ExpectRows(bytes, {{255, 255}, {0, 81}});  // saturates
  const MSOINDICES cell = MSOINDICES{}.WithCell(1, 0);
  EXPECT_EQ(bytes->Operate2(&cell, kAdd, tagMSOOBJVECT::Plain(OneTCcomplex(7), kTypeInt), 0), 0);
  ExpectRows(bytes, {{255, 255}, {7, 81}});
}

TEST(MatrixArithmetic, ElementByElement) {
  const ObjectRef m = MatrixOf<double>({{1, kM}, {3, 4}});
  const ObjectRef other = MatrixOf<int>({{2, 2}, {2, 0}});
  EXPECT_EQ(Call(m, "DotPower", other).Int(), 1);
  ExpectRows(m, {{1, kM}, {9, 1}});
  EXPECT_EQ(Call(m, "DotDivide", other).Int(), 1);
  ExpectRows(m, {{0.5, kM}, {4.5, kM}});
  EXPECT_EQ(Call(m, "DotMultiply", m).Int(), 1);
  ExpectRows(m, {{0.25, kM}, {20.25, kM}});
  EXPECT_EQ(Call(other, "DotMultiply", m).Int(), 0);
  EXPECT_EQ(Call(m, "DotMultiply", MatrixOf<double>({{1, 2, 3}})).Int(), 0);
  EXPECT_EQ(Call(m, "DotMultiply", VectorOf<double>({1})).status, status::kBadArguments);

  EXPECT_EQ(Call(MatrixOf<double>({{1, 2, 3}}), "Inverse").Int(), -1);
  EXPECT_EQ(Call(m, "Inverse").Int(), 1);
  EXPECT_EQ(Call(MatrixOf<int>({{1}}), "Inverse").status, status::kUnsupported);
  const ObjectRef z = MatrixOf<OneTCcomplex>({{2}});
  EXPECT_EQ(Call(z, "Inverse").Int(), 0);
  ExpectRows(z, {{0.5}});

  const ObjectRef x = MatrixOf<double>({{2.5, -2.5, kM}});
  const ObjectRef whole = EmptyMatrix(kTypeInt);
  EXPECT_EQ(Call(x, "Ceil", whole).Int(), 0);
  ExpectRows(whole, {{3, -2, 0}});
  EXPECT_EQ(Call(x, "Round", x).Int(), 0);
  ExpectRows(x, {{3, -3, kM}});
  EXPECT_EQ(Call(x, "Fix", Null()).status, status::kUnresolved);
  EXPECT_EQ(Call(whole, "Fix", x).status, status::kUnsupported);
  ExpectRows(x, {{3, -3, kM}});
  EXPECT_EQ(Call(x, "CastToInteger", whole).Int(), 0);
  ExpectRows(whole, {{3, -3, 0}});
  EXPECT_EQ(Call(x, "CastToInteger", x).status, status::kNotContiguous);
}

TEST(MatrixArithmetic, AlongRowsAndColumns) {
  const ObjectRef m = MatrixOf<short>({{1, 2, 3}, {4, 5, 6}});
  const ObjectRef result = EmptyMatrix();
  EXPECT_EQ(Call(m, "CumulativeSum", result, 2).Int(), 0);
  ExpectRows(result, {{1, 3, 6}, {4, 9, 15}});
  const ObjectRef z = EmptyMatrix(kTypeComplex);
  EXPECT_EQ(Call(m, "CumulativeProduct", z, 1).Int(), 0);
  ExpectRows(z, {{1, 2, 3}, {4, 10, 18}});
  EXPECT_EQ(Call(m, "CumulativeSum", m, 1).status, status::kNotContiguous);
  EXPECT_EQ(Call(z, "CumulativeSum", result, 1).status, status::kNotContiguous);
  EXPECT_EQ(Call(result, "CumulativeSum", result, 1).Int(), 0);
  ExpectRows(result, {{1, 3, 6}, {5, 12, 21}});
  EXPECT_EQ(Call(result, "CumulativeSum", result, 3).Int(), -1);

  EXPECT_EQ(Call(m, "Difference", result, 2, 2).Int(), 0);
  ExpectRows(result, {{0}, {0}});
  EXPECT_EQ(Call(m, "Difference", result, 2, 1).Int(), -1);
  EXPECT_EQ(Call(m, "Difference", result, 0, 1).Int(), -1);
  EXPECT_EQ(Call(m, "Difference", m, 1, 1).Int(), 0);
  ExpectRows(m, {{3, 3, 3}});

  const ObjectRef axes = MatrixOf<double>({{1, 0, 0}, {0, 1, 0}});
  EXPECT_EQ(Call(axes, "Cross", MatrixOf<int>({{0, 1, 0}, {0, 0, 1}}), axes, 2).Int(), 0);
  ExpectRows(axes, {{0, 0, 1}, {1, 0, 0}});
  EXPECT_EQ(Call(axes, "Cross", axes, axes, 1).Int(), -1);
}

TEST(MatrixComplex, Parts) {
  const ObjectRef re = MatrixOf<double>({{3, kM}});
  const ObjectRef im = MatrixOf<float>({{4, 1}});
  const ObjectRef z = EmptyMatrix(kTypeComplex);
  EXPECT_EQ(Call(z, "MakeComplex", re, im).Int(), 0);
  const ObjectRef part = EmptyMatrix();
  EXPECT_EQ(Call(z, "GetAmplitude", part).Int(), 0);
  ExpectRows(part, {{5, kM}});
  EXPECT_EQ(Call(z, "Conjugate").Int(), 0);
  EXPECT_EQ(Call(z, "GetImaginary", part).Int(), 0);
  ExpectRows(part, {{-4, -1}});
  EXPECT_EQ(Call(z, "GetReal", z).Int(), -1);
  EXPECT_EQ(Call(z, "MakeComplex", re, MatrixOf<double>({{1}})).Int(), -1);
  EXPECT_EQ(Call(z, "MakeComplex", re, z).Int(), -1);
  EXPECT_EQ(Call(re, "Conjugate").status, status::kUnsupported);
}

}  // namespace
}  // namespace vela::testing
