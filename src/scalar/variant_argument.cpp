#include "scalar/variant_argument.h"

#include "frame/container/container_arguments.h"
#include "frame/interface/automation_values.h"
#include "frame/scalar_operand.h"

namespace vela {
namespace {

CComVariant ObjectVariant(const tagMSOOBJVECT& source) {
  // The copy of a variant tells why it failed.
  if (const VARIANT* value = source.object->GetVariantAddress(&source.indices)) return *value;
  CComVariant made;
  member::Check(source.object->GetIntoVariant(&source.indices, &made));
  return made;
}

}  // namespace

CComVariant VariantArgument(member::Arguments& args, unsigned arg) {
  CComVariant made;
  if (args.IsNull(arg)) member::Fail(status::kBadValue);
  if (args.TypeId(arg) == kTypeStringLiteral) {
    member::Check(VariantOfText(args.Text(arg), made));
    return made;
  }
  tagMSOOBJVECT source;
  if (args.Call().GetArgumentObject(static_cast<int>(arg), source) == status::kOk &&
      source.object != nullptr) {
    return ObjectVariant(source);
  }
  const bool is_number = VisitElementType(args.TypeId(arg), [&]<class T>() {
    made = VariantOf(ElementArgument(args, arg, kElement<T>.type_id).template As<T>());
  });
  if (!is_number) member::Fail(status::kBadValue);
  return made;
}

CComVariant OperandVariant(const tagMSOOBJVECT& operand) {
  if (operand.object != nullptr) return ObjectVariant(operand);
  CComVariant made;
  VisitElementType(operand.type_word & kTypeIdMask, [&]<class T>() {
    made = WithPlainOperand(operand,
                            [](const auto& plain) { return VariantOf(ConvertValue<T>(plain)); });
  });
  return made;
}

}  // namespace vela
