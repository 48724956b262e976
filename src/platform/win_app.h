// The application framework's application object, as far as a library needs one.
#pragma once

#include "platform/types.h"

class CWinApp {
 public:
  CWinApp() = default;
  CWinApp(const CWinApp&) = delete;
  CWinApp& operator=(const CWinApp&) = delete;
  virtual ~CWinApp() = default;

  // Start-up and shut-down of the framework itself; overrides call them last.
  virtual BOOL InitInstance() { return 1; }
  virtual int ExitInstance() { return 0; }
};
