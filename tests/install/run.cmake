# What the install tests share.

# Runs a command; what it wrote to standard output is in 'run_output'. A failure ends the test.
function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE errors)
  if(NOT result EQUAL 0)
    list(JOIN ARGN " " command)
    message(FATAL_ERROR "${command}\nended with ${result}\n${output}\n${errors}")
  endif()
  set(run_output "${output}" PARENT_SCOPE)
endfunction()

# Runs a program that has one line to say.
function(expect line)
  run(${ARGN})
  if(NOT run_output STREQUAL "${line}\n")
    list(JOIN ARGN " " command)
    message(FATAL_ERROR "${command}\nprinted '${run_output}', not '${line}'")
  endif()
endfunction()

set(data_file ${PREFIX}/share/velnls/velnls.dat)
string(ASCII 230 151 165 230 156 172 nihon) # what the example prints: two kanji in UTF-8
