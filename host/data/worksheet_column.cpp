#include "host/data/worksheet_column.h"

#include <algorithm>
#include <new>
#include <stdexcept>
#include <utility>

#include "frame/interface/missing_value.h"
#include "frame/interface/type_words.h"
#include "host/data/number_cell.h"
#include "host/data/number_store.h"
#include "host/data/number_types.h"
#include "host/data/worksheet.h"

namespace vela::host {
namespace {

class NumberColumn final : public WorksheetColumn {
 public:
  NumberColumn(std::string name, unsigned type_id)
      : WorksheetColumn(std::move(name)), numbers_(type_id) {}

  unsigned GetElementType() const override { return numbers_.TypeId(); }
  std::int64_t GetSize() const override { return numbers_.Size(); }
  void* GetBuffer() override { return numbers_.Data(); }

 protected:
  bool SetCells(std::int64_t size) override { return numbers_.SetSize(size); }
  std::function<void()> SaveCells() override {
    return [this, saved = numbers_] { numbers_ = saved; };
  }

 private:
  NumberStore numbers_;
};

// Texts, or a mixture of numbers and texts. A number in a column of texts is its text.
class CellColumn final : public WorksheetColumn {
 public:
  CellColumn(std::string name, unsigned type_id)
      : WorksheetColumn(std::move(name)), type_id_(type_id) {}

  unsigned GetElementType() const override { return type_id_; }
  std::int64_t GetSize() const override { return static_cast<std::int64_t>(cells_.size()); }
  void ReadNumbers(std::int64_t first, std::int64_t count, double* to) override {
    for (std::int64_t i = 0; i < count; ++i) to[i] = NumberOf(At(first + i));
  }
  bool WriteNumbers(std::int64_t first, std::int64_t count, const double* from) override {
    for (std::int64_t i = 0; i < count; ++i) {
      At(first + i) =
          type_id_ == kTypeVariant ? Cell{from[i], {}} : Cell{kMissingValue, TextOf(from[i])};
    }
    return true;
  }
  CStringUTF8 GetText(std::int64_t row) override {
    const Cell& cell = At(row);
    return cell.number == kMissingValue ? cell.text : TextOf(cell.number);
  }
  bool SetText(std::int64_t row, const char* text) override {
    At(row) = {kMissingValue, text};
    return true;
  }

 protected:
  bool SetCells(std::int64_t size) override try {
    if (size < 0 || size > NumberStore::kMostElements) return false;
    cells_.resize(static_cast<std::size_t>(size));
    return true;
  } catch (const std::bad_alloc&) {
    return false;
  } catch (const std::length_error&) {
    return false;
  }
  std::function<void()> SaveCells() override {
    return [this, saved = cells_] { cells_ = saved; };
  }

 private:
  // A number, or a text while that is missing.
  struct Cell {
    double number = kMissingValue;
    CStringUTF8 text;
  };

  Cell& At(std::int64_t row) { return cells_[static_cast<std::size_t>(row)]; }
  static CStringUTF8 TextOf(double value) {
    char text[kCellTextSize];
    const char* const end = WriteNumberCell(value, text);
    return CStringUTF8(std::string_view(text, static_cast<std::size_t>(end - text)));
  }
  static double NumberOf(const Cell& cell) {
    double value = cell.number;
    if (value == kMissingValue && !ReadNumberCell(cell.text.View(), value)) return kMissingValue;
    return value;
  }

  unsigned type_id_;
  std::vector<Cell> cells_;
};

}  // namespace

VeRef<WorksheetColumn> WorksheetColumn::Create(std::string name, unsigned element_type,
                                               std::int64_t size) {
  VeRef<WorksheetColumn> column;
  if (element_type == kTypeString || element_type == kTypeVariant) {
    column = VeRef<WorksheetColumn>(new CellColumn(std::move(name), element_type));
  } else if (VisitNumberType(element_type, [](auto) {})) {
    column = VeRef<WorksheetColumn>(new NumberColumn(std::move(name), element_type));
  }
  if (column && !column->SetSize(size)) return {};
  return column;
}

CStringUTF8 WorksheetColumn::GetName() const {
  if (worksheet_ == nullptr) return {};
  return CStringUTF8("[" + worksheet_->Name() + "]" + name_);
}

void WorksheetColumn::OnChange(std::int64_t, std::int64_t) {
  if (worksheet_ != nullptr) worksheet_->SetModified(true);
}

bool WorksheetColumn::PushUndo() { return worksheet_ != nullptr && worksheet_->PushUndo(*this); }

bool WorksheetColumn::Remove() { return worksheet_ != nullptr && worksheet_->Remove(*this); }

void WorksheetColumn::Leave() {
  worksheet_ = nullptr;
  MarkRemoved();
}

bool WorksheetColumn::SetSize(std::int64_t size) {
  if (!SetCells(size)) return false;
  lower_ = std::min(lower_, size);
  if (static_cast<std::size_t>(size) < mask_.size()) mask_.resize(static_cast<std::size_t>(size));
  return true;
}

bool WorksheetColumn::SetLowerBound(std::int64_t lower) {
  if (lower < 0 || lower > GetSize()) return false;
  lower_ = lower;
  return true;
}

bool WorksheetColumn::IsMasked(std::int64_t row) const {
  return static_cast<std::size_t>(row) < mask_.size() && mask_[static_cast<std::size_t>(row)];
}

bool WorksheetColumn::SetMasked(std::int64_t row, bool masked) {
  if (row < 0 || row >= GetSize()) return false;
  const auto place = static_cast<std::size_t>(row);
  if (place >= mask_.size()) {
    if (!masked) return true;
    mask_.resize(static_cast<std::size_t>(GetSize()));
  }
  mask_[place] = masked;
  return true;
}

std::function<void()> WorksheetColumn::SaveState() {
  return [this, cells = SaveCells(), lower = lower_, mask = mask_] {
    cells();
    lower_ = lower;
    mask_ = mask;
  };
}

}  // namespace vela::host
