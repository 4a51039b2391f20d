# cmake --install: headers, modules, the tool, a CMake package (find_package(qvcl), qv::qvcl) and a
# pkg-config file.
include(CMakePackageConfigHelpers)

install(TARGETS qvcore qvcl EXPORT qvcl-targets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
if(TARGET qv)
  install(TARGETS qv RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

foreach(tree qv qvcore)
  install(DIRECTORY "${PROJECT_SOURCE_DIR}/${tree}/" DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${tree}
    FILES_MATCHING PATTERN "*.h"
    PATTERN common EXCLUDE PATTERN posix EXCLUDE PATTERN windows EXCLUDE)
endforeach()

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/qvcl)
install(EXPORT qvcl-targets NAMESPACE qv:: DESTINATION ${package_dir} FILE qvclTargets.cmake)
configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/qvclConfig.cmake.in"
  "${PROJECT_BINARY_DIR}/qvclConfig.cmake" INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file("${PROJECT_BINARY_DIR}/qvclConfigVersion.cmake"
  COMPATIBILITY SameMajorVersion)
install(FILES "${PROJECT_BINARY_DIR}/qvclConfig.cmake" "${PROJECT_BINARY_DIR}/qvclConfigVersion.cmake"
  DESTINATION ${package_dir})

# The tree may be installed anywhere: the file finds it from its own place.
file(RELATIVE_PATH relative_prefix "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
configure_file("${PROJECT_SOURCE_DIR}/cmake/qvcl.pc.in" "${PROJECT_BINARY_DIR}/qvcl.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/qvcl.pc" DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
