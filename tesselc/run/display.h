#pragma once

#include <string>

#include "tesselc/run/carrier.h"
#include "tesselc/source.h"

namespace tesselc {

// Append the form in which print writes a value.
void AppendDisplay(std::string& text, double value);
void AppendDisplay(std::string& text, float value);
void AppendDisplay(std::string& text, std::int64_t value);
void AppendDisplay(std::string& text, std::uint64_t value);
void AppendDisplay(std::string& text, const OneTCcomplex& value);
void AppendDisplay(std::string& text, const PointInt& value);
void AppendDisplay(std::string& text, const PointDouble& value);
void AppendDisplay(std::string& text, const Point3D& value);
// A vector as "{1, 2}", a matrix as "{{1, 2}, {3, 4}}", a StringArray as "{"a", "b"}", an array of
// objects likewise, any other object as its text.
void AppendDisplay(std::string& text, const ObjectValue& value, const SourceRange& where);

}  // namespace tesselc
