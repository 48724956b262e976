#include "tesselc/parser.h"

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "tesselc/catalogue_parser.h"
#include "tesselc/grammar.h"
#include "tesselc/grammar_messages.h"
#include "tesselc/literals.h"
#include "tesselc/similar_name.h"
#include "tesselc/tree_builder.h"
#include "tesselc/utf8_text.h"
#include "tesselc/words.h"

namespace tesselc {

namespace {

using Offset = TreeBuilder::Offset;

// --- Mistakes ------------------------------------------------------------------------------------

// A mistake at the very end of the text, which more text could mend.
class UnfinishedText : public ScriptMistake {
 public:
  using ScriptMistake::ScriptMistake;
};

// A message for a character that no rule could ever take, if one stands at `offset`.
std::optional<std::string> ForeignCharacter(std::string_view text) {
  constexpr std::string_view kHexDigits = "0123456789abcdef";
  if (text.empty()) return std::nullopt;
  const auto byte = static_cast<unsigned char>(text[0]);
  const std::string hex = {'0', 'x', kHexDigits[byte >> 4], kHexDigits[byte & 15]};
  const std::size_t length = Utf8SequenceLength(text);
  if (length == 0) return "the byte " + hex + " is not valid UTF-8";
  if (byte < ' ' || byte == 0x7F) return "unexpected byte " + hex;
  if (length > 1 || text[0] == '@' || text[0] == '$' || text[0] == '`' || text[0] == '\\') {
    return "unexpected character '" + std::string(text.substr(0, length)) + "'";
  }
  return std::nullopt;
}

// `foo bar` reads as an expression that misses its ';', but is a declaration with a type nobody
// knows.
std::optional<ScriptMistake> UnknownType(const TreeBuilder& builder, std::string_view behind) {
  const Expression* operand = builder.last_operand();
  if (!operand || behind.empty()) return std::nullopt;
  const auto* name = std::get_if<Name>(&operand->node);
  if (!name || !IsWordCharacter(behind[0])) return std::nullopt;
  SimilarName similar(name->text);
  for (const Word& word : AllWords()) {
    if (word.kind == WordKind::kType && !word.catalogue_only) similar.Offer(word.text);
  }
  return ScriptMistake(operand->range, "unknown type '" + name->text + "'", similar.Notes());
}

// Whether a text ends in the middle of a function's parameters: a type, a name and an open
// parenthesis stand in front. They read as a variable with arguments where a type is unknown.
bool EndsInParameters(std::string_view before) {
  const std::size_t open = before.find_last_of("(){};");
  if (open == std::string_view::npos || before[open] != '(') return false;
  const auto skip_space = [](std::string_view text) {
    return text.substr(0, text.find_last_not_of(" \t\r\n") + 1);
  };
  const auto word_begin = [](std::string_view text) {
    std::size_t begin = text.size();
    while (begin > 0 && IsWordCharacter(text[begin - 1])) --begin;
    return begin;
  };
  before = skip_space(before.substr(0, open));
  const std::size_t function = word_begin(before);
  if (function == before.size()) return false;
  before = skip_space(before.substr(0, function));
  if (before.ends_with('>')) return true;
  const Word* type = FindWord(before.substr(word_begin(before)));
  return type != nullptr && type->kind == WordKind::kType;
}

// Which '{' is still open, if that helps: it may be far above.
std::string OpenBraceNote(const SourceFile& file, const TreeBuilder& builder, Offset here) {
  if (builder.open_braces().empty()) return "";
  const auto line = file.Locate(builder.open_braces().back()).line;
  if (line == file.Locate(here).line) return "";
  return " to close the '{' in line " + std::to_string(line);
}

[[noreturn]] void Expected(const grammar::Expectation& expected, const TreeBuilder& builder,
                           Offset here) {
  const SourceFile& file = builder.source();
  const std::string_view behind = file.text().substr(here);
  if (const auto foreign = ForeignCharacter(behind)) {
    throw ScriptMistake(builder.At(here, here + 1), *foreign);
  }
  std::string message = expected.message;
  const bool may_be_type =
      expected.place == grammar::Expectation::kAfterExpression ||
      (expected.place == grammar::Expectation::kBehindPrevious && builder.last_operand() &&
       EndsInParameters(file.text().substr(0, builder.last_operand()->range.offset)));
  if (may_be_type) {
    if (const auto unknown = UnknownType(builder, behind)) throw *unknown;
  }
  if (expected.closes_brace) message += OpenBraceNote(file, builder, here);
  const Offset previous = builder.previous_end();
  const bool is_comment = expected.place == grammar::Expectation::kUnfinished;
  if (is_comment || behind.empty()) {
    const Offset place = is_comment ? here : previous;
    throw UnfinishedText(builder.At(place, place), message);
  }
  const bool points_here = expected.place == grammar::Expectation::kHere;
  const Offset place = points_here ? here : previous;
  throw ScriptMistake(builder.At(place, place), message);
}

template <typename Rule>
struct Action;

// Most rules have no action. They go straight to their own match(): the layers of the library's
// default would be most of what is compiled here.
template <typename Rule>
struct Control : tao::pegtl::normal<Rule> {
  static constexpr bool kHasAction = !std::is_base_of_v<tao::pegtl::nothing<Rule>, Action<Rule>>;

