#include "frame/interface/string_utf8.h"

#include <algorithm>
#include <chrono>
#include <clocale>
#include <cstdint>
#include <cstring>
#include <functional>
#include <iterator>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include "frame/interface/host_services.h"
#include "gmock/gmock.h"
#include "gtest/gtest.h"

namespace {

using namespace std::string_literals;
using ::testing::ElementsAre;

std::string Str(const CStringUTF8& text) { return std::string(text.View()); }

bool Shares(const CStringUTF8& a, const CStringUTF8& b) { return a.c_str() == b.c_str(); }

std::size_t RoomOf(const CStringUTF8& text) {
  const auto* const header = reinterpret_cast<const vela::host::TextHeader*>(text.c_str()) - 1;
  return static_cast<std::size_t>(header->capacity);
}

// Applies a change to a text, to a copy that shares its buffer and to one with spare room, which
// must all end alike, terminated, and leave the shared original as it was.
std::string After(const std::string& text, const std::function<void(CStringUTF8&)>& change) {
  const CStringUTF8 original{std::string_view(text)};
  CStringUTF8 shared = original;
  CStringUTF8 roomy{std::string_view(text)};
  roomy += std::string(100, 'x');
  roomy.Delete(static_cast<int>(text.size()), 100);
  for (CStringUTF8* each : {&shared, &roomy}) {
    change(*each);
    EXPECT_EQ(each->c_str()[each->GetLength()], '\0');
  }
  EXPECT_EQ(Str(original), text);
  EXPECT_EQ(Str(shared), Str(roomy));
  return Str(shared);
}

TEST(StringUtf8, NullNegativeAndEmptyArgumentsAreTheEmptyText) {
  const CStringUTF8 empty;
  for (const auto& text :
       {CStringUTF8(nullptr), CStringUTF8(""), CStringUTF8("abc", -1), CStringUTF8(nullptr, 5),
        CStringUTF8(std::string_view()), make_str_from_char_array(nullptr, 3)}) {
    EXPECT_TRUE(text.IsEmpty());
    EXPECT_STREQ(text, "");
    EXPECT_TRUE(Shares(text, empty)) << "an empty text needs no memory";
  }
  CStringUTF8 text("abc");
  text = static_cast<const char*>(nullptr);
  EXPECT_TRUE(text.IsEmpty());
  EXPECT_EQ(text.Compare(nullptr), 0);
  EXPECT_EQ(text.FindOneOf(nullptr), -1);
  EXPECT_EQ(Str(make_str_from_char('\0')), "\0"s);
  EXPECT_EQ(Str(make_str_from_char_array("a\0b", 3)), "a\0b"s);
}

TEST(StringUtf8, CopiesShareUntilOneChanges) {
  CStringUTF8 text("shared text");
  CStringUTF8 copy = text;
  EXPECT_TRUE(Shares(copy, text));
  EXPECT_TRUE(Shares(text.Mid(0), text));
  copy.SetAt(0, 'S');
  EXPECT_FALSE(Shares(copy, text));
  EXPECT_EQ(Str(text), "shared text");
  EXPECT_EQ(Str(copy), "Shared text");
  const char* const buffer = copy;
  CStringUTF8 moved = std::move(copy);
  EXPECT_EQ(moved.c_str(), buffer);
  EXPECT_TRUE(copy.IsEmpty());
  copy = moved;
  copy = std::move(moved);
  EXPECT_EQ(copy.c_str(), buffer);
  auto& self = copy;
  copy = self;
  EXPECT_EQ(copy.c_str(), buffer);
}

TEST(StringUtf8, PaddedTextsAreTakenWhole) {
  std::string lines;
  for (int i = 0; i < 600; ++i) lines += static_cast<char>('a' + i % 26);
  lines.resize(lines.size() + CStringUTF8::kPadding);
  const auto line = [&](std::size_t from, std::size_t size) {
    return std::string_view(lines).substr(from, size);
  };
  CStringUTF8 text;
  for (const std::size_t size : {3, 0, 1, 127, 128, 129, 2, 255, 256, 257, 600, 5, 0}) {
    text.AssignPadded(line(600 - size, size));
    EXPECT_EQ(Str(text), line(600 - size, size)) << size;
    EXPECT_EQ(text.c_str()[text.GetLength()], '\0');
  }
  // What others hold stays theirs, and takes no more memory than it needs.
  CStringUTF8 reader;
  std::vector<CStringUTF8> kept;
  for (std::size_t size = 1; size < 40; ++size) {
    reader.AssignPadded(line(size, size));
    kept.push_back(reader);
  }
  for (std::size_t size = 1; size < 40; ++size) {
    EXPECT_EQ(Str(kept[size - 1]), line(size, size));
    EXPECT_LT(RoomOf(kept[size - 1]), size + CStringUTF8::kPadding);
  }
  CStringUTF8 locked("locked");
  locked.LockBuffer();
  locked.AssignPadded(line(0, 300));
  EXPECT_EQ(Str(locked), line(0, 300));
  const CStringUTF8 copy = locked;
  EXPECT_FALSE(Shares(locked, copy));
  locked.UnlockBuffer();
}

TEST(StringUtf8, LockedBuffersAreNotShared) {
  CStringUTF8 text("locked");
  CStringUTF8 before = text;
  char* const buffer = text.LockBuffer();
  EXPECT_FALSE(Shares(text, before));
  CStringUTF8 copy = text;
  EXPECT_FALSE(Shares(text, copy));
  buffer[0] = 'L';
  EXPECT_EQ(Str(text), "Locked");
  EXPECT_EQ(Str(copy), "locked");
  text = before;  // into the locked buffer, or another locked one
  EXPECT_FALSE(Shares(text, before));
  text += " and grown far beyond the buffer that it had";
  text.FreeExtra();
  CStringUTF8 second = text;
  EXPECT_FALSE(Shares(text, second));
  text.Empty();
  text = "again";
  CStringUTF8 third = text;
  EXPECT_FALSE(Shares(text, third));
  text.UnlockBuffer();
  CStringUTF8 fourth = text;
  EXPECT_TRUE(Shares(text, fourth));
}

TEST(StringUtf8, LentBuffersBelongToOneText) {
  CStringUTF8 text;
  char* buffer = text.GetBuffer(20);
  const CStringUTF8 copy = text;
  std::strcpy(buffer, "written");
  text.ReleaseBuffer();
  EXPECT_EQ(Str(text), "written");
  EXPECT_EQ(Str(copy), "");
  EXPECT_TRUE(Shares(CStringUTF8(text), text));

  buffer = text.GetBufferSetLength(9);
  EXPECT_EQ(Str(text), "written\0\0"s);
  buffer[8] = '!';
  text.ReleaseBuffer(100000);
  EXPECT_LT(text.GetLength(), 100000);
  EXPECT_EQ(Str(text.Left(9)), "written\0!"s);
  text.ReleaseBuffer(2);
  EXPECT_EQ(Str(text), "wr");
  text.GetBufferSetLength(-5);
  EXPECT_EQ(Str(text), "");
  EXPECT_NE(text.GetBuffer(-5), nullptr);
  EXPECT_THROW(text.GetBuffer(0x7FFFFFFF), std::length_error);

  CStringUTF8 shared("abcdef");
  const CStringUTF8 other = shared;
  shared.ReleaseBuffer(3);
  EXPECT_EQ(Str(shared) + Str(other), "abcabcdef");
  shared.ReleaseBuffer();
  EXPECT_EQ(Str(shared), "abc");
}

TEST(StringUtf8, Indices) {
  CStringUTF8 text("abc");
  for (const int index : {-1, 3, 2147483647, -2147483647 - 1}) {
    EXPECT_THROW(text.GetAt(index), std::out_of_range) << index;
    EXPECT_THROW(text.SetAt(index, 'x'), std::out_of_range) << index;
    EXPECT_THROW(text.CharGetAt(index), std::out_of_range) << index;
    EXPECT_THROW(text.CharTextAt(index), std::out_of_range) << index;
    EXPECT_THROW(text.CharSetAt(index, 'x'), std::out_of_range) << index;
  }
  EXPECT_EQ(Str(text.Mid(-5, 2)) + Str(text.CharMid(-5, 2)), "abab");
  EXPECT_EQ(Str(text.Right(-1)) + Str(text.CharRight(9)), "abc");
}

TEST(StringUtf8, Edits) {
  constexpr int kMax = 2147483647;
  const struct {
    const char* what;
    std::string text;
    std::function<void(CStringUTF8&)> change;
    std::string expected;
  } cases[] = {
      {"insert", "abc", [](auto& s) { EXPECT_EQ(s.Insert(1, "XY"), 5); }, "aXYbc"},
      {"insert before", "abc", [](auto& s) { s.Insert(-9, 'X'); }, "Xabc"},
      {"insert behind", "abc", [](auto& s) { s.Insert(kMax, 'X'); }, "abcX"},
      {"insert NUL", "ab", [](auto& s) { s.Insert(1, '\0'); }, "a\0b"s},
      {"delete", "abcde", [](auto& s) { EXPECT_EQ(s.Delete(3, 100), 3); }, "abc"},
      {"delete none", "abc", [](auto& s) { EXPECT_EQ(s.Delete(1, -kMax), 3); }, "abc"},
      {"delete before", "abc", [](auto& s) { s.Delete(-2, 2); }, "c"},
      {"delete all", "abc", [](auto& s) { s.Delete(0, kMax); }, ""},
      {"replace byte", "aXbX", [](auto& s) { EXPECT_EQ(s.Replace('X', '-'), 2); }, "a-b-"},
      {"replace growing", "aXbX", [](auto& s) { EXPECT_EQ(s.Replace("X", "--"), 2); }, "a--b--"},
      {"replace shrinking", "aXXbXX", [](auto& s) { s.Replace("XX", ""); }, "ab"},
      {"replace once each", "aaaaa", [](auto& s) { EXPECT_EQ(s.Replace("aa", "ab"), 2); }, "ababa"},
      {"replace by longer", "aa", [](auto& s) { s.Replace("a", "aa"); }, "aaaa"},
      {"replace empty", "abc", [](auto& s) { EXPECT_EQ(s.Replace("", "x"), 0); }, "abc"},
      {"replace with NUL", "a\0b"s, [](auto& s) { s.Replace("\0"s, "--"); }, "a--b"},
      {"remove", "banana", [](auto& s) { EXPECT_EQ(s.Remove('a'), 3); }, "bnn"},
      {"append", "abc", [](auto& s) { (s += "de") += 'f'; }, "abcdef"},
      // Arguments that are part of the text itself.
      {"insert itself", "abc", [](auto& s) { s.Insert(1, s.View()); }, "aabcbc"},
      {"insert part", "abcd", [](auto& s) { s.Insert(0, s.View().substr(2)); }, "cdabcd"},
      {"append itself", "abc", [](auto& s) { s += s.View(); }, "abcabc"},
      {"append part", "abc", [](auto& s) { s += s.View().substr(1, 1); }, "abcb"},
      {"assign part", "abcdef", [](auto& s) { s = s.c_str() + 3; }, "def"},
      {"assign middle", "abcdef", [](auto& s) { s = s.View().substr(1, 3); }, "bcd"},
      {"replace itself", "abc", [](auto& s) { s.Replace(s.View(), "x"); }, "x"},
      {"replace by itself", "aba", [](auto& s) { s.Replace("a", s.View()); }, "abababa"},
      {"trim by itself", " ab", [](auto& s) { s.TrimLeft(s.c_str()); }, ""},
      {"format itself", "50", [](auto& s) { s.Format("%s%%%s", s.c_str(), s.c_str()); }, "50%50"},
  };
  for (const auto& c : cases) EXPECT_EQ(After(c.text, c.change), c.expected) << c.what;
}

TEST(StringUtf8, Searches) {
  const CStringUTF8 text("abcabc\0d"s);
  EXPECT_EQ(text.GetLength(), 8);
  EXPECT_EQ(text.Find('c'), 2);
  EXPECT_EQ(text.Find('c', 3), 5);
  EXPECT_EQ(text.Find('\0'), 6);
  EXPECT_EQ(text.Find('a', 8), -1);
  EXPECT_EQ(text.Find("bc", 2), 4);
  EXPECT_EQ(text.Find("\0d"s), 6);
  EXPECT_EQ(text.Find("abd"), -1);
  EXPECT_EQ(text.Find("", 8), 8);
  for (const int start : {-1, 9}) {
    EXPECT_EQ(text.Find("", start), -1);
    EXPECT_EQ(text.Find('a', start), -1);
    EXPECT_EQ(text.FindNoCase("a", start), -1);
    EXPECT_EQ(text.CharFind("", start), -1);
    EXPECT_EQ(text.CharFind('a', start), -1);
  }
  EXPECT_EQ(text.ReverseFind('a'), 3);
  EXPECT_EQ(text.ReverseFind('x'), -1);
  EXPECT_EQ(text.FindOneOf("xcb"), 1);
  EXPECT_EQ(text.Count('a'), 2);
  EXPECT_LT(text.Compare("abd"), 0);
  EXPECT_GT(CStringUTF8("é").Compare("z"), 0) << "bytes are unsigned";
  EXPECT_LT(CStringUTF8("a"), CStringUTF8("b"));

  // Sets are of characters: é (C3 A9) and è (C3 A8) share a byte.
  const CStringUTF8 accents("ééè!");
  EXPECT_EQ(Str(accents.SpanIncluding("!é")), "éé");
  EXPECT_EQ(Str(accents.SpanExcluding("è")), "éé");
  EXPECT_EQ(Str(accents.SpanExcluding("")), Str(accents));
  EXPECT_EQ(accents.FindOneOf("è"), 4);
  EXPECT_EQ(accents.FindOneOf("\xC3"), -1);
}

// Characters of every length, and bytes that are none.
std::string RandomText(std::mt19937& random, std::size_t count) {
  const char* const characters[] = {"a",      "A", "k",    "z",    "Z",    "[",
                                    "ß",      "é", "É",    "α",    "Α",    "ſ",
                                    "\u212A", "𐐀", "\xFF", "\xC3", "\xA9", "\xCE\x90"};
  // Mostly ASCII, so that whole vectors of it occur.
  const unsigned kinds = random() % 2 == 0 ? 6 : std::size(characters);
  std::string text;
  for (std::size_t i = 0; i < count; ++i) text += characters[random() % kinds];
  return text;
}

TEST(StringUtf8, CaseOfATextIsThatOfItsCharacters) {
  std::mt19937 random(21);
  for (int round = 0; round < 3000; ++round) {
    const std::string front = RandomText(random, random() % 40) + ' ';
    const std::string back = RandomText(random, random() % 40);
    for (const auto change : {&CStringUTF8::MakeUpper, &CStringUTF8::MakeLower}) {
      const auto changed = [&](const std::string& text) {
        CStringUTF8 string{std::string_view(text)};
        (string.*change)();
        return Str(string);
      };
      ASSERT_EQ(changed(front + back), changed(front) + changed(back)) << front << back;
    }
  }
}

TEST(StringUtf8, FindNoCaseIsTheFirstPlaceThatComparesEqual) {
  std::mt19937 random(22);
  for (int round = 0; round < 3000; ++round) {
    const std::string text = RandomText(random, random() % 60);
    const CStringUTF8 string{std::string_view(text)};
    const std::string sub = RandomText(random, 1 + random() % 3);
    const CStringUTF8 wanted{std::string_view(sub)};
    int size = 0;
    const int found = string.FindNoCase(sub, 0, &size);
    for (int at = 0; at < string.CharGetLength(); ++at) {
      const int begin = string.CharLeft(at).GetLength();
      bool is_match = false;
      for (int count = 1; count <= 9 && !is_match; ++count) {
        is_match = string.CharMid(at, count).CompareNoCase(wanted) == 0;
      }
      if (!is_match) continue;
      ASSERT_EQ(found, begin) << text << " / " << sub;
      ASSERT_EQ(string.Mid(found, size).CompareNoCase(wanted), 0) << text << " / " << sub;
      break;
    }
    ASSERT_TRUE(found < 0 || string.Mid(found, size).CompareNoCase(wanted) == 0) << text;
  }
}

TEST(StringUtf8, CountsBytesOfAnyLength) {
  for (const int size : {0, 1, 15, 31, 32, 33, 1000, 8159, 8160, 8161, 20000}) {
    std::string text(static_cast<std::size_t>(size), 'x');
    for (int i = 0; i < size; i += 7) text[static_cast<std::size_t>(i)] = '\xFF';
    EXPECT_EQ(CStringUTF8(text).Count('\xFF'), (size + 6) / 7) << size;
    EXPECT_EQ(CStringUTF8(text).Count('x'), size - (size + 6) / 7) << size;
  }
}

TEST(StringUtf8, TextsMadeTogetherLiveOnTheirOwn) {
  std::mt19937 random(23);
  std::vector<std::pair<CStringUTF8, std::string>> texts;
  for (int round = 0; round < 20; ++round) {
    // Told of few, of as many as come, and of more.
    CStringUTF8Maker maker(static_cast<std::size_t>(round) * 100,
                           static_cast<std::size_t>(round) * 2000);
    for (int i = 0; i < 1000; ++i) {
      const std::string content(random() % 40 * (random() % 100 == 0 ? 100 : 1), 'a');
      texts.emplace_back(maker.Make(content), content);
    }
    // Some go, some change, some are shared, while the maker is at work and after it.
    std::shuffle(texts.begin(), texts.end(), random);
    texts.resize(texts.size() / 2);
    for (std::size_t i = 0; i < 100; ++i) {
      auto& [text, content] = texts[i];
      texts.emplace_back(text, content);
      auto& [changed, expected] = texts[i + 100];
      if (i % 2 == 0) changed += "more", expected += "more";
      if (i % 3 == 0) changed = std::string_view("less"), expected = "less";
    }
  }
  for (const auto& [text, content] : texts) {
    ASSERT_EQ(Str(text), content);
    ASSERT_EQ(text.c_str()[text.GetLength()], '\0');
  }
}

TEST(StringUtf8, ThreadsReleaseTextsOfOneBlock) {
  std::vector<std::vector<CStringUTF8>> parts(4);
  CStringUTF8Maker maker(40000, 200000);
  for (int i = 0; i < 40000; ++i) {
    parts[static_cast<std::size_t>(i) % 4].push_back(maker.Make(std::to_string(i)));
  }
  std::vector<std::thread> threads;
  for (auto& part : parts) threads.emplace_back([&part] { part.clear(); });
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(Str(maker.Make("after")), "after");
}

TEST(StringUtf8, TrimsUnicodeWhiteSpaceAndSets) {
  // No-break, ideographic, em and line-separator spaces; a zero-width space is none.
  const std::string space = " \t\r\n\v\f\xC2\xA0\xE3\x80\x80\xE2\x80\x83\xE2\x80\xA8\xC2\x85";
  const std::string zero_width = "\xE2\x80\x8B";
  const std::string text = space + "a" + space + "b" + zero_width + space;
  EXPECT_EQ(After(text, [](auto& s) { s.TrimLeft(); }), text.substr(space.size()));
  EXPECT_EQ(After(text, [](auto& s) { s.TrimRight(); }),
            text.substr(0, text.size() - space.size()));
  EXPECT_EQ(After(space, [](auto& s) { s.TrimLeft(); }), "");
  EXPECT_EQ(After(space, [](auto& s) { s.TrimRight(); }), "");
  EXPECT_EQ(After("xxaxx", [](auto& s) { s.TrimLeft('x'), s.TrimRight('x'); }), "a");
  const char* const accents = "éè";
  EXPECT_EQ(After("éêè", [&](auto& s) { s.TrimLeft(accents); }), "êè");
  EXPECT_EQ(After("éêè", [&](auto& s) { s.TrimRight(accents); }), "éê");
  EXPECT_EQ(After("é", [](auto& s) { s.TrimRight('\xA9'); }), "é")
      << "a lone byte is no part of a character";
  EXPECT_EQ(After("a\xA9\xA9", [](auto& s) { s.TrimRight('\xA9'); }), "a");
}

// "é" 2 bytes, "€" 3, "😀" 4; then bytes that belong to no sequence: a lone continuation, a cut
// sequence, an overlong form, a surrogate, too large a code point.
const std::string kValid = "aé€😀z";
const std::string kInvalid =
    "\x80\xE2\x82"
    "b\xC0\xAF\xED\xA0\x80\xF4\x90\x80\x80\xFF";

TEST(StringUtf8, CountsCharacters) {
  EXPECT_EQ(CStringUTF8(kValid).CharGetLength(), 5);
  EXPECT_EQ(CStringUTF8(kInvalid).CharGetLength(), static_cast<int>(kInvalid.size()));
  EXPECT_EQ(CStringUTF8(kInvalid + kValid + kInvalid).CharGetLength(),
            5 + 2 * static_cast<int>(kInvalid.size()));
  // The same however the text lies across the blocks and windows of the walk.
  for (int lead = 0; lead < 70; ++lead) {
    std::string text(static_cast<std::size_t>(lead), 'x');
    for (int i = 0; i < 2000; ++i) text += "€";
    const CStringUTF8 string{std::string_view(text)};
    ASSERT_EQ(string.CharGetLength(), lead + 2000);
    ASSERT_EQ(Str(string.CharMid(lead + 1999)), "€");
    ASSERT_EQ(Str(string.CharTextAt(lead + 1500)), "€");
  }
}

TEST(StringUtf8, CharacterOperations) {
  const CStringUTF8 text{std::string_view(kValid)};
  std::vector<std::string> characters;
  for (int i = 0; i < 5; ++i) characters.push_back(Str(text.CharTextAt(i)));
  EXPECT_THAT(characters, ElementsAre("a", "é", "€", "😀", "z"));
  EXPECT_EQ(text.CharGetAt(2), '\xE2');
  EXPECT_EQ(text.CharFind('\xF0'), 3);
  EXPECT_EQ(text.CharFind('\x9F'), -1) << "no character starts with that byte";
  EXPECT_EQ(text.CharReverseFind('z'), 4);
  EXPECT_EQ(text.CharReverseFind('\xC3'), 1);
  EXPECT_EQ(text.CharReverseFind('\xA9'), -1);
  EXPECT_EQ(text.CharFind("€", 3), -1);
  EXPECT_EQ(text.CharFind("\xA9"), -1) << "half a character";
  EXPECT_EQ(text.CharFind("", 5), 5);
  EXPECT_EQ(text.CharFind("É", 0, false), 1);
  EXPECT_EQ(CStringUTF8("\x80é\xA9").CharFind("\xA9"), 2);

  EXPECT_EQ(After(kValid, [](auto& s) { EXPECT_EQ(s.CharDelete(1, 3), 2); }), "az");
  EXPECT_EQ(After(kValid, [](auto& s) { s.CharSetAt(3, 'x'); }), "aé€xz");
  EXPECT_EQ(After(kValid, [](auto& s) { s.CharSetAt(0, s.View().substr(1, 5)); }), "é€é€😀z");
  EXPECT_EQ(After(kInvalid, [](auto& s) { s.CharDelete(1, 1); }), "\x80" + kInvalid.substr(2));
}

TEST(StringUtf8, CaseMapping) {
  const struct {
    std::string text, upper, lower;
  } cases[] = {
      {"abc XYZ 1\0z"s, "ABC XYZ 1\0Z"s, "abc xyz 1\0z"s},
      {"straße", "STRASSE", "straße"},
      {"ﬁn ﬃ", "FIN FFI", "ﬁn ﬃ"},
      // A sigma that ends a word differs in lower case.
      {"ΟΔΟΣ", "ΟΔΟΣ", "οδος"},
      {"ΣΑΣ' Σ", "ΣΑΣ' Σ", "σας' σ"},
      {"AΣ'B A\xCC\x81Σ\xCC\x81", "AΣ'B A\xCC\x81Σ\xCC\x81", "aσ'b a\xCC\x81ς\xCC\x81"},
      // Invalid bytes bound the context.
      {"A\xFFΣ", "A\xFFΣ", "a\xFFσ"},
      // Dotless and dotted i, without a language.
      {"ıiİI", "IIİI", "ıii\xCC\x87i"},
      // Deseret, four bytes each.
      {"𐐨𐐀", "𐐀𐐀", "𐐨𐐨"},
      // Longer and shorter: one becomes three; capital sharp s; a two-byte and a three-byte letter.
      {"ΐ", "Ι\xCC\x88\xCC\x81", "ΐ"},
      {"ẞȺ", "ẞȺ", "ßⱥ"},
      {"ǆ", "Ǆ", "ǆ"},
      {"\xE9 é \xC3 \xE2\x82x", "\xE9 É \xC3 \xE2\x82X", "\xE9 é \xC3 \xE2\x82x"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(After(c.text, [](auto& s) { s.MakeUpper(); }), c.upper) << c.text;
    EXPECT_EQ(After(c.text, [](auto& s) { s.MakeLower(); }), c.lower) << c.text;
  }
  std::string grows;
  std::string grown;
  for (int i = 0; i < 5000; ++i) grows += "ΐ", grown += "Ι\xCC\x88\xCC\x81";
  EXPECT_EQ(After(grows, [](auto& s) { s.MakeUpper(); }), grown);
}

std::string Encoded(char32_t c) {
  const auto byte = [&](unsigned shift) { return static_cast<char>(0x80 | ((c >> shift) & 0x3F)); };
  if (c < 0x80) return {static_cast<char>(c)};
  if (c < 0x800) return {static_cast<char>(0xC0 | (c >> 6)), byte(0)};
  if (c < 0x10000) return {static_cast<char>(0xE0 | (c >> 12)), byte(6), byte(0)};
  return {static_cast<char>(0xF0 | (c >> 18)), byte(12), byte(6), byte(0)};
}

std::uint64_t Hash(std::string_view text) {
  std::uint64_t hash = 0xCBF29CE484222325;
  for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3;
  return hash;
}

// The platforms map case in different ways, and must agree on every code point (Unicode 15) and on
// where each counts as part of a word.
TEST(StringUtf8, PlatformsAgreeOnCase) {
  std::string letters;
  std::string words;
  std::string order;
  for (char32_t c = 1; c < 0x110000; ++c) {
    if (c >= 0xD800 && c < 0xE000) continue;
    const std::string letter = Encoded(c);
    letters += letter + '\n';
    words += letter + "Σ a" + letter + "Σ" + letter + ' ';
    const CStringUTF8 text{std::string_view(letter)};
    CStringUTF8 upper = text;
    upper.MakeUpper();
    // What folding, as seen through a comparison, makes of the letter against its own capital.
    order += static_cast<char>('1' + text.CompareNoCase(upper));
    order += static_cast<char>('1' + text.CompareNoCase("k"));
  }
  CStringUTF8 upper{std::string_view(letters)};
  upper.MakeUpper();
  CStringUTF8 lower{std::string_view(letters)};
  lower.MakeLower();
  CStringUTF8 lower_words{std::string_view(words)};
  lower_words.MakeLower();
  EXPECT_EQ(Hash(upper.View()), 0xBDAE34A984EF3CEu);
  EXPECT_EQ(Hash(lower.View()), 0x7FC0F0D51BFA45E6u);
  EXPECT_EQ(Hash(lower_words.View()), 0x29BF2CA52867C530u);
  EXPECT_EQ(Hash(order), 0x28AC57A45264A95Au);
  EXPECT_EQ(CStringUTF8(letters).CompareNoCase(lower), 0u);
}

// Found as the first character of what is looked for and as the second.
TEST(StringUtf8, FindNoCaseFindsEveryLetterByItsOtherCase) {
  int found = 0;
  for (char32_t c = 1; c < 0x110000; ++c) {
    if (c >= 0xD800 && c < 0xE000) continue;
    const std::string letter = Encoded(c);
    const CStringUTF8 text(std::string(20, '.') + letter + std::string(40, '.'));
    for (const auto change : {&CStringUTF8::MakeUpper, &CStringUTF8::MakeLower}) {
      CStringUTF8 other{std::string_view(letter)};
      (other.*change)();
      if (other.View() == letter || other.CompareNoCase(letter.c_str()) != 0) continue;
      EXPECT_EQ(text.FindNoCase(other.View()), 20) << letter;
      EXPECT_EQ(text.FindNoCase("." + Str(other)), 19) << letter;
      ++found;
    }
  }
  EXPECT_GT(found, 2700);
}

TEST(StringUtf8, IgnoringCase) {
  const struct {
    std::string text, sub;
    int position, size;
  } finds[] = {{"xABx", "ab", 1, 2},
               {"the STRASSE", "straße", 4, 7},
               {"die Straße", "STRASSE", 4, 7},
               {"aß", "s", -1, 0},  // half of what it folds to
               {"asß", "sss", 1, 3},
               {"asß", "ss", 2, 2},  // not the first s with half of the second
               {"ẞ", "ss", 0, 3},
               {"oﬃce", "FFI", 1, 3},
               {"oﬃce", "fi", -1, 0},
               {"1 \u212A", "k", 2, 3},  // the Kelvin sign
               {"ΟΣ", "ος", 0, 4},
               {"𐐀", "𐐨", 0, 4},
               {"iıİ", "İ", 3, 2},
               {"a\xFF"
                "B",
                "A\xFF"
                "b",
                0, 3},
               {"é", "\xA9", -1, 0},
               {"ab\0C"s, "B\0c"s, 1, 3},
               {"abc", "", 0, 0}};
  for (const auto& c : finds) {
    int size = -1;
    EXPECT_EQ(CStringUTF8(c.text).FindNoCase(c.sub, 0, &size), c.position)
        << c.text << ' ' << c.sub;
    EXPECT_EQ(size, c.size) << c.text << ' ' << c.sub;
  }
  EXPECT_EQ(CStringUTF8("abAB").FindNoCase("AB", 1), 2);
  const struct {
    const char *a, *b;
    int order;
  } compares[] = {{"ABC", "abc", 0}, {"abc", "ABD", -1}, {"ab", "A", 1},      {"", "a", -1},
                  {"ß", "Ss", 0},    {"ς", "Σ", 0},      {"\xFF", "\xFF", 0}, {"\xFE", "\xFF", -1}};
  for (const auto& c : compares) {
    EXPECT_EQ(CStringUTF8(c.a).CompareNoCase(c.b), c.order) << c.a << ' ' << c.b;
  }
}

TEST(StringUtf8, Formats) {
  CStringUTF8 text;
  text.Format("%d %5.2f|%-4s|%04x|%c|%lld|%zu|%e|%g|%%", -1, 2.5, "ab", 255, 'z', 1LL << 40,
              std::size_t{7}, 12345.678, 1e100);
  EXPECT_EQ(Str(text), "-1  2.50|ab  |00ff|z|1099511627776|7|1.234568e+04|1e+100|%");
  text.Format("a%cb", 0);
  EXPECT_EQ(Str(text), "a\0b"s);
  for (const int length : {510, 511, 512, 513, 1000000}) {
    text.Format("%*d", length, 7);
    EXPECT_EQ(text.GetLength(), length);
    EXPECT_EQ(text.GetAt(length - 1), '7');
  }
  text = "keep";
  text.Format("%.700s%s", std::string(900, 'y').c_str(), text.c_str());
  EXPECT_EQ(Str(text), std::string(700, 'y') + "keep");

  // A locale with a decimal comma, where the system has one.
  for (const char* name : {"de_DE.UTF-8", "de_DE", "German", "fr_FR.UTF-8"}) {
    if (std::setlocale(LC_ALL, name) == nullptr) continue;
    text.Format("%.2f", 1.5);
    EXPECT_EQ(Str(text), "1.50") << name;
    EXPECT_STREQ(std::localeconv()->decimal_point, ",") << name;
    std::setlocale(LC_ALL, "C");
    break;
  }
}

TEST(StringUtf8, ThreadsCopyOneText) {
  const CStringUTF8 text("one text for every thread");
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&text] {
      for (int i = 0; i < 20000; ++i) {
        CStringUTF8 copy = text;
        CStringUTF8 other = copy;
        if (i % 16 == 0) copy += 'x';
        other = copy;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(Str(text), "one text for every thread");
  EXPECT_TRUE(Shares(CStringUTF8(text), text));
}

// The sanitizers check all the memory that a call may read, each time.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int kLong = 100'000;
#else
constexpr int kLong = 5'000'000;
#endif

// Each of these takes well under a second when it is linear, and minutes when it is quadratic.
TEST(StringUtf8, LongTexts) {
  using Clock = std::chrono::steady_clock;
  const auto timed = [](const char* what, const auto& work) {
    const auto start = Clock::now();
    work();
    const std::chrono::duration<double> seconds = Clock::now() - start;
    ::testing::Test::RecordProperty(what, std::to_string(seconds.count()));
    EXPECT_LT(seconds.count(), 5) << what;
  };
  CStringUTF8 text;
  timed("append", [&] {
    for (int i = 0; i < kLong; ++i) text += 'a';
  });
  timed("insert at the end", [&] {
    CStringUTF8 built;
    for (int i = 0; i < kLong / 10; ++i) built.Insert(built.GetLength(), "ab");
  });
  const std::string near_miss = std::string(kLong / 2, 'a') + 'b';
  timed("find", [&] { EXPECT_EQ(text.Find(near_miss), -1); });
  const std::string start_miss = "b" + std::string(kLong / 2, 'a');
  timed("find reversed", [&] { EXPECT_EQ(text.Find(start_miss), -1); });
  timed("find without case", [&] { EXPECT_EQ(text.FindNoCase(near_miss.substr(1)), -1); });
  timed("find rare", [&] { EXPECT_EQ(text.FindNoCase("zebra"), -1); });
  timed("compare without case", [&] { EXPECT_EQ(text.CompareNoCase(CStringUTF8(text)), 0); });
  timed("count", [&] { EXPECT_EQ(text.CharGetLength(), kLong); });
  timed("replace", [&] { EXPECT_EQ(text.Replace("aa", "é"), kLong / 2); });
  timed("count characters", [&] { EXPECT_EQ(text.CharGetLength(), kLong / 2); });
  timed("position", [&] { EXPECT_EQ(text.CharFind('x', kLong / 4), -1); });
  timed("upper", [&] { text.MakeUpper(); });
  EXPECT_EQ(text.Find("É"), 0);
  timed("find beyond ASCII", [&] { EXPECT_EQ(text.FindNoCase("éx"), -1); });
  timed("sigmas", [&] {
    text.Replace("É", "Σ");
    text.MakeLower();
  });
  EXPECT_EQ(Str(text.Right(4)), "σς");
  timed("invalid bytes", [&] {
    text.Replace('\xCF', '\xFF');
    text.MakeUpper();
    EXPECT_GT(text.CharGetLength(), kLong / 2);
  });
  timed("trim", [&] {
    text.TrimRight("\xFF\x83\x82\xCF");
    EXPECT_TRUE(text.IsEmpty());
  });
}

}  // namespace
