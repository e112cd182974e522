# Run with cmake -P: makes the Debian packages of the build in BUILD_DIR with cpack, checks
# which files went into which package and that none carries a path of the machine that built
# it, then checks vornsdk.pc in the unpacked packages and under a `cmake --install` prefix,
# and builds and runs a program with nothing but the flags pkg-config gives.
# Required: BUILD_DIR, SOURCE_DIR, WORK_DIR, CPACK, CXX, CC, VERSION, SOVERSION.
cmake_minimum_required(VERSION 3.25)
foreach(var BUILD_DIR SOURCE_DIR WORK_DIR CPACK CXX CC VERSION SOVERSION)
  if(NOT DEFINED ${var})
    message(FATAL_ERROR "${var} is required")
  endif()
endforeach()

function(run out)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output
                  ERROR_VARIABLE output OUTPUT_STRIP_TRAILING_WHITESPACE)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "failed (${result}): ${ARGN}\n${output}")
  endif()
  set(${out} "${output}" PARENT_SCOPE)
endfunction()

function(fail)
  string(JOIN ", " text ${ARGN})
  message(FATAL_ERROR "${text}")
endfunction()

file(REMOVE_RECURSE ${WORK_DIR})
file(MAKE_DIRECTORY ${WORK_DIR})
run(ignored ${CPACK} -G DEB --config ${BUILD_DIR}/CPackConfig.cmake -B ${WORK_DIR}/packages)

set(runtime_name libvornsdk${SOVERSION})
set(dev_name libvornsdk-dev)
file(GLOB debs RELATIVE ${WORK_DIR}/packages ${WORK_DIR}/packages/*.deb)
list(SORT debs)
file(GLOB runtime_deb ${WORK_DIR}/packages/${runtime_name}_${VERSION}_*.deb)
file(GLOB dev_deb ${WORK_DIR}/packages/${dev_name}_${VERSION}_*.deb)
list(LENGTH debs count)
if(NOT count EQUAL 2 OR NOT runtime_deb OR NOT dev_deb)
  fail("expected ${runtime_name} and ${dev_name} ${VERSION}, cpack made: ${debs}")
endif()

# The paths a package installs (directories left out), as "usr/lib/x" without the leading "./".
function(deb_files deb out)
  run(listing dpkg-deb -c ${deb})
  string(REPLACE "\n" ";" lines "${listing}")
  set(files "")
  foreach(line IN LISTS lines)
    if(line MATCHES "^[^d][^ ]* .* \\./([^ ]+)( -> .*)?$")
      list(APPEND files ${CMAKE_MATCH_1})
    endif()
  endforeach()
  set(${out} ${files} PARENT_SCOPE)
endfunction()

deb_files(${runtime_deb} runtime_files)
deb_files(${dev_deb} dev_files)

# The runtime package is the library and its soname link, nothing else.
set(expected usr/lib/libvornsdk.so.${SOVERSION} usr/lib/libvornsdk.so.${VERSION})
list(SORT runtime_files)
list(SORT expected)
if(NOT runtime_files STREQUAL expected)
  fail("${runtime_name} holds '${runtime_files}', expected '${expected}'")
endif()

# The development package: every public and test-support header, the link, the CMake
# package, the pkg-config file and the test-support archive; never the versioned library.
file(GLOB_RECURSE headers RELATIVE ${SOURCE_DIR}/include ${SOURCE_DIR}/include/*)
file(GLOB_RECURSE testing_headers RELATIVE ${SOURCE_DIR}/testing/include
     ${SOURCE_DIR}/testing/include/*)
set(expected usr/lib/libvornsdk.so usr/lib/libvornsdk_testing.a usr/lib/pkgconfig/vornsdk.pc
    usr/lib/cmake/vornsdk/vornsdkConfig.cmake usr/lib/cmake/vornsdk/vornsdkConfigVersion.cmake
    usr/lib/cmake/vornsdk/vornsdkTargets.cmake)
foreach(header IN LISTS headers testing_headers)
  list(APPEND expected usr/include/${header})
endforeach()
foreach(file IN LISTS expected)
  if(NOT file IN_LIST dev_files)
    fail("${dev_name} lacks ${file}")
  endif()
endforeach()
foreach(file IN LISTS dev_files)
  if(file MATCHES "libvornsdk\\.so\\.")
    fail("${dev_name} holds ${file}, which belongs to ${runtime_name}")
  endif()
endforeach()

# Nothing of the build or the test suite slips in.
foreach(file IN LISTS runtime_files dev_files)
  if(file MATCHES "(^|/)(tests|CMakeFiles|_CPack_Packages)/|\\.o$|gtest|gmock|_tests$|_bench$|demo|collector|install_manifest")
    fail("a package holds ${file}, which is part of the build, not of the SDK")
  endif()
endforeach()

run(runtime_depends dpkg-deb -f ${runtime_deb} Depends)
if(NOT runtime_depends MATCHES "(^|, )libc6 " OR NOT runtime_depends MATCHES "libcurl")
  fail("${runtime_name} Depends lacks what the library links: '${runtime_depends}'")
endif()
run(dev_depends dpkg-deb -f ${dev_deb} Depends)
if(NOT dev_depends MATCHES "(^|, )${runtime_name} \\(= ${VERSION}\\)(,|$)"
   OR NOT dev_depends MATCHES "nlohmann-json3-dev")
  fail("${dev_name} Depends is '${dev_depends}'")
endif()

# Unpacked, no file made by the build (the stripped libraries, the CMake package, the .pc)
# names the source or build folder. The headers are copied as written and are left out: their
# comments hold relative paths that a short folder name ("/src") would match.
set(root ${WORK_DIR}/root)
run(ignored dpkg-deb -x ${runtime_deb} ${root})
run(ignored dpkg-deb -x ${dev_deb} ${root})
file(GLOB_RECURSE unpacked ${root}/usr/lib/*)
foreach(folder IN ITEMS ${SOURCE_DIR} ${BUILD_DIR})
  string(REGEX REPLACE "([][+.*()^$?|\\\\])" "\\\\\\1" pattern "${folder}/")
  foreach(file IN LISTS unpacked)
    if(NOT IS_SYMLINK ${file})
      file(STRINGS ${file} hits REGEX "${pattern}" LIMIT_COUNT 1)
      if(hits)
        file(RELATIVE_PATH shown ${root} ${file})
        fail("${shown} names the build machine's ${folder}")
      endif()
    endif()
  endforeach()
endforeach()

# pkg-config answers from where the file lies: in the unpacked packages and under a plain
# `cmake --install` prefix (installed one component at a time, as cpack does, so that this
# test writes only the install manifests cpack writes too).
foreach(component IN ITEMS runtime development)
  run(ignored ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${WORK_DIR}/prefix
      --component ${component})
endforeach()
foreach(prefix IN ITEMS ${root}/usr ${WORK_DIR}/prefix)
  file(GLOB pc_dir LIST_DIRECTORIES true ${prefix}/lib*/pkgconfig)
  set(pkg_config ${CMAKE_COMMAND} -E env PKG_CONFIG_PATH=${pc_dir} pkg-config)
  run(modversion ${pkg_config} --modversion vornsdk)
  if(NOT modversion STREQUAL VERSION)
    fail("pkg-config under ${prefix} reports version '${modversion}', not ${VERSION}")
  endif()
  run(flags ${pkg_config} --cflags --libs vornsdk)
  separate_arguments(flags UNIX_COMMAND "${flags}")
  set(include_dir "")
  set(lib_dir "")
  foreach(flag IN LISTS flags)
    if(flag MATCHES "^-I(.+)")
      if(EXISTS ${CMAKE_MATCH_1}/vorn/vorn.hpp)
        file(REAL_PATH ${CMAKE_MATCH_1} include_dir)
      endif()
    elseif(flag MATCHES "^-L(.+)")
      if(EXISTS ${CMAKE_MATCH_1}/libvornsdk.so)
        file(REAL_PATH ${CMAKE_MATCH_1} lib_dir)
      endif()
    endif()
  endforeach()
  file(REAL_PATH ${prefix} real_prefix)
  if(NOT include_dir STREQUAL "${real_prefix}/include" OR NOT lib_dir MATCHES "^${real_prefix}/lib"
     OR NOT "-lvornsdk" IN_LIST flags)
    fail("pkg-config under ${prefix} gives '${flags}' (include ${include_dir}, lib ${lib_dir})")
  endif()
  if(prefix STREQUAL "${root}/usr")
    set(deb_flags ${flags})
    set(deb_lib_dir ${lib_dir})
  endif()
