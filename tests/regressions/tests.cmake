# The idle test with both reference modules loads their libraries when the examples are built.
if(VORN_BUILD_EXAMPLES)
  target_compile_definitions(vorn_regressions_tests
                             PRIVATE VORN_CDP_LIBRARY="$<TARGET_FILE:vornsdk_cdp>"
                                     VORN_PUSH_LIBRARY="$<TARGET_FILE:vornsdk_push>")
  add_dependencies(vorn_regressions_tests vornsdk_cdp vornsdk_push)
endif()
