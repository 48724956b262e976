#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "frame/interface/host_services.h"
#include "frame/interface/type_words.h"
#include "host/data/csv_file.h"
#include "host/data/number_cell.h"
#include "platform/file_handle.h"

namespace vela::host {
namespace {

using platform::FileCause;

// Collects text and writes it in large pieces.
class Writer {
 public:
  explicit Writer(text::TextEncoding encoding) : encoding_(encoding) {}

  FileCause Open(const std::string& path) {
    platform::FileOptions options;
    options.access = platform::FileAccess::kWrite;
    options.creation = platform::FileCreation::kCreateAlways;
    const FileCause cause = file_.Open(path, options);
    if (cause != FileCause::kNone || encoding_ == text::TextEncoding::kUtf8) return cause;
    return Write(text::MarkOf(encoding_));
  }
  std::string& Text() { return text_; }
  // Between rows, where the text can be parted.
  FileCause EndRow() {
    text_ += '\n';
    return text_.size() < kPieceBytes ? FileCause::kNone : Flush();
  }
  FileCause Close() {
    const FileCause cause = Flush();
    const FileCause closing = file_.Close();
    return cause != FileCause::kNone ? cause : closing;
  }

 private:
  static constexpr std::size_t kPieceBytes = std::size_t{1} << 20;

  FileCause Flush() {
    const FileCause cause =
        encoding_ == text::TextEncoding::kUtf16Little || encoding_ == text::TextEncoding::kUtf16Big
            ? Write(text::EncodeText(text_, encoding_))
            : Write(text_);
    text_.clear();
    return cause;
  }
  FileCause Write(std::string_view bytes) {
    std::size_t done = 0;
    return file_.Write(bytes.data(), bytes.size(), done);
  }

  text::TextEncoding encoding_;
  platform::FileHandle file_;
  std::string text_;
};

void AppendText(std::string& line, std::string_view text) {
  if (text.find_first_of(",;\t\"\r\n") == text.npos) {
    line += text;
    return;
  }
  line += '"';
  for (const char ch : text) {
    if (ch == '"') line += ch;
    line += ch;
  }
  line += '"';
}

// What is to be known of a column to write its cells.
struct Source {
  VeData* column;
  unsigned type_id;
  const std::byte* elements;  // null for texts
  std::size_t width;
  std::int64_t rows;
};

Source SourceOf(VeData& column) {
  const unsigned type_id = column.GetElementType();
  return {&column, type_id, static_cast<const std::byte*>(column.GetBuffer()),
          PLTTypeToSizeOf(type_id), column.GetSize()};
}

void AppendCell(std::string& line, const Source& source, std::int64_t row) {
  if (row >= source.rows) return;
  if (source.elements == nullptr) return AppendText(line, source.column->GetText(row).View());
  char text[kCellTextSize];
  const void* const element = source.elements + static_cast<std::size_t>(row) * source.width;
  line.append(text, WriteElementCell(source.type_id, element, text));
}

// A line that would be empty, and so no row, shows an empty field.
void EndFields(std::string& line, std::size_t begin) {
  if (line.size() == begin) line += "\"\"";
}

FileCause WriteRows(const Worksheet& worksheet, Writer& writer) {
  std::vector<Source> sources;
  std::string& line = writer.Text();
  for (int i = 0; i < worksheet.CountColumns(); ++i) {
    if (i > 0) line += ',';
    AppendText(line, worksheet.Column(i)->Name());
    sources.push_back(SourceOf(*worksheet.Column(i)));
  }
  if (sources.empty()) return FileCause::kNone;
  if (const FileCause cause = writer.EndRow(); cause != FileCause::kNone) return cause;
  const std::int64_t rows = worksheet.CountRows();
  for (std::int64_t row = 0; row < rows; ++row) {
    const std::size_t begin = line.size();
    for (const Source& source : sources) {
      if (source.column != sources.front().column) line += ',';
      AppendCell(line, source, row);
    }
    EndFields(line, begin);
    if (const FileCause cause = writer.EndRow(); cause != FileCause::kNone) return cause;
  }
  return FileCause::kNone;
}

}  // namespace

FileCause WriteCsvFile(const Worksheet& worksheet, const std::string& path,
                       text::TextEncoding encoding) {
  Writer writer(encoding);
  if (const FileCause cause = writer.Open(path); cause != FileCause::kNone) return cause;
  const FileCause cause = WriteRows(worksheet, writer);
  const FileCause closing = writer.Close();
  return cause != FileCause::kNone ? cause : closing;
}

}  // namespace vela::host
