#include "text/operand_text.h"

#include "frame/element_value.h"
#include "frame/interface/host_services.h"
#include "frame/interface/script_object.h"
#include "frame/scalar_operand.h"
#include "text/string_array.h"

namespace vela::text {
namespace {

CStringUTF8 PlainText(const tagMSOOBJVECT& operand) {
  switch (operand.type_word & kTypeIdMask) {
    case kTypeChar:
      return make_str_from_char(ConvertValue<char>(operand.plain));
    case kTypeFloat:
      return ValueText(ConvertValue<float>(operand.plain));
    case kTypeComplex:
      return ValueText(operand.plain);
    case kTypeInt64:
    case kTypeUnsignedInt64:
      return WithPlainOperand(operand, [](const auto& plain) { return ValueText(plain); });
    default:
      return ValueText(operand.plain.m_re);
  }
}

}  // namespace

int OperandText(const tagMSOOBJVECT& operand, CStringUTF8& text) {
  if (operand.object == nullptr) {
    text = PlainText(operand);
    return status::kOk;
  }
  const unsigned type = operand.object->GetTypeIDCheckIndex(&operand.indices);
  if (type != kTypeChar) return operand.object->GetString(&operand.indices, text);
  char ch = 0;
  const int error = operand.object->GetNumericValue(&operand.indices, ch);
  if (error == status::kOk) text = make_str_from_char(ch);
  return error;
}

std::vector<CStringUTF8> ElementTexts(const Layer& source) {
  if (const auto* strings = dynamic_cast<const TCVectorString*>(source.container)) {
    return strings->RowTexts(source.number);
  }
  const LayerElements elements(source);
  std::vector<CStringUTF8> texts;
  texts.reserve(elements.Span().size);
  WithElements(elements.Span(), [&]<class T>(std::span<T> values) {
    for (const T& value : values) texts.push_back(ValueText(value));
  });
  return texts;
}

double NumberOf(const CStringUTF8& text) { return VELAObj::ParleyStr2double(text.c_str()); }

}  // namespace vela::text
