// The names of every member table, in row order.
#pragma once

#include <iterator>
#include <sstream>
#include <string>
#include <vector>

namespace vela::testing {

using Names = std::vector<std::string>;

inline Names Words(const char* text) {
  std::istringstream words(text);
  return {std::istream_iterator<std::string>{words}, {}};
}

inline const Names kVectorNames = Words(
    "SetSize GetSize Append Sort Reorder Sum GetMinMax Difference FrequencyCount GetBytes "
    "SetBytes GetParleyVectorValue SetParleyVectorValue GetInternalDataType Data Uniform Normal "
    "Wrap IsValid GetSubVector SetSubVector SetUpperBound SetLowerBound "
    "GetDataAsOneDimensionalArray GetAs1DArray Find GetAs2DArray Average GetReal GetImaginary "
    "GetAmplitude GetPhase Conjugate MakeComplex GetUpperBound GetLowerBound RemoveAll "
    "GetSourceRange HasX AttachX GetRectPoints GetName Update TrimLeft TrimRight Trim CopyX "
    "CopyData Replace UpdateRowColRanges InsertValue GetSourceDataRange GetOutputComment "
    "SetOutputComment Abs CopySourceDataRange Pattern Merge Product");
inline const Names kTypedVectorNames =
    Words("GetDataAsOneDimensionalArrayOfVariants Add SetAtGrow InsertAt RemoveAt");
inline const Names kStringNames = Words(
    "Delete Write WriteLine Format GetLength TrimLeft TrimRight Left Right CompareNoCase "
    "Compare Find ReverseFind Insert MakeLower MakeUpper Mid GetAt SetAt GetToken GetNumTokens "
    "GetTokens SetTokens FindToken MakeValidCName IsEmpty Empty SpanIncluding SpanExcluding "
    "Replace Remove FindOneOf GetBufferSetLength GetBuffer ReleaseBuffer FreeExtra LockBuffer "
    "UnlockBuffer Match IsPath IsFile GetBytes SetBytes Count SetUTF16 Shorten");
inline const Names kFileNames = Words(
    "Open Close Seek SeekToBegin SeekToEnd Write Read GetPosition GetLastError Rename Remove "
    "Flush GetHandle ReadInt WriteInt ReadFloat WriteFloat IsOpen GetLength SetWriteEncoding "
    "WriteBOM DetectEncode");
inline const Names kStdioNames = Words(
    "Open Close Seek SeekToBegin SeekToEnd Write Read GetPosition GetLastError Rename Remove "
    "Flush WriteString ReadString CheckUniCodeBOM SetUniCodeType Scan");
inline const Names kDatasetNames = Words(
    "Attach Detach SetText GetText GetStringArray PutStringArray GetMask SetMask GetName Append "
    "Update Create Destroy TrimLeft TrimRight GetSize PushUndo");
inline const Names kCurveNames =
    Words("HasX AttachX Attach Sort GetRectPoints SetXBounds ConstructInit");
inline const Names kMatrixNames = Words(
    "SetSize GetNumRows GetNumCols ApplyFilter MedianFilter FlipHorizontal Rotate FlipVertical "
    "ReplaceGreaterThan ReplaceLessThan SetColumn GetColumn SetRow GetRow Reorder Transpose "
    "GetAsVector SetByVector DotMultiply DotDivide DotPower Sort GetMax GetMin GetMedian "
    "GetMean RemoveEmptyRows Shrink GetSubMatrix SetSubMatrix CopyTo CopyFrom ImDilate ImErode "
    "ImOpen ImClose Replace CopyFromWks GetReal GetImaginary GetPhase GetAmplitude Inverse "
    "Conjugate MakeComplex SumColumns Concatenate FFTShift IFFTShift FreqFilter DuplicateBlock "
    "GetLowerTriangular GetUpperTriangular MakeIdentity CastToInteger CastToDouble GetDiagonal "
    "SetDiagonal Ceil Floor Fix Round AllNonZero AnyNonZero Cross Difference CumulativeSum "
    "CumulativeProduct Padding GetAs2DArray SetByArrayInVariant PutRecordset NANtoValue Wrap "
    "Find GetSourceDim ReorderRowWise ReorderColWise GetInternalDataType");
inline const Names kMatrixObjectNames = Words(
    "Attach Detach GetXMin GetYMin GetXMax GetYMax SetXMin SetYMin SetXMax SetYMax IsValid "
    "Update GetXValue GetYValue SetCellValue GetCellValue SetZRangeUpdate SetZRange GetZRange "
    "GetName ImageLinesProfile GetInterpolatedValue");
inline const Names kStringArrayNames = Words("Add SetAtGrow InsertAt RemoveAt FindDuplicates");
inline const Names kVariantNames =
    Words("vt GetSubVariant CreateAsArray SetOneVariantInArray GetNumDimensions GetSize SetHWND");
inline const Names kComplexNames = Words("Conjugate m_re m_im GetPhase GetAmplitude");
inline const Names kComplexDatasetNames = Words("Attach Create");
inline const Names kCategoricalNames = Words("Attach Map Group");
inline const Names kPictureNames = Words(
    "CreateFromBitmap CreateFromMetafile CreateFromEnhMetafile CreateFromIcon Render Load "
    "GetWidth GetHeight");
inline const Names kPointNames = Words("x y z");

}  // namespace vela::testing
