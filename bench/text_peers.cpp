// The peers in C and C++ of the text members, timed on request; see server.h.
#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <unicode/ucasemap.h>

#include "server.h"

namespace vela::bench {
namespace {

constexpr int kFormatCalls = 1'000'000;

// A result that outlives its call.
template <class T>
std::shared_ptr<T> Kept() {
  return std::make_shared<T>();
}

Prepared StdGetline(const Data& data) {
  const std::string path(TextOf(data, "path"));
  const auto read = [path](auto&& use) {
    std::ifstream file(path, std::ios::binary);
    for (std::string line; std::getline(file, line);) use(line);
  };
  return {nullptr, [read] { read([](const std::string&) {}); },
          [read] {
            std::string all;
            read([&](const std::string& line) { all.append(line).append("\n"); });
            return all;
          }};
}

Prepared PosixGetline(const Data& data) {
  const std::string path(TextOf(data, "path"));
  const auto read = [path](auto&& use) {
    std::FILE* const file = std::fopen(path.c_str(), "r");
    if (file == nullptr) throw std::runtime_error("cannot open " + path);
    char* line = nullptr;
    std::size_t room = 0;
    for (::ssize_t size; (size = ::getline(&line, &room, file)) >= 0;) {
      use(std::string_view(line, static_cast<std::size_t>(size)));
    }
    std::free(line);
    std::fclose(file);
  };
  return {nullptr, [read] { read([](std::string_view) {}); },
          [read] {
            std::string all;
            read([&](std::string_view line) { all.append(line); });
            return all;
          }};
}

bool IsSpace(char ch) { return ch == ' ' || (ch >= '\t' && ch <= '\r'); }

// Calls use(first, last) for every run without white space.
template <class Use>
void Split(std::string_view text, Use&& use) {
  const char* at = text.data();
  const char* const end = at + text.size();
  for (;;) {
    while (at != end && IsSpace(*at)) ++at;
    if (at == end) return;
    const char* const first = at;
    while (at != end && !IsSpace(*at)) ++at;
    use(first, at);
  }
}

Prepared FromChars(const Data& data) {
  const auto text = std::make_shared<std::string>(TextOf(data, "text"));
  const auto numbers = Kept<std::vector<double>>();
  const auto call = [=] {
    numbers->clear();
    Split(*text, [&](const char* first, const char* last) {
      double value = 0;
      std::from_chars(first, last, value);
      numbers->push_back(value);
    });
  };
  return {nullptr, call, [numbers] {
            return std::string(reinterpret_cast<const char*>(numbers->data()),
                               numbers->size() * sizeof(double));
          }};
}

Prepared FindStd(const Data& data) {
  const auto text = std::make_shared<std::string>(TextOf(data, "text"));
  const std::string wanted(TextOf(data, "wanted"));
  const auto place = Kept<std::size_t>();
  return {nullptr, [=] { *place = text->find(wanted); },
          [place] { return std::to_string(*place); }};
}

Prepared CountStd(const Data& data) {
  const auto text = std::make_shared<std::string>(TextOf(data, "text"));
  const auto count = Kept<std::ptrdiff_t>();
  return {nullptr, [=] { *count = std::count(text->begin(), text->end(), 'e'); },
          [count] { return std::to_string(*count); }};
}

Prepared ReplaceStd(const Data& data) {
  const auto text = std::make_shared<std::string>(TextOf(data, "text"));
  const std::string replaced(TextOf(data, "replaced")), by(TextOf(data, "by"));
  const auto result = Kept<std::string>();
  const auto call = [=] {
    std::string fresh;
    fresh.reserve(text->size());
    std::size_t from = 0;
    for (std::size_t at; (at = text->find(replaced, from)) != std::string::npos;) {
      fresh.append(*text, from, at - from).append(by);
      from = at + replaced.size();
    }
    *result = std::move(fresh.append(*text, from));
  };
  return {nullptr, call, [result] { return *result; }};
}

using CaseConversion = decltype(&ucasemap_utf8ToUpper);

class IcuCase {
 public:
  IcuCase() {
    UErrorCode error = U_ZERO_ERROR;
    map_.reset(ucasemap_open("", 0, &error));
    if (U_FAILURE(error)) throw std::runtime_error("ICU has no case map");
  }
  void Convert(CaseConversion convert, const std::string& text, std::string& to) const {
    to.resize(text.size() * 2);
    UErrorCode error = U_ZERO_ERROR;
    const int size = convert(map_.get(), to.data(), static_cast<int>(to.size()), text.data(),
                             static_cast<int>(text.size()), &error);
    if (U_FAILURE(error)) throw std::runtime_error("ICU cannot convert");
    to.resize(static_cast<std::size_t>(size));
  }

 private:
  struct Close {
    void operator()(UCaseMap* map) const { ucasemap_close(map); }
  };
  std::unique_ptr<UCaseMap, Close> map_;
};

Prepared CaseIcu(const Data& data, CaseConversion convert) {
  const auto text = std::make_shared<std::string>(TextOf(data, "text"));
  const auto result = Kept<std::string>();
  const auto icu = Kept<IcuCase>();
  return {nullptr, [=] { icu->Convert(convert, *text, *result); }, [result] { return *result; }};
}

// Both texts folded, then a plain search: what ICU offers that is fastest.
Prepared FindIcu(const Data& data) {
  const auto text = std::make_shared<std::string>(TextOf(data, "text"));
  const std::string wanted(TextOf(data, "wanted"));
  const auto icu = Kept<IcuCase>();
  const auto place = Kept<std::size_t>();
  const auto folded = Kept<std::string>();
  const auto call = [=] {
    std::string folded_wanted;
    icu->Convert(ucasemap_utf8FoldCase, *text, *folded);
    icu->Convert(ucasemap_utf8FoldCase, wanted, folded_wanted);
    *place = folded->find(folded_wanted);
  };
  return {nullptr, call, [place] { return std::to_string(*place); }};
}

using Strings = std::vector<std::string>;

Strings LinesOf(std::string_view text) {
  Strings lines;
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    lines.emplace_back(text.substr(0, end));
    text.remove_prefix(end + 1);
  }
  return lines;
}

Prepared SortStd(const Data& data) {
  const auto unsorted = std::make_shared<Strings>(LinesOf(TextOf(data, "texts")));
  const auto texts = Kept<Strings>();
  return {[=] { *texts = *unsorted; }, [=] { std::sort(texts->begin(), texts->end()); },
          [texts] {
            std::string lines;
            for (const std::string& text : *texts) lines.append(text).append("\n");
            return lines;
          }};
}

Prepared Snprintf(const Data&) {
  struct Line {
    char text[64];
  };
  const auto line = Kept<Line>();
  const auto call = [line] {
    for (int i = 0; i < kFormatCalls; ++i) {
      std::snprintf(line->text, sizeof line->text, "%5d %-10s %.3f", i, "sample", i * 0.37);
    }
  };
  return {nullptr, call, [line] { return std::string(line->text); }};
}

}  // namespace
}  // namespace vela::bench

int main() {
  using namespace vela::bench;
  Serve({{"std::getline", StdGetline},
         {"getline", PosixGetline},
         {"from_chars", FromChars},
         {"std::find", FindStd},
         {"std::count", CountStd},
         {"std::replace", ReplaceStd},
         {"icu_upper", [](const Data& data) { return CaseIcu(data, ucasemap_utf8ToUpper); }},
         {"icu_lower", [](const Data& data) { return CaseIcu(data, ucasemap_utf8ToLower); }},
         {"icu_find", FindIcu},
         {"std::sort", SortStd},
         {"snprintf", Snprintf}});
}
