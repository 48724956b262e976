// What an automation value stands for in a script: its number, its text, its parts. Status 8 for a
// value that has none.
#pragma once

#include <cstdint>
#include <span>
#include <variant>

#include "frame/interface/export.h"
#include "frame/interface/string_utf8.h"
#include "platform/types.h"

using VariantNumber = std::variant<double, std::int64_t, std::uint64_t>;

// The number, as the kind of number that the value holds (a truth value is 0 or -1, a date counts
// days). Empty, null and error values are the missing value, and so is a text that is no number; an
// array or object has none.
VELAHOST_API int NumberOfVariant(const VARIANT& value, VariantNumber& number);
// The same as a double, missing where there is none.
VELAHOST_API double DoubleOfVariant(const VARIANT& value);
// The elements of a one-dimensional array that are numbers, at most parts.size() of them, as many
// as it has; a value that is no array is one number. The other parts stay as they are.
VELAHOST_API int PartsOfVariant(const VARIANT& value, std::span<double> parts);

// The text: numbers by the number-to-text rule, dates and currency as automation writes them,
// arrays in braces, row by row, with their texts in quotes. Every value has one. A text that cannot
// be allocated is status 278.
VELAHOST_API int TextOfVariant(const VARIANT& value, CStringUTF8& text);

// Make a value of a text or of parts (an array of doubles); value owns nothing before. Status 278
// without memory.
VELAHOST_API int VariantOfText(const char* text, VARIANT& value);
VELAHOST_API int VariantOfParts(std::span<const double> parts, VARIANT& value);
