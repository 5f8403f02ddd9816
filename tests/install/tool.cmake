# The installed command turns each example text into its UTF-8 form, byte for byte.
include(${CMAKE_CURRENT_LIST_DIR}/run.cmake)

file(MAKE_DIRECTORY ${WORK})
set(texts ${SOURCE}/examples/text)
foreach(text "openings sjis SHIFT-JIS" "moment koi8r KOI8-R" "erlkoenig 1252 1252" "litwo mazovia MAZOVIA")
  separate_arguments(parts UNIX_COMMAND ${text})
  list(GET parts 0 name)
  list(GET parts 1 ending)
  list(GET parts 2 page)
  set(result ${WORK}/${name}.txt)
  run(${PREFIX}/bin/velnls convert -f ${page} -t UTF-8 -o ${result} ${texts}/${name}.${ending}.txt)
  run(${CMAKE_COMMAND} -E compare_files ${result} ${texts}/${name}.utf8.txt)
  run(${PREFIX}/bin/velnls convert -f UTF-8 -t ${page} -o ${result} ${texts}/${name}.utf8.txt)
  run(${CMAKE_COMMAND} -E compare_files ${result} ${texts}/${name}.${ending}.txt)
endforeach()

# Where the build found ICU, the way to it was installed, and the command finds it beside itself.
if(ICU)
  set(velnls ${CMAKE_COMMAND} -E env --unset=BINPATHX ${PREFIX}/bin/velnls)
  run(${velnls} convert -f UTF-8 -t GB18030 -o ${WORK}/gb.txt ${texts}/openings.utf8.txt)
  run(${velnls} convert -f GB18030 -t UTF-8 -o ${WORK}/back.txt ${WORK}/gb.txt)
  run(${CMAKE_COMMAND} -E compare_files ${WORK}/back.txt ${texts}/openings.utf8.txt)
  string(ASCII 195 132 umlaut) # A with diaeresis in UTF-8, which the German phone book sorts as "ae"
  file(WRITE ${WORK}/words.txt "zebra\n${umlaut}z\naf\n")
  file(WRITE ${WORK}/expected.txt "${umlaut}z\naf\nzebra\n")
  run(${velnls} sort --collation ICU-de__PHONEBOOK -o ${WORK}/sorted.txt ${WORK}/words.txt)
  run(${CMAKE_COMMAND} -E compare_files ${WORK}/sorted.txt ${WORK}/expected.txt)
endif()
