# velnls_add_icu_forward(FOLDER SUFFIX DATA COMMON LANGUAGES): builds the three libraries into FOLDER, for the ICU whose
# libraries and headers the three targets stand for. SUFFIX keeps the names of the targets that this makes apart.
function(velnls_add_icu_forward folder suffix data common languages)
  foreach(library "icudata-qmx;${data};data.c" "icuuc-qmx;${common};common.c;utf8.c"
      "icui18n-qmx;${languages};languages.c")
    list(POP_FRONT library name icu)
    list(TRANSFORM library PREPEND ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/ OUTPUT_VARIABLE sources)
    set(target ${name}${suffix})
    add_library(${target} MODULE ${sources})
    target_compile_definitions(${target} PRIVATE VELNLS_ICU_SUFFIX="${VELNLS_ICU_SUFFIX}")
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Werror -Wstrict-prototypes)
    target_link_libraries(${target} PRIVATE ${icu})
    if(WIN32) # nothing of the compiler's own run time is needed
      target_link_options(${target} PRIVATE -static)
    endif()
    set_target_properties(${target} PROPERTIES
      PREFIX "" OUTPUT_NAME ${name} C_VISIBILITY_PRESET hidden LIBRARY_OUTPUT_DIRECTORY ${folder})
  endforeach()
endfunction()
