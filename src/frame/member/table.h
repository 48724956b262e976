// Member tables: rows, and the tables that exist once per element type.
#pragma once

#include <algorithm>
#include <initializer_list>
#include <new>

#include "frame/interface/type_base.h"

namespace vela::member {

template <class C>
CClassMember Method(const char* name, int (C::*handler)(CTCall*)) {
  return {name, static_cast<MemberHandler>(handler)};
}

template <class C>
CClassMember Property(const char* name, int (C::*getter)(CTCall*), int (C::*setter)(CTCall*)) {
  return {name, static_cast<MemberHandler>(getter), static_cast<MemberHandler>(setter)};
}

// The row of a member that is not built yet: it answers status 12291, and IsUnbuilt tells it from
// a member that refuses for a reason of its own.
CClassMember Unbuilt(const char* name);
CClassMember UnbuiltProperty(const char* name);
bool IsUnbuilt(const CClassMember& row);

// The table of a class that exists once per element type: made by the application object when the
// library is loaded, freed when it is unloaded; null in between times, and while there is no memory
// for it. Owner::MemberRows() returns the rows in order, the end row not included.
template <class Owner>
class TypeTable {
 public:
  static const CClassMember* Rows() { return rows_; }

  // False when memory runs out.
  static bool Build() {
    if (rows_ != nullptr) return true;
    const auto rows = Owner::MemberRows();
    auto* table = new (std::nothrow) CClassMember[rows.size() + 1];
    if (table == nullptr) return false;
    std::copy(rows.begin(), rows.end(), table);
    rows_ = table;
    return true;
  }

  static void Free() {
    delete[] rows_;
    rows_ = nullptr;
  }

 private:
  static inline const CClassMember* rows_ = nullptr;
};

// A class with a member table of its own: Self::MemberTable() is searched first, then the tables of
// Base, so that a row hides the rows of the same name behind it.
template <class Self, class Base>
class WithMembers : public Base {
 public:
  using Base::Base;

  const CClassMember* FindMember(const char* name, unsigned name_hash, CTypeBase** owner,
                                 unsigned flags) override {
    const CClassMember* row =
        this->FindMemberInTable(name, name_hash, Self::MemberTable(), owner, flags);
    return row != nullptr ? row : Base::FindMember(name, name_hash, owner, flags);
  }
};

}  // namespace vela::member
