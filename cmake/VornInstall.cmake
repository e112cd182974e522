include(CMakePackageConfigHelpers)

install(TARGETS vornsdk vornsdk_testing EXPORT vornsdkTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY include/ testing/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT vornsdkTargets NAMESPACE vorn:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/vornsdk)

configure_package_config_file(cmake/vornsdkConfig.cmake.in
                              ${CMAKE_CURRENT_BINARY_DIR}/vornsdkConfig.cmake
                              INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/vornsdk)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/vornsdkConfigVersion.cmake
                                 COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/vornsdkConfig.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/vornsdkConfigVersion.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/vornsdk)
