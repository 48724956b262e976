#include "tesselc/run/text.h"

#include <algorithm>
#include <charconv>
#include <system_error>

#include "frame/interface/type_base.h"
#include "tesselc/run/display.h"
#include "tesselc/run/number_conversion.h"
#include "tesselc/run/operators.h"

namespace tesselc {
namespace {

class Concatenation final : public Expr<Concatenation, CStringUTF8> {
 public:
  Concatenation(ValuePtr<CStringUTF8> left, ValuePtr<CStringUTF8> right)
      : left_(std::move(left)), right_(std::move(right)) {}
  CStringUTF8 Eval(Frame& frame) override {
    CStringUTF8 text = left_->Eval(frame);
    text += right_->Eval(frame).View();
    return text;
  }

 private:
  ValuePtr<CStringUTF8> left_, right_;
};

class TextOfChar final : public Expr<TextOfChar, CStringUTF8> {
 public:
  explicit TextOfChar(ValuePtr<char> character) : character_(std::move(character)) {}
  CStringUTF8 Eval(Frame& frame) override {
    const char character = character_->Eval(frame);
    return CStringUTF8(&character, 1);
  }

 private:
  ValuePtr<char> character_;
};

template <class T>
class NumberOfText final : public Expr<NumberOfText<T>, T> {
 public:
  explicit NumberOfText(ValuePtr<CStringUTF8> text) : text_(std::move(text)) {}
  T Eval(Frame& frame) override {
    const CStringUTF8 text = text_->Eval(frame);
    if constexpr (std::is_integral_v<T> && sizeof(T) == 8) {  // a double would round it
      T value = 0;
      const std::string_view digits = Trimmed(text.View());
      const auto [rest, error] =
          std::from_chars(digits.data(), digits.data() + digits.size(), value);
      if (error == std::errc() && rest == digits.data() + digits.size()) return value;
    }
    return ConvertScalar<T>(VELAObj::ParleyStr2double(text.c_str()));
  }

 private:
  static std::string_view Trimmed(std::string_view text) {
    constexpr const char* kSpace = " \t\n\r\v\f";
    text.remove_prefix(std::min(text.find_first_not_of(kSpace), text.size()));
    return text.substr(0, text.find_last_not_of(kSpace) + 1);
  }

  ValuePtr<CStringUTF8> text_;
};

template <class T>
class TextOfNumber final : public Expr<TextOfNumber<T>, CStringUTF8> {
 public:
  explicit TextOfNumber(ValuePtr<T> number) : number_(std::move(number)) {}
  CStringUTF8 Eval(Frame& frame) override {
    std::string text;
    AppendDisplay(text, Shown(number_->Eval(frame)));
    return CStringUTF8(std::string_view(text));
  }

 private:
  static auto Shown(const T& value) {
    if constexpr (std::is_integral_v<T>) {
      return static_cast<std::conditional_t<std::is_signed_v<T>, std::int64_t, std::uint64_t>>(
          value);
    } else {
      return value;
    }
  }

  ValuePtr<T> number_;
};

template <class Op>
class TextComparison final : public Expr<TextComparison<Op>, int> {
 public:
  TextComparison(ValuePtr<CStringUTF8> left, ValuePtr<CStringUTF8> right)
      : left_(std::move(left)), right_(std::move(right)) {}
  int Eval(Frame& frame) override {
    const CStringUTF8 left = left_->Eval(frame);
    const CStringUTF8 right = right_->Eval(frame);
    return Op::Apply(left.View().compare(right.View()), 0);
  }

 private:
  ValuePtr<CStringUTF8> left_, right_;
};

template <class Op>
NodePtr ComparisonOf(NodePtr left, NodePtr right) {
  return std::make_unique<TextComparison<Op>>(As<CStringUTF8>(std::move(left)),
                                              As<CStringUTF8>(std::move(right)));
}

}  // namespace

NodePtr MakeConcatenation(NodePtr left, NodePtr right) {
  return std::make_unique<Concatenation>(As<CStringUTF8>(std::move(left)),
                                         As<CStringUTF8>(std::move(right)));
}

NodePtr MakeTextOfChar(NodePtr character) {
  return std::make_unique<TextOfChar>(As<char>(std::move(character)));
}

NodePtr MakeNumberOfText(TypeName type, NodePtr text) {
  return WithNumber(type, [&](auto t) -> NodePtr {
    using T = typename decltype(t)::type;
    return std::make_unique<NumberOfText<T>>(As<CStringUTF8>(std::move(text)));
  });
}

NodePtr MakeTextOfNumber(TypeName type, NodePtr number) {
  return WithScalar(type, [&](auto t) -> NodePtr {
    using T = typename decltype(t)::type;
    return std::make_unique<TextOfNumber<T>>(As<T>(std::move(number)));
  });
}

NodePtr MakeTextComparison(BinaryOperator op, NodePtr left, NodePtr right) {
  switch (op) {
    case BinaryOperator::kLess:
      return ComparisonOf<LessOp>(std::move(left), std::move(right));
    case BinaryOperator::kLessEqual:
      return ComparisonOf<LessEqualOp>(std::move(left), std::move(right));
    case BinaryOperator::kGreater:
      return ComparisonOf<GreaterOp>(std::move(left), std::move(right));
    case BinaryOperator::kGreaterEqual:
      return ComparisonOf<GreaterEqualOp>(std::move(left), std::move(right));
    case BinaryOperator::kEqual:
      return ComparisonOf<EqualOp>(std::move(left), std::move(right));
    default:
      return ComparisonOf<NotEqualOp>(std::move(left), std::move(right));
  }
}

}  // namespace tesselc
