# Headers that nearly every source of a kind includes are compiled once: the platform's own take
# most of the time of a small file. Every source includes what it uses all the same, so that it
# builds without them.
option(QXCORE_PRECOMPILE "Compile the headers that most sources include only once" ON)
# A source that is compiled unlike the others, with one more macro, reads the headers themselves.
set(CMAKE_PCH_WARN_INVALID OFF)

# qxcore_precompiled_headers(NAME LINK LIBRARY... HEADERS HEADER...): headers compiled as targets
# are that link these libraries. qxcore_use_precompiled_headers gives them to such a target.
function(qxcore_precompiled_headers name)
  cmake_parse_arguments(arg "" "" "LINK;HEADERS" ${ARGN})
  if(QXCORE_PRECOMPILE)
    file(CONFIGURE OUTPUT ${name}.cpp CONTENT "")
    add_library(${name} OBJECT EXCLUDE_FROM_ALL ${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp)
    target_compile_features(${name} PRIVATE cxx_std_20)
    target_link_libraries(${name} PRIVATE ${arg_LINK})
    target_precompile_headers(${name} PRIVATE ${arg_HEADERS})
  endif()
endfunction()

function(qxcore_use_precompiled_headers target name)
  if(QXCORE_PRECOMPILE)
    target_precompile_headers(${target} REUSE_FROM ${name})
  endif()
endfunction()
