#include "tesselc/run/range_loop.h"

#include "frame/interface/script_object.h"
#include "tesselc/run/interrupt.h"
#include "tesselc/run/objects.h"

namespace tesselc {
namespace {

class RangeLoopNode final : public Node {
 public:
  explicit RangeLoopNode(RangeLoop loop)
      : loop_(std::move(loop)), container_(As<ObjectValue>(std::move(loop_.container))) {}

  Flow Exec(Frame& frame) override {
    const ObjectValue container = container_->Eval(frame);
    frame.At<ObjectReference>(loop_.object) = {container.object, container.at};
    const auto reference = loop_.element ? loop_.element->MakeReference() : nullptr;
    for (std::int64_t i = 0; i < Size(container); ++i) {
      GoTo(i, container, frame);
      if (reference) {
        reference->Bind(frame);
        frame.At<ScalarReference>(loop_.reference) = {nullptr, reference.get()};
      } else {
        loop_.load->Exec(frame);
      }
      CheckInterrupt();
      const Flow flow = loop_.body->Exec(frame);
      // The body may have made the container shorter than the element's index.
      if (loop_.store && i < Size(container)) loop_.store->Exec(frame);
      if (flow == Flow::kBreak) break;
      if (flow == Flow::kReturn) return flow;
    }
    return Flow::kNext;
  }

 private:
  struct Shape {
    int rows = 0, columns = 0;
  };
  static Shape ShapeOf(const ObjectValue& matrix) {
    Shape shape;
    matrix.object->GetMatrixDimensions(&shape.rows, &shape.columns, matrix.At());
    return shape;
  }

  void GoTo(std::int64_t i, const ObjectValue& container, Frame& frame) const {
    std::int64_t position = i;
    if (loop_.walk == Walk::kCells) {
      const std::int64_t columns = ShapeOf(container).columns;
      position = i / columns;
      frame.At<std::int64_t>(loop_.column) = i % columns;
    }
    frame.At<std::int64_t>(loop_.position) = position;
  }

  std::int64_t Size(const ObjectValue& container) const {
    if (loop_.walk == Walk::kObjects) return container.object->GetArraySize();
    if (loop_.walk == Walk::kCells) {
      const Shape shape = ShapeOf(container);
      return std::int64_t{shape.rows} * shape.columns;
    }
    int upper = -1;
    CheckStatus(container.object->GetUpperBound(container.At(), upper), "get the size",
                loop_.where);
    return std::int64_t{upper} + 1;
  }

  RangeLoop loop_;
  ValuePtr<ObjectValue> container_;
};

}  // namespace

NodePtr MakeRangeLoop(RangeLoop loop) { return std::make_unique<RangeLoopNode>(std::move(loop)); }

}  // namespace tesselc
