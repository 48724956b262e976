#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

#include "tesselc/source.h"
#include "tesselc/syntax_tree.h"

namespace tesselc {

// One member of a built-in class. A name may be declared several times, with other parameters.
struct CatalogueMember {
  bool is_method = true;  // otherwise a property
  bool is_const = false;  // a method that leaves its object as it is
  Type type;              // a method's result, void for none; a property's own type
  std::string name;
  std::vector<Parameter> parameters;
  std::string signature;      // as declared, without the ';'
  std::string documentation;  // lines joined by line feeds

  // How many arguments must be given at least. The members fill in the rest from the defaults.
  std::size_t RequiredCount() const;
  bool IsVariadic() const { return !parameters.empty() && parameters.back().variadic; }
  // A property that only reads is declared const.
  bool IsReadOnly() const { return !is_method && type.is_const; }
};

struct CatalogueClass {
  std::string name;
  std::string base;  // empty for none
  std::string documentation;
  std::vector<CatalogueMember> members;  // in the order of the declaration

  const CatalogueMember* Find(std::string_view member) const;
};

// The signatures and documentation of everything the library's objects can do. They come from one
// declaration file in the script language, built into the program.
class Catalogue {
 public:
  // The built-in one, parsed at the first call. Throws std::logic_error, naming the place, if its
  // text is faulty.
  static const Catalogue& Get();
  // From other text. Throws a ScriptMistake whose file is the one added to `sources`.
  static Catalogue Parse(SourceSet& sources, std::string text);

  // All parameters' default values lie in this file of this set.
  const SourceSet& sources() const { return *sources_; }
  const std::vector<CatalogueClass>& classes() const { return classes_; }

  // Null when there is none of that name.
  const CatalogueClass* FindClass(std::string_view name) const;
  // The class whose members an object of the type has; null for types that have none.
  const CatalogueClass* FindClass(TypeName type) const;
  // The overloads of one name, in the order of their declaration, from the first class of the chain
  // (the class, its base, that one's base ...) that has the name. Empty when none has.
  std::vector<const CatalogueMember*> FindMembers(std::string_view class_name,
                                                  std::string_view member) const;
  // Every name an object of the class answers to, sorted, each once: for completion.
  std::vector<std::string_view> MemberNames(std::string_view class_name) const;

  // Signatures and documentation. The filter is empty for everything, "type", "type.member", or the
  // name of a member or function, of whatever type; a type's bases are included. False, with
  // nothing printed, when nothing fits.
  bool PrintMembers(std::ostream& out, std::string_view filter) const;

 private:
  Catalogue() = default;

  bool PrintMembersNamed(std::ostream& out, std::string_view name) const;
  // The class and its bases, in the order in which a name is looked up.
  std::vector<const CatalogueClass*> Chain(std::string_view class_name) const;

  const SourceSet* sources_ = nullptr;
  std::vector<CatalogueClass> classes_;
};

}  // namespace tesselc
