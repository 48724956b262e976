// Worksheets from and to CSV files.
#include <cmath>
#include <cstdio>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>

#include "frame/interface/missing_value.h"
#include "frame/interface/type_words.h"
#include "host/data/csv_file.h"

namespace vela::host {
namespace {

using platform::FileCause;
using text::TextEncoding;

const char* const kPath = "csv_test.tmp";

void WriteFile(std::string_view bytes) { std::ofstream(kPath, std::ios::binary) << bytes; }

std::string FileBytes() {
  std::ifstream file(kPath, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

class CsvTest : public ::testing::Test {
 protected:
  ~CsvTest() override { std::remove(kPath); }

  static std::unique_ptr<Worksheet> Read(bool has_header = true) {
    FileCause cause = FileCause::kGeneric;
    auto worksheet = ReadCsvFile(kPath, "b", has_header, cause);
    EXPECT_EQ(cause, FileCause::kNone);
    return worksheet;
  }
};

// "name:type:cell|cell;" of each column.
std::string Describe(const Worksheet& worksheet) {
  std::string all;
  for (int i = 0; i < worksheet.CountColumns(); ++i) {
    WorksheetColumn& column = *worksheet.Column(i);
    all += column.Name() + ":" + std::to_string(column.GetElementType()) + ":";
    for (std::int64_t row = 0; row < column.GetSize(); ++row) {
      all += (row > 0 ? "|" : "") + std::string(column.GetText(row).View());
    }
    all += ";";
  }
  return all;
}

TEST_F(CsvTest, ReadsWhatFilesHold) {
  const struct {
    std::string text;
    bool has_header;
    const char* columns;
  } kCases[] = {
      {"", true, ""},
      {"a,b\n", true, "a:11:;b:11:;"},
      {"a,b\n1,x\n,y\n", true, "a:11:1|;b:27:x|y;"},
      {"a,b\r\n1,2\r\r\n3", true, "a:11:1|3;b:11:2|;"},
      {"1;2\n3;4,5", false, "A:11:1|3;B:27:2|4,5;"},
      {"a\tb\n\"x\ty\"\t2\n", true, "a:27:x\ty;b:11:2;"},
      {"\"a \"\"b\"\"\n,\",c\n\"1\",\"\"\"\"\n", true, "a \"b\"\n,:11:1;c:27:\";"},
      {"a\n\"open,1\nb\"c\n", true, "a:27:\"open|b\"c;B:11:1|;"},
      {"a,,a,a\n1,2,3,4,5\n", true, "a:11:1;B:11:2;a 2:11:3;a 3:11:4;E:11:5;"},
      {"n\n 1 \nNANUM\n0x10\n-inf\nnan\n+5\n", true, "n:11:1||16|-inf|nan|5;"},
      {"z\n1+2i\n-3e-2i\n\n4\n", true, "z:12:1+2i|0-0.03i|4+0i;"},
      {"t\n1\ntwo\n007\n", true, "t:27:1|two|007;"},
  };
  for (const auto& test : kCases) {
    WriteFile(test.text);
    EXPECT_EQ(Describe(*Read(test.has_header)), test.columns) << test.text;
  }
  FileCause cause = FileCause::kNone;
  EXPECT_EQ(ReadCsvFile("no such file", "b", true, cause), nullptr);
  EXPECT_EQ(cause, FileCause::kFileNotFound);
}

TEST_F(CsvTest, WritesWhatReadsBackTheSame) {
  Worksheet worksheet("b");
  const struct {
    const char* name;
    unsigned type;
    std::vector<const char*> cells;
  } kColumns[] = {
      {"x, \"y\"", kTypeDouble, {"0.1", "", "-1e-300", "1.7976931348623157e308"}},
      {"z", kTypeComplex, {"", "1-2i", "0.1+3i", "-1e5+0.25i"}},
      {"t\xC3\xA9xt", kTypeString, {"a,b", "\"q\"\r\n", "", "\xF0\x9F\x98\x80"}},
  };
  for (const auto& column : kColumns) {
    auto created = WorksheetColumn::Create(column.name, column.type, 4);
    for (int row = 0; row < 4; ++row) created->SetText(row, column.cells[row]);
    ASSERT_TRUE(worksheet.Add(created));
  }
  for (unsigned encoding = 0; encoding < text::kEncodings; ++encoding) {
    ASSERT_EQ(WriteCsvFile(worksheet, kPath, static_cast<TextEncoding>(encoding)),
              FileCause::kNone);
    const std::string bytes = FileBytes();
    EXPECT_EQ(text::EncodingOfMark(bytes) == TextEncoding::kBytes, encoding < 2);
    const auto read = Read();
    EXPECT_EQ(Describe(*read), Describe(worksheet)) << encoding;
    ASSERT_EQ(WriteCsvFile(*read, kPath, static_cast<TextEncoding>(encoding)), FileCause::kNone);
    EXPECT_EQ(FileBytes(), bytes);
  }
  EXPECT_NE(WriteCsvFile(worksheet, "no such folder/x", TextEncoding::kUtf8), FileCause::kNone);
}

TEST_F(CsvTest, LonelyMissingCellsAreRows) {
  Worksheet worksheet("b");
  worksheet.Add(WorksheetColumn::Create("x", kTypeDouble, 2));
  ASSERT_EQ(WriteCsvFile(worksheet, kPath, TextEncoding::kUtf8), FileCause::kNone);
  EXPECT_EQ(Describe(*Read()), "x:11:|;");
}

}  // namespace
}  // namespace vela::host
