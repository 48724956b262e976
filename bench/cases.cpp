#include "cases.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <stdexcept>

#include "frame/interface/missing_value.h"
#include "frame/interface/operations.h"
#include "frame/interface/status.h"

namespace vela::bench {

using host::CallFrame;
using host::ObjectRef;

CallSite::CallSite(ObjectRef object, const char* member)
    : object_(std::move(object)), member_(member) {
  row_ = object_->FindMember(member_.c_str(), 0, &owner_, 0);
  if (row_ == nullptr) throw std::out_of_range("no member " + member_);
}

void CallSite::AddObject(ObjectRef object) {
  frame_.AddObject(object.Get());
  arguments_.push_back(std::move(object));
}

void CallSite::operator()() {
  if (const int status = owner_->DoMethod(row_->GetHandler(), &frame_); status != status::kOk) {
    throw std::runtime_error(member_ + " answers status " + std::to_string(status));
  }
}

namespace {

// Builds the objects of a case. The vectors "x" and "y" and the variants of x hold elements of the
// type that the data names.
class Maker {
 public:
  Maker(const host::Library& library, const Data& data) : library_(library), data_(data) {
    if (TextOf(data, "type") == "float") type_id_ = kTypeFloat;
    if (TextOf(data, "type") == "int") type_id_ = kTypeInt;
  }

  ObjectRef Make(unsigned type_word) const { return ObjectRef(library_.Create(type_word)); }
  ObjectRef EmptyVector() const { return Make(type_id_ | kFlagVector); }

  // A vector holding the named data.
  ObjectRef Vector(const std::string& name = "x") const { return Vector(type_id_, name); }
  ObjectRef Vector(unsigned type_id, const std::string& name) const {
    ObjectRef vector = Make(type_id | kFlagVector);
    const std::vector<std::byte>& bytes = data_.at(name);
    vector->InitalizeFromMemory(bytes.data(), static_cast<int>(bytes.size() / Width(type_id)));
    return vector;
  }

  // Fills the vector with the next variant of x, in turn.
  void Refill(const ObjectRef& vector) {
    const std::vector<std::byte>& variants = data_.at("variants");
    vector->InitalizeFromMemory(&variants[turn_], Size());
    turn_ = (turn_ + data_.at("x").size()) % variants.size();
  }

  // The number of elements of x.
  int Size() const { return static_cast<int>(data_.at("x").size() / Width(type_id_)); }

 private:
  static std::size_t Width(unsigned type_id) { return type_id == kTypeDouble ? 8 : 4; }

