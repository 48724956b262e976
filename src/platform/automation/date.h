// Dates: days since 30 December 1899, with the time of day as the fraction away from 0.
#pragma once

#if !defined(_WIN32)

#include <string>
#include <string_view>

#include "platform/automation.h"

namespace vela::platform {

// From 1 January 100 to the end of 31 December 9999.
constexpr bool IsDate(double days) { return days > -657435.0 && days < 2958466.0; }

// month/day/year hour:minute:second of the invariant locale, to the nearest second; only the time
// on day 0, only the date where the value is whole. E_INVALIDARG outside the dates.
HRESULT FormatDate(double days, std::string& text);

// A date, a time or both, in either order; DISP_E_TYPEMISMATCH for what is none.
//
// The date is two or three numbers, or one or two and an English month (whole or its first three
// letters), with "/", "-", "," or spaces between them: month first where that makes a date, else
// day or year first; of two numbers one may be the year. Years below 100 lie in 1950 .. 2049; a
// missing year is the present one. Days of the week may stand before it. The time is hours,
// minutes and seconds with ":" or "." between them, or hours alone with AM or PM (A, P) behind.
HRESULT ParseDate(std::u16string_view text, double& days);

}  // namespace vela::platform

#endif
