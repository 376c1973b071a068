# Settings that hold for every target of the project.
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

find_program(QXCORE_CCACHE ccache)
if(QXCORE_CCACHE)
  # The same source compiled by two presets, or in two checkouts, is one cache entry. Precompiled
  # headers, and what is compiled with them, are kept too: no source reads the time of compilation.
  # What a source was compiled from comes from the compiler's own list, so that nothing is
  # preprocessed for it, and a precompiled header is read for its hash once.
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env CCACHE_NOHASHDIR=1
    CCACHE_BASEDIR=${PROJECT_SOURCE_DIR} CCACHE_DEPEND=1 CCACHE_INODECACHE=1
    CCACHE_SLOPPINESS=pch_defines,time_macros ${QXCORE_CCACHE})
endif()

# Warnings are errors in our own code; what others wrote is built without them.
add_library(qxcore_warnings INTERFACE)
# Strict conversions between narrow, wide and 64-bit text live in user code too, so every target
# defines the same set.
add_library(qxcore_platform INTERFACE)
target_compile_definitions(qxcore_platform INTERFACE
  WIN32_LEAN_AND_MEAN NOMINMAX _WIN32_WINNT=0x0601 WINVER=0x0601)

if(MSVC)
  target_compile_options(qxcore_warnings INTERFACE /W4 /WX)
  target_compile_definitions(qxcore_platform INTERFACE _CRT_SECURE_NO_WARNINGS
    _CRT_NONSTDC_NO_WARNINGS)
  target_compile_options(qxcore_platform INTERFACE /utf-8 /EHsc)
else()
  target_compile_options(qxcore_warnings INTERFACE -Wall -Wextra -Werror -Wno-unknown-pragmas)
  # The system's own printf engine is the one hosts see, so the compiler's replacement stays off.
  target_compile_definitions(qxcore_platform INTERFACE __USE_MINGW_ANSI_STDIO=0)
  target_link_options(qxcore_platform INTERFACE -static)
endif()

# What a user runs is optimised as the build type says; tests are compiled fast, and alike in every
# preset.
add_library(qxcore_product_code INTERFACE)
# Assertions are for the debug builds; tests keep theirs in every build.
target_compile_definitions(qxcore_product_code INTERFACE $<$<NOT:$<CONFIG:Debug>>:NDEBUG>)
add_library(qxcore_test_code INTERFACE)
if(NOT MSVC)
  set(CMAKE_CXX_FLAGS_RELEASE "")
  set(CMAKE_CXX_FLAGS_DEBUG "")
  target_compile_options(qxcore_product_code INTERFACE -g $<IF:$<CONFIG:Debug>,-Og,-O2>)
  target_compile_options(qxcore_test_code INTERFACE -O0)
  find_program(QXCORE_LLD ld.lld)
  if(CMAKE_CROSSCOMPILING AND QXCORE_LLD)
    # The stack is as large as the usual linker makes it.
    target_link_options(qxcore_test_code INTERFACE
      "SHELL:-wrapper ${CMAKE_CURRENT_LIST_DIR}/link-with-lld"
      -Wl,--stack,2097152)
  endif()
endif()

# Programs of this build run through Wine in a prefix of the build tree.
if(CMAKE_CROSSCOMPILING)
  set(CMAKE_CROSSCOMPILING_EMULATOR ${PROJECT_SOURCE_DIR}/scripts/run-wine)
endif()
