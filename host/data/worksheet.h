// A worksheet: named columns, with undo.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "frame/interface/data_source.h"
#include "host/data/worksheet_column.h"

namespace vela::host {

class VELAHOST_API Worksheet {
 public:
  explicit Worksheet(std::string name) : name_(std::move(name)) {}
  Worksheet(const Worksheet&) = delete;
  Worksheet& operator=(const Worksheet&) = delete;
  // Its columns are removed; what is attached to them goes stale.
  ~Worksheet();

  const std::string& Name() const { return name_; }
  int CountColumns() const { return static_cast<int>(columns_.size()); }
  // The most rows that a column has.
  std::int64_t CountRows() const;
  // Null when there is none.
  WorksheetColumn* Column(int index) const;
  WorksheetColumn* Find(std::string_view name) const;

  // Takes the column in as the last one; false when there is one of the name already. Throws
  // std::bad_alloc.
  bool Add(VeRef<WorksheetColumn> column);
  // False for a column that is none of its own.
  bool Remove(WorksheetColumn& column);

  // The last kMostUndo states that were pushed are kept. Throws std::bad_alloc.
  static constexpr std::size_t kMostUndo = 32;
  bool PushUndo(WorksheetColumn& column);
  // Puts the column of the last state back into it; false when there is none.
  bool Undo();

  // Whether a column was written since this was last set to false.
  bool IsModified() const { return is_modified_; }
  void SetModified(bool modified) { is_modified_ = modified; }

 private:
  struct State {
    WorksheetColumn* column;
    std::function<void()> restore;
  };

  std::string name_;
  std::vector<VeRef<WorksheetColumn>> columns_;
  std::deque<State> undo_;
  bool is_modified_ = false;
};

}  // namespace vela::host
