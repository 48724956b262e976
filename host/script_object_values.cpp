// The value operations. Each default goes through one of a few that a class overrides: the double,
// text, complex and point operations that take indices. A class that can do better, as for 64-bit
// integers, overrides more.
#include <concepts>

#include "frame/interface/script_object.h"
#include "host/saturate.h"

using vela::host::Saturate;

namespace {

// A value operation without indices, by its counterpart with them: 1 for success, 0 for failure.
int Succeeded(int status) { return status == status::kOk ? 1 : 0; }

template <class T>
int ReadThroughDouble(CScriptVelaObject& object, const MSOINDICES* at, T& value) {
  double number = 0;
  if (const int code = object.GetDouble(at, number)) return code;
  if constexpr (std::integral<T>) {
    value = Saturate<T>(number);
  } else {
    value = static_cast<T>(number);
  }
  return status::kOk;
}

template <class T>
int WriteThroughDouble(CScriptVelaObject& object, const MSOINDICES* at, T value) {
  return object.SetDouble(at, static_cast<double>(value));
}

}  // namespace

int CScriptVelaObject::GetDouble(const MSOINDICES*, double&) { return status::kUnsupported; }
int CScriptVelaObject::GetDouble(double& value) { return Succeeded(GetDouble(nullptr, value)); }
int CScriptVelaObject::SetDouble(const MSOINDICES*, double) { return status::kUnsupported; }
int CScriptVelaObject::SetDouble(double value) { return Succeeded(SetDouble(nullptr, value)); }

int CScriptVelaObject::GetInt(int& value) {
  double number = 0;
  if (!GetDouble(number)) return 0;
  value = Saturate<int>(number);
  return 1;
}
int CScriptVelaObject::GetInt(const MSOINDICES* at, int& value) {
  return ReadThroughDouble(*this, at, value);
}
int CScriptVelaObject::SetInt(int value) { return Succeeded(SetInt(nullptr, value)); }
int CScriptVelaObject::SetInt(const MSOINDICES* at, int value) {
  return SetNumericValue(at, value);
}
int CScriptVelaObject::RoundDouble(double value) { return Saturate<int>(value); }

int CScriptVelaObject::GetString(CStringUTF8& text) { return Succeeded(GetString(nullptr, text)); }
int CScriptVelaObject::GetString(const MSOINDICES*, CStringUTF8& text) {
  text = GetTCTypeName();
  return status::kOk;
}
int CScriptVelaObject::SetString(const char* text) { return Succeeded(SetString(nullptr, text)); }
int CScriptVelaObject::SetString(const MSOINDICES*, const char*) { return status::kUnsupported; }
int CScriptVelaObject::SetStringValue(const MSOINDICES* at, const CStringUTF8& text) {
  return SetString(at, text.c_str());
}

int CScriptVelaObject::GetIntegralValue(const MSOINDICES* at, char& value) {
  return GetNumericValue(at, value);
}
int CScriptVelaObject::GetIntegralValue(const MSOINDICES* at, unsigned char& value) {
  return GetNumericValue(at, value);
}
int CScriptVelaObject::GetIntegralValue(const MSOINDICES* at, short& value) {
  return GetNumericValue(at, value);
}
int CScriptVelaObject::GetIntegralValue(const MSOINDICES* at, unsigned short& value) {
  return GetNumericValue(at, value);
}
int CScriptVelaObject::GetIntegralValue(const MSOINDICES* at, int& value) {
  return GetNumericValue(at, value);
}
int CScriptVelaObject::GetIntegralValue(const MSOINDICES* at, unsigned& value) {
  return GetNumericValue(at, value);
}
int CScriptVelaObject::GetIntegralValue(const MSOINDICES* at, std::int64_t& value) {
  return GetNumericValue(at, value);
}
int CScriptVelaObject::GetIntegralValue(const MSOINDICES* at, std::uint64_t& value) {
  return GetNumericValue(at, value);
}

int CScriptVelaObject::GetNumericValue(const MSOINDICES* at, char& value) {
  return ReadThroughDouble(*this, at, value);
}
int CScriptVelaObject::GetNumericValue(const MSOINDICES* at, unsigned char& value) {
  return ReadThroughDouble(*this, at, value);
}
int CScriptVelaObject::GetNumericValue(const MSOINDICES* at, short& value) {
  return ReadThroughDouble(*this, at, value);
}
int CScriptVelaObject::GetNumericValue(const MSOINDICES* at, unsigned short& value) {
  return ReadThroughDouble(*this, at, value);
}
int CScriptVelaObject::GetNumericValue(const MSOINDICES* at, int& value) {
  return ReadThroughDouble(*this, at, value);
}
int CScriptVelaObject::GetNumericValue(const MSOINDICES* at, unsigned& value) {
  return ReadThroughDouble(*this, at, value);
}
int CScriptVelaObject::GetNumericValue(const MSOINDICES* at, float& value) {
  return ReadThroughDouble(*this, at, value);
}
int CScriptVelaObject::GetNumericValue(const MSOINDICES* at, double& value) {
  return GetDouble(at, value);
}
int CScriptVelaObject::GetNumericValue(const MSOINDICES* at, std::int64_t& value) {
  return ReadThroughDouble(*this, at, value);
}
int CScriptVelaObject::GetNumericValue(const MSOINDICES* at, std::uint64_t& value) {
  return ReadThroughDouble(*this, at, value);
}
int CScriptVelaObject::GetNumericValue(const MSOINDICES* at, OneTCcomplex& value) {
  return ReadThroughDouble(*this, at, value);
}
int CScriptVelaObject::GetNumericValue(const MSOINDICES* at, CStringUTF8& value) {
  return GetString(at, value);
}
int CScriptVelaObject::GetNumericValue(const MSOINDICES* at, VARIANT& value) {
  return GetIntoVariant(at, &value);
}

