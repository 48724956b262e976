// What a vector keeps that is attached to a column of the host.
#pragma once

#include <cstdint>

#include "frame/container/element_span.h"
#include "frame/interface/data_source.h"

namespace vela {

// Whether a column of this type can be attached to elements of that type: the elements hold every
// value that the column can have, so that a value that is read and written back is what it was.
// Texts and mixtures are read as doubles.
bool HoldsColumn(unsigned element_type, unsigned column_type);

// A reference to the column, or to none. The elements are the column's buffer where its type is the
// vector's; otherwise every access converts. Nothing is kept from one call to the next, so that the
// host may resize and remove the column in between.
//
// The operations on elements are those of the vector. While nothing is attached there are no
// elements, and changing their number fails with status 1; when the column was removed everything
// fails with status -1.
class DataBinding {
 public:
  explicit DataBinding(unsigned element_type) : element_type_(element_type) {}

  bool IsAttached() const { return static_cast<bool>(data_); }
  bool IsStale() const { return data_ && !data_->IsAlive(); }
  // Null while nothing is attached, and when the column was removed.
  VeData* Data() const { return IsStale() ? nullptr : data_.Get(); }

  // False, with everything as it was, for no column and for one that HoldsColumn refuses.
  bool Attach(VeData* data);
  void Detach() { data_ = {}; }
  // Attaches to data of its own with the elements that the other one has now, or to nothing when
  // that has none. Throws std::bad_alloc.
  void AttachCopy(const DataBinding& other);

  std::int64_t Size() const { return Data() != nullptr ? data_->GetSize() : 0; }
  int LowerBound() const {
    return Data() != nullptr ? static_cast<int>(data_->GetLowerBound()) : 0;
  }
  ElementSpan Buffer() const;
  int Resize(std::int64_t size);
  // The elements below lower become the missing value. 28 for a lower bound outside 0 .. size.
  int ResizeWithLowerBound(std::int64_t size, std::int64_t lower);
  // Elements from offset on, which there are.
  int Read(std::size_t offset, const ElementSpan& to) const;
  // In a column of texts or of a mixture one element at a time: status 12291 for more, so that no
  // text is lost to a member that moves numbers.
  int Store(std::size_t offset, const ConstElementSpan& from);
  void AnnounceChange();

 private:
  unsigned element_type_;
  VeRef<VeData> data_;
};

}  // namespace vela
