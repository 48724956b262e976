// What the tests of the file classes share.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

#include "text_fixture.h"

namespace vela::testing {

namespace mode {
inline constexpr int kRead = 0;
inline constexpr int kWrite = 1;
inline constexpr int kReadWrite = 2;
inline constexpr int kExclusive = 0x10;
inline constexpr int kDenyWrite = 0x20;
inline constexpr int kDenyNone = 0x40;
inline constexpr int kNoInherit = 0x80;
inline constexpr int kCreate = 0x1000;
inline constexpr int kNoTruncate = 0x2000;
inline constexpr int kUnicode = 0x4000;
inline constexpr int kBinary = 0x8000;
}  // namespace mode

inline std::string Utf16(std::u16string_view text, bool is_big = false) {
  std::string bytes;
  for (const char16_t unit : text) {
    bytes += static_cast<char>(is_big ? unit >> 8 : unit);
    bytes += static_cast<char>(is_big ? unit : unit >> 8);
  }
  return bytes;
}

// A folder of its own for each test; names are UTF-8.
class FileTest : public ::testing::Test {
 protected:
  void SetUp() override { std::filesystem::create_directories(NativePath(folder_)); }
  void TearDown() override {
    file_ = ObjectRef();
    std::error_code ignored;
    std::filesystem::remove_all(NativePath(folder_), ignored);
  }

  static std::filesystem::path NativePath(const std::string& name) {
    return std::filesystem::path(std::u8string(name.begin(), name.end()));
  }
  std::string PathOf(const std::string& name) const { return folder_ + "/" + name; }
  std::string Write(const std::string& name, std::string_view content) const {
    std::ofstream out(NativePath(PathOf(name)), std::ios::binary);
    out << content;
    return PathOf(name);
  }
  static std::string ContentOf(const std::string& path) {
    std::ifstream in(NativePath(path), std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }
  // Opens file_ on a file with that content.
  void OpenOn(std::string_view content, int flags = mode::kRead) {
    // An open file is shared with nobody, so it must be closed before its content is replaced.
    if (Call(file_, "IsOpen").Int() == 1) Call(file_, "Close");
    ASSERT_EQ(Call(file_, "Open", Write("content", content), flags).Int(), 1);
  }

  // Not that of another run of these tests.
  const std::string folder_ =
      ::testing::TempDir() + "vela files " + std::to_string(std::random_device{}());
  ObjectRef file_;
};

}  // namespace vela::testing
