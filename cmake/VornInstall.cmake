# What `cmake --install` puts under the prefix, split into two components that become the two
# Debian packages (cmake/VornPackaging.cmake):
#   runtime      libvornsdk.so.<version> and its soname link, all an app needs to run;
#   development  the headers, the libvornsdk.so link, the CMake package, vornsdk.pc, and the
#                static vorn::testing library (test doubles and the capture log sink that app
#                and module teams use in their own tests; it is only useful next to the headers).
include(CMakePackageConfigHelpers)

install(TARGETS vornsdk EXPORT vornsdkTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime
                NAMELINK_COMPONENT development
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(TARGETS vornsdk_testing EXPORT vornsdkTargets
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
install(DIRECTORY include/ testing/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
        COMPONENT development)
install(EXPORT vornsdkTargets NAMESPACE vorn:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/vornsdk
        COMPONENT development)

configure_package_config_file(cmake/vornsdkConfig.cmake.in
                              ${CMAKE_CURRENT_BINARY_DIR}/vornsdkConfig.cmake
                              INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/vornsdk)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/vornsdkConfigVersion.cmake
                                 COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/vornsdkConfig.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/vornsdkConfigVersion.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/vornsdk COMPONENT development)

# vornsdk.pc finds its prefix from where it lies (${pcfiledir}), so the same file is right
# under any `cmake --install --prefix`, in the Debian package, and in an unpacked copy of it.
set(VORN_PC_DIR ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}" OR IS_ABSOLUTE "${CMAKE_INSTALL_INCLUDEDIR}")
  set(VORN_PC_PREFIX "${CMAKE_INSTALL_PREFIX}")
  set(VORN_PC_LIBDIR "${CMAKE_INSTALL_FULL_LIBDIR}")
  set(VORN_PC_INCLUDEDIR "${CMAKE_INSTALL_FULL_INCLUDEDIR}")
else()
  file(RELATIVE_PATH up /${VORN_PC_DIR} /)
  string(REGEX REPLACE "/$" "" up "${up}")
  set(VORN_PC_PREFIX "\${pcfiledir}/${up}")
  set(VORN_PC_LIBDIR "\${prefix}/${CMAKE_INSTALL_LIBDIR}")
  set(VORN_PC_INCLUDEDIR "\${prefix}/${CMAKE_INSTALL_INCLUDEDIR}")
endif()
# Threads is public as in the CMake package; with a C library that has them built in, the
# flag is empty.
string(STRIP "-L\${libdir} -lvornsdk ${CMAKE_THREAD_LIBS_INIT}" VORN_PC_LIBS)
configure_file(cmake/vornsdk.pc.in ${CMAKE_CURRENT_BINARY_DIR}/vornsdk.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/vornsdk.pc DESTINATION ${VORN_PC_DIR}
        COMPONENT development)

# `cmake --install --strip` and CPack strip shared libraries but leave archives alone; the
# archive's debug information would otherwise carry the build folder's paths into the
# package and make up most of its size.
install(CODE "
  if(CMAKE_INSTALL_DO_STRIP AND EXISTS \"${CMAKE_STRIP}\")
    execute_process(COMMAND \"${CMAKE_STRIP}\" --strip-debug
                    \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}/$<TARGET_FILE_NAME:vornsdk_testing>\")
  endif()" COMPONENT development)
