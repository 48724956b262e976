// The script class "Picture".
#pragma once

#include <vector>

#include "frame/interface/tessel_object.h"
#include "frame/member/arguments.h"
#include "frame/member/table.h"
#include "scalar/picture_holder.h"

// One or more slots for pictures. A call addresses slot 0, or the slot that its record names with
// kind 1; a record of another kind addresses none: status 4. A slot outside them reads as an empty
// one, and what is stored there is gone with the next such access. Each slot owns one reference.
class TCPicture : public vela::member::WithMembers<TCPicture, TesselCObject> {
 public:
  // A count of 0 is 1. args, when given, is one pointer to a call frame whose argument 0 is the
  // initial value, by the rule of assignment; code 8 is reported when it is none. Throws
  // std::bad_alloc.
  TCPicture(unsigned count, unsigned type_word, void** args);
  TCPicture(const TCPicture& other);

  using TesselCObject::GetNumericValue;

  const CRuntimeClass* GetRuntimeClass() const override;
  const char* GetTCTypeName() const override { return "Picture"; }
  static const CClassMember* MemberTable();

  // Handles are raw bytes of their argument; the result is 1, or 0 when no picture could be made.
  // From a bitmap, metafile or icon, the slot then is empty; CreateFromEnhMetafile empties it
  // before it tries. take_ownership: the drawing is deleted with the picture.
  int CreateFromBitmap(CTCall* call);
  int CreateFromMetafile(CTCall* call);
  int CreateFromEnhMetafile(CTCall* call);
  int CreateFromIcon(CTCall* call);
  // From an image file that the host can read; otherwise 0, and the slot keeps its picture.
  int Load(CTCall* call);
  // HIMETRIC; -1 for an empty slot.
  int GetWidth(CTCall* call);
  int GetHeight(CTCall* call);
  // Draws on the device context of an object of type id 105, which gives it through
  // GetArgObjectPtrMSO. Rectangles are raw bytes of four 32-bit integers.
  int Render(CTCall* call);

  // Assignment only; status 259 for any other operation or kind of source, 4 for an invalid slot of
  // either. Sources are pictures and automation values that hold an object, whose picture it is.
  int Operate2(const MSOINDICES* at, unsigned op, const tagMSOOBJVECT& operand,
               unsigned options) override;
  // The picture as an automation object; empty for an empty slot. value is cleared first.
  int GetNumericValue(const MSOINDICES* at, VARIANT& value) override;
  int GetIntoVariant(const MSOINDICES* at, VARIANT* value) override;
  // Status 259 for a value that holds no object.
  int SetFromVariant(const MSOINDICES* at, const VARIANT* value) override;
  // A picture's interface pointer, into slot 0 with a reference added; null empties it.
  int SetValueFromDWORD(std::uint64_t value) override;
  // Address of the slot (IPicture**), of the first one without a record; for ids 0 and 138.
  void* GetArgObjectPtrMSO(const MSOINDICES* at, unsigned type_id) override;
  int IsValidElement(const MSOINDICES* at) override;
  int GetWrpperObjectDisplayInfo(CStringUTF8& text, const MSOINDICES* at) override;
  int ResetValue() override;
  int GetArraySize() const override { return static_cast<int>(slots_.size()); }
  CScriptVelaObject* CreateCopy() override;

 private:
  // Null for an invalid selection.
  vela::PictureHolder* Select(const MSOINDICES* at);
  template <class Body>
  int RunOnSlot(CTCall* call, unsigned arguments, Body&& body);
  int Assign(const MSOINDICES* at, const tagMSOOBJVECT& source);

  std::vector<vela::PictureHolder> slots_;
  vela::PictureHolder outside_;  // what every slot outside them stands for
};
