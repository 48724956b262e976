#include "host/library.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "frame/interface/type_words.h"

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

}  // namespace
