// Data that the host keeps and scripts work on: what a Dataset, Curve or Categorical is attached
// to.
//
// A host derives its columns from VeData and offers them by name through VeDataSources. Five
// functions make a column of numbers: GetName, GetElementType, GetSize, SetSize and GetBuffer;
// everything else has a default. The reference host's worksheets are in host/data.
//
// Lifetime. A source is counted by reference: the host holds references, and so does every object
// that is attached to it. When the host gives data up (its column is deleted, its window closed) it
// calls MarkRemoved and drops its references. The source then stays in memory, but nothing of it is
// used any more: members of what is attached to it answer status -1 until it is attached anew.
//
// All calls come from the thread that runs scripts. Between two of them the host may do to the data
// what it likes (change its size, move its buffer, remove it): nothing is kept from one to the
// next. No function may throw, except std::bad_alloc from those that say so.
#pragma once

#include <cstdint>
#include <utility>

#include "frame/interface/export.h"
#include "frame/interface/string_utf8.h"

// What all data of the host has in common.
class VELAHOST_API VeSourceData {
 public:
  VeSourceData(const VeSourceData&) = delete;
  VeSourceData& operator=(const VeSourceData&) = delete;

  // A new source has no references; Release destroys it with its last one.
  void AddRef() { ++references_; }
  void Release();
  // Whether the data is still the host's.
  bool IsAlive() const { return is_alive_; }

  // The name that finds the data again, "[book]column"; empty for data that has none.
  virtual CStringUTF8 GetName() const = 0;
  // Rows first .. first + count - 1 were written by a script: time to show them again. Comes once
  // after each member or operator that wrote, and after Update.
  virtual void OnChange(std::int64_t /*first*/, std::int64_t /*count*/) {}
  // Keeps the data as it is, for the user to come back to; false where there is no undo. Throws
  // std::bad_alloc.
  virtual bool PushUndo() { return false; }
  // A script gives the data up: the host removes it, which calls MarkRemoved. False to refuse.
  virtual bool Remove() { return false; }

 protected:
  VeSourceData() = default;
  virtual ~VeSourceData();
  void MarkRemoved() { is_alive_ = false; }

 private:
  int references_ = 0;
  bool is_alive_ = true;
};

// A reference to a source.
template <class Source>
class VeRef {
 public:
  VeRef() = default;
  explicit VeRef(Source* source) : source_(source) {
    if (source_ != nullptr) source_->AddRef();
  }
  VeRef(const VeRef& other) : VeRef(other.source_) {}
  VeRef(VeRef&& other) noexcept : source_(std::exchange(other.source_, nullptr)) {}
  VeRef& operator=(VeRef other) noexcept {
    std::swap(source_, other.source_);
    return *this;
  }
  ~VeRef() {
    if (source_ != nullptr) source_->Release();
  }

  Source* Get() const { return source_; }
  Source* operator->() const { return source_; }
  Source& operator*() const { return *source_; }
  explicit operator bool() const { return source_ != nullptr; }

 private:
  Source* source_ = nullptr;
};

// A column: numbers of one type, texts, or a mixture.
//
// Rows are numbered from 0. The valid range is GetLowerBound() .. GetSize() - 1; rows below the
// lower bound exist, but hold no data. A cell without a value is the missing value where the
// element type is double, and zero in the other number types, which have no such value.
class VELAHOST_API VeData : public VeSourceData {
 public:
  // A type id of type_words.h: a numeric element type, kTypeString for texts, kTypeVariant for a
  // mixture of numbers and texts. Never changes.
  virtual unsigned GetElementType() const = 0;

  virtual std::int64_t GetSize() const = 0;
  // Keeps what fits; new cells have no value. False, with nothing changed, when it cannot be done.
  // Growing by one at a time should be linear overall.
  virtual bool SetSize(std::int64_t size) = 0;
  virtual std::int64_t GetLowerBound() const { return 0; }
  // 0 .. GetSize(). False where the lower bound is always 0.
  virtual bool SetLowerBound(std::int64_t lower) { return lower == 0; }

  // The elements, of a number type, when they are one buffer that may be written in place: every
  // member then works on it directly. Null for any other column.
  virtual void* GetBuffer() { return nullptr; }
  // For a column without a buffer, which is none of complex values: rows first .. first + count -
  // 1, which exist, as numbers. What is no number reads as the missing value.
  virtual void ReadNumbers(std::int64_t /*first*/, std::int64_t /*count*/, double* /*to*/) {}
  // These rows become the numbers; of a column with texts it is one row at a time. False, with
  // nothing changed, when it cannot be done.
  virtual bool WriteNumbers(std::int64_t /*first*/, std::int64_t /*count*/,
                            const double* /*from*/) {
    return false;
  }

  // The cell as text, empty where it has no value. The defaults serve columns with a buffer: a text
  // is read by the text-to-number rule. Throw std::bad_alloc.
  virtual CStringUTF8 GetText(std::int64_t row);
  virtual bool SetText(std::int64_t row, const char* text);

  // Rows that the user has put aside. The library only hands the marks on: it computes with masked
  // elements as with all others. SetMasked throws std::bad_alloc.
  virtual bool IsMasked(std::int64_t /*row*/) const { return false; }
  virtual bool SetMasked(std::int64_t /*row*/, bool /*masked*/) { return false; }
};

// A column of numbers that belongs to no book: what a data set is attached to that has data of its
// own, such as a copy. Nobody else sees it, and it goes with the last reference.
class VELAHOST_API VeTempDataset : public VeData {
 public:
  // None for a type id that is no numeric element type, and when memory runs out.
  static VeRef<VeTempDataset> Create(unsigned element_type, std::int64_t size);
};

// What the host offers by name. Texts are UTF-8; names are compared exactly.
class VELAHOST_API VeDataSources {
 public:
  virtual ~VeDataSources();

  // Null when there is none. The caller adds a reference of its own before it calls anything else.
  virtual VeData* FindData(const char* book, const char* column) = 0;
  // By position in the book, from 0.
  virtual VeData* FindData(const char* book, int column) = 0;
  // A new column of size cells without a value, in a new book when there is none of the name. Null
  // when there is such a column already, for a type that the host does not keep, and when memory
  // runs out.
  virtual VeData* CreateData(const char* book, const char* column, unsigned element_type,
                             std::int64_t size) = 0;

  // The host's sources: the worksheets of the reference host unless others were installed. Those
  // must outlive every script; null brings the worksheets back.
  static VeDataSources& Get();
  static void Install(VeDataSources* sources);
};
