#pragma once

#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "tesselc/catalogue.h"
#include "tesselc/compile/scope.h"
#include "tesselc/compile/static_type.h"
#include "tesselc/diagnostic.h"
#include "tesselc/run/arithmetic.h"
#include "tesselc/run/bindings.h"
#include "tesselc/run/builtins.h"
#include "tesselc/run/control.h"
#include "tesselc/run/function.h"
#include "tesselc/run/member_call.h"
#include "tesselc/run/print.h"
#include "tesselc/run/range_loop.h"

namespace tesselc {

// A compiled expression.
struct Value {
  StaticType type;
  Carrier carrier = TypeName::kVoid;
  NodePtr node;
};

// What an expression reaches: something that can be assigned to or referred to, or just a value.
struct Place {
  struct Computed {  // just a value
    Carrier carrier;
    NodePtr node;
  };
  struct Variable {  // of a scalar type
    VariablePlace at;
  };
  struct Element {  // a scalar or a text inside an object
    Carrier carrier;
    NodePtr node;  // an ElementNode
    // + - * / ^ with an assignment are the object's own; a byte of a text has none.
    bool has_operations;
  };
  struct Object {  // an object in a variable, or an item of an array of objects
    NodePtr node;
    const Symbol* variable;  // when the expression is just its name, else null
  };
  struct MatrixRow {  // a matrix with one index: a cell with another one, a layer before a member
    NodePtr matrix;
    NodePtr row;
  };
  struct Property {
    MemberUse use;
  };

  StaticType type;
  bool is_const = false;
  std::variant<Computed, Variable, Element, Object, MatrixRow, Property> what;

  template <class Kind>
  bool Is() const {
    return std::holds_alternative<Kind>(what);
  }
  // Something of the script's own, rather than a value that is computed.
  bool IsStored() const { return !Is<Computed>() && !Is<Property>(); }
};

// One function object of several, to visit a variant with.
template <class... F>
struct Overloaded : F... {
  using F::operator()...;
};

// A function's declaration, known before any body is compiled.
struct Signature {
  const Function* declaration = nullptr;
  StaticType result;
  struct Parameter {
    StaticType type;
    bool by_reference = false;
    bool is_const = false;
    std::uint32_t offset = 0;
  };
  std::vector<Parameter> parameters;
  FrameLayout layout;
  CompiledFunction compiled;
};

struct CompilerOptions {
  PowerFunction power = nullptr;  // of the ^ operator
  unsigned char fill = 0;         // the bytes of a number that was declared without a value
  // At a prompt: names may be declared anew, and a last expression without ';' shows its value.
  bool interactive = false;
};

// The result of compiling a script. It refers to the globals it was compiled with.
struct CompiledScript {
  CompiledFunction top_level;
  const CompiledFunction* main = nullptr;
  std::deque<Signature> functions;
};

// Checks a script and compiles it. All that can be found wrong before the script runs is found
// here; a mistake spoils its own statement, and the others are still checked.
class Compiler {
 public:
  Compiler(Globals& globals, const CompilerOptions& options);

  // At a prompt, for one program after the other: a script refers to the programs and scripts
  // before it. One with mistakes leaves the names that were known before.
  CompiledScript Compile(const Program& program);
  // In the order of the text.
  std::vector<Diagnostic> TakeDiagnostics();

  // The type of a global variable, void for none; the names of variables and functions.
  StaticType TypeOfGlobal(std::string_view name) const;
  std::vector<std::string> GlobalNames() const;

 private:
  // --- compile_program.cpp
  void DeclareFunctions(const Program& program, CompiledScript& script);
  void DeclareFunction(const Function& function, CompiledScript& script);
  void CompileBody(Signature& signature);
  void CompileTopLevel(const Program& program, CompiledScript& script);
  void DeclareParameters(Signature& signature);
  void Redefine(Signature& known, Signature&& signature);

  // --- compile_statement.cpp
  NodePtr CompileStatement(const Statement& statement);
  // Never fails: a mistake is noted, and the result is then an empty statement.
  NodePtr CompileGuarded(const Statement& statement);
  std::vector<PlacedStatement> CompileList(const std::vector<StatementPtr>& statements);
  // As the body of a construct: with a scope of its own.
  NodePtr CompileBlock(const Statement& statement);
  NodePtr CompileLoopBody(const Statement& statement);
  NodePtr Visit(const Block& block, const SourceRange& range);
  NodePtr Visit(const Declaration& declaration, const SourceRange& range);
  NodePtr Visit(const ExpressionStatement& statement, const SourceRange& range);
  NodePtr Visit(const If& statement, const SourceRange& range);
  NodePtr Visit(const While& statement, const SourceRange& range);
  NodePtr Visit(const DoWhile& statement, const SourceRange& range);
  NodePtr Visit(const For& statement, const SourceRange& range);
  NodePtr Visit(const RangeFor& statement, const SourceRange& range);
  void CompileRound(const RangeFor& statement, const Symbol& symbol,
                    const std::function<Place()>& element, RangeLoop& loop);
  NodePtr Visit(const Switch& statement, const SourceRange& range);
  NodePtr Visit(const Break& statement, const SourceRange& range);
  NodePtr Visit(const Continue& statement, const SourceRange& range);
  NodePtr Visit(const Return& statement, const SourceRange& range);
  NodePtr Visit(const Try& statement, const SourceRange& range);
  NodePtr Visit(const Empty& statement, const SourceRange& range);
  NodePtr CompileCondition(const Expression& expression);
  Value CompileReturned(const Expression& expression, const StaticType& type);
  std::int64_t CaseValue(const Expression& expression);

