// What vectors, matrices and multi-dimensional arrays have in common: layers of elements.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "frame/container/automation_array.h"
#include "frame/container/element_span.h"
#include "frame/interface/data_source.h"
#include "frame/interface/tessel_object.h"
#include "frame/value_access.h"

namespace vela {

struct Layer;

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
//
// An operation of the host addresses an element of layer at->ObjectIndex(): status 2 for a layer
// that cannot be resolved, 28 outside the layers or elements, 290 for a negative element.
class TCAllTensorsBase : public vela::ValueAccess<TCAllTensorsBase, TesselCObject> {
 public:
  using ValueAccess::GetString;
  using ValueAccess::SetString;

  // --- Layers ---

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
  // Gives the layer this shape; new elements are zero, or cells without a value where the host
  // keeps them. With kDrop the contents become unspecified.
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
  // The elements as an automation array; as MakeArray.
  virtual CComVariant AsArray(int layer, const vela::ArrayLayout& layout);
  // The host's data that the layer is a view of; null for a layer of the container's own.
  virtual VeSourceData* SourceOf(int /*layer*/) const { return nullptr; }
  // Whether the host removed the data that the container was attached to. It has no layer then, and
  // what asks for one ends with status -1.
  virtual bool IsStale() const { return false; }
  // The status for a layer that there is not.
  int StatusOfNoLayer(int otherwise) const { return IsStale() ? int{status::kNoRow} : otherwise; }

  // --- For the host ---

  int IsSameTypeAndMemoryModel(const CScriptVelaObject* other) const override;
  unsigned GetTypeIDCheckIndex(const MSOINDICES* at) override;
  int GetArraySize() const override { return LayerCount(); }
  int IsValidElement(const MSOINDICES* at) override;
  int GetString(const MSOINDICES* at, CStringUTF8& text) override;
  int SetString(const MSOINDICES* at, const char* text) override;
  int GetDisplayElementEx(CStringUTF8& text, const MSOINDICES* at) override;
  int GetValueToBuffer(void* buffer, unsigned size, const MSOINDICES* at) override;
  // Address of layer 0's elements; status 13702 when they are not one buffer.
  int GetExternalData(void** address) override;
  // Every layer becomes empty.
  int ResetValue() override;
  // Bytes of the addressed layer.
  unsigned GetBufferSize(const MSOINDICES* at) override;
  // Lends the addressed layer. In debug mode the buffer is a copy with two guard bytes behind it;
  // ReleaseBufferMSO reports a write beyond the size and copies the elements back.
  int GetBufferMSO(const MSOINDICES* at, void** buffer) override;
  // As another element type: a converted copy, which the release converts back.
  int GetBufferMSOEx(const MSOINDICES* at, unsigned element_type, void** buffer) override;
  int ReleaseBufferMSO(const MSOINDICES* at, void* buffer) override;
  int Operate2(const MSOINDICES* at, unsigned op, const tagMSOOBJVECT& operand,
               unsigned options) override;
  // The addressed layer as an automation array, of two dimensions for a matrix; elements that have
  // no automation type as an array of variants. SetVariantArray makes the layer such an array's
  // elements, what is no value of the element type missing: status 8 for a value that is no array
  // of one or two dimensions. The operations on one value do so too where no element is addressed,
  // and set every element where the value is no array.
  int GetVariantArray(const MSOINDICES* at, VARIANT* value, int lower_bound) override;
  int SetVariantArray(const MSOINDICES* at, const VARIANT* value) override;
  int GetIntoVariant(const MSOINDICES* at, VARIANT* value) override;
  int SetFromVariant(const MSOINDICES* at, const VARIANT* value) override;

  template <class U>
  int Read(const MSOINDICES* at, U& value);
  template <class U>
  int Write(const MSOINDICES* at, const U& value);

 protected:
  // Status and place of what the indices address.
  int LocateLayer(const MSOINDICES* at, int& layer) const;
  int Locate(const MSOINDICES* at, int& layer, std::size_t& index) const;
  // The element that the record names inside the layer, which exists; the first without a name.
  virtual int IndexIn(int layer, const MSOINDICES* at, std::size_t& index) const;

  // --- Operators, each a part of Operate2; a status, or a Failure ---

  virtual bool IsOperation(unsigned code) const;
  virtual int OperateOnElement(const MSOINDICES* at, unsigned code, const tagMSOOBJVECT& operand);
  // With one value for every element of the layer.
  virtual int OperateWithValue(int layer, unsigned code, const tagMSOOBJVECT& operand);
  // With the layer of another container.
  virtual int OperateWith(int layer, unsigned code, const vela::Layer& operand, unsigned options);

 private:
  // A copy of a layer in external hands.
  struct LentBuffer {
    std::unique_ptr<std::byte[]> bytes;
    int layer;
    unsigned type_id;
    std::size_t size;
    vela::ElementSpan Elements() const { return {type_id, bytes.get(), size}; }
  };
  void* LendCopy(int layer, unsigned type_id);

  std::vector<LentBuffer> lent_;
};

extern template class vela::ValueAccess<TCAllTensorsBase, TesselCObject>;
