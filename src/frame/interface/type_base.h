// The upper part of the host's class chain, and the rows of the member tables.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

#include "frame/interface/export.h"
#include "platform/types.h"

class CTCall;
class CTypeBase;

struct CRuntimeClass {
  const char* m_lpszClassName;
  int m_nObjectSize;
  const CRuntimeClass* m_pBaseClass;
};

// Root of the chain. Objects are destroyed through the virtual destructor, by the host.
class VELAHOST_API CPLBase {
 public:
  virtual const CRuntimeClass* GetRuntimeClass() const;
  virtual ~CPLBase();

 protected:
  CPLBase() = default;
  CPLBase(const CPLBase&) = default;
  CPLBase& operator=(const CPLBase&) = default;
};

class VELAHOST_API CTKPLObj : public CPLBase {};

// The host callback: window, message, and two texts; the meaning is the host's.
using HostCallback = std::uint64_t (*)(HWND, unsigned short, char*, char*);

class VELAHOST_API VELAObj : public CTKPLObj {
 public:
  virtual int IsValid();
  virtual int OnLHMessage(unsigned message, void* data);

  // Static services of the host. All may be called from any thread, but write in call order only
  // from one.

  // Stores the host's main window and callback; null switches the callback off.
  static void SetCallback(HWND window, HostCallback callback);
  // Prints length bytes of UTF-8 text to the output window.
  static void WriteString(const char* text, std::uint64_t length);
  // Prints with the output flags of the string members (8: new line).
  static void WriteStringEx(const char* text, std::uint64_t length, unsigned flags);
  static void StatusMessage(const char* text);
  static void ScriptMessage(const char* text);
  // Number to text: "NANUM" for the missing value, else the general form with 16 significant
  // digits, no trailing point, at least two exponent digits, "." whatever the locale. buffer holds
  // at least kRealTextSize characters; unit, when given, is appended. Returns the length.
  static int RealToString(double value, char* buffer, const char* unit);
  static constexpr int kRealTextSize = 120;
  // The same for a float: 7 digits and no test for the missing value.
  static int FloatToString(float value, char* buffer);
  // Text to number: surrounding white space ignored; decimal or hexadecimal; "NANUM", empty and
  // unreadable text give the missing value.
  static double ParleyStr2double(const char* text);
  static void BusyCursor(int on);
  static void InvalidateObj(void* object);
  static int IsObjWrapped(void* object);
  static int IsValid(const VELAObj* object);

  // Whether positions in string members count characters instead of bytes; off at start.
  static int IsCharIndexMode();
  static void SetCharIndexMode(int on);
  // Whether whole-vector operators may use worker threads; off at start.
  static int IsParallelEnabled();
  static void SetParallelEnabled(int on);
};

// A member: a function of the object that takes the call frame and returns a status.
using MemberHandler = int (CTypeBase::*)(CTCall*);

// One row of a member table. A table is an array of rows closed by a default-constructed one.
class VELAHOST_API CClassMember {
 public:
  CClassMember() = default;
  CClassMember(const char* name, MemberHandler method);
  CClassMember(const char* name, MemberHandler getter, MemberHandler setter);
  CClassMember(const CClassMember& other);
  CClassMember& operator=(const CClassMember& other);
  virtual ~CClassMember();

  const char* GetName() const { return name_; }
  bool IsEnd() const { return name_ == nullptr; }
  bool IsProperty() const { return setter_ != nullptr; }
  // The method, or the getter of a property.
  MemberHandler GetHandler() const { return handler_; }
  MemberHandler GetSetter() const { return setter_; }

 private:
  friend class CTypeBase;
  class Index;

  // On the first row of a table.
  const CClassMember* FindInTable(const char* name, unsigned hash) const;
  const Index* MakeIndex() const;

  const char* name_ = nullptr;
  MemberHandler handler_ = nullptr;
  MemberHandler setter_ = nullptr;
  // In the first row of a table: the hash index over the whole table, made by the first lookup.
  mutable std::atomic<const Index*> index_ = nullptr;
};

// The member-dispatch root.
class VELAHOST_API CTypeBase : public VELAObj {
 public:
  // Finds a member of this object by its exact name. An override searches its own table, then calls
  // its base class; the root reports the member as unknown (null). name_hash may be
  // HashMemberName(name), or 0 to have it computed; *owner receives the object to call. A lookup
  // costs one hash probe per table of the chain and allocates nothing after the first.
  virtual const CClassMember* FindMember(const char* name, unsigned name_hash, CTypeBase** owner,
                                         unsigned flags);
  // Call a handler on this object; the result is its status. A null handler is status 1.
  virtual int DoMethod(MemberHandler handler, CTCall* call);
  virtual int DoPropertyGet(MemberHandler handler, CTCall* call);
  virtual int DoPropertySet(MemberHandler handler, CTCall* call);

  static unsigned HashMemberName(const char* name);

  // Handler of a row whose member no object of the class supports: status 12291.
  int NotSupported(CTCall* call);

 protected:
  // Safe from any thread; the table must not change while it is searched.
  const CClassMember* FindMemberInTable(const char* name, unsigned name_hash,
                                        const CClassMember* table, CTypeBase** owner,
                                        unsigned flags);
};
