#include "host/data/number_store.h"

#include <algorithm>
#include <new>
#include <stdexcept>

#include "frame/interface/host_services.h"
#include "frame/interface/missing_value.h"
#include "host/data/number_types.h"

namespace vela::host {
namespace {

void FillNew(unsigned type_id, void* elements, std::int64_t count) {
  if (type_id == kTypeDouble) {
    std::fill_n(static_cast<double*>(elements), count, kMissingValue);
  } else if (type_id == kTypeComplex) {
    std::fill_n(static_cast<OneTCcomplex*>(elements), count,
                OneTCcomplex{kMissingValue, kMissingValue});
  }
}

}  // namespace

NumberStore::NumberStore(unsigned type_id) : type_id_(type_id), width_(PLTTypeToSizeOf(type_id)) {}

bool NumberStore::SetSize(std::int64_t size) try {
  if (size < 0 || size > kMostElements) return false;
  bytes_.resize(static_cast<std::size_t>(size) * width_);
  if (size > size_) {
    FillNew(type_id_, bytes_.data() + static_cast<std::size_t>(size_) * width_, size - size_);
  }
  size_ = size;
  return true;
} catch (const std::bad_alloc&) {
  return false;
} catch (const std::length_error&) {
  return false;
}

}  // namespace vela::host
