#include "tesselc/source.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>

#include "tesselc/diagnostic.h"
#include "tesselc/parser.h"
#include "tests/runner/tree_printer.h"

namespace tesselc {
namespace {

// A folder of its own for each test, with a name that is not ASCII.
class Sources : public ::testing::Test {
 protected:
  void SetUp() override {
    const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
    folder_ = std::filesystem::temp_directory_path() /
              PathFromUtf8("tesselc \xC3\xA4 " + std::string(test->name()));
    std::filesystem::remove_all(folder_);
    std::filesystem::create_directories(folder_);
  }
  void TearDown() override { std::filesystem::remove_all(folder_); }

  std::string Path(const std::string& name) const {
    return Utf8FromPath(folder_ / PathFromUtf8(name));
  }
  std::string Write(const std::string& name, const std::string& text) const {
    const auto path = folder_ / PathFromUtf8(name);
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << text;
    return Utf8FromPath(path);
  }
  std::string Parsed(const std::string& path) {
    const auto loaded = sources_.Load(path);
    EXPECT_TRUE(loaded.ok) << loaded.error;
    const ParseResult result = ParseProgram(sources_, loaded.id);
    return result.ok() ? ToText(result.program) : Format(result.diagnostics[0], sources_);
  }

  std::filesystem::path folder_;
  SourceSet sources_;
};

TEST_F(Sources, AreReadWholeAndOnce) {
  const std::string text("a\r\n\0\xFF", 5);
  const std::string path = Write("\xC3\xBC.tc", text);
  const auto first = sources_.Load(path);
  ASSERT_TRUE(first.ok) << first.error;
  EXPECT_TRUE(first.first_time);
  EXPECT_EQ(sources_.file(first.id).text(), text);
  const auto again = sources_.Load(Path("./\xC3\xBC.tc"));
  EXPECT_TRUE(again.ok);
  EXPECT_FALSE(again.first_time);
  EXPECT_EQ(again.id, first.id);
}

TEST_F(Sources, RefusesWhatIsNoFile) {
  EXPECT_EQ(sources_.Load(Path("none.tc")).error,
            "cannot read '" + Path("none.tc") + "': no such file");
  EXPECT_EQ(sources_.Load(Path("")).error, "cannot read '" + Path("") + "': it is a folder");
  EXPECT_FALSE(sources_.Load("").ok);
  EXPECT_FALSE(sources_.Load(std::string("a\0b", 3)).ok);
  EXPECT_FALSE(sources_.Load(Write("a.tc", "") + "/b.tc").ok);
  EXPECT_EQ(sources_.size(), 0u);
}

TEST_F(Sources, IncludesOnceRelativeToTheIncluder) {
  Write("lib/inner.tc", "inner;");
  Write("lib/outer.tc",
        "#include \"inner.tc\"\n#include \"../main.tc\"\nint f() { return 1; } outer;");
  const std::string path =
      Write("main.tc",
            "before; #include \"lib/outer.tc\" // one\n#include \"lib/../lib/inner.tc\"\nafter;");
  EXPECT_EQ(Parsed(path), "(fn int f () (block (return 1))) before inner outer after");
}

TEST_F(Sources, ReportsMistakesInTheFileTheyAreIn) {
  Write("bad.tc", "ok;\n  x = ;");
  EXPECT_EQ(Parsed(Write("main.tc", "#include \"bad.tc\"")),
            Path("bad.tc") + ":2:7: error: expected an expression\n  x = ;\n      ^\n" +
                "note: included by " + Path("main.tc") + ":1:1\n");
  EXPECT_EQ(Parsed(Write("missing.tc", "a;\n#include \"none.tc\"\n")),
            Path("missing.tc") + ":2:1: error: cannot read '" + Path("none.tc") +
                "': no such file\n#include \"none.tc\"\n^\n");
}

TEST_F(Sources, LimitsHowDeepIncludesGo) {
  for (int i = 0; i < 200; ++i) {
    Write(std::to_string(i) + ".tc", "#include \"" + std::to_string(i + 1) + ".tc\"");
  }
  EXPECT_NE(Parsed(Path("0.tc")).find("nesting too deep"), std::string::npos);
}

TEST(SourceFile, CountsLinesAndCharacters) {
  const SourceFile file("test", "a\xC3\xA9z\r\n\n\tend");
  struct Case {
    std::size_t offset;
    std::uint32_t line, column;
    const char* text;
  };
  for (const Case& c : std::initializer_list<Case>{{0, 1, 1, "a\xC3\xA9z"},
                                                   {3, 1, 3, "a\xC3\xA9z"},
                                                   {6, 2, 1, ""},
                                                   {7, 3, 1, "\tend"},
                                                   {8, 3, 2, "\tend"},
                                                   {11, 3, 5, "\tend"},
                                                   {99, 3, 5, "\tend"}}) {
    EXPECT_EQ(file.Locate(c.offset).line, c.line) << c.offset;
    EXPECT_EQ(file.Locate(c.offset).column, c.column) << c.offset;
    EXPECT_EQ(file.Line(c.offset), c.text) << c.offset;
  }
}

// What is shown for a mistake at `offset` of a text of one line: the excerpt's two lines.
std::string Excerpt(const std::string& text, std::uint32_t offset) {
  SourceSet sources;
  const std::string shown = Format({{sources.Add("f", text), offset, 1}, "m"}, sources);
  return shown.substr(shown.find('\n') + 1);
}

TEST(Diagnostic, PutsTheCaretUnderThePlace) {
  EXPECT_EQ(Excerpt("ab c", 3), "ab c\n   ^\n");
  EXPECT_EQ(Excerpt("\ta\tb", 3), "\ta\tb\n\t \t^\n");
  EXPECT_EQ(Excerpt("\xC3\xA9\xC3\xA9 x", 5), "\xC3\xA9\xC3\xA9 x\n   ^\n");
  EXPECT_EQ(Excerpt("ab", 2), "ab\n  ^\n");
  EXPECT_EQ(Excerpt("", 0), "\n^\n");
  EXPECT_EQ(Excerpt(std::string("a\0\x1B\xFFz", 5), 4), "a???z\n    ^\n");
}

TEST(Diagnostic, CutsLongLinesAroundTheCaret) {
  const std::string line = std::string(5000, 'a') + "X" + std::string(5000, 'b');
  const std::string before(60, 'a'), after(39, 'b');
  EXPECT_EQ(Excerpt(line, 5000),
            "..." + before + "X" + after + "...\n   " + std::string(60, ' ') + "^\n");
  EXPECT_EQ(Excerpt(line, 3), std::string(100, 'a') + "...\n   ^\n");
  EXPECT_EQ(Excerpt(line, 10001),
            "..." + std::string(60, 'b') + "\n   " + std::string(60, ' ') + "^\n");
}

}  // namespace
}  // namespace tesselc
