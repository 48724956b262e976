#include "tesselc/run/display.h"

#include "frame/interface/script_object.h"
#include "tesselc/run/objects.h"
#include "tesselc/run/script_error.h"

namespace tesselc {

void AppendDisplay(std::string& text, double value) {
  char buffer[VELAObj::kRealTextSize];
  text.append(buffer, static_cast<std::size_t>(VELAObj::RealToString(value, buffer, nullptr)));
}

void AppendDisplay(std::string& text, float value) {
  char buffer[VELAObj::kRealTextSize];
  text.append(buffer, static_cast<std::size_t>(VELAObj::FloatToString(value, buffer)));
}

void AppendDisplay(std::string& text, std::int64_t value) { text += std::to_string(value); }
void AppendDisplay(std::string& text, std::uint64_t value) { text += std::to_string(value); }

void AppendDisplay(std::string& text, const OneTCcomplex& value) {
  CStringUTF8 form;
  value.Get(form);
  text += form.View();
}

namespace {

template <class P>
void AppendPoint(std::string& text, const P& point) {
  for (std::size_t i = 0; i < P::kDimensions; ++i) {
    text += i == 0 ? "(" : ", ";
    AppendDisplay(text, static_cast<double>(point[i]));
  }
  text += ')';
}

void AppendQuoted(std::string& text, std::string_view value) {
  text += '"';
  for (char c : value) {
    if (c == '"' || c == '\\') text += '\\';
    text += c;
  }
  text += '"';
}

// The element that `at` addresses, by the type id of its elements.
void AppendElement(std::string& text, CScriptVelaObject& object, unsigned type_id,
                   const MSOINDICES& at, const SourceRange& where) {
  const TypeName type = ScalarOfTypeId(type_id);
  if (type == TypeName::kVoid) {
    CStringUTF8 value;
    CheckStatus(object.GetString(&at, value), "read the element", where);
    AppendQuoted(text, value.View());
    return;
  }
  WithScalar(type, [&](auto t) {
    using T = typename decltype(t)::type;
    T value{};
    if constexpr (std::is_arithmetic_v<T> || std::is_same_v<T, OneTCcomplex>) {
      CheckStatus(object.GetNumericValue(&at, value), "read the element", where);
    } else {
      CheckStatus(object.GetPointValue(&at, value), "read the element", where);
    }
    if constexpr (std::is_signed_v<T> && std::is_integral_v<T>) {
      AppendDisplay(text, static_cast<std::int64_t>(value));
    } else if constexpr (std::is_integral_v<T>) {
      AppendDisplay(text, static_cast<std::uint64_t>(value));
    } else {
      AppendDisplay(text, value);
    }
  });
}

void AppendRow(std::string& text, const ObjectValue& row, const SourceRange& where) {
  int upper = -1;
  CheckStatus(row.object->GetUpperBound(row.At(), upper), "get the size", where);
  const unsigned type_id = row.object->GetInternalDataTypeID() & kTypeIdMask;
  text += '{';
  for (int i = 0; i <= upper; ++i) {
    if (i > 0) text += ", ";
    AppendElement(text, *row.object, type_id, row.at.WithElement(i), where);
  }
  text += '}';
}

void AppendLayer(std::string& text, const ObjectValue& layer, const SourceRange& where) {
  int rows = 0, columns = 0;
  layer.object->GetMatrixDimensions(&rows, &columns, layer.At());
  const unsigned type_id = layer.object->GetInternalDataTypeID() & kTypeIdMask;
  text += '{';
  for (int row = 0; row < rows; ++row) {
    text += row > 0 ? ", {" : "{";
    for (int column = 0; column < columns; ++column) {
      if (column > 0) text += ", ";
      AppendElement(text, *layer.object, type_id, layer.at.WithCell(row, column), where);
    }
    text += '}';
  }
  text += '}';
}

void AppendOne(std::string& text, const ObjectValue& value, const SourceRange& where) {
  const unsigned type_word = value.object->GetTypeID();
  if (type_word & kFlagAnyVector) {
    AppendRow(text, value, where);
  } else if (type_word & kFlagAnyMatrix) {
    AppendLayer(text, value, where);
  } else {
    CStringUTF8 form;
    CheckStatus(value.object->GetString(value.At(), form), "get the text", where);
    text += form.View();
  }
}

}  // namespace

void AppendDisplay(std::string& text, const PointInt& value) { AppendPoint(text, value); }
void AppendDisplay(std::string& text, const PointDouble& value) { AppendPoint(text, value); }
void AppendDisplay(std::string& text, const Point3D& value) { AppendPoint(text, value); }

void AppendDisplay(std::string& text, const ObjectValue& value, const SourceRange& where) {
  const int count = value.at.kind == 0 ? value.object->GetArraySize() : 1;
  const unsigned type_word = value.object->GetTypeID();
  const unsigned type_id = type_word & kTypeIdMask;
  const bool plain = (type_word & (kFlagAnyVector | kFlagAnyMatrix)) == 0;
  if (count <= 1 && !(plain && ScalarOfTypeId(type_id) != TypeName::kVoid)) {
    AppendOne(text, value, where);
    return;
  }
  text += '{';
  for (int i = 0; i < count; ++i) {
    if (i > 0) text += ", ";
    const MSOINDICES at = MSOINDICES::Object(i);
    if (plain && (type_id == kTypeString || ScalarOfTypeId(type_id) != TypeName::kVoid)) {
      AppendElement(text, *value.object, type_id, at, where);
    } else {
      AppendOne(text, ObjectValue(value.object, at), where);
    }
  }
  text += '}';
}

}  // namespace tesselc
