# qxcore_version(TARGET DESCRIPTION): gives a program or library its version resource, and no time
# of its making.
function(qxcore_version target description)
  get_target_property(type ${target} TYPE)
  if(type STREQUAL SHARED_LIBRARY)
    set(QXCORE_FILE ${target}.dll)
    set(QXCORE_FILE_TYPE VFT_DLL)
  else()
    set(QXCORE_FILE ${target}.exe)
    set(QXCORE_FILE_TYPE VFT_APP)
  endif()
  set(QXCORE_FILE_DESCRIPTION ${description})
  configure_file(${PROJECT_SOURCE_DIR}/cmake/version.rc.in
    ${PROJECT_BINARY_DIR}/version/${target}.rc @ONLY)
  target_sources(${target} PRIVATE ${PROJECT_BINARY_DIR}/version/${target}.rc)
  if(NOT MSVC)
    target_link_options(${target} PRIVATE -Wl,--no-insert-timestamp)
  endif()
endfunction()
