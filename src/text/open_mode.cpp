#include "text/open_mode.h"

namespace vela::text {
namespace {

using platform::FileAccess;
using platform::FileCreation;

#if defined(_WIN32)
constexpr bool kTextHasCarriageReturns = true;
#else
constexpr bool kTextHasCarriageReturns = false;
#endif

FileAccess AccessOf(unsigned flags) {
  return static_cast<FileAccess>(flags & open_flag::kAccessMask);
}

FileCreation CreationOf(unsigned flags) {
  if ((flags & open_flag::kCreate) == 0) return FileCreation::kOpenExisting;
  return (flags & open_flag::kNoTruncate) != 0 ? FileCreation::kOpenAlways
                                               : FileCreation::kCreateAlways;
}

}  // namespace

platform::FileOptions OptionsOf(unsigned flags) {
  const unsigned sharing = flags & open_flag::kSharingMask;
  const bool denies_nothing = sharing == open_flag::kShareDenyNone;
  return {.access = AccessOf(flags),
          .shares_reading = denies_nothing || sharing == open_flag::kShareDenyWrite,
          .shares_writing = denies_nothing || sharing == open_flag::kShareDenyRead,
          .creation = CreationOf(flags),
          .is_inheritable = (flags & open_flag::kNoInherit) == 0};
}

platform::FileStream::Mode StreamModeOf(unsigned flags) {
  const FileCreation creation = CreationOf(flags);
  return {
      .appends = creation == FileCreation::kOpenAlways ||
                 (creation == FileCreation::kOpenExisting && AccessOf(flags) == FileAccess::kWrite),
      .translates = kTextHasCarriageReturns && (flags & open_flag::kBinary) == 0};
}

bool IsText(unsigned flags) { return (flags & open_flag::kUnicodeText) != 0; }

bool AddsText(unsigned flags) {
  return IsText(flags) && !CanRead(AccessOf(flags)) &&
         CreationOf(flags) != FileCreation::kCreateAlways;
}

bool IsUnicodeStream(unsigned flags) {
  const bool is_plain_output =
      (flags & open_flag::kBinary) == 0 && AccessOf(flags) == FileAccess::kWrite;
  return IsText(flags) && !is_plain_output;
}

}  // namespace vela::text
