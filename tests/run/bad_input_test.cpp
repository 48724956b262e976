// Whatever a script is made of, the runner answers with an exit code and a message that names the
// place.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

#include "tesselc/run/output.h"
#include "tesselc/runner/script_runner.h"

#if !defined(_WIN32)
#include <fcntl.h>
#include <unistd.h>
#endif

namespace tesselc {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

struct Outcome {
  int code;
  std::string output;
  std::string complaint;
};

Outcome RunScript(const std::string& code) {
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  Outcome outcome{};
  {
    Output output;
    ScriptRunner runner(output, {});
    outcome.code = runner.RunText("test", code);
  }
  outcome.output = testing::internal::GetCapturedStdout();
  outcome.complaint = testing::internal::GetCapturedStderr();
  return outcome;
}

std::string Repeat(const std::string& text, std::size_t times) {
  std::string all;
  all.reserve(text.size() * times);
  for (std::size_t i = 0; i < times; ++i) all += text;
  return all;
}

constexpr std::size_t kMany = 100000;

// Nesting is bounded: the message names the first place that is too deep.
TEST(BadInput, DeepNestingIsAMistake) {
  const std::string scripts[] = {
      "int a = " + Repeat("(", kMany) + "1" + Repeat(")", kMany) + ";",
      "int a = " + Repeat("(", kMany),
      Repeat("{", kMany),
      "double f(double x) { return x; } print(" + Repeat("f(", kMany) + "0" + Repeat(")", kMany) +
          ");",
      "string s; print(s" + Repeat(".Left(1)", kMany) + ");",
  };
  for (const std::string& script : scripts) {
    const Outcome outcome = RunScript(script);
    EXPECT_EQ(outcome.code, kMistake) << script.substr(0, 40);
    EXPECT_THAT(outcome.complaint, StartsWith("test:1:")) << script.substr(0, 40);
    EXPECT_THAT(outcome.complaint, HasSubstr(": error: nesting too deep\n"));
    EXPECT_LT(outcome.complaint.size(), 1000u) << "a long line is cut";
  }
}

// What nests no deeper for being longer has no bound.
TEST(BadInput, LongChainsRun) {
  const struct {
    std::string script;
    const char* output;
  } cases[] = {
      {"double a = 0.5; print(a" + Repeat(" + a", kMany - 1) + ");", "50000\n"},
      {"int a = 3; double b = 1; print(b" + Repeat(" + a * b - a / b", kMany) + ");", "1\n"},
      {"int a = 1; print(a" + Repeat(" && a", kMany) + " && a == 2);", "0\n"},
      {"int a = 0; print(a" + Repeat(" || a", kMany) + " || a == 0);", "1\n"},
      {"int a = 1; print(a" + Repeat(" == a", kMany) + ");", "1\n"},
      {"string s = \"ab\"; print((s" + Repeat(" + s", kMany - 1) + ").GetLength());", "200000\n"},
      {"complex z = 1i; print(z" + Repeat(" + z", kMany - 1) + ");", "100000.000000i\n"},
      {"vector<int> v = {1}; print(v" + Repeat(" + v", 999) + ");", "{1000}\n"},
      {"int a; void f() { a++; } f()" + Repeat(", f()", kMany - 1) + "; print(a);", "100000\n"},
      {"int a; void f() { a++; } print((f()" + Repeat(", a", kMany) + "));", "1\n"},
      {"int a = 1; " + Repeat("if (a == 0) a = 2; else ", kMany) + "a = 3; print(a);", "3\n"},
      {"print(1" + Repeat(", 1", 9) + ");", "1 1 1 1 1 1 1 1 1 1\n"},
      {"int a; " + Repeat("a = a + 1; ", kMany) + "print(a);", "100000\n"},
  };
  for (const auto& c : cases) {
    const Outcome outcome = RunScript(c.script);
    EXPECT_EQ(outcome.code, kSuccess) << c.script.substr(0, 60) << outcome.complaint;
    EXPECT_EQ(outcome.output, c.output) << c.script.substr(0, 60);
  }
}

// The value of a chain's part is not lost, or mixed up, when the operands call the same code again.
TEST(BadInput, LongChainsMayCallThemselves) {
  const Outcome outcome =
      RunScript("int f(int n) { if (n == 0) return 1; return n" + Repeat(" + 0", 200) +
                " + f(n - 1)" + Repeat(" + 0", 200) + " + f(n - 1); } print(f(8));");
  // f(n) = n + 2 f(n - 1), f(0) = 1.
  EXPECT_EQ(outcome.output, "758\n") << outcome.complaint;
}

TEST(BadInput, NamesThePlace) {
  const struct {
    std::string script;
    int code;
    const char* message;
  } cases[] = {
      {"string s = \"" + std::string(1000000, 'a'), kMistake,
       "test:1:12: error: unterminated string literal\n"},
      {"vector<double> v;\nv.NoSuch(1);", kMistake,
       "test:2:3: error: vector<double> has no member 'NoSuch'\n"},
      {"vector<double> v;\nv.Sum(1, 2, 3);", kScriptFailed,
       "test:2:3: error: vector<double>.Sum: status 3 (wrong number or type of arguments)\n"},
      {"int a; " + Repeat("a = a + 1; ", kMany) + "b = 1;", kMistake,
       "test:1:1100008: error: there is no variable 'b'\n"},
      {"int a = 1;\r\nprint(b);\r\n", kMistake, "test:2:7: error: there is no variable 'b'\n"},
      {"int a\xff;", kMistake, "test:1:6: error: the byte 0xff is not valid UTF-8\n"},
      {"print(\"\xc3\xa4\", b);", kMistake, "test:1:12: error: there is no variable 'b'\n"},
      {"int f(int n) { return f(n + 1) + 1; }\nprint(f(0));", kScriptFailed,
       "test:1:23: error: recursion too deep\n"},
      {"double a[-1];", kScriptFailed, "test:1:8: error: an array cannot have -1 elements\n"},
      {"printf(\"%2147483647d\", 5);", kScriptFailed, "is too wide\n"},
      {"printf(\"%s %d\", \"a\");", kScriptFailed, "'%d' has no argument\n"},
      {"#include \"no such file\"", kMistake, "test:1:1: error: cannot read "},
      {"double x;\ndouble* p = &x;", kMistake, "test:2:1: error: pointers are not supported yet\n"},
  };
  for (const auto& c : cases) {
    const Outcome outcome = RunScript(c.script);
    EXPECT_EQ(outcome.code, c.code) << c.script.substr(0, 60);
    EXPECT_THAT(outcome.complaint, HasSubstr(c.message)) << c.script.substr(0, 60);
  }
}

TEST(BadInput, FilesThatAreNone) {
  testing::internal::CaptureStderr();
  Output output;
  EXPECT_EQ(ScriptRunner(output, {}).RunFile("no/such.tc"), kMistake);
  EXPECT_EQ(ScriptRunner(output, {}).RunFile("."), kMistake);
  EXPECT_EQ(ScriptRunner(output, {}).RunFile(""), kMistake);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "tesselc: error: cannot read 'no/such.tc': no such file\n"
            "tesselc: error: cannot read '.': it is a folder\n"
            "tesselc: error: cannot read '': no such file\n");
}

