// The virtual operations of a script object must keep their declared order: hosts call by slot.
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "frame/interface/call.h"
#include "frame/interface/tessel_object.h"

namespace {

// In the C++ ABI of both platforms' compilers a pointer to a virtual member function starts with
// one more than the byte offset of its slot.
template <class Function>
std::ptrdiff_t Slot(Function function) {
  std::ptrdiff_t offset = 0;
  std::memcpy(&offset, &function, sizeof offset);
  EXPECT_EQ(offset % 8, 1) << "not virtual";
  return offset / 8;
}

// Slot of the overload with exactly these arguments.
template <class... Arguments>
struct Overload {
  template <class Result, class Class>
  std::ptrdiff_t operator()(Result (Class::*function)(Arguments...)) const {
    return Slot(function);
  }
};

using Object = CScriptVelaObject;
using At = const MSOINDICES*;

struct Entry {
  const char* name;
  std::ptrdiff_t slot;
};

void ExpectIncreasing(const std::vector<Entry>& entries) {
  for (std::size_t i = 1; i < entries.size(); ++i) {
    EXPECT_LT(entries[i - 1].slot, entries[i].slot)
        << entries[i].name << " must come after " << entries[i - 1].name;
  }
}

TEST(SlotOrder, MainOperations) {
  ExpectIncreasing({
      {"GetRuntimeClass", Slot(&CPLBase::GetRuntimeClass)},
      {"IsValid", Overload<>()(&VELAObj::IsValid)},
      {"OnLHMessage", Slot(&VELAObj::OnLHMessage)},
      {"FindMember", Slot(&CTypeBase::FindMember)},
      {"DoMethod", Slot(&CTypeBase::DoMethod)},
      {"DoPropertyGet", Slot(&CTypeBase::DoPropertyGet)},
      {"DoPropertySet", Slot(&CTypeBase::DoPropertySet)},
      {"GetValueToBuffer", Slot(&Object::GetValueToBuffer)},
      {"GetString", Overload<CStringUTF8&>()(&Object::GetString)},
      {"GetString at", Overload<At, CStringUTF8&>()(&Object::GetString)},
      {"SetString", Overload<const char*>()(&Object::SetString)},
      {"SetString at", Overload<At, const char*>()(&Object::SetString)},
      {"GetInt", Overload<int&>()(&Object::GetInt)},
      {"GetInt at", Overload<At, int&>()(&Object::GetInt)},
      {"SetInt", Overload<int>()(&Object::SetInt)},
      {"GetDouble", Overload<double&>()(&Object::GetDouble)},
      {"GetDouble at", Overload<At, double&>()(&Object::GetDouble)},
      {"SetDouble", Overload<double>()(&Object::SetDouble)},
      {"RequiresMemoryPtr", Slot(&Object::RequiresMemoryPtr)},
      {"SetMemberMemory", Slot(&Object::SetMemberMemory)},
      {"GetValueForPtrAsExternalFuncArg", Slot(&Object::GetValueForPtrAsExternalFuncArg)},
      {"SetMemoryPtrObjectCreationID", Slot(&Object::SetMemoryPtrObjectCreationID)},
      {"SetMemoryPtrObject", Slot(&Object::SetMemoryPtrObject)},
      {"GetAddressForDisplay", Slot(&Object::GetAddressForDisplay)},
      {"GetBufferSize", Slot(&Object::GetBufferSize)},
      {"GetSourceRange", Slot(&Object::GetSourceRange)},
      {"GetSourceCTKRange", Slot(&Object::GetSourceCTKRange)},
      {"SetPtrArgForCOMEventHandlingFromWrongVariantType",
       Slot(&Object::SetPtrArgForCOMEventHandlingFromWrongVariantType)},
      {"GetBufferMSOEx", Slot(&Object::GetBufferMSOEx)},
      {"GetBufferMSO", Slot(&Object::GetBufferMSO)},
      {"ReleaseBufferMSO", Slot(&Object::ReleaseBufferMSO)},
      {"GetVariantArray", Slot(&Object::GetVariantArray)},
      {"SetVariantArray", Slot(&Object::SetVariantArray)},
      {"GetArgObjectPtrMSO", Slot(&Object::GetArgObjectPtrMSO)},
      {"GetDispatchInterface", Slot(&Object::GetDispatchInterface)},
      {"SetBufferSize", Slot(&Object::SetBufferSize)},
      {"GetPLFunction", Slot(&Object::GetPLFunction)},
      {"GetTypeIDCheckIndex", Slot(&Object::GetTypeIDCheckIndex)},
      {"IsVariantArraySource", Slot(&Object::IsVariantArraySource)},
      {"ResetValue", Slot(&Object::ResetValue)},
      {"GetMatrixDimensions", Slot(&Object::GetMatrixDimensions)},
      {"GetIndicesForWholeVectorOperation", Slot(&Object::GetIndicesForWholeVectorOperation)},
      {"GetIndicesForWholeMatrixOperation", Slot(&Object::GetIndicesForWholeMatrixOperation)},
      {"GetTargetForPtrAssignment", Slot(&Object::GetTargetForPtrAssignment)},
      {"CreateMemoryPtrTarget", Slot(&Object::CreateMemoryPtrTarget)},
      {"CreateCopy", Slot(&Object::CreateCopy)},
      {"Operate2", Slot(&Object::Operate2)},
      {"GetActualObject", Slot(&Object::GetActualObject)},
      {"GetActualObjectEx", Slot(&Object::GetActualObjectEx)},
      {"GetUpperBound", Slot(&Object::GetUpperBound)},
      {"GetOneTarget", Slot(&Object::GetOneTarget)},
      {"DiagnoseJunkPointers", Slot(&Object::DiagnoseJunkPointers)},
      {"GetIntegralValue first", Overload<At, char&>()(&Object::GetIntegralValue)},
      {"GetIntegralValue last", Overload<At, std::uint64_t&>()(&Object::GetIntegralValue)},
      {"GetNumericValue first", Overload<At, char&>()(&Object::GetNumericValue)},
      {"GetNumericValue last", Overload<At, VARIANT&>()(&Object::GetNumericValue)},
      {"SetNumericValue first", Overload<At, char>()(&Object::SetNumericValue)},
      {"SetNumericValue last", Overload<At, const VARIANT&>()(&Object::SetNumericValue)},
      {"GetFloatingValue first", Overload<float&>()(&Object::GetFloatingValue)},
      {"GetFloatingValue last", Overload<At, double&>()(&Object::GetFloatingValue)},
      {"SupportsAuxillX", Slot(&Object::SupportsAuxillX)},
      {"DoRuntimeCopyOvers", Slot(&Object::DoRuntimeCopyOvers)},
      {"SetValueFromDWORD", Slot(&Object::SetValueFromDWORD)},
      {"BeginGetValueForExternalCall", Slot(&Object::BeginGetValueForExternalCall)},
      {"EndGetValueForExternalCall", Slot(&Object::EndGetValueForExternalCall)},
      {"GetVariantAddress", Slot(&Object::GetVariantAddress)},
      {"SetFromDataset", Slot(&Object::SetFromDataset)},
      {"ExecuteTCDestructor", Slot(&Object::ExecuteTCDestructor)},
      {"SetSizeForVectorToSimpleTypeFuncCall", Slot(&Object::SetSizeForVectorToSimpleTypeFuncCall)},
      {"GetLimitsForVectorToSimpleTypeFuncCall",
       Slot(&Object::GetLimitsForVectorToSimpleTypeFuncCall)},
      {"StorageXVariable", Slot(&Object::StorageXVariable)},
      {"GetArraySize", Slot(&Object::GetArraySize)},
      {"GetDateTypeString", Slot(&Object::GetDateTypeString)},
      {"GetArrayElement", Slot(&Object::GetArrayElement)},
      {"GetReferenceTarget", Slot(&Object::GetReferenceTarget)},
      {"IsMixedTypeDataSet", Slot(&Object::IsMixedTypeDataSet)},
      {"SetMixedTypeDataSet", Slot(&Object::SetMixedTypeDataSet)},
      {"Release", Slot(&Object::Release)},
      {"SetExternalData", Slot(&Object::SetExternalData)},
      {"ModifyExternalDataPtr", Slot(&Object::ModifyExternalDataPtr)},
      {"GetExternalData", Slot(&Object::GetExternalData)},
      {"CompareVals", Slot(&Object::CompareVals)},
      {"InitalizeFromMemory", Slot(&Object::InitalizeFromMemory)},
      {"GetDisplaySize", Slot(&Object::GetDisplaySize)},
      {"GetDisplayElement", Slot(&Object::GetDisplayElement)},
      {"PrepareDisplayIndices", Slot(&Object::PrepareDisplayIndices)},
      {"GetDisplayExpandableHeader", Slot(&Object::GetDisplayExpandableHeader)},
      {"GetNumeric", Slot(&Object::GetNumeric)},
      {"SetMemoryPtr", Slot(&Object::SetMemoryPtr)},
      {"IsValidElement", Slot(&Object::IsValidElement)},
      {"GetWrpperObjectDisplayInfo", Slot(&Object::GetWrpperObjectDisplayInfo)},
      {"SetModify", Slot(&Object::SetModify)},
      {"InfoVariableValue", Slot(&Object::InfoVariableValue)},
      {"SetComplex", Overload<const OneTCcomplex&>()(&Object::SetComplex)},
      {"SetComplex at", Overload<At, const OneTCcomplex&>()(&Object::SetComplex)},
      {"GetComplexValue", Slot(&Object::GetComplexValue)},
      {"SetComplexValue", Slot(&Object::SetComplexValue)},
      {"GetPointValue first", Overload<At, PointInt&>()(&Object::GetPointValue)},
      {"GetPointValue last", Overload<At, Point3D&>()(&Object::GetPointValue)},
      {"GetPoint first", Overload<PointInt&>()(&Object::GetPoint)},
      {"GetPoint last", Overload<Point3D&>()(&Object::GetPoint)},
      {"SetVectorDimension", Slot(&Object::SetVectorDimension)},
      {"own SetBufferSize", Overload<unsigned>()(&TesselCObject::SetBufferSize)},
  });
  EXPECT_LT(Slot(&Object::SetVectorDimension), Overload<>()(&TesselCObject::GetBufferSize));
}

TEST(SlotOrder, OverloadsLieTogether) {
  const auto span = [](std::ptrdiff_t first, std::ptrdiff_t last) { return last - first + 1; };
  EXPECT_EQ(span(Overload<At, char&>()(&Object::GetIntegralValue),
                 Overload<At, std::uint64_t&>()(&Object::GetIntegralValue)),
            8);
  EXPECT_EQ(span(Overload<At, char&>()(&Object::GetNumericValue),
                 Overload<At, VARIANT&>()(&Object::GetNumericValue)),
            13);
  EXPECT_EQ(span(Overload<At, char>()(&Object::SetNumericValue),
                 Overload<At, const VARIANT&>()(&Object::SetNumericValue)),
            15);
  EXPECT_EQ(span(Overload<float&>()(&Object::GetFloatingValue),
                 Overload<At, double&>()(&Object::GetFloatingValue)),
            4);
}

TEST(SlotOrder, CallFrameStartsWithReadinessAndNotice) {
  EXPECT_EQ(Slot(&CTCall::IsReady), 0);
  EXPECT_EQ(Slot(&CTCall::Notify), 1);
}

}  // namespace
