# Fails where an object that is compiled for some processors alone holds code that the linker may take for others:
# a function that more than one object has, and that is none of the kernels' own.
#   cmake -DNM=nm -DOBJECTS=a.o|b.o -P local_code.cmake
string(REPLACE "|" ";" objects "${OBJECTS}")
if(NOT objects)
  message(FATAL_ERROR "no objects to look at")
endif()
foreach(object ${objects})
  execute_process(COMMAND ${NM} ${object} OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
  string(REGEX MATCHALL " [WVu] [^\n]+" shared "${symbols}")
  foreach(symbol ${shared})
    if(NOT symbol MATCHES "^ [WVu] _ZNK?6velnls(6avx512|4avx2)")
      message(SEND_ERROR "${object} shares${symbol}: a function of a header that is not always inlined")
    endif()
  endforeach()
endforeach()
