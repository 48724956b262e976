#include "tests/runner/tree_printer.h"

#include <bit>
#include <cstdio>
#include <variant>

namespace tesselc {

namespace {

constexpr const char* kUnary[] = {"+", "-", "!", "~", "++_", "--_", "_++", "_--", "deref", "addr"};
constexpr const char* kBinary[] = {"^", "*",  "/",  "%",  "+", "-", "<<", ">>", "<", "<=",
                                   ">", ">=", "==", "!=", "&", "|", "&&", "||", ","};

std::string Symbol(UnaryOperator op) { return kUnary[static_cast<int>(op)]; }
std::string Symbol(BinaryOperator op) { return kBinary[static_cast<int>(op)]; }

std::string Text(const ExpressionPtr& expression) { return expression ? ToText(*expression) : "-"; }
std::string Text(const StatementPtr& statement) { return statement ? ToText(*statement) : "-"; }
std::string Text(const Variable& v);

template <typename T>
std::string Joined(const std::vector<T>& parts) {
  std::string text;
  for (const auto& part : parts) text += " " + Text(part);
  return text;
}

std::string Number(double value) {
  if (std::bit_cast<std::uint64_t>(value) == 0x81AA74FE1C132C0E) return "NANUM";
  char text[40];
  std::snprintf(text, sizeof text, "%.17g", value);
  return text;
}

struct ExpressionPrinter {
  std::string operator()(const IntLiteral& n) const {
    return std::to_string(n.value) +
           (n.type == TypeName::kInt ? "" : std::string(":") + Spelling(n.type));
  }
  std::string operator()(const FloatLiteral& n) const {
    return Number(n.value) + (n.type == TypeName::kFloat ? "f" : "");
  }
  std::string operator()(const ImaginaryLiteral& n) const { return Number(n.value) + "i"; }
  std::string operator()(const CharLiteral& n) const {
    return "'" + std::to_string(static_cast<unsigned char>(n.value));
  }
  std::string operator()(const StringLiteral& n) const { return "\"" + n.value + "\""; }
  std::string operator()(const NullLiteral&) const { return "NULL"; }
  std::string operator()(const Name& n) const { return n.text; }
  std::string operator()(const ScopedName& n) const {
    return std::string(Spelling(n.scope)) + "::" + n.name.text;
  }
  std::string operator()(const Unary& n) const {
    return "(" + Symbol(n.op) + " " + Text(n.operand) + ")";
  }
  std::string operator()(const Binary& n) const {
    std::string text = Text(n.first);
    for (const auto& link : n.rest) {
      text = "(" + Symbol(link.op) + " " + text + " " + Text(link.operand) + ")";
    }
    return text;
  }
  std::string operator()(const Assign& n) const {
    return "(" + (n.op ? Symbol(*n.op) : "") + "= " + Text(n.target) + " " + Text(n.value) + ")";
  }
  std::string operator()(const Conditional& n) const {
    return "(? " + Text(n.condition) + " " + Text(n.yes) + " " + Text(n.no) + ")";
  }
  std::string operator()(const Cast& n) const {
    return "(cast " + Spelling(n.type) + " " + Text(n.operand) + ")";
  }
  std::string operator()(const Construct& n) const {
    return "(new " + Spelling(n.type) + Joined(n.arguments) + ")";
  }
  std::string operator()(const Call& n) const {
    return "(call " + n.function.text + Joined(n.arguments) + ")";
  }
  std::string operator()(const Member& n) const {
    return "(" + std::string(n.through_pointer ? "->" : ".") + " " + Text(n.object) + " " +
           n.member.text + ")";
  }
  std::string operator()(const MemberCall& n) const {
    return "(" + std::string(n.through_pointer ? "->" : ".") + " " + Text(n.object) + " " +
           n.member.text + "()" + Joined(n.arguments) + ")";
  }
  std::string operator()(const Index& n) const {
    return "([] " + Text(n.object) + " " + Text(n.index) + ")";
  }
  std::string operator()(const InitializerList& n) const { return "{" + Joined(n.items) + " }"; }
};

std::string Text(const Variable& v) {
  std::string text = "(" + Spelling(v.type) + " " + v.name.text;
  if (v.is_array) text += "[" + (v.array_size ? Text(v.array_size) : "") + "]";
  if (v.form == Variable::Form::kAssigned) text += " = " + Text(v.initializer);
  if (v.form == Variable::Form::kArguments) text += " with" + Joined(v.arguments);
  return text + ")";
}

struct StatementPrinter {
  std::string operator()(const Block& n) const { return "(block" + Joined(n.statements) + ")"; }
  std::string operator()(const Declaration& n) const { return "(let" + Joined(n.variables) + ")"; }
  std::string operator()(const ExpressionStatement& n) const {
    return Text(n.expression) + (n.terminated ? "" : "?");
  }
  std::string operator()(const If& n) const {
    std::string text = "(if";
    for (const auto& branch : n.branches) {
      text += " " + Text(branch.condition) + " " + Text(branch.body);
    }
    return text + (n.otherwise ? " else " + Text(n.otherwise) : "") + ")";
  }
  std::string operator()(const While& n) const {
    return "(while " + Text(n.condition) + " " + Text(n.body) + ")";
  }
  std::string operator()(const DoWhile& n) const {
    return "(do " + Text(n.body) + " " + Text(n.condition) + ")";
  }
  std::string operator()(const For& n) const {
    return "(for " + Text(n.initializer) + " " + Text(n.condition) + " " + Text(n.step) + " " +
           Text(n.body) + ")";
  }
  std::string operator()(const RangeFor& n) const {
    return "(each " + Spelling(n.type) + " " + n.name.text + " " + Text(n.range) + " " +
           Text(n.body) + ")";
  }
  std::string operator()(const Switch& n) const {
    std::string text = "(switch " + Text(n.subject);
    for (const auto& section : n.sections) {
      text += " (";
      for (const auto& label : section.labels) {
        text += (label.value ? Text(label.value) : "default") + ":";
      }
      text += Joined(section.statements) + ")";
    }
    return text + ")";
  }
  std::string operator()(const Break&) const { return "(break)"; }
  std::string operator()(const Continue&) const { return "(continue)"; }
  std::string operator()(const Return& n) const {
    return n.value ? "(return " + Text(n.value) + ")" : "(return)";
  }
  std::string operator()(const Try& n) const {
    return "(try " + Text(n.body) + " " + n.status.text + " " + Text(n.handler) + ")";
  }
  std::string operator()(const Empty&) const { return "(empty)"; }
};

}  // namespace

std::string ToText(const Expression& expression) {
  return std::visit(ExpressionPrinter(), expression.node);
}

std::string ToText(const Statement& statement) {
  return std::visit(StatementPrinter(), statement.node);
}

std::string ToText(const Function& function) {
  std::string text = "(fn " + Spelling(function.result) + " " + function.name.text + " (";
  for (const Parameter& parameter : function.parameters) {
    if (text.back() != '(') text += ", ";
    text += Spelling(parameter.type) + " " + parameter.name.text;
    if (parameter.default_value) text += " = " + Text(parameter.default_value);
  }
  return text + ") " + Text(function.body) + ")";
}

std::string ToText(const Program& program) {
  std::string text;
  for (const Function& function : program.functions) text += " " + ToText(function);
  text += Joined(program.statements);
  return text.empty() ? text : text.substr(1);
}

}  // namespace tesselc
