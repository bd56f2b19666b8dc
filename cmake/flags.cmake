# The one place for compiler flags. clipfio_flags is linked by every target of ours.
add_library(clipfio_flags INTERFACE)
target_compile_options(clipfio_flags INTERFACE
  -Wall -Wextra -Wconversion
  # Sample and pixel arithmetic is specified to the bit: no fused multiply-add behind our back on any target.
  -ffp-contract=off)
if(CLIPFIO_WERROR)
  target_compile_options(clipfio_flags INTERFACE -Werror)
endif()
if(CLIPFIO_SANITIZE)
  target_compile_options(clipfio_flags INTERFACE -fsanitize=${CLIPFIO_SANITIZE} -fno-omit-frame-pointer)
  target_link_options(clipfio_flags INTERFACE -fsanitize=${CLIPFIO_SANITIZE})
  # A module that was unloaded leaves its frames nameless in a leak report, so the layer keeps it mapped.
  target_compile_definitions(clipfio_flags INTERFACE CLIPFIO_KEEP_MODULES)
  if(CLIPFIO_SANITIZE MATCHES "undefined")
    target_compile_options(clipfio_flags INTERFACE -fno-sanitize-recover=undefined)
  endif()
endif()
if(CLIPFIO_FUZZ)
  target_compile_options(clipfio_flags INTERFACE -fsanitize=fuzzer-no-link)
endif()
find_package(Threads REQUIRED)
target_link_libraries(clipfio_flags INTERFACE Threads::Threads)
