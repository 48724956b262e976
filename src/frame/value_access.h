// Overrides every typed value operation of the host interface in terms of two templates.
#pragma once

#include <cstdint>

#include "frame/interface/script_object.h"
#include "frame/interface/string_utf8.h"
#include "kernel/convert.h"

namespace vela {
namespace value_access {

// Each layer adds the override of one overload; Self supplies
//   template <class U> int Read(const MSOINDICES* at, U& value);
//   template <class U> int Write(const MSOINDICES* at, const U& value);
// for U any simple type, OneTCcomplex, a point or CStringUTF8; both return a status.
template <class Self, class Base, class... Us>
struct Integral : Base {
  using Base::Base;
};
template <class Self, class Base, class U, class... Rest>
struct Integral<Self, Base, U, Rest...> : Integral<Self, Base, Rest...> {
  using Integral<Self, Base, Rest...>::Integral;
  using Integral<Self, Base, Rest...>::GetIntegralValue;
  int GetIntegralValue(const MSOINDICES* at, U& value) override {
    return static_cast<Self*>(this)->Read(at, value);
  }
};

template <class Self, class Base, class... Us>
struct Getters : Base {
  using Base::Base;
};
template <class Self, class Base, class U, class... Rest>
struct Getters<Self, Base, U, Rest...> : Getters<Self, Base, Rest...> {
  using Getters<Self, Base, Rest...>::Getters;
  using Getters<Self, Base, Rest...>::GetNumericValue;
  int GetNumericValue(const MSOINDICES* at, U& value) override {
    return static_cast<Self*>(this)->Read(at, value);
  }
};

template <class Self, class Base, class... Us>
struct Setters : Base {
  using Base::Base;
};
template <class Self, class Base, class U, class... Rest>
struct Setters<Self, Base, U, Rest...> : Setters<Self, Base, Rest...> {
  using Setters<Self, Base, Rest...>::Setters;
  using Setters<Self, Base, Rest...>::SetNumericValue;
  int SetNumericValue(const MSOINDICES* at, U value) override {
    return static_cast<Self*>(this)->Write(at, value);
  }
};

template <class Self, class Base, class... Us>
struct Points : Base {
  using Base::Base;
};
template <class Self, class Base, class P, class... Rest>
struct Points<Self, Base, P, Rest...> : Points<Self, Base, Rest...> {
  using Points<Self, Base, Rest...>::Points;
  using Points<Self, Base, Rest...>::GetPointValue;
  using Points<Self, Base, Rest...>::GetPoint;
  using Points<Self, Base, Rest...>::SetNumericValue;
  int GetPointValue(const MSOINDICES* at, P& value) override {
    return static_cast<Self*>(this)->Read(at, value);
  }
  int GetPoint(P& value) override {
    return static_cast<Self*>(this)->Read(nullptr, value) == status::kOk;
  }
  int SetNumericValue(const MSOINDICES* at, const P& value) override {
    return static_cast<Self*>(this)->Write(at, value);
  }
};

template <class Self, class Base>
using IntegralLayer = Integral<Self, Base, char, unsigned char, short, unsigned short, int,
                               unsigned, std::int64_t, std::uint64_t>;
template <class Self, class Base>
using GetterLayer = Getters<Self, Base, char, unsigned char, short, unsigned short, int, unsigned,
                            float, double, std::int64_t, std::uint64_t, OneTCcomplex, CStringUTF8>;
template <class Self, class Base>
using SetterLayer = Setters<Self, Base, char, unsigned char, short, unsigned short, int, unsigned,
                            float, double, std::int64_t, std::uint64_t, const OneTCcomplex&>;
template <class Self, class Base>
using PointLayer = Points<Self, Base, PointInt, PointDouble, Point3D>;

}  // namespace value_access

// The base of an object whose addressed value reads and writes as any element type.
template <class Self, class Base>
class ValueAccess
    : public value_access::PointLayer<
          Self,
          value_access::SetterLayer<
              Self, value_access::GetterLayer<Self, value_access::IntegralLayer<Self, Base>>>> {
  using Layers = value_access::PointLayer<
      Self, value_access::SetterLayer<
                Self, value_access::GetterLayer<Self, value_access::IntegralLayer<Self, Base>>>>;

 public:
  using Base::GetBufferSize;
  using Base::GetString;
  using Base::GetUpperBound;
  using Base::SetBufferSize;
  using Layers::Layers;

  int GetDouble(double& value) override { return self()->Read(nullptr, value) == status::kOk; }
  int GetDouble(const MSOINDICES* at, double& value) override { return self()->Read(at, value); }
  int SetDouble(double value) override { return self()->Write(nullptr, value) == status::kOk; }
  int SetDouble(const MSOINDICES* at, double value) override { return self()->Write(at, value); }

  // Through the object's own double getter, so that every source saturates alike.
  int GetInt(int& value) override { return GetInt(nullptr, value) == status::kOk; }
  int GetInt(const MSOINDICES* at, int& value) override {
    double number = 0;
    if (const int code = this->GetDouble(at, number); code != status::kOk) return code;
    value = kernel::ConvertElement<int>(number);
    return status::kOk;
  }
  int SetInt(int value) override { return self()->Write(nullptr, value) == status::kOk; }
  int SetInt(const MSOINDICES* at, int value) override { return self()->Write(at, value); }

  int GetFloatingValue(float& value) override {
    return self()->Read(nullptr, value) == status::kOk;
  }
  int GetFloatingValue(const MSOINDICES* at, float& value) override {
    return self()->Read(at, value);
  }
  int GetFloatingValue(double& value) override {
    return self()->Read(nullptr, value) == status::kOk;
  }
  int GetFloatingValue(const MSOINDICES* at, double& value) override {
    return self()->Read(at, value);
  }

  int SetComplex(const OneTCcomplex& value) override {
    return self()->Write(nullptr, value) == status::kOk;
  }
  int SetComplex(const MSOINDICES* at, const OneTCcomplex& value) override {
    return self()->Write(at, value);
  }
  int GetComplex(const MSOINDICES* at, OneTCcomplex& value) override {
    return self()->Read(at, value);
  }
  int GetComplexValue(const MSOINDICES* at, OneTCcomplex& value) override {
    return self()->Read(at, value);
  }
  int SetComplexValue(const MSOINDICES* at, const OneTCcomplex& value) override {
    return self()->Write(at, value);
  }
  int GetNumeric(const MSOINDICES* at, OneTCcomplex& value) override {
    return self()->Read(at, value);
  }
  int SetPoint(const MSOINDICES* at, const Point3D& value) override {
    return self()->Write(at, value);
  }

 private:
  Self* self() { return static_cast<Self*>(this); }
};

}  // namespace vela
