#include <algorithm>

#include "frame/container/container_arguments.h"
#include "frame/interface/missing_value.h"
#include "frame/library_state.h"
#include "vector/typed_vector.h"

namespace vela {

OwnedRows::OwnedRows(unsigned element_type, unsigned count)
    : element_type_(element_type), count_(static_cast<int>(count)) {
  rows_.reserve(count);
  for (unsigned row = 0; row < count; ++row) {
    rows_.push_back({ElementBuffer(ElementWidth(element_type))});
  }
}

OwnedRows::OwnedRows(const OwnedRows& other)
    : OwnedRows(other.element_type_, static_cast<unsigned>(other.rows_.size())) {
  for (std::size_t row = 0; row < rows_.size(); ++row) {
    if (!rows_[row].elements.CopyFrom(other.rows_[row].elements)) throw std::bad_alloc();
    rows_[row].lower = other.rows_[row].lower;
    rows_[row].size_fixed = other.rows_[row].size_fixed;
  }
}

int OwnedRows::Resize(int row, std::int64_t size, Contents contents) {
  ElementBuffer& elements = rows_[row].elements;
  const auto count = static_cast<std::size_t>(size);
  const bool done = size >= 0 && (contents == Contents::kKeep ? elements.Resize(count)
                                                              : elements.ResizeForOverwrite(count));
  return done ? status::kOk : status::kCannotResize;
}

int OwnedRows::Grow(int row, std::int64_t size) {
  const bool done = size >= 0 && rows_[row].elements.Grow(static_cast<std::size_t>(size));
  return done ? status::kOk : status::kCannotResize;
}

int OwnedRows::Reserve(int row, std::int64_t size) {
  const bool done = size >= 0 && rows_[row].elements.Reserve(static_cast<std::size_t>(size));
  return done ? status::kOk : status::kCannotResize;
}

int OwnedRows::ResizeWithLowerBound(int row, std::int64_t size, int lower) {
  if (lower < 0) return status::kOutOfRange;
  if (const int error = Resize(row, size, Contents::kKeep); error != status::kOk) return error;
  const ElementSpan elements = Elements(row);
  const auto end = static_cast<std::size_t>(std::min<std::int64_t>(lower, size));
  FillElements(elements.Part(0, end), ConstElementSpan(std::span(&kMissingValue, 1)));
  rows_[row].lower = lower;
  return status::kOk;
}

void InitialiseFromArguments(TCAllVectorNonTemplBase& vector, void** args) {
  if (args == nullptr || *args == nullptr) return;
  const int error =
      member::Run(static_cast<CTCall*>(*args), member::AtLeast(1), [&](member::Arguments& call) {
        const Layer source = RequiredVector(call, 0);
        return vector.OperateWithLayer(0, operation::kAssign, source, 0);
      });
  if (error != status::kOk) ReportError(status::kReportBadInitialiser, args);
}

}  // namespace vela
