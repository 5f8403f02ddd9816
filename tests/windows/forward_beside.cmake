# The command line finds the forwarding libraries beside itself, and those find ICU's there: a fake one, whose pages hold
# each letter as the one before. The folder's name is one that no code page of Windows has as a whole.
string(ASCII 195 188 230 151 165 folder) # u with diaeresis and a kanji in UTF-8
set(bin ${WORK}/${folder}/bin)
file(REMOVE_RECURSE ${WORK})
file(COPY ${TOOL} DESTINATION ${bin})
get_filename_component(tool ${TOOL} NAME)
file(WRITE ${WORK}/text "HAL")

# Its streams are files: parts of Wine live on and would keep pipes open.
function(convert expected)
  execute_process(COMMAND ${CMAKE_COMMAND} -E env --unset=BINPATHX ${RUN} ${bin}/${tool}
    convert -f GB18030 -t UTF-8 -o ${WORK}/out ${WORK}/text
    RESULT_VARIABLE result OUTPUT_FILE ${WORK}/messages ERROR_FILE ${WORK}/messages)
  if(NOT result EQUAL expected)
    file(READ ${WORK}/messages messages)
    message(FATAL_ERROR "velnls ended with ${result}, not ${expected}:\n${messages}")
  endif()
endfunction()

convert(2)
file(COPY ${LIBRARIES} DESTINATION ${bin})
convert(0)
file(READ ${WORK}/out out)
if(NOT out STREQUAL "IBM")
  message(FATAL_ERROR "converted to '${out}'")
endif()
