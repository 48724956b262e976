// Overrides every typed value operation of the host interface in terms of two templates.
#pragma once

#include <cstdint>

#include "frame/interface/script_object.h"
#include "frame/interface/string_utf8.h"
#include "kernel/convert.h"

namespace vela {

// The base of an object whose addressed value reads and writes as any element type. Self supplies
//   template <class U> int Read(const MSOINDICES* at, U& value);
//   template <class U> int Write(const MSOINDICES* at, const U& value);
// for U any simple type, OneTCcomplex, a point or CStringUTF8; both return a status. The overloads
// are written out, not generated: a base class per overload and element type took most of the
// compiler's time.
template <class Self, class Base>
class ValueAccess : public Base {
  using At = const MSOINDICES*;

 public:
  using Base::Base;
  using Base::GetBufferSize;
  using Base::GetString;
  using Base::GetUpperBound;
  using Base::SetBufferSize;

  int GetIntegralValue(At at, char& value) override { return Get(at, value); }
  int GetIntegralValue(At at, unsigned char& value) override { return Get(at, value); }
  int GetIntegralValue(At at, short& value) override { return Get(at, value); }
  int GetIntegralValue(At at, unsigned short& value) override { return Get(at, value); }
  int GetIntegralValue(At at, int& value) override { return Get(at, value); }
  int GetIntegralValue(At at, unsigned& value) override { return Get(at, value); }
  int GetIntegralValue(At at, std::int64_t& value) override { return Get(at, value); }
  int GetIntegralValue(At at, std::uint64_t& value) override { return Get(at, value); }

  int GetNumericValue(At at, char& value) override { return Get(at, value); }
  int GetNumericValue(At at, unsigned char& value) override { return Get(at, value); }
  int GetNumericValue(At at, short& value) override { return Get(at, value); }
  int GetNumericValue(At at, unsigned short& value) override { return Get(at, value); }
  int GetNumericValue(At at, int& value) override { return Get(at, value); }
  int GetNumericValue(At at, unsigned& value) override { return Get(at, value); }
  int GetNumericValue(At at, float& value) override { return Get(at, value); }
  int GetNumericValue(At at, double& value) override { return Get(at, value); }
  int GetNumericValue(At at, std::int64_t& value) override { return Get(at, value); }
  int GetNumericValue(At at, std::uint64_t& value) override { return Get(at, value); }
  int GetNumericValue(At at, OneTCcomplex& value) override { return Get(at, value); }
  int GetNumericValue(At at, CStringUTF8& value) override { return Get(at, value); }

  int SetNumericValue(At at, char value) override { return Set(at, value); }
  int SetNumericValue(At at, unsigned char value) override { return Set(at, value); }
  int SetNumericValue(At at, short value) override { return Set(at, value); }
  int SetNumericValue(At at, unsigned short value) override { return Set(at, value); }
  int SetNumericValue(At at, int value) override { return Set(at, value); }
  int SetNumericValue(At at, unsigned value) override { return Set(at, value); }
  int SetNumericValue(At at, float value) override { return Set(at, value); }
  int SetNumericValue(At at, double value) override { return Set(at, value); }
  int SetNumericValue(At at, std::int64_t value) override { return Set(at, value); }
  int SetNumericValue(At at, std::uint64_t value) override { return Set(at, value); }
  int SetNumericValue(At at, const OneTCcomplex& value) override { return Set(at, value); }
  int SetNumericValue(At at, const PointInt& value) override { return Set(at, value); }
  int SetNumericValue(At at, const PointDouble& value) override { return Set(at, value); }
  int SetNumericValue(At at, const Point3D& value) override { return Set(at, value); }

  int GetPointValue(At at, PointInt& value) override { return Get(at, value); }
  int GetPointValue(At at, PointDouble& value) override { return Get(at, value); }
  int GetPointValue(At at, Point3D& value) override { return Get(at, value); }
  int GetPoint(PointInt& value) override { return Given(value); }
  int GetPoint(PointDouble& value) override { return Given(value); }
  int GetPoint(Point3D& value) override { return Given(value); }
  int SetPoint(At at, const Point3D& value) override { return Set(at, value); }

  int GetDouble(double& value) override { return Given(value); }
  int GetDouble(At at, double& value) override { return Get(at, value); }
  int SetDouble(double value) override { return Taken(value); }
  int SetDouble(At at, double value) override { return Set(at, value); }

  // Through the object's own double getter, so that every source saturates alike.
  int GetInt(int& value) override { return GetInt(nullptr, value) == status::kOk; }
  int GetInt(At at, int& value) override {
    double number = 0;
    if (const int code = this->GetDouble(at, number); code != status::kOk) return code;
    value = kernel::ConvertElement<int>(number);
    return status::kOk;
  }
  int SetInt(int value) override { return Taken(value); }
  int SetInt(At at, int value) override { return Set(at, value); }

  int GetFloatingValue(float& value) override { return Given(value); }
  int GetFloatingValue(At at, float& value) override { return Get(at, value); }
  int GetFloatingValue(double& value) override { return Given(value); }
  int GetFloatingValue(At at, double& value) override { return Get(at, value); }

  int SetComplex(const OneTCcomplex& value) override { return Taken(value); }
  int SetComplex(At at, const OneTCcomplex& value) override { return Set(at, value); }
  int GetComplex(At at, OneTCcomplex& value) override { return Get(at, value); }
  int GetComplexValue(At at, OneTCcomplex& value) override { return Get(at, value); }
  int SetComplexValue(At at, const OneTCcomplex& value) override { return Set(at, value); }
  int GetNumeric(At at, OneTCcomplex& value) override { return Get(at, value); }

 private:
  template <class U>
  int Get(At at, U& value) {
    return static_cast<Self*>(this)->Read(at, value);
  }
  template <class U>
  int Set(At at, const U& value) {
    return static_cast<Self*>(this)->Write(at, value);
  }
  // The forms without indices answer 1 or 0 instead of a status.
  template <class U>
  int Given(U& value) {
    return Get(nullptr, value) == status::kOk;
  }
  template <class U>
  int Taken(const U& value) {
    return Set(nullptr, value) == status::kOk;
  }
};

}  // namespace vela
