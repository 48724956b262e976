// The numbers of a column: one contiguous, growable buffer of elements of a type.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace vela::host {

class NumberStore {
 public:
  // New elements are written, so that the system gives memory for all that is asked for: a slip of
  // a script must not take the whole machine's.
  static constexpr std::int64_t kMostElements = std::int64_t{1} << 27;

  // type_id is one of VisitNumberType.
  explicit NumberStore(unsigned type_id);

  unsigned TypeId() const { return type_id_; }
  std::int64_t Size() const { return size_; }
  void* Data() { return bytes_.data(); }
  const void* Data() const { return bytes_.data(); }
  // Keeps what fits; new elements are the missing value where they are double or complex, else
  // zero. False, with nothing changed, for a size that cannot be had. Growing by one at a time is
  // linear overall.
  bool SetSize(std::int64_t size);

 private:
  unsigned type_id_;
  std::size_t width_;
  std::int64_t size_ = 0;
  std::vector<std::byte> bytes_;
};

}  // namespace vela::host
