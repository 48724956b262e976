#include <algorithm>
#include <optional>
#include <span>
#include <utility>

#include "frame/interface/missing_value.h"
#include "frame/interface/type_words.h"
#include "host/data/csv_cells.h"
#include "host/data/csv_file.h"
#include "host/data/number_cell.h"
#include "platform/file_handle.h"

namespace vela::host {
namespace {

using Cells = std::span<const std::string_view>;
using platform::FileCause;

FileCause ReadWhole(const std::string& path, std::string& bytes) {
  platform::FileHandle file;
  platform::FileOptions options;
  options.shares_reading = options.shares_writing = true;
  if (const FileCause cause = file.Open(path, options); cause != FileCause::kNone) return cause;
  std::int64_t size = 0;
  if (const FileCause cause = file.GetSize(size); cause != FileCause::kNone) return cause;
  constexpr std::size_t kLeastRead = 4096;
  std::size_t filled = 0;
  for (std::size_t done = 1; done != 0;) {
    // One byte more than the size, so that the end shows without a further round.
    const std::size_t room = std::max(static_cast<std::size_t>(size) + 1, filled + kLeastRead);
    if (bytes.size() < room) bytes.resize(room);
    const FileCause cause = file.Read(bytes.data() + filled, bytes.size() - filled, done);
    if (cause != FileCause::kNone) return cause;
    filled += done;
  }
  bytes.resize(filled);
  return FileCause::kNone;
}

std::string Utf8Of(std::string bytes) {
  constexpr std::size_t kDetectedBytes = std::size_t{1} << 16;
  const std::string_view start = std::string_view(bytes).substr(0, kDetectedBytes);
  const text::TextEncoding encoding = text::DetectEncoding(start, start.size() == bytes.size());
  return text::DecodeText(std::move(bytes), encoding);
}

// "A" to "Z", "AA" and so on.
std::string LettersOf(std::size_t index) {
  std::string letters;
  for (++index; index > 0; index = (index - 1) / 26) {
    letters.insert(letters.begin(), static_cast<char>('A' + (index - 1) % 26));
  }
  return letters;
}

// The name for the next column of the worksheet.
std::string ColumnName(const Worksheet& worksheet, std::string_view wanted) {
  const std::string name = wanted.empty()
                               ? LettersOf(static_cast<std::size_t>(worksheet.CountColumns()))
                               : std::string(wanted);
  std::string free = name;
  for (int number = 2; worksheet.Find(free) != nullptr; ++number) {
    free = name + " " + std::to_string(number);
  }
  return free;
}

// A column of the type whose cells read(text, element) fills; none when it refuses a cell.
template <class T, class Read>
VeRef<WorksheetColumn> Numbers(const std::string& name, unsigned type_id, Cells cells, Read read) {
  auto column = WorksheetColumn::Create(name, type_id, static_cast<std::int64_t>(cells.size()));
  if (!column) throw std::bad_alloc();
  T* const elements = static_cast<T*>(column->GetBuffer());
  for (std::size_t row = 0; row < cells.size(); ++row) {
    if (!read(cells[row], elements[row])) return {};
  }
  return column;
}

VeRef<WorksheetColumn> Texts(const std::string& name, Cells cells) {
  auto column = WorksheetColumn::Create(name, kTypeString, static_cast<std::int64_t>(cells.size()));
  if (!column) throw std::bad_alloc();
  std::string text;
  for (std::size_t row = 0; row < cells.size(); ++row) {
    text = cells[row];
    column->SetText(static_cast<std::int64_t>(row), text.c_str());
  }
  return column;
}

VeRef<WorksheetColumn> ColumnOf(const std::string& name, Cells cells) {
  auto column = Numbers<double>(name, kTypeDouble, cells, ReadNumberCell);
  if (!column) column = Numbers<OneTCcomplex>(name, kTypeComplex, cells, ReadComplexCell);
  return column ? column : Texts(name, cells);
}

}  // namespace

std::unique_ptr<Worksheet> ReadCsvFile(const std::string& path, std::string name, bool has_header,
                                       FileCause& cause) {
  std::string bytes;
  cause = ReadWhole(path, bytes);
  if (cause != FileCause::kNone) return nullptr;
  const std::string text = Utf8Of(std::move(bytes));
  const CsvCells csv(text);
  auto worksheet = std::make_unique<Worksheet>(std::move(name));
  for (const auto& cells : csv.Columns()) {
    const bool is_named = has_header && !cells.empty();
    const std::string column_name =
        ColumnName(*worksheet, is_named ? cells.front() : std::string_view());
    worksheet->Add(ColumnOf(column_name, Cells(cells).subspan(is_named ? 1 : 0)));
  }
  return worksheet;
}

}  // namespace vela::host
