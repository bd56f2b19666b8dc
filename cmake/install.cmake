# The installed tree: the module, its public headers under include/clipfio/, a CMake package and a pkg-config file; the
# command-line host and the substitute decoder beside them.
include(CMakePackageConfigHelpers)

set(public_include ${CMAKE_INSTALL_INCLUDEDIR}/clipfio)
set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/clipfio)

file(STRINGS ${PROJECT_SOURCE_DIR}/public_headers.list public_headers REGEX "^[^#]")
foreach(header ${public_headers})
  # The layer's headers are included as platform/x.h from wherever they stand.
  string(REPLACE "platform/include/" "" installed ${header})
  cmake_path(GET installed PARENT_PATH folder)
  install(FILES ${header} DESTINATION ${public_include}/${folder} COMPONENT development)
endforeach()

install(TARGETS clipfio EXPORT clipfio
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  INCLUDES DESTINATION ${public_include})
install(EXPORT clipfio NAMESPACE clipfio:: FILE clipfioTargets.cmake DESTINATION ${package_folder})

configure_package_config_file(cmake/clipfioConfig.cmake.in ${PROJECT_BINARY_DIR}/clipfioConfig.cmake
  INSTALL_DESTINATION ${package_folder})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/clipfioConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/clipfioConfig.cmake ${PROJECT_BINARY_DIR}/clipfioConfigVersion.cmake
  DESTINATION ${package_folder})

# Found from the file's own place, so that the tree may be moved or laid down under another prefix.
cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX BASE_DIRECTORY ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig
  OUTPUT_VARIABLE prefix_from_pc)
configure_file(cmake/clipfio.pc.in ${PROJECT_BINARY_DIR}/clipfio.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/clipfio.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
