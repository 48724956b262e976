#include <algorithm>
#include <chrono>
#include <cstdio>
#include <limits>

#include "text_fixture.h"

namespace vela::testing {
namespace {

// Bytes: a 0, é 1-2, 漢 3-5, b 6. Characters: a 0, é 1, 漢 2, b 3.
const char* const kMixed = "aé漢b";
constexpr int kNoResult = -987654321;

// What the members do with positions, on a list of units: bytes, or characters.
class Units {
 public:
  Units(std::string_view text, bool by_characters) {
    for (std::size_t at = 0; at < text.size();) {
      std::size_t end = at + 1;
      while (by_characters && end < text.size() && (text[end] & 0xC0) == 0x80) ++end;
      units_.emplace_back(text.substr(at, end - at));
      at = end;
    }
  }
  int size() const { return static_cast<int>(units_.size()); }
  bool Has(int index) const { return index >= 0 && index < size(); }
  int Clip(int index) const { return std::clamp(index, 0, size()); }
  const std::string& operator[](int index) const { return units_[static_cast<std::size_t>(index)]; }
  // The units from first on up to end.
  std::string Part(int first, int end) const {
    std::string text;
    for (int i = first; i < end; ++i) text += (*this)[i];
    return text;
  }
  // The text with another one in place of those units.
  std::string With(int first, int end, const std::string& by) const {
    return Part(0, first) + by + Part(end, size());
  }
  // Where a unit is, at or after an index, or -1.
  int Find(const std::string& unit, int from) const {
    if (from < 0) return -1;
    const auto found = std::find(units_.begin() + Clip(from), units_.end(), unit);
    return found == units_.end() ? -1 : static_cast<int>(found - units_.begin());
  }

