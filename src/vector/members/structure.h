// Order and size of a row: trimming, reordering, inserting, and what is kept beside the data.
#pragma once

#include <algorithm>

#include "kernel/compact.h"
#include "kernel/reorder.h"
#include "vector/element_argument.h"
#include "vector/typed_vector.h"

namespace vela {

// Elements are missing as they read as a double: a complex by its real part, a point by its x.
template <class T>
bool ReadsAsMissing(const T& element) {
  return ConvertValue<double>(element) == kMissingValue;
}

template <class T>
std::size_t CountLeadingMissing(std::span<const T> x) {
  if constexpr (SimpleElement<T>) {
    return kernel::CountLeadingMissing<T>(x);
  } else {
    return static_cast<std::size_t>(std::find_if_not(x.begin(), x.end(), ReadsAsMissing<T>) -
                                    x.begin());
  }
}

template <class T>
std::size_t CountTrailingMissing(std::span<const T> x) {
  if constexpr (SimpleElement<T>) {
    return kernel::CountTrailingMissing<T>(x);
  } else {
    return static_cast<std::size_t>(std::find_if_not(x.rbegin(), x.rend(), ReadsAsMissing<T>) -
                                    x.rbegin());
  }
}

template <class T>
std::size_t RemoveMissing(std::span<T> x) {
  if constexpr (SimpleElement<T>) {
    return kernel::RemoveMissing<T>(x);
  } else {
    return static_cast<std::size_t>(std::remove_if(x.begin(), x.end(), ReadsAsMissing<T>) -
                                    x.begin());
  }
}

}  // namespace vela

// TrimLeft(BOOL shift): unless shift is 0, moves the elements behind the leading missing values
// down over them. How many were removed; -1 for a row without data.
template <class T>
int TCAllVectorsBase<T>::TrimLeft(CTCall* call) {
  using namespace vela::member;
  return Run(call, Exactly(1), [&](Arguments& args) {
    const int row = this->Row(args);
    if (args.Int(0) == 0) return args.Return(0);
    RowAccess<T> access(*this, row);
    const std::span<T> elements = access.Elements();
    const std::span<T> data = elements.subspan(this->FirstOfData(row));
    if (data.empty()) return args.Return(-1);
    const std::size_t removed = vela::CountLeadingMissing<T>(data);
    if (removed > 0) {
      std::copy(data.begin() + static_cast<std::ptrdiff_t>(removed), data.end(), data.begin());
      Check(access.Commit());
      Check(this->RawResize(row, static_cast<std::int64_t>(elements.size() - removed)));
    }
    args.Return(static_cast<int>(removed));
  });
}

// TrimRight(BOOL delete): unless delete is 0, removes the trailing missing values. How many; -1 for
// a row without data.
template <class T>
int TCAllVectorsBase<T>::TrimRight(CTCall* call) {
  using namespace vela::member;
  return Run(call, Exactly(1), [&](Arguments& args) {
    const int row = this->Row(args);
    if (args.Int(0) == 0) return args.Return(0);
    const RowAccess<T> access(*this, row);
    const std::span<const T> elements = access.Elements();
    const std::span<const T> data = elements.subspan(this->FirstOfData(row));
    if (data.empty()) return args.Return(-1);
    const std::size_t removed = vela::CountTrailingMissing<T>(data);
    if (removed > 0) {
      Check(this->RawResize(row, static_cast<std::int64_t>(elements.size() - removed)));
      this->SetModify(1);
    }
    args.Return(static_cast<int>(removed));
  });
}

// Trim(): removes every missing value. 1; 0 for a row without data.
template <class T>
int TCAllVectorsBase<T>::Trim(CTCall* call) {
  using namespace vela::member;
  return Run(call, NoArguments(), [&](Arguments& args) {
    const int row = this->Row(args);
    RowAccess<T> access(*this, row);
    const std::size_t first = this->FirstOfData(row);
    const std::span<T> data = access.Elements().subspan(first);
    if (data.empty()) return args.Return(0);
    const std::size_t kept = first + vela::RemoveMissing<T>(data);
    if (kept < access.Elements().size()) {
      Check(access.Commit());
      Check(this->RawResize(row, static_cast<std::int64_t>(kept)));
    }
    args.Return(1);
  });
}

