#pragma once

#include <vector>

#include "tesselc/catalogue.h"

namespace tesselc {

// Reads a catalogue's text. Throws a ScriptMistake.
std::vector<CatalogueClass> ParseCatalogue(SourceSet& sources, FileId file);

}  // namespace tesselc
