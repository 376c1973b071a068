# The library target: properties that all its folders share.
target_compile_features(qxcore PRIVATE cxx_std_20 INTERFACE cxx_std_17)
target_compile_definitions(qxcore PRIVATE QXCORE_BUILDING)
if(QXCORE_GUARD_HEAP)
  target_compile_definitions(qxcore PRIVATE QXCORE_GUARD_HEAP)
endif()
# A debug build tells at unload which blocks of the permanent heaps nobody freed.
target_compile_definitions(qxcore PRIVATE $<$<CONFIG:Debug>:QXCORE_LEAK_REPORT>)
target_include_directories(qxcore
  PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:include>
  PRIVATE ${PROJECT_SOURCE_DIR})
target_link_libraries(qxcore PRIVATE $<BUILD_INTERFACE:qxcore_warnings> $<BUILD_INTERFACE:qxcore_platform>
  $<BUILD_INTERFACE:qxcore_product_code>
  ole32 oleaut32 uuid shlwapi gdi32 user32 kernel32)
set_target_properties(qxcore PROPERTIES PREFIX "" CXX_VISIBILITY_PRESET hidden DEBUG_POSTFIX "")

if(MSVC)
  # The library stands alone, its runtime linked in. A program that links it takes the global allocation functions from
  # it without more, since a named library goes before the runtime's.
  set_target_properties(qxcore PROPERTIES MSVC_RUNTIME_LIBRARY "MultiThreaded$<$<CONFIG:Debug>:Debug>")
else()
  target_compile_options(qxcore PRIVATE -fno-math-errno)
  if(QXCORE_TRAPS)
    # The vptr check needs type information at addresses where foreign compilers put none.
    target_compile_options(qxcore PRIVATE
      -fsanitize=undefined -fno-sanitize=vptr -fsanitize-undefined-trap-on-error)
  endif()
  # Nothing is exported but what is marked.
  target_link_options(qxcore PRIVATE -Wl,--exclude-all-symbols)
  # Debug information goes to a file of its own beside the library.
  add_custom_command(TARGET qxcore POST_BUILD
    COMMAND ${CMAKE_OBJCOPY} --only-keep-debug $<TARGET_FILE:qxcore> $<TARGET_FILE:qxcore>.debug
    COMMAND ${CMAKE_STRIP} --strip-debug $<TARGET_FILE:qxcore>
    COMMAND ${CMAKE_OBJCOPY} --add-gnu-debuglink=$<TARGET_FILE:qxcore>.debug $<TARGET_FILE:qxcore>
    VERBATIM)
endif()
