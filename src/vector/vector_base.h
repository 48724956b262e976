// The element-type-free base of every vector: the general member table, every member's handler, and
// the host-facing operations.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "frame/container/layer.h"
#include "frame/container/tensors_base.h"
#include "frame/member/arguments.h"
#include "frame/member/table.h"
#include "kernel/removal.h"
#include "vector/source_range.h"

namespace vela {
struct ArrayLayout;
}

// A vector is one or more layers of one row each ("rows" to scripts); a call addresses row 0 unless
// its indices name another. As an object of its own ("vectorbase") it has no rows and supports
// nothing.
//
// The handlers here serve every vector. They differ in their elements only: a handler passes these
// to the kernel for their type, or ends with status 12291 where no kernel serves it. What numbers
// and texts have in common as lists is written over the list operations, which a class of other
// elements than numbers replaces.
class TCAllVectorNonTemplBase
    : public vela::member::WithMembers<TCAllVectorNonTemplBase, TCAllTensorsBase> {
  using Base = WithMembers;

 public:
  explicit TCAllVectorNonTemplBase(unsigned type_word);

  using Base::GetSourceRange;
  using Base::GetString;
  using Base::GetUpperBound;
  using Base::IsValid;
  using Base::SetString;
  using Base::Update;

  const CRuntimeClass* GetRuntimeClass() const override;
  const char* GetTCTypeName() const override { return "vectorbase"; }
  static const CClassMember* MemberTable();

  // --- Members, in table order where they are no slots below ---

  int SetSize(CTCall* call);
  int GetSize(CTCall* call);
  int GetParleyVectorValue(CTCall* call);
  int SetParleyVectorValue(CTCall* call);
  int GetInternalDataType(CTCall* call);
  int Data(CTCall* call);
  int RemoveAll(CTCall* call);

  // The members that are slots, in slot order, with the operations that stand among them.
  virtual int GetName(CTCall* call);
  // Sets the row's size to exactly size, keeping what fits: 0, or 278 with nothing changed.
  virtual int RawResize(int row, std::int64_t size);
  virtual int Append(CTCall* call);
  virtual int GetSourceRange(CTCall* call);
  virtual int Replace(CTCall* call);
  virtual int UpdateRowColRanges(CTCall* call);
  virtual int InsertValue(CTCall* call);
  // As RawResize; the elements below lower become the missing value. 28 for a lower bound below 0.
  virtual int ResizeWithLowerBound(int row, std::int64_t size, int lower);
  // row = row <code> source element by element, or assigned from it, as Operate2 says.
  virtual int OperateWithLayer(int row, unsigned code, const vela::Layer& source, unsigned options);
  virtual int Sum(CTCall* call);
  virtual int GetMinMax(CTCall* call);
  virtual int Difference(CTCall* call);
  virtual int FrequencyCount(CTCall* call);
  virtual int GetBytes(CTCall* call);
  virtual int SetBytes(CTCall* call);
  virtual int Pattern(CTCall* call);
  virtual int Sort(CTCall* call);
  virtual int Reorder(CTCall* call);
  virtual int Abs(CTCall* call);
  virtual int Uniform(CTCall* call);
  virtual int Normal(CTCall* call);
  virtual int Wrap(CTCall* call);
  virtual int CopyX(CTCall* call);
  virtual int CopyData(CTCall* call);
  virtual int HasX(CTCall* call);
  virtual int AttachX(CTCall* call);
  virtual int GetRectPoints(CTCall* call);
  virtual int Update(CTCall* call);
  virtual int TrimLeft(CTCall* call);
  virtual int TrimRight(CTCall* call);
  virtual int IsValid(CTCall* call);
  virtual int SetUpperBound(CTCall* call);
  virtual int SetLowerBound(CTCall* call);
  virtual int GetDataAsOneDimensionalArray(CTCall* call);
  virtual int GetAs1DArray(CTCall* call);
  virtual int GetAs2DArray(CTCall* call);
  virtual int GetReal(CTCall* call);
  virtual int GetImaginary(CTCall* call);
  virtual int GetAmplitude(CTCall* call);
  virtual int GetPhase(CTCall* call);
  virtual int Conjugate(CTCall* call);
  virtual int MakeComplex(CTCall* call);
  virtual int GetUpperBound(CTCall* call);
  virtual int GetLowerBound(CTCall* call);
  virtual int SetOutputComment(CTCall* call);
  virtual int GetOutputComment(CTCall* call);
  virtual int GetSubVector(CTCall* call);
  virtual int SetSubVector(CTCall* call);
  virtual int Average(CTCall* call);
  virtual int Find(CTCall* call);
  virtual int Trim(CTCall* call);
  virtual int Merge(CTCall* call);
  virtual int GetSourceDataRange(CTCall* call);
  virtual int CopySourceDataRange(CTCall* call);
  virtual int Product(CTCall* call);

  // The members that every typed vector and StringArray has in a table of its own.
  int GetDataAsOneDimensionalArrayOfVariants(CTCall* call);
  int Add(CTCall* call);
  int SetAtGrow(CTCall* call);
  int InsertAt(CTCall* call);
  int RemoveAt(CTCall* call);

  // --- Rows ---

  std::size_t RowSize(int row) const { return SizeOf(row); }
  int ResizeLayer(int row, const vela::LayerShape& shape, vela::Contents contents) override;

  // The column of X values that stand beside the row's elements; null without.
  virtual VeData* XData() const { return nullptr; }

  // --- For the host ---

  // "double(10)" for the whole vector (points: "{Vector <point>}"), else the text of the element.
  int GetString(CStringUTF8& text) override;
  void* GetArrayElement(const MSOINDICES* at, int index) override;
  int GetUpperBound(const MSOINDICES* at, int& upper) override;
  int SetVectorDimension(const MSOINDICES* at, int size) override;
  int GetDisplayElement(CStringUTF8& text, int index) override;
  int GetDisplaySize(int& rows, int& cols) override;
  int GetDisplaySizeEx(const MSOINDICES* at, int& rows, int& cols) override;
  // Row 0 becomes the count elements in memory.
  int InitalizeFromMemory(const void* memory, int count) override;
  int SetBufferSize(const MSOINDICES* at, unsigned bytes) override;

 protected:
  // Whether the row took part in a whole-vector operation, which keeps its size from then on.
  virtual bool IsSizeFixed(int /*row*/) const { return true; }
  virtual void SetSizeFixed(int /*row*/) {}

  // An empty row first becomes one element long.
  int OperateWithValue(int row, unsigned code, const tagMSOOBJVECT& operand) override;
  // The elements of a matrix can be assigned, row by row; every other operation needs a vector.
  int OperateWith(int row, unsigned code, const vela::Layer& operand, unsigned options) override;

  // --- List operations: what members do to the elements of a row ---
  // Indices lie inside the row. What fails ends the handler and leaves the row as it was.

  // Sets an element to the argument; a row that ends before it first grows up to it.
  virtual void SetElement(int row, std::size_t index, vela::member::Arguments& args, unsigned arg);
  // Inserts count copies of the argument before index; beyond the end the row first grows up to it.
  virtual void InsertElements(int row, std::size_t index, std::size_t count,
                              vela::member::Arguments& args, unsigned arg);
  // Removes the runs, which are ascending and apart.
  virtual void RemoveElements(int row, std::span<const vela::kernel::IndexRun> runs);
  // Makes target, which is another row, elements offset .. offset + count - 1.
  virtual void CopyElements(int row, std::size_t offset, std::size_t count,
                            const vela::Layer& target);
  // Makes the row a copy of the source's elements, converted; the source is another row.
  virtual void AssignCopy(int row, const vela::Layer& source);
  // Overwrites elements from offset on with the source's first count.
  virtual void OverwriteElements(int row, std::size_t offset, const vela::Layer& source,
                                 std::size_t count);
  // Element k becomes the former element order[k]; false, after writing, for no permutation.
  virtual bool ReorderElements(int row, std::span<const unsigned> order);
  // Element i becomes the former element (i + shift) mod size.
  virtual void RotateElements(int row, std::int64_t shift);
  // Sorts; positions, when there are any, are as many as the elements and follow them.
  virtual void SortElements(int row, bool ascending, bool missing_first,
                            std::span<unsigned> positions);
  // How many elements from first on are missing before the first that is not; from the last down.
  virtual std::size_t CountLeadingMissing(int row, std::size_t first);
  virtual std::size_t CountTrailingMissing(int row, std::size_t first);
  // Removes the missing elements from first on.
  virtual void RemoveMissing(int row, std::size_t first);
  // Appends each element of source that the row does not have yet, once; how many.
  virtual std::size_t AppendAbsent(int row, const vela::Layer& source);
  // The row that a call addresses: 2 for a malformed index record, 28 for a row that does not
  // exist, 12291 for a vector without rows.
  int Row(vela::member::Arguments& args) const;
  vela::Layer Addressed(vela::member::Arguments& args) { return {this, Row(args)}; }
  // As Addressed, for members that only numbers have: 12291 for other elements.
  vela::Layer AddressedNumbers(vela::member::Arguments& args);
  vela::LayerElements AddressedElements(vela::member::Arguments& args);
  vela::Layer AddressedComplex(vela::member::Arguments& args);
  // Members that change size or layout refuse when the indices pick one of several rows.
  void RefuseOneRowOfMany(vela::member::Arguments& args, int code) const;
  void RemoveRange(int row, std::size_t begin, std::size_t end);

 private:
  int AssignLayer(int row, const vela::Layer& source, unsigned options);
  template <class Fill>
  int FillSeeded(CTCall* call, Fill&& fill);
  template <class Part>
  int FillParts(CTCall* call, Part&& part);

  CStringUTF8 output_comment_;
  std::unique_ptr<VectorSourceDataRangeHolder> source_range_;
};
