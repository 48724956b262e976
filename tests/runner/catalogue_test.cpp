#include "tesselc/catalogue.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

#include "tesselc/diagnostic.h"
#include "tests/members/member_names.h"
#include "tests/runner/tree_printer.h"

namespace tesselc {
namespace {

using namespace vela::testing;

struct Table {
  const char* type;
  const char* base;
  Names names;
};
const Table kTables[] = {
    {"string", "", kStringNames},
    {"StringArray", "vectorbase", Words("Find Replace InsertValue")},
    {"_VARIANT", "", kVariantNames},
    {"complex", "", kComplexNames},
    {"file", "", kFileNames},
    {"stdioFile", "file", kStdioNames},
    {"vectorbase", "", kVectorNames},
    {"vector", "vectorbase", kTypedVectorNames},
    {"Dataset", "vector", kDatasetNames},
    {"Curve", "Dataset", kCurveNames},
    {"Categorical", "Dataset", kCategoricalNames},
    {"point", "", kPointNames},
    {"fpoint", "", kPointNames},
    {"fpoint3d", "", kPointNames},
    {"matrixbase", "", kMatrixNames},
    {"matrix", "matrixbase", {}},
    {"MatrixObject", "matrixbase", kMatrixObjectNames},
    {"Picture", "", kPictureNames},
    {"DeviceContext", "", Words("SetSize GetWidth GetHeight Clear Line GetPixel Save")},
    {"host", "",
     Words("PictureFromMatrix MatrixFromPicture BitmapFromMatrix IconFromMatrix MetafileFromLines "
           "EnhMetafileFromLines DeleteHandle OpenWorksheet SaveWorksheet CloseWorksheet "
           "UndoWorksheet CountColumns IsWorksheetModified")},
    {"functions", "",
     Words("print printf assert exit clock abs sqrt exp log log10 sin cos tan asin acos atan atan2 "
           "sinh cosh tanh floor ceil round fmod pow min max isnan ismissing")},
};

TEST(Catalogue, NamesEveryMember) {
  const Catalogue& catalogue = Catalogue::Get();
  for (const Table& table : kTables) {
    const CatalogueClass* found = catalogue.FindClass(table.type);
    ASSERT_NE(found, nullptr) << table.type;
    EXPECT_EQ(found->base, table.base) << table.type;
    Names declared;
    for (const CatalogueMember& member : found->members) {
      const bool is_known = std::count(declared.begin(), declared.end(), member.name) > 0;
      if (!is_known) declared.push_back(member.name);
    }
    Names expected = table.names;
    if (found->name == "StringArray") {
      expected.insert(expected.end(), kStringArrayNames.begin(), kStringArrayNames.end());
    }
    std::sort(declared.begin(), declared.end());
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(declared, expected) << table.type;
  }
}

TEST(Catalogue, DocumentsEveryMemberAndKeepsToPlainDefaults) {
  for (const CatalogueClass& each : Catalogue::Get().classes()) {
    EXPECT_FALSE(each.documentation.empty()) << each.name;
    for (const CatalogueMember& member : each.members) {
      EXPECT_FALSE(member.documentation.empty()) << each.name << "." << member.name;
      for (const Parameter& parameter : member.parameters) {
        if (!parameter.default_value) continue;
        // A literal, or one with a sign: a caller can evaluate it without a script around it.
        EXPECT_LE(parameter.default_value->height, 2) << each.name << "." << member.name;
      }
    }
  }
}

TEST(Catalogue, FindsOverloadsAlongTheBases) {
  const Catalogue& catalogue = Catalogue::Get();
  const auto count = [&catalogue](const char* type, const char* member) {
    return catalogue.FindMembers(type, member).size();
  };
  EXPECT_EQ(count("string", "Find"), 2u);
  EXPECT_EQ(count("string", "TrimLeft"), 3u);
  EXPECT_EQ(count("vector", "Sum"), 1u);
  EXPECT_EQ(count("Curve", "Sum"), 1u);
  EXPECT_EQ(count("vector", "sum"), 0u);
  EXPECT_EQ(count("nothing", "Sum"), 0u);
  EXPECT_TRUE(catalogue.FindMembers("string", "Format")[0]->IsVariadic());
  EXPECT_FALSE(catalogue.FindMembers("vector", "GetSize")[0]->IsVariadic());
  EXPECT_EQ(catalogue.FindMembers("string", "Find")[0]->parameters[0].type.name, TypeName::kChar);
  EXPECT_EQ(catalogue.FindClass(TypeName::kStdioFile)->name, "stdioFile");
  EXPECT_EQ(catalogue.FindClass(TypeName::kDouble), nullptr);

  const auto names = catalogue.MemberNames("StringArray");
  EXPECT_EQ(names.size(), 64u);  // 5 of its own and the 59 of every vector
  EXPECT_TRUE(std::is_sorted(names.begin(), names.end()));
}

TEST(Catalogue, TellsDefaultsAndKinds) {
  const Catalogue& catalogue = Catalogue::Get();
  const CatalogueMember& find = *catalogue.FindMembers("vectorbase", "Find")[0];
  EXPECT_EQ(find.RequiredCount(), 2u);
  ASSERT_EQ(find.parameters.size(), 7u);
  EXPECT_EQ(ToText(*find.parameters[2].default_value), "NANUM");
  EXPECT_EQ(ToText(*find.parameters[5].default_value), "(- 1)");
  EXPECT_EQ(Spelling(find.parameters[0].type), "vector<uint>&");
  const CatalogueMember& format = *catalogue.FindMembers("string", "Format")[0];
  EXPECT_EQ(format.RequiredCount(), 1u);
  EXPECT_TRUE(format.IsVariadic());
  EXPECT_EQ(format.type.name, TypeName::kVoid);
  EXPECT_FALSE(catalogue.FindMembers("complex", "m_re")[0]->is_method);
  EXPECT_FALSE(catalogue.FindMembers("complex", "m_re")[0]->IsReadOnly());
  EXPECT_TRUE(catalogue.FindMembers("_VARIANT", "vt")[0]->IsReadOnly());
}

TEST(Catalogue, PrintsWhatIsAskedFor) {
  const auto printed = [](const char* filter) {
    std::ostringstream out;
    const bool found = Catalogue::Get().PrintMembers(out, filter);
    EXPECT_EQ(found, !out.str().empty()) << filter;
    return out.str();
  };
  EXPECT_EQ(printed("vector.Sum"),
            "  int Sum(numeric& total) const\n      Adds up every element that is not missing.\n");
  EXPECT_EQ(printed("vectorbase.Find").find('\n'), printed("vectorbase.Find").find("const\n") + 5);
  EXPECT_TRUE(printed("stdioFile").starts_with("stdioFile : file\n"));
  EXPECT_NE(printed("stdioFile").find("\nfile\n"), std::string::npos);
  EXPECT_NE(printed("").find("\nPicture\n"), std::string::npos);
  EXPECT_EQ(printed("nothing"), "");
  EXPECT_EQ(printed("vector.nothing"), "");
  EXPECT_EQ(printed("vector."), "");
}

TEST(Catalogue, ReadsDeclarations) {
  SourceSet sources;
  const Catalogue catalogue =
      Catalogue::Parse(sources,
                       "// not documentation\n"
                       "/// A thing.\n/// Of two lines.\n"
                       "class thing : other {\n"
                       "  /// Does.\r\n  int Do(buffer p,\n         any... rest);\n"
                       "  const int size;\n}\n"
                       "class other {} class loop : loop {}");
  const CatalogueClass* thing = catalogue.FindClass("thing");
  ASSERT_NE(thing, nullptr);
  EXPECT_EQ(thing->documentation, "A thing.\nOf two lines.");
  ASSERT_EQ(thing->members.size(), 2u);
  EXPECT_EQ(thing->members[0].documentation, "Does.");
  EXPECT_EQ(thing->members[0].signature, "int Do(buffer p, any... rest)");
  EXPECT_EQ(thing->members[1].documentation, "");
  EXPECT_TRUE(catalogue.FindMembers("loop", "x").empty());
}

TEST(Catalogue, RefusesFaultyText) {
  for (const char* text : {"class", "class a", "class a {", "class a { int f( }", "int x;",
                           "class a { foo x; }", "class a { int f() }", "/* class"}) {
    SourceSet sources;
    EXPECT_THROW(Catalogue::Parse(sources, text), ScriptMistake) << text;
  }
}

}  // namespace
}  // namespace tesselc
