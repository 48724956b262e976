#include "platform/file_handle.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

#include "platform/file_stream.h"

#if !defined(_WIN32)
#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#endif

namespace vela::platform {

void PrintTo(FileCause cause, std::ostream* out) { *out << "cause " << static_cast<int>(cause); }

namespace {

namespace fs = std::filesystem;

class FileHandleTest : public ::testing::Test {
 protected:
  void SetUp() override { fs::create_directories(NativePath(folder_)); }
  void TearDown() override { fs::remove_all(NativePath(folder_)); }

  static fs::path NativePath(const std::string& name) {
    return fs::path(std::u8string(name.begin(), name.end()));
  }
  std::string PathOf(const std::string& name) const { return folder_ + "/" + name; }
  std::string Write(const std::string& name, const std::string& content) const {
    std::ofstream(NativePath(PathOf(name)), std::ios::binary) << content;
    return PathOf(name);
  }
  std::string ContentOf(const std::string& path) const {
    std::ifstream in(NativePath(path), std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }

  // Not that of another run of these tests.
  const std::string folder_ =
      ::testing::TempDir() + "vela file handles " + std::to_string(std::random_device{}());
};

constexpr FileOptions kRead = {.access = FileAccess::kRead};
constexpr FileOptions kUpdate = {.access = FileAccess::kReadWrite};
constexpr FileOptions kCreate = {.access = FileAccess::kReadWrite,
                                 .creation = FileCreation::kCreateAlways};
constexpr FileOptions kSharedRead = {
    .access = FileAccess::kRead, .shares_reading = true, .shares_writing = true};

std::string ReadAll(FileHandle& file) {
  std::string text(100, '?');
  std::size_t done = 0;
  EXPECT_EQ(file.Read(text.data(), text.size(), done), FileCause::kNone);
  text.resize(done);
  return text;
}

TEST_F(FileHandleTest, FailuresHaveTheirCause) {
  const std::string file = Write("plain", "x");
  const struct {
    std::string name;
    FileOptions options;
    FileCause cause;
  } cases[] = {
    {"", kRead, FileCause::kBadPath},
    {std::string("plain\0x", 7), kRead, FileCause::kBadPath},
    {PathOf("nothing"), kRead, FileCause::kFileNotFound},
    {PathOf("no folder/nothing"), kRead, FileCause::kBadPath},
    {PathOf("no folder/nothing"), kCreate, FileCause::kBadPath},
    {folder_, kRead, FileCause::kAccessDenied},
    {folder_ + "/", kRead, FileCause::kAccessDenied},
    {folder_, kCreate, FileCause::kAccessDenied},
#if !defined(_WIN32)  // the causes that Windows versions give for a long name differ
    {PathOf(std::string(300, 'n')), kCreate, FileCause::kBadPath},
#endif
  };
  FileHandle handle;
  for (const auto& c : cases) {
    EXPECT_EQ(handle.Open(c.name, c.options), c.cause) << c.name;
    EXPECT_FALSE(handle.IsOpen());
  }
  EXPECT_EQ(RemoveFile(PathOf("nothing")), FileCause::kFileNotFound);
  EXPECT_EQ(RemoveFile(folder_), FileCause::kAccessDenied);
  EXPECT_EQ(RenameFile(PathOf("nothing"), PathOf("other")), FileCause::kFileNotFound);
  EXPECT_EQ(RenameFile(file, folder_), FileCause::kAccessDenied) << "exists";

  char byte = 0;
  std::size_t done = 1;
  std::int64_t position = 0;
  EXPECT_EQ(handle.Read(&byte, 1, done), FileCause::kInvalidFile);
  EXPECT_EQ(done, 0u);
  EXPECT_EQ(handle.Seek(0, SeekFrom::kEnd, position), FileCause::kInvalidFile);
  EXPECT_EQ(handle.Close(), FileCause::kInvalidFile);
  ASSERT_EQ(handle.Open(file, kRead), FileCause::kNone);
  EXPECT_EQ(handle.Write(&byte, 1, done), FileCause::kAccessDenied);
  EXPECT_EQ(handle.Flush(), FileCause::kAccessDenied);
  EXPECT_EQ(handle.Seek(-1, SeekFrom::kBegin, position), FileCause::kBadSeek);
  EXPECT_EQ(ReadAll(handle), "x") << "the position stays";
}

TEST_F(FileHandleTest, CreationKeepsOrEmptiesWhatIsThere) {
  const std::string path = Write("kept", "old content");
  FileHandle file;
  FileOptions keep = kUpdate;
  keep.creation = FileCreation::kOpenAlways;
  ASSERT_EQ(file.Open(path, keep), FileCause::kNone);
  EXPECT_EQ(ReadAll(file), "old content");
  FileOptions empty = kRead;
  empty.creation = FileCreation::kCreateAlways;
  ASSERT_EQ(file.Open(path, empty), FileCause::kNone);
  EXPECT_EQ(ReadAll(file), "") << "creating empties, whatever it is opened for";
  EXPECT_EQ(file.Open(PathOf("neu-é漢😀"), keep), FileCause::kNone);
  EXPECT_TRUE(fs::exists(NativePath(PathOf("neu-é漢😀"))));
}

TEST_F(FileHandleTest, OpenFilesConflictWhenTheyDoNotShare) {
  const std::string path = Write("shared", "text");
  const auto options = [](FileAccess access, bool reading, bool writing) {
    return FileOptions{.access = access, .shares_reading = reading, .shares_writing = writing};
  };
  const struct {
    FileOptions first, second;
    bool is_allowed;
  } cases[] = {
      {options(FileAccess::kRead, false, false), options(FileAccess::kRead, true, true), false},
      {options(FileAccess::kRead, true, true), options(FileAccess::kRead, false, false), false},
      {options(FileAccess::kRead, true, false), options(FileAccess::kRead, true, false), true},
      {options(FileAccess::kRead, true, false), options(FileAccess::kWrite, true, true), false},
      {options(FileAccess::kWrite, true, true), options(FileAccess::kRead, true, false), false},
      {options(FileAccess::kWrite, true, true), options(FileAccess::kRead, true, true), true},
      {options(FileAccess::kWrite, false, true), options(FileAccess::kWrite, false, true), true},
      {options(FileAccess::kReadWrite, true, true), options(FileAccess::kReadWrite, true, true),
       true},
  };
  for (const auto& c : cases) {
    const std::ptrdiff_t index = &c - cases;
    FileHandle first, second;
    ASSERT_EQ(first.Open(path, c.first), FileCause::kNone) << index;
    EXPECT_EQ(second.Open(path, c.second),
              c.is_allowed ? FileCause::kNone : FileCause::kSharingViolation)
        << index;
    static_cast<void>(first.Close());
    static_cast<void>(second.Close());
    EXPECT_EQ(second.Open(path, c.second), FileCause::kNone) << index << ": after the other closed";
  }
}

TEST_F(FileHandleTest, ARefusedCreationLeavesTheFileAlone) {
  const std::string path = Write("guarded", "text");
  FileHandle first, second;
  ASSERT_EQ(first.Open(path, kRead), FileCause::kNone);
  EXPECT_EQ(second.Open(path, kCreate), FileCause::kSharingViolation);
  EXPECT_EQ(RemoveFile(path), FileCause::kSharingViolation);
  EXPECT_EQ(RenameFile(path, path + " moved"), FileCause::kSharingViolation);
  EXPECT_EQ(ReadAll(first), "text");
  static_cast<void>(first.Close());
  EXPECT_EQ(RenameFile(path, path + " moved"), FileCause::kNone);
  EXPECT_EQ(RemoveFile(path + " moved"), FileCause::kNone);
  EXPECT_FALSE(fs::exists(NativePath(path + " moved")));
}

TEST_F(FileHandleTest, PositionsGoBeyondFourGigabytes) {
  FileHandle file;
  ASSERT_EQ(file.Open(PathOf("sparse"), kCreate), FileCause::kNone);
  constexpr std::int64_t kFar = (std::int64_t{5} << 30) + 7;
  std::size_t done = 0;
  std::int64_t found = 0;
  ASSERT_EQ(file.WriteAt(kFar, "end", 3, done), FileCause::kNone);
  EXPECT_EQ(file.GetSize(found), FileCause::kNone);
  EXPECT_EQ(found, kFar + 3);
  EXPECT_EQ(file.Seek(-3, SeekFrom::kEnd, found), FileCause::kNone);
  EXPECT_EQ(found, kFar);
  EXPECT_EQ(ReadAll(file), "end");
}

TEST_F(FileHandleTest, MovesTakeTheHandleAlong) {
  FileHandle first;
  ASSERT_EQ(first.Open(Write("moved", "m"), kSharedRead), FileCause::kNone);
  FileHandle second = std::move(first);
  EXPECT_FALSE(first.IsOpen());
  EXPECT_EQ(ReadAll(second), "m");
}

#if !defined(_WIN32)
TEST_F(FileHandleTest, AMoveToAnotherDiskIsAllOrNothing) {
  const std::string other = "/dev/shm/vela moved " + std::to_string(std::random_device{}());
  struct stat here, there;
  if (stat("/dev/shm", &there) != 0 || stat(folder_.c_str(), &here) != 0 ||
      here.st_dev == there.st_dev) {
    GTEST_SKIP() << "there is one disk only";
  }
  fs::remove(other);
  const std::string path = Write("mover", std::string(3'000'000, 'm'));
  // A limit on what a file may have stands for a full disk.
  struct rlimit limit;
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &limit), 0);
  const struct rlimit small = {1'000'000, limit.rlim_max};
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
  EXPECT_EQ(RenameFile(path, other), FileCause::kDiskFull);
  setrlimit(RLIMIT_FSIZE, &limit);
  std::signal(SIGXFSZ, handler);
  EXPECT_TRUE(fs::exists(path));
  EXPECT_FALSE(fs::exists(other));
  EXPECT_EQ(RenameFile(path, other), FileCause::kNone);
  EXPECT_FALSE(fs::exists(path));
  EXPECT_EQ(fs::file_size(other), 3'000'000u);
  EXPECT_EQ(RenameFile(other, Write("taken", "x")), FileCause::kAccessDenied);
  EXPECT_EQ(fs::file_size(PathOf("taken")), 1u);
  fs::remove(other);
}

#endif

TEST_F(FileHandleTest, StreamsMixReadingAndWriting) {
  const std::string path = Write("mixed", "0123456789");
  FileHandle file;
  ASSERT_EQ(file.Open(path, kUpdate), FileCause::kNone);
  FileStream stream;
  stream.Attach(file, {});
  char bytes[4] = {};
  std::size_t done = 0;
  std::int64_t position = 0;
  EXPECT_EQ(stream.Read(bytes, 3, done), FileCause::kNone);
  EXPECT_EQ(std::string(bytes, done), "012");
  EXPECT_EQ(stream.Write("ab", 2, done), FileCause::kNone);
  EXPECT_EQ(stream.Read(bytes, 2, done), FileCause::kNone);
  EXPECT_EQ(std::string(bytes, done), "56");
  EXPECT_EQ(stream.Seek(-1, SeekFrom::kEnd, position), FileCause::kNone);
  EXPECT_EQ(stream.Get(), '9');
  EXPECT_EQ(stream.Get(), FileStream::kEnd);
  EXPECT_EQ(stream.Write("xyz", 3, done), FileCause::kNone);
  EXPECT_EQ(stream.Seek(0, SeekFrom::kBegin, position), FileCause::kNone);
  EXPECT_EQ(stream.Seek(-1, SeekFrom::kBegin, position), FileCause::kBadSeek);
  EXPECT_EQ(stream.Get(), '0');
  EXPECT_EQ(stream.Detach(), FileCause::kNone);
  EXPECT_EQ(file.Close(), FileCause::kNone);
  EXPECT_EQ(ContentOf(path), "012ab56789xyz");
}

TEST_F(FileHandleTest, StreamsCarryMoreThanTheirBuffer) {
  std::string big(300'000, ' ');
  for (std::size_t i = 0; i < big.size(); ++i) big[i] = static_cast<char>('a' + i % 26);
  FileHandle file;
  ASSERT_EQ(file.Open(PathOf("big"), kCreate), FileCause::kNone);
  FileStream stream;
  stream.Attach(file, {});
  std::size_t done = 0;
  for (const std::size_t piece : {1u, 65535u, 65536u, 70000u, 98928u}) {
    std::int64_t end = 0;
    ASSERT_EQ(stream.Seek(0, SeekFrom::kEnd, end), FileCause::kNone);
    EXPECT_EQ(stream.Write(big.data() + end, piece, done), FileCause::kNone);
  }
  std::int64_t position = 0;
  EXPECT_EQ(stream.Seek(0, SeekFrom::kBegin, position), FileCause::kNone);
  std::string back(big.size() + 5, '?');
  EXPECT_EQ(stream.Read(back.data(), 10, done), FileCause::kNone);
  EXPECT_EQ(stream.Read(back.data() + 10, back.size() - 10, done), FileCause::kNone);
  EXPECT_EQ(done, big.size() - 10);
  EXPECT_EQ(back.substr(0, big.size()), big);
}

TEST_F(FileHandleTest, TextIsTranslatedBothWays) {
  FileHandle file;
  ASSERT_EQ(file.Open(PathOf("text"), kCreate), FileCause::kNone);
  FileStream stream;
  stream.Attach(file, {.appends = true, .translates = true});
  std::size_t done = 0;
  EXPECT_EQ(stream.WriteText("\na\rb\n", 5, done), FileCause::kNone);
  EXPECT_EQ(done, 5u);
  std::int64_t position = 0;
  EXPECT_EQ(stream.Seek(0, SeekFrom::kBegin, position), FileCause::kNone);
  char bytes[9];
  EXPECT_EQ(stream.ReadText(bytes, sizeof bytes, done), FileCause::kNone);
  EXPECT_EQ(std::string(bytes, done), "\na\rb\n");
  EXPECT_EQ(stream.Seek(0, SeekFrom::kBegin, position), FileCause::kNone);
  EXPECT_EQ(stream.Write("+", 1, done), FileCause::kNone);
  static_cast<void>(stream.Detach());
  EXPECT_EQ(file.Close(), FileCause::kNone);
  EXPECT_EQ(ContentOf(PathOf("text")), "\r\na\rb\r\n+") << "appended, wherever the position was";
}

}  // namespace
}  // namespace vela::platform
