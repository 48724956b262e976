// However a script ends, none of its objects outlives it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "frame/interface/script_object.h"
#include "tesselc/run/output.h"
#include "tesselc/runner/script_runner.h"

namespace tesselc {
namespace {

struct Ending {
  const char* name;
  const char* code;
  int exit_code;
};

class LiveObjects : public testing::TestWithParam<Ending> {};

TEST_P(LiveObjects, AreGoneWhenTheScriptEnds) {
  const unsigned before = CScriptVelaObject::GetLiveObjectCount();
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  int code;
  {
    Output output;
    ScriptRunner runner(output, {});
    code = runner.RunText("test", GetParam().code);
  }
  testing::internal::GetCapturedStdout();
  const std::string complaint = testing::internal::GetCapturedStderr();
  EXPECT_EQ(code, GetParam().exit_code) << complaint;
  EXPECT_EQ(CScriptVelaObject::GetLiveObjectCount(), before);
}

INSTANTIATE_TEST_SUITE_P(
    Endings, LiveObjects,
    testing::Values(
        Ending{"Plain", "vector<double> v = {1, 2}; print(v + v, v.GetSize());", 0},
        Ending{"Error", "string s = \"x\"; { vector<double> v = {1}; v[1] = s.GetLength(); }", 1},
        Ending{"Exit", "string s; void f(string t) { vector<int> v; exit(5); } f(s);", 5},
        Ending{"Recursion", "int f(string s) { string t = s; return f(t + \"x\"); } f(\"a\");", 1},
        Ending{"LoopExits",
               "for (int i = 0; i < 9; i++) { string s; if (i == 2) continue; string t;"
               " if (i == 5) break; }",
               0},
        Ending{"ReturnsFromScopes",
               "vector<int> f(int n) { string s; while (1) { vector<int> v = {n};"
               " if (n > 1) return v; n++; } return f(0); } print(f(0));",
               0},
        Ending{"CaughtInACall",
               "void f(string s) { vector<double> v; v[0] = 1; }"
               " for (int i = 0; i < 3; i++) try { f(\"a\"); } catch (int status) { string u; }",
               0},
        Ending{"ErrorWhileAnArgumentIsPassed",
               "void f(string s, double d) {} vector<double> v; f(\"temporary\", v[3]);", 1},
        Ending{"ElementsAndProxies",
               "vector<complex> z(2); z[1].m_re = 3; StringArray a = {\"x\"}; a[0].MakeUpper();"
               " double d; vector<double> w = {1}; w.Sum(d);",
               0}),
    [](const auto& named) { return named.param.name; });

}  // namespace
}  // namespace tesselc
