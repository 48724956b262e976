// However a member is called, it answers with a status that has a name, and a member that is given
// more arguments than it takes says so and gives no result.
#include <filesystem>
#include <functional>
#include <set>
#include <string>

#include "member_fixture.h"
#include "member_names.h"

namespace vela::testing {
namespace {

// Every type word that the factory makes an object of: each type id with each container flag, and
// with each pair of them.
std::vector<unsigned> AcceptedTypeWords() {
  const unsigned flags[] = {
      0,          kFlagVector,      kFlagDataset, kFlagMatrix, kFlagMatrixObject,
      kFlagCurve, kFlagCategorical, kFlagBitField};
  std::set<unsigned> words;
  for (unsigned id = 0; id <= kLastTypeId + 1; ++id) {
    for (const unsigned one : flags) {
      for (const unsigned other : flags) {
        if (Make(id | one | other, 2)) words.insert(id | one | other);
      }
    }
  }
  return {words.begin(), words.end()};
}

std::set<std::string> EveryName() {
  std::set<std::string> names = {"Get_conj"};
  for (const auto* table :
       {&kVectorNames, &kTypedVectorNames, &kStringNames, &kFileNames, &kStdioNames, &kDatasetNames,
        &kCurveNames, &kMatrixNames, &kMatrixObjectNames, &kStringArrayNames, &kVariantNames,
        &kComplexNames, &kComplexDatasetNames, &kCategoricalNames, &kPictureNames, &kPointNames}) {
    names.insert(table->begin(), table->end());
  }
  return names;
}

bool HasName(int code) {
  static const std::set<int> named = {status::kNoRow,
                                      status::kOk,
                                      status::kFailed,
                                      status::kUnresolved,
                                      status::kBadArguments,
                                      status::kBadIndex,
                                      status::kTooLarge,
                                      status::kBadValue,
                                      status::kNoData,
                                      status::kOutOfRange,
                                      status::kBadKernel,
                                      status::kWindowTooSmall,
                                      status::kOtherElementType,
                                      status::kNullText,
                                      status::kNotOnRow,
                                      status::kNotOnOneRow,
                                      status::kCannotResize,
                                      status::kArrayFailed,
                                      status::kAutomationFailed,
                                      status::kFormatFailed,
                                      status::kNegativeElement,
                                      status::kUnsupported,
                                      status::kNotAnObject,
                                      status::kNotContiguous};
  return named.contains(code);
}

// Calls f(object, owner, row) for every member of an object of every type word, each time on a new
// object of two elements, rows or layers.
template <class F>
void ForEachMember(F&& f) {
  const std::set<std::string> names = EveryName();
  for (const unsigned type_word : AcceptedTypeWords()) {
    for (const std::string& name : names) {
      const ObjectRef object = Make(type_word, 2);
      ASSERT_TRUE(object);
      CTypeBase* owner = nullptr;
      const CClassMember* row = object->FindMember(name.c_str(), 0, &owner, 0);
      if (row == nullptr) continue;
      ASSERT_NE(owner, nullptr);
      SCOPED_TRACE(::testing::Message() << std::hex << type_word << " " << name);
      f(object, *owner, *row);
    }
  }
}

// Some of the calls open files by odd names.
class CallShape : public ::testing::Test {
 protected:
  CallShape() {
    std::filesystem::create_directories(folder_);
    std::filesystem::current_path(folder_);
  }
  ~CallShape() override {
    std::filesystem::current_path(before_);
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }

