# Libraries from Debian packages, one target each, on both platforms under the same name.
#
# Header-only libraries serve the Windows build too, but /usr/include as a whole must stay off its
# include path: the C library's headers there would shadow MinGW's. So each such library gets a
# folder of its own in the build tree that holds only links to its headers.

# vela_header_library(NAME PACKAGE ENTRY...): target deps::NAME for the named entries (files or
# folders) of /usr/include, which the Debian package PACKAGE installs.
function(vela_header_library name package)
  set(folder "${CMAKE_BINARY_DIR}/headers/${name}")
  file(MAKE_DIRECTORY "${folder}")
  foreach(entry IN LISTS ARGN)
    if(NOT EXISTS "/usr/include/${entry}")
      message(FATAL_ERROR "/usr/include/${entry} is missing: apt-get install ${package}")
    endif()
    file(CREATE_LINK "/usr/include/${entry}" "${folder}/${entry}" SYMBOLIC)
  endforeach()
  add_library(deps_${name} INTERFACE)
  target_include_directories(deps_${name} SYSTEM INTERFACE "${folder}")
  add_library(deps::${name} ALIAS deps_${name})
endfunction()

# vela_pkg_library(NAME PACKAGE MODULE...): target deps::NAME for pkg-config modules.
function(vela_pkg_library name package)
  pkg_check_modules(deps_${name}_pc QUIET IMPORTED_TARGET GLOBAL ${ARGN})
  if(NOT deps_${name}_pc_FOUND)
    message(FATAL_ERROR "pkg-config cannot find ${ARGN}: apt-get install ${package}")
  endif()
  add_library(deps::${name} ALIAS PkgConfig::deps_${name}_pc)
endfunction()

vela_header_library(pegtl tao-pegtl-dev tao)
vela_header_library(utf8cpp libutfcpp-dev utf8.h utf8)
vela_header_library(fast_float libfast-float-dev fast_float)
# Its headers alone: the compiled part of Highway exists for Linux only, and the kernels do without.
vela_header_library(hwy libhwy-dev hwy)
vela_header_library(eigen libeigen3-dev eigen3)
if(NOT WIN32)
  vela_header_library(boost libboost-dev boost)
endif()

if(NOT WIN32)
  find_package(PkgConfig REQUIRED)
  vela_pkg_library(icu libicu-dev icu-uc)
  vela_pkg_library(icu_i18n libicu-dev icu-i18n)
  vela_pkg_library(edit libedit-dev libedit)
  vela_pkg_library(cairo libcairo2-dev cairo)
  vela_pkg_library(pixbuf libgdk-pixbuf-2.0-dev gdk-pixbuf-2.0)
endif()

find_package(Threads REQUIRED)
