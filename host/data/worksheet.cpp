#include "host/data/worksheet.h"

#include <algorithm>
#include <utility>

namespace vela::host {

Worksheet::~Worksheet() {
  for (const auto& column : columns_) column->Leave();
}

std::int64_t Worksheet::CountRows() const {
  std::int64_t rows = 0;
  for (const auto& column : columns_) rows = std::max(rows, column->GetSize());
  return rows;
}

WorksheetColumn* Worksheet::Column(int index) const {
  return index >= 0 && index < CountColumns() ? columns_[static_cast<std::size_t>(index)].Get()
                                              : nullptr;
}

WorksheetColumn* Worksheet::Find(std::string_view name) const {
  const auto found =
      std::ranges::find_if(columns_, [&](const auto& column) { return column->Name() == name; });
  return found != columns_.end() ? found->Get() : nullptr;
}

bool Worksheet::Add(VeRef<WorksheetColumn> column) {
  if (Find(column->Name()) != nullptr) return false;
  columns_.push_back(column);
  column->Join(*this);
  return true;
}

bool Worksheet::Remove(WorksheetColumn& column) {
  const auto found = std::ranges::find_if(
      columns_, [&](const auto& candidate) { return candidate.Get() == &column; });
  if (found == columns_.end()) return false;
  std::erase_if(undo_, [&](const State& state) { return state.column == &column; });
  column.Leave();
  columns_.erase(found);
  is_modified_ = true;
  return true;
}

bool Worksheet::PushUndo(WorksheetColumn& column) {
  undo_.push_back({&column, column.SaveState()});
  if (undo_.size() > kMostUndo) undo_.pop_front();
  return true;
}

bool Worksheet::Undo() {
  if (undo_.empty()) return false;
  undo_.back().restore();
  undo_.pop_back();
  is_modified_ = true;
  return true;
}

}  // namespace vela::host
