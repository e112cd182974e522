# The inspector is tested as a program: vorn_inspect_tests runs it on directories it fills
# through the library. The tools are added after the tests, so the target is named here and
# resolved when the build is generated; without the tools (VORN_BUILD_EXAMPLES off) the
# program tests skip.
# The tests read the store files' raw rows to learn the key material they look for.
if(TARGET vorn_inspect_tests)
  target_link_libraries(vorn_inspect_tests PRIVATE SQLite::SQLite3)
endif()
if(VORN_BUILD_EXAMPLES AND TARGET vorn_inspect_tests)
  target_compile_definitions(vorn_inspect_tests
                             PRIVATE VORN_INSPECT_PROGRAM="$<TARGET_FILE:vornsdk-inspect>")
  add_dependencies(vorn_inspect_tests vornsdk-inspect)
  # Bad invocations end with a message and a non-zero exit, nothing thrown.
  add_test(NAME inspect.missing_directory_fails
           COMMAND vornsdk-inspect ${CMAKE_CURRENT_BINARY_DIR}/no-such-directory)
  add_test(NAME inspect.no_arguments_fails COMMAND vornsdk-inspect)
  set_tests_properties(inspect.missing_directory_fails inspect.no_arguments_fails
                       PROPERTIES WILL_FAIL TRUE LABELS inspect)
endif()
