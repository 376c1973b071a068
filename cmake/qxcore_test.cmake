# GoogleTest, cross-compiled from the sources that Debian installs.
set(QXCORE_GOOGLETEST_SOURCE /usr/src/googletest/googletest CACHE PATH "Sources of GoogleTest")
set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
set(gtest_disable_pthreads ON CACHE BOOL "" FORCE)
add_subdirectory(${QXCORE_GOOGLETEST_SOURCE} ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
target_link_libraries(gtest PRIVATE $<BUILD_INTERFACE:qxcore_test_code>)

# qxcore_add_test(NAME SOURCE...): a test program over the library's headers, registered with CTest as one test.
# Its tests must not need an order. Behind LINK stand further libraries, behind CODEPAGE the narrow code page of the run.
# Behind PROCESSES stands how many processes share a long program's tests; each is one test of CTest then.
function(qxcore_add_test name)
  cmake_parse_arguments(arg "" "CODEPAGE;PROCESSES" "LINK" ${ARGN})
  add_executable(${name} ${arg_UNPARSED_ARGUMENTS})
  target_compile_features(${name} PRIVATE cxx_std_20)
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_link_libraries(${name} PRIVATE qxcore qxcore_test_support gtest qxcore_warnings qxcore_platform qxcore_test_code
    ${arg_LINK})
  # GoogleTest takes a path without a drive for a relative one; the tree of the build machine is Wine's drive Z.
  set(drive $<$<BOOL:${CMAKE_CROSSCOMPILING}>:Z:>)
  if(NOT arg_PROCESSES)
    set(arg_PROCESSES 1)
  endif()
  foreach(process RANGE 1 ${arg_PROCESSES})
    set(run ${name})
    set(environment)
    if(arg_CODEPAGE)
      list(APPEND environment QXCORE_CODEPAGE=${arg_CODEPAGE})
    endif()
    if(arg_PROCESSES GREATER 1)
      set(run ${name}_${process})
      math(EXPR shard "${process} - 1")
      list(APPEND environment GTEST_TOTAL_SHARDS=${arg_PROCESSES} GTEST_SHARD_INDEX=${shard})
    endif()
    add_test(NAME ${run} COMMAND ${name} --gtest_shuffle --gtest_brief=1
      --gtest_output=xml:${drive}${PROJECT_BINARY_DIR}/reports/${run}.xml)
    set_tests_properties(${run} PROPERTIES TIMEOUT 600 ENVIRONMENT "${environment}")
  endforeach()
endfunction()

# qxcore_add_module(NAME SOURCE...): a DLL that tests load beside their program.
function(qxcore_add_module name)
  cmake_parse_arguments(arg "" "" "LINK" ${ARGN})
  add_library(${name} SHARED ${arg_UNPARSED_ARGUMENTS})
  target_compile_features(${name} PRIVATE cxx_std_20)
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_link_libraries(${name} PRIVATE qxcore qxcore_warnings qxcore_platform qxcore_test_code
    ${arg_LINK})
  set_target_properties(${name} PROPERTIES PREFIX "")
endfunction()

# qxcore_add_program(NAME SOURCE...): a program that tests start as a second process.
function(qxcore_add_program name)
  cmake_parse_arguments(arg "" "" "LINK" ${ARGN})
  add_executable(${name} ${arg_UNPARSED_ARGUMENTS})
  target_compile_features(${name} PRIVATE cxx_std_20)
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_link_libraries(${name} PRIVATE qxcore qxcore_warnings qxcore_platform qxcore_test_code
    ${arg_LINK})
endfunction()
