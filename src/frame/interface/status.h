// Statuses that member handlers and host-facing operations return. 0 is success; the host turns
// every other value into a script error. Values a call-frame getter returns are passed on as they
// are.
#pragma once

namespace status {

enum Code : int {
  kNoRow = -1,  // the row or layer that the call names does not exist, or the host removed the data
                // that the object is attached to
  kOk = 0,
  kFailed = 1,              // the call could not be carried out: no frame, frame not ready, a
                            // property getter given arguments, wrong argument type, unset service
  kUnresolved = 2,          // the object or element that the indices address does not exist
  kBadArguments = 3,        // wrong number or type of arguments
  kBadIndex = 4,            // index argument outside 0 .. size - 1; invalid Picture slot
  kTooLarge = 7,            // a matrix of more than 4 GiB - 1
  kBadValue = 8,            // wrong argument value: column count, variant kind, UTF-16 source
  kNoData = 27,             // the matrix layer has no data
  kOutOfRange = 28,         // index or row out of range
  kBadKernel = 34,          // the filter kernel is not a matrix of doubles
  kWindowTooSmall = 35,     // median window below 3
  kOtherElementType = 38,   // matrix argument of another element type
  kNullText = 52,           // a text argument is null
  kNotOnRow = 259,          // not allowed on one row of a multi-dimensional array
  kNotOnOneRow = 272,       // likewise, for the members that change the row's size or layout
  kCannotResize = 278,      // the buffer could not be resized
  kArrayFailed = 282,       // the host array could not be created or locked
  kAutomationFailed = 287,  // automation arithmetic missing or failed
  kFormatFailed = 288,      // formatting raised an error
  kNegativeElement = 290,   // element index below 0; also: the file is not open
  kNotOpen = 290,
  kUnsupported = 12291,    // not supported by this kind of object
  kNotAnObject = 13688,    // the argument is not an object
  kNotContiguous = 13702,  // a result reference too narrow, or data that is not one buffer
};

// Codes passed to the error-report callback.
inline constexpr int kReportClear = 0;
inline constexpr int kReportBadInitialiser = 48;

}  // namespace status
