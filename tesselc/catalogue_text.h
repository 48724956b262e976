#pragma once

#include <string_view>

namespace tesselc {

// The text of catalogue.tcd, built into the program; its definition is generated at build time.
extern const std::string_view kCatalogueText;

}  // namespace tesselc
