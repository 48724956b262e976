# Target windows_runtime: the shared C++ runtime beside the binaries, where Windows looks for it.
set(runtime_dlls libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll
    libgomp-1.dll)
set(copies)
foreach(dll IN LISTS runtime_dlls)
  execute_process(COMMAND "${CMAKE_CXX_COMPILER}" -print-file-name=${dll}
                  OUTPUT_VARIABLE path OUTPUT_STRIP_TRAILING_WHITESPACE)
  if(NOT IS_ABSOLUTE "${path}")
    message(FATAL_ERROR "${CMAKE_CXX_COMPILER} does not know where ${dll} is")
  endif()
  set(copy "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/${dll}")
  add_custom_command(OUTPUT "${copy}" DEPENDS "${path}"
                     COMMAND "${CMAKE_COMMAND}" -E copy "${path}" "${copy}" VERBATIM)
  list(APPEND copies "${copy}")
endforeach()
add_custom_target(windows_runtime ALL DEPENDS ${copies})
install(FILES ${copies} DESTINATION bin)

# The mathematics of MinGW's own C library is computed on the x87 stack and loses digits: these
# functions come from the system's C runtime. The list of every link ends with the import library,
# right before MinGW's.
set(mathematics acos acosh asin asinh atan atan2 atanh cbrt cos cosh erf erfc exp exp2 expm1 fmod
    hypot lgamma log log10 log1p log2 pow sin sinh sqrt tan tanh tgamma)
list(JOIN mathematics "\n  " names)
set(definition "${CMAKE_BINARY_DIR}/mathematics.def")
set(library "${CMAKE_BINARY_DIR}/libmathematics.a")
file(CONFIGURE OUTPUT "${definition}" CONTENT "LIBRARY ucrtbase.dll\nEXPORTS\n  @names@\n" @ONLY)
execute_process(COMMAND "${CMAKE_DLLTOOL}" -d "${definition}" -l "${library}"
                COMMAND_ERROR_IS_FATAL ANY)
set(CMAKE_CXX_STANDARD_LIBRARIES "\"${library}\" ${CMAKE_CXX_STANDARD_LIBRARIES}")
