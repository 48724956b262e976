#include "host/shared_library.h"

#if defined(_WIN32)
#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>
#else
#include <dlfcn.h>
#include <filesystem>
#include <system_error>
#endif

namespace vela::host {
namespace {

std::string FolderOf(const std::string& path) {
  const std::size_t separator = path.find_last_of("/\\");
  return separator == std::string::npos ? std::string() : path.substr(0, separator + 1);
}

}  // namespace

#if defined(_WIN32)

namespace {

std::wstring ToWide(const std::string& text) {
  const int length = static_cast<int>(text.size());
  std::wstring wide(
      static_cast<std::size_t>(MultiByteToWideChar(CP_UTF8, 0, text.data(), length, nullptr, 0)),
      L'\0');
  MultiByteToWideChar(CP_UTF8, 0, text.data(), length, wide.data(), static_cast<int>(wide.size()));
  return wide;
}

std::string FromWide(const std::wstring& wide) {
  const int length = static_cast<int>(wide.size());
  std::string text(static_cast<std::size_t>(WideCharToMultiByte(CP_UTF8, 0, wide.data(), length,
                                                                nullptr, 0, nullptr, nullptr)),
                   '\0');
  WideCharToMultiByte(CP_UTF8, 0, wide.data(), length, text.data(), static_cast<int>(text.size()),
                      nullptr, nullptr);
  return text;
}

std::string FolderOfModule(HMODULE module) {
  constexpr DWORD kLongestPath = 32768;
  std::wstring path(kLongestPath, L'\0');
  const DWORD length = GetModuleFileNameW(module, path.data(), kLongestPath);
  if (length == 0 || length == kLongestPath) return {};
  path.resize(length);
  return FolderOf(FromWide(path));
}

}  // namespace

void* OpenLibrary(const std::string& path, std::string& reason) {
  void* const library = reinterpret_cast<void*>(LoadLibraryW(ToWide(path).c_str()));
  if (!library) reason = "system error " + std::to_string(GetLastError());
  return library;
}

void CloseLibrary(void* library) { FreeLibrary(static_cast<HMODULE>(library)); }

void* FindSymbol(void* library, const char* name) {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), name));
}

std::string ProgramFolder() { return FolderOfModule(nullptr); }

std::string OwnFolder() {
  HMODULE module = nullptr;
  GetModuleHandleExW(
      GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
      reinterpret_cast<LPCWSTR>(&OwnFolder), &module);
  return module ? FolderOfModule(module) : std::string();
}

#else

void* OpenLibrary(const std::string& path, std::string& reason) {
  void* const library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!library) {
    const char* const message = dlerror();
    reason = message ? message : "unknown reason";
  }
  return library;
}

void CloseLibrary(void* library) { dlclose(library); }

void* FindSymbol(void* library, const char* name) { return dlsym(library, name); }

std::string ProgramFolder() {
  std::error_code error;
  return FolderOf(std::filesystem::read_symlink("/proc/self/exe", error).string());
}

std::string OwnFolder() {
  Dl_info info{};
  if (!dladdr(reinterpret_cast<void*>(&OwnFolder), &info) || !info.dli_fname) return {};
  return FolderOf(info.dli_fname);
}

#endif

}  // namespace vela::host
