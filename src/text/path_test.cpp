#include "text/path_test.h"

#include <filesystem>
#include <string>

namespace vela::text {
namespace {

namespace fs = std::filesystem;

fs::file_status StatusOf(const CStringUTF8& name) noexcept {
  try {
    const std::string_view bytes = name.View();
    if (bytes.empty() || bytes.find('\0') != std::string_view::npos) return {};
    std::error_code ignored;
    return fs::status(fs::path(std::u8string(bytes.begin(), bytes.end())), ignored);
  } catch (...) {
    return {};
  }
}

}  // namespace

bool IsFolder(const CStringUTF8& name) noexcept { return fs::is_directory(StatusOf(name)); }

bool IsFile(const CStringUTF8& name) noexcept {
  const fs::file_status found = StatusOf(name);
  return fs::exists(found) && !fs::is_directory(found);
}

}  // namespace vela::text
