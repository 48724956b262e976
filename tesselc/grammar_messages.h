#pragma once

#include "tesselc/grammar.h"

// What to say where the grammar has no choice left and the text does not go on as it must. There is
// an entry for every rule that stands in a must<>.

namespace tesselc::grammar {

struct Expectation {
  const char* message;
  // Point at what stands there, or behind the last word before it: a missing ';' is better shown
  // where it belongs than at the next word, lines below.
  // Behind an expression, a word may also mean that a type is unknown. kUnfinished: more text could
  // mend it.
  enum Place { kHere, kBehindPrevious, kAfterExpression, kUnfinished } place = kHere;
  bool closes_brace = false;  // the '{' that is still open may help
};

template <typename Rule>
inline constexpr Expectation kExpectation = {nullptr};

template <>
inline constexpr Expectation kExpectation<whole<block_comment>> = {"unterminated comment",
                                                                   Expectation::kUnfinished};
template <>
inline constexpr Expectation kExpectation<whole_string> = {"unterminated string literal"};
template <>
inline constexpr Expectation kExpectation<whole_character> = {"unterminated character literal"};

template <>
inline constexpr Expectation kExpectation<name> = {"expected a name"};
template <>
inline constexpr Expectation kExpectation<variable_name> = {"expected a name"};
template <>
inline constexpr Expectation kExpectation<member_name> = {"expected a member name"};
template <>
inline constexpr Expectation kExpectation<element_type> = {"expected an element type"};
template <>
inline constexpr Expectation kExpectation<close_angle> = {"expected '>' after the element type"};

template <>
inline constexpr Expectation kExpectation<primary> = {"expected an expression"};
template <>
inline constexpr Expectation kExpectation<expression> = {"expected an expression"};
template <>
inline constexpr Expectation kExpectation<assignment> = {"expected an expression"};
template <>
inline constexpr Expectation kExpectation<argument> = {"expected an argument"};
template <>
inline constexpr Expectation kExpectation<initializer> = {"expected an initialiser"};
template <>
inline constexpr Expectation kExpectation<construct_or_scope> = {"expected '(' after the type"};
template <>
inline constexpr Expectation kExpectation<conditional_colon> = {"expected ':' of the '?'"};
template <>
inline constexpr Expectation kExpectation<opening_paren> = {"expected '('",
                                                            Expectation::kBehindPrevious};
template <>
inline constexpr Expectation kExpectation<close_paren> = {"expected ')'",
                                                          Expectation::kBehindPrevious};
template <>
inline constexpr Expectation kExpectation<close_bracket> = {"expected ']'",
                                                            Expectation::kBehindPrevious};
template <>
inline constexpr Expectation kExpectation<single_size> = {
    "an array has one dimension; use a matrix for two"};
template <>
inline constexpr Expectation kExpectation<list_end> = {"expected ',' or '}' in the list",
                                                       Expectation::kBehindPrevious, true};

template <>
inline constexpr Expectation kExpectation<declaration_end> = {"expected ';' after the declaration",
                                                              Expectation::kBehindPrevious};
template <>
inline constexpr Expectation kExpectation<expression_end> = {"expected ';' after the expression",
                                                             Expectation::kAfterExpression};
template <>
inline constexpr Expectation kExpectation<for_separator> = {"expected ';' in the head of the 'for'",
                                                            Expectation::kBehindPrevious};
template <>
inline constexpr Expectation kExpectation<jump_end> = {"expected ';' after the statement",
                                                       Expectation::kBehindPrevious};
template <>
inline constexpr Expectation kExpectation<do_end> = {"expected ';' after the 'do' statement",
                                                     Expectation::kBehindPrevious};
template <>
inline constexpr Expectation kExpectation<while_after_do> = {
    "expected 'while' after the body of the 'do'"};
template <>
inline constexpr Expectation kExpectation<label_colon> = {"expected ':' after the label",
                                                          Expectation::kBehindPrevious};
template <>
inline constexpr Expectation kExpectation<switch_begin> = {"expected '{' after the 'switch'"};
template <>
inline constexpr Expectation kExpectation<switch_end> = {"expected 'case', 'default' or '}'",
                                                         Expectation::kHere, true};
template <>
inline constexpr Expectation kExpectation<try_body> = {"expected '{' after 'try'"};
template <>
inline constexpr Expectation kExpectation<handler_word> = {
    "expected 'catch' after the 'try' block"};
template <>
inline constexpr Expectation kExpectation<whole<handler_status>> = {
    "expected '(int name)' after 'catch'"};
template <>
inline constexpr Expectation kExpectation<handler_body> = {"expected '{' after the 'catch'"};
template <>
inline constexpr Expectation kExpectation<block_end> = {"expected '}'", Expectation::kHere, true};
template <>
inline constexpr Expectation kExpectation<no_stray_else> = {"'else' without an 'if' before it"};
template <>
inline constexpr Expectation kExpectation<no_stray_label> = {"a label outside a 'switch'"};
template <>
inline constexpr Expectation kExpectation<no_stray_catch> = {"'catch' without a 'try' before it"};
template <>
inline constexpr Expectation kExpectation<no_stray_brace> = {"'}' without a '{' before it"};
template <>
inline constexpr Expectation kExpectation<statement_begin> = {"expected a statement"};
template <>
inline constexpr Expectation kExpectation<no_function> = {
    "a function stands at the top level, not inside another statement"};

template <>
inline constexpr Expectation kExpectation<parameter> = {"expected a parameter"};
template <>
inline constexpr Expectation kExpectation<function_body> = {
    "expected '{' or ';' after the parameters", Expectation::kBehindPrevious};
template <>
inline constexpr Expectation kExpectation<kw_include> = {"expected 'include' after '#'"};
template <>
inline constexpr Expectation kExpectation<file_name> = {"expected a file name in quotes"};

template <>
inline constexpr Expectation kExpectation<kw_class> = {"expected 'class'"};
template <>
inline constexpr Expectation kExpectation<class_name> = {"expected a class name"};
template <>
inline constexpr Expectation kExpectation<base_name> = {"expected the name of the base class"};
template <>
inline constexpr Expectation kExpectation<class_begin> = {"expected '{'"};
template <>
inline constexpr Expectation kExpectation<class_end> = {"expected '}'"};
template <>
inline constexpr Expectation kExpectation<function_head> = {"expected a member's declaration"};
template <>
inline constexpr Expectation kExpectation<method_or_property> = {"expected '(' or ';'"};

}  // namespace tesselc::grammar
