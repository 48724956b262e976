#include "tesselc/catalogue.h"

#include <algorithm>
#include <ostream>
#include <set>
#include <stdexcept>
#include <utility>

#include "tesselc/catalogue_parser.h"
#include "tesselc/catalogue_text.h"
#include "tesselc/diagnostic.h"

namespace tesselc {

namespace {

void PrintDocumentation(std::ostream& out, const std::string& text, const char* indent) {
  std::size_t begin = 0;
  while (begin < text.size()) {
    const std::size_t end = std::min(text.find('\n', begin), text.size());
    out << indent << text.substr(begin, end - begin) << "\n";
    begin = end + 1;
  }
}

void PrintMember(std::ostream& out, const CatalogueMember& member) {
  out << "  " << member.signature << "\n";
  PrintDocumentation(out, member.documentation, "      ");
}

void PrintClass(std::ostream& out, const CatalogueClass& shown) {
  out << shown.name << (shown.base.empty() ? "" : " : ") << shown.base << "\n";
  PrintDocumentation(out, shown.documentation, "    ");
  for (const CatalogueMember& member : shown.members) PrintMember(out, member);
}

}  // namespace

std::size_t CatalogueMember::RequiredCount() const {
  const auto optional = std::find_if(parameters.begin(), parameters.end(), [](const Parameter& p) {
    return p.variadic || p.default_value;
  });
  return static_cast<std::size_t>(optional - parameters.begin());
}

const CatalogueMember* CatalogueClass::Find(std::string_view member) const {
  const auto found = std::find_if(members.begin(), members.end(),
                                  [member](const auto& m) { return m.name == member; });
  return found == members.end() ? nullptr : &*found;
}

const Catalogue& Catalogue::Get() {
  static SourceSet sources;
  static const Catalogue catalogue = [] {
    try {
      return Parse(sources, std::string(kCatalogueText));
    } catch (const ScriptMistake& mistake) {
      throw std::logic_error(Format(mistake.diagnostic(), sources));
    }
  }();
  return catalogue;
}

Catalogue Catalogue::Parse(SourceSet& sources, std::string text) {
  const FileId file = sources.Add("catalogue.tcd", std::move(text));
  Catalogue catalogue;
  catalogue.sources_ = &sources;
  catalogue.classes_ = ParseCatalogue(sources, file);
  return catalogue;
}

const CatalogueClass* Catalogue::FindClass(std::string_view name) const {
  const auto found = std::find_if(classes_.begin(), classes_.end(),
                                  [name](const CatalogueClass& c) { return c.name == name; });
  return found == classes_.end() ? nullptr : &*found;
}

const CatalogueClass* Catalogue::FindClass(TypeName type) const {
  return FindClass(Spelling(type));
}

std::vector<const CatalogueClass*> Catalogue::Chain(std::string_view class_name) const {
  std::vector<const CatalogueClass*> chain;
  for (const CatalogueClass* at = FindClass(class_name); at; at = FindClass(at->base)) {
    if (std::find(chain.begin(), chain.end(), at) != chain.end()) break;
    chain.push_back(at);
  }
  return chain;
}

std::vector<const CatalogueMember*> Catalogue::FindMembers(std::string_view class_name,
                                                           std::string_view member) const {
  std::vector<const CatalogueMember*> found;
  for (const CatalogueClass* searched : Chain(class_name)) {
    for (const CatalogueMember& candidate : searched->members) {
      if (candidate.name == member) found.push_back(&candidate);
    }
    if (!found.empty()) break;
  }
  return found;
}

std::vector<std::string_view> Catalogue::MemberNames(std::string_view class_name) const {
  std::set<std::string_view> names;
  for (const CatalogueClass* searched : Chain(class_name)) {
    for (const CatalogueMember& member : searched->members) names.insert(member.name);
  }
  return {names.begin(), names.end()};
}

bool Catalogue::PrintMembers(std::ostream& out, std::string_view filter) const {
  if (filter.empty()) {
    for (const CatalogueClass& shown : classes_) {
      if (&shown != &classes_.front()) out << "\n";
      PrintClass(out, shown);
    }
    return true;
  }
  const std::size_t dot = filter.find('.');
  if (dot != std::string_view::npos) {
    const auto members = FindMembers(filter.substr(0, dot), filter.substr(dot + 1));
    for (const CatalogueMember* member : members) PrintMember(out, *member);
    return !members.empty();
  }
  const auto chain = Chain(filter);
  for (const CatalogueClass* shown : chain) {
    if (shown != chain.front()) out << "\n";
    PrintClass(out, *shown);
  }
  return !chain.empty() || PrintMembersNamed(out, filter);
}

bool Catalogue::PrintMembersNamed(std::ostream& out, std::string_view name) const {
  bool found = false;
  for (const CatalogueClass& owner : classes_) {
    if (owner.Find(name) == nullptr) continue;
    out << (found ? "\n" : "") << owner.name << "\n";
    found = true;
    for (const CatalogueMember& member : owner.members) {
      if (member.name == name) PrintMember(out, member);
    }
  }
  return found;
}

}  // namespace tesselc
