// The order of texts that the system sorts words in.
#pragma once

#if !defined(_WIN32)

#include <string_view>

#include "platform/automation.h"

namespace vela::platform {

// Negative, 0 or positive as left stands before, beside or behind right: by letters, then accents,
// then case (lower first), in the order of the Unicode root locale with the system's order of
// punctuation. Hyphens, apostrophes and control characters only decide between texts that are equal
// without them, unless flags have SORT_STRINGSORT. NORM_IGNORE* flags take out the differences they
// name.
int CompareTexts(std::u16string_view left, std::u16string_view right, ULONG flags);

}  // namespace vela::platform

#endif
