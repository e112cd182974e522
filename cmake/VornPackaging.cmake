# Debian packages from the install components of cmake/VornInstall.cmake, made with
# `cpack -G DEB` in a build folder:
#   libvornsdk0     the runtime component; the 0 is the soname's major version, so a release
#                   that breaks the ABI gets a new package that installs beside this one;
#   libvornsdk-dev  the development component, pinned to the runtime package of the same
#                   version, plus the -dev package of the one public dependency.
# Components outside these two (a tool's install rule, say) are not packaged.
set(CPACK_PACKAGE_NAME vornsdk)
set(CPACK_PACKAGE_VENDOR vornsdk)
set(CPACK_PACKAGE_CONTACT "vornsdk maintainers <vornsdk@localhost>")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
# Packaged binaries carry no debug information (nor the build folder's paths inside it).
set(CPACK_STRIP_FILES ON)

set(CPACK_COMPONENTS_ALL runtime development)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libvornsdk${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
# Depends comes from what the library links (dpkg-shlibdeps, in dpkg-dev), so it follows the
# build machine's libcurl, OpenSSL, SQLite, zlib and utf8proc packages.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
# A shlibs file and the ldconfig trigger, as Debian expects of a shared library package.
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libvornsdk-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
    "${CPACK_DEBIAN_RUNTIME_PACKAGE_NAME} (= ${PROJECT_VERSION}), nlohmann-json3-dev (>= 3)")

# Long descriptions; the synopsis line of both is the project's description.
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION
    "The shared library: start-up and module status, events and an event bus, a redacting
logger, module task queues, secure storage and networking, shared by the feature modules
of an app.")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION
    "Development files: the headers, the CMake package (find_package(vornsdk) with the
targets vorn::sdk and vorn::testing), the pkg-config file vornsdk.pc, and the static
test-support library vorn::testing.")
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS runtime)

# Packages and cpack's staging stay under the build folder.
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)

include(CPack)
