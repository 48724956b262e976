#include "tesselc/run/output.h"

#include <cerrno>
#include <cstdio>
#include <system_error>

#include "host/output.h"
#include "tesselc/run/terminal.h"

#if defined(_WIN32)
#include <fcntl.h>
#include <io.h>
#else
#include <unistd.h>
#endif

namespace tesselc {

Output::Output() : by_line_(IsTerminal(stdout)) {
#if defined(_WIN32)
  // Text comes out as it was written, the same on every platform.
  _setmode(_fileno(stdout), _O_BINARY);
  _setmode(_fileno(stderr), _O_BINARY);
#endif
  vela::host::SetOutputSink(
      [this](vela::host::OutputTarget target, std::string_view text, unsigned) {
        if (target == vela::host::OutputTarget::kOutput) {
          Write(text);
        } else {
          WriteError(text);
        }
      });
}

Output::~Output() {
  vela::host::SetOutputSink({});
  Flush();
}

void Output::Flush() {
  const Busy busy(*this);
  if (failure_.empty() && !buffer_.empty()) {
    errno = 0;
    const bool written = std::fwrite(buffer_.data(), 1, buffer_.size(), stdout) == buffer_.size();
    if (!written || std::fflush(stdout) != 0) {
      failure_ = std::generic_category().message(errno != 0 ? errno : EIO);
    }
  }
  buffer_.clear();
}

void Output::WriteInHaste() noexcept {
  if (is_busy_ || buffer_.empty()) return;
  // The stream of the C library may be in use.
  [[maybe_unused]] const auto written =
      write(fileno(stdout), buffer_.data(), static_cast<unsigned>(buffer_.size()));
}

void Output::WriteError(std::string_view text) {
  Flush();
  std::fwrite(text.data(), 1, text.size(), stderr);
  std::fflush(stderr);
}

}  // namespace tesselc
