// Grey-scale morphology with flat structuring elements.
#include "kernel/morphology.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <optional>

#include "frame/container/container_arguments.h"
#include "matrix/matrix_base.h"

using vela::Layer;
using vela::LayerShape;
using vela::kernel::MatrixSpan;
using vela::kernel::StructuringElement;
using vela::member::Arguments;
using vela::member::Exactly;
using vela::member::Fail;
using vela::member::Run;
namespace kernel = vela::kernel;

namespace {

// The element that a matrix of doubles of any shape or a vector of k * k values describes; nothing
// for any other argument and for an element without members.
std::optional<StructuringElement> ElementOf(Arguments& args, unsigned arg) {
  const unsigned type_word = args.TypeId(arg);
  const bool is_matrix = (type_word & kFlagAnyMatrix) != 0;
  if (!is_matrix && (type_word & kFlagAnyVector) == 0) return std::nullopt;
  const Layer layer = is_matrix ? vela::RequiredMatrix(args, arg) : vela::RequiredVector(args, arg);
  if (is_matrix ? layer.TypeId() != kTypeDouble : !vela::IsReal(layer)) return std::nullopt;
  LayerShape shape = layer.Shape();
  if (!is_matrix) {
    const auto side = static_cast<std::int64_t>(std::lround(std::sqrt(shape.cols)));
    if (side * side != shape.cols) return std::nullopt;
    shape = {side, side};
  }
  const vela::LayerValues<double> values(layer);
  StructuringElement element{
      static_cast<std::size_t>(shape.rows), static_cast<std::size_t>(shape.cols), {}};
  std::ranges::transform(values.Span(), std::back_inserter(element.mask),
                         [](double value) { return value != 0; });
  if (std::ranges::count(element.mask, 1) == 0) return std::nullopt;
  return element;
}

}  // namespace

// The members that pass floating elements to routine(x, element). 0, or 1 for an element that
// cannot be used. The change is not announced.
template <class Routine>
int TCAllMatrixNonTemplBase::Morphology(CTCall* call, Routine&& routine) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    const View view = AddressedView(args);
    vela::WithMatrix(
        *view, [&]<class T>(MatrixSpan<T> x) requires vela::FloatingElement<T> {
          const auto element = ElementOf(args, 0);
          if (element) routine(x, *element);
          args.Return(element ? 0 : 1);
        });
  });
}

// ImDilate(element): each element becomes the largest of its neighbours.
int TCAllMatrixNonTemplBase::ImDilate(CTCall* call) {
  return Morphology(call,
                    [](auto x, const StructuringElement& element) { kernel::Dilate(x, element); });
}

// ImErode(element): the smallest.
int TCAllMatrixNonTemplBase::ImErode(CTCall* call) {
  return Morphology(call,
                    [](auto x, const StructuringElement& element) { kernel::Erode(x, element); });
}

// ImOpen(element): erosion, then dilation.
int TCAllMatrixNonTemplBase::ImOpen(CTCall* call) {
  return Morphology(call, [](auto x, const StructuringElement& element) {
    kernel::Erode(x, element);
    kernel::Dilate(x, element);
  });
}

// ImClose(element): dilation, then erosion.
int TCAllMatrixNonTemplBase::ImClose(CTCall* call) {
  return Morphology(call, [](auto x, const StructuringElement& element) {
    kernel::Dilate(x, element);
    kernel::Erode(x, element);
  });
}
