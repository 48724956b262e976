#include "matrix/matrix_block.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

#include "platform/global_memory.h"

namespace vela {
namespace {

constexpr std::int64_t kMostBytes = std::numeric_limits<std::uint32_t>::max();
constexpr UINT kMemoryFlags = GMEM_MOVEABLE | GMEM_ZEROINIT;

HGLOBAL Global(MemoryHandle memory) { return static_cast<HGLOBAL>(memory); }

}  // namespace

int CheckShape(unsigned type_id, const LayerShape& shape) {
  constexpr std::int64_t kMost = std::numeric_limits<int>::max();
  const auto width = static_cast<std::int64_t>(ElementWidth(type_id));
  if (shape.rows < 0 || shape.cols < 0) return status::kFailed;
  if (shape.rows > kMost || shape.cols > kMost) return status::kTooLarge;
  const bool fits = shape.cols == 0 || shape.rows <= kMostBytes / width / shape.cols;
  return fits ? status::kOk : status::kTooLarge;
}

MatrixBlock::MatrixBlock(MatrixBlock&& other) noexcept
    : memory_(std::exchange(other.memory_, nullptr)),
      data_(std::exchange(other.data_, nullptr)),
      rows_(std::exchange(other.rows_, 0)),
      cols_(std::exchange(other.cols_, 0)),
      locks_(std::exchange(other.locks_, 0)),
      type_id_(other.type_id_) {}

MatrixBlock::~MatrixBlock() {
  if (memory_ == nullptr) return;
  GlobalUnlock(Global(memory_));
  GlobalFree(Global(memory_));
}

void MatrixBlock::Hold(MemoryHandle memory) {
  memory_ = memory;
  data_ = memory != nullptr ? GlobalLock(Global(memory)) : nullptr;
}

int MatrixBlock::Resize(std::int64_t rows, std::int64_t cols, Contents contents) {
  if (const int error = CheckShape(type_id_, {rows, cols}); error != status::kOk) return error;
  const bool stays = contents == Contents::kDrop && static_cast<std::size_t>(rows * cols) == Size();
  if (IsLocked() && !stays && (rows != rows_ || cols != cols_)) return status::kFailed;
  const bool moves = contents == Contents::kKeep && Size() > 0 && cols != cols_;
  return moves ? LayAnew(rows, cols) : Reallocate(rows, cols);
}

int MatrixBlock::Reallocate(std::int64_t rows, std::int64_t cols) {
  const std::size_t width = ElementWidth(type_id_);
  const std::size_t bytes = static_cast<std::size_t>(rows * cols) * width;
  if (bytes != Size() * width) {
    const HGLOBAL old = Global(memory_);
    if (old != nullptr) GlobalUnlock(old);
    if (bytes == 0) {
      GlobalFree(old);
      Hold(nullptr);
    } else {
      const HGLOBAL memory = old == nullptr ? GlobalAlloc(kMemoryFlags, bytes)
                                            : GlobalReAlloc(old, bytes, kMemoryFlags);
      Hold(memory != nullptr ? memory : old);
      if (memory == nullptr) return status::kFailed;
    }
  }
  rows_ = static_cast<int>(rows);
  cols_ = static_cast<int>(cols);
  return status::kOk;
}

int MatrixBlock::LayAnew(std::int64_t rows, std::int64_t cols) {
  MatrixBlock laid(type_id_);
  if (const int error = laid.Reallocate(rows, cols); error != status::kOk) return error;
  const std::size_t width = ElementWidth(type_id_);
  const std::size_t run = static_cast<std::size_t>(std::min<std::int64_t>(cols, cols_)) * width;
  const auto kept = std::min<std::int64_t>(rows, rows_);
  const auto* from = static_cast<const std::byte*>(data_);
  auto* to = static_cast<std::byte*>(laid.data_);
  for (std::int64_t row = 0; row < kept && run > 0; ++row) {
    std::memcpy(to, from, run);
    from += static_cast<std::size_t>(cols_) * width;
    to += static_cast<std::size_t>(cols) * width;
  }
  std::swap(memory_, laid.memory_);
  std::swap(data_, laid.data_);
  rows_ = std::exchange(laid.rows_, rows_);
  cols_ = std::exchange(laid.cols_, cols_);
  return status::kOk;
}

void MatrixBlock::CopyFrom(const MatrixBlock& other) {
  if (Resize(other.rows_, other.cols_, Contents::kDrop) != status::kOk) throw std::bad_alloc();
  if (Size() > 0) std::memcpy(data_, other.data_, Elements().Bytes().size());
}

}  // namespace vela
