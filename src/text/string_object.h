// The script class "string".
#pragma once

#include <string_view>
#include <vector>

#include "frame/interface/tessel_object.h"
#include "frame/member/arguments.h"
#include "frame/member/table.h"
#include "frame/value_access.h"

// A string variable, or a fixed array of them. An operation addresses element at->ObjectIndex();
// one outside the array is status 2. As a number a string is what its text reads as, the missing
// value when it reads as none; a number stored in it becomes its text, a char one character.
//
// Members count positions in bytes, and in characters while the host's character-index mode is on
// (those that say "units"). A position in bytes may lie inside a character: the member then cuts
// it, as asked. Statuses: 1 for an argument of the wrong type, 2 for an element that does not
// exist, 3 for a wrong number of arguments (1 where noted), 28 for an index out of range where
// noted. A count or position outside the text is otherwise clipped, or not found.
class CScriptVelaString final
    : public vela::member::WithMembers<CScriptVelaString,
                                       vela::ValueAccess<CScriptVelaString, TesselCObject>> {
  using Base = WithMembers;

 public:
  // A count of 0 is 1. args, when given, is one pointer to a call frame whose argument 0 is the
  // text of element 0. Throws std::bad_alloc.
  CScriptVelaString(unsigned count, unsigned type_id, void** args);
  CScriptVelaString(const CScriptVelaString& other);

  using Base::GetAddressForDisplay;
  using Base::GetBufferMSO;
  using Base::GetNumericValue;
  using Base::GetString;
  using Base::GetUpperBound;
  using Base::SetNumericValue;
  using Base::SetString;

  const CRuntimeClass* GetRuntimeClass() const override;
  const char* GetTCTypeName() const override { return "string"; }
  const char* GetDateTypeString() const override { return "string"; }
  static const CClassMember* MemberTable();
  unsigned GetTypeIDCheckIndex(const MSOINDICES* at) override;
  int GetArraySize() const override {
    return external_ != nullptr ? 1 : static_cast<int>(own_.size());
  }
  void* GetArrayElement(const MSOINDICES* at, int index) override;
  int GetUpperBound(const MSOINDICES* at, int& upper) override;
  int IsValidElement(const MSOINDICES* at) override { return Element(at) != nullptr; }
  CScriptVelaObject* CreateCopy() override;

  int GetString(CStringUTF8& text) override;
  int GetString(const MSOINDICES* at, CStringUTF8& text) override;
  int SetString(const char* text) override;
  int SetString(const MSOINDICES* at, const char* text) override;
  // Shares the text, embedded NULs included.
  int SetStringValue(const MSOINDICES* at, const CStringUTF8& text) override;
  // The bytes become the text; CStringUTF8::kPadding more, which can be read, follow them. The
  // quickest way for a text that comes again and again. Throws as CStringUTF8 does.
  int AssignPadded(const MSOINDICES* at, std::string_view bytes) {
    CStringUTF8* const element = Element(at);
    if (element == nullptr) return status::kUnresolved;
    element->AssignPadded(bytes);
    return status::kOk;
  }
  // A char becomes one character, not its number.
  int SetNumericValue(const MSOINDICES* at, char value) override;
  // The text in double quotes.
  int GetDisplayElement(CStringUTF8& text, int index) override;
  // Every element becomes empty.
  int ResetValue() override;
  // By bytes.
  int CompareVals(const MSOINDICES* at, unsigned op, const tagMSOOBJVECT& operand,
                  unsigned* flags) override;
  // Assign, and add, which appends; the operand is read as its text. Status 1 for another code.
  int Operate2(const MSOINDICES* at, unsigned op, const tagMSOOBJVECT& operand,
               unsigned options) override;

  // Element 0 as the CStringUTF8 at address: members then act on it in place. Null ends that.
  int SetExternalData(void* address) override;
  int GetExternalData(void** address) override;
  // The text's bytes and its terminator. A lent buffer is unshared and may be written; the length
  // stays what it was.
  unsigned GetBufferSize(const MSOINDICES* at) override;
  int SetBufferSize(const MSOINDICES* at, unsigned bytes) override;
  int GetBufferMSO(const MSOINDICES* at, void** buffer) override;
  int ReleaseBufferMSO(const MSOINDICES* at, void* buffer) override;

  // Removes nCount units from nIndex (a negative one is 0); the new length. Status 1 for no
  // argument or more than 2.
  int Delete(CTCall* call);
  // Sends the text, with CR LF line ends, to destination 0 (output window), 1 (status bar), 2,
  // 4, 5.
  int Write(CTCall* call);
  int WriteLine(CTCall* call);
  // printf into this string; status 288 when the arguments do not fit the format, which then leaves
  // the string as it was. See format.h.
  int Format(CTCall* call);
  int GetLength(CTCall* call);
  int TrimLeft(CTCall* call);
  int TrimRight(CTCall* call);
  int Left(CTCall* call);   // units
  int Right(CTCall* call);  // units
  int CompareNoCase(CTCall* call);
  int Compare(CTCall* call);
  // Position in units of a char or a text from nStart on, or -1; so is a start outside the text.
  int Find(CTCall* call);
  int ReverseFind(CTCall* call);  // units
  int Insert(CTCall* call);       // units
  int MakeLower(CTCall* call);
  int MakeUpper(CTCall* call);
  int Mid(CTCall* call);  // units
  // The char at nIndex, as a signed number; with an object, the unit's text is stored in it as
  // well. 28 out of range, 13688 when the second argument is no object.
  int GetAt(CTCall* call);
  // Replaces the unit at nIndex by a char or a text; 28 out of range.
  int SetAt(CTCall* call);
  // Tokens: see tokens.h.
  int GetToken(CTCall* call);
  int GetNumTokens(CTCall* call);
  int GetTokens(CTCall* call);
  int SetTokens(CTCall* call);
  int FindToken(CTCall* call);
  int MakeValidCName(CTCall* call);
  int IsEmpty(CTCall* call);
  int Empty(CTCall* call);
  int SpanIncluding(CTCall* call);
  int SpanExcluding(CTCall* call);
  // How many were replaced; without regard to case, by full case folding. Inserted text is never
  // searched again, and an empty old text replaces nothing.
  int Replace(CTCall* call);
  int Remove(CTCall* call);
  int FindOneOf(CTCall* call);
  // Lent memory stays valid until ReleaseBuffer, UnlockBuffer or the next change; status 3 for a
  // negative size.
  int GetBufferSetLength(CTCall* call);
  int GetBuffer(CTCall* call);
  int ReleaseBuffer(CTCall* call);
  int FreeExtra(CTCall* call);
  int LockBuffer(CTCall* call);
  int UnlockBuffer(CTCall* call);
  int Match(CTCall* call);
  int IsPath(CTCall* call);
  int IsFile(CTCall* call);
  // The bytes into (from) a vector of bytes: 1, 0 without a vector; status 1 for another type.
  int GetBytes(CTCall* call);
  int SetBytes(CTCall* call);
  int Count(CTCall* call);
  // From nLength UTF-16 units in the memory order of the machine (negative: up to a NUL unit);
  // status 3 when there are fewer, 8 when the first argument is no text. NULL empties the string.
  int SetUTF16(CTCall* call);
  // Cuts to nMaxLength bytes; 1 when it cut. See shorten.h.
  int Shorten(CTCall* call);

  template <class U>
  int Read(const MSOINDICES* at, U& value);
  template <class U>
  int Write(const MSOINDICES* at, const U& value);

 private:
  // Null when the indices address no string.
  CStringUTF8* Element(const MSOINDICES* at) {
    const int index = at == nullptr ? 0 : at->ObjectIndex();
    if (index < 0 || index >= CScriptVelaString::GetArraySize()) return nullptr;
    if (at != nullptr && at->ElementCount() != 0) return nullptr;
    return external_ != nullptr ? external_ : &own_[static_cast<std::size_t>(index)];
  }
  // The string that a member acts on; fails with 2.
  CStringUTF8& Acted(vela::member::Arguments& args);
  int WriteText(CTCall* call, unsigned more_flags);

  std::vector<CStringUTF8> own_;
  CStringUTF8* external_ = nullptr;  // element 0, when it lives elsewhere
};
