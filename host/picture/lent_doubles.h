// The elements of a script's vector or matrix as doubles.
#pragma once

#include <cmath>

#include "frame/interface/missing_value.h"
#include "frame/interface/script_object.h"
#include "host/member_arguments.h"

namespace vela::host {

// Lends the elements of a container, which must outlive this, for a scope; what is written to them
// goes back into it. Throws a MemberFailure where they cannot be lent.
class LentDoubles {
 public:
  explicit LentDoubles(const tagMSOOBJVECT& container) : container_(container) {
    Check(container_.object->GetBufferMSOEx(&container_.indices, kTypeDouble, &buffer_));
  }
  ~LentDoubles() { container_.object->ReleaseBufferMSO(&container_.indices, buffer_); }
  LentDoubles(const LentDoubles&) = delete;
  LentDoubles& operator=(const LentDoubles&) = delete;
  double* Get() const { return static_cast<double*>(buffer_); }

 private:
  const tagMSOOBJVECT& container_;
  void* buffer_ = nullptr;
};

// An argument that is a container with one of the flags, of anything but complex values: status 3
// for any other.
inline tagMSOOBJVECT RealContainer(MemberArguments& args, unsigned arg, unsigned flags) {
  tagMSOOBJVECT container = args.Object(arg);
  const bool real = (container.type_word & kTypeIdMask) != kTypeComplex;
  if ((container.type_word & flags) == 0 || !real) throw MemberFailure{status::kBadArguments};
  return container;
}

// Whether a value is a number.
inline bool IsShown(double value) { return value != kMissingValue && !std::isnan(value); }

}  // namespace vela::host
