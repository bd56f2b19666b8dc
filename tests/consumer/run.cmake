# Installs the build in BUILD under a folder of its own, moves the tree, and there builds and runs the consumer in
# SOURCE twice: through the CMake package, and through pkg-config with COMPILER.
function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    list(JOIN ARGN " " line)
    message(FATAL_ERROR "${line}\n${output}")
  endif()
endfunction()

set(work ${BUILD}/consumer)
file(REMOVE_RECURSE ${work})
run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${work}/laid_down)
set(prefix ${work}/moved)
file(RENAME ${work}/laid_down ${prefix})

run(${CMAKE_COMMAND} -S ${SOURCE} -B ${work}/by_package -G ${GENERATOR} -DCMAKE_PREFIX_PATH=${prefix}
  -DCMAKE_CXX_COMPILER=${COMPILER})
run(${CMAKE_COMMAND} --build ${work}/by_package)
run(${work}/by_package/consumer)

set(ENV{PKG_CONFIG_PATH} ${prefix}/${LIBRARIES}/pkgconfig)
foreach(what cflags libs)
  execute_process(COMMAND ${PKG_CONFIG} --${what} clipfio RESULT_VARIABLE result OUTPUT_VARIABLE ${what}
    ERROR_VARIABLE output OUTPUT_STRIP_TRAILING_WHITESPACE)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "pkg-config --${what} clipfio\n${output}")
  endif()
  separate_arguments(${what} NATIVE_COMMAND "${${what}}")
endforeach()
run(${COMPILER} -std=c++20 ${cflags} ${SOURCE}/main.cpp -o ${work}/by_pkg_config ${libs})
set(ENV{LD_LIBRARY_PATH} ${prefix}/${LIBRARIES})
run(${work}/by_pkg_config)
