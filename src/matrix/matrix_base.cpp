#include "matrix/matrix_base.h"

#include <stdexcept>

using vela::Layer;
using vela::LayerShape;
using vela::member::Arguments;
using vela::member::Fail;

namespace {

using Matrix = TCAllMatrixNonTemplBase;
using vela::member::Method;

const CClassMember kMatrixMembers[] = {
    Method("SetSize", &Matrix::SetSize),
    Method("GetNumRows", static_cast<int (Matrix::*)(CTCall*)>(&Matrix::GetNumRows)),
    Method("GetNumCols", static_cast<int (Matrix::*)(CTCall*)>(&Matrix::GetNumCols)),
    Method("ApplyFilter", &Matrix::ApplyFilter),
    Method("MedianFilter", &Matrix::MedianFilter),
    Method("FlipHorizontal", &Matrix::FlipHorizontal),
    Method("Rotate", &Matrix::Rotate),
    Method("FlipVertical", &Matrix::FlipVertical),
    Method("ReplaceGreaterThan", &Matrix::ReplaceGreaterThan),
    Method("ReplaceLessThan", &Matrix::ReplaceLessThan),
    Method("SetColumn", &Matrix::SetColumn),
    Method("GetColumn", &Matrix::GetColumn),
    Method("SetRow", &Matrix::SetRow),
    Method("GetRow", &Matrix::GetRow),
    Method("Reorder", &Matrix::Reorder),
    Method("Transpose", &Matrix::Transpose),
    Method("GetAsVector", &Matrix::GetAsVector),
    Method("SetByVector", &Matrix::SetByVector),
    Method("DotMultiply", &Matrix::DotMultiply),
    Method("DotDivide", &Matrix::DotDivide),
    Method("DotPower", &Matrix::DotPower),
    Method("Sort", &Matrix::Sort),
    Method("GetMax", &Matrix::GetMax),
    Method("GetMin", &Matrix::GetMin),
    Method("GetMedian", &Matrix::GetMedian),
    Method("GetMean", &Matrix::GetMean),
    Method("RemoveEmptyRows", &Matrix::RemoveEmptyRows),
    Method("Shrink", &Matrix::Shrink),
    Method("GetSubMatrix", &Matrix::GetSubMatrix),
    Method("SetSubMatrix", &Matrix::SetSubMatrix),
    Method("CopyTo", &Matrix::CopyTo),
    Method("CopyFrom", &Matrix::CopyFrom),
    Method("ImDilate", &Matrix::ImDilate),
    Method("ImErode", &Matrix::ImErode),
    Method("ImOpen", &Matrix::ImOpen),
    Method("ImClose", &Matrix::ImClose),
    Method("Replace", &Matrix::Replace),
    Method("CopyFromWks", &Matrix::CopyFromWks),
    Method("GetReal", &Matrix::GetReal),
    Method("GetImaginary", &Matrix::GetImaginary),
    Method("GetPhase", &Matrix::GetPhase),
    Method("GetAmplitude", &Matrix::GetAmplitude),
    Method("Inverse", &Matrix::Inverse),
    Method("Conjugate", &Matrix::Conjugate),
    Method("MakeComplex", &Matrix::MakeComplex),
    Method("SumColumns", &Matrix::SumColumns),
    Method("Concatenate", &Matrix::Concatenate),
    Method("FFTShift", &Matrix::FFTShift),
    Method("IFFTShift", &Matrix::IFFTShift),
    Method("FreqFilter", &Matrix::FreqFilter),
    Method("DuplicateBlock", &Matrix::DuplicateBlock),
    Method("GetLowerTriangular", &Matrix::GetLowerTriangular),
    Method("GetUpperTriangular", &Matrix::GetUpperTriangular),
    Method("MakeIdentity", &Matrix::MakeIdentity),
    Method("CastToInteger", &Matrix::CastToInteger),
    Method("CastToDouble", &Matrix::CastToDouble),
    Method("GetDiagonal", &Matrix::GetDiagonal),
    Method("SetDiagonal", &Matrix::SetDiagonal),
    Method("Ceil", &Matrix::Ceil),
    Method("Floor", &Matrix::Floor),
    Method("Fix", &Matrix::Fix),
    Method("Round", &Matrix::Round),
    Method("AllNonZero", &Matrix::AllNonZero),
    Method("AnyNonZero", &Matrix::AnyNonZero),
    Method("Cross", &Matrix::Cross),
    Method("Difference", &Matrix::Difference),
    Method("CumulativeSum", &Matrix::CumulativeSum),
    Method("CumulativeProduct", &Matrix::CumulativeProduct),
    Method("Padding", &Matrix::Padding),
    Method("GetAs2DArray", &Matrix::GetAs2DArray),
    Method("SetByArrayInVariant", &Matrix::SetByArrayInVariant),
    Method("PutRecordset", &Matrix::PutRecordset),
    Method("NANtoValue", &Matrix::NANtoValue),
    Method("Wrap", &Matrix::Wrap),
    Method("Find", &Matrix::Find),
    Method("GetSourceDim", &Matrix::GetSourceDim),
    Method("ReorderRowWise", &Matrix::ReorderRowWise),
    Method("ReorderColWise", &Matrix::ReorderColWise),
    Method("GetInternalDataType", &Matrix::GetInternalDataType),
    {},
};

}  // namespace