 private:
  std::vector<std::string> units_;
};

constexpr int kPositions[] = {std::numeric_limits<int>::min(), -1, 0, 1, 2, 3, 4, 5, 6, 7, 8,
                              std::numeric_limits<int>::max()};

TEST(String, EveryPositionInBothModes) {
  for (const bool by_characters : {false, true}) {
    VELAObj::SetCharIndexMode(by_characters);
    const Units units(kMixed, by_characters);
    const int size = units.size();
    EXPECT_EQ(Call(StringOf(kMixed), "GetLength", 1).Int(), size);
    EXPECT_EQ(Call(StringOf(kMixed), "GetLength", 0).Int(), 7);
    EXPECT_EQ(Call(StringOf(kMixed), "Find", "É漢", 0, 0).Int(), 1);
    EXPECT_EQ(Call(StringOf(kMixed), "Find", "É漢", 0, 1).Int(), -1);
    EXPECT_EQ(Call(StringOf(kMixed), "ReverseFind", 'b').Int(), size - 1);
    for (const int at : kPositions) {
      SCOPED_TRACE(std::to_string(at) + (by_characters ? " characters" : " bytes"));
      const auto changed = [&](const char* member, const auto& value) {
        const ObjectRef s = StringOf(kMixed);
        const Result result = Call(s, member, at, value);
        if (result.status != 0) return "status " + std::to_string(result.status);
        return TextOf(s);
      };
      const int clipped = units.Clip(at);
      EXPECT_EQ(Call(StringOf(kMixed), "Left", at).text, units.Part(0, clipped));
      EXPECT_EQ(Call(StringOf(kMixed), "Right", at).text, units.Part(size - clipped, size));
      EXPECT_EQ(Call(StringOf(kMixed), "Mid", at).text, units.Part(clipped, size));
      EXPECT_EQ(changed("Insert", "字"), units.With(clipped, clipped, "字"));
      EXPECT_EQ(changed("Insert", '-'), units.With(clipped, clipped, "-"));
      EXPECT_EQ(Call(StringOf(kMixed), "Insert", at, '-').Int(), size + 1);
      for (const int count : kPositions) {
        const int end = clipped + std::clamp(count, 0, size - clipped);
        EXPECT_EQ(Call(StringOf(kMixed), "Mid", at, count).text, units.Part(clipped, end));
        EXPECT_EQ(changed("Delete", count), units.With(clipped, end, ""));
        EXPECT_EQ(Call(StringOf(kMixed), "Delete", at, count).Int(), size - (end - clipped));
      }
      const std::string outside = "status " + std::to_string(status::kOutOfRange);
      const bool has = units.Has(at);
      EXPECT_EQ(changed("SetAt", "字x"), has ? units.With(at, at + 1, "字x") : outside);
      EXPECT_EQ(changed("SetAt", 'x'), has ? units.With(at, at + 1, "x") : outside);
      const ObjectRef unit = StringOf("kept");
      const Result got = Call(StringOf(kMixed), "GetAt", at, unit);
      EXPECT_EQ(got.status, has ? 0 : status::kOutOfRange);
      EXPECT_EQ(TextOf(unit), has ? units[at] : "kept");
      if (has) {
        EXPECT_EQ(got.Int(), static_cast<signed char>(units[at][0]));
      }
      for (const std::string part : {"a", "b", "漢"}) {
        const int found = by_characters || part.size() == 1 ? units.Find(part, at)
                                                            : (at >= 0 && at <= 3 ? 3 : -1);
        EXPECT_EQ(Call(StringOf(kMixed), "Find", part, at).Int(), found) << part;
        EXPECT_EQ(Call(StringOf(kMixed), "Find", part, at, 0).Int(), found) << part;
        if (part.size() > 1) continue;
        EXPECT_EQ(Call(StringOf(kMixed), "Find", part[0], at).Int(), found) << part;
        EXPECT_EQ(Call(StringOf(kMixed), "Find", int{part[0]}, at).Int(), found) << part;
      }
    }
  }
  VELAObj::SetCharIndexMode(0);
}

TEST(String, StatusesOfWrongCalls) {
  const struct {
    const char* member;
    std::vector<const char*> texts;
    int status;
  } cases[] = {
      {"Delete", {}, status::kFailed},
      {"Delete", {"1", "1", "1"}, status::kFailed},
      {"GetLength", {}, status::kBadArguments},
      {"Left", {}, status::kBadArguments},
      {"Mid", {}, status::kBadArguments},
      {"Mid", {"1", "1", "1"}, status::kBadArguments},
      {"Compare", {nullptr}, status::kNullText},
      {"CompareNoCase", {nullptr}, status::kNullText},
      {"Empty", {"x"}, status::kBadArguments},
      {"Format", {}, status::kBadArguments},
      {"ReleaseBuffer", {"1", "1"}, status::kFailed},
      {"Count", {"text"}, status::kFailed},
      {"Remove", {"text"}, status::kFailed},
      {"GetTokens", {"text"}, status::kFailed},
      {"SetTokens", {"text"}, status::kFailed},
      {"SetUTF16", {"x"}, status::kBadArguments},
      {"Match", {"x"}, status::kBadArguments},
  };
  for (const auto& c : cases) {
    CallFrame frame;
    for (const char* text : c.texts) frame.AddText(text);
    const ObjectRef s = StringOf("text");
    CTypeBase* owner = nullptr;
    const CClassMember* row = s->FindMember(c.member, 0, &owner, 0);
    ASSERT_NE(row, nullptr);
    EXPECT_EQ(owner->DoMethod(row->GetHandler(), &frame), c.status) << c.member;
    EXPECT_EQ(TextOf(s), "text");
  }
  EXPECT_EQ(Call(StringOf("t"), "TrimLeft", 1.5).status, status::kFailed);
  EXPECT_EQ(Call(StringOf("t"), "Insert", 0, 1.5).status, status::kFailed);
  EXPECT_EQ(Call(StringOf("t"), "Replace", 'a', "b").status, status::kFailed);
  EXPECT_EQ(Call(StringOf("t"), "Replace", "a", 'b').status, status::kFailed);
  EXPECT_EQ(Call(StringOf("t"), "SetUTF16", 5, 1).status, status::kBadValue);
  EXPECT_EQ(Call(StringOf("t"), "GetAt", 0, 5).status, status::kNotAnObject);
  EXPECT_EQ(Call(StringOf("t"), "GetAt", 0, Null{}).status, status::kNotAnObject);
  EXPECT_EQ(Call(StringOf("t"), "GetBytes", VectorOf<int>({1})).status, status::kFailed);
  const Result wrong_count = Call(StringOf("text"), "Left", 1, 2);
  EXPECT_EQ(wrong_count.status, status::kBadArguments);
  EXPECT_EQ(wrong_count.integer, 0) << "an exact count leaves the result 0";
  EXPECT_EQ(wrong_count.kind, CallFrame::ResultKind::kInt);
  EXPECT_EQ(Call(StringOf("text"), "MakeUpper", 1).kind, CallFrame::ResultKind::kNone);
}

TEST(String, ReplaceRemoveCountTrim) {
  struct Case {
    const char *text, *old_text, *new_text;
    int case_sensitive, count;
    const char* result;
  };
  const Case cases[] = {
      {"abABab", "AB", "ab", 0, 3, "ababab"}, {"aaa", "a", "aa", 0, 3, "aaaaaa"},
      {"aaa", "aa", "a", 1, 1, "aa"},         {"text", "", "x", 0, 0, "text"},
      {"text", "", "x", 1, 0, "text"},        {"text", "zz", "x", 0, 0, "text"},
      {"xÉy é", "é", "", 0, 2, "xy "},        {"Straße STRASSE", "STRASSE", "s", 0, 2, "s s"},
      {"a.b.c", ".", "", 1, 2, "abc"},        {"1 \u212A, 2 k", "k", "kg", 0, 2, "1 kg, 2 kg"},
  };
  for (const Case& c : cases) {
    const ObjectRef s = StringOf(c.text);
    EXPECT_EQ(Call(s, "Replace", c.old_text, c.new_text, c.case_sensitive).Int(), c.count);
    EXPECT_EQ(TextOf(s), c.result);
  }
  const ObjectRef s = StringOf("  banana ");
  EXPECT_EQ(Call(s, "Count", 'a').Int(), 3);
  EXPECT_EQ(Call(s, "Replace", 'a', 'o').Int(), 3);
  EXPECT_EQ(Call(s, "Remove", 'n').Int(), 2);
  Call(s, "TrimLeft");
  Call(s, "TrimRight");
  Call(s, "TrimLeft", 'b');
  EXPECT_EQ(TextOf(s), "ooo");
  const ObjectRef u = StringOf("漢é!漢");
  Call(u, "TrimLeft", "é漢");
  EXPECT_EQ(TextOf(u), "!漢");
  EXPECT_EQ(Call(u, "SpanExcluding", "漢").text, "!");
  EXPECT_EQ(Call(u, "SpanIncluding", "!").text, "!");
  EXPECT_EQ(Call(u, "FindOneOf", "x漢").Int(), 1);
  EXPECT_EQ(Call(u, "FindOneOf", "xyz").Int(), -1);
}

TEST(String, ActsOnCopiesOfItself) {
  ObjectRef s = StringOf("ab");
  EXPECT_EQ(Call(s, "Insert", 1, s).Int(), 4);
  EXPECT_EQ(TextOf(s), "aabb");
  EXPECT_EQ(Call(s, "Replace", s, "x", 1).Int(), 1);
  EXPECT_EQ(TextOf(s), "x");
  EXPECT_EQ(Call(s, "Replace", "x", s, 0).Int(), 1);
  EXPECT_EQ(TextOf(s), "x");
  EXPECT_EQ(Call(s, "SetAt", 0, s).status, 0);
  s = StringOf("<%s>");
  EXPECT_EQ(Call(s, "Format", s, s).status, 0);
  EXPECT_EQ(TextOf(s), "<<%s>>");
  EXPECT_EQ(Call(s, "Find", s, 0, 0).Int(), 0);
  EXPECT_EQ(Call(s, "Match", s, 1).Int(), 1);
  EXPECT_EQ(s->Operate2(nullptr, operation::kAdd, tagMSOOBJVECT(s.Get(), kTypeString), 0), 0);
  EXPECT_EQ(TextOf(s), "<<%s>><<%s>>");
}

TEST(String, BytesAndUtf16) {
  const ObjectRef bytes = VectorOf<unsigned char>({'a', 0, 'b', 0xFF});
  const ObjectRef s = StringOf("old");
  EXPECT_EQ(Call(s, "SetBytes", bytes).Int(), 1);
  EXPECT_EQ(Call(s, "GetLength", 0).Int(), 4);
  const ObjectRef back = VectorOf<unsigned char>({});
  EXPECT_EQ(Call(s, "GetBytes", back).Int(), 1);
  EXPECT_EQ(ValuesOf<unsigned char>(back), ValuesOf<unsigned char>(bytes));
  EXPECT_EQ(Call(s, "GetBytes", Null{}).Int(), 0);
  EXPECT_EQ(Call(s, "Find", "b", 0, 1).Int(), 2) << "behind the NUL";
  EXPECT_EQ(Call(s, "Insert", 4, s).Int(), 8) << "NULs are inserted as well";
  EXPECT_EQ(Call(s, "Mid", 1, 2).text, std::string("\0b", 2));

  const struct {
    std::u16string units;
    int length;
    int status;
    const char* text;
  } cases[] = {
      {u"aé漢", 3, 0, "aé漢"},
      {u"a漢", 1, 0, "a"},
      {u"\U0001F600", 2, 0, "\U0001F600"},
      {u"\U0001F600", 1, 0, "\uFFFD"},
      {std::u16string(1, u'\xDC00') + u"x", 2, 0, "\uFFFDx"},
      {std::u16string(u"ab\0cd", 5), -1, 0, "ab"},
      {u"ab", -1, 0, "ab"},
      {u"ab", 3, status::kBadArguments, "kept"},
      {u"ab", std::numeric_limits<int>::max(), status::kBadArguments, "kept"},
      {u"", 0, 0, ""},
  };
  for (const auto& c : cases) {
    const ObjectRef target = StringOf("kept");
    const std::string_view raw(reinterpret_cast<const char*>(c.units.data()), c.units.size() * 2);
    EXPECT_EQ(Call(target, "SetUTF16", StringOf(raw), c.length).status, c.status);
    EXPECT_EQ(TextOf(target), c.text);
  }
  EXPECT_EQ(Call(s, "SetUTF16", s, 2).status, 0) << "its own bytes";
  EXPECT_EQ(Call(s, "SetUTF16", Null{}, 2).status, 0);
  EXPECT_EQ(Call(s, "IsEmpty").Int(), 1);
}

TEST(String, EmbeddedNulsAreCharacters) {
  const std::string text("\0Ab\0c\0", 6);
  const ObjectRef nul_or_c = StringOf(std::string("\0c", 2));
  const auto s = [&] { return StringOf(text); };
  EXPECT_EQ(Call(s(), "Compare", StringOf(std::string("\0Ab\0c", 5))).Int() > 0, true);
  EXPECT_EQ(Call(s(), "CompareNoCase", StringOf(std::string("\0aB\0C\0", 6))).Int(), 0);
  EXPECT_LT(Call(s(), "CompareNoCase", StringOf(std::string("\0ab\0d", 5))).Int(), 0);
  EXPECT_EQ(Call(s(), "SpanIncluding", nul_or_c).text, std::string(1, '\0'));
  EXPECT_EQ(Call(s(), "SpanExcluding", StringOf("c")).text, text.substr(0, 4));
  EXPECT_EQ(Call(s(), "FindOneOf", StringOf(std::string("x\0b", 3))).Int(), 0);
  EXPECT_EQ(Call(s(), "Count", '\0').Int(), 3);
  EXPECT_EQ(Call(s(), "Match", StringOf(std::string("?a*\0", 4)), 0).Int(), 1);
  EXPECT_EQ(Call(s(), "GetToken", 1, 'b').text, text.substr(3));
  EXPECT_EQ(Call(s(), "IsEmpty").Int(), 1) << "the first byte is NUL";
  const ObjectRef trimmed = s();
  Call(trimmed, "TrimLeft", nul_or_c);
  Call(trimmed, "TrimRight", nul_or_c);
  EXPECT_EQ(TextOf(trimmed), "Ab");
  const ObjectRef t = s();
  Call(t, "MakeUpper");
  EXPECT_EQ(Call(t, "Replace", StringOf(std::string("B\0", 2)), "", 0).Int(), 1);
  EXPECT_EQ(TextOf(t), std::string("\0AC\0", 4));
  EXPECT_EQ(Call(t, "Remove", '\0').Int(), 2);
  EXPECT_EQ(TextOf(t), "AC");

  const ObjectRef array = ArrayOf({std::string("x\0a", 3), std::string("X\0A", 3), "x"});
  EXPECT_EQ(Call(array, "Find", Null{}, StringOf(std::string("x\0a", 3)), 0).Int(), 2);
}

// A text that nothing could hold is refused before it is made.
TEST(String, ReplacementsMayBeTooLong) {
  const std::string before(100'000, 'a');
  const ObjectRef s = StringOf(before);
  const ObjectRef by = StringOf(std::string(1'000'000, 'b'));
  for (const int case_sensitive : {0, 1}) {
    EXPECT_EQ(Call(s, "Replace", "a", by, case_sensitive).status, status::kCannotResize);
    EXPECT_TRUE(TextOf(s) == before);
    EXPECT_EQ(Call(s, "Replace", before, by, case_sensitive).Int(), 1);
    EXPECT_EQ(Call(s, "Replace", by, before, case_sensitive).Int(), 1);
  }
}

TEST(String, Wildcards) {
  const struct {
    const char *text, *pattern;
    int case_sensitive, matches;
  } cases[] = {
      {"data.csv", "*.csv", 1, 1},
      {"data.CSV", "*.csv", 1, 0},
      {"data.CSV", "*.csv", 0, 1},
      {"漢", "?", 1, 1},
      {"漢", "??", 1, 0},
      {"", "?", 1, 0},
      {"aaaa", "*a*a*b", 1, 0},
      {"a[b]", "a[b]", 1, 1},
      {"ÉTÉ", "é*É", 0, 1},
      {"x漢字y", "x*?y", 1, 1},
      {"ab", "a**b**", 1, 1},
      {"abc", "ab", 1, 0},
      {"\xFF\xFE", "??", 1, 1},
      {"é", "\xC3*", 1, 0},  // a byte that is no character is not the
                             // beginning of one
      {"é", "*\xA9", 1, 0},  // nor its end
      {"ΟΔΟΣΑ", "οδος*", 0, 1},
      {"ΟΔΟΣ", "οδοσ", 0, 1},
      {"straße", "stra?e", 0, 1},
      {"ẞ-K-ſ", "ß-k-S", 0, 1},  // the Kelvin sign and the long s
      {"ß", "SS", 0, 0},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Call(StringOf(c.text), "Match", c.pattern, c.case_sensitive).Int(), c.matches)
        << c.text << " ~ " << c.pattern;
  }
}

// In a second, which going back for every character would take many times over.
TEST(String, WildcardsInLongTexts) {
  const auto times = [](std::string_view piece, int count) {
    std::string text;
    for (int i = 0; i < count; ++i) text += piece;
    return text;
  };
  constexpr int kMany = 50'000;
  const struct {
    std::string text, pattern;
    int matches;
  } cases[] = {
      {times("a", 4 * kMany), "*" + times("a", kMany) + "b*", 0},
      {times("a", 4 * kMany), "*" + times("a?", kMany) + "b*", 0},
      {times("a", 4 * kMany), "*a*" + times("a?", kMany) + "*b", 0},
      {times("a", 4 * kMany) + "b-é", "*" + times("a", kMany) + "B*?É", 1},
      {times("a", 4 * kMany) + "\u212Ab", "a*" + times("a?", kMany) + "kB", 1},
      {times("a", 4 * kMany) + "b", times("a", 4 * kMany) + "b*?", 0},
  };
  const auto start = std::chrono::steady_clock::now();
  for (const auto& c : cases) {
    EXPECT_EQ(Call(StringOf(c.text), "Match", c.pattern, 0).Int(), c.matches)
        << c.pattern.substr(0, 4);
  }
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

TEST(String, NamesAndShortTexts) {
  const struct {
    const char *text, *underscores, *dropped;
  } names[] = {{"3rd value", "_3rd_value", "_3rdvalue"},
               {"é漢", "__", "_"},
               {"", "_", "_"},
               {"_ok1", "_ok1", "_ok1"},
               {"a\xFF", "a_", "a"}};
  for (const auto& c : names) {
    ObjectRef s = StringOf(c.text);
    Call(s, "MakeValidCName", 0);
    EXPECT_EQ(TextOf(s), c.underscores);
    s = StringOf(c.text);
    Call(s, "MakeValidCName", 1);
    EXPECT_EQ(TextOf(s), c.dropped);
  }
  const struct {
    const char* text;
    int most, inside, cut;
    const char* result;
  } shorts[] = {
      {"abcdefghij", 10, 0, 0, "abcdefghij"},
      {"abcdefghij", 7, 0, 1, "abcd..."},
      {"abcdefghij", 7, 1, 1, "ab...ij"},
      {"abcdefghij", 3, 1, 1, "..."},
      {"abcdefghij", 2, 1, 1, "ab"},
      {"abcdefghij", -5, 0, 1, ""},
      {"éééé", 6, 0, 1, "é..."},
      {"éééé", 7, 1, 1, "é...é"},
      {"éééé", 6, 1, 1, "é..."},
      {"漢字", 2, 0, 1, ""},
  };
  for (const auto& c : shorts) {
    const ObjectRef s = StringOf(c.text);
    EXPECT_EQ(Call(s, "Shorten", c.most, c.inside).Int(), c.cut);
    EXPECT_EQ(TextOf(s), c.result) << c.text << " to " << c.most;
  }
}

TEST(String, LentBuffers) {
  const ObjectRef s = StringOf("abc");
  const ObjectRef copy(s->CreateCopy());
  CTypeBase* owner = nullptr;
  CallFrame frame;
  frame.AddInt(5);
  const auto method = [&](const char* name) {
    return owner->DoMethod(s->FindMember(name, 0, &owner, 0)->GetHandler(), &frame);
  };
  s->FindMember("GetBuffer", 0, &owner, 0);
  ASSERT_EQ(method("GetBufferSetLength"), 0);
  auto* buffer = static_cast<char*>(frame.ResultMemory());
  EXPECT_EQ(std::string(buffer, 5), std::string("abc\0\0", 5)) << "new bytes are zero";
  std::memcpy(buffer, "12345", 5);
  Call(s, "ReleaseBuffer", 4);
  EXPECT_EQ(TextOf(s), "1234");
  EXPECT_EQ(TextOf(copy), "abc") << "a copy shares nothing that is lent";
  ASSERT_EQ(method("GetBuffer"), 0);
  static_cast<char*>(frame.ResultMemory())[2] = '\0';
  Call(s, "ReleaseBuffer");
  EXPECT_EQ(TextOf(s), "12") << "up to the NUL";
  EXPECT_EQ(Call(s, "ReleaseBuffer", 1000000).status, 0) << "no further than the buffer";
  EXPECT_EQ(Call(s, "GetBuffer", -1).status, status::kBadArguments);
  EXPECT_EQ(Call(s, "GetBufferSetLength", -1).status, status::kBadArguments);
  EXPECT_EQ(Call(s, "GetBuffer", std::numeric_limits<int>::max()).status, status::kCannotResize);
  EXPECT_EQ(Call(s, "FreeExtra").status, 0);
  frame.Reset();
  ASSERT_EQ(method("LockBuffer"), 0);
  *static_cast<char*>(frame.ResultMemory()) = 'x';
  EXPECT_EQ(Call(s, "UnlockBuffer").status, 0);
  EXPECT_EQ(TextOf(s)[0], 'x');
}

TEST(String, WritesToItsDestination) {
  struct Written {
    host::OutputTarget target;
    std::string text;
    unsigned flags;
  };
  static std::vector<Written> written;
  written.clear();
  host::SetOutputSink([](host::OutputTarget target, std::string_view text, unsigned flags) {
    written.push_back({target, std::string(text), flags});
  });
  const ObjectRef s = StringOf("a\nb");
  const std::pair<int, unsigned> flags[] = {{0, 1}, {2, 0x1010}, {4, 0x20}, {5, 0x400}, {9, 0}};
  for (const auto& [destination, expected] : flags) {
    Call(s, "Write", destination);
    EXPECT_EQ(written.back().flags, expected);
    EXPECT_EQ(written.back().text, "a\nb");
    Call(s, "WriteLine", destination);
    EXPECT_EQ(written.back().flags, expected | 8u);
    EXPECT_EQ(written.back().text, "a\nb\n");
  }
  const std::size_t before = written.size();
  Call(s, "WriteLine", 1);
  host::SetOutputSink({});
  ASSERT_EQ(written.size(), before + 1) << "the status bar gets it, and nothing else";
  EXPECT_EQ(written.back().target, host::OutputTarget::kStatus);
}

TEST(String, FileSystemTests) {
  EXPECT_EQ(Call(StringOf("."), "IsPath").Int(), 1);
  EXPECT_EQ(Call(StringOf("."), "IsFile").Int(), 0);
  EXPECT_EQ(Call(StringOf("no such é"), "IsFile").Int(), 0);
  for (const std::string& bad : {std::string(), std::string("\xFF\xFE/x"), std::string(".\0", 2)}) {
    EXPECT_EQ(Call(StringOf(bad), "IsPath").Int(), 0);
    EXPECT_EQ(Call(StringOf(bad), "IsFile").Int(), 0);
  }
}

TEST(String, ValuesOperatorsAndComparisons) {
  const ObjectRef s = Make(kTypeString, 3);
  const MSOINDICES second = MSOINDICES::Object(1);
  EXPECT_EQ(s->SetNumericValue(&second, std::int64_t{9007199254740993}), 0);
  EXPECT_EQ(TextOf(s, &second), "9007199254740993");
  EXPECT_EQ(s->SetNumericValue(&second, 'c'), 0);
  EXPECT_EQ(TextOf(s, &second), "c");
  EXPECT_EQ(CallAt(s, second, "GetLength", 0).Int(), 1) << "a member acts on the addressed string";
  EXPECT_EQ(CallAt(s, MSOINDICES::Object(3), "Empty").status, status::kUnresolved);
  EXPECT_EQ(s->SetString(&second, " 0x10 "), 0);
  int integer = 0;
  EXPECT_EQ(s->GetInt(&second, integer), 0);
  EXPECT_EQ(integer, 16);
  double number = 0;
  EXPECT_EQ(s->GetDouble(nullptr, number), 0);
  EXPECT_EQ(number, kMissingValue) << "the empty text";

  const auto apply = [&](unsigned code, const tagMSOOBJVECT& operand) {
    return s->Operate2(nullptr, code, operand, 0);
  };
  EXPECT_EQ(apply(operation::kAssign, tagMSOOBJVECT::Plain(2.5, kTypeDouble)), 0);
  EXPECT_EQ(apply(operation::kAdd, tagMSOOBJVECT::Plain(double{'x'}, kTypeChar)), 0);
  const ObjectRef n = ScalarOf(7);
  EXPECT_EQ(apply(operation::kAdd, tagMSOOBJVECT(n.Get(), kTypeInt)), 0);
  EXPECT_EQ(TextOf(s), "2.5x7");
  EXPECT_EQ(apply(operation::kMultiply, tagMSOOBJVECT(n.Get(), kTypeInt)), status::kFailed);

  const ObjectRef other = StringOf("2.6");
  const tagMSOOBJVECT operand(other.Get(), kTypeString);
  const std::pair<unsigned, bool> outcomes[] = {
      {operation::kEqual, false},   {operation::kNotEqual, true},
      {operation::kLess, true},     {operation::kLessOrEqual, true},
      {operation::kGreater, false}, {operation::kGreaterOrEqual, false}};
  for (const auto& [op, expected] : outcomes) {
    unsigned flags = 5;
    EXPECT_EQ(s->CompareVals(nullptr, op, operand, &flags), 0);
    EXPECT_EQ(flags, 5u | (expected ? operation::kCompareTrue : 0)) << op;
  }
}

TEST(String, BoundToAnElementActsInPlace) {
  const ObjectRef array = ArrayOf({"one two", "x"});
  const ObjectRef s = StringOf("own");
  ASSERT_EQ(s->SetExternalData(array->GetArrayElement(nullptr, 0)), 0);
  Call(s, "MakeUpper");
  EXPECT_EQ(TextsOf(array), (Texts{"ONE TWO", "x"}));
  EXPECT_EQ(Call(s, "GetTokens", array, 0).Int(), 2) << "into the array that holds the text";
  EXPECT_EQ(TextsOf(array), (Texts{"ONE", "TWO"}));
  EXPECT_EQ(s->SetExternalData(nullptr), 0);
  EXPECT_EQ(TextOf(s), "own");
}

}  // namespace
}  // namespace vela::testing
