// The base of every script object: the operations that the host calls without going through member
// names. The default of every operation refuses (status 12291 or a neutral answer), so a class
// overrides just what it supports.
#pragma once

#include <cstdint>

#include "frame/interface/complex.h"
#include "frame/interface/indices.h"
#include "frame/interface/object_argument.h"
#include "frame/interface/operations.h"
#include "frame/interface/point.h"
#include "frame/interface/status.h"
#include "frame/interface/string_utf8.h"
#include "frame/interface/type_base.h"
#include "frame/interface/type_words.h"

class CTCExternalCallBuilder;

// Conventions of the operations below:
// - `at` says what of the object is meant; null is the whole object, or its first element.
// - A value operation without `at` works on element 0 and returns 1 for success and 0 for failure;
//   every operation with `at`, and every other int operation unless it says otherwise, returns a
//   status (0 for success).
// - Pointers handed out are owned by the object and valid until its next change.
class VELAHOST_API CScriptVelaObject : public CTypeBase {
 public:
  CScriptVelaObject();
  ~CScriptVelaObject() override;
  CScriptVelaObject(const CScriptVelaObject&) = delete;
  CScriptVelaObject& operator=(const CScriptVelaObject&) = delete;

  const CRuntimeClass* GetRuntimeClass() const override;

  // Reference counting. An object starts with no references; Release destroys it when the count
  // falls to 0. The registry knows every object from its construction to its destruction.
  int AddRef();
  int HasRef() const { return references_ > 0; }
  static void AddToMap(CScriptVelaObject* object);
  static void RemoveFromMap(CScriptVelaObject* object);
  static bool IsInMap(const CScriptVelaObject* object);
  static unsigned GetLiveObjectCount();
  // A number that no other object of this process ever has; a pointer keeps it beside the address
  // to know that the address was not reused.
  std::uint64_t GetCreationID() const { return creation_id_; }

  // Called by every constructor with its type word.
  virtual void InitTypeIDs(unsigned type_word);
  // Type id joined with the container flag; its two parts.
  virtual unsigned GetTypeID() const;
  virtual unsigned GetTypeBitID() const;
  virtual unsigned GetUserTypeID() const;
  // Type id of one element (of the object itself when it is no container).
  virtual unsigned GetInternalDataTypeID() const;
  virtual const char* GetDataTypeName() const;
  virtual const char* GetTCTypeName() const;
  virtual const CRuntimeClass* GetBaseClass() const;
  virtual const CRuntimeClass* GetThisClass() const;
  virtual int IsSameID(const CScriptVelaObject* other) const;
  // Whether both have one element type and contiguous storage, so that a block move copies.
  virtual int IsSameTypeAndMemoryModel(const CScriptVelaObject* other) const;

  // Raw bytes of the addressed value into a buffer of size bytes; status 3 when it is too small.
  virtual int GetValueToBuffer(void* buffer, unsigned size, const MSOINDICES* at);
  // Text of the whole object, or of what `at` addresses.
  virtual int GetString(CStringUTF8& text);
  virtual int GetString(const MSOINDICES* at, CStringUTF8& text);
  virtual int SetString(const char* text);
  virtual int SetString(const MSOINDICES* at, const char* text);
  virtual int SetStringValue(const MSOINDICES* at, const CStringUTF8& text);
  virtual int GetInt(int& value);
  virtual int GetInt(const MSOINDICES* at, int& value);
  virtual int SetInt(int value);
  virtual int SetInt(const MSOINDICES* at, int value);
  virtual int GetDouble(double& value);
  virtual int GetDouble(const MSOINDICES* at, double& value);
  virtual int SetDouble(double value);
  virtual int SetDouble(const MSOINDICES* at, double value);
  // The 32-bit integer that a double becomes in this object.
  virtual int RoundDouble(double value);

  virtual int RequiresMemoryPtr();
  virtual int SupportsMemoryPtr();
  // Binds a bit field to the word of the structure that holds it; the word must outlive the object.
  virtual int SetMemberMemory(void* memory, unsigned bit_offset);
  virtual int GetValueForPtrAsExternalFuncArg(const MSOINDICES* at, void** value);
  virtual int SetMemoryPtrObjectCreationID(std::uint64_t id);
  virtual int SetMemoryPtrObject(CScriptVelaObject* object);
  virtual void* GetMemoryPtrAddress();
  virtual int CheckCreateMemoryPtrObjects();
  // Address of the addressed element for a debugger, or null.
  virtual void* GetAddressForDisplay(const MSOINDICES* at);

