#include "tesselc/prompt/terminal_editor.h"

#if defined(_WIN32)

#include <array>
#include <windows.h>

namespace tesselc {
namespace {

std::string ToUtf8(const std::wstring& text) {
  const int units = static_cast<int>(text.size());
  const int size =
      WideCharToMultiByte(CP_UTF8, 0, text.data(), units, nullptr, 0, nullptr, nullptr);
  std::string result(static_cast<std::size_t>(size), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text.data(), units, result.data(), size, nullptr, nullptr);
  return result;
}

// The console edits lines and keeps their history itself; it has no names to complete.
class ConsoleEditor final : public LineEditor {
 public:
  ConsoleEditor() : former_code_page_(GetConsoleOutputCP()) { SetConsoleOutputCP(CP_UTF8); }
  ~ConsoleEditor() override { SetConsoleOutputCP(former_code_page_); }

  End Read(const std::string& prompt, std::string& line) override {
    DWORD count = 0;
    WriteFile(GetStdHandle(STD_OUTPUT_HANDLE), prompt.data(), static_cast<DWORD>(prompt.size()),
              &count, nullptr);
    // Ctrl-C comes as an event of its own; without a handler it would end the program.
    SetConsoleCtrlHandler(nullptr, TRUE);
    std::wstring text;
    std::array<wchar_t, 512> buffer;
    do {
      SetLastError(ERROR_SUCCESS);
      const bool read = ReadConsoleW(GetStdHandle(STD_INPUT_HANDLE), buffer.data(),
                                     static_cast<DWORD>(buffer.size()), &count, nullptr);
      if (!read || count == 0) {
        SetConsoleCtrlHandler(nullptr, FALSE);
        return GetLastError() == ERROR_OPERATION_ABORTED ? End::kInterrupted : End::kEndOfInput;
      }
      text.append(buffer.data(), count);
    } while (!text.ends_with(L'\n'));
    SetConsoleCtrlHandler(nullptr, FALSE);
    constexpr wchar_t kControlZ = 0x1A;
    if (text.front() == kControlZ) return End::kEndOfInput;
    line = ToUtf8(text);
    while (line.ends_with('\n') || line.ends_with('\r')) line.pop_back();
    return End::kLine;
  }
  void SetCompleter(Completer) override {}
  bool IsInteractive() const override { return true; }

 private:
  UINT former_code_page_;
};

}  // namespace

std::unique_ptr<LineEditor> MakeTerminalEditor() { return std::make_unique<ConsoleEditor>(); }

}  // namespace tesselc

#endif