  const host::Library& library_;
  const Data& data_;
  unsigned type_id_ = kTypeDouble;
  std::size_t turn_ = 0;  // where the next variant begins
};

using Case = std::function<Prepared(Maker&)>;

// A case whose call changes nothing it reads.
Prepared Repeatable(std::shared_ptr<CallSite> site) {
  return {nullptr, [site] { (*site)(); }};
}

template <class AddArguments>
Case Reading(const char* member, AddArguments&& add) {
  return [member, add](Maker& maker) {
    auto site = std::make_shared<CallSite>(maker.Vector(), member);
    add(maker, *site);
    return Repeatable(site);
  };
}

// A case whose call changes the vector: it starts from the data each time.
template <class AddArguments>
Case InPlace(const char* member, AddArguments&& add) {
  return [member, add](Maker& maker) {
    const ObjectRef vector = maker.Vector();
    auto site = std::make_shared<CallSite>(vector, member);
    add(maker, *site);
    return Prepared{[vector, maker]() mutable { maker.Refill(vector); }, [site] { (*site)(); }};
  };
}

Case Operator(unsigned code) {
  return [code](Maker& maker) {
    const ObjectRef x = maker.Vector();
    const ObjectRef y = maker.Vector("y");
    return Prepared{[x, maker]() mutable { maker.Refill(x); },
                    [x, y, code] {
                      const tagMSOOBJVECT operand(y.Get(), y->GetTypeID());
                      if (x->Operate2(nullptr, code, operand, 0) != 0) std::abort();
                    }};
  };
}

// Assignment between vectors of two types: the element conversion.
Case Conversion(unsigned from, unsigned to) {
  return [from, to](Maker& maker) {
    const ObjectRef x = maker.Vector(from, from == kTypeDouble ? "x"
                                           : from == kTypeInt  ? "integers"
                                                               : "floats");
    const ObjectRef target = maker.Make(to | kFlagVector);
    return Prepared{nullptr, [x, target] {
                      const tagMSOOBJVECT operand(x.Get(), x->GetTypeID());
                      if (target->Operate2(nullptr, operation::kAssign, operand, 0) != 0) {
                        std::abort();
                      }
                    }};
  };
}

constexpr int kCallsPerMeasurement = 1000;

// Costs of one call, per kCallsPerMeasurement calls.
Prepared CallByName(Maker& maker) {
  const ObjectRef vector = maker.Make(kTypeDouble | kFlagVector);
  return {nullptr, [vector] {
            CallFrame frame;
            for (int i = 0; i < kCallsPerMeasurement; ++i) {
              frame.Reset();
              CTypeBase* owner = nullptr;
              const CClassMember* row = vector->FindMember("GetSize", 0, &owner, 0);
              if (owner->DoMethod(row->GetHandler(), &frame) != 0) std::abort();
              if (frame.ResultInt() != 0) std::abort();
            }
          }};
}

Prepared CallFound(Maker& maker) {
  const ObjectRef vector = maker.Make(kTypeDouble | kFlagVector);
  return {nullptr, [vector] {
            CTypeBase* owner = nullptr;
            const CClassMember* row = vector->FindMember("GetSize", 0, &owner, 0);
            CallFrame frame;
            for (int i = 0; i < kCallsPerMeasurement; ++i) {
              frame.Reset();
              if (owner->DoMethod(row->GetHandler(), &frame) != 0) std::abort();
              if (frame.ResultInt() != 0) std::abort();
            }
          }};
}

Prepared SortWithIndices(Maker& maker) {
  const ObjectRef vector = maker.Vector();
  const ObjectRef indices = maker.Make(kTypeUnsignedInt | kFlagVector);
  auto site = std::make_shared<CallSite>(vector, "Sort");
  site->Frame().AddInt(1);
  site->Frame().AddInt(1);
  site->AddObject(indices);
  site->Frame().AddInt(0);
  return {[vector, maker]() mutable { maker.Refill(vector); }, [site] { (*site)(); }};
}

Prepared Average(Maker& maker) {
  auto site = std::make_shared<CallSite>(maker.EmptyVector(), "Average");
  site->AddObject(maker.Vector());
  site->Frame().AddInt(51);
  site->Frame().AddInt(0);
  return Repeatable(site);
}

Case Find(double low, double high) {
  return Reading("Find", [low, high](Maker& maker, CallSite& f) {
    f.AddObject(maker.Make(kTypeUnsignedInt | kFlagVector));
    f.Frame().AddDouble(low);
    f.Frame().AddDouble(high);
    for (const int argument : {0, 0, -1, 0}) f.Frame().AddInt(argument);
  });
}

// Members that fill a vector from nothing but numbers.
Case Filling(const char* member, std::function<void(int size, CallSite&)> add) {
  return [member, add](Maker& maker) {
    auto site = std::make_shared<CallSite>(maker.EmptyVector(), member);
    add(maker.Size(), *site);
    return Repeatable(site);
  };
}

const std::map<std::string, Case>& Makers() {
  static const std::map<std::string, Case> makers = {
      {"call_by_name", CallByName},
      {"call_found", CallFound},
      {"Sum", Reading("Sum", [](Maker& m, CallSite& f) { f.AddObject(m.Make(kTypeDouble)); })},
      {"GetMinMax", Reading("GetMinMax",
                            [](Maker& m, CallSite& f) {
                              f.AddObject(m.Make(kTypeDouble));
                              f.AddObject(m.Make(kTypeDouble));
                              f.AddObject(m.Make(kTypeUnsignedInt));
                              f.AddObject(m.Make(kTypeUnsignedInt));
                            })},
      {"Sort", InPlace("Sort",
                       [](Maker&, CallSite& f) {
                         f.Frame().AddInt(1);
                         f.Frame().AddInt(1);
                         f.Frame().AddNull();
                         f.Frame().AddInt(0);
                       })},
      {"Sort_indices", SortWithIndices},
      {"FrequencyCount", Reading("FrequencyCount",
                                 [](Maker& m, CallSite& f) {
                                   f.AddObject(m.Vector(kTypeDouble, "edges"));
                                   f.AddObject(m.Make(kTypeInt | kFlagVector));
                                   f.Frame().AddInt(0);
                                 })},
      {"Average", Average},
      {"Difference",
       Reading("Difference", [](Maker& m, CallSite& f) { f.AddObject(m.EmptyVector()); })},
      {"Abs", InPlace("Abs", [](Maker&, CallSite&) {})},
      {"Wrap", InPlace("Wrap", [](Maker&, CallSite& f) { f.Frame().AddInt(12345); })},
      {"add", Operator(operation::kAdd)},
      {"subtract", Operator(operation::kSubtract)},
      {"multiply", Operator(operation::kMultiply)},
      {"divide", Operator(operation::kDivide)},
      {"power", Operator(operation::kPower)},
      {"Find_range", Find(0.4, 0.6)},
      {"Find_value", Find(0.5, kMissingValue)},
      {"Data", Filling("Data",
                       [](int size, CallSite& f) {
                         f.Frame().AddDouble(0);
                         f.Frame().AddDouble(size - 1);
                         f.Frame().AddDouble(1);
                       })},
      {"Uniform", Filling("Uniform",
                          [](int size, CallSite& f) {
                            f.Frame().AddInt(size);
                            f.Frame().AddInt(1);
                          })},
      {"Normal", Filling("Normal",
                         [](int size, CallSite& f) {
                           f.Frame().AddInt(size);
                           f.Frame().AddInt(1);
                         })},
      {"double_to_int", Conversion(kTypeDouble, kTypeInt)},
      {"float_to_double", Conversion(kTypeFloat, kTypeDouble)},
      {"int_to_double", Conversion(kTypeInt, kTypeDouble)},
  };
  return makers;
}

}  // namespace

Cases NumericCases(const host::Library& library) {
  Cases cases;
  for (const auto& [name, make] : Makers()) {
    cases[name] = [&library, &make](const Data& data) {
      Maker maker(library, data);
      return make(maker);
    };
  }
  return cases;
}

}  // namespace vela::bench
