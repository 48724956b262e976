#include "tesselc/prompt/terminal_editor.h"

#if !defined(_WIN32)

#include <algorithm>
#include <cerrno>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <histedit.h>
#include <unistd.h>

#include "tesselc/utf8_text.h"

namespace tesselc {
namespace {

constexpr int kHistoryLines = 1000;

// The letters that all words begin with.
std::string CommonFront(const std::vector<std::string>& words) {
  std::string front = words.front();
  for (const std::string& word : words) {
    const auto end = std::mismatch(front.begin(), front.end(), word.begin(), word.end()).first;
    front.erase(end, front.end());
  }
  return front;
}

void ShowWords(const std::vector<std::string>& words) {
  constexpr std::size_t kWidth = 79;
  std::size_t column = 0;
  std::fputs("\n", stdout);
  for (const std::string& word : words) {
    if (column > 0 && column + word.size() + 2 > kWidth) {
      std::fputs("\n", stdout);
      column = 0;
    }
    column += static_cast<std::size_t>(std::printf("%s%s", column > 0 ? "  " : "", word.c_str()));
  }
  std::fputs("\n", stdout);
  std::fflush(stdout);
}

class LibeditEditor final : public LineEditor {
 public:
  LibeditEditor() {
    std::setlocale(LC_CTYPE, "");
    editor_ = el_init("tesselc", stdin, stdout, stderr);
    history_ = history_init();
    HistEvent event;
    history(history_, &event, H_SETSIZE, kHistoryLines);
    history(history_, &event, H_SETUNIQUE, 1);
    if (const char* home = std::getenv("HOME")) {
      history_file_ = std::string(home) + "/.tesselc_history";
      history(history_, &event, H_LOAD, history_file_.c_str());
    }
    el_set(editor_, EL_CLIENTDATA, this);
    el_set(editor_, EL_PROMPT, &LibeditEditor::GivePrompt);
    el_set(editor_, EL_EDITOR, "emacs");
    el_set(editor_, EL_HIST, history, history_);
    el_set(editor_, EL_GETCFN, &LibeditEditor::ReadCharacter);
    el_set(editor_, EL_ADDFN, "complete", "Complete a name", &LibeditEditor::Complete);
    el_set(editor_, EL_BIND, "^I", "complete", nullptr);
    el_set(editor_, EL_BIND, "^R", "em-inc-search-prev", nullptr);
    el_source(editor_, nullptr);
  }
  ~LibeditEditor() override {
    HistEvent event;
    if (!history_file_.empty()) history(history_, &event, H_SAVE, history_file_.c_str());
    el_end(editor_);
    history_end(history_);
  }

  End Read(const std::string& prompt, std::string& line) override {
    prompt_ = prompt;
    interrupted = 0;
    struct sigaction action = {}, former = {};
    action.sa_handler = [](int) { interrupted = 1; };  // without restart, so that reading ends
    sigaction(SIGINT, &action, &former);
    int length = 0;
    const char* text = el_gets(editor_, &length);
    sigaction(SIGINT, &former, nullptr);
    if (interrupted) {
      el_reset(editor_);
      std::fputs("\n", stdout);
      return End::kInterrupted;
    }
    if (text == nullptr || length <= 0) return End::kEndOfInput;
    line.assign(text, static_cast<std::size_t>(length));
    if (line.ends_with('\n')) line.pop_back();
    if (line.find_first_not_of(" \t") != line.npos) {
      HistEvent event;
      history(history_, &event, H_ENTER, line.c_str());
    }
    return End::kLine;
  }
  void SetCompleter(Completer completer) override { completer_ = std::move(completer); }
  bool IsInteractive() const override { return true; }

 private:
  static volatile std::sig_atomic_t interrupted;

  static LibeditEditor& Self(EditLine* editor) {
    void* self = nullptr;
    el_get(editor, EL_CLIENTDATA, &self);
    return *static_cast<LibeditEditor*>(self);
  }
  static char* GivePrompt(EditLine* editor) { return Self(editor).prompt_.data(); }

  // The library's own reading goes on after a signal. 1 for a character, 0 at the end, -1 when
  // there is none.
  static int ReadCharacter(EditLine*, wchar_t* character) {
    std::string bytes;
    for (;;) {
      char byte = 0;
      const auto count = read(STDIN_FILENO, &byte, 1);
      if (count < 0 && errno == EINTR && !interrupted) continue;
      if (count <= 0) return static_cast<int>(count);
      bytes += byte;
      constexpr std::size_t kLongestSequence = 4;
      const bool is_begun = Utf8SequenceLength(bytes) == 0 && (bytes[0] & 0x80) != 0;
      if (is_begun && bytes.size() < kLongestSequence) continue;
      *character = is_begun ? L'?' : static_cast<wchar_t>(Utf8CodePoint(bytes));
      return 1;
    }
  }

  static unsigned char Complete(EditLine* editor, int) {
    const LibeditEditor& self = Self(editor);
    if (!self.completer_) return CC_ERROR;
    const LineInfo* info = el_line(editor);
    const std::string_view text(info->buffer,
                                static_cast<std::size_t>(info->cursor - info->buffer));
    const Completion found = self.completer_(text);
    if (found.words.empty()) return CC_ERROR;
    const std::string front = CommonFront(found.words);
    const std::size_t begun = text.size() - found.begin;
    if (front.size() > begun) {
      return el_insertstr(editor, front.c_str() + begun) == 0 ? CC_REFRESH : CC_ERROR;
    }
    if (found.words.size() == 1) return CC_NORM;
    ShowWords(found.words);
    return CC_REDISPLAY;
  }

  EditLine* editor_;
  History* history_;
  std::string history_file_;
  std::string prompt_;
  Completer completer_;
};

volatile std::sig_atomic_t LibeditEditor::interrupted = 0;

}  // namespace

std::unique_ptr<LineEditor> MakeTerminalEditor() { return std::make_unique<LibeditEditor>(); }

}  // namespace tesselc

#endif
