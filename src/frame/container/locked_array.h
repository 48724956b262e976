#pragma once

#include "frame/member/arguments.h"
#include "platform/automation.h"

namespace vela {

// The cells of an array, which stays locked for as long as this lives; status 282 when it cannot
// be.
class LockedArray {
 public:
  explicit LockedArray(SAFEARRAY* array) : array_(array) {
    if (FAILED(SafeArrayAccessData(array_, &cells_))) member::Fail(status::kArrayFailed);
  }
  ~LockedArray() { SafeArrayUnaccessData(array_); }
  LockedArray(const LockedArray&) = delete;
  LockedArray& operator=(const LockedArray&) = delete;
  void* Get() const { return cells_; }

 private:
  SAFEARRAY* array_;
  void* cells_ = nullptr;
};

}  // namespace vela
