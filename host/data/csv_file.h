// Worksheets from and to CSV files.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "frame/interface/export.h"
#include "frame/interface/text_encoding.h"
#include "host/data/worksheet.h"
#include "platform/file_cause.h"

namespace vela::host {

// A worksheet of the name from a file in any encoding. A column whose cells all read as numbers, or
// are empty, is one of doubles, and of complex values when they are such (1+2i); any other is one
// of texts. Columns are named by the first row when that is a header, and otherwise A, B, ... Z,
// AA; so are those without a name, and a name that is there already gets a number. Null with the
// cause when the file cannot be read. Throws std::bad_alloc.
VELAHOST_API std::unique_ptr<Worksheet> ReadCsvFile(const std::string& path, std::string name,
                                                    bool has_header, platform::FileCause& cause);

// Writes a header and the rows, as many as the longest column has, in the encoding: UTF-16 with its
// mark, UTF-8 without. Numbers are written so that they read back as they were; a cell without a
// value is empty. Throws std::bad_alloc.
VELAHOST_API platform::FileCause WriteCsvFile(const Worksheet& worksheet, const std::string& path,
                                              text::TextEncoding encoding);

}  // namespace vela::host
