# What all code of the library is compiled with.
add_library(qxcore_library_code INTERFACE)
target_compile_features(qxcore_library_code INTERFACE cxx_std_20)
target_compile_definitions(qxcore_library_code INTERFACE QXCORE_BUILDING
  $<$<BOOL:${QXCORE_GUARD_HEAP}>:QXCORE_GUARD_HEAP>
  # A debug build tells at unload which blocks of the permanent heaps nobody freed.
  $<$<CONFIG:Debug>:QXCORE_LEAK_REPORT>)
target_include_directories(qxcore_library_code INTERFACE ${PROJECT_SOURCE_DIR}
  ${PROJECT_SOURCE_DIR}/include)
target_link_libraries(qxcore_library_code INTERFACE qxcore_warnings qxcore_platform
  qxcore_product_code)
if(NOT MSVC)
  target_compile_options(qxcore_library_code INTERFACE -fno-math-errno)
  if(QXCORE_TRAPS)
    # The vptr check needs type information at addresses where foreign compilers put none.
    target_compile_options(qxcore_library_code INTERFACE
      -fsanitize=undefined -fno-sanitize=vptr -fsanitize-undefined-trap-on-error)
  endif()
endif()

qxcore_precompiled_headers(qxcore_library_headers LINK qxcore_library_code
  HEADERS <qxcore/platform.h> <objbase.h> <algorithm> <atomic> <cassert> <cstdint> <cstdlib>
    <cstring> <memory> <new> <utility>)
if(TARGET qxcore_library_headers)
  set_target_properties(qxcore_library_headers PROPERTIES CXX_VISIBILITY_PRESET hidden)
endif()

# qxcore_room(NAME SOURCE...): the sources of one room, an object library that becomes part of the
# DLL. A test of what no export shows links qxcore_NAME_archive, from which the linker takes the
# objects that the test asks for.
function(qxcore_room name)
  add_library(qxcore_${name} OBJECT ${ARGN})
  target_link_libraries(qxcore_${name} PRIVATE qxcore_library_code)
  set_target_properties(qxcore_${name} PROPERTIES CXX_VISIBILITY_PRESET hidden)
  qxcore_use_precompiled_headers(qxcore_${name} qxcore_library_headers)
  target_sources(qxcore PRIVATE $<TARGET_OBJECTS:qxcore_${name}>)
  add_library(qxcore_${name}_archive STATIC EXCLUDE_FROM_ALL $<TARGET_OBJECTS:qxcore_${name}>)
  set_target_properties(qxcore_${name}_archive PROPERTIES LINKER_LANGUAGE CXX)
  target_include_directories(qxcore_${name}_archive INTERFACE ${PROJECT_SOURCE_DIR})
  target_link_libraries(qxcore_${name}_archive INTERFACE qxcore)
endfunction()
