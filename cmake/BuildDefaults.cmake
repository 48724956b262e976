# What every target of the project is compiled with, and where it is put.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

# One folder for everything that runs: the runner looks for the library beside itself, and so
# does the Windows loader.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/lib")
set(CMAKE_BUILD_WITH_INSTALL_RPATH ON)
set(CMAKE_INSTALL_RPATH "$ORIGIN")

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${CCACHE_PROGRAM}")
endif()

set(VELA_SANITIZE "" CACHE STRING "Sanitizers to build with, as -fsanitize takes them")
if(VELA_SANITIZE)
  add_compile_options(-fsanitize=${VELA_SANITIZE} -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${VELA_SANITIZE})
endif()

if(WIN32)
  # Objects and exceptions cross the boundaries between the DLLs, so all of them share one C++
  # runtime: the shared one, which is copied beside them.
  add_link_options(-shared-libgcc)
  add_compile_definitions(_WIN32_WINNT=0x0A00)
  # g++ would join the two to a call of MinGW's sincos, which is not among the accurate functions
  # that WindowsRuntime.cmake sees to.
  add_compile_options(-fno-builtin-sin -fno-builtin-cos)
else()
  add_link_options(-Wl,-z,defs)
endif()

# vela_defaults(TARGET): the project's include roots and warnings. For every target of our own.
function(vela_defaults target)
  target_include_directories(${target} PRIVATE "${PROJECT_SOURCE_DIR}"
                                               "${PROJECT_SOURCE_DIR}/src")
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Werror)
  if(WIN32)
    # Windows binaries are named without the Unix prefix, as hosts ask for them.
    get_target_property(type ${target} TYPE)
    if(type STREQUAL SHARED_LIBRARY)
      set_target_properties(${target} PROPERTIES PREFIX "")
    endif()
  endif()
endfunction()

# vela_batches(TARGET SIZE): compiles so many files of the target at a time, unless VELA_BATCHES is
# off. Most of what a small file costs is its headers, so a first build takes half the time; switch
# it off to see each file compile alone.
option(VELA_BATCHES "Compile small files in batches" ON)
function(vela_batches target size)
  set_target_properties(${target} PROPERTIES UNITY_BUILD ${VELA_BATCHES}
                                             UNITY_BUILD_BATCH_SIZE ${size})
endfunction()

# vela_static_library(TARGET): one static library of all .cpp files of the calling folder.
function(vela_static_library target)
  file(GLOB sources CONFIGURE_DEPENDS *.cpp)
  add_library(${target} STATIC ${sources})
  vela_defaults(${target})
endfunction()
