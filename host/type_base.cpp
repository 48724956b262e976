#include "frame/interface/type_base.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <memory>
#include <new>
#include <vector>

#include "frame/interface/status.h"

namespace {

constexpr CRuntimeClass kRootClass = {"CPLBase", sizeof(CPLBase), nullptr};

bool SameName(const char* a, const char* b) { return std::strcmp(a, b) == 0; }

}  // namespace

// An open-addressing hash index over the rows of one table. Immutable once made.
class CClassMember::Index {
 public:
  explicit Index(const CClassMember* table) {
    std::size_t rows = 0;
    while (!table[rows].IsEnd()) ++rows;
    slots_.resize(std::bit_ceil(2 * rows));
    for (std::size_t i = 0; i < rows; ++i) Insert(&table[i]);
  }

  const CClassMember* Find(const char* name, unsigned hash) const {
    for (std::size_t i = hash;; ++i) {
      const Slot& slot = slots_[i & (slots_.size() - 1)];
      if (!slot.row) return nullptr;
      if (slot.hash == hash && SameName(slot.row->GetName(), name)) return slot.row;
    }
  }

 private:
  struct Slot {
    unsigned hash = 0;
    const CClassMember* row = nullptr;
  };

  // The first of several rows with one name is the one that is found.
  void Insert(const CClassMember* row) {
    const unsigned hash = CTypeBase::HashMemberName(row->GetName());
    for (std::size_t i = hash;; ++i) {
      Slot& slot = slots_[i & (slots_.size() - 1)];
      if (!slot.row) {
        slot = {hash, row};
        return;
      }
      if (slot.hash == hash && SameName(slot.row->GetName(), row->GetName())) return;
    }
  }

  std::vector<Slot> slots_;  // at most half full, so that every probe ends
};

CClassMember::CClassMember(const char* name, MemberHandler method)
    : name_(name), handler_(method) {}

CClassMember::CClassMember(const char* name, MemberHandler getter, MemberHandler setter)
    : name_(name), handler_(getter), setter_(setter) {}

CClassMember::CClassMember(const CClassMember& other)
    : name_(other.name_), handler_(other.handler_), setter_(other.setter_) {}

CClassMember& CClassMember::operator=(const CClassMember& other) {
  delete index_.exchange(nullptr);
  name_ = other.name_;
  handler_ = other.handler_;
  setter_ = other.setter_;
  return *this;
}

CClassMember::~CClassMember() { delete index_.load(); }

// Null when memory runs out.
const CClassMember::Index* CClassMember::MakeIndex() const try {
  auto made = std::make_unique<const Index>(this);
  const Index* current = nullptr;
  if (!index_.compare_exchange_strong(current, made.get())) return current;
  return made.release();
} catch (const std::bad_alloc&) {
  return nullptr;
}

const CClassMember* CClassMember::FindInTable(const char* name, unsigned hash) const {
  const Index* index = index_.load(std::memory_order_acquire);
  if (!index) index = MakeIndex();
  if (index) return index->Find(name, hash);
  for (const CClassMember* row = this; !row->IsEnd(); ++row) {
    if (SameName(row->GetName(), name)) return row;
  }
  return nullptr;
}

unsigned CTypeBase::HashMemberName(const char* name) {
  // The names of a type differ in their ends and lengths. 0 stands for a hash still to be computed.
  const std::size_t length = std::strlen(name);
  std::uint32_t first = 0;
  std::uint32_t last = 0;
  std::memcpy(&first, name, std::min(length, sizeof first));
  if (length > sizeof last) std::memcpy(&last, name + length - sizeof last, sizeof last);
  const std::uint64_t ends = std::uint64_t{first} << 32 | last;
  const auto hash = static_cast<unsigned>((ends + length) * 0x9E3779B97F4A7C15u >> 32);
  return std::max(hash, 1u);
}

const CClassMember* CTypeBase::FindMemberInTable(const char* name, unsigned name_hash,
                                                 const CClassMember* table, CTypeBase** owner,
                                                 unsigned) {
  if (!name || !table || table->IsEnd()) return nullptr;
  const CClassMember* row = table->FindInTable(name, name_hash ? name_hash : HashMemberName(name));
  if (row && owner) *owner = this;
  return row;
}

const CClassMember* CTypeBase::FindMember(const char*, unsigned, CTypeBase** owner, unsigned) {
  if (owner) *owner = nullptr;
  return nullptr;
}

int CTypeBase::DoMethod(MemberHandler handler, CTCall* call) {
  return handler ? (this->*handler)(call) : status::kFailed;
}

int CTypeBase::DoPropertyGet(MemberHandler handler, CTCall* call) {
  return handler ? (this->*handler)(call) : status::kFailed;
}

int CTypeBase::DoPropertySet(MemberHandler handler, CTCall* call) {
  return handler ? (this->*handler)(call) : status::kFailed;
}

int CTypeBase::NotSupported(CTCall*) { return status::kUnsupported; }

CPLBase::~CPLBase() = default;

const CRuntimeClass* CPLBase::GetRuntimeClass() const { return &kRootClass; }
