# The library target, made of the rooms' objects.
target_compile_features(qxcore INTERFACE cxx_std_17)
target_include_directories(qxcore
  PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:include>)
target_link_libraries(qxcore PRIVATE $<BUILD_INTERFACE:qxcore_platform>
  advapi32 ole32 oleaut32 uuid shlwapi wininet urlmon gdi32 user32 kernel32)
set_target_properties(qxcore PROPERTIES PREFIX "" LINKER_LANGUAGE CXX DEBUG_POSTFIX "")

if(MSVC)
  # The library stands alone, its runtime linked in. A program that links it takes the global
  # allocation functions from it without more, since a named library goes before the runtime's.
  set_target_properties(qxcore PROPERTIES MSVC_RUNTIME_LIBRARY
    "MultiThreaded$<$<CONFIG:Debug>:Debug>")
else()
  # Nothing is exported but what is marked.
  target_link_options(qxcore PRIVATE -Wl,--exclude-all-symbols)
  # Symbols and debug information go to a file of their own beside the library.
  add_custom_command(TARGET qxcore POST_BUILD
    COMMAND ${CMAKE_OBJCOPY} --only-keep-debug $<TARGET_FILE:qxcore> $<TARGET_FILE:qxcore>.debug
    COMMAND ${CMAKE_STRIP} --strip-all $<TARGET_FILE:qxcore>
    COMMAND ${CMAKE_OBJCOPY} --add-gnu-debuglink=$<TARGET_FILE:qxcore>.debug $<TARGET_FILE:qxcore>
    VERBATIM)
endif()
