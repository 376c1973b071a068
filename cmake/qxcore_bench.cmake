qxcore_precompiled_headers(qxcore_bench_headers LINK qxcore qxcore_warnings qxcore_platform
  qxcore_product_code
  HEADERS <qxcore/platform.h> <objbase.h> <algorithm> <chrono> <cstdio> <cstring> <functional> <map>
    <memory> <string> <unordered_map> <vector>)

# Benchmarks are built when they are asked for, one by one or by this target.
add_custom_target(benchmarks)

# qxcore_add_bench(NAME SOURCE...): a benchmark program; it prints ratios and asserts nothing.
function(qxcore_add_bench name)
  cmake_parse_arguments(arg "" "" "LINK" ${ARGN})
  add_executable(${name} EXCLUDE_FROM_ALL ${arg_UNPARSED_ARGUMENTS})
  add_dependencies(benchmarks ${name})
  target_compile_features(${name} PRIVATE cxx_std_20)
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
  target_link_libraries(${name} PRIVATE qxcore qxcore_warnings qxcore_platform qxcore_product_code
    ${arg_LINK})
  qxcore_use_precompiled_headers(${name} qxcore_bench_headers)
endfunction()

# qxcore_bench_peer(NAME HEADER DEFINITION...): lets a benchmark see a header-only library of the
# build machine, and tells it so by the definitions; without the library nothing happens. A link to
# it keeps the other headers beside it out of sight, for they belong to another system.
function(qxcore_bench_peer name header)
  string(REGEX MATCH "^[^/]+" entry ${header})
  find_path(QXCORE_PEER_${entry} ${header} PATHS /usr/include NO_CMAKE_FIND_ROOT_PATH)
  if(QXCORE_PEER_${entry})
    file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/peers)
    file(CREATE_LINK ${QXCORE_PEER_${entry}}/${entry} ${PROJECT_BINARY_DIR}/peers/${entry} SYMBOLIC)
    target_include_directories(${name} SYSTEM PRIVATE ${PROJECT_BINARY_DIR}/peers)
    target_compile_definitions(${name} PRIVATE ${ARGN})
  endif()
endfunction()
