#include <chrono>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

#include "tesselc/parser.h"

namespace tesselc {
namespace {

std::string Repeat(const std::string& text, std::size_t times) {
  std::string all;
  all.reserve(text.size() * times);
  for (std::size_t i = 0; i < times; ++i) all += text;
  return all;
}

// "line:column: message" of the first mistake, or "ok".
std::string FirstMistake(const std::string& script) {
  SourceSet sources;
  const FileId file = sources.Add("test", script);
  const ParseResult result = ParseProgram(sources, file);
  if (result.ok()) return "ok";
  const Diagnostic& mistake = result.diagnostics[0];
  const LineColumn place = sources.file(file).Locate(mistake.range.offset);
  return std::to_string(place.line) + ":" + std::to_string(place.column) + ": " + mistake.message;
}

TEST(SyntaxError, SaysWhatIsWrongAndWhere) {
  struct Case {
    std::string script;
    const char* mistake;
  };
  const std::vector<Case> cases = {
      // Missing symbols are shown behind the last word, on its own line.
      {"int x = 1\nint y;", "1:10: expected ';' after the declaration"},
      {"a = b // why\n\nc = d;", "1:6: expected ';' after the expression"},
      {"return 1", "1:9: expected ';' after the statement"},
      {"if x", "1:3: expected '('"},
      {"if (x y", "1:6: expected ')'"},
      {"v[1;", "1:4: expected ']'"},
      {"for (int i = 0, i < 3; ++i) x;", "1:18: expected ';' after the declaration"},
      {"for (a; b) c;", "1:10: expected ';' in the head of the 'for'"},
      {"int v = {1, 2;", "1:14: expected ',' or '}' in the list"},
      {"{ a;\n b;\n", "2:4: expected '}' to close the '{' in line 1"},
      {"f(int a) { }", "1:7: expected '(' after the type"},
      // Missing operands are shown where they should be.
      {"x = ;", "1:5: expected an expression"},
      {"x = 1 + * ;", "1:11: expected an expression"},
      {"f(1,)", "1:5: expected an expression"},
      {"a ? b;", "1:6: expected ':' of the '?'"},
      {"double * ;", "1:8: expected a name"},
      {"int double;", "1:5: expected a name"},
      {"a.1;", "1:3: expected a member name"},
      {"if (a) }", "1:8: expected a statement"},
      {"x = (double);", "1:13: expected an expression"},
      // Words out of place.
      {"else x;", "1:1: 'else' without an 'if' before it"},
      {"case 1: x;", "1:1: a label outside a 'switch'"},
      {"catch (int s) {}", "1:1: 'catch' without a 'try' before it"},
      {"a; }", "1:4: '}' without a '{' before it"},
      {"try { }", "1:8: expected 'catch' after the 'try' block"},
      {"try { } catch { }", "1:15: expected '(int name)' after 'catch'"},
      {"switch (a) { b; }", "1:14: expected 'case', 'default' or '}'"},
      {"do x; y;", "1:7: expected 'while' after the body of the 'do'"},
      {"int f() { int g(int y) { } }",
       "1:11: a function stands at the top level, not inside another statement"},
      {"int f(int a = 1, int b);",
       "1:22: a parameter behind one with a default value needs one too"},
      // Types.
      {"foo bar;", "1:1: unknown type 'foo'"},
      {"  foo bar(int x) { }", "1:3: unknown type 'foo'"},
      {"vector<string> v;",
       "1:8: 'string' cannot be an element type: it must be a number, complex or a point"},
      {"string<int> v;", "1:8: 'string' takes no element type"},
      {"vector<int v;", "1:12: expected '>' after the element type"},
      {"unsigned double d;", "1:1: there is no unsigned form of 'double'"},
      {"int a[2][3];", "1:9: an array has one dimension; use a matrix for two"},
      {"numeric x;", "1:1: unknown type 'numeric'"},
      // Literals.
      {"x = \"abc\ny\";", "1:5: unterminated string literal"},
      {"x = 'a;", "1:5: unterminated character literal"},
      {"x = ''; ", "1:5: empty character literal"},
      {"x = 'ab';", "1:5: a character literal holds one byte; use a string for more"},
      {"/* foo", "1:1: unterminated comment"},
      {"a; /*/", "1:4: unterminated comment"},
      {"x = \"a\\q\";", "1:7: unknown escape sequence '\\q'"},
      {"x = \"\\x\";", "1:6: a hexadecimal digit is missing after '\\x'"},
      {"x = \"\\x123\";", "1:6: the escape sequence does not fit into one byte"},
      {"x = \"\\400\";", "1:6: the escape sequence does not fit into one byte"},
      {"x = \"\\ud800\";", "1:6: the escape sequence names no character"},
      {"1.2.3;", "1:1: malformed number '1.2.3'"},
      {"12abc;", "1:1: malformed number '12abc'"},
      {"1e;", "1:1: malformed number '1e'"},
      {"0x;", "1:1: malformed number '0x'"},
      {"09;", "1:1: malformed number '09'"},
      {"99999999999999999999;", "1:1: the number 99999999999999999999 is too large"},
      {"1e400;", "1:1: the number 1e400 is too large"},
      // Characters that belong nowhere; columns count characters.
      {"x @ y;", "1:3: unexpected character '@'"},
      {"\"\xC3\xA9\" + \xC3\xA9;", "1:7: unexpected character '\xC3\xA9'"},
      {"x \xFF;", "1:3: the byte 0xff is not valid UTF-8"},
      {"x = \xC3;", "1:5: the byte 0xc3 is not valid UTF-8"},
      {std::string("x \0 y;", 6), "1:3: unexpected byte 0x00"},
      {std::string("\x7F\x45LF\0\1", 6), "1:1: unexpected byte 0x7f"},
      // Directives.
      {"#define x", "1:2: expected 'include' after '#'"},
      {"#include <a>", "1:10: expected a file name in quotes"},
  };
  for (const Case& c : cases) EXPECT_EQ(FirstMistake(c.script), c.mistake) << c.script;
}

// However a script nests, a hundred thousand levels are refused and the limits themselves are not.
TEST(Nesting, IsLimitedEverywhere) {
  struct Case {
    const char* front;
    const char* opening;
    const char* middle;
    const char* closing;
    const char* back;
    std::size_t fits;
  };
  std::vector<Case> cases = {
      {"x = ", "(", "1", ")", ";", 499},
      {"matrix m = ", "{", "1", "}", ";", 499},
      {"", "a=", "1", "", ";", 499},
      {"", "{", "", "}", "", 199},
      {"", "if (a) {} else {", "", "}", "", 99},
      {"x = a", "[1]", "", "", ";", 498},
      {"x = a", ".b", "", "", ";", 498},
      {"x = a", "++", "", "", ";", 498},
  };
  using Pairs = std::vector<std::pair<const char*, const char*>>;
  for (const auto& [opening, closing] : Pairs{{"-", ""},
                                              {"!", ""},
                                              {"(int)", ""},
                                              {"((int)", ")"},
                                              {"int(", ")"},
                                              {"f(", ")"},
                                              {"v.f(", ")"},
                                              {"a[", "]"},
                                              {"2^", ""},
                                              {"a?b:", ""},
                                              {"a?", ":c"}}) {
    cases.push_back({"x = ", opening, "1", closing, ";", 498});
  }
  for (const auto& [opening, closing] : Pairs{{"if (a) ", ""},
                                              {"while (a) ", ""},
                                              {"do ", " while (a);"},
                                              {"for (;;) ", ""},
                                              {"for (int i : v) ", ""},
                                              {"switch (a) { case 1: ", "}"}}) {
    cases.push_back({"", opening, ";", closing, "", 199});
  }
  for (const Case& c : cases) {
    const auto script = [&c](std::size_t depth) {
      return c.front + Repeat(c.opening, depth) + c.middle + Repeat(c.closing, depth) + c.back;
    };
    EXPECT_EQ(FirstMistake(script(c.fits)), "ok") << c.front << c.opening;
    for (const bool closed : {true, false}) {
      const std::string deep = closed ? script(100000) : c.front + Repeat(c.opening, 100000);
      const std::string mistake = FirstMistake(deep);
      const bool refused = mistake.ends_with("nesting too deep") ||
                           (!closed && mistake.ends_with("expected an expression"));
      EXPECT_TRUE(refused) << c.front << c.opening << ": " << mistake;
    }
  }
  EXPECT_TRUE(FirstMistake(Repeat("try {", 100000)).ends_with("nesting too deep"));
  EXPECT_EQ(FirstMistake(Repeat("{", 150) + "x = " + Repeat("(", 400) + "1" + Repeat(")", 400) +
                         ";" + Repeat("}", 150)),
            "ok");
}

TEST(Nesting, LeavesFlatTextAlone) {
  constexpr std::size_t kMany = 200000;
  for (const std::string& script : {
           "x = a" + Repeat("+a", kMany) + ";",
           "x = a" + Repeat("*b-c", kMany) + ";",
           "x = a" + Repeat("&&a||b", kMany) + ";",
           "x = a" + Repeat(", a", kMany) + ";",
           "x = " + Repeat("\"a\" ", kMany) + ";",
           "vector v = {" + Repeat("1, ", kMany) + "};",
           "f(1" + Repeat(", a", kMany) + ");",
           "if (a) b;" + Repeat("else if (c) d;", kMany),
           Repeat("a;", kMany),
           "int a" + Repeat(", b", kMany) + ";",
           "switch (a) {" + Repeat("case 1: ", kMany) + "}",
           Repeat("/**/", kMany),
           Repeat("const ", kMany) + "int a;",
       }) {
    EXPECT_EQ(FirstMistake(script), "ok") << script.substr(0, 20);
  }
}

TEST(SyntaxError, EndlessLiteralsAndCommentsAreUnterminated) {
  const std::string endless(5 << 20, 'a');
  EXPECT_EQ(FirstMistake("x = \"" + endless), "1:5: unterminated string literal");
  EXPECT_EQ(FirstMistake("x = '" + endless), "1:5: unterminated character literal");
  EXPECT_EQ(FirstMistake("x = /*" + endless), "1:5: unterminated comment");
}

// Look-ahead must not add up: ten times the text may take some ten times the time, not a hundred.
TEST(SyntaxError, ReadingTimeIsProportionalToTheText) {
  const auto seconds = [](const std::string& script) {
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(FirstMistake(script), "ok");
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  };
  for (const char* piece : {
           "double f(double d, vector<int>& v = NULL) { return (double)d + double(v[1]) * (d); }\n",
           "for (const vector<double>& v : w) { (((int)((double(v))))); }\n",
           "/* comment */ unsigned /* in */ int /* the */ a /* middle */ = (/* of */ 1);\n",
       }) {
    const double one = seconds(Repeat(piece, 2000));
    const double ten = seconds(Repeat(piece, 20000));
    EXPECT_LT(ten, 40 * one + 0.5) << piece;
  }
}

}  // namespace
}  // namespace tesselc
