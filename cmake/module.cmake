# The module: everything in the rooms' archive, exporting what exports.list names and nothing else.
find_package(Python3 REQUIRED COMPONENTS Interpreter)

set(exports_list ${PROJECT_SOURCE_DIR}/exports.list)
set(exports_script ${PROJECT_BINARY_DIR}/exports.map)
add_custom_command(OUTPUT ${exports_script}
  COMMAND Python3::Interpreter ${PROJECT_SOURCE_DIR}/scripts/exports.py script ${exports_list} > ${exports_script}
  DEPENDS ${exports_list} ${PROJECT_SOURCE_DIR}/scripts/exports.py VERBATIM)
add_custom_target(clipfio_exports DEPENDS ${exports_script})

add_library(clipfio SHARED reader/module_entry.cpp $<TARGET_OBJECTS:clipfio_resources>)
add_dependencies(clipfio clipfio_exports)
target_link_libraries(clipfio PRIVATE $<LINK_LIBRARY:WHOLE_ARCHIVE,clipfio_core> clipfio_platform clipfio_flags)
# The entry is constructed last and destroyed first.
clipfio_link_module_entry(clipfio)
target_link_options(clipfio PRIVATE -Wl,--version-script=${exports_script} -Wl,-z,defs)
if(CLIPFIO_SANITIZE)
  # A sanitizer's runtime is the program's.
  target_link_options(clipfio PRIVATE -Wl,-z,undefs)
endif()
set_target_properties(clipfio PROPERTIES LINK_DEPENDS ${exports_script})
