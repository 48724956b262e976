// Cells of any object that shows its memory are read and written there; those of any other through
// the object.
#include <gtest/gtest.h>

#include "frame/interface/script_object.h"
#include "tesselc/run/elements.h"
#include "tesselc/run/script_error.h"
#include "tesselc/run/variables.h"

namespace tesselc {
namespace {

class TwoByThree final : public CScriptVelaObject {
 public:
  explicit TwoByThree(bool shows_memory) : shows_memory_(shows_memory) {}
  void* GetArrayElement(const MSOINDICES* at, int column) override {
    if (!shows_memory_ || at->ElementCount() != 1 || at->element >= 2 || column >= 3) {
      return nullptr;
    }
    return &cells[at->element * 3 + column];
  }
  int GetMatrixDimensions(int* rows, int* columns, const MSOINDICES*) override {
    *rows = 2;
    *columns = 3;
    return 1;
  }
  int GetNumericValue(const MSOINDICES* at, double& value) override {
    ++calls;
    value = cells[at->element * 3 + at->column];
    return status::kOk;
  }
  int SetNumericValue(const MSOINDICES* at, double value) override {
    ++calls;
    cells[at->element * 3 + at->column] = value;
    return status::kOk;
  }

  double cells[6] = {1, 2, 3, 4, 5, 6};
  int calls = 0;

 private:
  bool shows_memory_;
};

class ObjectNode final : public ValueNode<ObjectValue> {
 public:
  explicit ObjectNode(CScriptVelaObject& object) : object_(object) {}
  ObjectValue Eval(Frame&) override { return ObjectValue(&object_); }

 private:
  CScriptVelaObject& object_;
};

TEST(MatrixCell, IsReachedByAddressWhereThereIsOne) {
  for (const bool shows_memory : {true, false}) {
    TwoByThree matrix(shows_memory);
    matrix.AddRef();
    const auto cell = [&](std::int64_t row, std::int64_t column) {
      return MakeMatrixCell(TypeName::kDouble, std::make_unique<ObjectNode>(matrix),
                            MakeConstant(row), MakeConstant(column), {});
    };
    Frame frame{nullptr, nullptr};
    EXPECT_EQ(As<double>(cell(1, 2))->Eval(frame), 6);
    MakeStoreElement(TypeName::kDouble, cell(0, 1), MakeConstant(9.5))->Exec(frame);
    EXPECT_EQ(matrix.cells[1], 9.5);
    EXPECT_EQ(matrix.calls, shows_memory ? 0 : 2);
    for (const auto& [row, column] : {std::pair{2, 0}, {0, 3}, {-1, 0}, {0, -1}}) {
      EXPECT_THROW(cell(row, column)->Exec(frame), ScriptError) << row << " " << column;
    }
  }
}

}  // namespace
}  // namespace tesselc