  // --- compile_declaration.cpp
  void CompileVariable(const Variable& variable, std::vector<PlacedStatement>& out);
  Symbol& DeclareVariable(const Identifier& name, const StaticType& type, bool is_const,
                          bool is_reference);
  void DeclareReference(const Variable& variable, const StaticType& type,
                        std::vector<PlacedStatement>& out);
  void DeclareScalar(const Variable& variable, const StaticType& type,
                     std::vector<PlacedStatement>& out);
  void DeclareObject(const Variable& variable, const StaticType& type,
                     std::vector<PlacedStatement>& out);
  void InitializeObject(const Variable& variable, const Symbol& symbol,
                        std::vector<PlacedStatement>& out);
  void InitializeByArguments(const Variable& variable, const Symbol& symbol,
                             std::vector<PlacedStatement>& out);
  void InitializeByList(const InitializerList& list, const Symbol& symbol, const SourceRange& range,
                        std::vector<PlacedStatement>& out);
  NodePtr SetSize(const Symbol& symbol, std::vector<NodePtr> sizes, const SourceRange& range);
  Place ElementAt(const Symbol& symbol, const std::vector<std::size_t>& indices,
                  const SourceRange& range);
  NodePtr LoadSymbol(const Symbol& symbol, std::string_view name, const SourceRange& range);

  // --- compile_expression.cpp
  Value CompileValue(const Expression& expression);
  Place Reach(const Expression& expression);
  Value Load(Place place, const SourceRange& range);
  Place Visit(const IntLiteral& literal, const SourceRange& range);
  Place Visit(const FloatLiteral& literal, const SourceRange& range);
  Place Visit(const ImaginaryLiteral& literal, const SourceRange& range);
  Place Visit(const CharLiteral& literal, const SourceRange& range);
  Place Visit(const StringLiteral& literal, const SourceRange& range);
  Place Visit(const NullLiteral& literal, const SourceRange& range);
  Place Visit(const Name& name, const SourceRange& range);
  Place Visit(const ScopedName& name, const SourceRange& range);
  Place Visit(const Unary& unary, const SourceRange& range);
  Place Visit(const Binary& binary, const SourceRange& range);
  // The value of a chain and one more link; `first` is where the chain starts.
  Value CompileLink(const SourceRange& first, Value left, const Binary::Link& link);
  Place Visit(const Assign& assign, const SourceRange& range);
  Place Visit(const Conditional& conditional, const SourceRange& range);
  Place Visit(const Cast& cast, const SourceRange& range);
  Place Visit(const Construct& construct, const SourceRange& range);
  Place Visit(const Call& call, const SourceRange& range);
  Place Visit(const Member& member, const SourceRange& range);
  Place Visit(const MemberCall& call, const SourceRange& range);
  Place Visit(const Index& index, const SourceRange& range);
  Place Visit(const InitializerList& list, const SourceRange& range);
  // T(a, b): a conversion of one value, or a complex or point from its parts.
  Value ConstructScalar(const StaticType& type, const std::vector<ExpressionPtr>& arguments,
                        const SourceRange& range);
  Place IndexArray(Place base, NodePtr index, const SourceRange& range);
  // An element of a vector, a text or a text array.
  static Place ElementOf(const StaticType& container, NodePtr object, NodePtr index,
                         const SourceRange& range);
  static Place CellOf(const StaticType& matrix, NodePtr object, NodePtr row, NodePtr column,
                      const SourceRange& range);
  const Symbol* FindSymbol(std::string_view name) const;

  // --- compile_conversion.cpp
  // The value as another type, or a mistake: "cannot convert string to int".
  Value Convert(Value value, const StaticType& to, const SourceRange& range, bool is_cast = false);
  Value ConvertToObject(Value value, const StaticType& to, const SourceRange& range);
  NodePtr ToNumber(Value value, TypeName number, const SourceRange& range);
  NodePtr ToIndex(const Expression& expression);
  // A number that is stored in an object: it saturates where a variable would wrap.
  NodePtr ToStored(Value value, const StaticType& to, const SourceRange& range);
  NodePtr ToText(Value value, const SourceRange& range);
  NodePtr ToTruth(Value value, const SourceRange& range);
  NodePtr ToObject(Value value, const SourceRange& range);
  // An object that is nobody's variable.
  NodePtr ToOwnedObject(Value value, const StaticType& type, const SourceRange& range);

