#include "tesselc/run/text.h"

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
