// Loads the support library at run time and makes objects with it.
#pragma once

#include <cstdint>
#include <string>

#include "frame/interface/entry_points.h"
#include "frame/interface/export.h"

class CTCall;
class CScriptVelaObject;

namespace vela::host {

// The support library stays loaded once it is: objects, and the tables behind them, may outlive the
// Library that loaded it.
class VELAHOST_API Library {
 public:
  Library() = default;
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;

  // Loads the library from the UTF-8 path given; with an empty one, from the folder of the running
  // program, else from that of the host runtime. Finds its six exports. False, with the reason in
  // GetError, when either fails; the Library is then unchanged.
  bool Load(const std::string& path = {});
  bool IsLoaded() const { return exports_.create_object != nullptr; }
  const std::string& GetError() const { return error_; }
  // The file that was loaded.
  const std::string& GetPath() const { return path_; }

  // Gives the library the host's callback, error-report hook and context, and initialises
  // automation, which the library then finds in the process. Once, after Load.
  void Configure();
  // New numeric storage is filled with 0xCC and lent buffers are guarded while mode is above 0.
  void SetDebugMode(int mode);

  // A new object without references: wrap it in an ObjectRef. Null when the type word names no
  // object, memory runs out or no library is loaded. n is the number of elements, rows or layers
  // (bits of a bit field); initial, when given, holds the initialiser as argument 0.
  CScriptVelaObject* Create(unsigned type_word, unsigned n = 0, CTCall* initial = nullptr) const;

  // Code of the last report since the previous call; 0 for none. A bad initialiser is 48.
  static int TakeErrorReport();

  // The exports that a host calls without an object; null while nothing is loaded.
  struct Exports {
    decltype(&VELA_CRT_OBJ) create_object = nullptr;
    decltype(&CreateMDNumericObjectPtr) create_multi_dimensional = nullptr;
    decltype(&GetDebugModePtr) debug_mode = nullptr;
    decltype(&safe_pow) power = nullptr;
    void* min_max = nullptr;             // TCAllVectorsBase_GetMinMax
    void* check_remove_range = nullptr;  // VectorSourceDataRangeHolder_CheckRemoveValidRangePtr
  };
  const Exports& GetExports() const { return exports_; }

 private:
  Exports exports_;
  std::string path_;
  std::string error_;
};

}  // namespace vela::host
