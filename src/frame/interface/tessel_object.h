// The base of the script objects that have a member table and arguments of their own to read.
#pragma once

#include "frame/interface/call.h"
#include "frame/interface/script_object.h"

class VELAHOST_API TesselCObject : public CScriptVelaObject {
 public:
  using CScriptVelaObject::GetAddressForDisplay;
  using CScriptVelaObject::GetBufferMSO;
  using CScriptVelaObject::GetBufferSize;
  using CScriptVelaObject::GetString;
  using CScriptVelaObject::GetUpperBound;
  using CScriptVelaObject::SetBufferSize;

  const CRuntimeClass* GetRuntimeClass() const override;

  virtual int TCAttach(CTCall* call);
  virtual int TCDetach(CTCall* call);
  virtual int TCGetName(CTCall* call);
  virtual int Show(int show);
  // The display text; the buffer belongs to the caller and is always terminated.
  virtual int GetString(char* buffer, int size);
  virtual int GetBufferMSO(void** buffer);
  virtual unsigned GetBufferSize();
  virtual int SetBufferSize(unsigned bytes);
  virtual int GetUpperBound();
  virtual void* GetAddressForDisplay();
  virtual CScriptVelaObject* GetObjStorage();
  virtual int GetObjStorageNames(CScriptVelaObject* names);
  virtual void* CreatePrinterDC();
  virtual void* GetMatPtr();
  virtual int SetCvMat(void* mat);
  virtual int Attach(CScriptVelaObject* source);
  virtual int Detach();

 protected:
  // The argument's text or data, at least bytes of it; null when it has none. Pair with
  // ReleaseBuffer.
  void* GetBuffer(CTCall* call, unsigned arg, unsigned bytes);
  void ReleaseBuffer(CTCall* call, int arg);
  // The object of an argument when its type word has the id and one of the flags given (0: any);
  // null otherwise.
  CScriptVelaObject* GetArgObjectPtr(CTCall* call, int arg, int type_id, int flags);
};
