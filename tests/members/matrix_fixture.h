// What the tests of matrices share.
#pragma once

#include "vector_fixture.h"

namespace vela::testing {

using Rows = std::vector<Doubles>;

// A matrix of T with the values, converted.
template <class T>
ObjectRef MatrixOf(const Rows& rows) {
  const ObjectRef matrix = Make(kElement<T>.type_id | kFlagMatrix);
  const int cols = rows.empty() ? 0 : static_cast<int>(rows[0].size());
  EXPECT_EQ(Call(matrix, "SetSize", static_cast<int>(rows.size()), cols).Int(), 1);
  std::vector<T> elements;
  for (const Doubles& row : rows) {
    for (const double value : row) elements.push_back(ConvertValue<T>(value));
  }
  EXPECT_EQ(matrix->InitalizeFromMemory(elements.data(), static_cast<int>(elements.size())), 0);
  return matrix;
}

inline ObjectRef EmptyMatrix(unsigned type_id = kTypeDouble) { return Make(type_id | kFlagMatrix); }

// The elements of a layer as they read as doubles.
inline Rows RowsOf(const ObjectRef& matrix, int layer = 0) {
  const MSOINDICES at = MSOINDICES::Object(layer);
  int rows = -1, cols = -1;
  EXPECT_EQ(matrix->GetMatrixDimensions(&rows, &cols, &at), 1);
  Rows values(static_cast<std::size_t>(rows), Doubles(static_cast<std::size_t>(cols)));
  for (int row = 0; row < rows; ++row) {
    for (int col = 0; col < cols; ++col) {
      const MSOINDICES cell = at.WithCell(row, col);
      EXPECT_EQ(matrix->GetDouble(&cell, values[row][col]), 0);
    }
  }
  return values;
}

inline void ExpectRows(const ObjectRef& matrix, const Rows& expected, int layer = 0) {
  const Rows rows = RowsOf(matrix, layer);
  ASSERT_EQ(rows.size(), expected.size());
  for (std::size_t r = 0; r < rows.size(); ++r) {
    ASSERT_EQ(rows[r].size(), expected[r].size()) << "row " << r;
    for (std::size_t c = 0; c < rows[r].size(); ++c) {
      EXPECT_TRUE(Same(rows[r][c], expected[r][c]))
          << r << ", " << c << ": " << rows[r][c] << ", not " << expected[r][c];
    }
  }
}

}  // namespace vela::testing
