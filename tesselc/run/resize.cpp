#include "tesselc/run/resize.h"

#include <limits>

#include "frame/interface/script_object.h"
#include "tesselc/run/member_call.h"
#include "tesselc/run/run.h"

namespace tesselc {
namespace {

class SetSize final : public Node {
 public:
  SetSize(ValuePtr<ObjectValue> object, std::vector<ValuePtr<std::int64_t>> sizes,
          SourceRange where)
      : object_(std::move(object)), sizes_(std::move(sizes)), where_(where) {}

  Flow Exec(Frame& frame) override {
    CallFrameLease call(*frame.run);
    for (auto& size : sizes_) {
      const std::int64_t value = size->Eval(frame);
      if (value < 0 || value > std::numeric_limits<int>::max()) {
        throw ScriptError(where_, status::kBadValue, "a size cannot be " + std::to_string(value));
      }
      call->AddInt(static_cast<int>(value));
    }
    const ObjectValue object = object_->Eval(frame);
    call->GetIndeces() = object.at;
    CallMethod(*object.object, "SetSize", *call, where_);
    return Flow::kNext;
  }

 private:
  ValuePtr<ObjectValue> object_;
  std::vector<ValuePtr<std::int64_t>> sizes_;
  SourceRange where_;
};

}  // namespace

NodePtr MakeSetSize(NodePtr object, std::vector<NodePtr> sizes, SourceRange where) {
  std::vector<ValuePtr<std::int64_t>> typed;
  for (NodePtr& size : sizes) typed.push_back(As<std::int64_t>(std::move(size)));
  return std::make_unique<SetSize>(As<ObjectValue>(std::move(object)), std::move(typed), where);
}

}  // namespace tesselc
