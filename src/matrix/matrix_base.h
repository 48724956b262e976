// The element-type-free base of every matrix: the general member table, every member's handler, and
// the host-facing operations.
#pragma once

#include <memory>

#include "frame/container/layer.h"
#include "frame/container/tensors_base.h"
#include "frame/member/arguments.h"
#include "frame/member/table.h"
#include "kernel/round.h"
#include "matrix/matrix_block.h"

// A matrix is one or more layers of rows by columns, each with a shape of its own; a call addresses
// layer 0 unless its indices name another. As an object of its own ("matrixbase") it has no layers
// and supports nothing.
//
// The handlers here serve every matrix: they pass the elements to the kernel for their type, or end
// with status 12291 where no kernel serves it. A call whose indices name no layer of the matrix
// ends with -1 where it works on a view of the layer, with 27 where it reads its data, which has to
// be there, and with 1 where it asks for the shape. A result matrix may be the matrix itself.
//
// An operation of the host addresses element (at->element, at->column) of layer
// at->ObjectIndex().
class TCAllMatrixNonTemplBase
    : public vela::member::WithMembers<TCAllMatrixNonTemplBase, TCAllTensorsBase> {
  using Base = WithMembers;

 public:
  explicit TCAllMatrixNonTemplBase(unsigned type_word) { InitTypeIDs(type_word); }

  using Base::GetString;
  using Base::IsValid;
  using Base::Update;

  const CRuntimeClass* GetRuntimeClass() const override;
  const char* GetTCTypeName() const override { return "matrixbase"; }
  static const CClassMember* MemberTable();

  // --- Layers ---

  // Returns 1 and the layer's dimensions, each where it is asked for; 0 without such a layer.
  int GetMatrixDimensions(int* rows, int* cols, const MSOINDICES* at) override;
  // "matrix(3, 4)[1]": rows, columns and layers; "matrix<Invalid>" for a layer without data.
  int GetDisplayElement(CStringUTF8& text, int layer) override;
  // "double[3X4]", of layer 0; "matrixbase" without elements.
  int GetString(CStringUTF8& text) override;
  // Whether the layer exists and has data.
  virtual int IsValid(int layer) const;
  // Resizes without keeping the data; 1 for a layer that the indices do not name.
  int SetMatrixDimension(int rows, int cols, const MSOINDICES* at) override;
  // Gives a layer that shape, as MatrixBlock::Resize does; 1 for a layer beyond the last. Throws
  // std::invalid_argument for one below 0.
  virtual int SetLayerSize(int layer, int rows, int cols, int keep);
  virtual int GetNumRows(int layer) const;
  virtual int GetNumCols(int layer) const;
  // A view of a layer that exists, which refers to its elements; null without memory for it.
  virtual std::unique_ptr<vela::MatrixBlock> GetOperationsView(int layer);
  // The layer's elements, or null.
  virtual void* GetDataPointer(int layer);
  // Tells whoever shows the layer that it changed.
  virtual void Update(int layer);

  // The block of a layer that exists.
  virtual vela::MatrixBlock* BlockOf(int /*layer*/) { return nullptr; }

  vela::LayerShape ShapeOf(int layer) const override;
  vela::ElementSpan BufferOf(int layer) override;
  int ResizeLayer(int layer, const vela::LayerShape& shape, vela::Contents contents) override;
  void AnnounceChange(int layer) override { Update(layer); }
  // Makes the layer the elements of a matrix, with its shape, or of a vector: they fill a layer row
  // by row as far as they go, and make an empty one a single row. A status.
  int AssignLayer(int layer, const vela::Layer& source);

  // --- Members, in table order ---

  int SetSize(CTCall* call);
  int GetNumRows(CTCall* call);
  int GetNumCols(CTCall* call);
  int ApplyFilter(CTCall* call);
  int MedianFilter(CTCall* call);
  int FlipHorizontal(CTCall* call);
  int Rotate(CTCall* call);
  int FlipVertical(CTCall* call);
  int ReplaceGreaterThan(CTCall* call);
  int ReplaceLessThan(CTCall* call);
  int SetColumn(CTCall* call);
  int GetColumn(CTCall* call);
  int SetRow(CTCall* call);
  int GetRow(CTCall* call);
  int Reorder(CTCall* call);
  int Transpose(CTCall* call);
  int GetAsVector(CTCall* call);
  int SetByVector(CTCall* call);
  int DotMultiply(CTCall* call);
  int DotDivide(CTCall* call);
  int DotPower(CTCall* call);
  int Sort(CTCall* call);
  int GetMax(CTCall* call);
  int GetMin(CTCall* call);
  int GetMedian(CTCall* call);
  int GetMean(CTCall* call);
  int RemoveEmptyRows(CTCall* call);
  int Shrink(CTCall* call);
  int GetSubMatrix(CTCall* call);
  int SetSubMatrix(CTCall* call);
  int CopyTo(CTCall* call);
  int CopyFrom(CTCall* call);
  int ImDilate(CTCall* call);
  int ImErode(CTCall* call);
  int ImOpen(CTCall* call);
  int ImClose(CTCall* call);
  int Replace(CTCall* call);
  int CopyFromWks(CTCall* call);
  int GetReal(CTCall* call);
  int GetImaginary(CTCall* call);
  int GetPhase(CTCall* call);
  int GetAmplitude(CTCall* call);
  int Inverse(CTCall* call);
  int Conjugate(CTCall* call);
  int MakeComplex(CTCall* call);
  int SumColumns(CTCall* call);
  int Concatenate(CTCall* call);
  int FFTShift(CTCall* call);
  int IFFTShift(CTCall* call);
  int FreqFilter(CTCall* call);
  int DuplicateBlock(CTCall* call);
  int GetLowerTriangular(CTCall* call);
  int GetUpperTriangular(CTCall* call);
  int MakeIdentity(CTCall* call);
  int CastToInteger(CTCall* call);
  int CastToDouble(CTCall* call);
  int GetDiagonal(CTCall* call);
  int SetDiagonal(CTCall* call);
  int Ceil(CTCall* call);
  int Floor(CTCall* call);
  int Fix(CTCall* call);
  int Round(CTCall* call);
  int AllNonZero(CTCall* call);
  int AnyNonZero(CTCall* call);
  int Cross(CTCall* call);
  int Difference(CTCall* call);
  int CumulativeSum(CTCall* call);
  int CumulativeProduct(CTCall* call);
  int Padding(CTCall* call);
  int GetAs2DArray(CTCall* call);
  int SetByArrayInVariant(CTCall* call);
  int PutRecordset(CTCall* call);
  int NANtoValue(CTCall* call);
  int Wrap(CTCall* call);
  int Find(CTCall* call);
  int GetSourceDim(CTCall* call);
  int ReorderRowWise(CTCall* call);
  int ReorderColWise(CTCall* call);
  int GetInternalDataType(CTCall* call);

  // --- For the host ---

  // Address of element (row, index), the record naming the layer and the row; null outside.
  void* GetArrayElement(const MSOINDICES* at, int index) override;
  // Index of the last row; with a row in the record, of its last column.
  int GetUpperBound(const MSOINDICES* at, int& upper) override;
  int GetDisplaySize(int& rows, int& cols) override;
  int GetDisplaySizeEx(const MSOINDICES* at, int& rows, int& cols) override;
  // Layer 0 takes the elements row by row; it needs as many, unless it is empty, which makes it one
  // row. Status 3 otherwise.
  int InitalizeFromMemory(const void* memory, int count) override;
  int CopyFromMatrix(const MSOINDICES* at, CScriptVelaObject* matrix) override;
  // A lent layer keeps its size until it is released.
  int GetBufferMSO(const MSOINDICES* at, void** buffer) override;
  int GetBufferMSOEx(const MSOINDICES* at, unsigned element_type, void** buffer) override;
  int ReleaseBufferMSO(const MSOINDICES* at, void* buffer) override;

 protected:
  int IndexIn(int layer, const MSOINDICES* at, std::size_t& index) const override;
  // The power of a square layer by a whole number; every other operation goes element by element.
  int OperateWithValue(int layer, unsigned code, const tagMSOOBJVECT& operand) override;
  // With a vector only assignment; with a matrix + and - element by element, * the product of
  // matrices, / the product with the inverse. 1 for another operation and where shapes do not fit.
  int OperateWith(int layer, unsigned code, const vela::Layer& operand, unsigned options) override;

 private:
  // The view of the layer that a call addresses.
  struct View {
    vela::Layer layer;
    std::unique_ptr<vela::MatrixBlock> block;
    vela::MatrixBlock* operator->() const { return block.get(); }
    vela::MatrixBlock& operator*() const { return *block; }
  };

  // The layer that a call addresses, or the given status.
  vela::Layer Addressed(vela::member::Arguments& args, int otherwise);
  View AddressedView(vela::member::Arguments& args, int otherwise = status::kNoRow);
  // As AddressedView for a layer that has data: 27 otherwise.
  View AddressedData(vela::member::Arguments& args);
  View ViewOf(const vela::Layer& layer);
  // The view's block has another shape with as many elements: the layer takes it.
  static int TakeShape(const View& view);

  // What several members have in common.
  template <class Transfer>
  int GetLine(CTCall* call, Transfer&& transfer);
  template <class Transfer>
  int SetLine(CTCall* call, Transfer&& transfer);
  template <class Change>
  int ChangeInPlace(CTCall* call, const vela::member::Arity& arity, Change&& change);
  template <class Keep>
  int FillTriangle(CTCall* call, Keep&& keep);
  int Shift(CTCall* call, bool inverse);
  int ReorderLines(CTCall* call, bool rows);
  int OperateByElement(CTCall* call, unsigned code);
  template <class Routine>
  int Morphology(CTCall* call, Routine&& routine);
  template <class Rule>
  int ReplaceBeyond(CTCall* call, Rule&& rule);
  template <class Part>
  int FillParts(CTCall* call, Part&& part);
  template <class Compute>
  int ReturnStatistic(CTCall* call, Compute&& compute);
  template <class Test>
  int TestNonZero(CTCall* call, Test&& test);
  int RoundInto(CTCall* call, vela::kernel::Rounding rounding);
  template <class Accumulate>
  int RunAlong(CTCall* call, Accumulate&& accumulate);
  int CastTo(CTCall* call, unsigned type_id);
  static int CopyBlock(vela::member::Arguments& args, const vela::Layer& from,
                       const vela::Layer& to);
  void GetListed(vela::member::Arguments& args);
  // The lent layer keeps its size until ReleaseBufferMSO.
  int Lent(const MSOINDICES* at, int result);
};
