#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace tesselc {

using FileId = std::uint32_t;

// A stretch of one source file, in bytes.
struct SourceRange {
  FileId file = 0;
  std::uint32_t offset = 0;
  std::uint32_t length = 0;

  std::uint32_t end() const { return offset + length; }
};

// The shortest range that covers both; they must lie in one file, `last` not before `first`.
SourceRange Cover(const SourceRange& first, const SourceRange& last);

// A place as people count it: from 1, columns in characters (a UTF-8 sequence is one).
struct LineColumn {
  std::uint32_t line = 1;
  std::uint32_t column = 1;
};

// One text, held whole. Ranges refer to it by offset, so it never changes.
class SourceFile {
 public:
  SourceFile(std::string name, std::string text);

  const std::string& name() const { return name_; }
  std::string_view text() const { return text_; }

  // `offset` may be anything up to the text's size, which is the place after the last character.
  LineColumn Locate(std::size_t offset) const;
  // The line that holds `offset`, without its line end.
  std::string_view Line(std::size_t offset) const;
  // Where that line begins.
  std::size_t LineStart(std::size_t offset) const;

 private:
  std::string name_;
  std::string text_;
  std::vector<std::uint32_t> line_starts_;
};

// UTF-8 to the system's own path form and back.
std::filesystem::path PathFromUtf8(std::string_view text);
std::string Utf8FromPath(const std::filesystem::path& path);

// Every text of one script: the script, what it includes, lines typed at a prompt. Ids are dense
// and stay valid, and so do references to files, for as long as the set lives.
class SourceSet {
 public:
  struct Loaded {
    bool ok = false;
    FileId id = 0;
    bool first_time = false;  // false when the same file was loaded before, under whatever name
    std::string error;        // "cannot read 'x.tc': no such file", when not ok
  };

  // Reads a file whole. The path is UTF-8 and is also how diagnostics name the file. Refuses
  // folders, unreadable files and anything above 256 MiB.
  Loaded Load(const std::string& path);
  // Adds text that is not in a file, such as a prompt's line or the value of an option.
  FileId Add(std::string name, std::string text);

  const SourceFile& file(FileId id) const { return files_[id]; }
  // The directive that a file was included by; of length 0 for one that was not.
  void SetInclusion(FileId id, const SourceRange& directive) { inclusions_[id] = directive; }
  SourceRange Inclusion(FileId id) const {
    const auto found = inclusions_.find(id);
    return found == inclusions_.end() ? SourceRange{} : found->second;
  }
  std::size_t size() const { return files_.size(); }
  std::string_view Text(const SourceRange& range) const;

  // The path that `included`, as written in `includer`, stands for: relative to the includer's
  // folder.
  std::string Resolve(FileId includer, std::string_view included) const;

 private:
  std::deque<SourceFile> files_;
  std::map<FileId, SourceRange> inclusions_;
  std::map<std::string, FileId> loaded_;  // by the path with links and dots resolved
};

}  // namespace tesselc
