#include "vector/vector_base.h"

#include "frame/interface/missing_value.h"
#include "frame/member/table.h"

using vela::member::Arguments;
using vela::member::Check;
using vela::member::Fail;

namespace {

using Base = TCAllVectorNonTemplBase;
using vela::member::Method;
using vela::member::Unbuilt;

const CClassMember kVectorMembers[] = {
    Method("SetSize", &Base::SetSize),
    Method("GetSize", &Base::GetSize),
    Method("Append", &Base::Append),
    Method("Sort", &Base::Sort),
    Method("Reorder", &Base::Reorder),
    Method("Sum", &Base::Sum),
    Method("GetMinMax", &Base::GetMinMax),
    Method("Difference", &Base::Difference),
    Method("FrequencyCount", &Base::FrequencyCount),
    Method("GetBytes", &Base::GetBytes),
    Method("SetBytes", &Base::SetBytes),
    Method("GetParleyVectorValue", &Base::GetParleyVectorValue),
    Method("SetParleyVectorValue", &Base::SetParleyVectorValue),
    Method("GetInternalDataType", &Base::GetInternalDataType),
    Method("Data", &Base::Data),
    Method("Uniform", &Base::Uniform),
    Method("Normal", &Base::Normal),
    Method("Wrap", &Base::Wrap),
    Method("IsValid", &Base::IsValid),
    Method("GetSubVector", &Base::GetSubVector),
    Method("SetSubVector", &Base::SetSubVector),
    Method("SetUpperBound", &Base::SetUpperBound),
    Method("SetLowerBound", &Base::SetLowerBound),
    Method("GetDataAsOneDimensionalArray", &Base::GetDataAsOneDimensionalArray),
    Method("GetAs1DArray", &Base::GetAs1DArray),
    Method("Find", &Base::Find),
    Method("GetAs2DArray", &Base::GetAs2DArray),
    Method("Average", &Base::Average),
    Method("GetReal", &Base::GetReal),
    Method("GetImaginary", &Base::GetImaginary),
    Method("GetAmplitude", &Base::GetAmplitude),
    Method("GetPhase", &Base::GetPhase),
    Method("Conjugate", &Base::Conjugate),
    Method("MakeComplex", &Base::MakeComplex),
    Method("GetUpperBound", static_cast<int (Base::*)(CTCall*)>(&Base::GetUpperBound)),
    Method("GetLowerBound", &Base::GetLowerBound),
    Method("RemoveAll", &Base::RemoveAll),
    Unbuilt("GetSourceRange"),
    Unbuilt("HasX"),
    Unbuilt("AttachX"),
    Unbuilt("GetRectPoints"),
    Method("GetName", &Base::GetName),
    Unbuilt("Update"),
    Method("TrimLeft", &Base::TrimLeft),
    Method("TrimRight", &Base::TrimRight),
    Method("Trim", &Base::Trim),
    Unbuilt("CopyX"),
    Method("CopyData", &Base::CopyData),
    Method("Replace", &Base::Replace),
    Unbuilt("UpdateRowColRanges"),
    Method("InsertValue", &Base::InsertValue),
    Unbuilt("GetSourceDataRange"),
    Method("GetOutputComment", &Base::GetOutputComment),
    Method("SetOutputComment", &Base::SetOutputComment),
    Method("Abs", &Base::Abs),
    Unbuilt("CopySourceDataRange"),
    Method("Pattern", &Base::Pattern),
    Method("Merge", &Base::Merge),
    Method("Product", &Base::Product),
    {},
};

}  // namespace

TCAllVectorNonTemplBase::TCAllVectorNonTemplBase(unsigned type_word) { InitTypeIDs(type_word); }

const CClassMember* TCAllVectorNonTemplBase::MemberTable() { return kVectorMembers; }

int TCAllVectorNonTemplBase::GetString(CStringUTF8& text) {
  text = "vectorbase";
  return 1;
}

int TCAllVectorNonTemplBase::GetVecArrayIndex(const MSOINDICES* at) const {
  return at == nullptr ? 0 : at->ObjectIndex();
}

unsigned TCAllVectorNonTemplBase::GetTypeIDCheckIndex(const MSOINDICES*) { return GetTypeID(); }

int TCAllVectorNonTemplBase::RawResize(int, std::int64_t) { return status::kUnsupported; }
int TCAllVectorNonTemplBase::ResizeWithLowerBound(int, std::int64_t, int) {
  return status::kUnsupported;
}

int TCAllVectorNonTemplBase::Row(Arguments& args) const {
  const int row = GetVecArrayIndex(&args.Indices());
  if (row < 0) Fail(status::kUnresolved);
  if (row >= RowCount()) Fail(status::kOutOfRange);
  return row;
}

bool TCAllVectorNonTemplBase::IsOneRowOfMany(const MSOINDICES& at) const {
  return at.ObjectKind() != MSOINDICES::kWhole && RowCount() > 1;
}

void TCAllVectorNonTemplBase::RefuseOneRowOfMany(Arguments& args, int code) const {
  if (IsOneRowOfMany(args.Indices())) Fail(code);
}

namespace vela {

bool VectorArgument::IsReal() const {
  return WithElementType(vector->GetInternalDataTypeID(),
                         []<class T>() { return SimpleElement<T>; });
}

RowElements::RowElements(const VectorArgument& source)
    : run_(source.vector->ContiguousRun(source.row)) {
  if (run_.type_id != kTypeNone) return;
  copy_.resize(source.Size());
  for (std::size_t i = 0; i < copy_.size(); ++i) {
    const MSOINDICES at = MSOINDICES::Object(source.row).WithElement(static_cast<int>(i));
    if (source.vector->GetDouble(&at, copy_[i]) != status::kOk) copy_[i] = kMissingValue;
  }
  run_ = ElementRun(std::span<const double>(copy_));
}

VectorArgument OptionalVector(Arguments& args, unsigned arg) {
  const tagMSOOBJVECT object = args.Object(arg);
  if (object.object == nullptr) return {};
  auto* vector = dynamic_cast<TCAllVectorNonTemplBase*>(object.object);
  if (vector == nullptr || object.indices.ElementCount() != 0) Fail(status::kBadArguments);
  const int row = vector->GetVecArrayIndex(&object.indices);
  if (row < 0 || row >= vector->RowCount()) Fail(status::kOutOfRange);
  return {vector, row};
}

VectorArgument RequiredVector(Arguments& args, unsigned arg) {
  const VectorArgument vector = OptionalVector(args, arg);
  if (!vector) Fail(status::kBadArguments);
  return vector;
}

}  // namespace vela
