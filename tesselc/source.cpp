#include "tesselc/source.h"

#include <algorithm>
#include <fstream>
#include <system_error>
#include <utility>

namespace tesselc {

namespace {

constexpr std::size_t kMaxFileSize = std::size_t{256} << 20;

bool IsContinuation(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

// Reads to the end rather than asking for the size first, so that pipes work too.
std::string ReadWhole(const std::filesystem::path& path, std::string& text) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return "permission denied or not a readable file";
  char chunk[1 << 16];
  while (in.read(chunk, sizeof chunk) || in.gcount() > 0) {
    text.append(chunk, static_cast<std::size_t>(in.gcount()));
    if (text.size() > kMaxFileSize) return "the file is too large for a script";
  }
  return in.bad() ? "an error occurred while reading" : "";
}

}  // namespace

SourceRange Cover(const SourceRange& first, const SourceRange& last) {
  return {first.file, first.offset, last.end() - first.offset};
}

SourceFile::SourceFile(std::string name, std::string text)
    : name_(std::move(name)), text_(std::move(text)), line_starts_{0} {
  for (std::size_t i = 0; i < text_.size(); ++i) {
    if (text_[i] == '\n') line_starts_.push_back(static_cast<std::uint32_t>(i + 1));
  }
}

std::size_t SourceFile::LineStart(std::size_t offset) const {
  return *(std::upper_bound(line_starts_.begin(), line_starts_.end(), offset) - 1);
}

LineColumn SourceFile::Locate(std::size_t offset) const {
  offset = std::min(offset, text_.size());
  const auto next = std::upper_bound(line_starts_.begin(), line_starts_.end(), offset);
  const auto before = std::string_view(text_).substr(*(next - 1), offset - *(next - 1));
  const auto continuations = std::count_if(before.begin(), before.end(), IsContinuation);
  return {static_cast<std::uint32_t>(next - line_starts_.begin()),
          static_cast<std::uint32_t>(before.size() - static_cast<std::size_t>(continuations) + 1)};
}

std::string_view SourceFile::Line(std::size_t offset) const {
  std::string_view line = std::string_view(text_).substr(LineStart(offset));
  line = line.substr(0, line.find('\n'));
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

std::filesystem::path PathFromUtf8(std::string_view text) {
  return std::filesystem::path(std::u8string(text.begin(), text.end()));
}

std::string Utf8FromPath(const std::filesystem::path& path) {
  const std::u8string text = path.u8string();
  return std::string(text.begin(), text.end());
}

SourceSet::Loaded SourceSet::Load(const std::string& path) {
  const auto refuse = [&path](const std::string& reason) {
    return Loaded{false, 0, false, "cannot read '" + path + "': " + reason};
  };
  if (path.find('\0') != std::string::npos) return refuse("the name holds a NUL byte");

  std::error_code error;
  std::filesystem::path native;
  try {
    native = PathFromUtf8(path);
  } catch (const std::exception&) {
    return refuse("the name is not valid UTF-8");
  }
  const auto status = std::filesystem::status(native, error);
  if (status.type() == std::filesystem::file_type::not_found) return refuse("no such file");
  if (error) return refuse(error.message());
  if (std::filesystem::is_directory(status)) return refuse("it is a folder");

  const auto canonical = std::filesystem::weakly_canonical(native, error);
  const std::string key = Utf8FromPath(error ? native : canonical);
  if (const auto known = loaded_.find(key); known != loaded_.end()) {
    return {true, known->second, false, ""};
  }
  std::string text;
  if (const std::string reason = ReadWhole(native, text); !reason.empty()) return refuse(reason);
  const FileId id = Add(path, std::move(text));
  loaded_.emplace(key, id);
  return {true, id, true, ""};
}

FileId SourceSet::Add(std::string name, std::string text) {
  files_.emplace_back(std::move(name), std::move(text));
  return static_cast<FileId>(files_.size() - 1);
}

std::string_view SourceSet::Text(const SourceRange& range) const {
  return file(range.file).text().substr(range.offset, range.length);
}

std::string SourceSet::Resolve(FileId includer, std::string_view included) const {
  const auto folder = PathFromUtf8(file(includer).name()).parent_path();
  return Utf8FromPath((folder / PathFromUtf8(included)).lexically_normal());
}

}  // namespace tesselc
