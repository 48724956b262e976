#include <algorithm>
#include <map>
#include <numeric>
#include <random>

#include "text_fixture.h"

namespace vela::testing {
namespace {

TEST(StringArray, AddSetAtGrowInsertAt) {
  const ObjectRef a = ArrayOf({});
  EXPECT_EQ(Call(a, "Add", "x").Int(), 0);
  EXPECT_EQ(Call(a, "Add", Null{}).Int(), 1) << "NULL is the empty text";
  EXPECT_EQ(Call(a, "SetAtGrow", 4, "y").Int(), 1);
  EXPECT_EQ(TextsOf(a), (Texts{"x", "", "", "", "y"}));
  EXPECT_EQ(Call(a, "SetAtGrow", 0, Part{a, MSOINDICES::Element(4)}).Int(), 1);
  EXPECT_EQ(Call(a, "SetAtGrow", -1, "y").status, status::kBadIndex);
  EXPECT_EQ(Call(a, "SetAtGrow", std::numeric_limits<int>::max(), "y").status,
            status::kCannotResize);
  EXPECT_EQ(TextsOf(a).size(), 5u);

  const ObjectRef b = ArrayOf({"1", "2", "3"});
  EXPECT_EQ(Call(b, "InsertAt", 10, "z", 2).Int(), 1);
  EXPECT_EQ(Call(b, "GetSize").Int(), 12);
  EXPECT_EQ(Call(b, "InsertAt", 1, Part{b, MSOINDICES::Element(2)}, 2).Int(), 1);
  EXPECT_EQ(TextsOf(b)[2], "3");
  for (const auto& [index, count] : {std::pair{-1, 1}, {0, 0}, {0, -5}}) {
    EXPECT_EQ(Call(b, "InsertAt", index, "z", count).status, status::kOutOfRange);
  }
  EXPECT_EQ(Call(b, "InsertAt", 0, "z", std::numeric_limits<int>::max()).status,
            status::kCannotResize);
  EXPECT_EQ(Call(b, "Add").status, status::kBadArguments);
  EXPECT_EQ(Call(b, "InsertAt", 0, "z").status, status::kBadArguments);
}

// One removal at a time, as the member is described.
int RemoveOneByOne(Texts& texts, std::vector<int> indices) {
  std::sort(indices.begin(), indices.end());
  for (auto i = indices.rbegin(); i != indices.rend(); ++i) {
    if (*i < 0 || *i >= static_cast<int>(texts.size())) return 0;
    texts.erase(texts.begin() + *i);
  }
  return 1;
}

TEST(StringArray, RemoveAt) {
  const ObjectRef a = ArrayOf({"0", "1", "2", "3", "4"});
  EXPECT_EQ(Call(a, "RemoveAt", 1, 2).Int(), 1);
  EXPECT_EQ(TextsOf(a), (Texts{"0", "3", "4"}));
  for (const auto& [index, count] :
       {std::pair{-1, 1}, {3, 1}, {2, 0}, {0, 4}, {1, std::numeric_limits<int>::max()}}) {
    EXPECT_EQ(Call(a, "RemoveAt", index, count).status, status::kOutOfRange);
  }
  EXPECT_EQ(Call(a, "RemoveAt", 1).status, status::kBadArguments);
  EXPECT_EQ(Call(a, "RemoveAt", VectorOf<double>({1})).Int(), -1);
  EXPECT_EQ(Call(a, "RemoveAt", VectorOf<int>({})).Int(), 1);
  EXPECT_EQ(TextsOf(a).size(), 3u);

  std::mt19937 random(7);
  for (int round = 0; round < 500; ++round) {
    Texts texts(random() % 9);
    for (std::size_t i = 0; i < texts.size(); ++i) texts[i] = std::to_string(i);
    std::vector<int> indices(random() % 6);
    for (int& index : indices) index = static_cast<int>(random() % 11) - 1;
    const ObjectRef array = ArrayOf(texts);
    const int expected = RemoveOneByOne(texts, indices);
    EXPECT_EQ(Call(array, "RemoveAt", VectorOf(indices)).Int(), expected);
    EXPECT_EQ(TextsOf(array), texts) << ::testing::PrintToString(indices);
  }
}

TEST(StringArray, FindDuplicates) {
  constexpr int kRepeated = 0x10000, kBackwards = 0x20000;
  const ObjectRef a = ArrayOf({"b", "a", "B", "b", "", "a", "ß", "SS"});
  struct Case {
    int case_sensitive, control;
    std::vector<int> map;
    std::vector<unsigned> firsts, counts;
  };
  const Case cases[] = {
      {1, 0, {0, 1, 2, 0, 3, 1, 4, 5}, {0, 1, 2, 4, 6, 7}, {2, 2, 1, 1, 1, 1}},
      {0, 0, {0, 1, 0, 0, 2, 1, 3, 3}, {0, 1, 4, 6}, {3, 2, 1, 2}},
      {0, kRepeated, {0, 1, 0, 0, -1, 1, 2, 2}, {0, 1, 6}, {3, 2, 2}},
      {1, kRepeated | kBackwards, {1, 0, -1, 1, -1, 0, -1, -1}, {1, 0}, {2, 2}},
  };
  for (const Case& c : cases) {
    const ObjectRef map = Make(kTypeInt | kFlagVector);
    const ObjectRef firsts = Make(kTypeUnsignedInt | kFlagVector);
    const ObjectRef counts = Make(kTypeUnsignedInt | kFlagVector);
    EXPECT_EQ(Call(a, "FindDuplicates", map, firsts, c.case_sensitive, counts, c.control).Int(),
              static_cast<int>(c.firsts.size()));
    EXPECT_EQ(ValuesOf<int>(map), c.map);
    EXPECT_EQ(ValuesOf<unsigned>(firsts), c.firsts);
    EXPECT_EQ(ValuesOf<unsigned>(counts), c.counts);
  }
  const ObjectRef map = Make(kTypeInt | kFlagVector);
  const ObjectRef firsts = Make(kTypeUnsignedInt | kFlagVector);
  EXPECT_EQ(Call(a, "FindDuplicates", map, firsts, 1, Null{}, 0).Int(), 6);
  EXPECT_EQ(Call(a, "FindDuplicates", firsts, firsts, 1, Null{}, 0).Int(), -1);
  EXPECT_EQ(Call(a, "FindDuplicates", map, map, 1, Null{}, 0).Int(), -1);
  EXPECT_EQ(Call(a, "FindDuplicates", map, Null{}, 1, Null{}, 0).Int(), -1);
  EXPECT_EQ(Call(a, "FindDuplicates", map, firsts, 1, map, 0).Int(), -1);
  EXPECT_EQ(Call(a, "FindDuplicates", map, firsts, 1, firsts, 0).status, status::kBadArguments);
  EXPECT_EQ(Call(ArrayOf({}), "FindDuplicates", map, firsts, 1, Null{}, 0).Int(), 0);
  EXPECT_EQ(ValuesOf<int>(map), std::vector<int>{});
}

// Texts that agree in long fronts, hold NULs, and repeat.
Texts HardToSort(std::mt19937& random, std::size_t count) {
  const std::string fronts[] = {
      "", "item", "0123456789abcdef", "é漢", std::string("\0\0", 2), std::string(40, 'x'), "\xFF"};
  Texts texts(count);
  for (std::string& text : texts) {
    text = fronts[random() % 7] + fronts[random() % 7] + std::to_string(random() % 30);
    text.resize(random() % (text.size() + 1));
  }
  return texts;
}

TEST(StringArray, FindDuplicatesAmongMany) {
  std::mt19937 random(5);
  Texts numbers(50000);
  for (std::string& text : numbers) text = std::to_string(random() % 30000);
  for (const Texts& texts : {numbers, HardToSort(random, 20000)}) {
    const ObjectRef map = Make(kTypeInt | kFlagVector);
    const ObjectRef firsts = Make(kTypeUnsignedInt | kFlagVector);
    const int count =
        static_cast<int>(Call(ArrayOf(texts), "FindDuplicates", map, firsts, 1, Null{}, 0).Int());
    std::map<std::string, int> groups;
    std::vector<int> expected;
    for (const std::string& text : texts) {
      expected.push_back(groups.emplace(text, static_cast<int>(groups.size())).first->second);
    }
    EXPECT_EQ(count, static_cast<int>(groups.size()));
    EXPECT_EQ(ValuesOf<int>(map), expected);
  }
}

TEST(StringArray, SortsAsAStableSortByBytes) {
  std::mt19937 random(3);
  for (const std::size_t count : {0, 1, 2, 10, 1000, 20000}) {
    const Texts texts = HardToSort(random, count);
    for (const int order : {0, 1}) {
      for (const int missing_small : {0, 1}) {
        const bool empty_first = order == missing_small;
        std::vector<unsigned> expected(count);
        std::iota(expected.begin(), expected.end(), 0u);
        std::stable_sort(expected.begin(), expected.end(), [&](unsigned a, unsigned b) {
          const std::string &x = texts[a], &y = texts[b];
          if (x.empty() != y.empty()) return x.empty() == empty_first;
          return order != 0 ? x < y : y < x;
        });
        const ObjectRef array = ArrayOf(texts);
        const ObjectRef indices = VectorOf<unsigned>({5});
        EXPECT_EQ(Call(array, "Sort", order, missing_small, indices, 0).Int(), 1);
        EXPECT_EQ(ValuesOf<unsigned>(indices), expected);
        Texts sorted;
        for (const unsigned from : expected) sorted.push_back(texts[from]);
        EXPECT_EQ(TextsOf(array), sorted);
      }
    }
  }
  const ObjectRef array = ArrayOf({"b", "a"});
  EXPECT_EQ(Call(array, "Sort", 1, 1, VectorOf<int>({}), 0).Int(), 0);
  EXPECT_EQ(TextsOf(array), (Texts{"b", "a"})) << "nothing happens";
  EXPECT_EQ(Call(array, "Sort", 1, 1, Null{}, 0).Int(), 1);
  EXPECT_EQ(TextsOf(array), (Texts{"a", "b"}));
  EXPECT_EQ(Call(array, "Sort", 1).status, status::kBadArguments);
  const ObjectRef alike = ArrayOf(Texts(3, std::string(1'000'000, 'x')));
  EXPECT_EQ(Call(alike, "Sort", 1, 1, Null{}, 0).Int(), 1) << "long texts that agree";
}

TEST(StringArray, GeneralVectorMembers) {
  const ObjectRef a = ArrayOf({"a", "b", "c", "d"});
  EXPECT_EQ(Call(a, "Reorder", VectorOf<unsigned>({3, 2, 0, 1})).Int(), 1);
  EXPECT_EQ(Call(a, "Reorder", VectorOf<unsigned>({9, 2, 0, 1})).Int(), 0);
  EXPECT_EQ(Call(a, "Wrap", 1).Int(), 1);
  EXPECT_EQ(TextsOf(a), (Texts{"c", "a", "b", "d"}));
  EXPECT_EQ(Call(a, "GetUpperBound").Int(), 3);
  EXPECT_EQ(Call(a, "GetInternalDataType").Int(), static_cast<int>(kTypeString));
  EXPECT_EQ(Call(a, "Sum", ScalarOf(0.0)).status, status::kUnsupported);
  EXPECT_EQ(Call(a, "Data", 0.0, 1.0, 1.0).status, status::kUnsupported);
  EXPECT_EQ(Call(a, "GetSize").Int(), 4);
  EXPECT_EQ(Call(a, "Append", a).Int(), 1);
  EXPECT_EQ(Call(a, "Append", VectorOf<double>({1.5, kMissingValue})).Int(), 1);
  EXPECT_EQ(TextsOf(a).back(), "NANUM");
  EXPECT_EQ(Call(a, "GetSize").Int(), 10);
}

TEST(StringArray, SubVectors) {
  const ObjectRef a = ArrayOf({"0", "1", "2", "3"});
  const ObjectRef target = ArrayOf({"old"});
  EXPECT_EQ(Call(a, "GetSubVector", target, 2, -1).Int(), 0);
  EXPECT_EQ(TextsOf(target), (Texts{"2", "3"}));
  for (const auto& [lower, upper] : {std::pair{-1, 2}, {3, 2}, {4, -1}, {0, -2}}) {
    EXPECT_EQ(Call(a, "GetSubVector", target, lower, upper).Int(), -1);
  }
  const ObjectRef numbers = Make(kTypeDouble | kFlagVector);
  EXPECT_EQ(Call(a, "GetSubVector", numbers, 2).Int(), 0);
  EXPECT_EQ(ValuesOf<double>(numbers), (std::vector<double>{2, 3}));

  EXPECT_EQ(Call(a, "SetSubVector", target, 3, -1).Int(), 0);
  EXPECT_EQ(TextsOf(a), (Texts{"0", "1", "2", "2"}));
  EXPECT_EQ(Call(a, "SetSubVector", a, 1, 3).Int(), 0) << "its own elements, as if copied";
  EXPECT_EQ(TextsOf(a), (Texts{"0", "0", "1", "2"}));
  for (const auto& [offset, count] : {std::pair{-1, 1}, {4, -1}, {4, 0}, {3, 2}, {0, 3}}) {
    EXPECT_EQ(Call(a, "SetSubVector", target, offset, count).Int(), -1);
  }
  EXPECT_EQ(Call(a, "GetSubVector", a, 2, -1).Int(), 0);
  EXPECT_EQ(TextsOf(a), (Texts{"1", "2"}));
}

TEST(StringArray, ContentByText) {
  const ObjectRef a = ArrayOf({"", "", "b", "", "É", "b", ""});
  const ObjectRef found = Make(kTypeUnsignedInt | kFlagVector);
  EXPECT_EQ(Call(a, "Find", found, "b").Int(), 2);
  EXPECT_EQ(ValuesOf<unsigned>(found), (std::vector<unsigned>{2, 5}));
  EXPECT_EQ(Call(a, "Find", found, "é", 0, 0, -1, 1).Int(), 1);
  EXPECT_EQ(ValuesOf<unsigned>(found), std::vector<unsigned>{4});
  EXPECT_EQ(Call(a, "Find", Null{}, "b", 1, 3).Int(), 1);
  EXPECT_EQ(Call(a, "Find", Null{}, "b", 1, 7).Int(), -1);
  EXPECT_EQ(Call(a, "Find", VectorOf<int>({}), "b").Int(), -1);
  EXPECT_EQ(Call(a, "Find", found, "B", kMissingValue, 0, 0, -1, 0).Int(), 0);
  EXPECT_EQ(Call(a, "Find", found, "b", kMissingValue, 0, 3, -1, 0).Int(), 1) << "the numeric form";
  EXPECT_EQ(ValuesOf<unsigned>(found), std::vector<unsigned>{5});
  EXPECT_EQ(Call(a, "Replace", "B", "x", 0.0).Int(), 0) << "a tolerance is no case flag";
  EXPECT_EQ(Call(a, "Replace", "b", "B").Int(), 2);
  EXPECT_EQ(Call(a, "TrimLeft", 0).Int(), 0);
  EXPECT_EQ(Call(a, "TrimLeft", 1).Int(), 2);
  EXPECT_EQ(Call(a, "TrimRight", 1).Int(), 1);
  EXPECT_EQ(TextsOf(a), (Texts{"B", "", "É", "B"}));
  EXPECT_EQ(Call(a, "Trim").Int(), 1);
  EXPECT_EQ(Call(a, "InsertValue", "x", 3, 2).Int(), 1);
  EXPECT_EQ(Call(a, "InsertValue", "x", 6).Int(), 0);
  EXPECT_EQ(TextsOf(a), (Texts{"B", "É", "B", "x", "x"}));
  EXPECT_EQ(Call(a, "Merge", ArrayOf({"new", "x", "new", "other"})).Int(), 2);
  EXPECT_EQ(Call(a, "Merge", a).Int(), 0);
  EXPECT_EQ(TextsOf(a).size(), 7u);
  EXPECT_EQ(Call(a, "CopyData", VectorOf<int>({1, 2})).Int(), 0);
  EXPECT_EQ(TextsOf(a), (Texts{"1", "2"}));
  EXPECT_EQ(Call(ArrayOf({""}), "TrimLeft", 1).Int(), 1);
  EXPECT_EQ(Call(ArrayOf({}), "TrimLeft", 1).Int(), -1);
  EXPECT_EQ(Call(ArrayOf({}), "Trim").Int(), 0);
}

TEST(StringArray, RowsValuesAndOperators) {
  const ObjectRef rows = Make(kTypeString | kFlagVector, 2);
  const MSOINDICES second = MSOINDICES::Object(1);
  EXPECT_EQ(CallAt(rows, second, "Add", "x").Int(), 0);
  EXPECT_EQ(TextsOf(rows, 0), Texts{});
  EXPECT_EQ(TextsOf(rows, 1), Texts{"x"});
  EXPECT_EQ(CallAt(rows, second, "Append", ArrayOf({"y"})).status, status::kNotOnOneRow);
  EXPECT_EQ(CallAt(rows, MSOINDICES::Object(2), "Add", "x").status, status::kOutOfRange);

  const ObjectRef a = ArrayOf({"7", "x"});
  const MSOINDICES first = MSOINDICES::Element(0);
  double number = 0;
  EXPECT_EQ(a->GetDouble(&first, number), 0);
  EXPECT_EQ(number, 7);
  const MSOINDICES negative = MSOINDICES::Element(-1), outside = MSOINDICES::Element(2);
  EXPECT_EQ(a->GetDouble(&negative, number), status::kNegativeElement);
  EXPECT_EQ(a->SetDouble(&outside, number), status::kOutOfRange);
  const auto apply = [&](unsigned code, const ObjectRef& operand, unsigned options = 0) {
    return a->Operate2(nullptr, code, tagMSOOBJVECT(operand.Get(), operand->GetTypeID()), options);
  };
  EXPECT_EQ(apply(operation::kAdd, StringOf("!")), 0);
  EXPECT_EQ(apply(operation::kAdd, VectorOf<int>({1, 2})), 0);
  EXPECT_EQ(TextsOf(a), (Texts{"7!1", "x!2"}));
  EXPECT_EQ(apply(operation::kAdd, VectorOf<int>({1})), status::kFailed);
  EXPECT_EQ(apply(operation::kAssign, a, operation::kAppend), 0);
  EXPECT_EQ(TextsOf(a).size(), 4u);
  EXPECT_EQ(apply(operation::kSubtract, a), status::kFailed);
  EXPECT_EQ(TextOf(a), "string(4)");
  const ObjectRef copy(a->CreateCopy());
  Call(copy, "RemoveAll");
  EXPECT_EQ(TextsOf(a).size(), 4u);

  const ObjectRef numbers = Make(kTypeInt | kFlagVector);
  EXPECT_EQ(Call(numbers, "Append", ArrayOf({"3", "0x1F", "none"})).Int(), 1);
  EXPECT_EQ(ValuesOf<int>(numbers), (std::vector<int>{3, 31, 0}));
}

}  // namespace
}  // namespace vela::testing
