# qxcore_add_ftp_test(NAME SOURCE...): a test program that runs beside an FTP server on 127.0.0.1
# port 21, one at a time; with FAULTY that server misbehaves where a test asks for it. Its tests
# find the server through tests/support/ftp/served_files.h.
function(qxcore_add_ftp_test name)
  cmake_parse_arguments(arg "FAULTY" "CODEPAGE" "LINK" ${ARGN})
  qxcore_add_program(${name} ${arg_UNPARSED_ARGUMENTS}
    ${PROJECT_SOURCE_DIR}/tests/support/ftp/served_files.cpp
    LINK qxcore_test_support gtest ${arg_LINK})
  if(NOT CMAKE_CROSSCOMPILING)
    return()
  endif()
  set(runner ${PROJECT_SOURCE_DIR}/tests/support/with_ftp_server)
  if(arg_FAULTY)
    list(APPEND runner --faulty)
  endif()
  add_test(NAME ${name} COMMAND ${runner} ${CMAKE_CROSSCOMPILING_EMULATOR} $<TARGET_FILE:${name}>
    --gtest_shuffle
    --gtest_brief=1 --gtest_output=xml:Z:${PROJECT_BINARY_DIR}/reports/${name}.xml)
  set_tests_properties(${name} PROPERTIES TIMEOUT 300 RESOURCE_LOCK ftp_port COST 100)
  if(arg_CODEPAGE)
    set_tests_properties(${name} PROPERTIES ENVIRONMENT QXCORE_CODEPAGE=${arg_CODEPAGE})
  endif()
endfunction()
