#include <algorithm>
#include <cmath>
#include <limits>

#if !defined(_WIN32)
#include <sys/stat.h>
#endif

#include "file_fixture.h"

namespace vela::testing {
namespace {

class File : public FileTest {
 protected:
  File() { file_ = Make(kTypeFile); }

  int LastError() { return Call(file_, "GetLastError").Int(); }
};

TEST_F(File, OpensWritesSeeksAndReads) {
  const std::string path = PathOf("bytes-é漢.bin");
  EXPECT_EQ(TextOf(file_), " (close)");
  ASSERT_EQ(Call(file_, "Open", path, mode::kCreate | mode::kReadWrite).Int(), 1);
  EXPECT_EQ(TextOf(file_), path + " (open)");
  EXPECT_EQ(Call(file_, "IsOpen").Int(), 1);
  EXPECT_NE(Call(file_, "GetHandle").Int(), 0);
  EXPECT_EQ(Call(file_, "Write", "hello, world", 12).Int(), 12);
  EXPECT_EQ(Call(file_, "GetPosition").Int(), 12);
  EXPECT_EQ(Call(file_, "GetLength").Int(), 12);
  EXPECT_EQ(Call(file_, "Flush").Int(), 1);
  EXPECT_EQ(Call(file_, "Seek", -5, 2).Int(), 7);
  const ObjectRef text = StringOf("something longer than that");
  EXPECT_EQ(Call(file_, "Read", text, 3).Int(), 3);
  EXPECT_EQ(TextOf(text), "wor");
  EXPECT_EQ(Call(file_, "Read", text, 100).Int(), 2) << "the end";
  EXPECT_EQ(TextOf(text), "ld");
  EXPECT_EQ(Call(file_, "Read", text, 100).Int(), 0);
  EXPECT_EQ(TextOf(text), "");
  EXPECT_EQ(Call(file_, "SeekToBegin").status, 0);
  EXPECT_EQ(Call(file_, "GetPosition").Int(), 0);
  EXPECT_EQ(Call(file_, "SeekToEnd").Int(), 12);
  EXPECT_EQ(Call(file_, "Seek", 4, 1).Int(), 16) << "after the end";
  EXPECT_EQ(LastError(), 0);
  EXPECT_EQ(Call(file_, "Close").Int(), 1);
  EXPECT_EQ(TextOf(file_), " (close)");
  EXPECT_EQ(Call(file_, "GetHandle").Int(), 0);
  EXPECT_EQ(ContentOf(path), "hello, world");
}

TEST_F(File, SeekRefusesWhatItCannotReach) {
  OpenOn("12345");
  EXPECT_EQ(Call(file_, "Seek", 2, 0).Int(), 2);
  EXPECT_EQ(Call(file_, "Seek", 0, 3).Int(), 0);
  EXPECT_EQ(Call(file_, "Seek", 0, -1).Int(), 0);
  EXPECT_EQ(LastError(), 0);
  EXPECT_EQ(Call(file_, "Seek", -1, 0).Int(), 0);
  EXPECT_EQ(LastError(), 9);
  EXPECT_EQ(Call(file_, "Seek", -3, 1).Int(), 0);
  EXPECT_EQ(Call(file_, "GetPosition").Int(), 2);
}

TEST_F(File, PositionsAreThirtyTwoBit) {
  const std::string path = Write("sparse", "");
  const auto resize = [&](std::uintmax_t size) {
    std::filesystem::resize_file(NativePath(path), size);
    EXPECT_EQ(Call(file_, "Open", path, 0).Int(), 1);
  };
  resize(std::uintmax_t{3} << 30);
  EXPECT_EQ(Call(file_, "GetLength").integer, std::int64_t{3} << 30);
  EXPECT_EQ(Call(file_, "SeekToEnd").integer, std::int64_t{3} << 30);
  Call(file_, "Close");
  resize(std::uintmax_t{5} << 30);
  EXPECT_EQ(Call(file_, "GetLength").Int(), 0);
  EXPECT_EQ(LastError(), 9);
  for (const unsigned type : {kTypeFile, kTypeStdioFile}) {
    file_ = Make(type);
    ASSERT_EQ(Call(file_, "Open", path, 0).Int(), 1);
    EXPECT_EQ(Call(file_, "Seek", 7, 0).Int(), 7);
    EXPECT_EQ(Call(file_, "SeekToEnd").Int(), 0);
    EXPECT_EQ(LastError(), 9);
    EXPECT_EQ(Call(file_, "GetPosition").Int(), 7) << "what fails does not move";
    Call(file_, "Close");
  }
}

TEST_F(File, BuffersAreNeverOverrun) {
  OpenOn("0123456789", mode::kReadWrite);
  const ObjectRef bytes = VectorOf<unsigned char>({1, 2, 3});
  EXPECT_EQ(Call(file_, "Read", bytes, 4).status, status::kBadArguments);
  EXPECT_EQ(Call(file_, "Read", bytes, -1).status, status::kBadArguments);
  EXPECT_EQ(Call(file_, "Read", bytes, 4e9).status, status::kBadArguments);
  EXPECT_EQ(Call(file_, "ReadInt", bytes, 4, 1, 1).status, status::kBadArguments);
  EXPECT_EQ(Call(file_, "ReadInt", bytes, 4, 0x7FFFFFFF, 1).status, status::kBadArguments);
  EXPECT_EQ(Call(file_, "ReadInt", bytes, 1, -1, 1).Int(), 0);
  EXPECT_EQ(Call(file_, "Write", bytes, 4).status, status::kBadArguments);
  EXPECT_EQ(Call(file_, "Write", "abc", 5).status, status::kBadArguments);
  EXPECT_EQ(Call(file_, "Write", Null{}, 1).status, status::kBadArguments);
  EXPECT_EQ(Call(file_, "Write", 7, 1).status, status::kBadArguments);
  EXPECT_EQ(Call(file_, "GetPosition").Int(), 0);
  EXPECT_EQ(Call(file_, "Read", bytes, 3).Int(), 3);
  EXPECT_EQ(ValuesOf<unsigned char>(bytes), (std::vector<unsigned char>{'0', '1', '2'}));
  const ObjectRef text = StringOf("");
  EXPECT_EQ(Call(file_, "Read", text, 4e9).Int(), 7) << "a string takes what there is";
  EXPECT_EQ(TextOf(text), "3456789");
}

TEST_F(File, ItemsOfEitherByteOrder) {
  OpenOn(std::string("\1\2\3\4\5\6\7\x8", 8));
  const ObjectRef shorts = VectorOf<unsigned short>({9, 9, 9, 9, 9});
  EXPECT_EQ(Call(file_, "ReadInt", shorts, 2, 3, 0).Int(), 3);
  EXPECT_EQ(ValuesOf<unsigned short>(shorts),
            (std::vector<unsigned short>{0x0102, 0x0304, 0x0506, 9, 9}));
  EXPECT_EQ(Call(file_, "ReadInt", shorts, 3, 1, 1).Int(), 0);
  EXPECT_EQ(Call(file_, "GetPosition").Int(), 6) << "another size reads nothing";
  Call(file_, "SeekToBegin");
  const ObjectRef ints = VectorOf<int>({0, 0, 0});
  EXPECT_EQ(Call(file_, "ReadInt", ints, 4, 3, 1).Int(), 2);
  EXPECT_EQ(ValuesOf<int>(ints), (std::vector<int>{0x04030201, 0x08070605, 0}));
  Call(file_, "Seek", 3, 0);
  EXPECT_EQ(Call(file_, "ReadInt", ints, 4, 3, 0).Int(), 1) << "one and a quarter";
  EXPECT_EQ(ValuesOf<int>(ints)[0], 0x04050607);
  EXPECT_EQ(Call(file_, "ReadInt", ints, 4, 3).status, status::kBadArguments);
  EXPECT_EQ(Call(file_, "ReadFloat", ints, 2, 1, 0).Int(), 0);
  Call(file_, "Close");
  EXPECT_EQ(Call(file_, "ReadInt", ints, 4, 3, 1).status, status::kNotOpen);
}

TEST_F(File, ItemsSurviveTheWayThroughAFile) {
  std::vector<double> numbers;
  for (int i = 0; i < 50'000; ++i) numbers.push_back(std::ldexp(i - 7.25, i % 60 - 30));
  const ObjectRef source = VectorOf(numbers);
  const ObjectRef target = VectorOf(std::vector<double>(numbers.size()));
  const int count = static_cast<int>(numbers.size());
  const std::string path = PathOf("numbers");
  for (const int is_little : {0, 1}) {
    const int flags = mode::kCreate | mode::kReadWrite | mode::kDenyNone;
    ASSERT_EQ(Call(file_, "Open", path, flags).Int(), 1);
    EXPECT_EQ(Call(file_, "WriteFloat", source, 8, count, is_little).Int(), count);
    EXPECT_EQ(ValuesOf<double>(source), numbers) << "unchanged by the write";
    std::string bytes(reinterpret_cast<const char*>(numbers.data()), numbers.size() * 8);
    if (!is_little) {
      std::reverse(bytes.begin(), bytes.end());
      for (std::size_t i = 0; i < bytes.size() / 2; i += 8) {
        std::swap_ranges(&bytes[i], &bytes[i + 8], &bytes[bytes.size() - 8 - i]);
      }
    }
    EXPECT_TRUE(ContentOf(path) == bytes);
    Call(file_, "SeekToBegin");
    EXPECT_EQ(Call(file_, "ReadFloat", target, 8, count, is_little).Int(), count);
    EXPECT_EQ(ValuesOf<double>(target), numbers);
    Call(file_, "Close");
  }
}

TEST_F(File, TextIsWrittenInAnEncoding) {
  const struct {
    unsigned encoding;
    std::string content;
  } cases[] = {
      {1, std::string("\xEF\xBB\xBFé😀\xFF", 10)},
      {2, std::string("\xFF\xFE\xE9\0\x3D\xD8\0\xDE\xFD\xFF", 10)},
      {3, std::string("\xFE\xFF\0\xE9\xD8\x3D\xDE\0\xFF\xFD", 10)},
      {0, std::string("é😀\xFF", 7)},
  };
  for (const auto& c : cases) {
    const std::string path = PathOf("encoded");
    ASSERT_EQ(Call(file_, "Open", path, mode::kCreate | mode::kWrite).Int(), 1);
    Call(file_, "SetWriteEncoding", c.encoding);
    EXPECT_EQ(Call(file_, "WriteBOM").Int(), c.encoding == 1 ? 3 : c.encoding == 0 ? 0 : 2);
    EXPECT_EQ(Call(file_, "Write", StringOf("é😀\xFF"), 7).Int(),
              c.encoding == 1 || c.encoding == 0 ? 7 : 8);
    EXPECT_EQ(Call(file_, "WriteBOM").Int(), 0) << "only at the beginning";
    EXPECT_EQ(LastError(), 0);
    Call(file_, "Close");
    EXPECT_EQ(ContentOf(path), c.content) << c.encoding;
  }
  OpenOn("", mode::kWrite);
  Call(file_, "SetWriteEncoding", 4);
  EXPECT_EQ(Call(file_, "Write", "a", 1).Int(), 0);
  EXPECT_EQ(LastError(), 1);
  EXPECT_EQ(Call(file_, "WriteBOM").Int(), 0);
}

TEST_F(File, EncodingsAreDetected) {
  std::string cut(51199, 'a');
  cut += "é and more";  // the sample ends inside a character
  const struct {
    std::string content;
    int encoding;
  } cases[] = {
      {"", 255},
      {"plain", 1},
      {"gr\xC3\xBC\xC3\x9F", 1},
      {"\xEF\xBB\xBF\xFF", 1},
      {cut, 1},
      {"gr\xFC\xDF", 0},
      {"gr\xC3", 0},
      {cut.substr(0, 51200), 0},
      {"\xFF", 0},
      {"\xFF\xFE\x41", 2},
      {"\xFE\xFF\x41", 3},
      {Utf16(u"x,y\r\n1,2\r\n", false), 2},
      {Utf16(u"x,y\r\n1,2\r\n", true), 3},
      {Utf16(u"Привет, мир и все, кто в нём\n", false), 2},
      {Utf16(u"Привет, мир и все, кто в нём\n", true), 3},
      {std::string("\0\0\0\0\1\2\3\xFF", 8), 0},
  };
  for (const auto& c : cases) {
    OpenOn(c.content);
    Call(file_, "Seek", 1, 0);
    EXPECT_EQ(Call(file_, "DetectEncode").Int(), c.encoding) << c.content.substr(0, 40);
    EXPECT_EQ(Call(file_, "GetPosition").Int(), 1);
    Call(file_, "Close");
  }
  EXPECT_EQ(Call(file_, "DetectEncode").Int(), 255) << "closed";
}

TEST_F(File, AClosedFileAnswers) {
  const ObjectRef text = StringOf("");
  EXPECT_EQ(Call(file_, "Read", text, 1).Int(), 0);
  EXPECT_EQ(LastError(), 6);
  EXPECT_EQ(Call(file_, "Write", "x", 1).Int(), 0);
  EXPECT_EQ(Call(file_, "Seek", 0, 0).Int(), 0);
  EXPECT_EQ(Call(file_, "SeekToBegin").status, 0);
  EXPECT_EQ(Call(file_, "GetLength").Int(), 0);
  EXPECT_EQ(Call(file_, "Flush").Int(), 0);
  EXPECT_EQ(Call(file_, "WriteBOM").Int(), 0);
  EXPECT_EQ(Call(file_, "Close").Int(), 0);
  EXPECT_EQ(file_->CreateCopy(), nullptr);
  for (const char* name : {"Seek", "Write", "Read", "Rename", "Remove", "Open", "WriteInt"}) {
    EXPECT_EQ(Call(file_, name).status, status::kBadArguments) << name;
  }
  EXPECT_EQ(Call(file_, "Close", 1).status, status::kBadArguments);
}

TEST_F(File, RenamesAndRemoves) {
  const std::string first = Write("first", "1"), second = Write("second", "2");
  const std::string third = PathOf("third-é");
  EXPECT_EQ(Call(file_, "Rename", first, second).Int(), 0);
  EXPECT_EQ(LastError(), 5) << "exists";
  EXPECT_EQ(Call(file_, "Rename", first, third).Int(), 1);
  EXPECT_EQ(ContentOf(third), "1");
  ASSERT_EQ(Call(file_, "Open", third, 0).Int(), 1);
  EXPECT_EQ(Call(file_, "Remove", third).Int(), 0);
  EXPECT_EQ(LastError(), 11) << "open";
  Call(file_, "Close");
  EXPECT_EQ(Call(file_, "Remove", third).Int(), 1);
  EXPECT_EQ(Call(file_, "Remove", third).Int(), 0);
  EXPECT_EQ(LastError(), 2);
}

TEST_F(File, SharingFollowsTheFlags) {
  const std::string path = Write("shared", "text");
  const ObjectRef other = Make(kTypeStdioFile);
  ASSERT_EQ(Call(file_, "Open", path, mode::kRead).Int(), 1);
  EXPECT_EQ(Call(other, "Open", path, mode::kRead | mode::kDenyNone).Int(), 0);
  EXPECT_EQ(Call(other, "GetLastError").Int(), 11) << "shared with nobody by default";
  ASSERT_EQ(Call(file_, "Open", path, mode::kRead | mode::kDenyWrite).Int(), 1);
  EXPECT_EQ(Call(other, "Open", path, mode::kRead | mode::kDenyWrite).Int(), 1);
  EXPECT_EQ(Call(other, "Open", path, mode::kWrite | mode::kDenyNone).Int(), 0);
}

TEST_F(File, BeyondTheEndThereIsNothing) {
  for (const unsigned type : {kTypeFile, kTypeStdioFile}) {
    file_ = Make(type);
    OpenOn("12345", mode::kReadWrite | mode::kBinary);
    const ObjectRef text = StringOf("old");
    const ObjectRef ints = VectorOf<int>({7});
    EXPECT_EQ(Call(file_, "Seek", 100, 2).Int(), 105);
    EXPECT_EQ(Call(file_, "Read", text, 10).Int(), 0);
    EXPECT_EQ(TextOf(text), "");
    EXPECT_EQ(Call(file_, "ReadInt", ints, 4, 1, 0).Int(), 0);
    EXPECT_EQ(ValuesOf<int>(ints), std::vector<int>{7});
    if (type == kTypeStdioFile) {
      EXPECT_EQ(Call(file_, "ReadString", text, 0).Int(), 0);
      EXPECT_EQ(Call(file_, "Scan", 0, text, 10).Int(), 0);
    }
    EXPECT_EQ(LastError(), 0) << "the end is no failure";
    for (const int from : {0, 1, 2}) {
      EXPECT_EQ(Call(file_, "Seek", std::numeric_limits<int>::min(), from).Int(), 0);
      EXPECT_EQ(LastError(), 9);
    }
    EXPECT_EQ(Call(file_, "GetPosition").Int(), 105);
    EXPECT_EQ(Call(file_, "Write", "x", 1).Int(), 1);
    EXPECT_EQ(Call(file_, "GetLength").Int(), 106);
    Call(file_, "Close");
    EXPECT_EQ(ContentOf(PathOf("content")), "12345" + std::string(100, '\0') + "x");
  }
}

#if !defined(_WIN32)
TEST_F(File, WhatIsNoOrdinaryFile) {
  const std::string pipe = PathOf("pipe");
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  for (const unsigned type : {kTypeFile, kTypeStdioFile}) {
    file_ = Make(type);
    for (const int access : {mode::kRead, mode::kWrite, mode::kReadWrite, 3}) {
      for (const int creation : {0, mode::kCreate, mode::kCreate | mode::kNoTruncate}) {
        EXPECT_EQ(Call(file_, "Open", folder_, access | creation).Int(), 0);
        EXPECT_EQ(LastError(), 5) << "a folder";
        EXPECT_EQ(Call(file_, "Open", pipe, access | creation).Int(), 0);
        EXPECT_EQ(LastError(), 6) << "a pipe, for which nobody waits";
      }
    }
    EXPECT_TRUE(std::filesystem::is_fifo(pipe));
  }
  file_ = Make(kTypeFile);
  ASSERT_EQ(Call(file_, "Open", "/dev/full", mode::kReadWrite | mode::kDenyNone).Int(), 1);
  EXPECT_EQ(Call(file_, "Write", "x", 1).Int(), 0);
  EXPECT_EQ(LastError(), 13);
  EXPECT_EQ(Call(file_, "WriteInt", VectorOf<int>({1}), 4, 1, 0).Int(), 0);
  const ObjectRef text = StringOf("");
  EXPECT_EQ(Call(file_, "Read", text, 5).Int(), 5);
  EXPECT_EQ(TextOf(text), std::string(5, '\0'));
  EXPECT_EQ(Call(file_, "GetLength").Int(), 0);
  EXPECT_EQ(Call(file_, "Read", text, 5 << 20).Int(), 5 << 20) << "however much is asked";
  EXPECT_EQ(TextOf(text).size(), std::size_t{5} << 20);
}

TEST_F(File, ChangesThatOthersMakeAreSeen) {
  OpenOn("0123456789", mode::kReadWrite | mode::kBinary);
  const std::string path = PathOf("content");
  const ObjectRef text = StringOf("");
  EXPECT_EQ(Call(file_, "Read", text, 4).Int(), 4);
  std::filesystem::resize_file(path, 2);
  EXPECT_EQ(Call(file_, "Read", text, 4).Int(), 0) << "cut short";
  EXPECT_EQ(Call(file_, "GetLength").Int(), 2);
  EXPECT_EQ(Call(file_, "GetPosition").Int(), 4);
  std::ofstream(path, std::ios::app) << "grown";
  EXPECT_EQ(Call(file_, "Read", text, 40).Int(), 3);
  EXPECT_EQ(TextOf(text), "own");
  std::filesystem::remove(path);
  EXPECT_EQ(Call(file_, "SeekToBegin").status, 0);
  EXPECT_EQ(Call(file_, "Read", text, 40).Int(), 7) << "gone from its folder only";
  EXPECT_EQ(Call(file_, "Write", "more", 4).Int(), 4);
  EXPECT_EQ(LastError(), 0);
  EXPECT_EQ(Call(file_, "Close").Int(), 1);
  EXPECT_FALSE(std::filesystem::exists(path));
}
#endif

TEST_F(File, FailuresLeakNoHandle) {
  const std::string path = Write("locked", "x");
  const ObjectRef holder = Make(kTypeFile);
  ASSERT_EQ(Call(holder, "Open", path, mode::kRead | mode::kExclusive).Int(), 1);
  const int before = Call(holder, "GetHandle").Int();
  const ObjectRef stdio_file = Make(kTypeStdioFile);
  for (int i = 0; i < 5'000; ++i) {
    const ObjectRef& file = i % 2 == 0 ? file_ : stdio_file;
    ASSERT_EQ(Call(file, "Open", path, mode::kRead | mode::kDenyNone).Int(), 0);
    ASSERT_EQ(Call(file, "Open", folder_, mode::kRead).Int(), 0);
    ASSERT_EQ(Call(file, "Open", PathOf("missing"), mode::kRead).Int(), 0);
    ASSERT_EQ(Call(file, "Remove", path).Int(), 0);
  }
  Call(holder, "Close");
  ASSERT_EQ(Call(holder, "Open", path, mode::kRead).Int(), 1);
  EXPECT_LT(Call(holder, "GetHandle").Int(), before + 1000);
}

TEST_F(File, ObjectsCloseTheirFiles) {
  const std::string path = Write("cycled", "x");
  for (int i = 0; i < 20'000; ++i) {
    const ObjectRef file = Make(i % 2 == 0 ? kTypeFile : kTypeStdioFile);
    ASSERT_EQ(Call(file, "Open", path, mode::kRead).Int(), 1) << i;
    if (i % 3 == 0) Call(file, "Close");
    if (i % 3 == 1) {
      ASSERT_EQ(Call(file, "Open", path, mode::kReadWrite).Int(), 1) << i;
    }
  }
  ASSERT_EQ(Call(file_, "Open", path, mode::kRead).Int(), 1);
  EXPECT_LT(Call(file_, "GetHandle").Int(), 5000);
}

}  // namespace
}  // namespace vela::testing
