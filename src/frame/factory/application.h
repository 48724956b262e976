// The library's application object.
#pragma once

#include "platform/win_app.h"

// Builds the member tables of the per-element-type classes and frees them; 0 when there is no
// memory for them. One instance lives from the load of the library to its unload.
class CVELABaseTypesApp : public CWinApp {
 public:
  BOOL InitInstance() override;
  int ExitInstance() override;
};

namespace vela {

// The application object starts when the library is loaded. When there was no memory for that, it
// tries again; false as long as there is none, and then no object can be made.
bool StartApplication();

}  // namespace vela