endforeach()

# A program built with only those flags links the packaged library and runs on it.
file(WRITE ${WORK_DIR}/pc_consumer.cpp [=[
#include <vorn/vorn.hpp>

#include <memory>

int main() {
  vorn::VORNSdk::setLogger(vorn::LogLevel::warning, std::make_shared<vorn::LogOutputter>());
  return vorn::VORNSdk::getLogLevel() == vorn::LogLevel::warning ? 0 : 1;
}
]=])
run(ignored ${CXX} -std=c++20 ${WORK_DIR}/pc_consumer.cpp -o ${WORK_DIR}/pc_consumer ${deb_flags})
run(ignored ${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=${deb_lib_dir} ${WORK_DIR}/pc_consumer)
run(needed readelf -d ${WORK_DIR}/pc_consumer)
if(NOT needed MATCHES "\\[libvornsdk\\.so\\.${SOVERSION}\\]")
  fail("the program does not load libvornsdk.so.${SOVERSION}:\n${needed}")
endif()

# The C bridge's header is in the same package and needs no other flags: a C program, linked
# by the C compiler, runs on the packaged library too.
if(EXISTS ${root}/usr/include/vorn/vorn.h)
  file(WRITE ${WORK_DIR}/pc_c_consumer.c [=[
#include <vorn/vorn.h>

int main(void) {
  return vorn_set_logger(VORN_LOG_ERROR, NULL, NULL) == VORN_OK &&
                 vorn_get_log_level() == VORN_LOG_ERROR
             ? 0
             : 1;
}
]=])
  run(ignored ${CC} -std=c11 ${WORK_DIR}/pc_c_consumer.c -o ${WORK_DIR}/pc_c_consumer ${deb_flags})
  run(ignored ${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=${deb_lib_dir} ${WORK_DIR}/pc_c_consumer)
endif()
message(STATUS "${debs}: contents, Depends and pkg-config checked")
