# GoogleTest, cross-compiled from the sources that Debian installs.
set(QXCORE_GOOGLETEST_SOURCE /usr/src/googletest/googletest CACHE PATH "Sources of GoogleTest")
set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
set(gtest_disable_pthreads ON CACHE BOOL "" FORCE)
add_subdirectory(${QXCORE_GOOGLETEST_SOURCE} ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
target_link_libraries(gtest PRIVATE $<BUILD_INTERFACE:qxcore_test_code>)

if(WIN32)
  qxcore_precompiled_headers(qxcore_test_headers
    LINK qxcore gtest qxcore_warnings qxcore_platform qxcore_test_code
    HEADERS <gtest/gtest.h> <qxcore/platform.h> <objbase.h> <algorithm> <atomic> <cstdio> <cstdlib>
      <cstring> <functional> <map> <memory> <random> <string> <thread> <vector>
      ${PROJECT_SOURCE_DIR}/tests/support/common_templates.h)
  # Modules and second processes know nothing of GoogleTest.
  qxcore_precompiled_headers(qxcore_test_program_headers
    LINK qxcore qxcore_warnings qxcore_platform qxcore_test_code
    HEADERS <qxcore/platform.h> <objbase.h> <algorithm> <cstdio> <cstdlib> <cstring> <map> <memory>
      <random> <string> <vector>)
endif()

# qxcore_register_test(NAME TARGET [ARGUMENT...]): a program as a test of CTest, which may take
# TIMEOUT seconds and finds what stands behind ENVIRONMENT there. It stays on one processor, where
# CTest knows of them, unless it has THREADS that should meet. With several narrow code pages
# behind CODEPAGE it is a test in each, called NAME_932 and so on, in a folder of its own, since
# they may run at the same time. In the arguments @RUN@ is the name of the test.
function(qxcore_register_test name target)
  cmake_parse_arguments(arg "THREADS" "TIMEOUT" "CODEPAGE;ENVIRONMENT" ${ARGN})
  list(LENGTH arg_CODEPAGE pages)
  if(pages EQUAL 0)
    set(arg_CODEPAGE usual)
  endif()
  foreach(page ${arg_CODEPAGE})
    set(run ${name})
    set(folder ${CMAKE_CURRENT_BINARY_DIR})
    set(environment ${arg_ENVIRONMENT})
    if(pages GREATER 0)
      list(APPEND environment QXCORE_CODEPAGE=${page})
    endif()
    if(pages GREATER 1)
      string(APPEND run _${page})
      string(APPEND folder /${run}.run)
      file(MAKE_DIRECTORY ${folder})
    endif()
    string(REPLACE "@RUN@" ${run} arguments "${arg_UNPARSED_ARGUMENTS}")
    add_test(NAME ${run} COMMAND ${target} ${arguments} WORKING_DIRECTORY ${folder})
    set_tests_properties(${run} PROPERTIES TIMEOUT ${arg_TIMEOUT} ENVIRONMENT "${environment}")
    if(NOT arg_THREADS)
      set_tests_properties(${run} PROPERTIES RESOURCE_GROUPS cpus:1)
    endif()
  endforeach()
endfunction()

# qxcore_add_test(NAME SOURCE...): a test program over the library's headers, registered with CTest
# as one test. Its tests must not need an order. Behind LINK stand further libraries. Behind
# CODEPAGE stand the narrow code pages of the process in which it runs; with several it is one test
# of CTest in each. Behind PROCESSES stands how many processes share a long program's tests; each is
# one test of CTest then. With THREADS it runs on all processors, so that its threads meet.
function(qxcore_add_test name)
  cmake_parse_arguments(arg "THREADS" "PROCESSES" "LINK;CODEPAGE" ${ARGN})
  set(threads)
  if(arg_THREADS)
    set(threads THREADS)
  endif()
  add_executable(${name} ${arg_UNPARSED_ARGUMENTS})
  target_compile_features(${name} PRIVATE cxx_std_20)
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_link_libraries(${name} PRIVATE qxcore qxcore_test_support gtest qxcore_warnings
    qxcore_platform qxcore_test_code
    ${arg_LINK})
  qxcore_use_precompiled_headers(${name} qxcore_test_headers)
  # GoogleTest takes a path without a drive for a relative one; the tree of the build machine is
  # Wine's drive Z.
  set(drive $<$<BOOL:${CMAKE_CROSSCOMPILING}>:Z:>)
  if(NOT arg_PROCESSES)
    set(arg_PROCESSES 1)
  endif()
  foreach(process RANGE 1 ${arg_PROCESSES})
    set(run ${name})
    set(environment)
    if(arg_PROCESSES GREATER 1)
      set(run ${name}_${process})
      math(EXPR shard "${process} - 1")
      set(environment GTEST_TOTAL_SHARDS=${arg_PROCESSES} GTEST_SHARD_INDEX=${shard})
    endif()
    qxcore_register_test(${run} ${name} --gtest_shuffle --gtest_brief=1
      --gtest_output=xml:${drive}${PROJECT_BINARY_DIR}/reports/@RUN@.xml
      CODEPAGE ${arg_CODEPAGE} ENVIRONMENT ${environment} TIMEOUT 600 ${threads})
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
  qxcore_use_precompiled_headers(${name} qxcore_test_program_headers)
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
  qxcore_use_precompiled_headers(${name} qxcore_test_program_headers)
endfunction()
