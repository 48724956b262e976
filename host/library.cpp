#include "host/library.h"

#include <atomic>
#include <vector>

#include "frame/interface/call.h"
#include "frame/interface/script_object.h"
#include "frame/interface/type_base.h"
#include "host/shared_library.h"
#include "platform/automation.h"

namespace vela::host {
namespace {

#if defined(_WIN32)
constexpr const char* kFileName = "VELABaseTypes.dll";
#else
constexpr const char* kFileName = "libVELABaseTypes.so";
#endif

std::atomic<int> last_report = status::kReportClear;

// The library reports 0 before it creates an object, so the code is that of the last creation.
void KeepReport(ErrorReport* report, void**) {
  if (report) last_report = report->code;
}

// Everything printed goes to the output sink.
std::uint64_t DeclineMessage(HWND, unsigned short, char*, char*) { return 0; }

// What members that exchange values with the host are given to recognise it by.
int host_context = 1;

template <class Function>
bool Find(void* library, const char* name, Function*& function, std::string& error) {
  function = reinterpret_cast<Function*>(FindSymbol(library, name));
  if (!function) error = std::string("the library does not export ") + name;
  return function != nullptr;
}

bool FindAll(void* library, Library::Exports& exports, std::string& error) {
  return Find(library, "VELA_CRT_OBJ", exports.create_object, error) &&
         Find(library, "CreateMDNumericObjectPtr", exports.create_multi_dimensional, error) &&
         Find(library, "GetDebugModePtr", exports.debug_mode, error) &&
         Find(library, "safe_pow", exports.power, error) &&
         Find(library, "TCAllVectorsBase_GetMinMax", exports.min_max, error) &&
         Find(library, "VectorSourceDataRangeHolder_CheckRemoveValidRangePtr",
              exports.check_remove_range, error);
}

std::vector<std::string> Candidates(const std::string& path) {
  if (!path.empty()) return {path};
  std::vector<std::string> candidates;
  for (const std::string& folder : {ProgramFolder(), OwnFolder()}) {
    if (!folder.empty()) candidates.push_back(folder + kFileName);
  }
  return candidates;
}

}  // namespace

bool Library::Load(const std::string& path) {
  std::string error = "the folders of the program and of the host runtime are unknown";
  for (const std::string& candidate : Candidates(path)) {
    std::string reason;
    void* const library = OpenLibrary(candidate, reason);
    if (!library) {
      error = "cannot load " + candidate + ": " + reason;
      continue;
    }
    Exports exports;
    if (!FindAll(library, exports, reason)) {
      CloseLibrary(library);
      error = "cannot use " + candidate + ": " + reason;
      continue;
    }
    exports_ = exports;
    path_ = candidate;
    error_.clear();
    return true;
  }
  error_ = error;
  return false;
}

void Library::Configure() {
  if (!IsLoaded()) return;
  OleInitialize(nullptr);
  const auto configure = [this](unsigned mode, auto* value) {
    exports_.create_object(0, reinterpret_cast<void**>(value), 0, mode);
  };
  configure(factory_mode::kSetCallback, &DeclineMessage);
  configure(factory_mode::kSetErrorReport, &KeepReport);
  configure(factory_mode::kSetHostContext, &host_context);
}

void Library::SetDebugMode(int mode) {
  if (!IsLoaded()) return;
  exports_.create_object(0, nullptr, static_cast<unsigned>(mode), factory_mode::kSetDebugMode);
}

CScriptVelaObject* Library::Create(unsigned type_word, unsigned n, CTCall* initial) const {
  if (!IsLoaded()) return nullptr;
  void* arguments[] = {initial};
  const std::uint64_t object =
      exports_.create_object(type_word, initial ? arguments : nullptr, n, factory_mode::kCreate);
  return reinterpret_cast<CScriptVelaObject*>(static_cast<std::uintptr_t>(object));
}

int Library::TakeErrorReport() { return last_report.exchange(status::kReportClear); }

}  // namespace vela::host
