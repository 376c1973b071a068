# Settings that hold for every target of the project.
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

find_program(QXCORE_CCACHE ccache)
if(QXCORE_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${QXCORE_CCACHE})
endif()

# Warnings are errors in our own code; what others wrote is built without them.
add_library(qxcore_warnings INTERFACE)
# Strict conversions between narrow, wide and 64-bit text live in user code too, so every target defines the same set.
add_library(qxcore_platform INTERFACE)
target_compile_definitions(qxcore_platform INTERFACE
  WIN32_LEAN_AND_MEAN NOMINMAX _WIN32_WINNT=0x0601 WINVER=0x0601)

if(MSVC)
  target_compile_options(qxcore_warnings INTERFACE /W4 /WX)
  target_compile_definitions(qxcore_platform INTERFACE _CRT_SECURE_NO_WARNINGS _CRT_NONSTDC_NO_WARNINGS)
  target_compile_options(qxcore_platform INTERFACE /utf-8 /EHsc)
else()
  target_compile_options(qxcore_warnings INTERFACE -Wall -Wextra -Werror -Wno-unknown-pragmas)
  # The system's own printf engine is the one hosts see, so the compiler's replacement stays off.
  target_compile_definitions(qxcore_platform INTERFACE __USE_MINGW_ANSI_STDIO=0)
  target_compile_options(qxcore_platform INTERFACE -g)
  target_link_options(qxcore_platform INTERFACE -static)
endif()

if(QXCORE_TRAPS AND NOT MSVC)
  # The vptr check needs type information at addresses where foreign compilers put none.
  target_compile_options(qxcore_platform INTERFACE
    -fsanitize=undefined -fno-sanitize=vptr -fsanitize-undefined-trap-on-error)
endif()

# Programs of this build run through Wine in a prefix of the build tree.
if(CMAKE_CROSSCOMPILING)
  set(CMAKE_CROSSCOMPILING_EMULATOR ${PROJECT_SOURCE_DIR}/scripts/run-wine)
endif()