#if defined(__linux__)
// Standard output on a device without room, for a scope.
class FullOutput {
 public:
  FullOutput() : kept_(dup(STDOUT_FILENO)) {
    std::fflush(stdout);
    const int full = open("/dev/full", O_WRONLY);
    dup2(full, STDOUT_FILENO);
    close(full);
  }
  ~FullOutput() {
    std::fflush(stdout);
    clearerr(stdout);
    dup2(kept_, STDOUT_FILENO);
    close(kept_);
  }

 private:
  int kept_;
};

TEST(BadInput, OutputThatCannotBeWritten) {
  const struct {
    const char* script;
    int code;
    const char* message;
  } cases[] = {
      // Little output is written at the end, where no statement is to blame.
      {"print(1);", kScriptFailed, "tesselc: error: cannot write the output: No space left"},
      {"print(1); exit(7);", 7, "tesselc: error: cannot write the output: No space left"},
      {"while (1) print(1);", kScriptFailed, "test:1:11: error: cannot write the output: No space"},
      {"int n = 5;", kSuccess, ""},
  };
  for (const auto& c : cases) {
    testing::internal::CaptureStderr();
    int code;
    {
      const FullOutput full;
      Output output;
      code = ScriptRunner(output, {}).RunText("test", c.script);
    }
    EXPECT_EQ(code, c.code) << c.script;
    EXPECT_THAT(testing::internal::GetCapturedStderr(), StartsWith(c.message)) << c.script;
  }
}
#endif

}  // namespace
}  // namespace tesselc
