#include <iterator>
#ifdef __GLIBC__
#include <malloc.h>
#endif
#include <random>

#include "text_fixture.h"

namespace vela::testing {
namespace {

struct Case {
  const char* text;
  char separator;
  Texts tokens;
};

const Case kCases[] = {
    {"", 0, {}},
    {"", ',', {}},
    {"  \t\n ", 0, {}},
    {" a  b\tc\r\nd ", 0, {"a", "b", "c", "d"}},
    {"a,b,,c", ',', {"a", "b", "", "c"}},
    {"a,", ',', {"a", ""}},
    {",", ',', {"", ""}},
    {"one", ',', {"one"}},
    {" a , b ", ',', {" a ", " b "}},
    {"\"a b\" c", 0, {"a b", "c"}},
    {"\"a,b\",c", ',', {"a,b", "c"}},
    {"\"say \"\"hi\"\"\",x", ',', {"say \"hi\"", "x"}},
    {"\"\"\"\"", ',', {"\""}},
    {"\"\",\"\"", ',', {"", ""}},
    {"\"\" a \"\"", 0, {"a"}},
    {"x,\"open, to the end", ',', {"x", "open, to the end"}},
    {"x,\"open \"\"quotes\"\"", ',', {"x", "open \"quotes\""}},
    {"\"a\"b,c", ',', {"ab", "c"}},
    {"\"a\"\"b\"c d,e", ',', {"a\"bc d", "e"}},
    {"a\"b,c\"d", ',', {"a\"b", "c\"d"}},
    {"a\"b\"c", '"', {"a", "b", "c"}},
    {"é漢;字", ';', {"é漢", "字"}},
    {"\"", ',', {""}},
    {"a,\"", ',', {"a", ""}},
};

TEST(StringTokens, EveryMemberSplitsAlike) {
  for (const Case& c : kCases) {
    const ObjectRef s = StringOf(c.text);
    const ObjectRef array = ArrayOf({"old", "old"});
    const int count = static_cast<int>(c.tokens.size());
    EXPECT_EQ(Call(s, "GetTokens", array, c.separator).Int(), count) << c.text;
    EXPECT_EQ(TextsOf(array), c.tokens) << c.text;
    EXPECT_EQ(Call(s, "GetNumTokens", c.separator).Int(), count);
    for (int i = 0; i < count; ++i) {
      EXPECT_EQ(Call(s, "GetToken", i, c.separator).text, c.tokens[static_cast<std::size_t>(i)]);
    }
    EXPECT_EQ(Call(s, "GetToken", count, c.separator).text, "");
    EXPECT_EQ(Call(s, "GetToken", -1, c.separator).text, "");
    if (count == 0) continue;
    const auto first = std::find(c.tokens.begin(), c.tokens.end(), c.tokens.back());
    EXPECT_EQ(Call(s, "FindToken", c.tokens.back(), c.separator).Int(), first - c.tokens.begin());
  }
  EXPECT_EQ(Call(StringOf(""), "FindToken", "", ',').Int(), -1);
  EXPECT_EQ(Call(StringOf("a b"), "FindToken", "B").Int(), -1);
  EXPECT_EQ(Call(StringOf("a b c"), "GetNumTokens").Int(), 3) << "white space by default";
}

TEST(StringTokens, NumbersIntoEveryVector) {
  const ObjectRef s = StringOf("1.5;0x10;; -3 ;NANUM;none;\"2\";1e400");
  const ObjectRef doubles = Make(kTypeDouble | kFlagVector);
  EXPECT_EQ(Call(s, "GetTokens", doubles, ';').Int(), 8);
  EXPECT_EQ(ValuesOf<double>(doubles),
            (std::vector<double>{1.5, 16, kMissingValue, -3, kMissingValue, kMissingValue, 2,
                                 std::numeric_limits<double>::infinity()}));
  const ObjectRef ints = VectorOf<int>({9, 9});
  EXPECT_EQ(Call(StringOf("1.9 x -2"), "GetTokens", ints, '\0').Int(), 3);
  EXPECT_EQ(ValuesOf<int>(ints), (std::vector<int>{1, 0, -2}));
  const ObjectRef long_token = StringOf(std::string(100, '0') + "7");
  EXPECT_EQ(Call(long_token, "GetTokens", ints).Int(), 1);
  EXPECT_EQ(ValuesOf<int>(ints), std::vector<int>{7});
}

// A token reads as the number that the whole text reads as when it is that token alone.
TEST(StringTokens, NumbersReadAsTextsDo) {
  std::mt19937 random(4);
  const std::string parts[] = {
      "0",  "7",  "12345678", "123456789", "00000000000000001", ".",          "-", "+",
      "e5", "x1", "NANUM",    "99999999",  ".12345678",         ".123456789", " ", "\t"};
  for (const char separator : {',', '\0', '.', '1', '-', 'e'}) {
    std::string text;
    // A long run of plain ones to begin with.
    for (int i = 0; i < 2000; ++i) {
      text += std::to_string(i % 7 - 3) + '.' + std::to_string(i);
      text += separator == '\0' ? '\n' : separator;
    }
    for (int i = 0; i < 20000; ++i) {
      for (unsigned part = random() % 4; part > 0; --part)
        text += parts[random() % std::size(parts)];
      text += separator == '\0' ? ' ' : separator;
    }
    const ObjectRef s = StringOf(text), numbers = Make(kTypeDouble | kFlagVector);
    const ObjectRef tokens = ArrayOf({});
    const int count = static_cast<int>(Call(s, "GetTokens", numbers, separator).Int());
    ASSERT_EQ(Call(s, "GetTokens", tokens, separator).Int(), count);
    const std::vector<double> values = ValuesOf<double>(numbers);
    for (int i = 0; i < count; ++i) {
      const MSOINDICES at = MSOINDICES::Element(i);
      double value = 0;
      ASSERT_EQ(tokens->GetDouble(&at, value), 0);
      ASSERT_EQ(values[static_cast<std::size_t>(i)], value) << TextOf(tokens, &at);
    }
  }
}

TEST(StringTokens, SetTokensJoins) {
  const ObjectRef s = StringOf("kept");
  const ObjectRef array = ArrayOf({"a", "", "c"});
  EXPECT_EQ(Call(s, "SetTokens", array, '\0').Int(), -1);
  EXPECT_EQ(TextOf(s), "kept");
  EXPECT_EQ(Call(s, "SetTokens", array).Int(), 3);
  EXPECT_EQ(TextOf(s), "a\t\tc");
  EXPECT_EQ(Call(s, "SetTokens", array, ',').Int(), 3);
  EXPECT_EQ(TextOf(s), "a,,c");
  EXPECT_EQ(Call(s, "SetTokens", ArrayOf({}), ',').Int(), 0);
  EXPECT_EQ(TextOf(s), "");
  // The string is an element of the array that it is made from.
  ASSERT_EQ(s->SetExternalData(array->GetArrayElement(nullptr, 1)), 0);
  EXPECT_EQ(Call(s, "SetTokens", array, '-').Int(), 3);
  EXPECT_EQ(TextsOf(array), (Texts{"a", "a--c", "c"}));
  s->SetExternalData(nullptr);
}

TEST(StringTokens, AStringAndItsTokensGoTheirOwnWays) {
  const ObjectRef s = StringOf("one two three");
  const ObjectRef array = ArrayOf({});
  Call(s, "GetTokens", array);
  Call(s, "SetAt", 0, 'X');
  EXPECT_EQ(TextsOf(array), (Texts{"one", "two", "three"}));
  const Part middle{array, MSOINDICES::Element(1)};
  EXPECT_EQ(Call(s, "FindToken", middle).Int(), 1);
  EXPECT_EQ(Call(s, "Replace", middle, middle).Int(), 1);
  EXPECT_EQ(Call(s, "Insert", 4, middle).Int(), 16);
  EXPECT_EQ(TextOf(s), "Xne twotwo three");
  EXPECT_EQ(TextsOf(array), (Texts{"one", "two", "three"}));
  EXPECT_EQ(Call(s, "FindToken", s).Int(), -1);
  // Into the array that holds it, and itself out of what it became.
  ASSERT_EQ(s->SetExternalData(array->GetArrayElement(nullptr, 2)), 0);
  EXPECT_EQ(Call(s, "SetTokens", array, ' ').Int(), 3);
  EXPECT_EQ(TextsOf(array), (Texts{"one", "two", "one two three"}));
  EXPECT_EQ(Call(s, "GetTokens", array, 'o').Int(), 3);
  s->SetExternalData(nullptr);
  EXPECT_EQ(TextsOf(array), (Texts{"", "ne tw", " three"}));
}

TEST(StringTokens, LargeTextsAreLinear) {
  std::string text;
  for (int i = 0; i < 1'000'000; ++i) text += std::to_string(i) + ",";
  const ObjectRef s = StringOf(text);
  const ObjectRef array = ArrayOf({});
  EXPECT_EQ(Call(s, "GetTokens", array, ',').Int(), 1'000'001);
  const ObjectRef back = StringOf("");
  EXPECT_EQ(Call(back, "SetTokens", array, ',').Int(), 1'000'001);
  EXPECT_TRUE(TextOf(back) == text);
  EXPECT_EQ(Call(s, "Replace", "9,", "<9>", 0).Int(), 100'000);
}

#ifdef __GLIBC__
TEST(StringTokens, TokensOfManyLinesTakeMemoryForThemselvesOnly) {
  const ObjectRef words = ArrayOf({});
  const ObjectRef line_words = ArrayOf({});
  const std::size_t before = mallinfo2().uordblks;
  for (int i = 0; i < 10000; ++i) {
    const ObjectRef line = StringOf("two words" + std::to_string(i));
    EXPECT_EQ(Call(line, "GetTokens", line_words, 0).Int(), 2);
    EXPECT_EQ(Call(words, "Append", line_words).status, 0);
  }
  constexpr std::size_t kMostForOne = 100;
  EXPECT_LT(mallinfo2().uordblks - before, 20000 * kMostForOne);
}
#endif

}  // namespace
}  // namespace vela::testing
