#include "vector/vector_base.h"

using vela::Layer;
using vela::member::Arguments;
using vela::member::Fail;

namespace {

using Vector = TCAllVectorNonTemplBase;
using vela::member::Method;

const CClassMember kVectorMembers[] = {
    Method("SetSize", &Vector::SetSize),
    Method("GetSize", &Vector::GetSize),
    Method("Append", &Vector::Append),
    Method("Sort", &Vector::Sort),
    Method("Reorder", &Vector::Reorder),
    Method("Sum", &Vector::Sum),
    Method("GetMinMax", &Vector::GetMinMax),
    Method("Difference", &Vector::Difference),
    Method("FrequencyCount", &Vector::FrequencyCount),
    Method("GetBytes", &Vector::GetBytes),
    Method("SetBytes", &Vector::SetBytes),
    Method("GetParleyVectorValue", &Vector::GetParleyVectorValue),
    Method("SetParleyVectorValue", &Vector::SetParleyVectorValue),
    Method("GetInternalDataType", &Vector::GetInternalDataType),
    Method("Data", &Vector::Data),
    Method("Uniform", &Vector::Uniform),
    Method("Normal", &Vector::Normal),
    Method("Wrap", &Vector::Wrap),
    Method("IsValid", static_cast<int (Vector::*)(CTCall*)>(&Vector::IsValid)),
    Method("GetSubVector", &Vector::GetSubVector),
    Method("SetSubVector", &Vector::SetSubVector),
    Method("SetUpperBound", &Vector::SetUpperBound),
    Method("SetLowerBound", &Vector::SetLowerBound),
    Method("GetDataAsOneDimensionalArray", &Vector::GetDataAsOneDimensionalArray),
    Method("GetAs1DArray", &Vector::GetAs1DArray),
    Method("Find", &Vector::Find),
    Method("GetAs2DArray", &Vector::GetAs2DArray),
    Method("Average", &Vector::Average),
    Method("GetReal", &Vector::GetReal),
    Method("GetImaginary", &Vector::GetImaginary),
    Method("GetAmplitude", &Vector::GetAmplitude),
    Method("GetPhase", &Vector::GetPhase),
    Method("Conjugate", &Vector::Conjugate),
    Method("MakeComplex", &Vector::MakeComplex),
    Method("GetUpperBound", static_cast<int (Vector::*)(CTCall*)>(&Vector::GetUpperBound)),
    Method("GetLowerBound", &Vector::GetLowerBound),
    Method("RemoveAll", &Vector::RemoveAll),
    Method("GetSourceRange", static_cast<int (Vector::*)(CTCall*)>(&Vector::GetSourceRange)),
    Method("HasX", &Vector::HasX),
    Method("AttachX", &Vector::AttachX),
    Method("GetRectPoints", &Vector::GetRectPoints),
    Method("GetName", &Vector::GetName),
    Method("Update", static_cast<int (Vector::*)(CTCall*)>(&Vector::Update)),
    Method("TrimLeft", &Vector::TrimLeft),
    Method("TrimRight", &Vector::TrimRight),
    Method("Trim", &Vector::Trim),
    Method("CopyX", &Vector::CopyX),
    Method("CopyData", &Vector::CopyData),
    Method("Replace", &Vector::Replace),
    Method("UpdateRowColRanges", &Vector::UpdateRowColRanges),
    Method("InsertValue", &Vector::InsertValue),
    Method("GetSourceDataRange", &Vector::GetSourceDataRange),
    Method("GetOutputComment", &Vector::GetOutputComment),
    Method("SetOutputComment", &Vector::SetOutputComment),
    Method("Abs", &Vector::Abs),
    Method("CopySourceDataRange", &Vector::CopySourceDataRange),
    Method("Pattern", &Vector::Pattern),
    Method("Merge", &Vector::Merge),
    Method("Product", &Vector::Product),
    {},
};

}  // namespace

TCAllVectorNonTemplBase::TCAllVectorNonTemplBase(unsigned type_word) { InitTypeIDs(type_word); }

const CRuntimeClass* TCAllVectorNonTemplBase::GetRuntimeClass() const {
  static const CRuntimeClass runtime_class{
      "TCAllVectorNonTemplBase", sizeof(TCAllVectorNonTemplBase), TesselCObject::GetRuntimeClass()};
  return &runtime_class;
}

const CClassMember* TCAllVectorNonTemplBase::MemberTable() { return kVectorMembers; }

int TCAllVectorNonTemplBase::RawResize(int, std::int64_t) { return status::kUnsupported; }
int TCAllVectorNonTemplBase::ResizeWithLowerBound(int, std::int64_t, int) {
  return status::kUnsupported;
}

int TCAllVectorNonTemplBase::ResizeLayer(int row, const vela::LayerShape& shape, vela::Contents) {
  return RawResize(row, shape.Size());
}

int TCAllVectorNonTemplBase::Row(Arguments& args) const {
  const int row = args.Indices().ObjectIndex();
  const int rows = LayerCount();
  if (row >= 0 && row < rows) [[likely]]
    return row;
  if (rows == 0) Fail(StatusOfNoLayer(status::kUnsupported));
  Fail(row < 0 ? status::kUnresolved : status::kOutOfRange);
}

Layer TCAllVectorNonTemplBase::AddressedNumbers(Arguments& args) {
  const Layer row = Addressed(args);
  if (!vela::IsNumeric(row)) Fail(status::kUnsupported);
  return row;
}

vela::LayerElements TCAllVectorNonTemplBase::AddressedElements(Arguments& args) {
  return vela::LayerElements(Addressed(args), status::kUnsupported);
}

Layer TCAllVectorNonTemplBase::AddressedComplex(Arguments& args) {
  const Layer row = Addressed(args);
  if (row.TypeId() != kTypeComplex) Fail(status::kUnsupported);
  return row;
}

void TCAllVectorNonTemplBase::RefuseOneRowOfMany(Arguments& args, int code) const {
  if (args.Indices().ObjectKind() != MSOINDICES::kWhole && LayerCount() > 1) Fail(code);
}
