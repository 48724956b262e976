// The element-type-free base of every vector: the general member table, and what one vector needs
// to know of another.
#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <span>

#include "frame/member/arguments.h"
#include "frame/member/table.h"
#include "vector/element_run.h"
#include "vector/tensors_base.h"

// A vector is one or more rows of elements; a call addresses row 0 unless its indices name another.
// As an object of its own ("vectorbase") it has no elements and supports nothing.
class TCAllVectorNonTemplBase
    : public vela::member::WithMembers<TCAllVectorNonTemplBase, TCAllTensorsBase> {
 public:
  explicit TCAllVectorNonTemplBase(unsigned type_word);

  using TCAllTensorsBase::GetString;
  using TCAllTensorsBase::GetUpperBound;
  using TCAllTensorsBase::IsValid;
  using TCAllTensorsBase::Update;

  const char* GetTCTypeName() const override { return "vectorbase"; }
  static const CClassMember* MemberTable();
  int GetString(CStringUTF8& text) override;
  int GetVecArrayIndex(const MSOINDICES* at) const override;
  unsigned GetTypeIDCheckIndex(const MSOINDICES* at) override;

  // The general members, in table order. The defaults refuse with status 12291.
  virtual int SetSize(CTCall* call);
  virtual int GetSize(CTCall* call);
  virtual int Append(CTCall* call);
  virtual int Sort(CTCall* call);
  virtual int Reorder(CTCall* call);
  virtual int Sum(CTCall* call);
  virtual int GetMinMax(CTCall* call);
  virtual int Difference(CTCall* call);
  virtual int FrequencyCount(CTCall* call);
  virtual int GetBytes(CTCall* call);
  virtual int SetBytes(CTCall* call);
  virtual int GetParleyVectorValue(CTCall* call);
  virtual int SetParleyVectorValue(CTCall* call);
  virtual int GetInternalDataType(CTCall* call);
  virtual int Data(CTCall* call);
  virtual int Uniform(CTCall* call);
  virtual int Normal(CTCall* call);
  virtual int Wrap(CTCall* call);
  virtual int IsValid(CTCall* call);
  virtual int GetSubVector(CTCall* call);
  virtual int SetSubVector(CTCall* call);
  virtual int SetUpperBound(CTCall* call);
  virtual int SetLowerBound(CTCall* call);
  virtual int GetDataAsOneDimensionalArray(CTCall* call);
  virtual int GetAs1DArray(CTCall* call);
  virtual int Find(CTCall* call);
  virtual int GetAs2DArray(CTCall* call);
  virtual int Average(CTCall* call);
  virtual int GetReal(CTCall* call);
  virtual int GetImaginary(CTCall* call);
  virtual int GetAmplitude(CTCall* call);
  virtual int GetPhase(CTCall* call);
  virtual int Conjugate(CTCall* call);
  virtual int MakeComplex(CTCall* call);
  virtual int GetUpperBound(CTCall* call);
  virtual int GetLowerBound(CTCall* call);
  virtual int RemoveAll(CTCall* call);
  virtual int GetName(CTCall* call);
  virtual int TrimLeft(CTCall* call);
  virtual int TrimRight(CTCall* call);
  virtual int Trim(CTCall* call);
  virtual int CopyData(CTCall* call);
  virtual int Replace(CTCall* call);
  virtual int InsertValue(CTCall* call);
  virtual int GetOutputComment(CTCall* call);
  virtual int SetOutputComment(CTCall* call);
  virtual int Abs(CTCall* call);
  virtual int Pattern(CTCall* call);
  virtual int Merge(CTCall* call);
  virtual int Product(CTCall* call);

  // --- What other vectors see of this one ---

  virtual int RowCount() const { return 0; }
  // Elements of a row, with its bounds; row is 0 .. RowCount() - 1.
  virtual std::size_t RowSize(int) const { return 0; }
  virtual int RowLowerBound(int) const { return 0; }
  // Where the row's data begins: at its lower bound, which may be its end. The elements below are
  // no part of it.
  std::size_t FirstOfData(int row) const {
    return std::min(static_cast<std::size_t>(std::max(RowLowerBound(row), 0)), RowSize(row));
  }
  // A row's elements when they are one contiguous buffer; else an empty run. Valid until the
  // vector's next change.
  virtual vela::ElementRun ContiguousRun(int) { return {}; }
  // Sets the row's size to exactly size, keeping what fits: 0, or 278 with nothing changed.
  virtual int RawResize(int row, std::int64_t size);
  // As RawResize; the elements below lower become the missing value. 28 for a lower bound below 0.
  virtual int ResizeWithLowerBound(int row, std::int64_t size, int lower);
  // As RawResize, but may keep memory for more, so that growing by one at a time is linear overall.
  virtual int RawGrow(int row, std::int64_t size) { return RawResize(row, size); }
  // Makes room for size elements, so that growing up to it cannot fail for want of memory.
  virtual int RawReserve(int /*row*/, std::int64_t /*size*/) { return status::kOk; }
  // Overwrites the elements from offset on, converted; the row has them all. The run may lie in the
  // row itself. A status.
  virtual int StoreRun(int row, std::size_t offset, const vela::ElementRun& run);

 protected:
  // The row that a call addresses. Fails with 2 for a malformed index record, 28 for a row that
  // does not exist.
  int Row(vela::member::Arguments& args) const;
  // Whether the indices pick one of several rows; members that change size or layout refuse then.
  bool IsOneRowOfMany(const MSOINDICES& at) const;
  void RefuseOneRowOfMany(vela::member::Arguments& args, int code) const;
};

namespace vela {

// A vector argument with the row that it addresses.
struct VectorArgument {
  TCAllVectorNonTemplBase* vector = nullptr;
  int row = 0;

  explicit operator bool() const { return vector != nullptr; }
  bool IsRow(const TCAllVectorNonTemplBase* other, int other_row) const {
    return vector == other && row == other_row;
  }
  // Whether the elements are real numbers.
  bool IsReal() const;
  std::size_t Size() const { return vector->RowSize(row); }
};

// A row's elements of any storage: the row itself when it is one buffer, else a copy. A row that is
// not numeric (texts) is read as doubles, each by its own conversion. Throws std::bad_alloc.
class RowElements {
 public:
  explicit RowElements(const VectorArgument& source);
  const ElementRun& Run() const { return run_; }

 private:
  ElementRun run_;
  std::vector<double> copy_;
};

// The argument as a vector: fails with 3 when it is something else, 28 for a bad row. NULL gives an
// empty VectorArgument.
VectorArgument OptionalVector(member::Arguments& args, unsigned arg);
// The same, and NULL is status 3.
VectorArgument RequiredVector(member::Arguments& args, unsigned arg);

}  // namespace vela