  // Bytes that GetBufferMSO would lend.
  virtual unsigned GetBufferSize(const MSOINDICES* at);
  virtual int GetSourceRange(const MSOINDICES* at, CStringUTF8& range);
  virtual int SetSourceRange(const MSOINDICES* at, const char* range);
  virtual int GetSourceCTKRange(const MSOINDICES* at, void* range);
  virtual int SetSourceCTKRange(const MSOINDICES* at, const void* range);
  virtual int SetPtrArgForCOMEventHandlingFromWrongVariantType(const MSOINDICES* at,
                                                               VARIANT* value);
  // Lend the data to external code. Ex: as elements of the given type id, which vectors convert in
  // a buffer of their own when it differs, and back. A lent buffer goes to ReleaseBufferMSO.
  virtual int GetBufferMSOEx(const MSOINDICES* at, unsigned element_type, void** buffer);
  virtual int GetBufferMSO(const MSOINDICES* at, void** buffer);
  virtual int ReleaseBufferMSO(const MSOINDICES* at, void* buffer);

  // Automation. The caller owns the VARIANT.
  virtual int GetIntoVariant(const MSOINDICES* at, VARIANT* value);
  virtual int SetFromVariant(const MSOINDICES* at, const VARIANT* value);
  virtual int GetVariantArray(const MSOINDICES* at, VARIANT* value, int lower_bound);
  virtual int SetVariantArray(const MSOINDICES* at, const VARIANT* value);
  virtual int GetTCONEVARIANTforCOMMethodArg(const MSOINDICES* at, VARIANT* value);
  // Address of the value as the given type id keeps it, or null.
  virtual void* GetArgObjectPtrMSO(const MSOINDICES* at, unsigned type_id);
  virtual IDispatch* GetDispatchInterface(const MSOINDICES* at);
  virtual int SetBufferSize(const MSOINDICES* at, unsigned bytes);
  virtual void* GetPLFunction();
  // Type id of what `at` addresses; 0 when it addresses nothing.
  virtual unsigned GetTypeIDCheckIndex(const MSOINDICES* at);
  virtual int IsVariantArraySource();

  // Back to the value of a new object: zero, or empty. Returns 0.
  virtual int ResetValue();

  // Returns 1 and the addressed layer's dimensions (rows first), or 0 when there is no such layer.
  virtual int GetMatrixDimensions(int* rows, int* cols, const MSOINDICES* at);
  virtual int SetMatrixDimension(int rows, int cols, const MSOINDICES* at);
  virtual int CheckDimensions(const CScriptVelaObject* other);
  virtual int CopyFromMatrix(const MSOINDICES* at, CScriptVelaObject* matrix);
  virtual int GetIndicesForWholeVectorOperation(const MSOINDICES* at, MSOINDICES* whole);
  virtual int GetIndicesForWholeMatrixOperation(const MSOINDICES* at, MSOINDICES* whole);
  virtual CScriptVelaObject* GetTargetForPtrAssignment();
  virtual CScriptVelaObject* CreateMemoryPtrTarget(unsigned type_word);
  // A new object with the same type and value, owned by the caller; null when it cannot be made.
  virtual CScriptVelaObject* CreateCopy();

  // Applies a binary operation in place: this = this <operation> operand. See operations.h.
  virtual int Operate2(const MSOINDICES* at, unsigned op, const tagMSOOBJVECT& operand,
                       unsigned options);

  // The object behind a pointer or reference; itself for any other object.
  virtual CScriptVelaObject* GetActualObject();
  virtual CScriptVelaObject* GetActualObjectEx(MSOINDICES* at);
  // Index of the last element of the addressed row: size - 1.
  virtual int GetUpperBound(const MSOINDICES* at, int& upper);
  virtual CScriptVelaObject* GetOneTarget(const MSOINDICES* at);
  virtual int DiagnoseJunkPointers();

  // One overload per integral element type; conversions truncate and saturate.
  virtual int GetIntegralValue(const MSOINDICES* at, char& value);
  virtual int GetIntegralValue(const MSOINDICES* at, unsigned char& value);
  virtual int GetIntegralValue(const MSOINDICES* at, short& value);
  virtual int GetIntegralValue(const MSOINDICES* at, unsigned short& value);
  virtual int GetIntegralValue(const MSOINDICES* at, int& value);
  virtual int GetIntegralValue(const MSOINDICES* at, unsigned& value);
  virtual int GetIntegralValue(const MSOINDICES* at, std::int64_t& value);
  virtual int GetIntegralValue(const MSOINDICES* at, std::uint64_t& value);

