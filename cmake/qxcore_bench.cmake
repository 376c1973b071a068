# qxcore_add_bench(NAME SOURCE...): a benchmark program; it prints ratios and asserts nothing.
function(qxcore_add_bench name)
  cmake_parse_arguments(arg "" "" "LINK" ${ARGN})
  add_executable(${name} ${arg_UNPARSED_ARGUMENTS})
  target_compile_features(${name} PRIVATE cxx_std_20)
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
  target_link_libraries(${name} PRIVATE qxcore qxcore_warnings qxcore_platform qxcore_product_code
    ${arg_LINK})
endfunction()