const CRuntimeClass* TCAllMatrixNonTemplBase::GetRuntimeClass() const {
  static const CRuntimeClass runtime_class{"TCAllMatrixNonTemplBase",
                                           sizeof(TCAllMatrixNonTemplBase),
                                           TCAllTensorsBase::GetRuntimeClass()};
  return &runtime_class;
}

const CClassMember* TCAllMatrixNonTemplBase::MemberTable() { return kMatrixMembers; }

int TCAllMatrixNonTemplBase::IsValid(int layer) const {
  return layer >= 0 && layer < LayerCount() && SizeOf(layer) > 0;
}

int TCAllMatrixNonTemplBase::SetLayerSize(int layer, int rows, int cols, int keep) {
  if (layer >= LayerCount()) return status::kFailed;
  if (layer < 0) throw std::invalid_argument("negative layer");
  return ResizeLayer(layer, {rows, cols},
                     keep != 0 ? vela::Contents::kKeep : vela::Contents::kDrop);
}

int TCAllMatrixNonTemplBase::GetNumRows(int layer) const {
  return static_cast<int>(ShapeOf(layer).rows);
}

int TCAllMatrixNonTemplBase::GetNumCols(int layer) const {
  return static_cast<int>(ShapeOf(layer).cols);
}

std::unique_ptr<vela::MatrixBlock> TCAllMatrixNonTemplBase::GetOperationsView(int) {
  return nullptr;
}

void* TCAllMatrixNonTemplBase::GetDataPointer(int layer) {
  const vela::MatrixBlock* block = BlockOf(layer);
  return block != nullptr ? block->Elements().data : nullptr;
}

void TCAllMatrixNonTemplBase::Update(int) { SetModify(1); }

LayerShape TCAllMatrixNonTemplBase::ShapeOf(int) const { return {0, 0}; }

vela::ElementSpan TCAllMatrixNonTemplBase::BufferOf(int layer) {
  const vela::MatrixBlock* block = BlockOf(layer);
  return block != nullptr ? block->Elements() : vela::ElementSpan();
}

int TCAllMatrixNonTemplBase::ResizeLayer(int layer, const LayerShape& shape,
                                         vela::Contents contents) {
  vela::MatrixBlock* block = BlockOf(layer);
  return block != nullptr ? block->Resize(shape.rows, shape.cols, contents)
                          : int{status::kUnsupported};
}

Layer TCAllMatrixNonTemplBase::Addressed(Arguments& args, int otherwise) {
  if (LayerCount() == 0) Fail(status::kUnsupported);
  const int layer = args.Indices().ObjectIndex();
  if (layer < 0 || layer >= LayerCount()) Fail(otherwise);
  return {this, layer};
}

TCAllMatrixNonTemplBase::View TCAllMatrixNonTemplBase::ViewOf(const Layer& layer) {
  View view{layer, GetOperationsView(layer.number)};
  if (view.block == nullptr) Fail(status::kNoRow);
  return view;
}

TCAllMatrixNonTemplBase::View TCAllMatrixNonTemplBase::AddressedView(Arguments& args,
                                                                     int otherwise) {
  return ViewOf(Addressed(args, otherwise));
}

TCAllMatrixNonTemplBase::View TCAllMatrixNonTemplBase::AddressedData(Arguments& args) {
  const Layer layer = Addressed(args, status::kNoData);
  if (!IsValid(layer.number)) Fail(status::kNoData);
  return ViewOf(layer);
}

int TCAllMatrixNonTemplBase::TakeShape(const View& view) {
  return view.layer.container->ResizeLayer(view.layer.number, view->Shape(), vela::Contents::kDrop);
}
