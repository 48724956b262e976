#pragma once

#include <cstddef>
#include <tao/pegtl.hpp>

#include "tesselc/tree_builder.h"
#include "tesselc/words.h"

// The grammar of scripts and of the member catalogue, as PEGTL rules. Every rule for a word or a
// symbol takes the space and comments behind it along.
//
// Reading never backs up over anything worth mentioning: type names are words of their own, so a
// few words of look-ahead tell a cast from parentheses and a declaration from an expression, and
// from there on a rule either matches or the script is wrong (must<>). Actions therefore run once
// for each piece of the text, and the time is proportional to its length.
//
// Instantiated in parser.cpp alone, to keep compile times down.

namespace tesselc::grammar {

namespace pegtl = tao::pegtl;

using pegtl::any;
using pegtl::at;
using pegtl::eof;
using pegtl::if_must;
using pegtl::must;
using pegtl::not_at;
using pegtl::not_one;
using pegtl::one;
using pegtl::opt;
using pegtl::plus;
using pegtl::seq;
using pegtl::sor;
using pegtl::star;
using pegtl::success;
using pegtl::until;

// --- Machinery -----------------------------------------------------------------------------------

// Matches `Rule`; on failure the input stands where `Rule` began, so that a message from a must<>
// around it points there.
template <typename Rule>
struct whole {
  using rule_t = whole;
  using subs_t = pegtl::type_list<Rule>;

  template <pegtl::apply_mode A, pegtl::rewind_mode, template <typename...> class Action,
            template <typename...> class Control, typename Input>
  static bool match(Input& in, TreeBuilder& builder) {
    auto mark = in.template mark<pegtl::rewind_mode::required>();
    return mark(
        Control<Rule>::template match<A, pegtl::rewind_mode::active, Action, Control>(in, builder));
  }
};

// Matches `Rule` one level of nesting further down, up to a limit.
template <int& (TreeBuilder::*Depth)(), int Limit, typename Rule>
struct nested {
  using rule_t = nested;
  using subs_t = pegtl::type_list<Rule>;

  template <pegtl::apply_mode A, pegtl::rewind_mode M, template <typename...> class Action,
            template <typename...> class Control, typename Input>
  static bool match(Input& in, TreeBuilder& builder) {
    const auto here = static_cast<TreeBuilder::Offset>(in.current() - in.begin());
    const TreeBuilder::Nesting level((builder.*Depth)(), Limit, builder.At(here, here));
    return Control<Rule>::template match<A, M, Action, Control>(in, builder);
  }
};

template <typename Rule>
using nested_expression = nested<&TreeBuilder::expression_depth, kMaxExpressionHeight, Rule>;
template <typename Rule>
using nested_statement = nested<&TreeBuilder::statement_depth, kMaxStatementDepth, Rule>;

// Matches in texts of the kind only.
template <TextKind Kind>
struct in_text {
  using rule_t = in_text;
  using subs_t = pegtl::empty_list;

  template <pegtl::apply_mode, pegtl::rewind_mode, template <typename...> class,
            template <typename...> class, typename Input>
  static bool match(Input&, TreeBuilder& builder) {
    return builder.kind() == Kind;
  }
};

// Matches where a reserved word of one of the kinds stands, without taking it.
template <WordKind... Kinds>
struct at_word {
  using rule_t = at_word;
  using subs_t = pegtl::empty_list;

