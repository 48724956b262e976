#include "tesselc/tree_builder.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "tesselc/literals.h"
#include "tesselc/words.h"

namespace tesselc {

namespace {

constexpr const char* kTooDeep = "nesting too deep";

// Precedences, loosest first. The signs stand between the products and the power, as in
// mathematics: -2^2 is -4. Every other prefix operator binds tighter than the power.
enum Precedence : int {
  kAssignment,  // with ?:, from right to left
  kLogicalOr,
  kLogicalAnd,
  kBitOr,
  kBitAnd,
  kEquality,
  kComparison,
  kShift,
  kSum,
  kProduct,
  kSign,
  kPowerOf,  // from right to left
  kPrefix,
};

int PrecedenceOf(BinaryOperator op) {
  switch (op) {
    case BinaryOperator::kPower:
      return kPowerOf;
    case BinaryOperator::kMultiply:
    case BinaryOperator::kDivide:
    case BinaryOperator::kRemainder:
      return kProduct;
    case BinaryOperator::kAdd:
    case BinaryOperator::kSubtract:
      return kSum;
    case BinaryOperator::kShiftLeft:
    case BinaryOperator::kShiftRight:
      return kShift;
    case BinaryOperator::kLess:
    case BinaryOperator::kLessEqual:
    case BinaryOperator::kGreater:
    case BinaryOperator::kGreaterEqual:
      return kComparison;
    case BinaryOperator::kEqual:
    case BinaryOperator::kNotEqual:
      return kEquality;
    case BinaryOperator::kBitAnd:
      return kBitAnd;
    case BinaryOperator::kBitOr:
      return kBitOr;
    case BinaryOperator::kLogicalAnd:
      return kLogicalAnd;
    case BinaryOperator::kLogicalOr:
      return kLogicalOr;
    case BinaryOperator::kComma:
      break;
  }
  return kAssignment - 1;
}

int HeightOf(const ExpressionPtr& expression) { return expression ? expression->height : 0; }

int HeightOf(const std::vector<ExpressionPtr>& expressions) {
  int height = 0;
  for (const auto& expression : expressions) height = std::max(height, HeightOf(expression));
  return height;
}

template <typename T>
T Take(std::vector<T>& stack) {
  T top = std::move(stack.back());
  stack.pop_back();
  return top;
}

// The end of `stack` from the position on top of `starts`.
template <typename T>
std::vector<T> TakeFrom(std::vector<T>& stack, std::vector<std::size_t>& starts) {
  const auto begin = stack.begin() + static_cast<std::ptrdiff_t>(Take(starts));
  std::vector<T> taken(std::make_move_iterator(begin), std::make_move_iterator(stack.end()));
  stack.erase(begin, stack.end());
  return taken;
}

}  // namespace

TreeBuilder::TreeBuilder(SourceSet& sources, TextKind kind) : sources_(sources), kind_(kind) {}
TreeBuilder::~TreeBuilder() = default;

TreeBuilder::Nesting::Nesting(int& depth, int limit, const SourceRange& place) : depth_(depth) {
  if (depth >= limit) throw ScriptMistake(place, kTooDeep);
  ++depth_;
}

// --- Places --------------------------------------------------------------------------------------

void TreeBuilder::WithFile(FileId file, const std::function<void()>& read) {
  const FileId outer = std::exchange(file_, file);
  const Offset outer_end = std::exchange(previous_end_, 0);
  const auto outer_braces = std::exchange(open_braces_, {});
  read();
  file_ = outer;
  previous_end_ = outer_end;
  open_braces_ = outer_braces;
}

// --- Stacks --------------------------------------------------------------------------------------

ExpressionPtr TreeBuilder::PopOperand() { return Take(operands_); }
std::vector<ExpressionPtr> TreeBuilder::PopList() { return TakeFrom(operands_, list_starts_); }
StatementPtr TreeBuilder::PopStatement() { return Take(statements_); }
std::vector<StatementPtr> TreeBuilder::PopStatements() {
  return TakeFrom(statements_, statement_starts_);
}
Identifier TreeBuilder::PopName() { return Take(names_); }
Type TreeBuilder::PopType() { return Take(types_); }

Type TreeBuilder::PopModifiedType() {
  Type modified = PopType();
  PopType();
  return modified;
}

void TreeBuilder::Push(Expression::Node node, const SourceRange& range, int child_height) {
  if (child_height >= kMaxExpressionHeight) throw ScriptMistake(range, kTooDeep);
  operands_.push_back(
      std::make_unique<Expression>(Expression{std::move(node), range, child_height + 1}));
}

void TreeBuilder::Finish(Statement::Node node, const SourceRange& range) {
  statements_.push_back(std::make_unique<Statement>(Statement{std::move(node), range}));
}

// --- Names and types -----------------------------------------------------------------------------

void TreeBuilder::PushName(const SourceRange& range) {
  names_.push_back({std::string(sources_.Text(range)), range});
}

void TreeBuilder::SetUnsigned() {
  is_unsigned_ = true;
  type_word_ = TypeName::kInt;
}

void TreeBuilder::SetTypeWord(const SourceRange& word) {
  type_word_ = FindWord(sources_.Text(word))->type;
}

void TreeBuilder::EndTypeWords(const SourceRange& words) {
  if (!std::exchange(is_unsigned_, false)) return;
  const auto type = MakeUnsigned(type_word_);
  if (!type) {
    throw ScriptMistake(words,
                        std::string("there is no unsigned form of '") + Spelling(type_word_) + "'");
  }
  type_word_ = *type;
}

void TreeBuilder::OpenType() {
  type_ = Type();
  type_.name = type_word_;
}

void TreeBuilder::SetElement(const SourceRange& words) {
  if (!IsTemplate(type_.name)) {
    throw ScriptMistake(words, std::string("'") + Spelling(type_.name) + "' takes no element type");
  }
  if (!IsElement(type_word_)) {
    throw ScriptMistake(words, std::string("'") + Spelling(type_word_) +
                                   "' cannot be an element type: it must be a number, complex or a "
                                   "point");
  }
  type_.element = type_word_;
}

void TreeBuilder::PushType(const SourceRange& words) {
  type_.is_const = std::exchange(is_const_, false);
  type_.range = words;
  types_.push_back(type_);
}

void TreeBuilder::AddPointer(const SourceRange& star) {
  if (++pointers_ > 8) throw ScriptMistake(star, "too many levels of pointers");
}

void TreeBuilder::PushModifiedType() {
  types_.push_back(types_.back());
  types_.back().pointers = std::exchange(pointers_, 0);
  types_.back().is_reference = std::exchange(is_reference_, false);
}

// --- Operands ------------------------------------------------------------------------------------

void TreeBuilder::PushLiteral(Expression::Node node, const SourceRange& range) {
  Push(std::move(node), range, 0);
}

void TreeBuilder::AddString(const SourceRange& range) {
  string_ += ReadString(sources_.Text(range), range);
}

void TreeBuilder::PushStrings(const SourceRange& range) {
  Push(StringLiteral{std::exchange(string_, {})}, range, 0);
}

void TreeBuilder::PushVariable() {
  Identifier name = PopName();
  Push(Name{std::move(name.text)}, name.range, 0);
}

void TreeBuilder::PushScopedName() {
  const Type scope = PopType();
  Push(ScopedName{scope.name, PopName()}, From(scope.range.offset), 0);
}

void TreeBuilder::Parenthesise(const SourceRange& range) { operands_.back()->range = range; }

void TreeBuilder::PushConstruct() {
  Construct node{PopType(), PopList()};
  const SourceRange range = From(node.type.range.offset);
  const int height = HeightOf(node.arguments);
  Push(std::move(node), range, height);
}

void TreeBuilder::PushCall() {
  Call node{PopName(), PopList()};
  const SourceRange range = From(node.function.range.offset);
  const int height = HeightOf(node.arguments);
  Push(std::move(node), range, height);
}

void TreeBuilder::PushInitializerList(const SourceRange& range) {
  InitializerList node{PopList()};
  const int height = HeightOf(node.items);
  Push(std::move(node), range, height);
}

void TreeBuilder::ApplyIndex() {
  ExpressionPtr index = PopOperand();
  ExpressionPtr object = PopOperand();
  const SourceRange range = From(object->range.offset);
  const int height = std::max(HeightOf(object), HeightOf(index));
  Push(Index{std::move(object), std::move(index)}, range, height);
}

void TreeBuilder::ApplyMember(bool through_pointer) {
  ExpressionPtr object = PopOperand();
  const SourceRange range = From(object->range.offset);
  const int height = HeightOf(object);
  Push(Member{std::move(object), PopName(), through_pointer}, range, height);
}

void TreeBuilder::ApplyMemberCall(bool through_pointer) {
  std::vector<ExpressionPtr> arguments = PopList();
  ExpressionPtr object = PopOperand();
  const SourceRange range = From(object->range.offset);
  const int height = std::max(HeightOf(object), HeightOf(arguments));
  Push(MemberCall{std::move(object), PopName(), through_pointer, std::move(arguments)}, range,
       height);
}

void TreeBuilder::ApplyPostfix(UnaryOperator op, const SourceRange& range) {
  ExpressionPtr operand = PopOperand();
  const SourceRange whole = Cover(operand->range, range);
  const int height = HeightOf(operand);
  Push(Unary{op, range, std::move(operand)}, whole, height);
}

// --- Operators -----------------------------------------------------------------------------------

void TreeBuilder::PushPrefix(UnaryOperator op, const SourceRange& range) {
  const bool is_sign = op == UnaryOperator::kPlus || op == UnaryOperator::kMinus;
  operators_.push_back({.kind = PendingOperator::Kind::kPrefix,
                        .precedence = is_sign ? kSign : kPrefix,
                        .range = range,
                        .unary = op});
}

void TreeBuilder::PushCastPrefix(const SourceRange& range) {
  operators_.push_back({.kind = PendingOperator::Kind::kCast,
                        .precedence = kPrefix,
                        .range = range,
                        .type = PopModifiedType()});
}

void TreeBuilder::PushInfix(BinaryOperator op, const SourceRange& range) {
  const int precedence = PrecedenceOf(op);
  ReduceAbove(precedence, op != BinaryOperator::kPower);
  operators_.push_back({.kind = PendingOperator::Kind::kInfix,
                        .precedence = precedence,
                        .range = range,
                        .binary = op});
}

void TreeBuilder::PushAssign(std::optional<BinaryOperator> op, const SourceRange& range) {
  ReduceAbove(kAssignment, false);
  operators_.push_back({.kind = PendingOperator::Kind::kAssign,
                        .precedence = kAssignment,
                        .range = range,
                        .binary = op});
}

void TreeBuilder::OpenConditional(const SourceRange& question_mark) {
  ReduceAbove(kAssignment, false);
  operators_.push_back({.kind = PendingOperator::Kind::kConditional,
                        .precedence = kAssignment,
                        .range = question_mark});
}

void TreeBuilder::PushConditional() { operators_.back().middle = PopOperand(); }

void TreeBuilder::CloseOperators() {
  while (operators_.size() > operator_starts_.back()) Reduce();
  operator_starts_.pop_back();
}

void TreeBuilder::ReduceAbove(int precedence, bool and_equal) {
  while (operators_.size() > operator_starts_.back()) {
    const int top = operators_.back().precedence;
    if (top < precedence || (top == precedence && !and_equal)) return;
    Reduce();
  }
}

void TreeBuilder::Reduce() {
  PendingOperator top = Take(operators_);
  if (top.kind == PendingOperator::Kind::kInfix) {
    Combine(*top.binary, top.range);
    return;
  }
  ExpressionPtr right = PopOperand();
  int height = HeightOf(right);
  if (top.kind == PendingOperator::Kind::kPrefix) {
    const SourceRange range = Cover(top.range, right->range);
    Push(Unary{top.unary, top.range, std::move(right)}, range, height);
    return;
  }
  if (top.kind == PendingOperator::Kind::kCast) {
    const SourceRange range = Cover(top.range, right->range);
    Push(Cast{top.type, std::move(right)}, range, height);
    return;
  }
  ExpressionPtr left = PopOperand();
  const SourceRange range = Cover(left->range, right->range);
  height = std::max({height, HeightOf(left), HeightOf(top.middle)});
  if (top.kind == PendingOperator::Kind::kAssign) {
    Push(Assign{top.binary, top.range, std::move(left), std::move(right)}, range, height);
  } else {
    Push(Conditional{std::move(left), std::move(top.middle), std::move(right)}, range, height);
  }
}

// Lengthens the left operand's chain where that has the same precedence, so that long sums stay
// flat.
void TreeBuilder::Combine(BinaryOperator op, const SourceRange& op_range) {
  ExpressionPtr right = PopOperand();
  const int right_height = HeightOf(right);
  Expression& left = *operands_.back();
  const SourceRange range = Cover(left.range, right->range);
  auto* chain = std::get_if<Binary>(&left.node);
  if (chain && op != BinaryOperator::kPower &&
      PrecedenceOf(chain->rest.front().op) == PrecedenceOf(op)) {
    if (right_height >= kMaxExpressionHeight) throw ScriptMistake(range, kTooDeep);
    chain->rest.push_back({op, op_range, std::move(right)});
    left.range = range;
    left.height = std::max(left.height, right_height + 1);
    return;
  }
  Binary node;
  node.first = PopOperand();
  const int height = std::max(HeightOf(node.first), right_height);
  node.rest.push_back({op, op_range, std::move(right)});
  Push(std::move(node), range, height);
}

void TreeBuilder::ApplyComma(const SourceRange& comma) { Combine(BinaryOperator::kComma, comma); }

// --- Statements ----------------------------------------------------------------------------------

void TreeBuilder::PushSimple(Statement::Node node, const SourceRange& range) {
  Finish(std::move(node), range);
}

void TreeBuilder::PushBlock(const SourceRange& range) { Finish(Block{PopStatements()}, range); }

void TreeBuilder::OpenVariable() {
  Variable variable;
  variable.type = PopType();
  variable.name = PopName();
  variables_.push_back(std::move(variable));
}

void TreeBuilder::SetArray(bool has_size) {
  variables_.back().is_array = true;
  if (has_size) variables_.back().array_size = PopOperand();
}

void TreeBuilder::SetAssigned() {
  variables_.back().form = Variable::Form::kAssigned;
  variables_.back().initializer = PopOperand();
}

void TreeBuilder::SetArguments() {
  variables_.back().form = Variable::Form::kArguments;
  variables_.back().arguments = PopList();
}

void TreeBuilder::PushDeclaration(const SourceRange& range) {
  PopType();
  Finish(Declaration{std::exchange(variables_, {})}, range);
}

void TreeBuilder::PushExpressionStatement(const SourceRange& range, bool terminated) {
  Finish(ExpressionStatement{PopOperand(), terminated}, range);
}

void TreeBuilder::OpenIf() { ifs_.emplace_back(); }

void TreeBuilder::AddBranch() { ifs_.back().branches.push_back({PopOperand(), PopStatement()}); }

void TreeBuilder::SetOtherwise() { ifs_.back().otherwise = PopStatement(); }

void TreeBuilder::PushIf(const SourceRange& range) { Finish(Take(ifs_), range); }

void TreeBuilder::PushWhile(const SourceRange& range) {
  Finish(While{PopOperand(), PopStatement()}, range);
}

void TreeBuilder::PushDoWhile(const SourceRange& range) {
  Finish(DoWhile{PopStatement(), PopOperand()}, range);
}

void TreeBuilder::PushFor(const SourceRange& range) {
  For node;
  node.body = PopStatement();
  node.initializer = PopStatement();
  node.step = PopOperand();
  node.condition = PopOperand();
  Finish(std::move(node), range);
}

void TreeBuilder::PushRangeFor(const SourceRange& range) {
  Finish(RangeFor{PopModifiedType(), PopName(), PopOperand(), PopStatement()}, range);
}

void TreeBuilder::OpenSwitch() {
  switches_.emplace_back();
  switches_.back().subject = PopOperand();
}

void TreeBuilder::OpenSection() {
  switches_.back().sections.emplace_back();
  OpenStatements();
}

void TreeBuilder::AddLabel(bool is_default, const SourceRange& word) {
  switches_.back().sections.back().labels.push_back({is_default ? nullptr : PopOperand(), word});
}

void TreeBuilder::CloseSection() { switches_.back().sections.back().statements = PopStatements(); }

void TreeBuilder::PushSwitch(const SourceRange& range) { Finish(Take(switches_), range); }

void TreeBuilder::PushReturn(const SourceRange& range) { Finish(Return{PopOperand()}, range); }

void TreeBuilder::PushTry(const SourceRange& range) {
  StatementPtr handler = PopStatement();
  Finish(Try{PopStatement(), PopName(), std::move(handler)}, range);
}

// --- Top level -----------------------------------------------------------------------------------

void TreeBuilder::OpenFunction() {
  function_ = Function();
  function_.result = PopModifiedType();
  function_.name = PopName();
}

void TreeBuilder::OpenParameter() {
  Parameter parameter;
  parameter.type = PopModifiedType();
  function_.parameters.push_back(std::move(parameter));
}

void TreeBuilder::SetParameterName() { function_.parameters.back().name = PopName(); }

void TreeBuilder::SetDefault() { function_.parameters.back().default_value = PopOperand(); }

void TreeBuilder::SetVariadic() { function_.parameters.back().variadic = true; }

void TreeBuilder::CheckParameters() const {
  bool seen_default = false;
  for (const Parameter& parameter : function_.parameters) {
    if (seen_default && !parameter.default_value && !parameter.variadic) {
      throw ScriptMistake(parameter.name.range.length ? parameter.name.range : parameter.type.range,
                          "a parameter behind one with a default value needs one too");
    }
    seen_default = seen_default || parameter.default_value;
  }
}

void TreeBuilder::AddFunction(const SourceRange& range) {
  function_.body = PopStatement();
  function_.range = range;
  program_.functions.push_back(std::move(function_));
}

void TreeBuilder::AddTopLevelStatement() { program_.statements.push_back(PopStatement()); }

// --- Catalogue -----------------------------------------------------------------------------------

void TreeBuilder::SetDocumentation(Offset here) {
  documentation_.clear();
  std::string_view text = sources_.Text(At(previous_end_, here));
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
    if (!line.starts_with("///")) continue;
    line.remove_prefix(3);
    if (line.starts_with(' ')) line.remove_prefix(1);
    if (line.ends_with('\r')) line.remove_suffix(1);
    if (!documentation_.empty()) documentation_ += '\n';
    documentation_ += line;
  }
}

void TreeBuilder::OpenClass(const SourceRange& name) {
  CatalogueClass opened;
  opened.name = std::string(sources_.Text(name));
  opened.documentation = std::exchange(documentation_, {});
  classes_.push_back(std::move(opened));
}

void TreeBuilder::SetBase(const SourceRange& name) {
  classes_.back().base = std::string(sources_.Text(name));
}

void TreeBuilder::AddMember(const SourceRange& range) {
  CatalogueMember member;
  member.is_method = !std::exchange(is_property_, false);
  member.is_const = std::exchange(is_const_method_, false);
  member.type = function_.result;
  member.name = function_.name.text;
  member.parameters = std::exchange(function_.parameters, {});
  member.documentation = std::exchange(documentation_, {});
  for (const char c : sources_.Text(range)) {  // one line, however it was laid out
    const bool is_space = c == ' ' || c == '\n' || c == '\r' || c == '\t';
    if (!is_space) {
      member.signature += c;
    } else if (!member.signature.ends_with(' ')) {
      member.signature += ' ';
    }
  }
  while (member.signature.ends_with(';') || member.signature.ends_with(' ')) {
    member.signature.pop_back();
  }
  classes_.back().members.push_back(std::move(member));
}

}  // namespace tesselc
