# velnls.dll: its list of exports, made from the version script so that there is one list, and its version resource.
enable_language(RC)

set(velnls_exports ${PROJECT_SOURCE_DIR}/cmake/velnls.map)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${velnls_exports})
file(STRINGS ${velnls_exports} velnls_export_lines REGEX "^ *nls[A-Za-z0-9]+;$")
set(velnls_def "LIBRARY velnls.dll\nEXPORTS\n")
foreach(line ${velnls_export_lines})
  string(REGEX MATCH "nls[A-Za-z0-9]+" name "${line}")
  string(APPEND velnls_def "    ${name}\n")
endforeach()
file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/velnls.def CONTENT "${velnls_def}" @ONLY)
configure_file(cmake/velnls.rc.in ${PROJECT_BINARY_DIR}/velnls.rc @ONLY)

target_sources(velnls PRIVATE ${PROJECT_BINARY_DIR}/velnls.def ${PROJECT_BINARY_DIR}/velnls.rc)
# Programs find the library beside themselves, so all go to one folder.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
set_target_properties(velnls PROPERTIES PREFIX "" RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
target_link_options(velnls PRIVATE -static)
