#pragma once

#include <string>
#include <string_view>

#include "tesselc/diagnostic.h"
#include "tesselc/syntax_tree.h"

// What literals mean. Each function takes the literal as written and where it stands, and throws a
// ScriptMistake at the faulty character.

namespace tesselc {

// An IntLiteral, FloatLiteral or ImaginaryLiteral.
Expression::Node ReadNumber(std::string_view text, const SourceRange& range);

// The bytes of one literal, its quotes included in `text`.
std::string ReadString(std::string_view text, const SourceRange& range);

// The single byte of a character literal.
char ReadCharacter(std::string_view text, const SourceRange& range);

// TRUE, FALSE, NULL, NANUM, NAN, INFINITY, PI and the lower-case truth values.
Expression::Node ReadConstant(std::string_view word);

}  // namespace tesselc
