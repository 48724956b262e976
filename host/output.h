// Where the text that scripts and the library print goes.
#pragma once

#include <functional>
#include <string_view>

#include "frame/interface/export.h"

namespace vela::host {

enum class OutputTarget {
  kOutput,         // WriteString: standard output at start
  kStatus,         // StatusMessage: standard error at start
  kScriptMessage,  // ScriptMessage: standard error at start
};

// Output flag of WriteStringEx: end the line.
inline constexpr unsigned kOutputNewLine = 8;

// Receives each text with line ends as "\n" (the ones asked for by kOutputNewLine included) and the
// flags it was written with. The text is borrowed.
using OutputSink = std::function<void(OutputTarget, std::string_view text, unsigned flags)>;

// Sends all output to sink instead of the standard streams; an empty one returns to those. A write
// that is under way in another thread finishes on the sink it began with.
VELAHOST_API void SetOutputSink(OutputSink sink);

// Messages that the host callback (VELAObj::SetCallback) is offered before a text reaches the sink:
// the first text is the NUL-terminated text itself, the second the output flags in decimal. A
// nonzero answer means that the callback has shown it and that the sink shall not.
inline constexpr unsigned short kMessageOutput = 1;
inline constexpr unsigned short kMessageStatus = 2;
inline constexpr unsigned short kMessageScript = 3;

}  // namespace vela::host
