#include "host/library.h"

#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <new>

#include "frame/interface/missing_value.h"
#include "frame/interface/type_words.h"
#include "host/call_frame.h"
#include "host/object_ref.h"

#if !defined(_WIN32)
#include <dlfcn.h>
#endif

#if !defined(_WIN32) && !defined(__SANITIZE_ADDRESS__)
// Allocation as the library under test sees it too.
static thread_local bool memory_is_out = false;

void* operator new(std::size_t bytes) {
  void* const memory = memory_is_out ? nullptr : std::malloc(bytes);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
#endif

namespace {

using testing::HasSubstr;
using vela::host::Library;

TEST(Library, ReportsAFileThatIsNotThere) {
  Library library;
  EXPECT_FALSE(library.Load("no/such/library.bin"));
  EXPECT_FALSE(library.IsLoaded());
  EXPECT_THAT(library.GetError(), HasSubstr("no/such/library.bin"));
}

TEST(Library, ReportsAMissingExport) {
#if defined(_WIN32)
  const char* const other_library = "kernel32.dll";
#else
  const char* const other_library = "libc.so.6";
#endif
  Library library;
  EXPECT_FALSE(library.Load(other_library));
  EXPECT_THAT(library.GetError(), HasSubstr("VELA_CRT_OBJ"));
}

TEST(Library, CreatesNothingWhileUnloaded) {
  Library library;
  library.Configure();
  library.SetDebugMode(1);
  EXPECT_EQ(library.Create(kTypeInt), nullptr);
  EXPECT_EQ(Library::TakeErrorReport(), 0);
}

#if !defined(_WIN32) && !defined(__SANITIZE_ADDRESS__)
TEST(Library, LoadsAndAnswersWithoutMemory) {
  Library library;
  memory_is_out = true;
  EXPECT_NE(dlopen("libVELABaseTypes.so", RTLD_NOW), nullptr);
  memory_is_out = false;
  ASSERT_TRUE(library.Load()) << library.GetError();
  constexpr unsigned kVector = kTypeDouble | kFlagVector;
  memory_is_out = true;
  library.Configure();
  EXPECT_EQ(library.Create(kVector), nullptr);
  memory_is_out = false;
  const vela::host::ObjectRef vector(library.Create(kVector));
  ASSERT_TRUE(vector);
  CTypeBase* owner = nullptr;
  EXPECT_NE(vector->FindMember("Sum", 0, &owner, 0), nullptr);

  // A sort that has no memory for the positions changes nothing, missing values included.
  const double values[] = {3, kMissingValue, 1};
  ASSERT_EQ(vector->InitalizeFromMemory(values, 3), 0);
  const vela::host::ObjectRef positions(library.Create(kTypeUnsignedInt | kFlagVector));
  const CClassMember* const sort = vector->FindMember("Sort", 0, &owner, 0);
  vela::host::CallFrame frame;
  frame.AddInt(1);
  frame.AddInt(1);
  frame.AddObject(positions.Get());
  frame.AddInt(0);
  memory_is_out = true;
  const int status = owner->DoMethod(sort->GetHandler(), &frame);
  memory_is_out = false;
  EXPECT_EQ(status, status::kCannotResize);
  for (int i = 0; i < 3; ++i) {
    double value = 0;
    const MSOINDICES at = MSOINDICES::Element(i);
    vector->GetDouble(&at, value);
    EXPECT_EQ(value, values[i]);
  }
}
#endif

}  // namespace
