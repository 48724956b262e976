#include "cases.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "frame/interface/missing_value.h"
#include "frame/interface/operations.h"
#include "frame/interface/status.h"

namespace vela::bench {

using host::CallFrame;
using host::ObjectRef;

CallSite::CallSite(ObjectRef object, const char* member)
    : object_(std::move(object)), member_(member) {
  row_ = object_->FindMember(member, 0, &owner_, 0);
  if (row_ == nullptr) throw std::out_of_range(std::string("no member ") + member);
}

void CallSite::AddObject(ObjectRef object) {
  frame_.AddObject(object.Get());
  arguments_.push_back(std::move(object));
}

void CallSite::operator()() {
  if (const int status = owner_->DoMethod(row_->GetHandler(), &frame_); status != status::kOk) {
    std::fprintf(stderr, "%s answers status %d\n", member_, status);
    std::abort();
  }
}

namespace {

// Builds the objects of a case.
class Maker {
 public:
  Maker(const host::Library& library, const Data& data) : library_(library), data_(data) {}

  ObjectRef Make(unsigned type_word) const { return ObjectRef(library_.Create(type_word)); }

  // A vector holding the named data.
  ObjectRef Vector(unsigned type_id, const std::string& name = "x") const {
    ObjectRef vector = Make(type_id | kFlagVector);
    Fill(vector, type_id, name);
    return vector;
  }

  void Fill(const ObjectRef& vector, unsigned type_id, const std::string& name = "x") const {
    const std::vector<std::byte>& bytes = data_.at(name);
    const std::size_t width = type_id == kTypeDouble ? 8 : 4;
    vector->InitalizeFromMemory(bytes.data(), static_cast<int>(bytes.size() / width));
  }

  // Fills the vector of doubles with the next variant of the data, in turn.
  void Refill(const ObjectRef& vector) {
    const std::vector<std::byte>& variants = data_.at("variants");
    const std::size_t bytes = data_.at("x").size();
    vector->InitalizeFromMemory(&variants[turn_], Size("x"));
    turn_ = (turn_ + bytes) % variants.size();
  }

  int Size(const std::string& name, std::size_t width = 8) const {
    return static_cast<int>(data_.at(name).size() / width);
  }

 private:
  const host::Library& library_;
  const Data& data_;
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
    auto site = std::make_shared<CallSite>(maker.Vector(kTypeDouble), member);
    add(maker, *site);
    return Repeatable(site);
  };
}

// A case whose call changes the vector: it starts from the data each time.
template <class AddArguments>
Case InPlace(const char* member, AddArguments&& add) {
  return [member, add](Maker& maker) {
    const ObjectRef vector = maker.Vector(kTypeDouble);
    auto site = std::make_shared<CallSite>(vector, member);
    add(maker, *site);
    return Prepared{[vector, maker]() mutable { maker.Refill(vector); }, [site] { (*site)(); }};
  };
}

Case Operator(unsigned code) {
  return [code](Maker& maker) {
    const ObjectRef x = maker.Vector(kTypeDouble);
    const ObjectRef y = maker.Vector(kTypeDouble, "y");
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
  const ObjectRef vector = maker.Vector(kTypeDouble);
  const ObjectRef indices = maker.Make(kTypeUnsignedInt | kFlagVector);
  auto site = std::make_shared<CallSite>(vector, "Sort");
  site->Frame().AddInt(1);
  site->Frame().AddInt(1);
  site->AddObject(indices);
  site->Frame().AddInt(0);
  return {[vector, maker]() mutable { maker.Refill(vector); }, [site] { (*site)(); }};
}

Prepared Average(Maker& maker) {
  auto site = std::make_shared<CallSite>(maker.Make(kTypeDouble | kFlagVector), "Average");
  site->AddObject(maker.Vector(kTypeDouble));
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
    auto site = std::make_shared<CallSite>(maker.Make(kTypeDouble | kFlagVector), member);
    add(maker.Size("x"), *site);
    return Repeatable(site);
  };
}

const std::map<std::string, Case>& NumericCases() {
  static const std::map<std::string, Case> cases = {
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
       Reading("Difference",
               [](Maker& m, CallSite& f) { f.AddObject(m.Make(kTypeDouble | kFlagVector)); })},
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
  return cases;
}

}  // namespace

std::vector<std::string> CaseNames() {
  std::vector<std::string> names;
  for (const auto& [name, unused] : NumericCases()) names.push_back(name);
  return names;
}

Prepared Prepare(const host::Library& library, const std::string& name, const Data& data) {
  Maker maker(library, data);
  return NumericCases().at(name)(maker);
}

}  // namespace vela::bench