  template <pegtl::apply_mode, pegtl::rewind_mode, template <typename...> class,
            template <typename...> class, typename Input>
  static bool match(Input& in, TreeBuilder& builder) {
    const char* end = in.current();
    while (end != in.end() && IsWordCharacter(*end)) ++end;
    const Word* word = FindWord({in.current(), static_cast<std::size_t>(end - in.current())});
    if (!word || (word->catalogue_only && builder.kind() != TextKind::kCatalogue)) return false;
    return ((word->kind == Kinds) || ...);
  }
};

// --- Space and comments --------------------------------------------------------------------------

struct line_comment : seq<pegtl::two<'/'>, star<not_one<'\n'>>> {};
struct block_comment : seq<pegtl::string<'/', '*'>, until<pegtl::string<'*', '/'>>> {};
struct block_comment_begin : at<pegtl::string<'/', '*'>> {};
struct comment : sor<line_comment, if_must<block_comment_begin, whole<block_comment>>> {};
struct blanks : star<sor<one<' ', '\t', '\n', '\r', '\v', '\f'>, comment>> {};

// --- Words and symbols ---------------------------------------------------------------------------

template <typename Text>
struct token : seq<Text, blanks> {};

struct kw_break : token<TAO_PEGTL_KEYWORD("break")> {};
struct kw_case : token<TAO_PEGTL_KEYWORD("case")> {};
struct kw_catch : token<TAO_PEGTL_KEYWORD("catch")> {};
struct kw_class : token<TAO_PEGTL_KEYWORD("class")> {};
struct kw_const : token<TAO_PEGTL_KEYWORD("const")> {};
struct kw_continue : token<TAO_PEGTL_KEYWORD("continue")> {};
struct kw_default : token<TAO_PEGTL_KEYWORD("default")> {};
struct kw_do : token<TAO_PEGTL_KEYWORD("do")> {};
struct kw_else : token<TAO_PEGTL_KEYWORD("else")> {};
struct kw_for : token<TAO_PEGTL_KEYWORD("for")> {};
struct kw_if : token<TAO_PEGTL_KEYWORD("if")> {};
struct kw_include : token<TAO_PEGTL_KEYWORD("include")> {};
struct kw_int : token<TAO_PEGTL_KEYWORD("int")> {};
struct kw_return : token<TAO_PEGTL_KEYWORD("return")> {};
struct kw_switch : token<TAO_PEGTL_KEYWORD("switch")> {};
struct kw_try : token<TAO_PEGTL_KEYWORD("try")> {};
struct kw_unsigned : token<TAO_PEGTL_KEYWORD("unsigned")> {};
struct kw_void : token<TAO_PEGTL_KEYWORD("void")> {};
struct kw_while : token<TAO_PEGTL_KEYWORD("while")> {};

struct open_paren : token<one<'('>> {};
struct close_paren : token<one<')'>> {};
struct open_bracket : token<one<'['>> {};
struct close_bracket : token<one<']'>> {};
struct open_brace : token<one<'{'>> {};
struct close_brace : token<one<'}'>> {};
struct close_angle : token<one<'>'>> {};
struct semicolon : token<one<';'>> {};
struct colon : token<seq<one<':'>, not_at<one<':'>>>> {};
struct scope : token<pegtl::two<':'>> {};
struct comma : token<one<','>> {};
struct dot : token<seq<one<'.'>, not_at<one<'.'>>>> {};
struct arrow : token<pegtl::string<'-', '>'>> {};
struct ellipsis : token<pegtl::three<'.'>> {};
struct equals : token<seq<one<'='>, not_at<one<'='>>>> {};
struct asterisk : token<one<'*'>> {};
struct ampersand : token<seq<one<'&'>, not_at<one<'&'>>>> {};
struct question_mark : token<one<'?'>> {};

struct any_word : pegtl::identifier {};
struct name_text : seq<not_at<at_word<WordKind::kType, WordKind::kConstant, WordKind::kKeyword>>,
                       pegtl::identifier> {};
struct name : token<name_text> {};
// Behind a '.' any word will do: a member may be called what the language keeps for itself.
struct member_name_text : any_word {};
struct member_name : token<member_name_text> {};

// --- Literals ------------------------------------------------------------------------------------

struct hexadecimal : seq<one<'0'>, one<'x', 'X'>, star<pegtl::identifier_other>> {};
struct decimal
    : seq<sor<pegtl::digit, seq<one<'.'>, pegtl::digit>>,
          star<sor<seq<one<'e', 'E'>, one<'+', '-'>>, pegtl::identifier_other, one<'.'>>>> {};
struct number_text : sor<hexadecimal, decimal> {};
struct number : token<number_text> {};

struct escaped : seq<one<'\\'>, opt<one<'\r'>>, any> {};
template <char Quote>
struct quoted : seq<one<Quote>, until<one<Quote>, sor<escaped, not_one<'\n'>>>> {};
struct string_text : quoted<'"'> {};
struct character_text : quoted<'\''> {};
struct whole_string : whole<string_text> {};
struct whole_character : whole<character_text> {};
struct string_piece : token<if_must<at<one<'"'>>, whole_string>> {};
struct strings : plus<string_piece> {};
struct character : token<if_must<at<one<'\''>>, whole_character>> {};

struct constant_text : seq<at_word<WordKind::kConstant>, any_word> {};
struct constant : token<constant_text> {};

struct literal : sor<number, strings, character, constant> {};

// --- Types ---------------------------------------------------------------------------------------

struct type_word_text : seq<at_word<WordKind::kType>, any_word> {};
struct type_word : token<type_word_text> {};
struct type_words : sor<seq<kw_unsigned, opt<type_word>>, type_word> {};
struct main_type : type_words {};
struct element_type : type_words {};
struct open_angle : token<one<'<'>> {};
struct type_specifier : seq<main_type, opt<if_must<open_angle, element_type, close_angle>>> {};
struct const_before : kw_const {};
struct const_after : kw_const {};
struct type : seq<star<const_before>, type_specifier, star<const_after>> {};
struct pointer_mark : asterisk {};
struct reference_mark : ampersand {};
struct modifiers : seq<star<pointer_mark>, opt<reference_mark>> {};
struct modified_type : seq<type, modifiers> {};

// --- Expressions ---------------------------------------------------------------------------------

struct expression;
struct assignment;
struct argument;
struct primary;

struct open_list : open_paren {};
struct more_arguments : star<if_must<comma, argument>> {};
struct arguments
    : seq<open_list, sor<close_paren, seq<must<argument>, more_arguments, must<close_paren>>>> {};

struct parenthesised : if_must<open_paren, expression, close_paren> {};
struct scoped_name : if_must<scope, member_name> {};
struct construct : arguments {};
struct construct_or_scope : sor<scoped_name, construct> {};
struct typed_primary : if_must<type_specifier, construct_or_scope> {};
struct call : arguments {};
struct variable : success {};
struct named_primary : seq<name, sor<call, variable>> {};
struct primary : sor<named_primary, literal, parenthesised, typed_primary> {};

struct subscript : if_must<open_bracket, expression, close_bracket> {};
template <typename Access>
struct member_call : arguments {};
template <typename Access>
struct member : success {};
template <typename Access>
struct member_access : seq<Access, must<member_name>, sor<member_call<Access>, member<Access>>> {};
struct postfix_symbol_text : sor<pegtl::two<'+'>, pegtl::two<'-'>> {};
struct postfix_symbol : token<postfix_symbol_text> {};
struct postfix : sor<subscript, member_access<dot>, member_access<arrow>, postfix_symbol> {};

struct cast_begin : at<open_paren, modified_type, close_paren> {};
struct cast : seq<cast_begin, open_paren, modified_type, close_paren> {};
struct prefix_symbol_text
    : sor<pegtl::two<'+'>, pegtl::two<'-'>, one<'+', '-', '!', '~', '*', '&'>> {};
struct prefix_symbol : token<prefix_symbol_text> {};
struct operand : seq<star<sor<prefix_symbol, cast>>, must<primary>, star<postfix>> {};

// The longest symbol first. What each means and how tight it binds is in the parser's table.
struct infix_symbol_text
    : sor<TAO_PEGTL_STRING("<<="), TAO_PEGTL_STRING(">>="),
          seq<one<'+', '-', '*', '/', '%', '^', '&', '|', '<', '>', '=', '!'>, one<'='>>,
          pegtl::two<'<'>, pegtl::two<'>'>, pegtl::two<'&'>, pegtl::two<'|'>,
          one<'+', '-', '*', '/', '%', '^', '&', '|', '<', '>', '='>> {};
struct infix_symbol : token<infix_symbol_text> {};
struct conditional_begin : question_mark {};
struct conditional_colon : colon {};
struct conditional : if_must<conditional_begin, expression, conditional_colon> {};
struct infix : sor<infix_symbol, conditional> {};

// Everything but the comma operator.
struct operators_begin : success {};
struct operators_end : success {};
struct operand_chain : seq<operators_begin, operand, star<infix, operand>, operators_end> {};
struct assignment : nested_expression<operand_chain> {};
struct argument : assignment {};

struct comma_operand : if_must<comma, assignment> {};
struct expression : seq<assignment, star<comma_operand>> {};

struct no_expression : success {};
template <typename End>
struct expression_before : sor<seq<at<End>, no_expression>, expression> {};

// --- Declarations --------------------------------------------------------------------------------

struct initializer_list;
struct initializer : sor<initializer_list, assignment> {};
struct initializers : seq<initializer, star<comma, not_at<close_brace>, initializer>, opt<comma>> {
};
struct list_begin : open_brace {};
struct list_end : close_brace {};
struct braced_initializers : seq<list_begin, sor<list_end, seq<initializers, must<list_end>>>> {};
struct initializer_list : nested_expression<braced_initializers> {};

struct no_array_size : at<close_bracket> {};
struct array_size : expression {};
struct single_size : not_at<open_bracket> {};
struct array : seq<open_bracket, sor<no_array_size, array_size>, must<close_bracket, single_size>> {
};
struct assigned : sor<if_must<equals, initializer>, initializer_list> {};
struct variable_arguments : seq<open_list, must<argument>, more_arguments, must<close_paren>> {};
struct variable_name : seq<modifiers, name> {};
struct declarator : seq<must<variable_name>, opt<array>, opt<sor<assigned, variable_arguments>>> {};
struct declaration_begin : at<type, not_at<sor<open_paren, scope>>> {};
struct declaration_end : semicolon {};
struct declaration
    : seq<declaration_begin, type, declarator, star<comma, declarator>, must<declaration_end>> {};

// --- Statements ----------------------------------------------------------------------------------

struct statement;

struct block_begin : open_brace {};
struct block_end : close_brace {};
struct block : seq<block_begin, star<not_at<sor<close_brace, eof>>, statement>, must<block_end>> {};

struct opening_paren : open_paren {};  // behind a keyword
struct condition : seq<must<opening_paren>, expression, must<close_paren>> {};

struct if_begin : kw_if {};
struct branch : seq<condition, statement> {};
struct else_if : seq<kw_else, kw_if> {};
struct otherwise : seq<kw_else, statement> {};
struct if_statement : seq<if_begin, branch, star<else_if, branch>, opt<otherwise>> {};

struct while_statement : seq<kw_while, condition, statement> {};

struct while_after_do : kw_while {};
struct do_end : semicolon {};
struct do_statement : seq<kw_do, statement, must<while_after_do>, condition, must<do_end>> {};

struct for_separator : semicolon {};
struct no_initializer : semicolon {};
struct expression_initializer : seq<expression, must<for_separator>> {};
struct classic_for
    : seq<sor<no_initializer, declaration, expression_initializer>, expression_before<semicolon>,
          must<for_separator>, expression_before<close_paren>, must<close_paren>, statement> {};
struct range_begin : at<modified_type, name, colon> {};
struct range_for
    : seq<range_begin, modified_type, name, colon, expression, must<close_paren>, statement> {};
struct for_statement : seq<kw_for, must<opening_paren>, sor<range_for, classic_for>> {};

struct label_colon : colon {};
struct label_case : seq<kw_case, assignment, must<label_colon>> {};
struct label_default : seq<kw_default, must<label_colon>> {};
struct label : sor<label_case, label_default> {};
struct section_begin : at<sor<kw_case, kw_default>> {};
struct section : seq<section_begin, plus<label>,
                     star<not_at<sor<kw_case, kw_default, close_brace, eof>>, statement>> {};
struct switch_subject : condition {};
struct switch_begin : open_brace {};
struct switch_end : close_brace {};
struct switch_statement
    : seq<kw_switch, switch_subject, must<switch_begin>, star<section>, must<switch_end>> {};

struct jump_end : semicolon {};
struct break_statement : if_must<kw_break, jump_end> {};
struct continue_statement : if_must<kw_continue, jump_end> {};
struct return_statement : seq<kw_return, expression_before<semicolon>, must<jump_end>> {};

struct try_body : seq<block> {};
struct handler_word : kw_catch {};
struct handler_status : seq<open_paren, kw_int, name, close_paren> {};
struct handler_body : seq<block> {};
struct try_statement
    : if_must<kw_try, try_body, handler_word, whole<handler_status>, handler_body> {};

struct empty_statement : semicolon {};

// A function's head may stand where a declaration may; a look tells one from the other.
struct function_begin : at<modified_type, name, open_paren,
                           sor<close_paren, seq<type, not_at<sor<open_paren, scope>>>>> {};
struct no_function : not_at<function_begin> {};
struct declaration_statement : seq<at<declaration_begin>, must<no_function>, declaration> {};

struct no_stray_else : not_at<kw_else> {};
struct no_stray_label : not_at<sor<kw_case, kw_default>> {};
struct no_stray_catch : not_at<kw_catch> {};
struct statement_begin : not_at<sor<one<')', ']', '}', ',', ':', '?', '#'>, eof>> {};
struct terminated : semicolon {};
struct unterminated : seq<in_text<TextKind::kPrompt>, eof> {};
struct expression_end : sor<terminated, unterminated> {};
struct expression_statement
    : seq<must<no_stray_else, no_stray_label, no_stray_catch, statement_begin>, expression,
          must<expression_end>> {};

struct any_statement
    : sor<block, if_statement, while_statement, do_statement, for_statement, switch_statement,
          break_statement, continue_statement, return_statement, try_statement, empty_statement,
          declaration_statement, expression_statement> {};
struct statement : nested_statement<any_statement> {};

// --- Functions -----------------------------------------------------------------------------------

struct parameter_type : modified_type {};
struct variadic : seq<in_text<TextKind::kCatalogue>, ellipsis> {};
struct parameter_name : name {};
struct default_value : seq<equals, assignment> {};
struct parameter : seq<parameter_type, opt<variadic>, opt<parameter_name>, opt<default_value>> {};
struct parameter_list : seq<must<parameter>, star<if_must<comma, parameter>>> {};
struct parameters
    : seq<open_paren,
          sor<close_paren, seq<kw_void, close_paren>, seq<parameter_list, must<close_paren>>>> {};
struct checked_parameters : parameters {};

struct function_head : seq<modified_type, name> {};
struct prototype_end : semicolon {};
struct function_body : sor<block, prototype_end> {};
struct function : seq<function_begin, function_head, checked_parameters, must<function_body>> {};

// --- Scripts -------------------------------------------------------------------------------------

struct hash : token<one<'#'>> {};
struct file_name : token<if_must<at<one<'"'>>, whole_string>> {};
struct include : if_must<hash, kw_include, file_name> {};
struct no_stray_brace : not_at<close_brace> {};
struct top_statement : statement {};
struct item : seq<must<no_stray_brace>, sor<include, function, top_statement>> {};

struct interpreter_line : seq<pegtl::string<'#', '!'>, star<not_one<'\n'>>> {};
struct text_begin : seq<opt<pegtl::utf8::bom>, opt<interpreter_line>, blanks> {};
struct script : seq<text_begin, star<not_at<eof>, item>> {};

// --- The member catalogue ------------------------------------------------------------------------

struct documentation : success {};
struct method_const : kw_const {};
struct method : seq<checked_parameters, opt<method_const>, must<declaration_end>> {};
struct property : semicolon {};
struct method_or_property : sor<method, property> {};
struct catalogue_member : seq<documentation, must<function_head>, must<method_or_property>> {};
struct class_name_text : any_word {};
struct class_name : token<class_name_text> {};
struct base_name_text : any_word {};
struct base_name : token<base_name_text> {};
struct class_begin : open_brace {};
struct class_end : close_brace {};
struct catalogue_class
    : seq<documentation, must<kw_class, class_name>, opt<if_must<colon, base_name>>,
          must<class_begin>, star<not_at<sor<close_brace, eof>>, catalogue_member>,
          must<class_end>> {};
struct catalogue : seq<text_begin, star<not_at<eof>, catalogue_class>> {};

}  // namespace tesselc::grammar
