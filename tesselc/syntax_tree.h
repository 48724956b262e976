#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "tesselc/source.h"

// The tree of a script. A node is a struct in a std::variant, so a pass over the tree is a
// std::visit with one overload per node.
//
// Depth is bounded: expressions are at most kMaxExpressionHeight nodes high and statements nest at
// most kMaxStatementDepth deep (else-if chains and chains of left-associative operators are flat,
// however long), so a recursive pass over the tree needs no guard of its own.

namespace tesselc {

inline constexpr int kMaxExpressionHeight = 500;
inline constexpr int kMaxStatementDepth = 200;

// --- Types -------------------------------------------------------------------------------------

enum class TypeName : std::uint8_t {
  kVoid,
  // Scalars, aliases resolved: byte is kUchar, word is kUshort, bool and BOOL are kInt, DWORD is
  // kUint, __int64 is kInt64.
  kChar,
  kUchar,
  kShort,
  kUshort,
  kInt,
  kUint,
  kFloat,
  kDouble,
  kInt64,
  kUint64,
  kComplex,
  kPoint,
  kFpoint,
  kFpoint3d,
  // Containers.
  kVector,
  kMatrix,
  kVectorBase,
  kMatrixBase,
  // Objects.
  kString,
  kStringArray,
  kFile,
  kStdioFile,
  kVariant,
  kPicture,
  kDeviceContext,
  // Containers bound to the host's data.
  kDataset,
  kCurve,
  kCategorical,
  kMatrixObject,
  // Only in the member catalogue: any scalar, any data as raw bytes, any value at all.
  kNumeric,
  kBuffer,
  kAny,
};

// The canonical spelling: "uchar", "vector", "StringArray".
const char* Spelling(TypeName name);
// True for kChar .. kUint64.
bool IsNumber(TypeName name);
// True for what a container may hold: numbers, complex and the points.
bool IsElement(TypeName name);
// True for types that take an element type in angle brackets.
bool IsTemplate(TypeName name);

struct Type {
  TypeName name = TypeName::kVoid;
  TypeName element = TypeName::kDouble;  // of a template type; double when the script names none
  bool is_const = false;
  bool is_reference = false;
  std::uint8_t pointers = 0;  // how many '*'
  SourceRange range;          // from the type's first word to its last, '*' and '&' not included
};

// As a script would write it: "const vector<int>&", "double", "string*".
std::string Spelling(const Type& type);

// --- Expressions -------------------------------------------------------------------------------

struct Expression;
using ExpressionPtr = std::unique_ptr<Expression>;

// A name with its place.
struct Identifier {
  std::string text;
  SourceRange range;
};

// 10, 0x1F, TRUE, FALSE. `type` is the first of int, int64, uint64 that holds the value; as in C a
// hexadecimal, octal or binary literal may also be a uint, and the suffix u asks for an unsigned.
struct IntLiteral {
  std::uint64_t value;
  TypeName type;
};

// 1.5e-3, 2.0f, NANUM, NAN, INFINITY, PI. `type` is kDouble, or kFloat for the suffix f.
struct FloatLiteral {
  double value;
  TypeName type;
};

// 2i
struct ImaginaryLiteral {
  double value;
};

// 'c'
struct CharLiteral {
  char value;
};

// "text", adjacent literals joined and escapes resolved. May hold NUL bytes ("\0").
struct StringLiteral {
  std::string value;
};

struct NullLiteral {};

// A variable.
struct Name {
  std::string text;
};

// file::modeRead
struct ScopedName {
  TypeName scope;
  Identifier name;
};

enum class UnaryOperator : std::uint8_t {
  kPlus,
  kMinus,
  kNot,            // !
  kComplement,     // ~
  kPreIncrement,   // ++a
  kPreDecrement,   // --a
  kPostIncrement,  // a++
  kPostDecrement,  // a--
  kDereference,    // *p
  kAddressOf,      // &a
};

struct Unary {
  UnaryOperator op;
  SourceRange op_range;
  ExpressionPtr operand;
};

enum class BinaryOperator : std::uint8_t {
  kPower,
  kMultiply,
  kDivide,
  kRemainder,
  kAdd,
  kSubtract,
  kShiftLeft,
  kShiftRight,
  kLess,
  kLessEqual,
  kGreater,
  kGreaterEqual,
  kEqual,
  kNotEqual,
  kBitAnd,
  kBitOr,
  kLogicalAnd,
  kLogicalOr,
  kComma,
};

// A chain of operators of one precedence, applied from left to right: a - b + c is first a, rest
// {- b, + c}. There is at least one link. Power is right-associative, so its chain has exactly one
// link. kLogicalAnd, kLogicalOr and kComma have a precedence each, so their chains hold nothing
// else.
struct Binary {
  struct Link {
    BinaryOperator op;
    SourceRange op_range;
    ExpressionPtr operand;
  };
  ExpressionPtr first;
  std::vector<Link> rest;
};

// target = value; `op` is there for the combining forms: += is kAdd, ^= is kPower.
struct Assign {
  std::optional<BinaryOperator> op;
  SourceRange op_range;
  ExpressionPtr target;
  ExpressionPtr value;
};

// condition ? yes : no
struct Conditional {
  ExpressionPtr condition;
  ExpressionPtr yes;
  ExpressionPtr no;
};

// (int)x
struct Cast {
  Type type;
  ExpressionPtr operand;
};

// double(x), complex(1, 2), point(3, 4)
struct Construct {
  Type type;
  std::vector<ExpressionPtr> arguments;
};

// scale(v, 2): a function of the script or a built-in one.
struct Call {
  Identifier function;
  std::vector<ExpressionPtr> arguments;
};

// z.m_re, p->m_re
struct Member {
  ExpressionPtr object;
  Identifier member;
  bool through_pointer;  // ->
};

// v.Sum(total), p->Sum(total)
struct MemberCall {
  ExpressionPtr object;
  Identifier member;
  bool through_pointer;
  std::vector<ExpressionPtr> arguments;
};

// v[i]; m[r][c] is an Index of an Index.
struct Index {
  ExpressionPtr object;
  ExpressionPtr index;
};

// {1, 2, 3} or {{1, 2}, {3, 4}}. Only as the initialiser of a variable.
struct InitializerList {
  std::vector<ExpressionPtr> items;
};

struct Expression {
  using Node = std::variant<IntLiteral, FloatLiteral, ImaginaryLiteral, CharLiteral, StringLiteral,
                            NullLiteral, Name, ScopedName, Unary, Binary, Assign, Conditional, Cast,
                            Construct, Call, Member, MemberCall, Index, InitializerList>;

