// The smallest script objects that a call frame can be tested with.
#pragma once

#include <string>
#include <vector>

#include "frame/interface/script_object.h"
#include "frame/interface/tessel_object.h"

// An array of doubles that calls itself any type. Overrides just the core operations, so that
// everything else about it is a default of the runtime. With a container flag in its type word it
// is a vector of one row.
class NumberObject : public TesselCObject {
 public:
  using CScriptVelaObject::GetDouble;
  using CScriptVelaObject::SetDouble;

  explicit NumberObject(double value = 0, unsigned type_word = kTypeDouble)
      : NumberObject(std::vector<double>{value}, type_word) {}
  NumberObject(std::vector<double> values, unsigned type_word) : values_(std::move(values)) {
    InitTypeIDs(type_word);
  }

  int GetDouble(const MSOINDICES* at, double& value) override {
    double* const element = Element(at);
    if (!element) return status::kUnresolved;
    value = *element;
    return status::kOk;
  }
  int SetDouble(const MSOINDICES* at, double value) override {
    double* const element = Element(at);
    if (!element) return status::kUnresolved;
    *element = value;
    return status::kOk;
  }
  int GetArraySize() const override { return IsVector() ? 1 : static_cast<int>(values_.size()); }
  int GetExternalData(void** address) override {
    *address = values_.data();
    return status::kOk;
  }

  std::vector<double>& values() { return values_; }

 private:
  bool IsVector() const { return (GetTypeID() & kFlagVector) != 0; }
  double* Element(const MSOINDICES* at) {
    std::int32_t i = 0;
    if (at) i = IsVector() ? at->element : at->ObjectIndex();
    return i >= 0 && i < static_cast<int>(values_.size()) ? &values_[static_cast<unsigned>(i)]
                                                          : nullptr;
  }

  std::vector<double> values_;
};

class TextObject : public CScriptVelaObject {
 public:
  using CScriptVelaObject::GetString;
  using CScriptVelaObject::SetString;

  explicit TextObject(std::string text = {}) : text_(std::move(text)) { InitTypeIDs(kTypeString); }

  int GetString(const MSOINDICES*, CStringUTF8& text) override {
    text = std::string_view(text_);
    return status::kOk;
  }
  int SetString(const MSOINDICES*, const char* text) override {
    text_ = text;
    return status::kOk;
  }
  int GetBufferMSO(const MSOINDICES*, void** buffer) override {
    ++locks;
    *buffer = text_.data();
    return status::kOk;
  }
  int ReleaseBufferMSO(const MSOINDICES*, void* buffer) override {
    if (buffer == text_.data()) --locks;
    return status::kOk;
  }
  unsigned GetBufferSize(const MSOINDICES*) override {
    return static_cast<unsigned>(text_.size()) + 1;
  }
  int EndGetValueForExternalCall(CTCExternalCallBuilder&, const MSOINDICES*, unsigned) override {
    ++ended;
    return status::kOk;
  }

  const std::string& text() const { return text_; }
  int locks = 0;
  int ended = 0;

 private:
  std::string text_;
};

class PointObject : public CScriptVelaObject {
 public:
  explicit PointObject(const Point3D& value) : value_(value) { InitTypeIDs(kTypePoint3D); }
  using CScriptVelaObject::GetPointValue;
  int GetPointValue(const MSOINDICES*, Point3D& value) override {
    value = value_;
    return status::kOk;
  }
  int SetPoint(const MSOINDICES*, const Point3D& value) override {
    value_ = value;
    return status::kOk;
  }
  const Point3D& value() const { return value_; }

 private:
  Point3D value_;
};

// Refers to one element of its target; without a target it dangles, or is a null pointer.
class ReferenceObject : public CScriptVelaObject {
 public:
  ReferenceObject(CScriptVelaObject* target, const MSOINDICES& at, unsigned type = kTypeReference)
      : target_(target), at_(at) {
    InitTypeIDs(type);
  }
  CScriptVelaObject* GetActualObjectEx(MSOINDICES* at) override {
    if (at) *at = at_;
    return target_;
  }
  int IsNULLPtr() override { return !target_ && GetTypeID() == kTypePointer; }

 private:
  CScriptVelaObject* target_;
  MSOINDICES at_;
};
