#include "frame/container/layer.h"

namespace vela {

bool Layer::SharesSource(const Layer& other) const {
  const VeSourceData* const source = container->SourceOf(number);
  return source != nullptr && source == other.container->SourceOf(other.number);
}

bool IsReal(const Layer& layer) {
  return WithElementType(layer.TypeId(), []<class T>() { return SimpleElement<T>; });
}

void LayerElements::Copy() {
  const unsigned type_id = IsNumeric(layer_) ? layer_.TypeId() : unsigned{kTypeDouble};
  const std::size_t size = layer_.Size();
  copy_ = std::make_unique_for_overwrite<std::byte[]>(size * ElementWidth(type_id));
  span_ = {type_id, copy_.get(), size};
  member::Check(layer_.container->ReadElements(layer_.number, 0, span_));
}

void LayerElements::Commit() const {
  if (copy_) member::Check(layer_.container->StoreElements(layer_.number, 0, span_));
  layer_.AnnounceChange();
}

void ConvertedElements::Copy(const Layer& layer, unsigned type_id) {
  copy_.emplace(type_id, layer.Size());
  member::Check(layer.container->ReadElements(layer.number, 0, copy_->Span()));
  span_ = copy_->Span();
}

void StoreResult(const Layer& target, const LayerShape& shape, const ConstElementSpan& elements) {
  target.Resize(shape, Contents::kDrop);
  member::Check(target.container->StoreElements(target.number, 0, elements));
  target.AnnounceChange();
}

}  // namespace vela