  Node node;
  SourceRange range;  // the whole expression, parentheses around it included
  int height = 1;     // in nodes; a literal is 1
};

// --- Statements --------------------------------------------------------------------------------

struct Statement;
using StatementPtr = std::unique_ptr<Statement>;

// One declared name: `T a`, `T a = e`, `T a(e, f)`, `T a[n]`, `T a[n] = {...}`.
struct Variable {
  enum class Form : std::uint8_t {
    kDefault,    // T a;
    kAssigned,   // T a = e; the initialiser may be an InitializerList
    kArguments,  // T a(e, f); at least one argument
  };

  Type type;
  Identifier name;
  Form form = Form::kDefault;
  ExpressionPtr array_size;              // null unless `T a[n]`; `T a[] = {...}` has none either
  bool is_array = false;                 // there are brackets
  ExpressionPtr initializer;             // of kAssigned
  std::vector<ExpressionPtr> arguments;  // of kArguments
};

struct Block {
  std::vector<StatementPtr> statements;
};

// int a = 1, b[3], *c;
struct Declaration {
  std::vector<Variable> variables;
};

struct ExpressionStatement {
  ExpressionPtr expression;
  bool terminated = true;  // false for an expression without its ';' that ends a prompt's input
};

// if ... else if ... else ...: the branches in order, then what is left.
struct If {
  struct Branch {
    ExpressionPtr condition;
    StatementPtr body;
  };
  std::vector<Branch> branches;
  StatementPtr otherwise;  // null without a last else
};

struct While {
  ExpressionPtr condition;
  StatementPtr body;
};

struct DoWhile {
  StatementPtr body;
  ExpressionPtr condition;
};

// Each of initializer, condition and step may be null. The initialiser is a Declaration or an
// ExpressionStatement.
struct For {
  StatementPtr initializer;
  ExpressionPtr condition;
  ExpressionPtr step;
  StatementPtr body;
};

// for (double x : v)
struct RangeFor {
  Type type;
  Identifier name;
  ExpressionPtr range;
  StatementPtr body;
};

// The sections run on into each other unless a break ends one.
struct Switch {
  struct Label {
    ExpressionPtr value;  // null for default
    SourceRange range;    // the word case or default
  };
  struct Section {
    std::vector<Label> labels;  // at least one
    std::vector<StatementPtr> statements;
  };
  ExpressionPtr subject;
  std::vector<Section> sections;
};

struct Break {};
struct Continue {};

struct Return {
  ExpressionPtr value;  // may be null
};

// try body catch (int status) handler; both are Blocks.
struct Try {
  StatementPtr body;
  Identifier status;
  StatementPtr handler;
};

struct Empty {};

struct Statement {
  using Node = std::variant<Block, Declaration, ExpressionStatement, If, While, DoWhile, For,
                            RangeFor, Switch, Break, Continue, Return, Try, Empty>;

  Node node;
  SourceRange range;
};

// --- Programs ----------------------------------------------------------------------------------

struct Parameter {
  Type type;
  Identifier name;              // empty in a prototype, or for an argument nobody looks at
  ExpressionPtr default_value;  // null when the argument must be given
  bool variadic = false;        // `any... args`, only in the member catalogue and only at the end
};

struct Function {
  Type result;
  Identifier name;
  std::vector<Parameter> parameters;
  StatementPtr body;  // a Block; null for a prototype, `double f(int n);`
  SourceRange range;
};

// What is at the top level, includes spliced in where they stand.
struct Program {
  std::vector<Function> functions;
  std::vector<StatementPtr> statements;
};

}  // namespace tesselc
