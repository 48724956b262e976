#include "host/data/csv_cells.h"

#include <algorithm>

#include "host/data/csv_grammar.h"

namespace vela::host {
namespace {

namespace pegtl = tao::pegtl;

// What is done with what the grammar finds.
template <class Rule>
struct Action : pegtl::nothing<Rule> {};

template <char kSeparator>
struct Action<csv::PlainField<kSeparator>> {
  template <class Input>
  static void apply(const Input& in, CsvCells& cells) {
    cells.AddField({in.begin(), in.size()});
  }
};

template <char kSeparator>
struct Action<csv::QuotedField<kSeparator>> {
  template <class Input>
  static void apply(const Input& in, CsvCells& cells) {
    cells.AddQuotedField({in.begin(), in.size()});
  }
};

template <char kSeparator>
struct Action<csv::Row<kSeparator>> {
  static void apply0(CsvCells& cells) { cells.EndRow(); }
};

// The character that most fields of the first line are parted by.
char SeparatorOf(std::string_view text) {
  char separator = ',';
  std::ptrdiff_t most = 0;
  std::string line;
  bool is_quoted = false;
  for (const char ch : text) {
    if (ch == '"') is_quoted = !is_quoted;
    if (is_quoted) continue;
    if (ch == '\n' || ch == '\r') break;
    line += ch;
  }
  for (const char candidate : {',', ';', '\t'}) {
    const auto count = std::ranges::count(line, candidate);
    if (count > most) separator = candidate;
    most = std::max(most, count);
  }
  return separator;
}

template <char kSeparator>
void Parse(std::string_view text, CsvCells& cells) {
  using Input = pegtl::memory_input<pegtl::tracking_mode::lazy, pegtl::eol::lf, const char*>;
  Input input(text.data(), text.data() + text.size(), "");
  pegtl::parse<csv::File<kSeparator>, Action>(input, cells);
}

}  // namespace

CsvCells::CsvCells(std::string_view text) : text_(text) {
  switch (SeparatorOf(text)) {
    case ';':
      Parse<';'>(text, *this);
      break;
    case '\t':
      Parse<'\t'>(text, *this);
      break;
    default:
      Parse<','>(text, *this);
  }
  for (auto& column : columns_) column.resize(rows_);
}

// There are no more rows than line ends and no more cells than bytes.
void CsvCells::ReserveRows() {
  const auto rows = static_cast<std::size_t>(std::ranges::count(text_, '\n')) + 1;
  const std::size_t most = text_.size() / columns_.size() + 1;
  for (auto& column : columns_) column.reserve(std::min(rows, most));
}

void CsvCells::AddField(std::string_view text) {
  if (column_ == columns_.size()) columns_.emplace_back();
  auto& column = columns_[column_++];
  if (column.size() < rows_) column.resize(rows_);
  column.push_back(text);
}

void CsvCells::AddQuotedField(std::string_view quoted) {
  const std::string_view inside = quoted.substr(1, quoted.size() - 2);
  if (inside.find('"') == inside.npos) return AddField(inside);
  std::string& text = unquoted_.emplace_back();
  for (std::size_t at = 0; at < inside.size(); ++at) {
    text += inside[at];
    if (inside[at] == '"') ++at;
  }
  AddField(text);
}

void CsvCells::EndRow() {
  if (rows_ == 0) ReserveRows();
  ++rows_;
  column_ = 0;
}

}  // namespace vela::host
