#include "frame/container/tensors_base.h"

using vela::ConstElementSpan;
using vela::Contents;
using vela::ElementSpan;
using vela::LayerShape;

int TCAllTensorsBase::ResizeLayer(int, const LayerShape&, Contents) { return status::kUnsupported; }

int TCAllTensorsBase::ReadElements(int layer, std::size_t offset, const ElementSpan& to) {
  const ElementSpan elements = BufferOf(layer);
  if (!elements) return status::kUnsupported;
  vela::ConvertElements(elements.Part(offset, to.size), to);
  return status::kOk;
}

int TCAllTensorsBase::StoreElements(int layer, std::size_t offset, const ConstElementSpan& from) {
  const ElementSpan elements = BufferOf(layer);
  if (!elements) return status::kUnsupported;
  vela::ConvertElements(from, elements.Part(offset, from.size));
  return status::kOk;
}

void TCAllTensorsBase::AnnounceChange(int) { SetModify(1); }
