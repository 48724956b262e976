// The worksheets that are open in the reference host, by name. Scripts attach to their columns.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "frame/interface/export.h"
#include "host/data/worksheet.h"

namespace vela::host {

// From the thread that runs scripts only.
class VELAHOST_API Worksheets {
 public:
  // Null when there is none of the name.
  static Worksheet* Find(std::string_view name);
  // Whether a worksheet can get the name: it is not empty, has no ']' (which ends it in the name of
  // a column) and there is none of the name yet.
  static bool IsFree(std::string_view name);
  // Takes the worksheet in; false when its name is not free.
  static bool Add(std::unique_ptr<Worksheet> worksheet);
  // False when there is none.
  static bool Close(std::string_view name);
};

}  // namespace vela::host