  // The addressed value as each simple type, complex, text or automation value.
  virtual int GetNumericValue(const MSOINDICES* at, char& value);
  virtual int GetNumericValue(const MSOINDICES* at, unsigned char& value);
  virtual int GetNumericValue(const MSOINDICES* at, short& value);
  virtual int GetNumericValue(const MSOINDICES* at, unsigned short& value);
  virtual int GetNumericValue(const MSOINDICES* at, int& value);
  virtual int GetNumericValue(const MSOINDICES* at, unsigned& value);
  virtual int GetNumericValue(const MSOINDICES* at, float& value);
  virtual int GetNumericValue(const MSOINDICES* at, double& value);
  virtual int GetNumericValue(const MSOINDICES* at, std::int64_t& value);
  virtual int GetNumericValue(const MSOINDICES* at, std::uint64_t& value);
  virtual int GetNumericValue(const MSOINDICES* at, OneTCcomplex& value);
  virtual int GetNumericValue(const MSOINDICES* at, CStringUTF8& value);
  virtual int GetNumericValue(const MSOINDICES* at, VARIANT& value);

  // Store a value of each kind, converted to the element type. A complex value stored in a real
  // element leaves its real part.
  virtual int SetNumericValue(const MSOINDICES* at, char value);
  virtual int SetNumericValue(const MSOINDICES* at, unsigned char value);
  virtual int SetNumericValue(const MSOINDICES* at, short value);
  virtual int SetNumericValue(const MSOINDICES* at, unsigned short value);
  virtual int SetNumericValue(const MSOINDICES* at, int value);
  virtual int SetNumericValue(const MSOINDICES* at, unsigned value);
  virtual int SetNumericValue(const MSOINDICES* at, float value);
  virtual int SetNumericValue(const MSOINDICES* at, double value);
  virtual int SetNumericValue(const MSOINDICES* at, std::int64_t value);
  virtual int SetNumericValue(const MSOINDICES* at, std::uint64_t value);
  virtual int SetNumericValue(const MSOINDICES* at, const OneTCcomplex& value);
  virtual int SetNumericValue(const MSOINDICES* at, const PointInt& value);
  virtual int SetNumericValue(const MSOINDICES* at, const PointDouble& value);
  virtual int SetNumericValue(const MSOINDICES* at, const Point3D& value);
  virtual int SetNumericValue(const MSOINDICES* at, const VARIANT& value);

  // Without `at`: 1 for success; with it: a status.
  virtual int GetFloatingValue(float& value);
  virtual int GetFloatingValue(const MSOINDICES* at, float& value);
  virtual int GetFloatingValue(double& value);
  virtual int GetFloatingValue(const MSOINDICES* at, double& value);

  virtual int SupportsAuxillX();
  virtual int DoRuntimeCopyOvers(CScriptVelaObject* source);
  // A raw value from the host: an integer, or an interface pointer for a Picture.
  virtual int SetValueFromDWORD(std::uint64_t value);
  virtual int SetValueFromINT64(std::int64_t value);
  virtual int BeginGetValueForExternalCall(CTCExternalCallBuilder& builder, const MSOINDICES* at,
                                           unsigned flags);
  virtual int EndGetValueForExternalCall(CTCExternalCallBuilder& builder, const MSOINDICES* at,
                                         unsigned flags);
  virtual int IsPassMSOToExternalFuncCallAsPtr();
  virtual int ReturnValueAfterExternalFunctionCallCleanup();
  virtual VARIANT* GetVariantAddress(const MSOINDICES* at);
  virtual int SetFromDataset(CScriptVelaObject* dataset);
  virtual int SetFromDatasetEx(CScriptVelaObject* dataset, unsigned options);
  virtual void* GetDatasetObject(const MSOINDICES* at);
  virtual int GetDatasetValuesAccessInfo(const MSOINDICES* at, void* info);
  virtual int ExecuteTCDestructor();
  virtual int SetSizeForVectorToSimpleTypeFuncCall(const MSOINDICES* at, int size);
  virtual int GetLimitsForVectorToSimpleTypeFuncCall(const MSOINDICES* at, int& lower, int& upper);
  virtual CScriptVelaObject* StorageXVariable();

