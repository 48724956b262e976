#include <array>
#include <random>

#include "file_fixture.h"

namespace vela::testing {
namespace {

constexpr std::size_t kMost = 204160;  // bytes of a line that come at a time

class StdioFile : public FileTest {
 protected:
  StdioFile() { file_ = Make(kTypeStdioFile); }

  // Lines up to the end.
  Texts ReadLines(int options = 0) {
    Texts lines;
    while (Call(file_, "ReadString", line_, options).Int() == 1) lines.push_back(TextOf(line_));
    EXPECT_EQ(TextOf(line_), "") << "the end leaves no text";
    return lines;
  }
  Texts LinesOf(std::string_view content, int options = 0, int flags = mode::kRead) {
    OpenOn(content, flags);
    return ReadLines(options);
  }

  const ObjectRef line_ = StringOf("old");
};

// What the lines of a text are, the plain way.
Texts ExpectedLines(std::string_view content, bool keeps_end) {
  Texts lines;
  while (!content.empty()) {
    const std::size_t end = content.find_first_of("\r\n");
    const std::size_t bytes = end == content.npos                       ? 0
                              : content.substr(end).starts_with("\r\n") ? 2
                                                                        : 1;
    const std::size_t line = std::min(end, content.size());
    lines.emplace_back(content.substr(0, line + (keeps_end ? bytes : 0)));
    content.remove_prefix(line + bytes);
  }
  return lines;
}

TEST_F(StdioFile, ReadsLinesWithEveryEnd) {
  const std::string content("a\nb\r\nc\rd\r\r\n\n\0e", 14);
  const std::string path = Write("lines-é漢.txt", content);
  EXPECT_EQ(TextOf(file_), " (close)");
  ASSERT_EQ(Call(file_, "Open", path, 0).Int(), 1);
  EXPECT_EQ(TextOf(file_), path + " (open)");
  EXPECT_EQ(ReadLines(), (Texts{"a", "b", "c", "d", "", "", std::string("\0e", 2)}));
  EXPECT_EQ(Call(file_, "Close").Int(), 1);
  EXPECT_EQ(Call(file_, "Close").Int(), 0);
  EXPECT_EQ(Call(file_, "GetLastError").Int(), 13);
  EXPECT_EQ(Call(file_, "ReadString", line_, 0).status, status::kNotOpen);
  ASSERT_EQ(Call(file_, "Open", path, 0).Int(), 1);
  EXPECT_EQ(ReadLines(1), ExpectedLines(content, true));
  EXPECT_EQ(LinesOf(""), Texts{});
  EXPECT_EQ(LinesOf("\r"), Texts{""});
}

// Lines of every length around the vector width and the block size, with ends at every place.
TEST_F(StdioFile, LinesAcrossBlocksStayWhole) {
  std::mt19937 random(1);
  std::string content;
  while (content.size() < 3'000'000) {
    const std::size_t length = random() % (random() % 50 == 0 ? 60'000 : 40);
    content.append(length, static_cast<char>('a' + random() % 26));
    content += std::array{"\n", "\r\n", "\r", "\r\r\n"}[random() % 4];
  }
  EXPECT_TRUE(LinesOf(content) == ExpectedLines(content, false));
  EXPECT_TRUE(LinesOf(content, 1) == ExpectedLines(content, true));
  EXPECT_TRUE(LinesOf(content, 1, mode::kUnicode) == ExpectedLines(content, true));
}

TEST_F(StdioFile, LongLinesComeInPieces) {
  const auto run = [](char ch, std::size_t bytes) { return std::string(bytes, ch); };
  for (const std::string end : {"\n", "\r\n", "\r"}) {
    const std::string content =
        run('w', kMost - 1) + end + run('x', kMost) + end + run('y', kMost + 1) + end + "z";
    EXPECT_TRUE(LinesOf(content) ==
                (Texts{run('w', kMost - 1), run('x', kMost), run('y', kMost), "y", "z"}));
    const Texts kept = LinesOf(content, 1);
    std::string joined;
    for (const std::string& piece : kept) {
      EXPECT_LE(piece.size(), kMost);
      EXPECT_FALSE(piece == "\n" && joined.ends_with("\r")) << "CR LF divided";
      joined += piece;
    }
    EXPECT_TRUE(joined == content);
  }
  const std::string wide =
      Utf16(std::u16string(kMost / 2, u'é') + u"\r\n" + std::u16string(kMost / 2, u'é') + u"é\n");
  const Texts pieces = LinesOf("\xFF\xFE" + wide, 0, mode::kUnicode);
  ASSERT_EQ(pieces.size(), 3u);
  EXPECT_EQ(pieces[0].size(), kMost);
  EXPECT_EQ(pieces[2], "é");
  // An end that just fits is kept with its line, and one that does not comes next.
  for (const std::u16string end : {u"\n", u"\r\n"}) {
    for (const std::size_t room : {end.size() - 1, end.size()}) {
      const std::u16string line(kMost - room, u'x');
      const Texts kept = LinesOf("\xFF\xFE" + Utf16(line + end + u"z"), 1, mode::kUnicode);
      EXPECT_EQ(kept.size(), room == end.size() ? 2u : 3u);
      EXPECT_EQ(kept[0].size(), room == end.size() ? kMost : kMost - room);
    }
  }
  // A piece of UTF-8 ends with a whole character.
  const Texts whole = LinesOf(
      "a" +
          [] {
            std::string text;
            while (text.size() < kMost) text += "漢";
            return text;
          }(),
      0, mode::kUnicode);
  ASSERT_EQ(whole.size(), 2u);
  EXPECT_EQ((whole[0].size() - 1) % 3, 0u);
}

TEST_F(StdioFile, EncodedLinesBecomeUtf8) {
  const std::u16string_view text = u"é\r\n😀\r漢\n\nend";
  const Texts lines = {"é", "😀", "漢", "", "end"};
  EXPECT_EQ(LinesOf("\xFF\xFE" + Utf16(text), 0, mode::kUnicode), lines);
  EXPECT_EQ(LinesOf("\xFE\xFF" + Utf16(text, true), 0, mode::kUnicode), lines);
  EXPECT_EQ(LinesOf("\xEF\xBB\xBFé\r\n😀\r漢\n\nend", 0, mode::kUnicode), lines);
  EXPECT_EQ(LinesOf("\xEF\xBB\xBFx"), Texts{"\xEF\xBB\xBFx"}) << "bytes as they are";

  const std::string bad = "\uFFFD";
  EXPECT_EQ(LinesOf("a\xFFz\n\xE6\xBC\n\xC0\x80", 0, mode::kUnicode),
            (Texts{"a" + bad + "z", bad + bad, bad + bad}));
  // Unpaired surrogates, and half a unit at the end.
  const std::u16string halves = {u'a', 0xD800, u'\n', 0xDC00, u'\n', 0xD83D};
  EXPECT_EQ(LinesOf("\xFF\xFE" + Utf16(halves) + "x", 0, mode::kUnicode),
            (Texts{"a" + bad, bad, bad + bad}));
  EXPECT_TRUE(LinesOf(std::string(kMost, '\xFF'), 0, mode::kUnicode).size() == 4u)
      << "no piece is longer for what it became";
}

TEST_F(StdioFile, EncodingsAreChosenAndRecognised) {
  OpenOn(Utf16(u"one\ntwo\n"));
  EXPECT_EQ(Call(file_, "SetUniCodeType", 9).Int(), 0);
  EXPECT_EQ(Call(file_, "SetUniCodeType", 2).Int(), 1);
  EXPECT_EQ(ReadLines(), (Texts{"one", "two"}));
  const struct {
    std::string content;
    int type;
    Texts lines;
  } cases[] = {
      {"plain\n", 0, {"plain"}},
      {"\xEF\xBB\xBFtext\n", 1, {"text"}},
      {"\xFF\xFE" + Utf16(u"text\n"), 2, {"text"}},
      {"\xFE\xFF" + Utf16(u"text\n", true), 3, {"text"}},
      {"\xEF\xBB", 0, {"\xEF\xBB"}},
  };
  for (const auto& c : cases) {
    OpenOn(c.content);
    EXPECT_EQ(Call(file_, "CheckUniCodeBOM").Int(), c.type);
    EXPECT_EQ(ReadLines(), c.lines);
  }
}

TEST_F(StdioFile, LinesMixWithEverythingElse) {
  OpenOn("one\r\ntwo 2.5e1x\nthree\rfour", mode::kReadWrite | mode::kBinary);
  const auto next = [&] {
    return Call(file_, "ReadString", line_, 0).Int() == 1 ? TextOf(line_) : "(end)";
  };
  EXPECT_EQ(next(), "one");
  EXPECT_EQ(Call(file_, "GetPosition").Int(), 5);
  EXPECT_EQ(Call(file_, "Scan", 0, line_, 100).Int(), 3);
  EXPECT_EQ(TextOf(line_), "two");
  EXPECT_EQ(Call(file_, "Scan", 2, line_, 100).Int(), 5);
  EXPECT_EQ(TextOf(line_), "2.5e1");
  EXPECT_EQ(next(), "x");
  EXPECT_EQ(Call(file_, "Write", "THR", 3).Int(), 3);
  EXPECT_EQ(next(), "ee");
  EXPECT_EQ(Call(file_, "Seek", -2, 2).Int(), 24);
  EXPECT_EQ(next(), "ur");
  EXPECT_EQ(next(), "(end)");
  EXPECT_EQ(Call(file_, "WriteString", "five").Int(), 5);
  EXPECT_EQ(next(), "(end)");
  EXPECT_EQ(Call(file_, "GetLength").Int(), 31);
  EXPECT_EQ(Call(file_, "DetectEncode").Int(), 1);
  EXPECT_EQ(Call(file_, "Seek", 16, 0).Int(), 16);
  EXPECT_EQ(next(), "THRee");
  const ObjectRef bytes = VectorOf<unsigned char>({0, 0});
  EXPECT_EQ(Call(file_, "ReadInt", bytes, 1, 2, 1).Int(), 2);
  EXPECT_EQ(ValuesOf<unsigned char>(bytes), (std::vector<unsigned char>{'f', 'o'}));
  EXPECT_EQ(next(), "urfive");
}

TEST_F(StdioFile, ScanStaysInsideItsBuffer) {
  OpenOn("  word +1.5e+x -.5 . line end\r\nlonger", mode::kRead | mode::kBinary);
  const ObjectRef bytes = VectorOf<char>({'x', 'x', 'x', 'x'});
  EXPECT_EQ(Call(file_, "Scan", 0, bytes, 5).status, status::kBadArguments);
  EXPECT_EQ(Call(file_, "Scan", 0, bytes, 0).Int(), 0);
  EXPECT_EQ(Call(file_, "Scan", 0, bytes, -5).Int(), 0);
  EXPECT_EQ(Call(file_, "Scan", 7, bytes, 4).Int(), 0);
  EXPECT_EQ(Call(file_, "Scan", 0, bytes).status, status::kBadArguments);
  EXPECT_EQ(Call(file_, "Scan", 0, bytes, 3).Int(), 2);
  EXPECT_EQ(ValuesOf<char>(bytes), (std::vector<char>{'w', 'o', '\0', 'x'}));
  const auto scan = [&](int scan_mode) {
    const int stored = Call(file_, "Scan", scan_mode, line_, 20).Int();
    EXPECT_EQ(stored, static_cast<int>(TextOf(line_).size()));
    return TextOf(line_);
  };
  EXPECT_EQ(scan(2), "") << "no number here";
  EXPECT_EQ(scan(0), "rd");
  EXPECT_EQ(scan(2), "+1.5") << "an exponent without digits is none";
  EXPECT_EQ(scan(0), "e+x");
  EXPECT_EQ(scan(2), "-.5");
  EXPECT_EQ(scan(2), "") << "a point alone is none";
  EXPECT_EQ(scan(0), ".");
  EXPECT_EQ(scan(1), " line end");
  EXPECT_EQ(scan(1), "longer");
  EXPECT_EQ(scan(1), "");
}

TEST_F(StdioFile, ModesOfWriting) {
  const std::string path = PathOf("modes");
  const auto write = [&](int flags, const char* text) {
    EXPECT_EQ(Call(file_, "Open", path, flags | mode::kBinary).Int(), 1);
    Call(file_, "SeekToBegin");
    EXPECT_EQ(Call(file_, "WriteString", text).Int(), static_cast<int>(std::strlen(text)) + 1);
    EXPECT_EQ(Call(file_, "Close").Int(), 1);
    return ContentOf(path);
  };
  EXPECT_EQ(write(mode::kCreate | mode::kWrite, "1"), "1\n");
  EXPECT_EQ(write(mode::kCreate | mode::kReadWrite, "2"), "2\n") << "emptied";
  EXPECT_EQ(write(mode::kCreate | mode::kNoTruncate | mode::kWrite, "3"), "2\n3\n") << "appended";
  EXPECT_EQ(write(mode::kWrite, "4"), "2\n3\n4\n") << "appended";
  EXPECT_EQ(write(mode::kReadWrite, "5"), "5\n3\n4\n") << "over what is there";
  ASSERT_EQ(Call(file_, "Open", path, mode::kWrite | mode::kBinary).Int(), 1);
  EXPECT_EQ(Call(file_, "Write", "", 0).Int(), 0);
  EXPECT_EQ(Call(file_, "GetPosition").Int(), 0) << "to write nothing does not move";
  EXPECT_EQ(write(mode::kCreate | mode::kReadWrite | mode::kUnicode, "é").substr(0, 3), "é\n")
      << "the mark was there, and was written over";
  ASSERT_EQ(
      Call(file_, "Open", path, mode::kCreate | mode::kReadWrite | mode::kUnicode | mode::kBinary)
          .Int(),
      1);
  EXPECT_EQ(Call(file_, "WriteString", "é").Int(), 3);
  Call(file_, "Close");
  EXPECT_EQ(ContentOf(path), "\xEF\xBB\xBFé\n");
  ASSERT_EQ(Call(file_, "Open", path, mode::kRead).Int(), 1);
  EXPECT_EQ(Call(file_, "Write", "x", 1).Int(), 0);
  EXPECT_EQ(Call(file_, "GetLastError").Int(), 1);
  EXPECT_EQ(Call(file_, "WriteString", "x").Int(), 0);
  EXPECT_EQ(Call(file_, "GetLastError").Int(), 13);
  EXPECT_EQ(Call(file_, "Seek", -1, 0).Int(), 0);
  EXPECT_EQ(Call(file_, "GetLastError").Int(), 9);
}

TEST_F(StdioFile, TextIsWrittenInTheEncodingOfTheMark) {
#if defined(_WIN32)
  const std::u16string end = u"\r\n";
#else
  const std::u16string end = u"\n";
#endif
  const std::string little = "\xFF\xFE" + Utf16(u"1\n"), big = "\xFE\xFF" + Utf16(u"1\n", true);
  const struct {
    std::string before;
    int flags;
    std::string after;
    int bytes = 6;
  } cases[] = {
      {little, mode::kWrite, little + Utf16(u"a\u00E9" + end)},
      {little, mode::kCreate | mode::kNoTruncate | mode::kWrite, little + Utf16(u"a\u00E9" + end)},
      {big, mode::kCreate | mode::kNoTruncate | mode::kReadWrite,
       big + Utf16(u"a\u00E9" + end, true)},
      {big, mode::kReadWrite | mode::kBinary, "\xFE\xFF" + Utf16(u"a\u00E9\n", true)},
      {"1\n", mode::kWrite | mode::kBinary, "1\na\u00E9\n", 4},
      {little, mode::kCreate | mode::kReadWrite | mode::kBinary,
       "\xEF\xBB\xBF"
       "a\u00E9\n",
       4},
  };
  for (const auto& c : cases) {
    OpenOn(c.before, c.flags | mode::kUnicode);
    EXPECT_EQ(Call(file_, "WriteString", "a\u00E9").Int(), c.bytes);
    Call(file_, "Close");
    EXPECT_EQ(ContentOf(PathOf("content")), c.after) << c.flags;
    OpenOn("", mode::kWrite | mode::kBinary);
    Call(file_, "WriteString", "a");
    Call(file_, "Close");
    EXPECT_EQ(ContentOf(PathOf("content")), "a\n") << "the mark counts for its file only";
  }
  OpenOn("", mode::kWrite);
  Call(file_, "SetWriteEncoding", 2);
  EXPECT_EQ(Call(file_, "WriteString", "a\nb").Int(), 8);
  const std::string raw = Utf16(u"c\n");
  EXPECT_EQ(Call(file_, "Write", StringOf(raw), 4).Int(), 4);
  Call(file_, "Close");
  EXPECT_EQ(ContentOf(PathOf("content")), Utf16(u"a" + end + u"b" + end) + raw);
}

TEST_F(StdioFile, FilesThatChangeWhileTheyAreRead) {
  const std::string path = Write("changing", "one\ntwo\n");
  ASSERT_EQ(Call(file_, "Open", path, mode::kRead | mode::kDenyNone).Int(), 1);
  EXPECT_EQ(Call(file_, "ReadString", line_, 0).Int(), 1);
  const ObjectRef writer = Make(kTypeStdioFile);
  ASSERT_EQ(Call(writer, "Open", path, mode::kWrite | mode::kDenyNone | mode::kBinary).Int(), 1);
  Call(writer, "WriteString", "three");
  Call(writer, "Flush");
  EXPECT_EQ(ReadLines(), Texts{"two"}) << "up to the end that was seen";
  EXPECT_EQ(ReadLines(), Texts{"three"}) << "and on, when asked again";
  Call(writer, "Close");

  const std::string long_path = Write("cut", std::string(2'000'000, 'x') + "\nlast\n");
  ASSERT_EQ(Call(file_, "Open", long_path, mode::kRead).Int(), 1);
  EXPECT_EQ(Call(file_, "ReadString", line_, 0).Int(), 1);
#if !defined(_WIN32)
  std::filesystem::resize_file(NativePath(long_path), 300'000);
  std::size_t bytes = kMost;
  for (const std::string& piece : ReadLines()) bytes += piece.size();
  EXPECT_LT(bytes, 2'000'000u) << "what was cut off is not there";
#endif
}

TEST_F(StdioFile, FailuresLeaveACause) {
  const struct {
    std::string name;
    int cause;
  } cases[] = {{PathOf("no such file"), 2}, {PathOf("no folder/x"), 3}, {folder_, 5}, {"", 3}};
  for (const auto& c : cases) {
    EXPECT_EQ(Call(file_, "Open", c.name, 0).Int(), 0);
    EXPECT_EQ(Call(file_, "GetLastError").Int(), c.cause) << c.name;
    EXPECT_EQ(Call(file_, "IsOpen").Int(), 0);
  }
  EXPECT_EQ(Call(file_, "Open", "x").status, status::kBadArguments);
  EXPECT_EQ(Call(file_, "ReadString", line_).status, status::kBadArguments);
  OpenOn("x");
  EXPECT_EQ(Call(file_, "ReadString", Null{}, 0).status, status::kUnresolved);
  EXPECT_EQ(Call(file_, "ReadString", "literal", 0).status, status::kBadArguments);
  const ObjectRef texts = ArrayOf({"a", "b"});
  EXPECT_EQ(Call(file_, "ReadString", texts, 0).status, status::kBadArguments);
  EXPECT_EQ(Call(file_, "ReadString", VectorOf<double>({1}), 0).status, status::kBadArguments);
  EXPECT_EQ(Call(file_, "ReadString", Part{texts, MSOINDICES::Element(1)}, 0).Int(), 1);
  EXPECT_EQ(TextsOf(texts), (Texts{"a", "x"}));
}

#if !defined(_WIN32)
TEST_F(StdioFile, AFileThatCannotBeReadEndsWithACause) {
  // Reading this file fails where the process has no memory: at its beginning.
  ASSERT_EQ(Call(file_, "Open", "/proc/self/mem", mode::kRead | mode::kDenyNone).Int(), 1);
  EXPECT_EQ(Call(file_, "ReadString", line_, 0).Int(), 0);
  EXPECT_EQ(TextOf(line_), "");
  EXPECT_EQ(Call(file_, "GetLastError").Int(), 10);
  file_ = Make(kTypeStdioFile);
  OpenOn("not for reading", mode::kWrite);
  EXPECT_EQ(Call(file_, "ReadString", line_, 0).Int(), 0);
  EXPECT_EQ(Call(file_, "GetLastError").Int(), 5);
}

TEST_F(StdioFile, AFullDeviceIsAFullDisk) {
  ASSERT_EQ(Call(file_, "Open", "/dev/full", mode::kWrite).Int(), 1);
  EXPECT_EQ(Call(file_, "WriteString", "x").Int(), 2) << "buffered";
  EXPECT_EQ(Call(file_, "Flush").Int(), 0);
  EXPECT_EQ(Call(file_, "GetLastError").Int(), 13);
  EXPECT_EQ(Call(file_, "Open", folder_, 0).Int(), 0);
  EXPECT_EQ(Call(file_, "GetLastError").Int(), 13) << "nothing is dropped without a word";
  EXPECT_EQ(TextOf(file_), "/dev/full (open)");
  EXPECT_EQ(Call(file_, "Close").Int(), 0);
  EXPECT_EQ(Call(file_, "IsOpen").Int(), 0);
}
#endif

}  // namespace
}  // namespace vela::testing
