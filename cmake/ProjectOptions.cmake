# What every target of the project is built with: the language level, the warnings, the sanitizers.
# Warning flags stand here and nowhere else.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "Build type" FORCE)
endif()

# Programs and modules stand side by side, so that Windows finds the modules without a search path.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib")

add_library(qvcl_options INTERFACE)
target_compile_options(qvcl_options INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
target_include_directories(qvcl_options INTERFACE "${PROJECT_SOURCE_DIR}")

# A unique symbol would keep a module in memory for ever: the library can be unloaded.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND NOT WIN32)
  add_compile_options($<$<COMPILE_LANGUAGE:CXX>:-fno-gnu-unique>)
endif()

if(QVCL_SANITIZE)
  add_compile_options(-fsanitize=${QVCL_SANITIZE} -fno-omit-frame-pointer -g)
  add_link_options(-fsanitize=${QVCL_SANITIZE})
  if(QVCL_SANITIZE MATCHES "undefined")
    add_compile_options(-fno-sanitize-recover=all)
  endif()
endif()

# qvcl_library(target output-name-on-windows): the settings that the two modules share.
function(qvcl_library target windows_name)
  target_link_libraries(${target} PRIVATE $<BUILD_INTERFACE:qvcl_options>)
  target_include_directories(${target} PUBLIC
    "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>"
    "$<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>")
  target_compile_features(${target} PUBLIC cxx_std_20)
  set_target_properties(${target} PROPERTIES
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR})
  if(WIN32)
    set_target_properties(${target} PROPERTIES PREFIX "" OUTPUT_NAME ${windows_name})
  else()
    set_target_properties(${target} PROPERTIES INSTALL_RPATH "$ORIGIN")
    # A call inside the module binds inside the module.
    target_compile_options(${target} PRIVATE -fno-semantic-interposition)
    target_link_options(${target} PRIVATE -Wl,-Bsymbolic-functions -Wl,--no-undefined)
    if(QVCL_SANITIZE)
      set_target_properties(${target} PROPERTIES LINK_OPTIONS "")
    endif()
  endif()
endfunction()
