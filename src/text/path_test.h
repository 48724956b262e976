// What a text names in the file system.
#pragma once

#include "frame/interface/string_utf8.h"

namespace vela::text {

// A name is UTF-8; one that is not, or that has a NUL inside, names nothing. Links are followed.
bool IsFolder(const CStringUTF8& name) noexcept;
// Something other than a folder.
bool IsFile(const CStringUTF8& name) noexcept;

}  // namespace vela::text
