# Compiler warnings and sanitizer flags shared by every target of the project.
add_library(vorn_warnings INTERFACE)
target_compile_options(vorn_warnings INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor
                                           # C++20 designated initializers leave members to
                                           # their defaults on purpose.
                                           -Wno-missing-field-initializers)
if(VORN_WERROR)
  target_compile_options(vorn_warnings INTERFACE -Werror)
endif()

if(VORN_SANITIZE STREQUAL "address")
  add_compile_options(-fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
  add_link_options(-fsanitize=address,undefined)
elseif(VORN_SANITIZE STREQUAL "thread")
  add_compile_options(-fsanitize=thread -fno-omit-frame-pointer)
  add_link_options(-fsanitize=thread)
elseif(VORN_SANITIZE STREQUAL "fuzzer")
  # Undefined behaviour stops the run, so the fuzzer keeps the input as a crasher instead of
  # printing a report and going on.
  add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-omit-frame-pointer
                      -fno-sanitize-recover=undefined)
  add_link_options(-fsanitize=address,undefined)
elseif(NOT VORN_SANITIZE STREQUAL "")
  message(FATAL_ERROR "Unknown VORN_SANITIZE value '${VORN_SANITIZE}'")
endif()

# vorn_add_test(<subsystem> SOURCES ... [LIBS ...])
# One GoogleTest executable per subsystem folder. Every test case runs in its own
# process (gtest_discover_tests), so process-wide singletons start fresh, and carries the
# subsystem as a ctest label so that suites can be selected with `ctest -L`.
function(vorn_add_test subsystem)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBS" ${ARGN})
  set(target vorn_${subsystem}_tests)
  add_executable(${target} ${ARG_SOURCES})
  # Suite helpers are included by their folder: "storage/CountingKeychain.hpp".
  target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_link_libraries(${target} PRIVATE vorn::sdk vorn::testing GTest::gtest GTest::gmock
                                          GTest::gtest_main PkgConfig::HTTPLIB vorn_warnings
                                          ${ARG_LIBS})
  gtest_discover_tests(${target} PROPERTIES LABELS ${subsystem} DISCOVERY_TIMEOUT 60)
endfunction()
