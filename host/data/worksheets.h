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
  // The worksheet of the name, made when there is none. Throws std::bad_alloc.
  static Worksheet& Open(std::string_view name);
  // Takes the worksheet in; false when there is one of the name already.
  static bool Add(std::unique_ptr<Worksheet> worksheet);
  // False when there is none.
  static bool Close(std::string_view name);
};

}  // namespace vela::host
