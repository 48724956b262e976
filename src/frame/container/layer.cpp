#include "frame/container/layer.h"

namespace vela {

bool IsNumeric(const Layer& layer) {
  return WithElementType(layer.TypeId(), []<class T>() { return true; });
}

bool IsReal(const Layer& layer) {
  return WithElementType(layer.TypeId(), []<class T>() { return SimpleElement<T>; });
}

LayerElements::LayerElements(const Layer& layer) : layer_(layer), span_(layer.Buffer()) {
  if (span_) return;
  copy_.emplace(IsNumeric(layer) ? layer.TypeId() : unsigned{kTypeDouble}, layer.Size());
  span_ = copy_->Span();
  member::Check(layer.container->ReadElements(layer.number, 0, span_));
}

void LayerElements::Commit() const {
  if (copy_) member::Check(layer_.container->StoreElements(layer_.number, 0, span_));
  layer_.AnnounceChange();
}

void StoreResult(const Layer& target, const ConstElementSpan& elements) {
  target.Resize(elements.size, Contents::kDrop);
  member::Check(target.container->StoreElements(target.number, 0, elements));
  target.AnnounceChange();
}

}  // namespace vela
