#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tesselc/catalogue.h"
#include "tesselc/diagnostic.h"
#include "tesselc/syntax_tree.h"

namespace tesselc {

// What the text is. The grammar is one; the kind decides a few words and what may be left out.
enum class TextKind : std::uint8_t { kScript, kPrompt, kCatalogue };

// Assembles the tree while the grammar reads the text. The parser calls one function for each piece
// of syntax it has read, innermost first; what a piece is made of waits on stacks until then.
// Operators are ordered here, by precedence, rather than by a grammar rule for each level: the
// recursion for a pair of parentheses stays shallow, and so does the stack.
class TreeBuilder {
 public:
  using Offset = std::uint32_t;

  TreeBuilder(SourceSet& sources, TextKind kind);
  ~TreeBuilder();
  TreeBuilder(const TreeBuilder&) = delete;
  TreeBuilder& operator=(const TreeBuilder&) = delete;

  TextKind kind() const { return kind_; }
  SourceSet& sources() { return sources_; }
  FileId file() const { return file_; }
  const SourceFile& source() const { return sources_.file(file_); }
  std::string_view text() const { return source().text(); }
  // The script being assembled, and the catalogue when the text is one.
  Program& program() { return program_; }
  std::vector<CatalogueClass>& classes() { return classes_; }

  // --- Places ---
  // Runs `read` on another file, then returns to this one.
  void WithFile(FileId file, const std::function<void()>& read);
  // The end of the last word or symbol, before any space and comments behind it.
  Offset previous_end() const { return previous_end_; }
  void EndToken(Offset end) { previous_end_ = end; }
  SourceRange From(Offset begin) const { return {file_, begin, previous_end_ - begin}; }
  SourceRange At(Offset begin, Offset end) const { return {file_, begin, end - begin}; }
  // The places of the '{' still open, for messages.
  const std::vector<Offset>& open_braces() const { return open_braces_; }
  void OpenBrace(Offset brace) { open_braces_.push_back(brace); }
  void CloseBrace() { open_braces_.pop_back(); }

  // --- Names and types ---
  void PushName(const SourceRange& range);
  void SetUnsigned();
  void SetTypeWord(const SourceRange& word);
  void EndTypeWords(const SourceRange& words);  // leaves the type read for one of the next two
  void OpenType();
  void SetElement(const SourceRange& words);
  void SetConstBefore() { is_const_ = true; }
  void SetConstAfter() { types_.back().is_const = true; }
  void PushType(const SourceRange& words);
  void AddPointer(const SourceRange& star);
  void SetReference() { is_reference_ = true; }
  // Pushes a copy of the type on top with the '*' and '&' read since; the plain one stays below,
  // for the next declarator.
  void PushModifiedType();

  // --- Expressions ---
  void PushLiteral(Expression::Node node, const SourceRange& range);
  void AddString(const SourceRange& range);
  std::string TakeString() { return std::exchange(string_, {}); }
  void PushStrings(const SourceRange& range);
  void PushVariable();
  void PushScopedName();
  void PushNothing() { operands_.push_back(nullptr); }
  void Parenthesise(const SourceRange& range);
  void OpenList() { list_starts_.push_back(operands_.size()); }
  void PushConstruct();
  void PushCall();
  void PushInitializerList(const SourceRange& range);
  void ApplyIndex();
  void ApplyMember(bool through_pointer);
  void ApplyMemberCall(bool through_pointer);
  void ApplyPostfix(UnaryOperator op, const SourceRange& range);

  void OpenOperators() { operator_starts_.push_back(operators_.size()); }
  void PushPrefix(UnaryOperator op, const SourceRange& range);
  void PushCastPrefix(const SourceRange& range);
  void PushInfix(BinaryOperator op, const SourceRange& range);
  void PushAssign(std::optional<BinaryOperator> op, const SourceRange& range);
  void OpenConditional(const SourceRange& question_mark);
  void PushConditional();
  void CloseOperators();
  void ApplyComma(const SourceRange& comma);

