// Dates: days since 30 December 1899, with the time of day as the fraction away from 0.
#pragma once

#if !defined(_WIN32)

namespace vela::platform {

// From 1 January 100 to the end of 31 December 9999.
constexpr bool IsDate(double days) { return days > -657435.0 && days < 2958466.0; }

}  // namespace vela::platform

#endif
