#include "matrix/matrix_base.h"

#include "frame/member/table.h"

using vela::member::Unbuilt;

namespace {

const CClassMember kMatrixMembers[] = {
    Unbuilt("SetSize"),
    Unbuilt("GetNumRows"),
    Unbuilt("GetNumCols"),
    Unbuilt("ApplyFilter"),
    Unbuilt("MedianFilter"),
    Unbuilt("FlipHorizontal"),
    Unbuilt("Rotate"),
    Unbuilt("FlipVertical"),
    Unbuilt("ReplaceGreaterThan"),
    Unbuilt("ReplaceLessThan"),
    Unbuilt("SetColumn"),
    Unbuilt("GetColumn"),
    Unbuilt("SetRow"),
    Unbuilt("GetRow"),
    Unbuilt("Reorder"),
    Unbuilt("Transpose"),
    Unbuilt("GetAsVector"),
    Unbuilt("SetByVector"),
    Unbuilt("DotMultiply"),
    Unbuilt("DotDivide"),
    Unbuilt("DotPower"),
    Unbuilt("Sort"),
    Unbuilt("GetMax"),
    Unbuilt("GetMin"),
    Unbuilt("GetMedian"),
    Unbuilt("GetMean"),
    Unbuilt("RemoveEmptyRows"),
    Unbuilt("Shrink"),
    Unbuilt("GetSubMatrix"),
    Unbuilt("SetSubMatrix"),
    Unbuilt("CopyTo"),
    Unbuilt("CopyFrom"),
    Unbuilt("ImDilate"),
    Unbuilt("ImErode"),
    Unbuilt("ImOpen"),
    Unbuilt("ImClose"),
    Unbuilt("Replace"),
    Unbuilt("CopyFromWks"),
    Unbuilt("GetReal"),
    Unbuilt("GetImaginary"),
    Unbuilt("GetPhase"),
    Unbuilt("GetAmplitude"),
    Unbuilt("Inverse"),
    Unbuilt("Conjugate"),
    Unbuilt("MakeComplex"),
    Unbuilt("SumColumns"),
    Unbuilt("Concatenate"),
    Unbuilt("FFTShift"),
    Unbuilt("IFFTShift"),
    Unbuilt("FreqFilter"),
    Unbuilt("DuplicateBlock"),
    Unbuilt("GetLowerTriangular"),
    Unbuilt("GetUpperTriangular"),
    Unbuilt("MakeIdentity"),
    Unbuilt("CastToInteger"),
    Unbuilt("CastToDouble"),
    Unbuilt("GetDiagonal"),
    Unbuilt("SetDiagonal"),
    Unbuilt("Ceil"),
    Unbuilt("Floor"),
    Unbuilt("Fix"),
    Unbuilt("Round"),
    Unbuilt("AllNonZero"),
    Unbuilt("AnyNonZero"),
    Unbuilt("Cross"),
    Unbuilt("Difference"),
    Unbuilt("CumulativeSum"),
    Unbuilt("CumulativeProduct"),
    Unbuilt("Padding"),
    Unbuilt("GetAs2DArray"),
    Unbuilt("SetByArrayInVariant"),
    Unbuilt("PutRecordset"),
    Unbuilt("NANtoValue"),
    Unbuilt("Wrap"),
    Unbuilt("Find"),
    Unbuilt("GetSourceDim"),
    Unbuilt("ReorderRowWise"),
    Unbuilt("ReorderColWise"),
    Unbuilt("GetInternalDataType"),
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

int TCAllMatrixNonTemplBase::GetString(CStringUTF8& text) {
  text = "matrixbase";
  return 1;
}

std::initializer_list<CClassMember> vela::MatrixObjectRows() {
  static const std::initializer_list<CClassMember> rows = {
      Unbuilt("Attach"),
      Unbuilt("Detach"),
      Unbuilt("GetXMin"),
      Unbuilt("GetYMin"),
      Unbuilt("GetXMax"),
      Unbuilt("GetYMax"),
      Unbuilt("SetXMin"),
      Unbuilt("SetYMin"),
      Unbuilt("SetXMax"),
      Unbuilt("SetYMax"),
      Unbuilt("IsValid"),
      Unbuilt("Update"),
      Unbuilt("GetXValue"),
      Unbuilt("GetYValue"),
      Unbuilt("SetCellValue"),
      Unbuilt("GetCellValue"),
      Unbuilt("SetZRangeUpdate"),
      Unbuilt("SetZRange"),
      Unbuilt("GetZRange"),
      Unbuilt("GetName"),
      Unbuilt("ImageLinesProfile"),
      Unbuilt("GetInterpolatedValue"),
  };
  return rows;
}
