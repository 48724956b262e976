#include "tesselc/prompt/prompt_help.h"

#include <set>
#include <sstream>

#include "tesselc/catalogue.h"
#include "tesselc/run/builtins.h"
#include "tesselc/words.h"

namespace tesselc {
namespace {

constexpr std::string_view kHelp =
    "Type statements as in a script; an expression without ';' shows its value.\n"
    "  help string         the members of a type\n"
    "  help vector.Sort    one member; also by a variable: help v, help v.Sort\n"
    "  help sqrt           a function\n"
    "The Tab key completes names, the arrow keys bring earlier lines back, Ctrl-C discards a "
    "line.\n";

std::string_view Trimmed(std::string_view text) {
  const std::size_t begin = std::min(text.find_first_not_of(" \t"), text.size());
  text.remove_prefix(begin);
  return text.substr(0, text.find_last_not_of(" \t;()") + 1);
}

std::size_t WordBegin(std::string_view text) {
  std::size_t begin = text.size();
  while (begin > 0 && IsWordCharacter(text[begin - 1])) --begin;
  return begin;
}

// The class that explains a word: a variable's, or the type of that name.
const CatalogueClass* ClassOf(std::string_view word, const Compiler& compiler) {
  const StaticType type = compiler.TypeOfGlobal(word);
  if (!type.IsVoid()) return Catalogue::Get().FindClass(type.name);
  return Catalogue::Get().FindClass(word);
}

Completion Matching(std::size_t begin, std::string_view front, const std::set<std::string>& names) {
  Completion completion{begin, {}};
  for (const std::string& name : names) {
    if (name.starts_with(front)) completion.words.push_back(name);
  }
  return completion;
}

}  // namespace

Completion CompleteName(std::string_view text, const Compiler& compiler) {
  const std::size_t begin = WordBegin(text);
  const std::string_view front = text.substr(begin);
  std::set<std::string> names;
  if (begin > 0 && text[begin - 1] == '.') {
    const std::string_view object = text.substr(0, begin - 1);
    if (const auto* owner = ClassOf(object.substr(WordBegin(object)), compiler)) {
      for (const auto name : Catalogue::Get().MemberNames(owner->name)) names.emplace(name);
    }
    return Matching(begin, front, names);
  }
  if (front.empty()) return {};
  for (const std::string& name : compiler.GlobalNames()) names.insert(name);
  for (const std::string_view name : BuiltinNames()) names.emplace(name);
  for (const Word& word : AllWords()) {
    if (!word.catalogue_only) names.emplace(word.text);
  }
  return Matching(begin, front, names);
}

bool ShowHelp(std::string_view line, const Compiler& compiler, Output& output) {
  constexpr std::string_view kCommand = "help";
  line = Trimmed(line);
  if (!line.starts_with(kCommand)) return false;
  std::string_view subject = line.substr(kCommand.size());
  if (!subject.empty() && subject.front() != ' ' && subject.front() != '\t') return false;
  subject = Trimmed(subject);
  if (subject.empty()) {
    output.Write(kHelp);
    return true;
  }
  const std::size_t dot = std::min(subject.find('.'), subject.size());
  const CatalogueClass* owner = ClassOf(subject.substr(0, dot), compiler);
  std::string filter(owner ? std::string_view(owner->name) : subject.substr(0, dot));
  filter += subject.substr(dot);
  std::ostringstream text;
  if (Catalogue::Get().PrintMembers(text, filter)) {
    output.Write(text.str());
  } else {
    output.WriteError("there is no help on '" + std::string(subject) + "'\n");
  }
  return true;
}

}  // namespace tesselc
