# velnls_read_dll(FILE EXPORTS ENTRIES NEEDED): the exported names in the order of the alphabet, how many entries the
# table of their addresses has (those without a name would be exports too), and the libraries that are needed.
function(velnls_read_dll library exports_variable entries_variable needed_variable)
  execute_process(COMMAND ${OBJDUMP} -p ${library} OUTPUT_VARIABLE dump RESULT_VARIABLE result)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "objdump ended with ${result}")
  endif()

  # Rows of the name table are a number in brackets and a name; newer releases put an ordinal between.
  string(FIND "${dump}" "[Ordinal/Name Pointer] Table" begin)
  string(SUBSTRING "${dump}" ${begin} -1 table)
  string(REGEX REPLACE "[][]" " " table "${table}") # brackets mean something in lists
  string(REGEX MATCHALL "\n\t +[0-9]+ [^\n]*" rows "${table}")
  set(exports)
  foreach(row ${rows})
    string(REGEX REPLACE "^.* ([^ ]+)$" "\\1" name "${row}")
    list(APPEND exports ${name})
  endforeach()
  list(SORT exports)

  string(REGEX MATCH "Export Address Table[ \t]+([0-9a-f]+)\n" found "${dump}")
  math(EXPR entries "0x${CMAKE_MATCH_1}")

  string(REGEX MATCHALL "DLL Name: [^\n]+" needed "${dump}")
  list(TRANSFORM needed REPLACE "DLL Name: " "")
  if(NOT needed)
    message(FATAL_ERROR "no libraries found in:\n${dump}")
  endif()

  set(${exports_variable} ${exports} PARENT_SCOPE)
  set(${entries_variable} ${entries} PARENT_SCOPE)
  set(${needed_variable} ${needed} PARENT_SCOPE)
endfunction()
