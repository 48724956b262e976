#include "vector/data_binding.h"

#include <algorithm>
#include <array>
#include <limits>
#include <new>

#include "frame/element_types.h"
#include "frame/interface/missing_value.h"

namespace vela {
namespace {

template <class To, class From>
constexpr bool Holds() {
  if constexpr (std::is_same_v<To, From>) return true;
  if constexpr (!SimpleElement<To> || !SimpleElement<From>) {
    return false;
  } else {
    using ToLimits = std::numeric_limits<To>;
    using FromLimits = std::numeric_limits<From>;
    if constexpr (!IntegerElement<From> && IntegerElement<To>) return false;
    // A floating type holds the whole numbers up to its digits.
    return ToLimits::digits >= FromLimits::digits &&
           (ToLimits::is_signed || !FromLimits::is_signed);
  }
}

bool HasTexts(unsigned column_type) {
  return column_type == kTypeString || column_type == kTypeVariant;
}

// The numbers of a column with a buffer.
ElementSpan BufferOf(VeData& data) {
  void* const elements = data.GetBuffer();
  if (elements == nullptr) return {};
  return {data.GetElementType(), elements, static_cast<std::size_t>(data.GetSize())};
}

// Calls move(offset, numbers) for doubles that stand for the elements, some at a time.
template <class Move>
void InPieces(std::size_t size, Move&& move) {
  std::array<double, 512> numbers;
  for (std::size_t done = 0; done < size;) {
    const std::size_t count = std::min(size - done, numbers.size());
    move(done, std::span<double>(numbers.data(), count));
    done += count;
  }
}

void ReadNumbers(VeData& data, std::size_t offset, const ElementSpan& to) {
  InPieces(to.size, [&](std::size_t at, std::span<double> numbers) {
    data.ReadNumbers(static_cast<std::int64_t>(offset + at),
                     static_cast<std::int64_t>(numbers.size()), numbers.data());
    ConvertElements(ConstElementSpan(numbers), to.Part(at, numbers.size()));
  });
}

bool WriteNumbers(VeData& data, std::size_t offset, const ConstElementSpan& from) {
  bool done = true;
  InPieces(from.size, [&](std::size_t at, std::span<double> numbers) {
    ConvertElements(from.Part(at, numbers.size()), ElementSpan(numbers));
    done = done && data.WriteNumbers(static_cast<std::int64_t>(offset + at),
                                     static_cast<std::int64_t>(numbers.size()), numbers.data());
  });
  return done;
}

}  // namespace

bool HoldsColumn(unsigned element_type, unsigned column_type) {
  if (HasTexts(column_type)) return element_type == kTypeDouble;
  return WithElementType(element_type, [&]<class To>() {
    return WithElementType(column_type, []<class From>() { return Holds<To, From>(); });
  });
}

bool DataBinding::Attach(VeData* data) {
  if (data == nullptr || !data->IsAlive()) return false;
  if (!HoldsColumn(element_type_, data->GetElementType())) return false;
  data_ = VeRef<VeData>(data);
  return true;
}

void DataBinding::AttachCopy(const DataBinding& other) {
  if (other.Data() == nullptr) return Detach();
  const std::int64_t size = other.Size();
  const VeRef<VeTempDataset> copy = VeTempDataset::Create(element_type_, size);
  if (!copy) throw std::bad_alloc();
  Attach(copy.Get());
  copy->SetLowerBound(other.LowerBound());
  if (size > 0) other.Read(0, Buffer());
}

ElementSpan DataBinding::Buffer() const {
  if (Data() == nullptr || data_->GetElementType() != element_type_) return {};
  // A column without rows need not have a buffer.
  if (data_->GetSize() == 0) return {element_type_, nullptr, 0};
  return BufferOf(*data_);
}

int DataBinding::Resize(std::int64_t size) {
  if (IsStale()) return status::kNoRow;
  if (!IsAttached()) return status::kFailed;
  if (size == data_->GetSize()) return status::kOk;
  if (size < 0 || size > std::numeric_limits<int>::max()) return status::kCannotResize;
  return data_->SetSize(size) ? status::kOk : status::kCannotResize;
}

int DataBinding::ResizeWithLowerBound(std::int64_t size, std::int64_t lower) {
  if (IsStale()) return status::kNoRow;
  if (lower < 0 || lower > size) return status::kOutOfRange;
  if (const int error = Resize(size); error != status::kOk) return error;
  if (!data_->SetLowerBound(lower)) return status::kOutOfRange;
  const ConstElementSpan missing(std::span(&kMissingValue, 1));
  for (std::int64_t row = 0; row < lower; ++row) {
    if (const int error = Store(static_cast<std::size_t>(row), missing); error != status::kOk) {
      return error;
    }
  }
  return status::kOk;
}

int DataBinding::Read(std::size_t offset, const ElementSpan& to) const {
  if (IsStale()) return status::kNoRow;
  if (to.size == 0 || !IsAttached()) return status::kOk;
  if (const ElementSpan elements = BufferOf(*data_)) {
    ConvertElements(elements.Part(offset, to.size), to);
  } else {
    ReadNumbers(*data_, offset, to);
  }
  return status::kOk;
}

int DataBinding::Store(std::size_t offset, const ConstElementSpan& from) {
  if (IsStale()) return status::kNoRow;
  if (from.size == 0 || !IsAttached()) return status::kOk;
  if (const ElementSpan elements = BufferOf(*data_)) {
    ConvertElements(from, elements.Part(offset, from.size));
    return status::kOk;
  }
  if (from.size > 1 && HasTexts(data_->GetElementType())) return status::kUnsupported;
  return WriteNumbers(*data_, offset, from) ? status::kOk : status::kUnsupported;
}

void DataBinding::AnnounceChange() {
  if (Data() != nullptr) data_->OnChange(0, data_->GetSize());
}

}  // namespace vela
