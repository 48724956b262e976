#include "tesselc/run/status_text.h"

#include "frame/interface/status.h"

namespace tesselc {
namespace {

struct Meaning {
  int status;
  const char* text;
};
constexpr Meaning kMeanings[] = {
    {status::kNoRow, "there is no such row or layer, or the data it is attached to was removed"},
    {status::kOk, "success"},
    {status::kFailed, "the call could not be carried out"},
    {status::kUnresolved, "there is no such object or element"},
    {status::kBadArguments, "wrong number or type of arguments"},
    {status::kBadIndex, "index out of range"},
    {status::kTooLarge, "too large"},
    {status::kBadValue, "wrong value of an argument"},
    {status::kNoData, "the matrix has no data"},
    {status::kOutOfRange, "index or row out of range"},
    {status::kBadKernel, "the filter kernel must be a matrix of double"},
    {status::kWindowTooSmall, "the median window must be at least 3"},
    {status::kOtherElementType, "the matrix has another element type"},
    {status::kNullText, "a text argument is NULL"},
    {status::kNotOnRow, "not allowed on one row of a multi-dimensional array"},
    {status::kNotOnOneRow, "not allowed on one row of a multi-dimensional array"},
    {status::kCannotResize, "cannot be resized"},
    {status::kArrayFailed, "the array could not be created or locked"},
    {status::kAutomationFailed, "automation arithmetic failed"},
    {status::kFormatFailed, "the format does not fit its arguments"},
    {status::kNotOpen, "negative index, or the file is not open"},
    {status::kUnsupported, "not supported by this kind of object"},
    {status::kNotAnObject, "the argument is not an object"},
    {status::kNotContiguous, "the result variable is too narrow, or the data is not contiguous"},
};

}  // namespace

const char* StatusText(int status) {
  for (const Meaning& row : kMeanings) {
    if (row.status == status) return row.text;
  }
  return "unknown status";
}

}  // namespace tesselc
