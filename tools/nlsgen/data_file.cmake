# The data file, made by the command 'nlsgen_command', which is there once 'nlsgen_dependency' is.

# One run writes both files. Sources of the system's packages are read where they are installed.
set(velnls_charmaps /usr/share/i18n/charmaps CACHE PATH "Folder of the POSIX charmaps (package locales)")
set(velnls_unicode /usr/share/unicode CACHE PATH "Folder of UnicodeData.txt and allkeys.txt (package unicode-data)")
file(GLOB_RECURSE velnls_data_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/data/*.map ${PROJECT_SOURCE_DIR}/data/*.txt)
set(velnls_data_folder ${CMAKE_BINARY_DIR}/share/velnls)
add_custom_command(
  OUTPUT ${velnls_data_folder}/velnls.dat ${velnls_data_folder}/velnls-small.dat
  COMMAND ${nlsgen_command} build --charmaps ${velnls_charmaps} --unicode ${velnls_unicode}
    --data ${PROJECT_SOURCE_DIR}/data --output ${velnls_data_folder}
  COMMAND ${CMAKE_COMMAND} -DFILE=${velnls_data_folder}/velnls.dat -P ${PROJECT_SOURCE_DIR}/cmake/size.cmake
  DEPENDS ${nlsgen_dependency} ${velnls_data_sources}
  COMMENT "Making velnls.dat and velnls-small.dat"
  VERBATIM)
add_custom_target(velnls_data ALL
  DEPENDS ${velnls_data_folder}/velnls.dat ${velnls_data_folder}/velnls-small.dat)

install(FILES ${velnls_data_folder}/velnls.dat ${velnls_data_folder}/velnls-small.dat
  DESTINATION ${CMAKE_INSTALL_DATADIR}/velnls)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/data/ DESTINATION ${CMAKE_INSTALL_DATADIR}/velnls/data)