 private:
  std::filesystem::path folder_ = std::filesystem::temp_directory_path() / "vela_call_shapes";
  std::filesystem::path before_ = std::filesystem::current_path();
};

TEST_F(CallShape, WithoutAFrame) {
  int members = 0;
  ForEachMember([&](const ObjectRef&, CTypeBase& owner, const CClassMember& row) {
    ++members;
    const int code = row.IsProperty() ? owner.DoPropertyGet(row.GetHandler(), nullptr)
                                      : owner.DoMethod(row.GetHandler(), nullptr);
    EXPECT_NE(code, status::kOk);
    EXPECT_TRUE(HasName(code)) << code;
    if (!row.IsProperty()) return;
    const int set = owner.DoPropertySet(row.GetSetter(), nullptr);
    EXPECT_TRUE(set == status::kOk || set == status::kUnsupported) << set;
  });
  EXPECT_GT(members, 3000) << "the sweep must not become empty unnoticed";
}

TEST_F(CallShape, TooManyArguments) {
  const std::set<std::string> variadic = {"Format"};
  // These answer a wrong number of arguments with 1.
  const std::set<std::string> fails = {"Delete", "ReleaseBuffer"};
  ForEachMember([&](const ObjectRef& object, CTypeBase& owner, const CClassMember& row) {
    if (variadic.contains(row.GetName())) return;
    const bool is_string = object->GetTypeID() == kTypeString;
    const bool is_complex = object->GetTypeID() == kTypeComplex;
    const bool is_vt = std::string("vt") == row.GetName();
    const bool fails_here = (row.IsProperty() && !is_vt) ||
                            (is_string && fails.contains(row.GetName())) ||
                            (is_complex && std::string("Conjugate") == row.GetName());
    CallFrame frame;
    for (int i = 0; i < 40; ++i) frame.AddInt(1);
    const int code = row.IsProperty() ? owner.DoPropertyGet(row.GetHandler(), &frame)
                                      : owner.DoMethod(row.GetHandler(), &frame);
    EXPECT_TRUE(code == (fails_here ? status::kFailed : status::kBadArguments) ||
                code == status::kUnsupported)
        << code;
    // A string member that takes an exact number leaves the result 0.
    EXPECT_TRUE(frame.Kind() == CallFrame::ResultKind::kNone ||
                (is_string && frame.ResultInt() == 0));
    if (!row.IsProperty()) return;
    const int set = owner.DoPropertySet(row.GetSetter(), &frame);
    EXPECT_TRUE(set == status::kBadArguments || set == status::kUnsupported) << set;
  });
}

TEST_F(CallShape, EveryOtherOddCall) {
  const ObjectRef target = VectorOf<double>({1, 2, 3});
  const std::vector<std::function<void(CallFrame&)>> shapes = {
      [](CallFrame&) {},
      [](CallFrame& f) { f.AddNull(); },
      [](CallFrame& f) {
        for (int i = 0; i < 12; ++i) f.AddInt(i - 3);
      },
      [](CallFrame& f) {
        for (int i = 0; i < 4; ++i) f.AddNull();
      },
      [](CallFrame& f) { f.AddText("text"); },
      [](CallFrame& f) {
        f.AddText("a");
        f.AddText("b");
        f.AddInt(-5);
      },
      [](CallFrame& f) {
        f.AddInt(INT32_MIN);
        f.AddInt(INT32_MAX);
      },
      [](CallFrame& f) {
        f.AddDouble(1e300);
        f.AddDouble(-1e300);
        f.AddDouble(std::nan(""));
      },
      [&](CallFrame& f) { f.AddObject(target.Get()); },
      [&](CallFrame& f) {
        f.AddObject(target.Get());
        f.AddObject(target.Get());
        f.AddInt(1);
      },
      [&](CallFrame& f) {
        f.AddObject(target.Get());
        f.AddInt(-1);
        f.AddInt(INT32_MAX);
      },
      [&](CallFrame& f) {
        f.AddObject(target.Get());
        for (int i = 0; i < 6; ++i) f.AddDouble(i);
      },
      [&](CallFrame& f) {
        f.AddInt(1);
        f.AddInt(1);
        f.AddObject(target.Get());
        f.AddInt(0);
      },
  };
  const MSOINDICES places[] = {
      {}, MSOINDICES::Object(0), MSOINDICES::Object(99), MSOINDICES::Object(-7), {6, 1, 1, 1}};
  ForEachMember([&](const ObjectRef&, CTypeBase& owner, const CClassMember& row) {
    for (const auto& shape : shapes) {
      for (const MSOINDICES& place : places) {
        CallFrame frame;
        frame.GetIndeces() = place;
        shape(frame);
        const int code = owner.DoMethod(row.GetHandler(), &frame);
        EXPECT_TRUE(HasName(code)) << code;
      }
    }
  });
}

}  // namespace
}  // namespace vela::testing
