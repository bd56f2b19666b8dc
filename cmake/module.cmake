# The module: everything in the rooms' archive, exporting what exports.list names and nothing else.
find_package(Python3 REQUIRED COMPONENTS Interpreter)

set(exports_list ${PROJECT_SOURCE_DIR}/exports.list)
set(exports_tool ${PROJECT_SOURCE_DIR}/scripts/exports.py)

add_library(clipfio SHARED reader/module_entry.cpp $<TARGET_OBJECTS:clipfio_resources>)
target_link_libraries(clipfio PRIVATE $<LINK_LIBRARY:WHOLE_ARCHIVE,clipfio_core> clipfio_platform clipfio_flags)
# The entry is constructed last and destroyed first.
clipfio_link_module_entry(clipfio)

if(WIN32)
  # Of an operation with C++ linkage the linker wants the compiler's name, and the compiler knows it: the names are
  # looked up in what was compiled.
  set(exports_script ${PROJECT_BINARY_DIR}/exports.def)
  add_custom_command(OUTPUT ${exports_script}
    COMMAND Python3::Interpreter ${exports_tool} def ${exports_list} $<TARGET_FILE:clipfio_core> > ${exports_script}
    DEPENDS ${exports_list} ${exports_tool} clipfio_core VERBATIM)
  target_sources(clipfio PRIVATE ${exports_script})
  set_target_properties(clipfio PROPERTIES PREFIX "")
else()
  set(exports_script ${PROJECT_BINARY_DIR}/exports.map)
  add_custom_command(OUTPUT ${exports_script}
    COMMAND Python3::Interpreter ${exports_tool} script ${exports_list} > ${exports_script}
    DEPENDS ${exports_list} ${exports_tool} VERBATIM)
  add_custom_target(clipfio_exports DEPENDS ${exports_script})
  add_dependencies(clipfio clipfio_exports)
  target_link_options(clipfio PRIVATE -Wl,--version-script=${exports_script} -Wl,-z,defs)
  if(CLIPFIO_SANITIZE)
    # A sanitizer's runtime is the program's.
    target_link_options(clipfio PRIVATE -Wl,-z,undefs)
  endif()
  set_target_properties(clipfio PROPERTIES LINK_DEPENDS ${exports_script})
endif()