int CScriptVelaObject::SetNumericValue(const MSOINDICES* at, char value) {
  return WriteThroughDouble(*this, at, value);
}
int CScriptVelaObject::SetNumericValue(const MSOINDICES* at, unsigned char value) {
  return WriteThroughDouble(*this, at, value);
}
int CScriptVelaObject::SetNumericValue(const MSOINDICES* at, short value) {
  return WriteThroughDouble(*this, at, value);
}
int CScriptVelaObject::SetNumericValue(const MSOINDICES* at, unsigned short value) {
  return WriteThroughDouble(*this, at, value);
}
int CScriptVelaObject::SetNumericValue(const MSOINDICES* at, int value) {
  return WriteThroughDouble(*this, at, value);
}
int CScriptVelaObject::SetNumericValue(const MSOINDICES* at, unsigned value) {
  return WriteThroughDouble(*this, at, value);
}
int CScriptVelaObject::SetNumericValue(const MSOINDICES* at, float value) {
  return WriteThroughDouble(*this, at, value);
}
int CScriptVelaObject::SetNumericValue(const MSOINDICES* at, double value) {
  return SetDouble(at, value);
}
int CScriptVelaObject::SetNumericValue(const MSOINDICES* at, std::int64_t value) {
  return WriteThroughDouble(*this, at, value);
}
int CScriptVelaObject::SetNumericValue(const MSOINDICES* at, std::uint64_t value) {
  return WriteThroughDouble(*this, at, value);
}
int CScriptVelaObject::SetNumericValue(const MSOINDICES* at, const OneTCcomplex& value) {
  return SetDouble(at, value.m_re);
}
int CScriptVelaObject::SetNumericValue(const MSOINDICES* at, const PointInt& value) {
  return SetPoint(at, {static_cast<double>(value[0]), static_cast<double>(value[1]), 0});
}
int CScriptVelaObject::SetNumericValue(const MSOINDICES* at, const PointDouble& value) {
  return SetPoint(at, {value[0], value[1], 0});
}
int CScriptVelaObject::SetNumericValue(const MSOINDICES* at, const Point3D& value) {
  return SetPoint(at, value);
}
int CScriptVelaObject::SetNumericValue(const MSOINDICES* at, const VARIANT& value) {
  return SetFromVariant(at, &value);
}

int CScriptVelaObject::GetFloatingValue(float& value) {
  return Succeeded(GetNumericValue(nullptr, value));
}
int CScriptVelaObject::GetFloatingValue(const MSOINDICES* at, float& value) {
  return GetNumericValue(at, value);
}
int CScriptVelaObject::GetFloatingValue(double& value) { return GetDouble(value); }
int CScriptVelaObject::GetFloatingValue(const MSOINDICES* at, double& value) {
  return GetNumericValue(at, value);
}

int CScriptVelaObject::SetValueFromDWORD(std::uint64_t value) {
  return SetNumericValue(nullptr, value);
}
int CScriptVelaObject::SetValueFromINT64(std::int64_t value) {
  return SetNumericValue(nullptr, value);
}

int CScriptVelaObject::GetNumeric(const MSOINDICES* at, OneTCcomplex& value) {
  return GetNumericValue(at, value);
}
int CScriptVelaObject::SetComplex(const OneTCcomplex& value) {
  return Succeeded(SetComplex(nullptr, value));
}
int CScriptVelaObject::SetComplex(const MSOINDICES* at, const OneTCcomplex& value) {
  return SetNumericValue(at, value);
}
int CScriptVelaObject::GetComplex(const MSOINDICES* at, OneTCcomplex& value) {
  return GetNumericValue(at, value);
}
int CScriptVelaObject::GetComplexValue(const MSOINDICES* at, OneTCcomplex& value) {
  return GetNumericValue(at, value);
}
int CScriptVelaObject::SetComplexValue(const MSOINDICES* at, const OneTCcomplex& value) {
  return SetNumericValue(at, value);
}

int CScriptVelaObject::GetPointValue(const MSOINDICES*, Point3D&) { return status::kUnsupported; }
int CScriptVelaObject::GetPointValue(const MSOINDICES* at, PointDouble& value) {
  Point3D point;
  if (const int code = GetPointValue(at, point)) return code;
  value = {point[0], point[1]};
  return status::kOk;
}
int CScriptVelaObject::GetPointValue(const MSOINDICES* at, PointInt& value) {
  Point3D point;
  if (const int code = GetPointValue(at, point)) return code;
  value = {Saturate<std::int32_t>(point[0]), Saturate<std::int32_t>(point[1])};
  return status::kOk;
}
int CScriptVelaObject::GetPoint(PointInt& value) {
  return Succeeded(GetPointValue(nullptr, value));
}
int CScriptVelaObject::GetPoint(PointDouble& value) {
  return Succeeded(GetPointValue(nullptr, value));
}
int CScriptVelaObject::GetPoint(Point3D& value) { return Succeeded(GetPointValue(nullptr, value)); }
int CScriptVelaObject::SetPoint(const MSOINDICES*, const Point3D&) { return status::kUnsupported; }
