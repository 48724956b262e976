// The script class "StringArray".
#pragma once

#include <cstdint>
#include <vector>

#include "frame/member/table.h"
#include "frame/value_access.h"
#include "vector/vector_base.h"

// A vector of texts. An element reads and writes as a string variable does.
//
// The members about size, order and content are those of every vector, on texts by bytes; an empty
// text is the missing one (what the Trim members remove, and what Sort puts at one end). The
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
  using Base::SetNumericValue;
  using Base::SetString;

  const CRuntimeClass* GetRuntimeClass() const override;
  const char* GetTCTypeName() const override { return "StringArray"; }
  const char* GetDateTypeString() const override { return "string"; }
  unsigned GetInternalDataTypeID() const override { return kTypeString; }
  static const CClassMember* MemberTable();
  int IsSameTypeAndMemoryModel(const CScriptVelaObject* other) const override;
  // The element as a CStringUTF8*, or null outside the row.
  void* GetArrayElement(const MSOINDICES* at, int index) override;
  CScriptVelaObject* CreateCopy() override;

  // "string(10)" for the whole array, else the text of the element.
  int GetString(CStringUTF8& text) override;
  int GetString(const MSOINDICES* at, CStringUTF8& text) override;
  int SetString(const MSOINDICES* at, const char* text) override;
  // Shares the text, embedded NULs included.
  int SetStringValue(const MSOINDICES* at, const CStringUTF8& text) override;
  // A char becomes one character, not its number.
  int SetNumericValue(const MSOINDICES* at, char value) override;

  int LayerCount() const override { return static_cast<int>(rows_.size()); }
  vela::LayerShape ShapeOf(int row) const override {
    return vela::LayerShape::OneRow(static_cast<std::int64_t>(rows_[row].size()));
  }
  // Texts as the numbers that they read as, and numbers as their texts.
  int ReadElements(int row, std::size_t offset, const vela::ElementSpan& to) override;
  int StoreElements(int row, std::size_t offset, const vela::ConstElementSpan& from) override;
  int RawResize(int row, std::int64_t size) override;
  int ResizeWithLowerBound(int row, std::int64_t size, int lower) override;
  // Assign and add, which appends the operand's text to each element; a row takes a vector of any
  // type, element by element, or one value for all. Adding a row of another size is status 1.
  int OperateWithLayer(int row, unsigned code, const vela::Layer& source,
                       unsigned options) override;

  // As texts in UTF-16.
  CComVariant AsArray(int row, const vela::ArrayLayout& layout) override;

  // The elements of a row, at most kMostElements.
  Texts& RowTexts(int row) { return rows_[row]; }
  const Texts& RowTexts(int row) const { return rows_[row]; }
  static constexpr std::size_t kMostElements = 0x7FFFFFFF;
  // Make a row these texts, or add them to it; throw std::length_error beyond kMostElements.
  void StoreRow(int row, Texts&& texts);
  void AppendRow(int row, Texts&& texts);

  // (vector<int>& map, vector<uint>& firsts, int case sensitive, vector<uint>& counts or NULL,
  // DWORD control): groups equal texts, and reports the groups in the order of their first
  // elements, those that repeat only with control bit 0x10000, from the last to the first with
  // 0x20000. map receives each element's place in that report, -1 where its group is not in it;
  // firsts each reported group's first element; counts its size. The result is the number of
  // reported groups, or -1 for a vector of another type; status 3 when one vector is to receive two
  // of these.
  int FindDuplicates(CTCall* call);
  // (vector<uint>& found, string text, int bCaseSensitive = 1, int start = 0, int end = -1,
  // DWORD firstOnly = 0): positions of the elements equal to text; how many, or -1 for a range that
  // holds no element or a found that is no vector<uint>. The seven arguments of numeric vectors do
  // as well, their upper value and precision unread.
  int Find(CTCall* call) override;
  // (string old, string new, int bCaseSensitive = 1): whole elements; how many.
  int Replace(CTCall* call) override;

  template <class U>
  int Read(const MSOINDICES* at, U& value);
  template <class U>
  int Write(const MSOINDICES* at, const U& value);

 protected:
  bool IsOperation(unsigned code) const override;
  int OperateOnElement(const MSOINDICES* at, unsigned code, const tagMSOOBJVECT& operand) override;
  int OperateWithValue(int row, unsigned code, const tagMSOOBJVECT& operand) override;

  void SetElement(int row, std::size_t index, vela::member::Arguments& args, unsigned arg) override;
  void InsertElements(int row, std::size_t index, std::size_t count, vela::member::Arguments& args,
                      unsigned arg) override;
  void RemoveElements(int row, std::span<const vela::kernel::IndexRun> runs) override;
  void CopyElements(int row, std::size_t offset, std::size_t count,
                    const vela::Layer& target) override;
  void AssignCopy(int row, const vela::Layer& source) override;
  void OverwriteElements(int row, std::size_t offset, const vela::Layer& source,
                         std::size_t count) override;
  bool ReorderElements(int row, std::span<const unsigned> order) override;
  void RotateElements(int row, std::int64_t shift) override;
  void SortElements(int row, bool ascending, bool missing_first,
                    std::span<unsigned> positions) override;
  std::size_t CountLeadingMissing(int row, std::size_t first) override;
  std::size_t CountTrailingMissing(int row, std::size_t first) override;
  void RemoveMissing(int row, std::size_t first) override;
  std::size_t AppendAbsent(int row, const vela::Layer& source) override;

 private:
  // Status and address of the addressed element.
  int Locate(const MSOINDICES* at, CStringUTF8*& element);
  Texts& Acted(vela::member::Arguments& args) { return rows_[Row(args)]; }

  std::vector<Texts> rows_;
};