  // Objects of the script array: elements of a scalar or string, rows of a vector, layers of a
  // matrix; at least 1.
  virtual int GetArraySize() const;
  // Name of the element type as in a declaration.
  virtual const char* GetDateTypeString() const;
  // Address of element index of the addressed row, or null outside it or where elements are not in
  // memory. The record of a matrix row names the layer, and the row as its one element.
  virtual void* GetArrayElement(const MSOINDICES* at, int index);
  virtual CScriptVelaObject* GetReferenceTarget(MSOINDICES* at);
  virtual int IsMixedTypeDataSet();
  virtual int SetMixedTypeDataSet(int mixed);
  // Drops a reference; the object is destroyed with its last one. Returns what is left.
  virtual int Release();
  // Makes element 0 live at address (the element of a container, a structure's field) instead of in
  // storage of the object's own, until it is set to null. The memory must outlive that.
  virtual int SetExternalData(void* address);
  virtual int SetExternalDataByPtr(void** address);
  virtual int ModifyExternalDataPtr(void* old_address, void* new_address);
  // Address of element 0 wherever it lives; valid until the object is resized or rebound.
  virtual int GetExternalData(void** address);
  // Compares the addressed value with an operand; the outcome is a bit of *flags.
  virtual int CompareVals(const MSOINDICES* at, unsigned op, const tagMSOOBJVECT& operand,
                          unsigned* flags);
  // Copies count elements from memory into the storage. Returns 0.
  virtual int InitalizeFromMemory(const void* memory, int count);
  virtual int ReadFromMemory(const void* memory, int bytes);
  virtual int WriteToMemory(void* memory, int bytes);

  // Debugger display. index -1 is the whole object.
  virtual int GetDisplaySize(int& rows, int& cols);
  virtual int GetDisplaySizeEx(const MSOINDICES* at, int& rows, int& cols);
  virtual int GetDisplayElement(CStringUTF8& text, int index);
  virtual int GetDisplayElementEx(CStringUTF8& text, const MSOINDICES* at);
  virtual int GetDisplayArrayElement(CStringUTF8& text, int index);
  virtual int GetMultipartDisplayElement(CStringUTF8& text, int index, int part);
  virtual int PrepareDisplayIndices(MSOINDICES* at, int index);
  virtual int GetDisplayExpandableHeader(CStringUTF8& text);
  virtual int IsDisplayElementExpandable(int index);
  virtual int IsDisplayElementAddType();
  virtual int IsDisplayHeaderAddType();

  // Reads the addressed value as a number of either kind: complex with a zero imaginary part.
  virtual int GetNumeric(const MSOINDICES* at, OneTCcomplex& value);
  virtual int SetMemoryPtr(void* memory);
  virtual int IsValidElement(const MSOINDICES* at);
  virtual int GetWrpperObjectDisplayInfo(CStringUTF8& text, const MSOINDICES* at);
  // Marks the object changed, so that whoever shows it reads it again.
  virtual void SetModify(int modified);
  virtual int InfoVariableValue(CStringUTF8& text);

  virtual int SetComplex(const OneTCcomplex& value);
  virtual int SetComplex(const MSOINDICES* at, const OneTCcomplex& value);
  virtual int GetComplex(const MSOINDICES* at, OneTCcomplex& value);
  virtual int GetComplexValue(const MSOINDICES* at, OneTCcomplex& value);
  virtual int SetComplexValue(const MSOINDICES* at, const OneTCcomplex& value);
  virtual int GetPointValue(const MSOINDICES* at, PointInt& value);
  virtual int GetPointValue(const MSOINDICES* at, PointDouble& value);
  virtual int GetPointValue(const MSOINDICES* at, Point3D& value);
  virtual int GetPoint(PointInt& value);
  virtual int GetPoint(PointDouble& value);
  virtual int GetPoint(Point3D& value);
  virtual int SetPoint(const MSOINDICES* at, const Point3D& value);
  // Resizes the addressed row.
  virtual int SetVectorDimension(const MSOINDICES* at, int size);

  // The row number that the indices name: 0 without an object index, -1 for a malformed record.
  virtual int GetVecArrayIndex(const MSOINDICES* at) const;
  virtual int GetCurrentIndices(MSOINDICES* at) const;
  virtual int SetCurrentIndices(const MSOINDICES* at);
  virtual int ShiftIndex(int by);
  virtual int GetAsStringVector(CScriptVelaObject* strings);
  virtual int PutStringVector(CScriptVelaObject* strings);

  virtual int SetDataRange(const MSOINDICES* at, int lower, int upper);
  virtual int Update(const MSOINDICES* at);
  virtual int UpdateFromExternalSource();
  virtual int UpdateCacheAfterAttachmentChange();
  virtual int IsNoVectorOrMatrixSource();
  virtual int IsRowHide(int row);
  virtual int IsIgnoreHiddenRow();

  virtual CScriptVelaObject* DeReference();
  virtual int IsNULLPtr();
  virtual int CleanupVela();
  virtual int HasVCRef();
  virtual int DetachAllTesselObjs();
  virtual int IsObjReadyForTesselClose();

  // Whether SetModify(1) was called since the last SetModify(0).
  int IsModified() const { return modified_; }

 private:
  unsigned type_word_ = 0;
  int references_ = 0;
  int modified_ = 0;
  std::uint64_t creation_id_;
};
