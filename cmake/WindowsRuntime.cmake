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