  // --- compile_operator.cpp
  // The code of an arithmetic operator for Operate2; 0 when it has none.
  static unsigned OperationCode(BinaryOperator op);
  Value Combine(BinaryOperator op, Value left, Value right, const SourceRange& range);
  Value CombineNumbers(BinaryOperator op, Value left, Value right, const SourceRange& range);
  Value CombineComplex(BinaryOperator op, Value left, Value right, const SourceRange& range);
  Value CombinePoints(BinaryOperator op, Value left, Value right, const SourceRange& range);
  Value CombineTexts(BinaryOperator op, Value left, Value right, const SourceRange& range);
  Value CombineObjects(BinaryOperator op, Value left, Value right, const SourceRange& range);
  Value Step(UnaryOperator op, const Expression& operand, const SourceRange& range);

  // --- compile_assignment.cpp
  Value AssignTo(Place target, std::optional<BinaryOperator> op, Value value,
                 const SourceRange& range);
  Value AssignVariable(Place target, std::optional<BinaryOperator> op, Value value,
                       const SourceRange& range);
  Value UpdateVariable(Place target, BinaryOperator op, Value value, const SourceRange& range);
  Value AssignElement(Place target, std::optional<BinaryOperator> op, Value value,
                      const SourceRange& range);
  Value UpdateElement(Place target, BinaryOperator op, Value value, bool give_old,
                      const SourceRange& range);
  Value AssignObject(Place target, std::optional<BinaryOperator> op, Value value,
                     const SourceRange& range);
  Value AssignProperty(Place target, Value value, const SourceRange& range);
  Value Scratch(const StaticType& type, std::uint32_t offset);

  // --- compile_member.cpp
  MemberUse UseMember(const Expression& object, const Identifier& member, StaticType& type,
                      std::vector<const CatalogueMember*>& found);
  BindingPtr BindObject(Place place, const SourceRange& range);
  void PassArguments(MemberUse& use, const std::vector<ExpressionPtr>& arguments,
                     const std::vector<const CatalogueMember*>& overloads);
  void CheckArguments(const MemberUse& use, const CatalogueMember& member,
                      const std::vector<ExpressionPtr>& arguments,
                      const std::vector<Place>& places);
  ArgumentPtr PassArgument(Place place, const struct Parameter* parameter,
                           const SourceRange& range);
  ArgumentPtr PassDefault(const struct Parameter& parameter);

  // --- compile_call.cpp
  ParameterPtr PassToParameter(Place place, const Signature::Parameter& parameter,
                               const SourceRange& range);
  ParameterPtr PassByReference(Place place, const Signature::Parameter& parameter,
                               const SourceRange& range);
  Value CallFunction(const Signature& signature, const tesselc::Call& call,
                     const SourceRange& range);
  Value MathOnContainers(const MathFunction& function, std::vector<Value> arguments,
                         const SourceRange& range);
  Value CallBuiltin(const tesselc::Call& call, const SourceRange& range);
  Value CallHost(const tesselc::Call& call);
  std::vector<PrintArgument> CompilePrinted(const std::vector<ExpressionPtr>& arguments,
                                            std::size_t first, bool only_texts);

  // The body of one function being compiled.
  struct Context {
    FrameLayout* layout = nullptr;
    const Signature* function = nullptr;  // null at the top level
    struct Level {
      std::map<std::string, Symbol, std::less<>> symbols;
      std::vector<std::uint32_t> object_slots;
      bool is_switch = false;  // a case can jump past declarations
    };
    std::vector<Level> levels;
    int loops = 0;
    int breakables = 0;
  };
  // A scope that ends with this; Close wraps what was compiled in it.
  class ScopeGuard {
   public:
    explicit ScopeGuard(Compiler& compiler);
    ~ScopeGuard();
    NodePtr Close(NodePtr body);

   private:
    Compiler& compiler_;
  };

  void Report(const ScriptMistake& mistake) { diagnostics_.push_back(mistake.diagnostic()); }
  void Warn(const SourceRange& range, std::string message) {
    diagnostics_.push_back({range, std::move(message), {}, Diagnostic::Severity::kWarning});
  }
  [[noreturn]] static void Fail(const SourceRange& range, std::string message,
                                std::vector<std::string> notes = {}) {
    throw ScriptMistake(range, std::move(message), std::move(notes));
  }
  static Place AsPlace(Value value) {
    return {value.type, false, Place::Computed{value.carrier, std::move(value.node)}};
  }
  static Value MakeValue(TypeName scalar, NodePtr node) {
    return {StaticType::Of(scalar), scalar, std::move(node)};
  }

  Globals& globals_;
  CompilerOptions options_;
  std::map<std::string, Signature*, std::less<>> functions_;
  std::vector<std::pair<Signature*, Signature>> redefined_;  // with what they were before
  Context context_;
  std::vector<Diagnostic> diagnostics_;
};

}  // namespace tesselc
