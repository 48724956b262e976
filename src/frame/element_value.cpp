#include "frame/element_value.h"

#include <charconv>

namespace vela {

CStringUTF8 ValueText(SimpleElement auto value) {
  char buffer[VELAObj::kRealTextSize];
  if constexpr (IntegerElement<decltype(value)>) {
    // Wider than int so that char prints as a number.
    using Wide = std::conditional_t<std::is_signed_v<decltype(value)>, std::int64_t, std::uint64_t>;
    char* end = std::to_chars(buffer, buffer + sizeof buffer, static_cast<Wide>(value)).ptr;
    return {buffer, static_cast<int>(end - buffer)};
  } else if constexpr (std::is_same_v<decltype(value), float>) {
    return {buffer, VELAObj::FloatToString(value, buffer)};
  } else {
    return {buffer, VELAObj::RealToString(value, buffer, nullptr)};
  }
}

CStringUTF8 ValueText(const OneTCcomplex& value) {
  CStringUTF8 text;
  value.Get(text);
  return text;
}

CStringUTF8 ValueText(const PointInt& value) {
  CStringUTF8 text;
  text.Format("(%d, %d)", static_cast<int>(value[0]), static_cast<int>(value[1]));
  return text;
}

CStringUTF8 ValueText(const PointDouble& value) {
  CStringUTF8 text;
  text.Format("(%f, %f)", value[0], value[1]);
  return text;
}

CStringUTF8 ValueText(const Point3D& value) {
  CStringUTF8 text;
  text.Format("(%f, %f, %f)", value[0], value[1], value[2]);
  return text;
}

template CStringUTF8 ValueText(char);
template CStringUTF8 ValueText(unsigned char);
template CStringUTF8 ValueText(short);
template CStringUTF8 ValueText(unsigned short);
template CStringUTF8 ValueText(int);
template CStringUTF8 ValueText(unsigned);
template CStringUTF8 ValueText(float);
template CStringUTF8 ValueText(double);
template CStringUTF8 ValueText(std::int64_t);
template CStringUTF8 ValueText(std::uint64_t);

}  // namespace vela
