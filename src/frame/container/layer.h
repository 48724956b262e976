// A layer of a container as a member addresses it or is given it, and its elements.
#pragma once

#include <algorithm>
#include <memory>
#include <optional>
#include <span>

#include "frame/container/element_span.h"
#include "frame/container/tensors_base.h"
#include "frame/member/arguments.h"

namespace vela {

// Refers to a layer without owning it; a default one refers to none. Equal layers are the same
// elements, be it that two containers are attached to one column of the host. What fails ends the
// handler with its status.
struct Layer {
  TCAllTensorsBase* container = nullptr;
  int number = 0;

  explicit operator bool() const { return container != nullptr; }
  bool operator==(const Layer& other) const {
    if (container == other.container) return number == other.number;
    return container != nullptr && other.container != nullptr && SharesSource(other);
  }

  unsigned TypeId() const { return container->GetInternalDataTypeID(); }
  std::size_t Size() const { return container->SizeOf(number); }
  LayerShape Shape() const { return container->ShapeOf(number); }
  int LowerBound() const { return container->LowerBoundOf(number); }
  // Where the data begins: at the lower bound, which may be the end.
  std::size_t FirstOfData() const {
    return std::min(static_cast<std::size_t>(std::max(LowerBound(), 0)), Size());
  }
  ElementSpan Buffer() const { return container->BufferOf(number); }
  MSOINDICES Indices() const { return MSOINDICES::Object(number); }

  void Resize(const LayerShape& shape, Contents contents = Contents::kKeep) const {
    member::Check(container->ResizeLayer(number, shape, contents));
  }
  void Resize(std::size_t size, Contents contents = Contents::kKeep) const {
    Resize(LayerShape::OneRow(static_cast<std::int64_t>(size)), contents);
  }
  void AnnounceChange() const { container->AnnounceChange(number); }

 private:
  bool SharesSource(const Layer& other) const;
};

// Whether the layer's elements are numbers of any type, or real ones.
inline bool IsNumeric(const Layer& layer) { return ElementWidth(layer.TypeId()) != 0; }
bool IsReal(const Layer& layer);

// A layer's elements in memory: its own buffer, or a copy that Commit writes back. Elements that
// are no numbers (texts) are copied as doubles. Throws std::bad_alloc.
class LayerElements {
 public:
  explicit LayerElements(const Layer& layer) : layer_(layer), span_(layer.Buffer()) {
    if (!span_) [[unlikely]]
      Copy();
  }
  // For numbers only: ends the handler with the status for elements that are none.
  LayerElements(const Layer& layer, int otherwise) : layer_(layer), span_(layer.Buffer()) {
    if (span_) [[likely]]
      return;
    if (!IsNumeric(layer)) member::Fail(otherwise);
    Copy();
  }

  const ElementSpan& Span() const { return span_; }
  template <class T>
  std::span<T> As() const {
    return span_.As<T>();
  }
  // The elements from the lower bound on.
  ElementSpan Data() const {
    const int lower = layer_.LowerBound();
    if (lower <= 0) [[likely]]
      return span_;
    return span_.From(std::min(static_cast<std::size_t>(lower), span_.size));
  }

  // Writes a copy back and announces the change.
  void Commit() const;

 private:
  void Copy();

  Layer layer_;
  ElementSpan span_;
  std::unique_ptr<std::byte[]> copy_;
};

// A layer's elements to read as another type: its own buffer when it is of that type, else a
// converted copy. With own_copy always a copy, for a layer that changes meanwhile.
class ConvertedElements {
 public:
  ConvertedElements(const Layer& layer, unsigned type_id, bool own_copy = false)
      : span_(layer.Buffer()) {
    if (span_.type_id != type_id || own_copy) Copy(layer, type_id);
  }
  const ConstElementSpan& Span() const { return span_; }

 private:
  void Copy(const Layer& layer, unsigned type_id);

  ConstElementSpan span_;
  std::optional<ElementMemory> copy_;
};

// The same for a type that is known.
template <class T>
class LayerValues : private ConvertedElements {
 public:
  explicit LayerValues(const Layer& layer, bool own_copy = false)
      : ConvertedElements(layer, kElement<T>.type_id, own_copy) {}
  std::span<const T> Span() const { return ConvertedElements::Span().As<T>(); }
};

// Makes target these elements, converted; in one row without a shape.
void StoreResult(const Layer& target, const LayerShape& shape, const ConstElementSpan& elements);
inline void StoreResult(const Layer& target, const ConstElementSpan& elements) {
  StoreResult(target, LayerShape::OneRow(static_cast<std::int64_t>(elements.size)), elements);
}

// Gives target this shape and elements that compute(ElementSpan) writes as type_id: in place where
// they are one buffer of that type that compute does not read, else through memory of its own, so
// that target stays as it is until compute has returned.
template <class Compute>
void FillLayer(const Layer& target, unsigned type_id, const LayerShape& shape, bool is_read,
               Compute&& compute) {
  if (target.TypeId() == type_id && !is_read) {
    target.Resize(shape, Contents::kDrop);
    const LayerElements elements(target);
    compute(elements.Span());
    return elements.Commit();
  }
  const ElementMemory results(type_id, static_cast<std::size_t>(shape.Size()));
  compute(results.Span());
  StoreResult(target, shape, results.Span());
}

// The same for size elements in one row, as a std::span<T>.
template <class T, class Compute>
void FillLayer(const Layer& target, std::size_t size, bool is_read, Compute&& compute) {
  FillLayer(target, kElement<T>.type_id, LayerShape::OneRow(static_cast<std::int64_t>(size)),
            is_read, [&](const ElementSpan& elements) { compute(elements.As<T>()); });
}

}  // namespace vela
