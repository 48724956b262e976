// Functions of the host about worksheets, for scripts: the members of an object that has no state.
#pragma once

#include "frame/interface/tessel_object.h"

namespace vela::host {

class VELAHOST_API WorksheetFunctions : public TesselCObject {
 public:
  const char* GetTCTypeName() const override { return "host"; }
  const CClassMember* FindMember(const char* name, unsigned name_hash, CTypeBase** owner,
                                 unsigned flags) override;

  // (book, path, header): reads a CSV file as a worksheet of the name; the rows, -1 when the file
  // cannot be read, -2 when there is a book of the name already or the name cannot be one.
  int OpenWorksheet(CTCall* call);
  // (book, path, encoding): 1, or 0 without the book, with an encoding beyond 3 and when the file
  // cannot be written.
  int SaveWorksheet(CTCall* call);
  // (book): 1, or 0 without it.
  int CloseWorksheet(CTCall* call);
  // (book): takes the last change back; 0 without one.
  int UndoWorksheet(CTCall* call);
  // (book): -1 without it.
  int CountColumns(CTCall* call);
  int IsWorksheetModified(CTCall* call);
};

}  // namespace vela::host