  // --- Statements ---
  void OpenStatements() { statement_starts_.push_back(statements_.size()); }
  void PushBlock(const SourceRange& range);
  void PushDeclaration(const SourceRange& range);
  void OpenVariable();
  void SetArray(bool has_size);
  void SetAssigned();
  void SetArguments();
  void PushExpressionStatement(const SourceRange& range, bool terminated);
  void SetUnterminated() { is_terminated_ = false; }
  void PushLastExpression(const SourceRange& range) {
    PushExpressionStatement(range, std::exchange(is_terminated_, true));
  }
  void OpenIf();
  void AddBranch();
  void SetOtherwise();
  void PushIf(const SourceRange& range);
  void PushWhile(const SourceRange& range);
  void PushDoWhile(const SourceRange& range);
  void PushNoStatement() { statements_.push_back(nullptr); }
  void PushFor(const SourceRange& range);
  void PushRangeFor(const SourceRange& range);
  void OpenSwitch();
  void OpenSection();
  void AddLabel(bool is_default, const SourceRange& word);
  void CloseSection();
  void PushSwitch(const SourceRange& range);
  void PushReturn(const SourceRange& range);
  void PushTry(const SourceRange& range);
  void PushSimple(Statement::Node node, const SourceRange& range);

  // --- Top level ---
  void OpenFunction();
  void OpenParameter();
  void SetParameterName();
  void SetDefault();
  void SetVariadic();
  // Every parameter behind one with a default has a default.
  void CheckParameters() const;
  void AddFunction(const SourceRange& range);
  void AddTopLevelStatement();

  // --- Catalogue ---
  // Takes the documentation comments between the last word or symbol and `here`.
  void SetDocumentation(Offset here);
  void OpenClass(const SourceRange& name);
  void SetBase(const SourceRange& name);
  void SetProperty() { is_property_ = true; }
  void SetConstMethod() { is_const_method_ = true; }
  void AddMember(const SourceRange& range);

  // --- Nesting ---
  // Counts how deep the parser stands in expressions or statements; throws when it is too deep.
  class Nesting {
   public:
    Nesting(int& depth, int limit, const SourceRange& place);
    ~Nesting() { --depth_; }
    Nesting(const Nesting&) = delete;
    Nesting& operator=(const Nesting&) = delete;

   private:
    int& depth_;
  };
  int& expression_depth() { return expression_depth_; }
  int& include_depth() { return include_depth_; }
  int& statement_depth() { return statement_depth_; }
  // The operand pushed last, if any: what a message may refer to.
  const Expression* last_operand() const {
    return operands_.empty() ? nullptr : operands_.back().get();
  }

 private:
  ExpressionPtr PopOperand();
  std::vector<ExpressionPtr> PopList();
  StatementPtr PopStatement();
  std::vector<StatementPtr> PopStatements();
  Identifier PopName();
  Type PopType();
  Type PopModifiedType();
  void Push(Expression::Node node, const SourceRange& range, int child_height);
  void Finish(Statement::Node node, const SourceRange& range);
  void ReduceAbove(int precedence, bool and_equal);
  void Reduce();
  void Combine(BinaryOperator op, const SourceRange& op_range);

  SourceSet& sources_;
  TextKind kind_;
  FileId file_ = 0;
  Offset previous_end_ = 0;
  std::vector<Offset> open_braces_;
  int expression_depth_ = 0;
  int statement_depth_ = 0;
  int include_depth_ = 0;

  std::vector<Identifier> names_;
  Type type_;
  bool is_const_ = false;
  bool is_unsigned_ = false;
  TypeName type_word_ = TypeName::kVoid;
  std::uint8_t pointers_ = 0;
  bool is_reference_ = false;
  std::vector<Type> types_;
  std::string string_;

  std::vector<ExpressionPtr> operands_;
  std::vector<std::size_t> list_starts_;
  struct PendingOperator {
    enum class Kind : std::uint8_t { kPrefix, kCast, kInfix, kAssign, kConditional } kind;
    int precedence;
    SourceRange range;
    UnaryOperator unary{};
    std::optional<BinaryOperator> binary{};
    Type type{};
    ExpressionPtr middle{};
  };
  std::vector<PendingOperator> operators_;
  std::vector<std::size_t> operator_starts_;

  std::vector<StatementPtr> statements_;
  std::vector<std::size_t> statement_starts_;
  std::vector<Variable> variables_;
  bool is_terminated_ = true;
  std::vector<If> ifs_;
  std::vector<Switch> switches_;

  Function function_;
  Program program_;
  std::string documentation_;
  bool is_property_ = false;
  bool is_const_method_ = false;
  std::vector<CatalogueClass> classes_;
};

}  // namespace tesselc
