// The virtual operations of a script object must keep their declared order: hosts call by slot.
#include <cstring>
#include <gtest/gtest.h>

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

template <class... Slots>
void ExpectIncreasing(Slots... each) {
  const std::ptrdiff_t slots[] = {each...};
  for (std::size_t i = 1; i < sizeof...(each); ++i) {
    EXPECT_LT(slots[i - 1], slots[i]) << "entry " << i;
  }
}

TEST(SlotOrder, MainOperations) {
  ExpectIncreasing(
      Slot(&CPLBase::GetRuntimeClass), Overload<>()(&VELAObj::IsValid), Slot(&VELAObj::OnLHMessage),
      Slot(&CTypeBase::FindMember), Slot(&CTypeBase::DoMethod), Slot(&CTypeBase::DoPropertyGet),
      Slot(&CTypeBase::DoPropertySet), Slot(&Object::GetValueToBuffer),
      Overload<CStringUTF8&>()(&Object::GetString),
      Overload<At, CStringUTF8&>()(&Object::GetString), Overload<const char*>()(&Object::SetString),
      Overload<At, const char*>()(&Object::SetString), Overload<int&>()(&Object::GetInt),
      Overload<At, int&>()(&Object::GetInt), Overload<int>()(&Object::SetInt),
      Overload<double&>()(&Object::GetDouble), Overload<At, double&>()(&Object::GetDouble),
      Overload<double>()(&Object::SetDouble), Slot(&Object::RequiresMemoryPtr),
      Slot(&Object::SetMemberMemory), Slot(&Object::GetValueForPtrAsExternalFuncArg),
      Slot(&Object::SetMemoryPtrObjectCreationID), Slot(&Object::SetMemoryPtrObject),
      Slot(&Object::GetAddressForDisplay), Slot(&Object::GetBufferSize),
      Slot(&Object::GetSourceRange), Slot(&Object::GetSourceCTKRange),
      Slot(&Object::SetPtrArgForCOMEventHandlingFromWrongVariantType),
      Slot(&Object::GetBufferMSOEx), Slot(&Object::GetBufferMSO), Slot(&Object::ReleaseBufferMSO),
      Slot(&Object::GetVariantArray), Slot(&Object::SetVariantArray),
      Slot(&Object::GetArgObjectPtrMSO), Slot(&Object::GetDispatchInterface),
      Slot(&Object::SetBufferSize), Slot(&Object::GetPLFunction),
      Slot(&Object::GetTypeIDCheckIndex), Slot(&Object::IsVariantArraySource),
      Slot(&Object::ResetValue), Slot(&Object::GetMatrixDimensions),
      Slot(&Object::GetIndicesForWholeVectorOperation),
      Slot(&Object::GetIndicesForWholeMatrixOperation), Slot(&Object::GetTargetForPtrAssignment),
      Slot(&Object::CreateMemoryPtrTarget), Slot(&Object::CreateCopy), Slot(&Object::Operate2),
      Slot(&Object::GetActualObject), Slot(&Object::GetActualObjectEx),
      Slot(&Object::GetUpperBound), Slot(&Object::GetOneTarget),
      Slot(&Object::DiagnoseJunkPointers), Overload<At, char&>()(&Object::GetIntegralValue),
      Overload<At, std::uint64_t&>()(&Object::GetIntegralValue),
      Overload<At, char&>()(&Object::GetNumericValue),
      Overload<At, VARIANT&>()(&Object::GetNumericValue),
      Overload<At, char>()(&Object::SetNumericValue),
      Overload<At, const VARIANT&>()(&Object::SetNumericValue),
      Overload<float&>()(&Object::GetFloatingValue),
      Overload<At, double&>()(&Object::GetFloatingValue), Slot(&Object::SupportsAuxillX),
      Slot(&Object::DoRuntimeCopyOvers), Slot(&Object::SetValueFromDWORD),
      Slot(&Object::BeginGetValueForExternalCall), Slot(&Object::EndGetValueForExternalCall),
      Slot(&Object::GetVariantAddress), Slot(&Object::SetFromDataset),
      Slot(&Object::ExecuteTCDestructor), Slot(&Object::SetSizeForVectorToSimpleTypeFuncCall),
      Slot(&Object::GetLimitsForVectorToSimpleTypeFuncCall), Slot(&Object::StorageXVariable),
      Slot(&Object::GetArraySize), Slot(&Object::GetDateTypeString), Slot(&Object::GetArrayElement),
      Slot(&Object::GetReferenceTarget), Slot(&Object::IsMixedTypeDataSet),
      Slot(&Object::SetMixedTypeDataSet), Slot(&Object::Release), Slot(&Object::SetExternalData),
      Slot(&Object::ModifyExternalDataPtr), Slot(&Object::GetExternalData),
      Slot(&Object::CompareVals), Slot(&Object::InitalizeFromMemory), Slot(&Object::GetDisplaySize),
      Slot(&Object::GetDisplayElement), Slot(&Object::PrepareDisplayIndices),
      Slot(&Object::GetDisplayExpandableHeader), Slot(&Object::GetNumeric),
      Slot(&Object::SetMemoryPtr), Slot(&Object::IsValidElement),
      Slot(&Object::GetWrpperObjectDisplayInfo), Slot(&Object::SetModify),
      Slot(&Object::InfoVariableValue), Overload<const OneTCcomplex&>()(&Object::SetComplex),
      Overload<At, const OneTCcomplex&>()(&Object::SetComplex), Slot(&Object::GetComplexValue),
      Slot(&Object::SetComplexValue), Overload<At, PointInt&>()(&Object::GetPointValue),
      Overload<At, Point3D&>()(&Object::GetPointValue), Overload<PointInt&>()(&Object::GetPoint),
      Overload<Point3D&>()(&Object::GetPoint), Slot(&Object::SetVectorDimension),
      Overload<unsigned>()(&TesselCObject::SetBufferSize));
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
