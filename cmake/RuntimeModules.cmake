# The compiler's shared runtime modules beside the programs: exceptions cross modules only with these.
foreach(module libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
  execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${module}
    OUTPUT_VARIABLE found OUTPUT_STRIP_TRAILING_WHITESPACE)
  if(NOT EXISTS "${found}")
    message(FATAL_ERROR "${module} is not part of this compiler")
  endif()
  file(COPY "${found}" DESTINATION "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}" FOLLOW_SYMLINK_CHAIN)
endforeach()
