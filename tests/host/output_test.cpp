#include "host/output.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "frame/interface/type_base.h"

namespace {

using testing::ElementsAre;
using vela::host::OutputTarget;

struct Line {
  OutputTarget target;
  std::string text;
  unsigned flags;
  bool operator==(const Line&) const = default;
};

std::vector<std::string>& Offered() {
  static std::vector<std::string> offered;
  return offered;
}

// Shows messages that start with "mine" itself.
std::uint64_t Callback(HWND, unsigned short message, char* text, char* flags) {
  Offered().push_back(std::to_string(message) + ":" + flags + ":" + text);
  return std::string_view(text).starts_with("mine");
}

class Output : public testing::Test {
 protected:
  Output() {
    vela::host::SetOutputSink([this](OutputTarget target, std::string_view text, unsigned flags) {
      lines.push_back({target, std::string(text), flags});
    });
  }
  ~Output() override {
    vela::host::SetOutputSink({});
    VELAObj::SetCallback(nullptr, nullptr);
    Offered().clear();
  }

  std::vector<Line> lines;
};

TEST_F(Output, ReachesTheSinkWithPlainLineEnds) {
  VELAObj::WriteString("ab\r\nc\rd\nrest", 9);
  VELAObj::WriteStringEx("line", 4, 1 | vela::host::kOutputNewLine);
  VELAObj::WriteString(nullptr, 5);
  VELAObj::StatusMessage("busy");
  VELAObj::ScriptMessage("wrong");
  EXPECT_THAT(lines, ElementsAre(Line{OutputTarget::kOutput, "ab\nc\rd\nr", 0},
                                 Line{OutputTarget::kOutput, "line\n", 9},
                                 Line{OutputTarget::kOutput, "", 0},
                                 Line{OutputTarget::kStatus, "busy\n", 8},
                                 Line{OutputTarget::kScriptMessage, "wrong\n", 8}));
}

TEST_F(Output, CallbackIsAskedFirst) {
  VELAObj::SetCallback(nullptr, &Callback);
  VELAObj::WriteStringEx("mine", 4, 32);
  VELAObj::WriteString("yours", 5);
  VELAObj::StatusMessage("mine too");
  VELAObj::SetCallback(nullptr, nullptr);
  VELAObj::WriteString("mine no more", 12);
  EXPECT_THAT(Offered(), ElementsAre("1:32:mine", "1:0:yours", "2:8:mine too\n"));
  EXPECT_THAT(lines, ElementsAre(Line{OutputTarget::kOutput, "yours", 0},
                                 Line{OutputTarget::kOutput, "mine no more", 0}));
}

TEST_F(Output, SinkMayReplaceItself) {
  vela::host::SetOutputSink([](OutputTarget, std::string_view, unsigned) {
    vela::host::SetOutputSink([](OutputTarget, std::string_view, unsigned) {});
  });
  VELAObj::WriteString("text", 4);
  VELAObj::WriteString("text", 4);
  EXPECT_TRUE(lines.empty());
}

}  // namespace
