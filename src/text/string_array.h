// The script class "StringArray".
#pragma once

#include <cstdint>
#include <vector>

#include "frame/member/table.h"
#include "frame/value_access.h"
#include "vector/vector_base.h"

namespace vela {
struct ArrayLayout;
}

// A vector of texts. An operation addresses element at->element of row at->ObjectIndex(), with the
// statuses of numeric vectors: 2 for a row that cannot be resolved, 28 outside the rows or
// elements, 290 for a negative element. An element reads and writes as a string variable does.
//
// Of the general vector members, those about size, order and content work on texts by bytes; an
// empty text is the missing one (what the Trim members remove, and what Sort puts at one end). The
// numeric members refuse with status 12291.
class TCVectorString
    : public vela::member::WithMembers<TCVectorString,
                                       vela::ValueAccess<TCVectorString, TCAllVectorNonTemplBase>> {
  using Base = WithMembers;

 public:
  using Texts = std::vector<CStringUTF8>;

  // rows 0 is 1. args, when given, is one pointer to a call frame whose argument 0 is a vector that
  // is copied into row 0; when it cannot be, code 48 is reported and the array stays empty.
  TCVectorString(void** args, unsigned type_id, unsigned rows, bool is_array);
  TCVectorString(const TCVectorString& other);

  using Base::GetNumericValue;
  using Base::GetString;
  using Base::GetUpperBound;
  using Base::SetNumericValue;
  using Base::SetString;

  const CRuntimeClass* GetRuntimeClass() const override;
  const char* GetTCTypeName() const override { return "StringArray"; }
  const char* GetDateTypeString() const override { return "string"; }
  unsigned GetInternalDataTypeID() const override { return kTypeString; }
  static const CClassMember* MemberTable();
  int IsSameTypeAndMemoryModel(const CScriptVelaObject* other) const override;
  unsigned GetTypeIDCheckIndex(const MSOINDICES* at) override;
  int GetArraySize() const override { return RowCount(); }
  // The element as a CStringUTF8*, or null outside the row.
  void* GetArrayElement(const MSOINDICES* at, int index) override;
  int GetUpperBound(const MSOINDICES* at, int& upper) override;
  int IsValidElement(const MSOINDICES* at) override;
  int SetVectorDimension(const MSOINDICES* at, int size) override;
  CScriptVelaObject* CreateCopy() override;

  // "string(10)" for the whole array, else the text of the element.
  int GetString(CStringUTF8& text) override;
  int GetString(const MSOINDICES* at, CStringUTF8& text) override;
  int SetString(const MSOINDICES* at, const char* text) override;
  // Shares the text, embedded NULs included.
  int SetStringValue(const MSOINDICES* at, const CStringUTF8& text) override;
  // A char becomes one character, not its number.
  int SetNumericValue(const MSOINDICES* at, char value) override;
  int GetDisplaySize(int& rows, int& cols) override;
  int GetDisplaySizeEx(const MSOINDICES* at, int& rows, int& cols) override;
  int GetDisplayElement(CStringUTF8& text, int index) override;
  int GetDisplayElementEx(CStringUTF8& text, const MSOINDICES* at) override;
  // Every row becomes empty.
  int ResetValue() override;
  // Assign and add (which appends the operand's text to each element), on an element or a row; a
  // row takes a vector of any type, element by element, or one value for all. Adding a row of
  // another size is status 1.
  int Operate2(const MSOINDICES* at, unsigned op, const tagMSOOBJVECT& operand,
               unsigned options) override;

  int RowCount() const override { return static_cast<int>(rows_.size()); }
  std::size_t RowSize(int row) const override { return rows_[row].size(); }
  int RawResize(int row, std::int64_t size) override;
  int ResizeWithLowerBound(int row, std::int64_t size, int lower) override;
  // The elements of a row, at most kMostElements.
  Texts& RowTexts(int row) { return rows_[row]; }
  const Texts& RowTexts(int row) const { return rows_[row]; }
  static constexpr std::size_t kMostElements = 0x7FFFFFFF;
  // Make a row these texts, or add them to it; throw std::length_error beyond kMostElements.
  void StoreRow(int row, Texts&& texts);
  void AppendRow(int row, Texts&& texts);

  // --- Members of its own ---

  int Add(CTCall* call);
  int SetAtGrow(CTCall* call);
  int InsertAt(CTCall* call);
  // (int index, int count), or (vector<int> indices): the elements at the indices, from the largest
  // index to the smallest, so that an index that repeats removes what moved up to it. 1; 0 at the
  // first index outside the array, the larger ones being gone; -1 for a vector of another type.
  int RemoveAt(CTCall* call);
  // (vector<int>& map, vector<uint>& firsts, int case sensitive, vector<uint>& counts or NULL,
  // DWORD control): groups equal texts, and reports the groups in the order of their first
  // elements, those that repeat only with control bit 0x10000, from the last to the first with
  // 0x20000. map receives each element's place in that report, -1 where its group is not in it;
  // firsts each reported group's first element; counts its size. The result is the number of
  // reported groups, or -1 for a vector of another type; status 3 when one vector is to receive two
  // of these.
  int FindDuplicates(CTCall* call);

  // --- General vector members ---

  int Append(CTCall* call) override;
  int Sort(CTCall* call) override;
  int Reorder(CTCall* call) override;
  int Wrap(CTCall* call) override;
  int GetSubVector(CTCall* call) override;
  int SetSubVector(CTCall* call) override;
  // (vector<uint>& found, string text, int bCaseSensitive = 1, int start = 0, int end = -1,
  // DWORD firstOnly = 0): positions of the elements equal to text; how many, or -1 for a range that
  // holds no element or a found that is no vector<uint>. The seven arguments of numeric vectors do
  // as well, their upper value and precision unread.
  int Find(CTCall* call) override;
  int GetUpperBound(CTCall* call) override;
  int GetLowerBound(CTCall* call) override;
  int TrimLeft(CTCall* call) override;
  int TrimRight(CTCall* call) override;
  int Trim(CTCall* call) override;
  // (vector source): this row becomes a copy of the source's; 0.
  int CopyData(CTCall* call) override;
  // (string old, string new, int bCaseSensitive = 1): whole elements; how many.
  int Replace(CTCall* call) override;
  // (string text, int index, int count = 1): 1, or 0 for an index outside 0 .. size.
  int InsertValue(CTCall* call) override;
  // (int lower bound = 0): an automation array of the texts, in UTF-16.
  int GetAs1DArray(CTCall* call) override;
  int GetDataAsOneDimensionalArray(CTCall* call) override;
  // (int columns, BOOL variants): the same with two dimensions, filled row by row; status 8 for a
  // column count below 1.
  int GetAs2DArray(CTCall* call) override;
  // (vector other): appends the elements of other that are not there yet; how many.
  int Merge(CTCall* call) override;

  template <class U>
  int Read(const MSOINDICES* at, U& value);
  template <class U>
  int Write(const MSOINDICES* at, const U& value);

 private:
  // Status and address of the addressed element.
  int Locate(const MSOINDICES* at, CStringUTF8*& element);
  Texts& Acted(vela::member::Arguments& args) { return rows_[Row(args)]; }
  // The argument as text; NULL is the empty one.
  static CStringUTF8 OptionalText(vela::member::Arguments& args, unsigned arg) {
    return args.IsNull(arg) ? CStringUTF8() : args.Text(arg);
  }
  void ReturnArray(vela::member::Arguments& args, const vela::ArrayLayout& layout);
  int OperateOnRow(int row, unsigned code, const tagMSOOBJVECT& operand, unsigned options);

  std::vector<Texts> rows_;
};