// Reorder(vector<uint> order): element k becomes the former element order[k]. 1; 0 when order is no
// permutation of the row's positions, which is found while elements are already being written, and
// 0 with nothing written when it has another size or element type.
template <class T>
int TCAllVectorsBase<T>::Reorder(CTCall* call) {
  using namespace vela::member;
  return Run(call, Exactly(1), [&](Arguments& args) {
    const int row = this->Row(args);
    if (!vela::IsVectorOf(args, 0, kTypeUnsignedInt)) return args.Return(0);
    const vela::VectorArgument order = vela::RequiredVector(args, 0);
    if (this->RowSize(row) < 2) return args.Return(1);
    const vela::RowElements positions(order);
    const vela::ElementsAs<unsigned> indices(positions.Run());
    RowAccess<T> access(*this, row);
    const bool ordered = vela::kernel::Reorder<T>(access.Elements(), indices.Span());
    Check(access.Commit());
    args.Return(ordered ? 1 : 0);
  });
}

template <class T>
void TCAllVectorsBase<T>::InsertElements(int row, std::size_t index, std::size_t count,
                                         const T& value) {
  const std::size_t size = this->RowSize(row);
  const auto grown = static_cast<std::int64_t>(std::max(size, index) + count);
  vela::member::Check(this->RawResize(row, grown));
  RowAccess<T> access(*this, row);
  const std::span<T> elements = access.Elements();
  if (index < size) {
    std::copy_backward(&elements[index], elements.data() + size, elements.data() + grown);
  }
  std::fill_n(&elements[index], count, value);
  vela::member::Check(access.Commit());
}

// InsertValue(value, int index, int count = 1): inserts count copies before index. 1, or 0 for an
// index outside 0 .. size; status 28 for a count below 1.
template <class T>
int TCAllVectorsBase<T>::InsertValue(CTCall* call) {
  using namespace vela::member;
  return Run(call, Between(2, 3), [&](Arguments& args) {
    const int row = this->Row(args);
    const T value = vela::ElementArgument<T>(args, 0);
    const int index = args.Int(1);
    const int count = args.Count() == 3 ? args.Int(2) : 1;
    if (count < 1) Fail(status::kOutOfRange);
    if (index < 0 || static_cast<std::size_t>(index) > this->RowSize(row)) return args.Return(0);
    InsertElements(row, static_cast<std::size_t>(index), static_cast<std::size_t>(count), value);
    args.Return(1);
  });
}

// GetName(string& name): the name of the host's data, which is empty for a vector of its own; 0.
template <class T>
int TCAllVectorsBase<T>::GetName(CTCall* call) {
  using namespace vela::member;
  return Run(call, Exactly(1), [&](Arguments& args) {
    this->Row(args);
    args.Set(0, "");
    args.Return(0);
  });
}

// GetOutputComment(string& comment): the text that SetOutputComment left with the vector; 0.
template <class T>
int TCAllVectorsBase<T>::GetOutputComment(CTCall* call) {
  using namespace vela::member;
  return Run(call, Exactly(1), [&](Arguments& args) {
    this->Row(args);
    args.Set(0, output_comment_.c_str());
    args.Return(0);
  });
}

// SetOutputComment(string comment): keeps the text with the vector, whatever its rows; a copy of
// the vector starts without one. 0.
template <class T>
int TCAllVectorsBase<T>::SetOutputComment(CTCall* call) {
  using namespace vela::member;
  return Run(call, Exactly(1), [&](Arguments& args) {
    this->Row(args);
    output_comment_ = args.Text(0);
    args.Return(0);
  });
}
