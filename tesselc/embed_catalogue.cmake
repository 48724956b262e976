# cmake -DINPUT=catalogue.tcd -DOUTPUT=catalogue_text.cpp -P embed_catalogue.cmake
#
# Turns the catalogue into a source file. Works without running anything that was built, so that a
# cross build needs no helper program. One literal per line keeps the file readable and every
# literal short.
file(READ "${INPUT}" text)
string(REPLACE "\\" "\\\\" text "${text}")
string(REPLACE "\"" "\\\"" text "${text}")
string(REPLACE "\n" "\\n\"\n    \"" text "${text}")
file(WRITE "${OUTPUT}" "#include \"tesselc/catalogue_text.h\"

namespace tesselc {

const std::string_view kCatalogueText =
    \"${text}\";

}  // namespace tesselc
")
