// The library's application object.
#pragma once

#include "platform/win_app.h"

// Builds the member tables of the per-element-type classes and frees them. One instance lives from
// the load of the library to its unload.
class CVELABaseTypesApp : public CWinApp {
 public:
  BOOL InitInstance() override;
  int ExitInstance() override;
};
