#include "tesselc/run/print.h"

#include "frame/interface/status.h"
#include "tesselc/run/display.h"
#include "tesselc/run/printf_format.h"
#include "tesselc/run/run.h"

namespace tesselc {
namespace {

template <class T>
T ValueOf(Node& node, Frame& frame) {
  return static_cast<ValueNode<T>&>(node).Eval(frame);
}

void Write(std::string_view text, Frame& frame, const SourceRange& where) {
  Output& output = frame.run->output();
  output.Write(text);
  if (!output.failure().empty()) [[unlikely]] {
    throw ScriptError(where, status::kFailed, "cannot write the output: " + output.failure());
  }
}

void Append(std::string& line, const PrintArgument& argument, Frame& frame,
            const SourceRange& where) {
  WithCarrier(argument.carrier, [&](auto t) {
    using T = typename decltype(t)::type;
    const T value = ValueOf<T>(*argument.value, frame);
    if constexpr (std::is_same_v<T, CStringUTF8>) {
      line += value.View();
    } else if constexpr (std::is_same_v<T, ObjectValue>) {
      AppendDisplay(line, value, where);
    } else if constexpr (std::is_integral_v<T> && std::is_signed_v<T>) {
      AppendDisplay(line, static_cast<std::int64_t>(value));
    } else if constexpr (std::is_integral_v<T>) {
      AppendDisplay(line, static_cast<std::uint64_t>(value));
    } else {
      AppendDisplay(line, value);
    }
  });
}

class Print final : public Node {
 public:
  Print(std::vector<PrintArgument> arguments, SourceRange where)
      : arguments_(std::move(arguments)), where_(where) {}
  Flow Exec(Frame& frame) override {
    std::string line;
    for (std::size_t i = 0; i < arguments_.size(); ++i) {
      if (i > 0) line += ' ';
      Append(line, arguments_[i], frame, where_);
    }
    line += '\n';
    Write(line, frame, where_);
    return Flow::kNext;
  }

 private:
  std::vector<PrintArgument> arguments_;
  SourceRange where_;
};

class Echo final : public Node {
 public:
  Echo(PrintArgument value, SourceRange where) : value_(std::move(value)), where_(where) {}
  Flow Exec(Frame& frame) override {
    constexpr std::size_t kScreenful = 1600;
    std::string text;
    Append(text, value_, frame, where_);
    if (text.size() > kScreenful) {
      std::size_t end = kScreenful;
      while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
      text.replace(end, text.npos, " ...");
    }
    text += '\n';
    Write(text, frame, where_);
    return Flow::kNext;
  }

 private:
  PrintArgument value_;
  SourceRange where_;
};

class Printf final : public Expr<Printf, int> {
 public:
  Printf(ValuePtr<CStringUTF8> format, std::vector<PrintArgument> arguments, SourceRange where)
      : format_(std::move(format)), arguments_(std::move(arguments)), where_(where) {}
  int Eval(Frame& frame) override {
    const CStringUTF8 format = format_->Eval(frame);
    std::vector<FormatArgument> values;
    for (const PrintArgument& argument : arguments_) values.push_back(Value(argument, frame));
    const std::string text = FormatPrintf(format.View(), values, where_);
    Write(text, frame, where_);
    return static_cast<int>(text.size());
  }

 private:
  static FormatArgument Value(const PrintArgument& argument, Frame& frame) {
    if (argument.carrier == kTextCarrier) {
      return FormatArgument::Text(ValueOf<CStringUTF8>(*argument.value, frame).View());
    }
    return WithNumber(argument.carrier, [&](auto t) {
      return FormatArgument::Number(ValueOf<typename decltype(t)::type>(*argument.value, frame));
    });
  }

  ValuePtr<CStringUTF8> format_;
  std::vector<PrintArgument> arguments_;
  SourceRange where_;
};

}  // namespace

NodePtr MakePrint(std::vector<PrintArgument> arguments, SourceRange where) {
  return std::make_unique<Print>(std::move(arguments), where);
}

NodePtr MakeEcho(PrintArgument value, SourceRange where) {
  return std::make_unique<Echo>(std::move(value), where);
}

NodePtr MakePrintf(NodePtr format, std::vector<PrintArgument> arguments, SourceRange where) {
  return std::make_unique<Printf>(As<CStringUTF8>(std::move(format)), std::move(arguments), where);
}

}  // namespace tesselc
