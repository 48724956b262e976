// What vectors, matrices and multi-dimensional arrays have in common: layers of elements.
#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/container/element_span.h"
#include "frame/interface/tessel_object.h"

namespace vela {

// Rows by columns, row-major; a vector is one row. Sizes are computed in 64 bits.
struct LayerShape {
  std::int64_t rows = 1;
  std::int64_t cols = 0;

  static constexpr LayerShape OneRow(std::int64_t size) { return {1, size}; }
  constexpr std::int64_t Size() const { return rows * cols; }
  constexpr bool operator==(const LayerShape&) const = default;
};

enum class Contents { kKeep, kDrop };

}  // namespace vela

// A layer is one block of elements of one type: a row of a vector object (which scripts declare as
// `vector v[3]`, of three rows), a layer of a matrix, a view of host data. Members work on one
// layer at a time, and everything that helps them is written over the operations below, so that it
// serves every kind of container. Layers are numbered 0 .. LayerCount() - 1; the operations that
// take a number need one of these. The defaults are those of a container that has no layers.
class TCAllTensorsBase : public TesselCObject {
 public:
  virtual int LayerCount() const { return 0; }
  virtual vela::LayerShape ShapeOf(int /*layer*/) const { return {}; }
  virtual std::size_t SizeOf(int layer) const {
    return static_cast<std::size_t>(ShapeOf(layer).Size());
  }
  // The first element that is valid; the elements below are no part of the data.
  virtual int LowerBoundOf(int /*layer*/) const { return 0; }
  // The elements when they are one buffer that may be written in place, else an empty span. Valid
  // until the layer's next change of size.
  virtual vela::ElementSpan BufferOf(int /*layer*/) { return {}; }
  // Gives the layer this shape; new elements are zero. With kDrop the contents become unspecified.
  // A status; on failure the layer is as it was. A vector takes the elements of any shape in one
  // row.
  virtual int ResizeLayer(int layer, const vela::LayerShape& shape, vela::Contents contents);
  // As ResizeLayer to one row of size elements, keeping what fits, but may keep memory for more, so
  // that growing by one at a time is linear overall.
  virtual int GrowLayer(int layer, std::int64_t size) {
    return ResizeLayer(layer, vela::LayerShape::OneRow(size), vela::Contents::kKeep);
  }
  // Makes room for size elements, so that growing up to it cannot fail for want of memory.
  virtual int ReserveLayer(int /*layer*/, std::int64_t /*size*/) { return status::kOk; }
  // Copy elements from offset on, row-major and converted, out of the layer or into it; it has them
  // all. The memory may be the layer's own where the types are equal. A status.
  virtual int ReadElements(int layer, std::size_t offset, const vela::ElementSpan& to);
  virtual int StoreElements(int layer, std::size_t offset, const vela::ConstElementSpan& from);
  // Tells whoever shows the layer that it changed.
  virtual void AnnounceChange(int layer);
};
