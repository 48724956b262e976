// The cells of a CSV text, column by column.
#pragma once

#include <deque>
#include <string>
#include <string_view>
#include <vector>

namespace vela::host {

// Rows end with LF, CR LF or CR; lines without anything are none. Fields are parted by a comma, a
// semicolon or a tab, whichever the first line has most of. A field in quotes may hold separators,
// line ends and doubled quotes. Short rows are filled up with empty cells.
class CsvCells {
 public:
  // The text must outlive this. Throws std::bad_alloc.
  explicit CsvCells(std::string_view text);

  // All columns have equally many cells.
  const std::vector<std::vector<std::string_view>>& Columns() const { return columns_; }

  // What the grammar finds, in order.
  void AddField(std::string_view text);
  void AddQuotedField(std::string_view quoted);
  void EndRow();

 private:
  void ReserveRows();

  std::string_view text_;
  std::vector<std::vector<std::string_view>> columns_;
  std::size_t rows_ = 0;
  std::size_t column_ = 0;
  std::deque<std::string> unquoted_;  // what fields with quotes inside stand for
};

}  // namespace vela::host
