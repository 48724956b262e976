// The script class "_VARIANT": automation values.
#pragma once

#include <memory>
#include <vector>

#include "frame/interface/tessel_object.h"
#include "frame/member/arguments.h"
#include "frame/member/table.h"
#include "frame/value_access.h"
#include "platform/com_variant.h"

// One or more automation values; an operation addresses value at->ObjectIndex(), status 2 outside
// them. The object owns its values and clears them. A value reads as any element type and as text
// by what it stands for (frame/interface/automation_values.h), and takes the automation type of
// what is written to it: numbers by their width, complex values and points as arrays of doubles.
class TCVariantObj
    : public vela::member::WithMembers<TCVariantObj,
                                       vela::ValueAccess<TCVariantObj, TesselCObject>> {
 public:
  using ValueAccess::GetNumericValue;
  using ValueAccess::GetString;
  using ValueAccess::SetNumericValue;
  using ValueAccess::SetString;

  // A count of 0 is 1. args, when given, is one pointer to a call frame whose argument 0 is the
  // initial value. Throws std::bad_alloc.
  TCVariantObj(unsigned count, unsigned type_word, void** args);
  // Throws AutomationError where a value cannot be copied.
  TCVariantObj(const TCVariantObj& other);

  // --- Members; status 8 for a value of the wrong kind, 282 for an array that cannot be locked ---

  // The type of the value; it cannot be set: status 12291.
  int GetVt(CTCall* call);
  int SetVt(CTCall* call);
  // (int index, _VARIANT& var): copies an element of an array of variants, counted in memory order
  // (first index fastest); 1, or 0 for an index that is too large. Status 8 for a negative one.
  int GetSubVariant(CTCall* call);
  // (int type, int count1, int count2, int lower1, int lower2): makes the value an array of zeros,
  // of two dimensions where count2 is above 0; 1, or 0 with an empty value where the array cannot
  // be made.
  int CreateAsArray(CTCall* call);
  // (_VARIANT var, int index1, int index2): copies var into an element of an array of variants,
  // indices counted from 0; 1, or 0 for an index that is too large. Status 8 for a negative index
  // and for a value nested deeper than 100 arrays. A copy that fails leaves the element an error
  // value with the failure's code: status 287, or 278 without memory.
  int SetOneVariantInArray(CTCall* call);
  int GetNumDimensions(CTCall* call);
  // (int dimension): its number of elements; 0 where its upper bound is -1. Dimensions count from
  // 1.
  int GetSize(CTCall* call);
  // (handle): makes the value an unsigned 64-bit integer, which is how a window handle travels.
  int SetHWND(CTCall* call);

  // --- For the host ---

  const CRuntimeClass* GetRuntimeClass() const override;
  const char* GetTCTypeName() const override { return "_VARIANT"; }
  static const CClassMember* MemberTable();
  unsigned GetTypeIDCheckIndex(const MSOINDICES* at) override;
  int GetArraySize() const override { return static_cast<int>(values_.size()); }
  void* GetArrayElement(const MSOINDICES* at, int index) override;
  int IsValidElement(const MSOINDICES* at) override { return Value(at) != nullptr; }
  int IsVariantArraySource() override { return 1; }
  VARIANT* GetVariantAddress(const MSOINDICES* at) override { return Value(at); }
  int GetIntoVariant(const MSOINDICES* at, VARIANT* value) override;
  int SetFromVariant(const MSOINDICES* at, const VARIANT* value) override;
  // The value where it is an array; status 8 otherwise. The bounds are those that it has.
  int GetVariantArray(const MSOINDICES* at, VARIANT* value, int lower_bound) override;
  int SetVariantArray(const MSOINDICES* at, const VARIANT* value) override;
  int GetNumericValue(const MSOINDICES* at, VARIANT& value) override;
  int SetNumericValue(const MSOINDICES* at, const VARIANT& value) override;
  // The interface that the value holds, without a reference of its own; null for any other value.
  IDispatch* GetDispatchInterface(const MSOINDICES* at) override;
  int GetString(CStringUTF8& text) override;
  int GetString(const MSOINDICES* at, CStringUTF8& text) override { return Read(at, text); }
  int SetString(const char* text) override;
  int SetString(const MSOINDICES* at, const char* text) override;
  int GetDisplayElement(CStringUTF8& text, int index) override;
  // Empties every value; one that is locked elsewhere stays, with status 282.
  int ResetValue() override;
  CScriptVelaObject* CreateCopy() override;
  // As the operators on variants (scalar/variant_operation.h), the operand being anything that
  // turns into one.
  int Operate2(const MSOINDICES* at, unsigned op, const tagMSOOBJVECT& operand,
               unsigned options) override;
  int CompareVals(const MSOINDICES* at, unsigned op, const tagMSOOBJVECT& operand,
                  unsigned* flags) override;

  template <class U>
  int Read(const MSOINDICES* at, U& value);
  template <class U>
  int Write(const MSOINDICES* at, const U& value);

 private:
  // Null when the indices address no value.
  CComVariant* Value(const MSOINDICES* at);
  CComVariant& Addressed(vela::member::Arguments& args);

  std::vector<CComVariant> values_;
};
