# The C bridge used as hosts with nothing but the C ABI use it: a C program, and Python
# through ctypes. Both load the cdp module library when the examples are built.
set(VORN_CAPI_CDP_LIBRARY "")
if(VORN_BUILD_EXAMPLES)
  set(VORN_CAPI_CDP_LIBRARY $<TARGET_FILE:vornsdk_cdp>)
endif()

add_executable(vorn_capi_c_host ${VORN_SUITE_DIR}/c_host.c)
set_target_properties(vorn_capi_c_host PROPERTIES C_STANDARD 99 C_STANDARD_REQUIRED ON
                                                  C_EXTENSIONS OFF)
# The project's warning set is C++'s; a C program gets the C equivalents.
target_compile_options(vorn_capi_c_host PRIVATE -Wall -Wextra -Wpedantic
                                                $<$<BOOL:${VORN_WERROR}>:-Werror>)
target_link_libraries(vorn_capi_c_host PRIVATE vorn::sdk Threads::Threads)
if(VORN_BUILD_EXAMPLES)
  add_dependencies(vorn_capi_c_host vornsdk_cdp)
endif()
add_test(NAME capi.c_host COMMAND vorn_capi_c_host ${VORN_CAPI_CDP_LIBRARY})
set_tests_properties(capi.c_host PROPERTIES LABELS capi TIMEOUT 60)

# A sanitizer runtime has to be the first library of the process, which python3 is not
# built with, so sanitizer builds leave this one out.
find_program(VORN_PYTHON3 python3)
if(VORN_PYTHON3 AND VORN_SANITIZE STREQUAL "")
  add_test(NAME capi.python_ctypes
           COMMAND ${VORN_PYTHON3} ${VORN_SUITE_DIR}/ctypes_test.py $<TARGET_FILE:vornsdk>
                   ${VORN_CAPI_CDP_LIBRARY})
  set_tests_properties(capi.python_ctypes PROPERTIES LABELS capi TIMEOUT 60)
endif()

# The GoogleTest cases reach the reference modules' settings parsers by loading the libraries.
if(VORN_BUILD_EXAMPLES)
  target_compile_definitions(vorn_capi_tests PRIVATE
                             VORN_CDP_LIBRARY="$<TARGET_FILE:vornsdk_cdp>"
                             VORN_PUSH_LIBRARY="$<TARGET_FILE:vornsdk_push>")
  add_dependencies(vorn_capi_tests vornsdk_cdp vornsdk_push)
endif()
