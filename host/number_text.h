// Numbers to text and back, by one rule on every platform and in every locale.
#pragma once

#include <string_view>

namespace vela::host {

// Room for any result of the functions below.
inline constexpr int kNumberTextSize = 32;
inline constexpr int kFixedTextSize = 320;

// The general form with the given number of significant digits; infinities and NaN are "inf",
// "-inf" and "nan". Writes no terminator; returns the end of the text.
char* WriteGeneral(double value, int digits, char* buffer);
// Six digits behind the point, all digits in front of it; needs kFixedTextSize bytes.
char* WriteFixed(double value, char* buffer);

// The double general form, or "NANUM" for the missing value.
char* WriteReal(double value, char* buffer);

// The whole text as a number, the missing value when it is none. See VELAObj::ParleyStr2double.
double ReadNumber(std::string_view text);

}  // namespace vela::host
