// A column of a worksheet: what every kind of column has.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "frame/interface/data_source.h"

namespace vela::host {

class Worksheet;

class VELAHOST_API WorksheetColumn : public VeData {
 public:
  // A column of size cells without a value, not in a worksheet yet. Null for a type that columns
  // cannot have. Throws std::bad_alloc.
  static VeRef<WorksheetColumn> Create(std::string name, unsigned element_type, std::int64_t size);

  const std::string& Name() const { return name_; }
  // What puts the column back into the state it has now. Throws std::bad_alloc.
  std::function<void()> SaveState();
  // The worksheet takes it in, or parts with it for good.
  void Join(Worksheet& worksheet) { worksheet_ = &worksheet; }
  void Leave();

  CStringUTF8 GetName() const override;
  void OnChange(std::int64_t first, std::int64_t count) override;
  bool PushUndo() override;
  bool Remove() override;
  bool SetSize(std::int64_t size) override;
  std::int64_t GetLowerBound() const override { return lower_; }
  bool SetLowerBound(std::int64_t lower) override;
  bool IsMasked(std::int64_t row) const override;
  bool SetMasked(std::int64_t row, bool masked) override;

 protected:
  explicit WorksheetColumn(std::string name) : name_(std::move(name)) {}
  virtual bool SetCells(std::int64_t size) = 0;
  virtual std::function<void()> SaveCells() = 0;

 private:
  std::string name_;
  Worksheet* worksheet_ = nullptr;
  std::int64_t lower_ = 0;
  std::vector<bool> mask_;  // rows beyond its end are not masked
};

}  // namespace vela::host