  template <typename Input>
  [[noreturn]] static void raise(const Input& in, TreeBuilder& builder) {
    static_assert(grammar::kExpectation<Rule>.message, "a rule in a must<> needs its message");
    Expected(grammar::kExpectation<Rule>, builder, static_cast<Offset>(in.current() - in.begin()));
  }

  template <tao::pegtl::apply_mode A, tao::pegtl::rewind_mode M,
            template <typename...> class ActionOf, template <typename...> class ControlOf,
            typename Input>
  static bool match(Input& in, TreeBuilder& builder) {
    if constexpr (kHasAction && A == tao::pegtl::apply_mode::action) {
      return tao::pegtl::match<Rule, A, M, ActionOf, ControlOf>(in, builder);
    } else if constexpr (requires {
                           Rule::template match<A, M, ActionOf, ControlOf>(in, builder);
                         }) {
      return Rule::template match<A, M, ActionOf, ControlOf>(in, builder);
    } else {
      return Rule::match(in);
    }
  }
};

// --- Operators -----------------------------------------------------------------------------------

struct InfixOperator {
  std::string_view text;
  std::optional<BinaryOperator> binary;
  bool assigns = false;
};

constexpr InfixOperator kInfixOperators[] = {
    {"+", BinaryOperator::kAdd},
    {"-", BinaryOperator::kSubtract},
    {"*", BinaryOperator::kMultiply},
    {"/", BinaryOperator::kDivide},
    {"%", BinaryOperator::kRemainder},
    {"^", BinaryOperator::kPower},
    {"<<", BinaryOperator::kShiftLeft},
    {">>", BinaryOperator::kShiftRight},
    {"<", BinaryOperator::kLess},
    {"<=", BinaryOperator::kLessEqual},
    {">", BinaryOperator::kGreater},
    {">=", BinaryOperator::kGreaterEqual},
    {"==", BinaryOperator::kEqual},
    {"!=", BinaryOperator::kNotEqual},
    {"&", BinaryOperator::kBitAnd},
    {"|", BinaryOperator::kBitOr},
    {"&&", BinaryOperator::kLogicalAnd},
    {"||", BinaryOperator::kLogicalOr},
    {"=", std::nullopt, true},
    {"+=", BinaryOperator::kAdd, true},
    {"-=", BinaryOperator::kSubtract, true},
    {"*=", BinaryOperator::kMultiply, true},
    {"/=", BinaryOperator::kDivide, true},
    {"%=", BinaryOperator::kRemainder, true},
    {"^=", BinaryOperator::kPower, true},
    {"<<=", BinaryOperator::kShiftLeft, true},
    {">>=", BinaryOperator::kShiftRight, true},
    {"&=", BinaryOperator::kBitAnd, true},
    {"|=", BinaryOperator::kBitOr, true},
};

void PushInfix(TreeBuilder& builder, const SourceRange& range) {
  const std::string_view text = builder.text().substr(range.offset, range.length);
  for (const InfixOperator& candidate : kInfixOperators) {
    if (candidate.text != text) continue;
    if (candidate.assigns) {
      builder.PushAssign(candidate.binary, range);
    } else {
      builder.PushInfix(*candidate.binary, range);
    }
    return;
  }
}

UnaryOperator PrefixOperator(std::string_view text) {
  if (text == "++") return UnaryOperator::kPreIncrement;
  if (text == "--") return UnaryOperator::kPreDecrement;
  switch (text[0]) {
    case '+':
      return UnaryOperator::kPlus;
    case '-':
      return UnaryOperator::kMinus;
    case '!':
      return UnaryOperator::kNot;
    case '~':
      return UnaryOperator::kComplement;
    case '*':
      return UnaryOperator::kDereference;
    default:
      return UnaryOperator::kAddressOf;
  }
}

// --- Actions -------------------------------------------------------------------------------------
// Which step of the builder belongs to which rule.

template <auto Step>
void Run(TreeBuilder& builder, const SourceRange& range) {
  if constexpr (std::is_invocable_v<decltype(Step), TreeBuilder&, const SourceRange&>) {
    std::invoke(Step, builder, range);
  } else {
    std::invoke(Step, builder);
  }
}

template <typename Input>
SourceRange Matched(const Input& in, const TreeBuilder& builder) {
  const auto begin = static_cast<Offset>(in.begin() - builder.text().data());
  return builder.At(begin, begin + static_cast<Offset>(in.size()));
}

// For a rule that takes no space behind: the step gets what the rule matched.
template <auto Step>
struct OnText {
  template <typename Input>
  static void apply(const Input& in, TreeBuilder& builder) {
    Run<Step>(builder, Matched(in, builder));
  }
};

// For a rule that ends in space and comments: the step gets what the rule matched without them.
template <auto Step>
struct OnSyntax {
  template <typename Input>
  static void apply(const Input& in, TreeBuilder& builder) {
    Run<Step>(builder, builder.From(Matched(in, builder).offset));
  }
};

template <typename Rule>
struct Action : tao::pegtl::nothing<Rule> {};

namespace g = grammar;
using B = TreeBuilder;
using R = SourceRange;

std::string_view TextOf(const B& b, const R& r) { return b.text().substr(r.offset, r.length); }

void Include(TreeBuilder& builder, const SourceRange& directive);

// clang-format off
template <> struct Action<g::blanks> : OnText<[](B& b, const R& r) { b.EndToken(r.offset); }> {};

// Names and literals.
template <> struct Action<g::name_text> : OnText<&B::PushName> {};
template <> struct Action<g::member_name_text> : OnText<&B::PushName> {};
template <> struct Action<g::number_text> : OnText<[](B& b, const R& r) { b.PushLiteral(ReadNumber(TextOf(b, r), r), r); }> {};
template <> struct Action<g::constant_text> : OnText<[](B& b, const R& r) { b.PushLiteral(ReadConstant(TextOf(b, r)), r); }> {};
template <> struct Action<g::whole_character> : OnText<[](B& b, const R& r) { b.PushLiteral(CharLiteral{ReadCharacter(TextOf(b, r), r)}, r); }> {};
template <> struct Action<g::whole_string> : OnText<&B::AddString> {};
template <> struct Action<g::strings> : OnSyntax<&B::PushStrings> {};

// Types.
template <> struct Action<g::kw_unsigned> : OnText<&B::SetUnsigned> {};
template <> struct Action<g::type_word_text> : OnText<&B::SetTypeWord> {};
template <> struct Action<g::main_type> : OnSyntax<[](B& b, const R& r) { b.EndTypeWords(r); b.OpenType(); }> {};
template <> struct Action<g::element_type> : OnSyntax<[](B& b, const R& r) { b.EndTypeWords(r); b.SetElement(r); }> {};
template <> struct Action<g::const_before> : OnText<&B::SetConstBefore> {};
template <> struct Action<g::type_specifier> : OnSyntax<&B::PushType> {};
template <> struct Action<g::const_after> : OnText<&B::SetConstAfter> {};
template <> struct Action<g::pointer_mark> : OnSyntax<&B::AddPointer> {};
template <> struct Action<g::reference_mark> : OnText<&B::SetReference> {};
template <> struct Action<g::modifiers> : OnText<&B::PushModifiedType> {};

// Expressions.
template <> struct Action<g::variable> : OnText<&B::PushVariable> {};
template <> struct Action<g::call> : OnSyntax<&B::PushCall> {};
template <> struct Action<g::open_list> : OnText<&B::OpenList> {};
template <> struct Action<g::parenthesised> : OnSyntax<&B::Parenthesise> {};
template <> struct Action<g::scoped_name> : OnSyntax<&B::PushScopedName> {};
template <> struct Action<g::construct> : OnSyntax<&B::PushConstruct> {};
template <> struct Action<g::subscript> : OnText<&B::ApplyIndex> {};
template <typename Access> struct Action<g::member<Access>> : OnText<[](B& b) { b.ApplyMember(std::is_same_v<Access, g::arrow>); }> {};
template <typename Access> struct Action<g::member_call<Access>> : OnText<[](B& b) { b.ApplyMemberCall(std::is_same_v<Access, g::arrow>); }> {};
template <> struct Action<g::postfix_symbol_text> : OnText<[](B& b, const R& r) { b.ApplyPostfix(TextOf(b, r) == "++" ? UnaryOperator::kPostIncrement : UnaryOperator::kPostDecrement, r); }> {};
template <> struct Action<g::cast> : OnSyntax<&B::PushCastPrefix> {};
template <> struct Action<g::prefix_symbol_text> : OnText<[](B& b, const R& r) { b.PushPrefix(PrefixOperator(TextOf(b, r)), r); }> {};
template <> struct Action<g::infix_symbol_text> : OnText<&PushInfix> {};
template <> struct Action<g::conditional_begin> : OnSyntax<&B::OpenConditional> {};
template <> struct Action<g::conditional> : OnText<&B::PushConditional> {};
template <> struct Action<g::operators_begin> : OnText<&B::OpenOperators> {};
template <> struct Action<g::operators_end> : OnText<&B::CloseOperators> {};
template <> struct Action<g::comma_operand> : OnText<[](B& b, const R& r) { b.ApplyComma(b.At(r.offset, r.offset + 1)); }> {};
template <> struct Action<g::no_expression> : OnText<&B::PushNothing> {};

// Braces.
template <> struct Action<g::list_begin> : OnText<[](B& b, const R& r) { b.OpenBrace(r.offset); b.OpenList(); }> {};
template <> struct Action<g::list_end> : OnText<&B::CloseBrace> {};
template <> struct Action<g::braced_initializers> : OnSyntax<&B::PushInitializerList> {};
template <> struct Action<g::block_begin> : OnText<[](B& b, const R& r) { b.OpenBrace(r.offset); b.OpenStatements(); }> {};
template <> struct Action<g::block_end> : OnText<&B::CloseBrace> {};
template <> struct Action<g::block> : OnSyntax<&B::PushBlock> {};
template <> struct Action<g::switch_begin> : OnText<[](B& b, const R& r) { b.OpenBrace(r.offset); b.OpenSwitch(); }> {};
template <> struct Action<g::switch_end> : OnText<&B::CloseBrace> {};

// Declarations.
template <> struct Action<g::variable_name> : OnText<&B::OpenVariable> {};
template <> struct Action<g::no_array_size> : OnText<[](B& b) { b.SetArray(false); }> {};
template <> struct Action<g::array_size> : OnText<[](B& b) { b.SetArray(true); }> {};
template <> struct Action<g::assigned> : OnText<&B::SetAssigned> {};
template <> struct Action<g::variable_arguments> : OnText<&B::SetArguments> {};
template <> struct Action<g::declaration> : OnSyntax<&B::PushDeclaration> {};

// Statements.
template <> struct Action<g::if_begin> : OnText<&B::OpenIf> {};
template <> struct Action<g::branch> : OnText<&B::AddBranch> {};
template <> struct Action<g::otherwise> : OnText<&B::SetOtherwise> {};
template <> struct Action<g::if_statement> : OnSyntax<&B::PushIf> {};
template <> struct Action<g::while_statement> : OnSyntax<&B::PushWhile> {};
template <> struct Action<g::do_statement> : OnSyntax<&B::PushDoWhile> {};
template <> struct Action<g::no_initializer> : OnText<&B::PushNoStatement> {};
template <> struct Action<g::expression_initializer> : OnSyntax<[](B& b, const R& r) { b.PushExpressionStatement(r, true); }> {};
template <> struct Action<g::classic_for> : OnSyntax<&B::PushFor> {};
template <> struct Action<g::range_for> : OnSyntax<&B::PushRangeFor> {};
template <> struct Action<g::section_begin> : OnText<&B::OpenSection> {};
template <> struct Action<g::label_case> : OnText<[](B& b, const R& r) { b.AddLabel(false, b.At(r.offset, r.offset + 4)); }> {};
template <> struct Action<g::label_default> : OnText<[](B& b, const R& r) { b.AddLabel(true, b.At(r.offset, r.offset + 7)); }> {};
template <> struct Action<g::section> : OnText<&B::CloseSection> {};
template <> struct Action<g::switch_statement> : OnSyntax<&B::PushSwitch> {};
template <> struct Action<g::break_statement> : OnSyntax<[](B& b, const R& r) { b.PushSimple(Break{}, r); }> {};
template <> struct Action<g::continue_statement> : OnSyntax<[](B& b, const R& r) { b.PushSimple(Continue{}, r); }> {};
template <> struct Action<g::empty_statement> : OnSyntax<[](B& b, const R& r) { b.PushSimple(Empty{}, r); }> {};
template <> struct Action<g::return_statement> : OnSyntax<&B::PushReturn> {};
template <> struct Action<g::try_statement> : OnSyntax<&B::PushTry> {};
template <> struct Action<g::unterminated> : OnText<&B::SetUnterminated> {};
template <> struct Action<g::expression_statement> : OnSyntax<&B::PushLastExpression> {};

// Functions and scripts.
template <> struct Action<g::parameter_type> : OnText<&B::OpenParameter> {};
template <> struct Action<g::parameter_name> : OnText<&B::SetParameterName> {};
template <> struct Action<g::variadic> : OnText<&B::SetVariadic> {};
template <> struct Action<g::default_value> : OnText<&B::SetDefault> {};
template <> struct Action<g::checked_parameters> : OnText<&B::CheckParameters> {};
template <> struct Action<g::function_head> : OnText<&B::OpenFunction> {};
template <> struct Action<g::prototype_end> : OnText<&B::PushNoStatement> {};
template <> struct Action<g::function> : OnSyntax<&B::AddFunction> {};
template <> struct Action<g::include> : OnSyntax<&Include> {};
template <> struct Action<g::top_statement> : OnText<&B::AddTopLevelStatement> {};

// The catalogue.
template <> struct Action<g::documentation> : OnText<[](B& b, const R& r) { b.SetDocumentation(r.offset); }> {};
template <> struct Action<g::class_name_text> : OnText<&B::OpenClass> {};
template <> struct Action<g::base_name_text> : OnText<&B::SetBase> {};
template <> struct Action<g::method_const> : OnText<&B::SetConstMethod> {};
template <> struct Action<g::property> : OnText<&B::SetProperty> {};
template <> struct Action<g::catalogue_member> : OnSyntax<&B::AddMember> {};
// clang-format on

// --- Reading -------------------------------------------------------------------------------------

template <typename Rule>
void ReadText(TreeBuilder& builder) {
  const std::string_view text = builder.text();
  tao::pegtl::memory_input<tao::pegtl::tracking_mode::lazy, tao::pegtl::eol::lf_crlf, const char*>
      in(text.data(), text.data() + text.size(), "");
  static_cast<void>(tao::pegtl::parse<Rule, Action, Control>(in, builder));
}

constexpr int kMaxIncludeDepth = 64;

void Include(TreeBuilder& builder, const SourceRange& directive) {
  SourceSet& sources = builder.sources();
  const std::string path = sources.Resolve(builder.file(), builder.TakeString());
  const SourceSet::Loaded loaded = sources.Load(path);
  if (!loaded.ok) throw ScriptMistake(directive, loaded.error);
  if (!loaded.first_time) return;
  sources.SetInclusion(loaded.id, directive);
  const TreeBuilder::Nesting level(builder.include_depth(), kMaxIncludeDepth, directive);
  builder.WithFile(loaded.id, [&builder] { ReadText<g::script>(builder); });
}

ParseResult Parse(SourceSet& sources, FileId file, TextKind kind) {
  TreeBuilder builder(sources, kind);
  ParseResult result;
  try {
    builder.WithFile(file, [&builder] { ReadText<g::script>(builder); });
    result.program = std::move(builder.program());
  } catch (const UnfinishedText& mistake) {
    result.diagnostics.push_back(mistake.diagnostic());
    result.incomplete = mistake.diagnostic().range.file == file;
    result.lacks_semicolon =
        result.incomplete &&
        mistake.diagnostic().message == grammar::kExpectation<g::declaration_end>.message;
  } catch (const ScriptMistake& mistake) {
    result.diagnostics.push_back(mistake.diagnostic());
  }
  return result;
}

}  // namespace

ParseResult ParseProgram(SourceSet& sources, FileId file) {
  return Parse(sources, file, TextKind::kScript);
}

ParseResult ParsePrompt(SourceSet& sources, FileId file) {
  return Parse(sources, file, TextKind::kPrompt);
}

std::vector<CatalogueClass> ParseCatalogue(SourceSet& sources, FileId file) {
  TreeBuilder builder(sources, TextKind::kCatalogue);
  builder.WithFile(file, [&builder] { ReadText<g::catalogue>(builder); });
  return std::move(builder.classes());
}

}  // namespace tesselc
